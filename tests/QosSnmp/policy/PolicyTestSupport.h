// What the policy-table tests share, on top of the agent's test support and
// the control-plane helpers (class maps may be static control-plane ones):
// match rules and the class-map table index a class map's MatchSm gets.
#pragma once

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/Make.h"
#include "kel/Ptr.h"
#include "kel/String.h"

namespace QosSnmpTest {

// A match rule of kind `option` matching `value`, set on `cmap` (replacing
// the rule of that kind it had, which notifies as a change).
inline Kel::Ptr<Qos::ClassMapMatch> matchRule(Qos::ClassMapStatus& cmap, Qos::ClassMapMatchOption option,
                                              const Kel::String& value = "10") {
  auto rule = Kel::make<Qos::ClassMapMatch>(option);
  rule->valueIs(value);
  cmap.matchIs(option, rule);
  return rule;
}

// The class-map table index of class map `name` of `type`, as the class-map
// table machine builds it.
inline QosSnmp::ClassMapTableIndex classMapIndex(const Kel::String& name, Qos::MapType type) {
  return {QosSnmp::uniqueId(name), type};
}

}  // namespace QosSnmpTest
