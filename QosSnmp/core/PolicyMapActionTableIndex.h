// PolicyMapActionTableIndex: the index of one row of the policy-map action
// table, one action of one class of one policy map.
//
// Fields, in declaration and SNMP index order: the policy map's shortened
// name (uniqueId), its map type, the class map's shortened name, and the
// action (a Qos::ActionType value).
//
// The hash feeds the fields in declaration order. QosStatsTableIndex, of
// the same shape, feeds its class-map name first; the two hash differently
// on purpose, keep them so.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(pmapName, type, cmapName, actionType)".
//
//   const PolicyMapActionTableIndex index(uniqueId(pmapName), type, uniqueId(cmapName), actionType);
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class PolicyMapActionTableIndex {
 public:
  PolicyMapActionTableIndex(Snmp::String pmapName, Kel::S32 type, Snmp::String cmapName,
                            Kel::S32 actionType) noexcept;

  const Snmp::String& pmapName() const noexcept { return pmapName_; }
  Kel::S32 type() const noexcept { return type_; }
  const Snmp::String& cmapName() const noexcept { return cmapName_; }
  Kel::S32 actionType() const noexcept { return actionType_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const PolicyMapActionTableIndex& a,
                         const PolicyMapActionTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const PolicyMapActionTableIndex& a,
                                          const PolicyMapActionTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.pmapName_, b.pmapName_); std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    if (const auto c = compareOctetStringIndex(a.cmapName_, b.cmapName_); std::is_neq(c)) {
      return c;
    }
    return a.actionType_ <=> b.actionType_;
  }

 private:
  Snmp::String pmapName_;
  Kel::S32 type_;
  Snmp::String cmapName_;
  Kel::S32 actionType_;
};

std::ostream& operator<<(std::ostream& out, const PolicyMapActionTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::PolicyMapActionTableIndex> {
  std::size_t operator()(const QosSnmp::PolicyMapActionTableIndex& index) const noexcept {
    return index.hash();
  }
};
