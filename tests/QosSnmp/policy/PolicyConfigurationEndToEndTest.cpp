// The policy configuration tables end to end: a switch configured with
// several QoS class maps and policy maps and the control-plane policy with
// its static classes, mirrored by a whole agent built through its factory.
// Every expected MIB row is written out in full.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/policy/PolicyMapTestSupport.h"
#include "QosSnmp/policy/PolicyTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"

namespace {

using QosSnmpTest::addClassAction;
using QosSnmpTest::addClassPrio;
using QosSnmpTest::coppSystemPolicy;
using QosSnmpTest::hwClass;
using QosSnmpTest::matchRule;
using QosSnmpTest::staticClassMap;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

// The state machine types of the policy configuration tables (and the
// control-plane machine that writes into the same tables).
const Texts kPolicyMachineTypes{
    "QosSnmp::ClassMapTableSm", "QosSnmp::MatchSm",     "QosSnmp::PolicyMapTablesSm",
    "QosSnmp::ClassActionSm",   "QosSnmp::ClassPrioSm", "QosSnmp::PolicyActionSm",
    "QosSnmp::CoppStaticSm",
};

// Shortened forms of the two names longer than 30 characters: the first 21
// characters, '-', and the 32-bit FNV-1a hash of the whole name in hex.
//   "cm-management-traffic-low-latency"    -> "cm-management-traffic-bb45b73b"
//   "pm-datacenter-uplinks-egress-shaping" -> "pm-datacenter-uplinks-6f906ada"

// Every row of the configuration built by the fixture. Within a table, rows
// are in SNMP index order: a name orders by its length first, then by its
// characters.
const Texts kAllRows{
    // Class maps: the QoS ones and the configured control-plane one from
    // their match machines, the static control-plane ones present in the
    // hardware from the control-plane machine. Neither the default class
    // (static type 19) nor the drop class gets a row.
    "classMapTable (cm-video, 1) cm-video",
    "classMapTable (cm-voice, 1) cm-voice",
    "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
    "classMapTable (cm-scavenger, 1) cm-scavenger",
    "classMapTable (copp-system-bgp, 0) copp-system-bgp",
    "classMapTable (copp-system-lacp, 0) copp-system-lacp",
    "classMapTable (cm-management-traffic-bb45b73b, 1) cm-management-traffic-low-latency",
    // Match rules, numbered from 1 in the order of their options.
    "classMapMatchTable (cm-video, 1, 1) cm-video matchVlan",
    "classMapMatchTable (cm-video, 1, 2) cm-video matchCos",
    "classMapMatchTable (cm-voice, 1, 1) cm-voice matchIpAccessGroup",
    "classMapMatchTable (cm-voice, 1, 2) cm-voice matchDscp",
    "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
    "classMapMatchTable (cm-scavenger, 1, 1) cm-scavenger matchDscp",
    ("classMapMatchTable (cm-management-traffic-bb45b73b, 1, 1) cm-management-traffic-low-latency "
     "matchMacAccessGroup"),
    // Policy maps.
    "policyMapTable (pm-edge-in, 1) pm-edge-in",
    "policyMapTable (copp-system-policy, 0) copp-system-policy",
    "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
    // Classes: one per class priority, the default class at 3072, and the
    // static control-plane classes at 6146 - hwRank.
    "policyMapClassTable (pm-edge-in, 1, 1) pm-edge-in cm-voice",
    "policyMapClassTable (pm-edge-in, 1, 2) pm-edge-in cm-video",
    "policyMapClassTable (pm-edge-in, 1, 3) pm-edge-in cm-management-traffic-bb45b73b",
    "policyMapClassTable (pm-edge-in, 1, 3072) pm-edge-in class-default",
    "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
    "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
    "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
    "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
    ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 1) pm-datacenter-uplinks-egress-shaping "
     "cm-scavenger"),
    ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) pm-datacenter-uplinks-egress-shaping "
     "cm-video"),
    // Actions: one per action of each class of a QoS policy map, the default
    // class's included; the control-plane policy gets none.
    "policyMapActionTable (pm-edge-in, 1, cm-video, 3) cm-video actionSetDscp - hw FixedSystem",
    "policyMapActionTable (pm-edge-in, 1, cm-video, 6) cm-video actionPolice - hw FixedSystem",
    "policyMapActionTable (pm-edge-in, 1, cm-voice, 3) cm-voice actionSetDscp - hw FixedSystem",
    "policyMapActionTable (pm-edge-in, 1, class-default, 6) class-default actionPolice - hw FixedSystem",
    ("policyMapActionTable (pm-edge-in, 1, cm-management-traffic-bb45b73b, 2) "
     "cm-management-traffic-low-latency "
     "actionSetCos - hw FixedSystem"),
    ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video actionSetShape - hw "
     "FixedSystem"),
    ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-scavenger, 1) cm-scavenger "
     "actionSetBandwidth - "
     "hw FixedSystem"),
    // The static control-plane class maps by static type (not the drop
    // class, which gets no match machine).
    "cmapByStaticType cpStaticLacp copp-system-lacp",
    "cmapByStaticType cpStaticBgp copp-system-bgp",
    "intfIdToifIndex Ethernet1 1",
    "intfIdToifIndex Ethernet2 2",
};

class PolicyConfigurationEndToEndTest : public ::testing::Test {
 protected:
  PolicyConfigurationEndToEndTest() {
    buildQosClassMaps();
    buildQosPolicyMaps();
    buildControlPlanePolicy();
    buildHardware();
    switch_.interface("Ethernet1", 1);
    switch_.interface("Ethernet2", 2);
  }

  // Four QoS class maps, each with its match rules; one name is longer than
  // an index name may be.
  void buildQosClassMaps() {
    auto voice = switch_.classMap(Qos::mapQos_, "cm-voice");
    matchRule(*voice, Qos::matchDscp_, "46");
    matchRule(*voice, Qos::matchIpAccessGroup_, "acl-voice");
    auto video = switch_.classMap(Qos::mapQos_, "cm-video");
    matchRule(*video, Qos::matchVlan_, "10,20-30");
    matchRule(*video, Qos::matchCos_, "4");
    auto management = switch_.classMap(Qos::mapQos_, "cm-management-traffic-low-latency");
    matchRule(*management, Qos::matchMacAccessGroup_, "mac-mgmt");
    auto scavenger = switch_.classMap(Qos::mapQos_, "cm-scavenger");
    matchRule(*scavenger, Qos::matchDscp_, "8");
  }

  // Two QoS policy maps: an ingress marking and policing policy with a
  // default class, and an egress shaping policy with a long name and no
  // default class.
  void buildQosPolicyMaps() {
    edgeIn_ = switch_.policyMap(Qos::mapQos_, "pm-edge-in");
    setValue(addClassAction(edgeIn_, "cm-voice", {Qos::actionSetDscp_}), Qos::actionSetDscp_, 46);
    auto video = addClassAction(edgeIn_, "cm-video", {Qos::actionSetDscp_, Qos::actionPolice_});
    setValue(video, Qos::actionSetDscp_, 34);
    police(video, 50000, 125000);
    setValue(addClassAction(edgeIn_, "cm-management-traffic-low-latency", {Qos::actionSetCos_}),
             Qos::actionSetCos_, 6);
    addClassPrio(edgeIn_, 1, "cm-voice");
    addClassPrio(edgeIn_, 2, "cm-video");
    addClassPrio(edgeIn_, 3, "cm-management-traffic-low-latency");
    auto classDefault = Kel::make<Qos::ClassMapStatus>("class-default");
    classDefault->typeIs(Qos::mapQos_);
    edgeIn_->classDefaultIs(classDefault);
    auto defaultAction = QosSnmpTest::classActionOf("class-default", {Qos::actionPolice_});
    police(defaultAction, 100000, 250000);
    edgeIn_->defaultClassActionIs(defaultAction);

    auto uplink = switch_.policyMap(Qos::mapQos_, "pm-datacenter-uplinks-egress-shaping");
    addClassAction(uplink, "cm-scavenger", {Qos::actionSetBandwidth_});
    addClassAction(uplink, "cm-video", {Qos::actionSetShape_});
    addClassPrio(uplink, 1, "cm-scavenger");
    addClassPrio(uplink, 2, "cm-video");
  }

  // The control-plane policy: static classes (bgp, lacp, the drop class), a
  // configured class with a priority, and the default class.
  void buildControlPlanePolicy() {
    auto cmaps = switch_.cmapType(Qos::mapControlPlane_);
    cmaps->cmapIs("copp-system-bgp", staticClassMap("copp-system-bgp", Qos::cpStaticBgp_));
    cmaps->cmapIs("copp-system-lacp", staticClassMap("copp-system-lacp", Qos::cpStaticLacp_));
    cmaps->cmapIs("copp-system-drop", staticClassMap("copp-system-drop", Qos::cpStaticDrop_));
    auto ssh = switch_.classMap(Qos::mapControlPlane_, "cp-mgmt-ssh");
    ssh->cpTypeIs(Qos::classMapCpDynamic_);
    matchRule(*ssh, Qos::matchIpAccessGroup_, "acl-ssh");

    auto copp = coppSystemPolicy(switch_);
    police(addClassAction(copp, "cp-mgmt-ssh", {Qos::actionPolice_}), 1000, 8000);
    addClassPrio(copp, 1, "cp-mgmt-ssh");
  }

  // One slice reporting the static classes with their ranks.
  void buildHardware() {
    switch_.qosHwStatus->coppSupportedIs(true);
    slice_ = switch_.slice("FixedSystem");
    hwClass(*slice_, Qos::cpStaticBgp_, 10);
    hwClass(*slice_, Qos::cpStaticLacp_, 3);
    hwClass(*slice_, Qos::cpStaticDrop_, 5);
    hwClass(*slice_, Qos::cpStaticDefault_, 0);
  }

  static void setValue(const Kel::Ptr<Qos::ClassAction>& classAction, Qos::ActionType type, Kel::U32 value) {
    TestSwitch::mutableOf(classAction->policyAction(type))->valueIs(value);
  }
  static void police(const Kel::Ptr<Qos::ClassAction>& classAction, Kel::U64 rate, Kel::U64 burst) {
    auto action = TestSwitch::mutableOf(classAction->policyAction(Qos::actionPolice_));
    action->rateUnitIs(Qos::rateUnitKbps_);
    action->rateIs(rate);
    action->burstSizeIs(burst);
  }

  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::PolicyMapStatus> edgeIn_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
};

TEST_F(PolicyConfigurationEndToEndTest, BuildsEveryRowOfARealisticConfiguration) {
  const auto root = makeRoot();
  EXPECT_EQ(rows(), kAllRows);

  // Rows refer to the live configuration: the policer's parameters are those
  // configured.
  const auto* policer = switch_.qosMib->policyMapActionTable(QosSnmp::PolicyMapActionTableIndex(
      QosSnmp::uniqueId("pm-edge-in"), Qos::mapQos_, QosSnmp::uniqueId("cm-video"), Qos::actionPolice_));
  ASSERT_NE(policer, nullptr);
  EXPECT_EQ(policer->action->rate(), 50000U);
  EXPECT_EQ(policer->action->burstSize(), 125000U);
  EXPECT_EQ(policer->action->rateUnit(), Qos::rateUnitKbps_);
}

TEST_F(PolicyConfigurationEndToEndTest, TearingTheRootDownRemovesEveryRowItAdded) {
  auto root = makeRoot();
  ASSERT_EQ(rows(), kAllRows);
  for (const std::string& type : kPolicyMachineTypes) {
    EXPECT_GT(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }

  root = nullptr;

  // The class-map machines never remove what they wrote by static type, and
  // the interface mirror leaves its entries behind.
  EXPECT_EQ(rows(), (Texts{
                        "cmapByStaticType cpStaticLacp copp-system-lacp",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                        "intfIdToifIndex Ethernet1 1",
                        "intfIdToifIndex Ethernet2 2",
                    }));
  for (const std::string& type : kPolicyMachineTypes) {
    EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }
}

TEST_F(PolicyConfigurationEndToEndTest, ChangesFollowTheConfiguration) {
  const auto root = makeRoot();
  ASSERT_EQ(rows(), kAllRows);

  // cm-video gains a DSCP rule: the next match index, 3.
  matchRule(*TestSwitch::mutableOf(switch_.cmapType(Qos::mapQos_)->cmap("cm-video")), Qos::matchDscp_, "34");
  EXPECT_EQ(
      rows(),
      (Texts{
          "classMapTable (cm-video, 1) cm-video",
          "classMapTable (cm-voice, 1) cm-voice",
          "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
          "classMapTable (cm-scavenger, 1) cm-scavenger",
          "classMapTable (copp-system-bgp, 0) copp-system-bgp",
          "classMapTable (copp-system-lacp, 0) copp-system-lacp",
          "classMapTable (cm-management-traffic-bb45b73b, 1) cm-management-traffic-low-latency",
          "classMapMatchTable (cm-video, 1, 1) cm-video matchVlan",
          "classMapMatchTable (cm-video, 1, 2) cm-video matchCos",
          "classMapMatchTable (cm-video, 1, 3) cm-video matchDscp",
          "classMapMatchTable (cm-voice, 1, 1) cm-voice matchIpAccessGroup",
          "classMapMatchTable (cm-voice, 1, 2) cm-voice matchDscp",
          "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
          "classMapMatchTable (cm-scavenger, 1, 1) cm-scavenger matchDscp",
          ("classMapMatchTable (cm-management-traffic-bb45b73b, 1, 1) cm-management-traffic-low-latency "
           "matchMacAccessGroup"),
          "policyMapTable (pm-edge-in, 1) pm-edge-in",
          "policyMapTable (copp-system-policy, 0) copp-system-policy",
          "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
          "policyMapClassTable (pm-edge-in, 1, 1) pm-edge-in cm-voice",
          "policyMapClassTable (pm-edge-in, 1, 2) pm-edge-in cm-video",
          "policyMapClassTable (pm-edge-in, 1, 3) pm-edge-in cm-management-traffic-bb45b73b",
          "policyMapClassTable (pm-edge-in, 1, 3072) pm-edge-in class-default",
          "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
          "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
          "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
          "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 1) pm-datacenter-uplinks-egress-shaping "
           "cm-scavenger"),
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) pm-datacenter-uplinks-egress-shaping "
           "cm-video"),
          "policyMapActionTable (pm-edge-in, 1, cm-video, 3) cm-video actionSetDscp - hw FixedSystem",
          "policyMapActionTable (pm-edge-in, 1, cm-video, 6) cm-video actionPolice - hw FixedSystem",
          "policyMapActionTable (pm-edge-in, 1, cm-voice, 3) cm-voice actionSetDscp - hw FixedSystem",
          ("policyMapActionTable (pm-edge-in, 1, class-default, 6) class-default actionPolice - hw "
           "FixedSystem"),
          ("policyMapActionTable (pm-edge-in, 1, cm-management-traffic-bb45b73b, 2) "
           "cm-management-traffic-low-latency actionSetCos - hw FixedSystem"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video actionSetShape - "
           "hw "
           "FixedSystem"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-scavenger, 1) cm-scavenger "
           "actionSetBandwidth - hw FixedSystem"),
          "cmapByStaticType cpStaticLacp copp-system-lacp",
          "cmapByStaticType cpStaticBgp copp-system-bgp",
          "intfIdToifIndex Ethernet1 1",
          "intfIdToifIndex Ethernet2 2",
      }));

  // pm-edge-in loses its cm-video class: its class row and both its action
  // rows go; cm-video stays in the other policy map.
  edgeIn_->classActionDel("cm-video");
  edgeIn_->classPrioDel(2);
  EXPECT_EQ(
      rows(),
      (Texts{
          "classMapTable (cm-video, 1) cm-video",
          "classMapTable (cm-voice, 1) cm-voice",
          "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
          "classMapTable (cm-scavenger, 1) cm-scavenger",
          "classMapTable (copp-system-bgp, 0) copp-system-bgp",
          "classMapTable (copp-system-lacp, 0) copp-system-lacp",
          "classMapTable (cm-management-traffic-bb45b73b, 1) cm-management-traffic-low-latency",
          "classMapMatchTable (cm-video, 1, 1) cm-video matchVlan",
          "classMapMatchTable (cm-video, 1, 2) cm-video matchCos",
          "classMapMatchTable (cm-video, 1, 3) cm-video matchDscp",
          "classMapMatchTable (cm-voice, 1, 1) cm-voice matchIpAccessGroup",
          "classMapMatchTable (cm-voice, 1, 2) cm-voice matchDscp",
          "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
          "classMapMatchTable (cm-scavenger, 1, 1) cm-scavenger matchDscp",
          ("classMapMatchTable (cm-management-traffic-bb45b73b, 1, 1) cm-management-traffic-low-latency "
           "matchMacAccessGroup"),
          "policyMapTable (pm-edge-in, 1) pm-edge-in",
          "policyMapTable (copp-system-policy, 0) copp-system-policy",
          "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
          "policyMapClassTable (pm-edge-in, 1, 1) pm-edge-in cm-voice",
          "policyMapClassTable (pm-edge-in, 1, 3) pm-edge-in cm-management-traffic-bb45b73b",
          "policyMapClassTable (pm-edge-in, 1, 3072) pm-edge-in class-default",
          "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
          "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
          "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
          "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 1) pm-datacenter-uplinks-egress-shaping "
           "cm-scavenger"),
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) pm-datacenter-uplinks-egress-shaping "
           "cm-video"),
          "policyMapActionTable (pm-edge-in, 1, cm-voice, 3) cm-voice actionSetDscp - hw FixedSystem",
          ("policyMapActionTable (pm-edge-in, 1, class-default, 6) class-default actionPolice - hw "
           "FixedSystem"),
          ("policyMapActionTable (pm-edge-in, 1, cm-management-traffic-bb45b73b, 2) "
           "cm-management-traffic-low-latency actionSetCos - hw FixedSystem"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video actionSetShape - "
           "hw "
           "FixedSystem"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-scavenger, 1) cm-scavenger "
           "actionSetBandwidth - hw FixedSystem"),
          "cmapByStaticType cpStaticLacp copp-system-lacp",
          "cmapByStaticType cpStaticBgp copp-system-bgp",
          "intfIdToifIndex Ethernet1 1",
          "intfIdToifIndex Ethernet2 2",
      }));

  // cm-scavenger is deleted: its class-map and match rows go, and so do the
  // class row and the action row of the policy map that uses it.
  switch_.cmapType(Qos::mapQos_)->cmapDel("cm-scavenger");
  EXPECT_EQ(
      rows(),
      (Texts{
          "classMapTable (cm-video, 1) cm-video",
          "classMapTable (cm-voice, 1) cm-voice",
          "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
          "classMapTable (copp-system-bgp, 0) copp-system-bgp",
          "classMapTable (copp-system-lacp, 0) copp-system-lacp",
          "classMapTable (cm-management-traffic-bb45b73b, 1) cm-management-traffic-low-latency",
          "classMapMatchTable (cm-video, 1, 1) cm-video matchVlan",
          "classMapMatchTable (cm-video, 1, 2) cm-video matchCos",
          "classMapMatchTable (cm-video, 1, 3) cm-video matchDscp",
          "classMapMatchTable (cm-voice, 1, 1) cm-voice matchIpAccessGroup",
          "classMapMatchTable (cm-voice, 1, 2) cm-voice matchDscp",
          "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
          ("classMapMatchTable (cm-management-traffic-bb45b73b, 1, 1) cm-management-traffic-low-latency "
           "matchMacAccessGroup"),
          "policyMapTable (pm-edge-in, 1) pm-edge-in",
          "policyMapTable (copp-system-policy, 0) copp-system-policy",
          "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
          "policyMapClassTable (pm-edge-in, 1, 1) pm-edge-in cm-voice",
          "policyMapClassTable (pm-edge-in, 1, 3) pm-edge-in cm-management-traffic-bb45b73b",
          "policyMapClassTable (pm-edge-in, 1, 3072) pm-edge-in class-default",
          "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
          "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
          "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
          "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) pm-datacenter-uplinks-egress-shaping "
           "cm-video"),
          "policyMapActionTable (pm-edge-in, 1, cm-voice, 3) cm-voice actionSetDscp - hw FixedSystem",
          ("policyMapActionTable (pm-edge-in, 1, class-default, 6) class-default actionPolice - hw "
           "FixedSystem"),
          ("policyMapActionTable (pm-edge-in, 1, cm-management-traffic-bb45b73b, 2) "
           "cm-management-traffic-low-latency actionSetCos - hw FixedSystem"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video actionSetShape - "
           "hw "
           "FixedSystem"),
          "cmapByStaticType cpStaticLacp copp-system-lacp",
          "cmapByStaticType cpStaticBgp copp-system-bgp",
          "intfIdToifIndex Ethernet1 1",
          "intfIdToifIndex Ethernet2 2",
      }));

  // pm-edge-in is deleted: its policy-map row, every class row (the default
  // class's too) and every action row go.
  switch_.pmapType(Qos::mapQos_)->pmapDel("pm-edge-in");
  EXPECT_EQ(
      rows(),
      (Texts{
          "classMapTable (cm-video, 1) cm-video",
          "classMapTable (cm-voice, 1) cm-voice",
          "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
          "classMapTable (copp-system-bgp, 0) copp-system-bgp",
          "classMapTable (copp-system-lacp, 0) copp-system-lacp",
          "classMapTable (cm-management-traffic-bb45b73b, 1) cm-management-traffic-low-latency",
          "classMapMatchTable (cm-video, 1, 1) cm-video matchVlan",
          "classMapMatchTable (cm-video, 1, 2) cm-video matchCos",
          "classMapMatchTable (cm-video, 1, 3) cm-video matchDscp",
          "classMapMatchTable (cm-voice, 1, 1) cm-voice matchIpAccessGroup",
          "classMapMatchTable (cm-voice, 1, 2) cm-voice matchDscp",
          "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
          ("classMapMatchTable (cm-management-traffic-bb45b73b, 1, 1) cm-management-traffic-low-latency "
           "matchMacAccessGroup"),
          "policyMapTable (copp-system-policy, 0) copp-system-policy",
          "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
          "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
          "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
          "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
          "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
          ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) pm-datacenter-uplinks-egress-shaping "
           "cm-video"),
          ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video actionSetShape - "
           "hw "
           "FixedSystem"),
          "cmapByStaticType cpStaticLacp copp-system-lacp",
          "cmapByStaticType cpStaticBgp copp-system-bgp",
          "intfIdToifIndex Ethernet1 1",
          "intfIdToifIndex Ethernet2 2",
      }));
}

TEST_F(PolicyConfigurationEndToEndTest, EachMachineRemovesExactlyTheRowsItAdded) {
  const auto root = makeRoot();
  ASSERT_EQ(rows(), kAllRows);

  // The QoS class-map machine: the class-map and match rows of the four QoS
  // class maps, nothing else (the classes that name them stay).
  root->classMapTableSmDel(Qos::mapQos_);
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
                "policyMapTable (pm-edge-in, 1) pm-edge-in",
                "policyMapTable (copp-system-policy, 0) copp-system-policy",
                "policyMapTable (pm-datacenter-uplinks-6f906ada, 1) pm-datacenter-uplinks-egress-shaping",
                "policyMapClassTable (pm-edge-in, 1, 1) pm-edge-in cm-voice",
                "policyMapClassTable (pm-edge-in, 1, 2) pm-edge-in cm-video",
                "policyMapClassTable (pm-edge-in, 1, 3) pm-edge-in cm-management-traffic-bb45b73b",
                "policyMapClassTable (pm-edge-in, 1, 3072) pm-edge-in class-default",
                "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
                ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 1) "
                 "pm-datacenter-uplinks-egress-shaping cm-scavenger"),
                ("policyMapClassTable (pm-datacenter-uplinks-6f906ada, 1, 2) "
                 "pm-datacenter-uplinks-egress-shaping cm-video"),
                "policyMapActionTable (pm-edge-in, 1, cm-video, 3) cm-video actionSetDscp - hw FixedSystem",
                "policyMapActionTable (pm-edge-in, 1, cm-video, 6) cm-video actionPolice - hw FixedSystem",
                "policyMapActionTable (pm-edge-in, 1, cm-voice, 3) cm-voice actionSetDscp - hw FixedSystem",
                ("policyMapActionTable (pm-edge-in, 1, class-default, 6) class-default actionPolice - hw "
                 "FixedSystem"),
                ("policyMapActionTable (pm-edge-in, 1, cm-management-traffic-bb45b73b, 2) "
                 "cm-management-traffic-low-latency actionSetCos - hw FixedSystem"),
                ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-video, 0) cm-video "
                 "actionSetShape - hw FixedSystem"),
                ("policyMapActionTable (pm-datacenter-uplinks-6f906ada, 1, cm-scavenger, 1) cm-scavenger "
                 "actionSetBandwidth - hw FixedSystem"),
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
                "intfIdToifIndex Ethernet1 1",
                "intfIdToifIndex Ethernet2 2",
            }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ClassMapTableSm"), 1);

  // The QoS policy-map machine: the policy-map, class and action rows of
  // both QoS policy maps, nothing of the control-plane policy.
  root->policyMapTablesSmDel(Qos::mapQos_);
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (cp-mgmt-ssh, 0) cp-mgmt-ssh",
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "classMapMatchTable (cp-mgmt-ssh, 0, 1) cp-mgmt-ssh matchIpAccessGroup",
                "policyMapTable (copp-system-policy, 0) copp-system-policy",
                "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
                "intfIdToifIndex Ethernet1 1",
                "intfIdToifIndex Ethernet2 2",
            }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyMapTablesSm"), 1);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyActionSm"), 0);

  // The control-plane class-map machine is the one exception: the match
  // machine of a static class map closes once more when dropped, and that
  // close deletes the class-map row under the static class map's own index,
  // which is the row the control-plane machine wrote. So the static classes'
  // class-map rows go with it, while their class rows stay.
  root->classMapTableSmDel(Qos::mapControlPlane_);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapTable (copp-system-policy, 0) copp-system-policy",
                "policyMapClassTable (copp-system-policy, 0, 1) copp-system-policy cp-mgmt-ssh",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-default",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
                "intfIdToifIndex Ethernet1 1",
                "intfIdToifIndex Ethernet2 2",
            }));
}

}  // namespace
