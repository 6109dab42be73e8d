// End to end: a realistic switch (interfaces, a port-channel and a
// sub-interface, service policies in both directions, QoS policies with
// classes, actions and counters, the control-plane policy, a hardware slice
// and an ACL slice) mirrored by the whole agent, seen through the
// service-policy, statistics, policer-statistics and policy-map action
// tables of the MIB model.
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/servicepolicy/ServicePolicyTestSupport.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"

namespace {

using QosSnmpTest::addCmapHwStatus;
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::appliedPolicy;
using QosSnmpTest::configuredPolicy;
using QosSnmpTest::intfId;
using QosSnmpTest::intfPair;
using QosSnmpTest::staticClassMap;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The rows of the tables whose names start one of `prefixes`, in the order
// mibRows gives them.
Texts rowsOf(const QosSnmp::QosMib& mib, const Texts& prefixes) {
  Texts rows;
  for (const std::string& row : QosSnmpTest::mibRows(mib)) {
    for (const std::string& prefix : prefixes) {
      if (row.starts_with(prefix + ' ')) {
        rows.push_back(row);
        break;
      }
    }
  }
  return rows;
}

const Texts kServicePolicyTable{"servicePolicyTable"};
const Texts kStatisticsTables{"qosStatsTable", "qosPolicerStatsTable"};
const Texts kEveryCheckedTable{"policyMapActionTable", "qosStatsTable", "qosPolicerStatsTable",
                               "servicePolicyTable"};

// Action rows: the QoS policies' own actions (map type 1, written from the
// status with the slice), then the hardware-backed rows of map kind 0 for
// the ACL policy's ordinary class and the control-plane policy's static and
// default classes.
const Texts kActionRows{
    "policyMapActionTable (policy-in, 1, class-web, 3) class-web actionSetDscp - hw FixedSystem",
    "policyMapActionTable (policy-in, 1, class-web, 6) class-web actionPolice - hw FixedSystem",
    "policyMapActionTable (policy-acl, 0, class-acl, 0) - - class-acl hw FixedSystem",
    "policyMapActionTable (policy-acl, 0, class-acl, 1) - - class-acl hw FixedSystem",
    "policyMapActionTable (policy-lag, 1, class-bulk, 4) class-bulk actionSetTc - hw FixedSystem",
    "policyMapActionTable (policy-out, 1, class-voice, 2) class-voice actionSetCos - hw FixedSystem",
    "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
    "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
    ("policyMapActionTable (copp-system-policy, 0, copp-system-default, 0) - - copp-system-default hw "
     "FixedSystem"),
    ("policyMapActionTable (copp-system-policy, 0, copp-system-default, 1) - - copp-system-default hw "
     "FixedSystem"),
};

// Statistics rows: from the QoS status counters (qualifier 0, no hardware
// status) for the QoS policies and the configured control-plane class, and
// from the slice's hardware status (qualifier 1, the hardware key) for the
// control-plane policy's classes.
const Texts kStatsRows{
    "qosStatsTable (policy-in, 1, class-web, 0) - class-web",
    "qosStatsTable (policy-lag, 1, class-bulk, 0) - class-bulk",
    "qosStatsTable (policy-out, 1, class-voice, 0) - class-voice",
    "qosStatsTable (copp-system-policy, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
    "qosStatsTable (copp-system-policy, 0, copp-user-class, 0) - copp-user-class",
    "qosStatsTable (copp-system-policy, 0, copp-user-class, 1) copp-user-class copp-user-class",
    "qosStatsTable (copp-system-policy, 0, copp-system-default, 1) copp-system-default copp-system-default",
};

// Policer rows: one per interface that reports policer status for a class,
// indexed by the interface's ifIndex.
const Texts kPolicerRows{
    "qosPolicerStatsTable (policy-in, 1, class-web, 1) Ethernet1",
    "qosPolicerStatsTable (policy-in, 1, class-web, 2) Ethernet2",
    "qosPolicerStatsTable (policy-lag, 1, class-bulk, 1000010) Port-Channel10",
    "qosPolicerStatsTable (policy-out, 1, class-voice, 1) Ethernet1",
    "qosPolicerStatsTable (policy-out, 1, class-voice, 3100) Ethernet3.100",
};

// Service-policy rows, indexed by (ifIndex, direction): the applied
// policies of Ethernet1 and Ethernet2, and the port-channel's configured
// one. The policy applied through Ethernet3.100 and the control-plane
// policy have none.
const Texts kServicePolicyRows{
    "servicePolicyTable (1, 1) policy-in mapQos/directionInput/policy-in",
    "servicePolicyTable (1, 2) policy-out mapQos/directionOutput/policy-out",
    "servicePolicyTable (2, 1) policy-in mapQos/directionInput/policy-in",
    "servicePolicyTable (1000010, 2) policy-lag mapQos/directionOutput/policy-lag",
};

Texts joined(std::initializer_list<Texts> parts) { return QosSnmpTest::joined(parts); }

// The machine types of the service-policy, statistics, policer and
// control-plane statistics subsystems.
const Texts kMachineTypes{
    "QosSnmp::ServicePolicyTableSm", "QosSnmp::QosStatsTableSm",
    "QosSnmp::HwStatusPmapSm",       "QosSnmp::HwStatusCmapSm",
    "QosSnmp::AclHwStatusPmapSm",    "QosSnmp::AclHwStatusCmapSm",
    "QosSnmp::CoppStatsTableSm",     "QosSnmp::QosStatusCmapPolicerStatsTableSm",
};

class SwitchStatisticsEndToEndTest : public ::testing::Test {
 protected:
  SwitchStatisticsEndToEndTest() {
    addInterfaces();
    addControlPlanePolicy();
    addQosPolicies();
    addServicePolicies();
    addHardware();
    switch_.qosMibConfig->counterPollPeriodIs(10.0);
  }

  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }

  Texts rows(const Texts& tables) const { return rowsOf(*switch_.qosMib, tables); }

  // Stage 1: front-panel ports, a port-channel and a sub-interface.
  void addInterfaces() {
    switch_.interface("Ethernet1", 1);
    switch_.interface("Ethernet2", 2);
    switch_.interface("Ethernet3", 3);
    switch_.interface("Port-Channel10", 1000010);
    switch_.interface("Ethernet3.100", 3100);
  }

  // Stage 2: the control-plane policy with two static classes, one
  // configured class and the drop class, each with counters.
  void addControlPlanePolicy() {
    auto bgp = staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
    auto drop = staticClassMap("copp-system-drop", Qos::cpStaticDrop_);
    auto deflt = staticClassMap("copp-system-default", Qos::cpStaticDefault_);
    for (const auto& cmap : {bgp, drop, deflt}) {
      switch_.cmapType(Qos::mapControlPlane_)->cmapIs(cmap->name(), cmap);
    }
    QosSnmpTest::addCoppClassMap(switch_, "copp-user-class", Qos::classMapCpDynamic_);

    auto copp = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
    copp->classDefaultIs(deflt);
    auto prio = Kel::make<Qos::ClassPriority>(1);
    prio->cmapNameIs("copp-user-class");
    copp->classPrioIs(1, prio);
    for (const char* name :
         {"copp-system-bgp", "copp-system-drop", "copp-system-default", "copp-user-class"}) {
      auto counter = QosSnmpTest::addCounters(switch_, "copp-system-policy", name);
      counter->packetsIs(1000);
      counter->bytesIs(64000);
    }
  }

  // Stage 3: three QoS policies (map type 1), each with one class that has
  // actions and counters with policer status per interface.
  void addQosPolicies() {
    qosPolicy("policy-in", "class-web", {Qos::actionSetDscp_, Qos::actionPolice_},
              {"Ethernet1", "Ethernet2"});
    qosPolicy("policy-out", "class-voice", {Qos::actionSetCos_}, {"Ethernet1", "Ethernet3.100"});
    qosPolicy("policy-lag", "class-bulk", {Qos::actionSetTc_}, {"Port-Channel10"});
  }

  void qosPolicy(const Kel::String& pmapName, const Kel::String& cmapName,
                 std::initializer_list<Qos::ActionType> actions,
                 std::initializer_list<const char*> policedOn) {
    switch_.classMap(Qos::mapQos_, cmapName);
    auto pmap = switch_.policyMap(Qos::mapQos_, pmapName);
    auto classAction = Kel::make<Qos::ClassAction>(cmapName);
    for (const Qos::ActionType type : actions) {
      classAction->policyActionIs(type, Kel::make<Qos::Action>(type));
    }
    pmap->classActionIs(cmapName, classAction);
    auto prio = Kel::make<Qos::ClassPriority>(1);
    prio->cmapNameIs(cmapName);
    pmap->classPrioIs(1, prio);
    auto counter = Kel::make<Qos::Counter>(cmapName);
    counter->packetsIs(500);
    counter->bytesIs(750000);
    for (const char* intf : policedOn) {
      auto policer = Kel::make<Qos::PolicerHwStatus>(intf);
      policer->conformedPacketsIs(400);
      policer->exceededPacketsIs(100);
      counter->policerHwStatusIs(intf, policer);
    }
    pmap->cmapCountersIs(cmapName, counter);
  }

  // Stage 4: service policies in configuration and status.
  void addServicePolicies() {
    const Qos::ServicePolicyKey in(Qos::mapQos_, Qos::directionInput_, "policy-in");
    const Qos::ServicePolicyKey out(Qos::mapQos_, Qos::directionOutput_, "policy-out");
    const Qos::ServicePolicyKey lag(Qos::mapQos_, Qos::directionOutput_, "policy-lag");
    const Qos::ServicePolicyKey copp(Qos::mapControlPlane_, Qos::directionInput_, "copp-system-policy");

    configuredPolicy(switch_, in)->intfIdsIs(intfId("Ethernet1"), true);
    configuredPolicy(switch_, in)->intfIdsIs(intfId("Ethernet2"), true);
    appliedPolicy(switch_, in)->intfIdsIs(intfPair("Ethernet1"), true);
    appliedPolicy(switch_, in)->intfIdsIs(intfPair("Ethernet2"), true);

    configuredPolicy(switch_, out)->intfIdsIs(intfId("Ethernet1"), true);
    configuredPolicy(switch_, out)->intfIdsIs(intfId("Ethernet3.100"), true);
    appliedPolicy(switch_, out)->intfIdsIs(intfPair("Ethernet1"), true);
    appliedPolicy(switch_, out)->intfIdsIs(intfPair("Ethernet3", "Ethernet3.100"), true);

    // The port-channel's policy: its row follows the configuration while
    // the status knows the policy.
    configuredPolicy(switch_, lag)->intfIdsIs(intfId("Port-Channel10"), true);
    appliedPolicy(switch_, lag);

    configuredPolicy(switch_, copp)->intfIdsIs(intfId("Ethernet1"), true);
    appliedPolicy(switch_, copp)->intfIdsIs(intfPair("Ethernet1"), true);
  }

  // Stage 5: the hardware: flags, one slice with the control-plane
  // policy's hardware status and one ACL slice with an ACL policy's.
  void addHardware() {
    switch_.qosHwStatus->coppSupportedIs(true);
    switch_.qosHwStatus->coppHwStatsSupportedIs(false);

    auto slice = switch_.slice("FixedSystem");
    auto coppType = addPmapTypeHwStatus(slice, Qos::mapControlPlane_);
    auto copp = addPmapHwStatus(coppType, Qos::PolicyMapHwStatusKey(1, "copp-system-policy"), 0);
    for (const char* name :
         {"copp-system-bgp", "copp-system-drop", "copp-system-default", "copp-user-class"}) {
      auto cmap = addCmapHwStatus(copp, name);
      cmap->programmingStatusIs(Qos::hwStatusProgrammed_);
      cmap->packetsIs(1000);
    }

    auto acl = Kel::make<Qos::AclSliceHwStatus>("Acl1");
    switch_.qosAclSliceHwStatusDir->entityIs("Acl1", acl);
    auto aclType = addPmapTypeHwStatus(acl, Qos::mapQos_);
    auto aclPmap = addPmapHwStatus(aclType, Qos::PolicyMapHwStatusKey(1, "policy-acl"), 0);
    addCmapHwStatus(aclPmap, "class-acl")->programmingStatusIs(Qos::hwStatusProgrammed_);
    addCmapHwStatus(aclPmap, "copp-system-bgp")->programmingStatusIs(Qos::hwStatusProgrammed_);
  }

  TestSwitch switch_;
};

TEST_F(SwitchStatisticsEndToEndTest, BuildsEveryRowOfARealisticSwitch) {
  const auto root = makeRoot();
  EXPECT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kStatsRows, kPolicerRows, kServicePolicyRows}));
}

TEST_F(SwitchStatisticsEndToEndTest, PollPeriodMovingToInfinityAndBack) {
  const auto root = makeRoot();
  ASSERT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kStatsRows, kPolicerRows, kServicePolicyRows}));

  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kServicePolicyRows}));

  switch_.qosMibConfig->counterPollPeriodIs(5.0);
  EXPECT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kStatsRows, kPolicerRows, kServicePolicyRows}));

  switch_.qosMibConfig->counterPollPeriodIs(30.0);
  EXPECT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kStatsRows, kPolicerRows, kServicePolicyRows}));
}

TEST_F(SwitchStatisticsEndToEndTest, TeardownLeavesNoStatisticsRows) {
  auto root = makeRoot();
  ASSERT_EQ(rows(kEveryCheckedTable), joined({kActionRows, kStatsRows, kPolicerRows, kServicePolicyRows}));
  for (const std::string& type : kMachineTypes) {
    EXPECT_GT(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }

  root = nullptr;

  EXPECT_EQ(rows({"qosStatsTable", "qosPolicerStatsTable", "servicePolicyTable"}), Texts{});
  for (const std::string& type : kMachineTypes) {
    EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }
}

TEST_F(SwitchStatisticsEndToEndTest, InterfaceLosingItsIndexLosesItsServicePolicyRows) {
  const auto root = makeRoot();
  const Texts statistics = rows(kStatisticsTables);
  ASSERT_EQ(rows(kServicePolicyTable), kServicePolicyRows);

  switch_.allIntfStatusDir->intfStatusDel(intfId("Ethernet1"));
  EXPECT_EQ(rows(kServicePolicyTable),
            (Texts{
                "servicePolicyTable (2, 1) policy-in mapQos/directionInput/policy-in",
                ("servicePolicyTable (1000010, 2) policy-lag "
                 "mapQos/directionOutput/policy-lag"),
            }));

  switch_.allIntfStatusDir->intfStatusDel(intfId("Port-Channel10"));
  EXPECT_EQ(rows(kServicePolicyTable),
            (Texts{"servicePolicyTable (2, 1) policy-in mapQos/directionInput/policy-in"}));

  // Rows hold references and are not rewritten when an interface goes.
  EXPECT_EQ(rows(kStatisticsTables), statistics);
}

}  // namespace
