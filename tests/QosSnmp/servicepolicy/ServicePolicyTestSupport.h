// What the service-policy tests share: service policies configured and
// applied on a TestSwitch, interfaces given an ifIndex in the MIB model, and
// the two root operations as the root performs them over a
// ServicePolicyTableSm.
#pragma once

#include <string>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/IntfPairKey.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "QosSnmp/servicepolicy/ServicePolicyTableSm.h"
#include "kel/Make.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmpTest {

inline Pellix::IntfId intfId(const std::string& name) { return Pellix::IntfId(Kel::String(name)); }

// The pair under which the status reports a policy applied to `intf`
// itself, or through its sub-interface `subIntf`.
inline Qos::IntfPairKey intfPair(const std::string& intf, const std::string& subIntf = "") {
  return {intfId(intf), subIntf.empty() ? Pellix::IntfId() : intfId(subIntf)};
}

// The configuration member of `key`, created on first use.
inline Kel::Ptr<Qos::ServicePolicyConfig> configuredPolicy(TestSwitch& testSwitch,
                                                           const Qos::ServicePolicyKey& key) {
  if (!testSwitch.qosConfig->servicePolicyConfig(key)) {
    testSwitch.qosConfig->servicePolicyConfigIs(key, Kel::make<Qos::ServicePolicyConfig>(key));
  }
  return TestSwitch::mutableOf(testSwitch.qosConfig->servicePolicyConfig(key));
}

// The status member of `key`, created on first use.
inline Kel::Ptr<Qos::ServicePolicyStatus> appliedPolicy(TestSwitch& testSwitch,
                                                        const Qos::ServicePolicyKey& key) {
  if (!testSwitch.qosStatus->servicePolicyStatus(key)) {
    testSwitch.qosStatus->servicePolicyStatusIs(key, Kel::make<Qos::ServicePolicyStatus>(key));
  }
  return TestSwitch::mutableOf(testSwitch.qosStatus->servicePolicyStatus(key));
}

// What the interface-index mirror writes when `name` gets its ifIndex.
inline void indexInterface(TestSwitch& testSwitch, const std::string& name, Kel::S32 ifIndex) {
  testSwitch.qosMib->intfIdToifIndexIs(intfId(name), ifIndex);
}

// RootSm::addServicePolicyEntries(intf), with `sm` as the root's
// service-policy table: the status pairs of intf itself, then the
// configured policies of intf through the port-channel rule.
inline void addServicePolicyEntries(const TestSwitch& testSwitch, QosSnmp::ServicePolicyTableSm& sm,
                                    const Pellix::IntfId& intf) {
  for (const auto& [key, status] : testSwitch.qosStatus->servicePolicyStatus()) {
    if (status->intfIds(Qos::IntfPairKey(intf, Pellix::IntfId()))) {
      sm.doAddOrRemoveEntry(intf, key, true);
    }
  }
  for (const auto& [key, config] : testSwitch.qosConfig->servicePolicyConfig()) {
    if (config->intfIds(intf)) {
      sm.doMaybeAddOrRemoveEntry(intf, key);
    }
  }
}

// RootSm::deleteServicePolicyEntries(intf): the same scans, both removing
// directly, without the port-channel rule.
inline void deleteServicePolicyEntries(const TestSwitch& testSwitch, QosSnmp::ServicePolicyTableSm& sm,
                                       const Pellix::IntfId& intf) {
  for (const auto& [key, status] : testSwitch.qosStatus->servicePolicyStatus()) {
    if (status->intfIds(Qos::IntfPairKey(intf, Pellix::IntfId()))) {
      sm.doAddOrRemoveEntry(intf, key, false);
    }
  }
  for (const auto& [key, config] : testSwitch.qosConfig->servicePolicyConfig()) {
    if (config->intfIds(intf)) {
      sm.doAddOrRemoveEntry(intf, key, false);
    }
  }
}

}  // namespace QosSnmpTest
