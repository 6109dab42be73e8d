#include "host/snmp/MibView.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/EcnIntfCounterStatus.h"
#include "QosSnmp/core/EcnIntfQueueCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/UniqueId.h"
#include "host/snmp/MibAgentStatus.h"
#include "host/snmp/MibReference.h"
#include "kel/Make.h"

namespace QosSnmpHost {
namespace {

using QosSnmp::QosMib;

using namespace QosSnmpHostTest;  // NOLINT(google-build-using-namespace): the reference's vocabulary

std::vector<VarBind> walk(const MibView& view, const Oid& from) {
  std::vector<VarBind> walked;
  VarBind vb = view.next(from);
  while (vb.exception == SnmpException::none) {
    walked.push_back(vb);
    if (walked.size() > 100000) {
      ADD_FAILURE() << "walk does not end";
      break;
    }
    vb = view.next(vb.oid);
  }
  EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
  return walked;
}

// A switch's MIB model filled directly: every table, entities with distinct
// values, rows with null entities, and rows the MIB cannot name.
class MibViewTest : public ::testing::Test {
 protected:
  MibViewTest() {
    addClassMaps();
    addPolicyMaps();
    addActions();
    addStatistics();
    addServicePolicies();
    addEcnCounters();
  }

  void addClassMaps() {
    cm1_->typeIs(Qos::mapQos_);
    cm1_->cpTypeIs(Qos::classMapCpDynamic_);
    cm1_->matchConditionIs(Qos::matchConditionAll_);
    auto dscp = Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_);
    dscp->valueIs("46");
    cm1_->matchIs(Qos::matchDscp_, dscp);
    auto vlan = Kel::make<Qos::ClassMapMatch>(Qos::matchVlan_);
    vlan->valueIs("10,20-30");
    cm1_->matchIs(Qos::matchVlan_, vlan);
    bgp_->typeIs(Qos::mapControlPlane_);
    bgp_->cpStaticTypeIs(Qos::cpStaticBgp_);

    mib_->classMapTableIs({"cm1", Qos::mapQos_}, cm1_);
    mib_->classMapTableIs({"copp-system-bgp", Qos::mapControlPlane_}, bgp_);
    mib_->classMapTableIs({"gone", Qos::mapQos_}, nullptr);
    mib_->classMapTableIs({std::string(31, 'x'), Qos::mapQos_}, cm1_);  // name too long for the MIB
    mib_->classMapMatchTableIs({"cm1", Qos::mapQos_, 1}, cm1_, dscp);
    mib_->classMapMatchTableIs({"cm1", Qos::mapQos_, 2}, cm1_, vlan);
    mib_->classMapMatchTableIs({"cm1", Qos::mapQos_, 3}, cm1_, nullptr);
    mib_->classMapMatchTableIs({"cm1", Qos::mapQos_, 0}, cm1_, dscp);  // match index counts from 1
  }

  void addPolicyMaps() {
    pm1_->typeIs(Qos::mapQos_);
    auto prio1 = Kel::make<Qos::ClassPriority>(1);
    prio1->cmapNameIs("cm1");
    pm1_->classPrioIs(1, prio1);
    auto prio2 = Kel::make<Qos::ClassPriority>(3072);
    prio2->cmapNameIs("class-default");
    pm1_->classPrioIs(3072, prio2);
    pm1_->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-default"));
    mib_->policyMapTableIs({"pm1", Qos::mapQos_}, pm1_);
    mib_->policyMapTableIs({"copp-system-policy", Qos::mapControlPlane_}, coppPolicy_);
    mib_->policyMapClassTableIs({"pm1", Qos::mapQos_, 1}, pm1_, "cm1");
    mib_->policyMapClassTableIs({"pm1", Qos::mapQos_, 3072}, pm1_, "class-default");
    mib_->policyMapClassTableIs({"copp-system-policy", Qos::mapControlPlane_, 4294967295U}, coppPolicy_,
                                "copp-system-bgp");
  }

  void addActions() {
    auto classAction = Kel::make<Qos::ClassAction>("cm1");
    police_->rateIs(5000000000ULL);
    police_->rateUnitIs(Qos::rateUnitKbps_);
    police_->burstSizeIs(64000);
    police_->peakRateIs(6000000000ULL);
    police_->peakBurstSizeIs(128000);
    classAction->policyActionIs(Qos::actionPolice_, police_);
    auto setDscp = Kel::make<Qos::Action>(Qos::actionSetDscp_);
    setDscp->valueIs(46);
    classAction->policyActionIs(Qos::actionSetDscp_, setDscp);
    mib_->policyMapActionTableIs({"pm1", Qos::mapQos_, "cm1", Qos::actionPolice_}, classAction, police_,
                                 nullptr, hwStatus_, slice_);
    mib_->policyMapActionTableIs({"pm1", Qos::mapQos_, "cm1", Qos::actionSetDscp_}, classAction, setDscp,
                                 nullptr, hwStatus_, slice_);
    bgpHw_->programmingStatusIs(Qos::hwStatusProgrammed_);
    bgpHw_->shapeRateIs(1000);
    bgpHw_->bandwidthIs(2000);
    for (const Kel::S32 actionType : {0, 1}) {
      mib_->policyMapActionTableIs(
          {"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", actionType}, nullptr, nullptr,
          bgpHw_, hwStatus_, slice_);
    }
    mib_->policyMapActionTableIs({"pm1", Qos::mapQos_, "cm1", 8}, nullptr, nullptr, nullptr, nullptr,
                                 nullptr);  // not an action type the MIB knows
  }

  void addStatistics() {
    cm1Counter_->packetsIs(100);
    cm1Counter_->bytesIs(6400);
    cm1Counter_->droppedPacketsIs(3);
    cm1Counter_->droppedBytesIs(192);
    auto cm1Hw = Kel::make<Qos::ClassMapHwStatus>("cm1");
    cm1Hw->programmingStatusIs(Qos::hwStatusError_);
    mib_->qosStatsTableIs({"pm1", Qos::mapQos_, "cm1", 1}, cm1Hw, cm1Counter_);
    mib_->qosStatsTableIs({"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", 0}, nullptr,
                          bgpCounter_);
    mib_->qosStatsTableIs({"pm1", Qos::mapQos_, "cm1", -1}, cm1Hw, cm1Counter_);  // negative qualifier

    policer_->conformedPacketsIs(1);
    policer_->conformedBytesIs(2);
    policer_->exceededPacketsIs(3);
    policer_->exceededBytesIs(4);
    policer_->violatedPacketsIs(5);
    policer_->violatedBytesIs(6);
    mib_->qosPolicerStatsTableIs({"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", 0},
                                 policer_);
    mib_->qosPolicerStatsTableIs({"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", 12},
                                 policer_);
  }

  void addServicePolicies() {
    mib_->servicePolicyTableIs({12, Qos::directionInput_}, "pm1",
                               Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionInput_, "pm1"));
    mib_->servicePolicyTableIs({12, Qos::directionOutput_}, "pm1",
                               Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionOutput_, "pm1"));
    mib_->servicePolicyTableIs({2147483647, Qos::directionInput_}, "pm1",
                               Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionInput_, "pm1"));
    mib_->servicePolicyTableIs(
        {0, Qos::directionInput_}, "pm1",
        Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionInput_, "pm1"));  // no ifIndex
  }

  void addEcnCounters() {
    chip0_->ecnMarkedPacketsIs(7);
    chip0_->ecnMarkedBytesIs(700);
    chip0_->ecnDroppedPacketsIs(9);
    mib_->ecnCounterTableIs("chip10", Kel::make<Qos::ChipCounter>("chip10"), 0);
    mib_->ecnCounterTableIs("chip0", chip0_, 0);
    mib_->ecnCounterTableIs("", nullptr, 0);

    const Pellix::IntfId eth12("Ethernet12");
    auto queues = Kel::make<Qos::EcnIntfQueueCounter>(eth12);
    queues->queueMarkedPacketsIs(1, 11);
    queues->queueMarkedBytesIs(1, 1100);
    ecnCounters_->intfQueueCounterIs(eth12, queues);
    auto intfHw = Kel::make<Qos::EcnIntfCounterStatus>(eth12);
    intfHw->programmingStatusIs(Qos::hwStatusProgrammed_);
    slice_->ecnIntfCounterHwStatusIs(eth12, intfHw);
    for (const Kel::U8 queue : {0, 1, 255}) {
      mib_->ecnQueueCounterTableIs({12, queue}, eth12, slice_, ecnCounters_, true);
    }
    mib_->ecnQueueCounterTableIs({13, 0}, Pellix::IntfId("Ethernet13"), nullptr, nullptr, false);
  }

  VarBind get(std::uint32_t table, std::uint32_t column, const Oid& index) const {
    return view_.get(instance(table, column, index));
  }
  std::string rendered(std::uint32_t table, std::uint32_t column, const Oid& index) const {
    return MibView::render(get(table, column, index));
  }

  Kel::Ptr<QosMib> mib_ = Kel::make<QosMib>();
  MibView view_{*mib_};
  Kel::Ptr<Qos::ClassMapStatus> cm1_ = Kel::make<Qos::ClassMapStatus>("cm1");
  Kel::Ptr<Qos::ClassMapStatus> bgp_ = Kel::make<Qos::ClassMapStatus>("copp-system-bgp");
  Kel::Ptr<Qos::PolicyMapStatus> pm1_ = Kel::make<Qos::PolicyMapStatus>("pm1");
  Kel::Ptr<Qos::PolicyMapStatus> coppPolicy_ = Kel::make<Qos::PolicyMapStatus>("copp-system-policy");
  Kel::Ptr<Qos::Action> police_ = Kel::make<Qos::Action>(Qos::actionPolice_);
  Kel::Ptr<Qos::ClassMapHwStatus> bgpHw_ = Kel::make<Qos::ClassMapHwStatus>("copp-system-bgp");
  Kel::Ptr<Qos::HwStatus> hwStatus_ = Kel::make<Qos::HwStatus>();
  Kel::Ptr<Qos::SliceHwStatus> slice_ = Kel::make<Qos::SliceHwStatus>("slice0");
  Kel::Ptr<Qos::Counter> cm1Counter_ = Kel::make<Qos::Counter>("cm1");
  Kel::Ptr<Qos::Counter> bgpCounter_ = Kel::make<Qos::Counter>("copp-system-bgp");
  Kel::Ptr<Qos::PolicerHwStatus> policer_ = Kel::make<Qos::PolicerHwStatus>("Ethernet12");
  Kel::Ptr<Qos::ChipCounter> chip0_ = Kel::make<Qos::ChipCounter>("chip0");
  Kel::Ptr<Qos::EcnCounterTable> ecnCounters_ = Kel::make<Qos::EcnCounterTable>();
};

TEST_F(MibViewTest, WalkFromModuleRootVisitsEveryInstanceInIncreasingOidOrderThenEnds) {
  const std::vector<VarBind> walked =
      walk(view_, Oid(MibView::moduleOid().begin(), MibView::moduleOid().end()));
  std::vector<Oid> oids;
  oids.reserve(walked.size());
  for (const VarBind& vb : walked) {
    oids.push_back(vb.oid);
  }
  for (std::size_t i = 1; i < oids.size(); ++i) {
    EXPECT_LT(oids[i - 1], oids[i]) << MibView::oidName(oids[i]);
  }
  EXPECT_EQ(oids, expectedInstances(*mib_));
  // Every table shows up.
  std::set<std::uint32_t> tables;
  for (const Oid& oid : oids) {
    tables.insert(oid[kObjects.size()]);
  }
  EXPECT_EQ(tables.size(), 11U);  // and the agent group
}

TEST_F(MibViewTest, GetOfEveryWalkedInstanceAnswersTheWalkedValue) {
  for (const VarBind& walked : walk(view_, {})) {
    const VarBind got = view_.get(walked.oid);
    EXPECT_EQ(got.exception, SnmpException::none) << MibView::oidName(walked.oid);
    EXPECT_EQ(got.oid, walked.oid);
    EXPECT_EQ(got.value, walked.value) << MibView::oidName(walked.oid);
  }
}

TEST_F(MibViewTest, WalkedValuesHaveTheirColumnsTypes) {
  for (const VarBind& vb : walk(view_, {})) {
    if (vb.oid[kObjects.size()] == kAgentGroup) {
      EXPECT_EQ(vb.value.type, MibView::agentScalars()[vb.oid[kObjects.size() + 1] - 1].type);
      continue;
    }
    const auto& table = MibView::tables()[vb.oid[kObjects.size()] - 1];
    const auto& column = table.columns[vb.oid[kObjects.size() + 2] - 1];
    EXPECT_TRUE(column.accessible);
    EXPECT_EQ(vb.value.type, column.type) << MibView::oidName(vb.oid);
  }
}

TEST_F(MibViewTest, ClassMapColumnsRenderTheClassMap) {
  const Oid cm1 = cat({nameOid("cm1"), {1}});
  EXPECT_EQ(rendered(kClassMapTable, 3, cm1), "qosClassMapCpType.3.99.109.49.1 = 1");
  EXPECT_EQ(rendered(kClassMapTable, 5, cm1), "qosClassMapMatchCondition.3.99.109.49.1 = 1");
  EXPECT_EQ(rendered(kClassMapTable, 6, cm1), "qosClassMapMatchRules.3.99.109.49.1 = 2");
  EXPECT_EQ(get(kClassMapTable, 4, cat({nameOid("copp-system-bgp"), {0}})).value, SnmpValue::integer32Is(10));
  EXPECT_EQ(rendered(kClassMapMatchTable, 4, cat({cm1, {1}})), "qosClassMapMatchOption.3.99.109.49.1.1 = 6");
  EXPECT_EQ(rendered(kClassMapMatchTable, 5, cat({cm1, {2}})),
            "qosClassMapMatchValue.3.99.109.49.1.2 = \"10,20-30\"");
}

TEST_F(MibViewTest, PolicyMapColumnsRenderThePolicyMapAndItsClasses) {
  const Oid pm1 = cat({nameOid("pm1"), {1}});
  EXPECT_EQ(get(kPolicyMapTable, 3, pm1).value, SnmpValue::unsigned32Is(2));
  EXPECT_EQ(get(kPolicyMapTable, 4, pm1).value, SnmpValue::octetStringIs("class-default"));
  EXPECT_EQ(get(kPolicyMapTable, 4, cat({nameOid("copp-system-policy"), {0}})).value,
            SnmpValue::octetStringIs(""));
  EXPECT_EQ(get(kPolicyMapClassTable, 4, cat({pm1, {3072}})).value,
            SnmpValue::octetStringIs("class-default"));
  EXPECT_EQ(get(kPolicyMapClassTable, 4, cat({nameOid("copp-system-policy"), {0, 4294967295U}})).value,
            SnmpValue::octetStringIs("copp-system-bgp"));
}

TEST_F(MibViewTest, ActionColumnsRenderTheActionAndTheClassHardwareStatus) {
  const Oid police = cat({nameOid("pm1"), {1}, nameOid("cm1"), {Qos::actionPolice_}});
  EXPECT_EQ(get(kPolicyMapActionTable, 6, police).value, SnmpValue::counter64Is(5000000000ULL));
  EXPECT_EQ(get(kPolicyMapActionTable, 7, police).value, SnmpValue::integer32Is(Qos::rateUnitKbps_));
  EXPECT_EQ(get(kPolicyMapActionTable, 8, police).value, SnmpValue::counter64Is(64000));
  EXPECT_EQ(get(kPolicyMapActionTable, 9, police).value, SnmpValue::counter64Is(6000000000ULL));
  EXPECT_EQ(get(kPolicyMapActionTable, 10, police).value, SnmpValue::counter64Is(128000));
  const Oid dscp = cat({nameOid("pm1"), {1}, nameOid("cm1"), {Qos::actionSetDscp_}});
  EXPECT_EQ(get(kPolicyMapActionTable, 5, dscp).value, SnmpValue::unsigned32Is(46));
  const Oid hw = cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {1}});
  EXPECT_EQ(get(kPolicyMapActionTable, 11, hw).value, SnmpValue::integer32Is(Qos::hwStatusProgrammed_));
  EXPECT_EQ(get(kPolicyMapActionTable, 12, hw).value, SnmpValue::counter64Is(1000));
  EXPECT_EQ(get(kPolicyMapActionTable, 13, hw).value, SnmpValue::counter64Is(2000));
}

TEST_F(MibViewTest, NullEntitiesRenderAsZeroOrEmpty) {
  const Oid gone = cat({nameOid("gone"), {1}});
  for (const std::uint32_t column : {3, 4, 5}) {
    EXPECT_EQ(get(kClassMapTable, column, gone).value, SnmpValue::integer32Is(0));
  }
  EXPECT_EQ(get(kClassMapTable, 6, gone).value, SnmpValue::unsigned32Is(0));
  EXPECT_EQ(get(kClassMapMatchTable, 5, cat({nameOid("cm1"), {1, 3}})).value, SnmpValue::octetStringIs(""));
  // A hardware-only action row has no configured action; a configured one no hardware status.
  const Oid hw = cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {0}});
  EXPECT_EQ(get(kPolicyMapActionTable, 6, hw).value, SnmpValue::counter64Is(0));
  const Oid police = cat({nameOid("pm1"), {1}, nameOid("cm1"), {Qos::actionPolice_}});
  EXPECT_EQ(get(kPolicyMapActionTable, 11, police).value, SnmpValue::integer32Is(Qos::hwStatusUnknown_));
  // Control-plane statistics have no class hardware status.
  EXPECT_EQ(get(kQosStatsTable, 9, cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {0}}))
                .value,
            SnmpValue::integer32Is(Qos::hwStatusUnknown_));
  EXPECT_EQ(get(kEcnCounterTable, 2, nameOid("")).value, SnmpValue::counter64Is(0));
  EXPECT_EQ(get(kEcnQueueCounterTable, 4, {13, 0}).value, SnmpValue::counter64Is(0));
  EXPECT_EQ(get(kEcnQueueCounterTable, 6, {13, 0}).value, SnmpValue::integer32Is(Qos::hwStatusUnknown_));
}

TEST_F(MibViewTest, StatisticsColumnsRenderTheCounters) {
  const Oid stats = cat({nameOid("pm1"), {1}, nameOid("cm1"), {1}});
  EXPECT_EQ(get(kQosStatsTable, 5, stats).value, SnmpValue::counter64Is(100));
  EXPECT_EQ(get(kQosStatsTable, 6, stats).value, SnmpValue::counter64Is(6400));
  EXPECT_EQ(get(kQosStatsTable, 7, stats).value, SnmpValue::counter64Is(3));
  EXPECT_EQ(get(kQosStatsTable, 8, stats).value, SnmpValue::counter64Is(192));
  EXPECT_EQ(get(kQosStatsTable, 9, stats).value, SnmpValue::integer32Is(Qos::hwStatusError_));
  const Oid policer = cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {12}});
  for (std::uint32_t column = 5; column <= 10; ++column) {
    EXPECT_EQ(get(kQosPolicerStatsTable, column, policer).value, SnmpValue::counter64Is(column - 4));
  }
  // The policer row of an interface without ifIndex is served under 0.
  EXPECT_EQ(get(kQosPolicerStatsTable, 5,
                cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {0}}))
                .exception,
            SnmpException::none);
}

TEST_F(MibViewTest, ServicePolicyAndEcnColumnsRenderTheirRows) {
  EXPECT_EQ(rendered(kServicePolicyTable, 3, {12, 2}), "qosServicePolicyPmapName.12.2 = \"pm1\"");
  EXPECT_EQ(rendered(kServicePolicyTable, 4, {12, 2}), "qosServicePolicyPmapType.12.2 = 1");
  EXPECT_EQ(get(kEcnCounterTable, 2, nameOid("chip0")).value, SnmpValue::counter64Is(7));
  EXPECT_EQ(get(kEcnCounterTable, 3, nameOid("chip0")).value, SnmpValue::counter64Is(700));
  EXPECT_EQ(get(kEcnCounterTable, 4, nameOid("chip0")).value, SnmpValue::counter64Is(9));
  EXPECT_EQ(rendered(kEcnQueueCounterTable, 3, {12, 1}), "qosEcnQueueCounterIntfName.12.1 = \"Ethernet12\"");
  EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 1}).value, SnmpValue::counter64Is(11));
  EXPECT_EQ(get(kEcnQueueCounterTable, 5, {12, 1}).value, SnmpValue::counter64Is(1100));
  EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 0}).value, SnmpValue::counter64Is(0));
  EXPECT_EQ(get(kEcnQueueCounterTable, 6, {12, 0}).value, SnmpValue::integer32Is(Qos::hwStatusProgrammed_));
  EXPECT_EQ(get(kEcnQueueCounterTable, 7, {12, 0}).value, SnmpValue::integer32Is(1));  // true
  EXPECT_EQ(get(kEcnQueueCounterTable, 7, {13, 0}).value, SnmpValue::integer32Is(2));  // false
}

TEST_F(MibViewTest, CountersAreReadLiveWithoutTouchingTheRow) {
  const Oid stats = cat({nameOid("pm1"), {1}, nameOid("cm1"), {1}});
  const auto rowBefore = *mib_->qosStatsTable({"pm1", 1, "cm1", 1});
  cm1Counter_->packetsIs(12345678901234ULL);
  chip0_->ecnMarkedPacketsIs(8);
  policer_->violatedBytesIs(66);
  police_->rateIs(42);
  EXPECT_EQ(*mib_->qosStatsTable({"pm1", 1, "cm1", 1}), rowBefore);
  EXPECT_EQ(get(kQosStatsTable, 5, stats).value, SnmpValue::counter64Is(12345678901234ULL));
  EXPECT_EQ(get(kEcnCounterTable, 2, nameOid("chip0")).value, SnmpValue::counter64Is(8));
  EXPECT_EQ(get(kQosPolicerStatsTable, 10,
                cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {12}}))
                .value,
            SnmpValue::counter64Is(66));
  EXPECT_EQ(
      get(kPolicyMapActionTable, 6, cat({nameOid("pm1"), {1}, nameOid("cm1"), {Qos::actionPolice_}})).value,
      SnmpValue::counter64Is(42));
  // The walk reads them live too.
  const VarBind next =
      view_.next(instance(kQosStatsTable, 5, cat({nameOid("pm1"), {1}, nameOid("cm1"), {0}})));
  EXPECT_EQ(next.oid, instance(kQosStatsTable, 5, stats));
  EXPECT_EQ(next.value, SnmpValue::counter64Is(12345678901234ULL));
}

TEST_F(MibViewTest, GetOutsideAReadableColumnAnswersNoSuchObject) {
  const Oid cm1 = cat({nameOid("cm1"), {1}});
  const std::vector<Oid> oids = {
      {},
      {1, 3, 6, 1, 2, 1, 1, 1, 0},
      Oid(MibView::moduleOid().begin(), MibView::moduleOid().end()),
      kObjects,
      cat({kObjects, {kClassMapTable}}),
      cat({kObjects, {kClassMapTable, 1}}),
      instance(kClassMapTable, 1, cm1),              // index column
      instance(kClassMapTable, 2, cm1),              // index column
      instance(kClassMapTable, 0, cm1),              // no column 0
      instance(kClassMapTable, 8, cm1),              // past the last column
      cat({kObjects, {kClassMapTable, 2, 3}, cm1}),  // not the entry
      instance(0, 3, cm1),
      instance(12, 3, cm1),
      cat({kObjects, {kAgentGroup}}),
      cat({kObjects, {kAgentGroup, 0, 0}}),
      cat({kObjects, {kAgentGroup, 5, 0}}),
      {1, 3, 6, 1, 4, 1, 32473, 2, 1, 1, 1, 3},
  };
  for (const Oid& oid : oids) {
    const VarBind vb = view_.get(oid);
    EXPECT_EQ(vb.exception, SnmpException::noSuchObject) << MibView::oidName(oid);
    EXPECT_EQ(vb.oid, oid);
  }
}

TEST_F(MibViewTest, GetOfAReadableColumnWithoutSuchRowAnswersNoSuchInstance) {
  const std::vector<Oid> indexes = {
      {},
      nameOid("cm1"),                  // type missing
      cat({nameOid("cm1"), {1, 0}}),   // one too many
      cat({nameOid("cm2"), {1}}),      // no such class map
      cat({nameOid("cm1"), {0}}),      // no such type
      cat({nameOid("cm1"), {3}}),      // a type the MIB does not know
      {4, 'c', 'm', '1', 1},           // length and bytes disagree
      {3, 'c', 'm', 0x131, 1},         // not a byte
      cat({{31}, Oid(31, 'x'), {1}}),  // a name too long for the MIB, although a row has it
      {0xFFFFFFFF},
  };
  for (const Oid& index : indexes) {
    const VarBind vb = get(kClassMapTable, 3, index);
    EXPECT_EQ(vb.exception, SnmpException::noSuchInstance) << MibView::oidName(vb.oid);
  }
  EXPECT_EQ(get(kServicePolicyTable, 3, {0, 1}).exception, SnmpException::noSuchInstance);
  EXPECT_EQ(get(kServicePolicyTable, 3, {0xFFFFFFFF, 1}).exception, SnmpException::noSuchInstance);
  EXPECT_EQ(get(kQosStatsTable, 5, cat({nameOid("pm1"), {1}, nameOid("cm1"), {0xFFFFFFFF}})).exception,
            SnmpException::noSuchInstance);
}

TEST_F(MibViewTest, RowsTheMibCannotNameAreNeitherWalkedNorAnswered) {
  ASSERT_TRUE(mib_->classMapTable({std::string(31, 'x'), Qos::mapQos_}));
  ASSERT_TRUE(mib_->qosStatsTable({"pm1", 1, "cm1", -1}));
  ASSERT_TRUE(mib_->servicePolicyTable({0, Qos::directionInput_}));
  const std::size_t table = kObjects.size();
  const std::size_t index = table + 3;
  std::size_t classMaps = 0;
  for (const VarBind& vb : walk(view_, {})) {
    if (vb.oid[table] == kClassMapTable) {
      ++classMaps;
      EXPECT_LE(vb.oid[index], 30U) << MibView::oidName(vb.oid);
    }
    if (vb.oid[table] == kServicePolicyTable) {
      EXPECT_NE(vb.oid[index], 0U) << MibView::oidName(vb.oid);
    }
    if (vb.oid[table] == kQosStatsTable) {
      EXPECT_NE(vb.oid.back(), 0xFFFFFFFFU) << MibView::oidName(vb.oid);
    }
  }
  // Three class maps the MIB can name, five columns each.
  EXPECT_EQ(classMaps, 3U * 5U);
}

// Probes near and far from the instances, compared with a brute-force
// search of the sorted list of every instance.
TEST_F(MibViewTest, NextOfAnyOidIsTheFirstInstanceAfterIt) {
  const std::vector<Oid> all = expectedInstances(*mib_);
  ASSERT_GT(all.size(), 50U);
  std::vector<Oid> probes = {{},
                             {0},
                             {1, 3, 6, 1, 4, 1, 32473},
                             {1, 3, 6, 1, 4, 1, 32473, 1},
                             {1, 3, 6, 1, 4, 1, 32473, 1, 0},
                             kObjects,
                             cat({kObjects, {0}}),
                             cat({kObjects, {11}}),
                             cat({kObjects, {0xFFFFFFFF}}),
                             {1, 3, 6, 1, 4, 1, 32473, 1, 2},
                             {1, 3, 6, 1, 4, 1, 32473, 2},
                             {2},
                             {0xFFFFFFFF, 0xFFFFFFFF}};
  for (std::uint32_t table = 1; table <= 10; ++table) {
    for (const std::uint32_t entry : {0U, 1U, 2U}) {
      probes.push_back(cat({kObjects, {table, entry}}));
      for (std::uint32_t column = 0; column <= 14; ++column) {
        probes.push_back(cat({kObjects, {table, entry, column}}));
        probes.push_back(cat({kObjects, {table, entry, column, 0xFFFFFFFF}}));
      }
    }
  }
  for (const Oid& oid : all) {
    for (std::size_t cut = kObjects.size(); cut < oid.size(); ++cut) {
      probes.emplace_back(oid.begin(), oid.begin() + static_cast<std::ptrdiff_t>(cut));
    }
    probes.push_back(oid);
    probes.push_back(cat({oid, {0}}));
    for (std::size_t i = kObjects.size(); i < oid.size(); ++i) {
      for (const std::uint32_t delta : {1U, 0xFFFFFFFFU}) {
        Oid nudged = oid;
        nudged[i] += delta;
        probes.push_back(nudged);
        nudged.resize(i + 1);
        probes.push_back(nudged);
      }
      Oid huge = oid;
      huge[i] = 0xFFFFFFFF;
      probes.push_back(huge);
      Oid notAByte = oid;
      notAByte[i] = 256;
      probes.push_back(notAByte);
    }
  }
  std::mt19937 random(7);
  for (int i = 0; i < 5000; ++i) {
    Oid garbage = kObjects;
    garbage.resize(std::uniform_int_distribution<std::size_t>(0, kObjects.size())(random));
    const std::size_t extra = std::uniform_int_distribution<std::size_t>(0, 14)(random);
    for (std::size_t k = 0; k < extra; ++k) {
      switch (std::uniform_int_distribution<int>(0, 3)(random)) {
        case 0:
          garbage.push_back(std::uniform_int_distribution<std::uint32_t>(0, 14)(random));
          break;
        case 1:
          garbage.push_back(std::uniform_int_distribution<std::uint32_t>('a', 'z')(random));
          break;
        case 2:
          garbage.push_back(std::uniform_int_distribution<std::uint32_t>(250, 260)(random));
          break;
        default:
          garbage.push_back(static_cast<std::uint32_t>(random()));
          break;
      }
    }
    probes.push_back(garbage);
  }

  for (const Oid& probe : probes) {
    const auto expected = std::upper_bound(all.begin(), all.end(), probe);
    const VarBind vb = view_.next(probe);
    if (expected == all.end()) {
      ASSERT_EQ(vb.exception, SnmpException::endOfMibView) << MibView::oidName(probe);
    } else {
      ASSERT_EQ(vb.exception, SnmpException::none) << MibView::oidName(probe);
      ASSERT_EQ(vb.oid, *expected) << "after " << MibView::oidName(probe) << " got "
                                   << MibView::oidName(vb.oid);
    }
  }
}

TEST_F(MibViewTest, WalkStepsMatchAFreshViewWhileRowsComeAndGo) {
  // view_ keeps the instance it answered last and continues from it; a fresh
  // view decodes every requested OID.
  VarBind vb = view_.next(Oid{});
  for (int step = 0; vb.exception == SnmpException::none && step < 100000; ++step) {
    switch (step) {
      case 0:  // after the walk's first row (cm1)
        mib_->classMapTableIs({"cm2", Qos::mapQos_}, cm1_);
        break;
      case 1:  // the row just answered
        mib_->classMapTableDel({"cm2", Qos::mapQos_});
        break;
      case 2:  // the row the walk would visit next
        mib_->classMapTableDel({"copp-system-bgp", Qos::mapControlPlane_});
        break;
      case 3:  // a row before the walk's position
        mib_->classMapTableIs({"cm0", Qos::mapQos_}, cm1_);
        break;
      default:
        break;
    }
    const VarBind expected = MibView(*mib_).next(vb.oid);
    vb = view_.next(vb.oid);
    ASSERT_EQ(vb.oid, expected.oid) << "step " << step;
    ASSERT_EQ(vb.exception, expected.exception) << "step " << step;
    ASSERT_EQ(vb.value, expected.value) << "step " << step;
  }
  EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
}

// The walk steps through a table's rows once per column; these changes hit
// a pass while it records the table's order, after it completed it, and
// while later passes use it: rows added and deleted before, at and after
// the walk's position, and at either end of the table.
TEST_F(MibViewTest, WalkStepsMatchAFreshViewWhileManyRowsComeAndGo) {
  for (const unsigned seed : {1U, 2U, 3U, 4U, 5U, 6U}) {
    QosMib& mib = *mib_;
    std::mt19937 random(seed);
    std::vector<QosSnmp::ClassMapTableIndex> present;
    auto nameOf = [](int i) { return Snmp::String("cm" + std::to_string(100 + i)); };
    for (int i = 0; i < 40; i += 2) {
      present.emplace_back(nameOf(i), Qos::mapQos_);
      mib.classMapTableIs(present.back(), cm1_);
    }
    // Seeds 1 to 3 change the table often; 4 to 6 seldom, so that whole
    // passes use the recorded order between changes.
    const int oneIn = seed <= 3 ? 4 : 40;
    MibView view(mib);
    VarBind vb;
    view.next(Oid{}, vb);
    int steps = 0;
    while (vb.exception == SnmpException::none && steps < 100000) {
      if (std::uniform_int_distribution<int>(0, oneIn - 1)(random) == 0) {
        const int i = std::uniform_int_distribution<int>(-1, 41)(random);
        const QosSnmp::ClassMapTableIndex index(i < 0 ? Snmp::String("a") : nameOf(i), Qos::mapQos_);
        const auto it = std::find(present.begin(), present.end(), index);
        if (it == present.end()) {
          mib.classMapTableIs(index, cm1_);
          present.push_back(index);
        } else {
          mib.classMapTableDel(index);
          present.erase(it);
        }
      }
      const Oid asked = vb.oid;
      const VarBind expected = MibView(mib).next(asked);
      view.next(vb.oid, vb);
      ASSERT_EQ(vb.oid, expected.oid) << "seed " << seed << " step " << steps;
      ASSERT_EQ(vb.exception, expected.exception) << "seed " << seed << " step " << steps;
      ASSERT_EQ(vb.value, expected.value) << "seed " << seed << " step " << steps;
      ++steps;
    }
    EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
    EXPECT_GT(steps, 100) << "seed " << seed;
    for (const auto& index : present) {
      mib.classMapTableDel(index);
    }
  }
}

TEST_F(MibViewTest, AnswersIntoAReusedVarBindMatchAFreshViewWhileRowsComeAndGo) {
  // One VarBind carries the walk, as the front end keeps one across
  // varbinds: every step is written over the previous answer (longer and
  // shorter OIDs and texts, other types, exceptions), and a GET between the
  // steps writes over a second reused VarBind.
  const std::string longCmap = "class-" + std::string(60, 'c');
  VarBind vb;
  view_.next(Oid{}, vb);
  VarBind got;
  int steps = 0;
  for (int step = 0; vb.exception == SnmpException::none && step < 100000; ++step, ++steps) {
    switch (step) {
      case 0:  // after the walk's first row: a row with a long full name
        mib_->classMapTableIs({QosSnmp::uniqueId(Kel::String(longCmap)), Qos::mapQos_},
                              Kel::make<Qos::ClassMapStatus>(Kel::String(longCmap)));
        break;
      case 2:  // the row the walk would visit next
        mib_->classMapTableDel({"copp-system-bgp", Qos::mapControlPlane_});
        break;
      case 5:
        mib_->classMapTableIs({"cm0", Qos::mapQos_}, cm1_);
        break;
      default:
        break;
    }
    const Oid asked = vb.oid;
    const VarBind expected = MibView(*mib_).next(asked);
    view_.next(vb.oid, vb);
    ASSERT_EQ(vb.oid, expected.oid) << "step " << step;
    ASSERT_EQ(vb.exception, expected.exception) << "step " << step;
    ASSERT_EQ(vb.value, expected.value) << "step " << step;
    // GET of the instance just answered, of one that is not there, and of
    // something that is no column.
    for (const Oid& probe : {vb.oid, cat({vb.oid, {0}}), cat({kObjects, {3, 1, 1}})}) {
      view_.get(probe, got);
      const VarBind fresh = MibView(*mib_).get(probe);
      ASSERT_EQ(got.oid, fresh.oid) << "step " << step;
      ASSERT_EQ(got.exception, fresh.exception) << "step " << step;
      ASSERT_EQ(got.value, fresh.value) << "step " << step;
    }
  }
  EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
  EXPECT_EQ(steps + 1, static_cast<int>(expectedInstances(*mib_).size()));
}

TEST_F(MibViewTest, AnswerIntoAVarBindOverwritesEveryField) {
  const Oid instanceOid = instance(kClassMapTable, 3, cat({nameOid("cm1"), {1}}));
  const Oid missing = instance(kClassMapTable, 3, cat({nameOid("cm9"), {1}}));
  const Oid scalar = cat({kObjects, {kAgentGroup, 1, 0}});
  auto stale = [] {
    VarBind vb;
    vb.oid = Oid(200, 7);
    vb.exception = SnmpException::noSuchObject;
    vb.value = SnmpValue::octetStringIs(std::string(300, 'x'));
    vb.value.integer = -5;
    vb.value.number = 99;
    return vb;
  };
  const Oid last = expectedInstances(*mib_).back();
  for (const Oid& probe : {instanceOid, missing, scalar, kObjects, last, Oid{2}}) {
    for (const bool next : {false, true}) {
      VarBind into = stale();
      const VarBind fresh = next ? MibView(*mib_).next(probe) : MibView(*mib_).get(probe);
      if (next) {
        view_.next(probe, into);
      } else {
        view_.get(probe, into);
      }
      EXPECT_EQ(into.oid, fresh.oid) << MibView::oidName(probe) << (next ? " next" : " get");
      EXPECT_EQ(into.exception, fresh.exception) << MibView::oidName(probe);
      EXPECT_EQ(into.value, fresh.value) << MibView::oidName(probe);
    }
  }
}

TEST_F(MibViewTest, QueriesMayViewTheirOwnAnswersOid) {
  // The OID asked may be the answer's own storage, whole or in part.
  const std::vector<VarBind> walked = walk(view_, {});
  VarBind vb = view_.next(Oid{});
  for (std::size_t i = 1; i < walked.size(); ++i) {
    view_.next(vb.oid, vb);
    ASSERT_EQ(vb.oid, walked[i].oid);
    ASSERT_EQ(vb.value, walked[i].value);
  }
  view_.next(vb.oid, vb);
  EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
  EXPECT_EQ(vb.oid, walked.back().oid);

  vb = walked.front();
  view_.get(vb.oid, vb);
  EXPECT_EQ(vb.oid, walked.front().oid);
  EXPECT_EQ(vb.value, walked.front().value);
  // A prefix of itself: no instance there.
  view_.get(OidSpan(vb.oid).first(kObjects.size() + 2), vb);
  EXPECT_EQ(vb.exception, SnmpException::noSuchObject);
  EXPECT_EQ(vb.oid, cat({kObjects, {kClassMapTable, 1}}));
  // A tail of itself, which lies outside the module: nothing after it.
  vb = walked.front();
  const Oid tail(vb.oid.begin() + 1, vb.oid.end());
  view_.next(OidSpan(vb.oid).subspan(1), vb);
  EXPECT_EQ(vb.exception, SnmpException::endOfMibView);
  EXPECT_EQ(vb.oid, tail);
}

TEST_F(MibViewTest, WhileTheModelIsHeldUnchangedAWalkMatchesAFreshView) {
  const std::vector<VarBind> fresh = walk(MibView(*mib_), {});
  const MibView::ModelUnchanged unchanged(view_);
  const MibView::ModelUnchanged nested(view_);
  const std::vector<VarBind> held = walk(view_, {});
  ASSERT_EQ(held.size(), fresh.size());
  for (std::size_t i = 0; i < held.size(); ++i) {
    EXPECT_EQ(held[i].oid, fresh[i].oid);
    EXPECT_EQ(held[i].value, fresh[i].value) << MibView::oidName(held[i].oid);
  }
}

TEST_F(MibViewTest, InterfaceLookupsAreNotReusedAcrossModelChanges) {
  // Ethernet12's queues read their counters and hardware status through
  // the interface; between two holds the model replaces both.
  const Pellix::IntfId eth12("Ethernet12");
  {
    const MibView::ModelUnchanged unchanged(view_);
    EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 1}).value, SnmpValue::counter64Is(11));
    EXPECT_EQ(get(kEcnQueueCounterTable, 6, {12, 1}).value, SnmpValue::integer32Is(Qos::hwStatusProgrammed_));
  }
  auto queues = Kel::make<Qos::EcnIntfQueueCounter>(eth12);
  queues->queueMarkedPacketsIs(1, 22);
  ecnCounters_->intfQueueCounterIs(eth12, queues);
  auto intfHw = Kel::make<Qos::EcnIntfCounterStatus>(eth12);
  intfHw->programmingStatusIs(Qos::hwStatusError_);
  slice_->ecnIntfCounterHwStatusIs(eth12, intfHw);
  {
    const MibView::ModelUnchanged unchanged(view_);
    EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 1}).value, SnmpValue::counter64Is(22));
    EXPECT_EQ(get(kEcnQueueCounterTable, 6, {12, 1}).value, SnmpValue::integer32Is(Qos::hwStatusError_));
    EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 0}).value, SnmpValue::counter64Is(0));
  }
  // Without a hold, every answer looks the interface up again.
  ecnCounters_->intfQueueCounterDel(eth12);
  EXPECT_EQ(get(kEcnQueueCounterTable, 4, {12, 1}).value, SnmpValue::counter64Is(0));
}

TEST_F(MibViewTest, NextOfTheLastInstanceIsEndOfMibView) {
  const Oid last = expectedInstances(*mib_).back();
  EXPECT_EQ(view_.next(last).exception, SnmpException::endOfMibView);
  EXPECT_EQ(view_.next(last).oid, last);
}

TEST_F(MibViewTest, FullNameColumnsCarryNamesTheIndexesShorten) {
  const std::string longCmap = "class-" + std::string(40, 'c');
  const std::string longPmap = "policy-" + std::string(40, 'p');
  const std::string hugeCmap(300, 'h');
  const Snmp::String shortCmap = QosSnmp::uniqueId(Kel::String(longCmap));
  const Snmp::String shortPmap = QosSnmp::uniqueId(Kel::String(longPmap));
  const Snmp::String shortHuge = QosSnmp::uniqueId(Kel::String(hugeCmap));
  ASSERT_EQ(shortCmap.view().size(), 30U);
  ASSERT_NE(shortCmap.view(), std::string_view(longCmap).substr(0, 30));

  auto cmap = Kel::make<Qos::ClassMapStatus>(Kel::String(longCmap));
  auto huge = Kel::make<Qos::ClassMapStatus>(Kel::String(hugeCmap));
  auto pmap = Kel::make<Qos::PolicyMapStatus>(Kel::String(longPmap));
  auto prio = Kel::make<Qos::ClassPriority>(5);
  prio->cmapNameIs(Kel::String(longCmap));
  pmap->classPrioIs(5, prio);
  mib_->classMapTableIs({shortCmap, Qos::mapQos_}, cmap);
  mib_->classMapTableIs({shortHuge, Qos::mapQos_}, huge);
  mib_->policyMapTableIs({shortPmap, Qos::mapQos_}, pmap);
  mib_->policyMapClassTableIs({shortPmap, Qos::mapQos_, 5}, pmap, shortCmap);
  mib_->qosStatsTableIs({shortPmap, Qos::mapQos_, shortCmap, 0}, nullptr, nullptr);
  mib_->qosPolicerStatsTableIs({shortPmap, Qos::mapQos_, shortCmap, 12}, nullptr);
  mib_->servicePolicyTableIs(
      {7, Qos::directionOutput_}, shortPmap,
      Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionOutput_, Kel::String(longPmap)));

  const Oid cmapIndex = cat({nameOid(shortCmap.view()), {1}});
  const Oid pmapIndex = cat({nameOid(shortPmap.view()), {1}});
  auto octets = [this](std::uint32_t table, std::uint32_t column, const Oid& index) {
    const VarBind vb = get(table, column, index);
    EXPECT_EQ(vb.exception, SnmpException::none) << MibView::oidName(vb.oid);
    return vb.value.octets;
  };
  EXPECT_EQ(octets(kClassMapTable, 7, cmapIndex), longCmap);
  EXPECT_EQ(octets(kClassMapTable, 7, cat({nameOid(shortHuge.view()), {1}})), hugeCmap.substr(0, 255));
  EXPECT_EQ(octets(kPolicyMapTable, 5, pmapIndex), longPmap);
  EXPECT_EQ(octets(kPolicyMapClassTable, 5, cat({pmapIndex, {5}})), longPmap);
  EXPECT_EQ(octets(kPolicyMapClassTable, 6, cat({pmapIndex, {5}})), longCmap);
  EXPECT_EQ(octets(kQosStatsTable, 10, cat({pmapIndex, nameOid(shortCmap.view()), {0}})), longPmap);
  EXPECT_EQ(octets(kQosStatsTable, 11, cat({pmapIndex, nameOid(shortCmap.view()), {0}})), longCmap);
  EXPECT_EQ(octets(kQosPolicerStatsTable, 11, cat({pmapIndex, nameOid(shortCmap.view()), {12}})), longPmap);
  EXPECT_EQ(octets(kQosPolicerStatsTable, 12, cat({pmapIndex, nameOid(shortCmap.view()), {12}})), longCmap);
  EXPECT_EQ(octets(kServicePolicyTable, 5, {7, 2}), longPmap);
  // Rows of the fixture: names from the entities, or the short index name
  // itself where no entity names it.
  EXPECT_EQ(octets(kClassMapTable, 7, cat({nameOid("cm1"), {1}})), "cm1");
  EXPECT_EQ(octets(kClassMapMatchTable, 6, cat({nameOid("cm1"), {1, 2}})), "cm1");
  EXPECT_EQ(octets(kPolicyMapActionTable, 14, cat({nameOid("pm1"), {1}, nameOid("cm1"), {6}})), "pm1");
  EXPECT_EQ(octets(kPolicyMapActionTable, 15, cat({nameOid("pm1"), {1}, nameOid("cm1"), {6}})), "cm1");
  EXPECT_EQ(octets(kEcnCounterTable, 5, nameOid("chip0")), "chip0");
  // A shortened name that no table resolves reads as empty.
  mib_->classMapTableDel({shortCmap, Qos::mapQos_});
  EXPECT_EQ(octets(kQosPolicerStatsTable, 12, cat({pmapIndex, nameOid(shortCmap.view()), {12}})), "");
}

TEST_F(MibViewTest, InterfaceNamesStandBesideIfIndexIndexes) {
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet12"), 12);
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet13"), 13);
  EXPECT_EQ(rendered(kServicePolicyTable, 6, {12, 1}), "qosServicePolicyIntfName.12.1 = \"Ethernet12\"");
  EXPECT_EQ(rendered(kServicePolicyTable, 6, {2147483647, 1}),
            "qosServicePolicyIntfName.2147483647.1 = \"\"");
  // The policer's own interface when it has one, else the ifIndex's.
  const Oid bgp = cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp")});
  EXPECT_EQ(get(kQosPolicerStatsTable, 13, cat({bgp, {12}})).value.octets, "Ethernet12");
  mib_->qosPolicerStatsTableIs({"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", 13}, nullptr);
  EXPECT_EQ(get(kQosPolicerStatsTable, 13, cat({bgp, {13}})).value.octets, "Ethernet13");

  // The interface behind an ifIndex changes.
  mib_->intfIdToifIndexDel(Pellix::IntfId("Ethernet12"));
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet99"), 12);
  EXPECT_EQ(get(kServicePolicyTable, 6, {12, 1}).value.octets, "Ethernet99");
  mib_->intfIdToifIndexDel(Pellix::IntfId("Ethernet99"));
  EXPECT_EQ(get(kServicePolicyTable, 6, {12, 1}).value.octets, "");
}

TEST_F(MibViewTest, WithAStatusInterfaceNamesFollowTheModelAfterEachChange) {
  MibAgentStatus status;
  const MibView view(*mib_, &status);
  const Oid row = instance(kServicePolicyTable, 6, {12, 1});
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet12"), 12);
  status.stateLoadedIs(MibAgentStatus::Clock::now());
  EXPECT_EQ(view.get(row).value.octets, "Ethernet12");
  // Moved behind the view's back: never the old name, and the new one
  // once the host reports the change.
  mib_->intfIdToifIndexDel(Pellix::IntfId("Ethernet12"));
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet77"), 12);
  EXPECT_EQ(view.get(row).value.octets, "");
  status.changeAppliedIs(MibAgentStatus::Clock::now());
  EXPECT_EQ(view.get(row).value.octets, "Ethernet77");
}

TEST_F(MibViewTest, DiscontinuityTimeIsWhenTheRowGotItsCountersNotWhenItWasRead) {
  std::uint32_t now = 700;
  mib_->counterClockIs([&now] { return now; });
  const MibView view(*mib_);
  const Oid stats = instance(kQosStatsTable, 12, cat({nameOid("pm1"), {1}, nameOid("cm1"), {1}}));
  const Oid policer = instance(kQosPolicerStatsTable, 14,
                               cat({nameOid("copp-system-policy"), {0}, nameOid("copp-system-bgp"), {12}}));
  const Oid chip = instance(kEcnCounterTable, 6, nameOid("chip0"));
  const Oid queue = instance(kEcnQueueCounterTable, 8, {12, 1});
  auto at = [&view](const Oid& oid) {
    const VarBind vb = view.get(oid);
    EXPECT_EQ(vb.exception, SnmpException::none) << MibView::oidName(oid);
    EXPECT_EQ(vb.value.type, SnmpValue::Type::timeTicks) << MibView::oidName(oid);
    return vb.value.number;
  };
  const std::vector<Oid> rows = {stats, policer, chip, queue};
  // Rows that got their counters before the clock was installed, as at load.
  for (const Oid& oid : rows) {
    EXPECT_EQ(at(oid), 0U) << MibView::oidName(oid);
  }
  // Counters that count on, and the same entities written again: no change.
  now = 800;
  cm1Counter_->packetsIs(1000);
  mib_->qosStatsTableIs({"pm1", Qos::mapQos_, "cm1", 1},
                        mib_->qosStatsTable({"pm1", 1, "cm1", 1})->classMapHwStatus, cm1Counter_);
  mib_->ecnQueueCounterTableIs({12, 1}, Pellix::IntfId("Ethernet12"), nullptr, ecnCounters_, false);
  for (const Oid& oid : rows) {
    EXPECT_EQ(at(oid), 0U) << MibView::oidName(oid);
  }
  // New counter entities at 900, not polled until 5000.
  now = 900;
  mib_->intfIdToifIndexIs(Pellix::IntfId("Ethernet12"), 12);
  mib_->qosStatsTableIs({"pm1", Qos::mapQos_, "cm1", 1}, nullptr, Kel::make<Qos::Counter>("cm1"));
  mib_->qosPolicerStatsTableIs({"copp-system-policy", Qos::mapControlPlane_, "copp-system-bgp", 12},
                               Kel::make<Qos::PolicerHwStatus>("Ethernet12"));
  mib_->ecnCounterTableIs("chip0", Kel::make<Qos::ChipCounter>("chip0"), 0);
  ecnCounters_->intfQueueCounterIs(Pellix::IntfId("Ethernet12"),
                                   Kel::make<Qos::EcnIntfQueueCounter>(Pellix::IntfId("Ethernet12")));
  mib_->ecnQueueCountersRestarted(*ecnCounters_, Pellix::IntfId("Ethernet12"));
  now = 5000;
  for (const Oid& oid : rows) {
    EXPECT_EQ(at(oid), 900U) << MibView::oidName(oid);
  }
  EXPECT_EQ(MibView::render(view.get(queue)), "qosEcnQueueCounterDiscontinuityTime.12.1 = 900");
  // Counters deleted and published again come as a new row.
  now = 6000;
  mib_->ecnCounterTableDel("chip0");
  ASSERT_EQ(view.get(chip).exception, SnmpException::noSuchInstance);
  mib_->ecnCounterTableIs("chip0", Kel::make<Qos::ChipCounter>("chip0"), 0);
  now = 7000;
  EXPECT_EQ(at(chip), 6000U);
  // A walk reads the column as get() does.
  const VarBind walked = view.next(instance(kEcnCounterTable, 6, nameOid("")));
  EXPECT_EQ(walked.oid, chip);
  EXPECT_EQ(walked.value, SnmpValue::timeTicksIs(6000));
}

TEST_F(MibViewTest, AgentGroupReadsTheHostsStatus) {
  MibAgentStatus status;
  const auto origin = MibAgentStatus::Clock::now();
  status.upTimeOrigin = origin;
  const MibView view(*mib_, &status);
  auto value = [&view](std::uint32_t scalar) {
    const VarBind vb = view.get(cat({kObjects, {kAgentGroup, scalar, 0}}));
    EXPECT_EQ(vb.exception, SnmpException::none);
    return vb.value;
  };
  EXPECT_EQ(value(1), SnmpValue::timeTicksIs(0));
  EXPECT_EQ(value(2), SnmpValue::timeTicksIs(0));
  EXPECT_EQ(value(3), SnmpValue::counter32Is(0));
  EXPECT_EQ(value(4), SnmpValue::counter32Is(0));

  status.stateLoadedIs(origin - std::chrono::seconds(3));  // before the agent started
  status.changeAppliedIs(origin + std::chrono::milliseconds(12345));
  status.changeAppliedIs(origin + std::chrono::milliseconds(23456));
  status.changeRefused();
  EXPECT_EQ(value(1), SnmpValue::timeTicksIs(0));
  EXPECT_EQ(value(2), SnmpValue::timeTicksIs(2345));
  EXPECT_EQ(value(3), SnmpValue::counter32Is(2));
  EXPECT_EQ(value(4), SnmpValue::counter32Is(1));
  EXPECT_EQ(MibView::render(view.get(cat({kObjects, {kAgentGroup, 3, 0}}))), "qosAgentChangesApplied.0 = 2");
  EXPECT_EQ(view.get(cat({kObjects, {kAgentGroup, 3}})).exception, SnmpException::noSuchInstance);
  EXPECT_EQ(view.get(cat({kObjects, {kAgentGroup, 3, 1}})).exception, SnmpException::noSuchInstance);
  EXPECT_EQ(view.next(cat({kObjects, {kAgentGroup, 2}})).oid, cat({kObjects, {kAgentGroup, 2, 0}}));
  EXPECT_EQ(view.next(cat({kObjects, {kAgentGroup, 4, 0}})).exception, SnmpException::endOfMibView);
}

TEST(MibViewEmptyTest, WalkOfAnEmptyModelEndsAtOnce) {
  const auto mib = Kel::make<QosMib>();
  const MibView view(*mib);
  // Only the agent group's scalars.
  const std::vector<VarBind> walked = walk(view, {});
  ASSERT_EQ(walked.size(), 4U);
  EXPECT_EQ(walked.front().oid, cat({kObjects, {kAgentGroup, 1, 0}}));
  EXPECT_EQ(view.next(walked.back().oid).exception, SnmpException::endOfMibView);
  EXPECT_EQ(view.get(instance(kClassMapTable, 3, cat({nameOid("cm1"), {1}}))).exception,
            SnmpException::noSuchInstance);
}

TEST(MibViewNamesTest, OidNameWritesTheColumnAndTheIndex) {
  EXPECT_EQ(MibView::oidName(instance(kClassMapTable, 3, {3, 99, 109, 49, 1})),
            "qosClassMapCpType.3.99.109.49.1");
  EXPECT_EQ(MibView::oidName(cat({kObjects, {kEcnQueueCounterTable, 1}})), "qosEcnQueueCounterEntry");
  EXPECT_EQ(MibView::oidName(cat({kObjects, {kQosStatsTable}})), "qosStatsTable");
  EXPECT_EQ(MibView::oidName(Oid{1, 3, 6, 1}), "1.3.6.1");
  VarBind vb;
  vb.oid = instance(kEcnCounterTable, 2, {1, 'c'});
  vb.exception = SnmpException::noSuchInstance;
  EXPECT_EQ(MibView::render(vb), "qosEcnCounterMarkedPackets.1.99 = noSuchInstance");
  vb.exception = SnmpException::none;
  vb.value = SnmpValue::octetStringIs(std::string("a\"b\x01", 4));
  EXPECT_EQ(MibView::render(vb), "qosEcnCounterMarkedPackets.1.99 = \"a\\\"b\\x01\"");
}

// The MIB module's OBJECT-TYPE definitions, read from its text: name ->
// (OID, SYNTAX's first word, MAX-ACCESS).
struct MibObject {
  Oid oid;
  std::string syntax;
  std::string access;
};

void scanDefinitions(const std::vector<std::string>& words, std::map<std::string, Oid>& oids,
                     std::map<std::string, MibObject>& objects);

std::map<std::string, MibObject> mibObjects() {
  const std::filesystem::path file = std::filesystem::path(QOS_SOURCE_DIR) / "mib/QOS-SNMP-MIB.txt";
  std::ifstream in(file);
  EXPECT_TRUE(in) << file;
  std::vector<std::string> words;
  std::string line;
  while (std::getline(in, line)) {
    line = line.substr(0, line.find("--"));
    std::istringstream split(line);
    std::copy(std::istream_iterator<std::string>(split), std::istream_iterator<std::string>(),
              std::back_inserter(words));
  }
  std::map<std::string, Oid> oids = {{"enterprises", {1, 3, 6, 1, 4, 1}}};
  std::map<std::string, MibObject> objects;
  // A definition may name a parent defined further down: read until every
  // parent is known.
  for (std::size_t known = 0; known != oids.size();) {
    known = oids.size();
    scanDefinitions(words, oids, objects);
  }
  return objects;
}

void scanDefinitions(const std::vector<std::string>& words, std::map<std::string, Oid>& oids,
                     std::map<std::string, MibObject>& objects) {
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    const bool objectType = words[i + 1] == "OBJECT-TYPE";
    const bool identifier = words[i + 1] == "OBJECT" && i + 2 < words.size() && words[i + 2] == "IDENTIFIER";
    const bool module = words[i + 1] == "MODULE-IDENTITY";
    if (!objectType && !identifier && !module) {
      continue;
    }
    MibObject object;
    std::size_t j = i + 2;
    for (; j + 4 < words.size() && words[j] != "::="; ++j) {
      if (words[j] == "SYNTAX" && object.syntax.empty()) {
        object.syntax = words[j + 1];
      }
      if (words[j] == "MAX-ACCESS") {
        object.access = words[j + 1];
      }
    }
    // ::= { parent number [number] }
    if (j + 4 >= words.size() || words[j + 1] != "{" || !oids.contains(words[j + 2])) {
      continue;
    }
    object.oid = oids[words[j + 2]];
    for (std::size_t k = j + 3; k < words.size() && words[k] != "}"; ++k) {
      object.oid.push_back(static_cast<std::uint32_t>(std::stoul(words[k])));
    }
    oids[words[i]] = object.oid;
    if (objectType) {
      objects[words[i]] = object;
    }
  }
}

SnmpValue::Type typeOfSyntax(const std::string& syntax) {
  if (syntax == "DisplayString") {
    return SnmpValue::Type::octetString;
  }
  if (syntax == "Counter64" || syntax == "QosGauge64") {
    return SnmpValue::Type::counter64;
  }
  if (syntax == "Unsigned32") {
    return SnmpValue::Type::unsigned32;
  }
  if (syntax == "TimeStamp") {
    return SnmpValue::Type::timeTicks;
  }
  if (syntax == "Counter32") {
    return SnmpValue::Type::counter32;
  }
  return SnmpValue::Type::integer32;
}

TEST(MibViewModuleTest, MibModuleDeclaresExactlyTheViewsTablesAndColumns) {
  const auto objects = mibObjects();
  std::size_t declared = 0;
  for (const MibTableInfo& table : MibView::tables()) {
    const Oid tableOid = cat({kObjects, {table.subId}});
    ASSERT_TRUE(objects.contains(std::string(table.name))) << table.name;
    EXPECT_EQ(objects.at(std::string(table.name)).oid, tableOid);
    ASSERT_TRUE(objects.contains(std::string(table.entryName))) << table.entryName;
    EXPECT_EQ(objects.at(std::string(table.entryName)).oid, cat({tableOid, {1}}));
    declared += 2;
    for (const MibColumnInfo& column : table.columns) {
      const std::string name(column.name);
      ASSERT_TRUE(objects.contains(name)) << name;
      const MibObject& object = objects.at(name);
      EXPECT_EQ(object.oid, cat({tableOid, {1, column.subId}})) << name;
      EXPECT_EQ(object.access, column.accessible ? "read-only" : "not-accessible") << name;
      EXPECT_EQ(typeOfSyntax(object.syntax), column.type) << name << " " << object.syntax;
      ++declared;
    }
  }
  const Oid agentGroup = cat({kObjects, {kAgentGroup}});
  EXPECT_EQ(Oid(MibView::agentGroupOid().begin(), MibView::agentGroupOid().end()), agentGroup);
  for (const MibScalarInfo& scalar : MibView::agentScalars()) {
    const std::string name(scalar.name);
    ASSERT_TRUE(objects.contains(name)) << name;
    EXPECT_EQ(objects.at(name).oid, cat({agentGroup, {scalar.subId}})) << name;
    EXPECT_EQ(objects.at(name).access, "read-only") << name;
    EXPECT_EQ(typeOfSyntax(objects.at(name).syntax), scalar.type) << name;
    ++declared;
  }
  EXPECT_EQ(declared, objects.size());
  const Oid module(MibView::moduleOid().begin(), MibView::moduleOid().end());
  EXPECT_EQ(module, (Oid{1, 3, 6, 1, 4, 1, 32473, 1}));
  EXPECT_EQ(Oid(MibView::objectsOid().begin(), MibView::objectsOid().end()), cat({module, {1}}));
}

}  // namespace
}  // namespace QosSnmpHost
