#include "QosSnmp/stats/HwStatusCmapSm.h"

#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"

namespace {

using QosSnmpTest::addCmapHwStatus;
using QosSnmpTest::addCoppClassMap;
using QosSnmpTest::addCounters;
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::joined;
using QosSnmpTest::mibRows;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTestLines;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A switch with one slice, the ordinary policy map "policy-in" applied in
// direction 1 on it, and control-plane class maps: "copp-system-bgp"
// (static), "copp-system-default" and "copp-system-drop" (configured).
// "class-web" is no control-plane class map at all.
class HwStatusCmapSmTest : public ::testing::Test {
 protected:
  HwStatusCmapSmTest()
      : slice_(switch_.slice("FixedSystem")),
        typeStatus_(addPmapTypeHwStatus(slice_, Qos::mapQos_)),
        bgp_(addCoppClassMap(switch_, "copp-system-bgp", Qos::classMapCpStatic_)),
        coppDefault_(addCoppClassMap(switch_, "copp-system-default", Qos::classMapCpDynamic_)) {
    addCoppClassMap(switch_, "copp-system-drop", Qos::classMapCpDynamic_);
  }

  Kel::Ptr<Qos::PolicyMapHwStatus> policy(const Kel::String& name = "policy-in", Kel::S32 pmapKind = 0,
                                          Kel::U32 direction = 1) {
    return addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(direction, name), pmapKind);
  }

  // A class of `pmapStatus` with hardware status and published counters.
  Kel::Ptr<Qos::ClassMapHwStatus> countedClass(const Kel::Ptr<Qos::PolicyMapHwStatus>& pmapStatus,
                                               const Kel::String& name) {
    addCounters(switch_, pmapStatus->key().pmapName(), name);
    return addCmapHwStatus(pmapStatus, name);
  }

  Kel::Ptr<QosSnmp::HwStatusCmapSm> makeSm(const Kel::Ptr<Qos::PolicyMapHwStatus>& pmapStatus) {
    return makeSm(pmapStatus, switch_.qosMibConfig);
  }
  Kel::Ptr<QosSnmp::HwStatusCmapSm> makeSm(const Kel::Ptr<Qos::PolicyMapHwStatus>& pmapStatus,
                                           const Kel::Ptr<const QosSnmp::QosMibConfig>& qosMibConfig) {
    return Kel::make<QosSnmp::HwStatusCmapSm>(pmapStatus->key(), pmapStatus, qosMibConfig,
                                              switch_.qosHwStatus, slice_, switch_.qosStatus, switch_.qosMib);
  }

  Texts rows() const { return mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> typeStatus_;
  Kel::Ptr<Qos::ClassMapStatus> bgp_;
  Kel::Ptr<Qos::ClassMapStatus> coppDefault_;
};

TEST_F(HwStatusCmapSmTest, OrdinaryClassGetsAStatisticsRowAndNoActionRows) {
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-web, 1) class-web class-web"});
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 HwStatusCmapSm::handleCmap( class-web )",
                                   "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                           }));
}

TEST_F(HwStatusCmapSmTest, StaticControlPlaneClassGetsStatisticsAndTwoHardwareActionRows) {
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
                "qosStatsTable (policy-in, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
            }));
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 HwStatusCmapSm::handleCmap( copp-system-bgp )",
                                   "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( copp-system-bgp )",
                               },
                               staticCoppTestLines(bgp_),
                           }));
}

TEST_F(HwStatusCmapSmTest, CoppSystemDefaultKeepsItsActionRowsThoughNotStatic) {
  const auto pmap = policy();
  countedClass(pmap, "copp-system-default");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(
      rows(),
      (Texts{
          "policyMapActionTable (policy-in, 0, copp-system-default, 0) - - copp-system-default hw "
          "FixedSystem",
          "policyMapActionTable (policy-in, 0, copp-system-default, 1) - - copp-system-default hw "
          "FixedSystem",
          "qosStatsTable (policy-in, 0, copp-system-default, 1) copp-system-default copp-system-default",
      }));
}

TEST_F(HwStatusCmapSmTest, ConfiguredControlPlaneClassGetsNoActionRows) {
  addCoppClassMap(switch_, "copp-user-class", Qos::classMapCpDynamic_);
  const auto pmap = policy();
  countedClass(pmap, "copp-user-class");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            Texts{"qosStatsTable (policy-in, 0, copp-user-class, 1) copp-user-class copp-user-class"});
}

TEST_F(HwStatusCmapSmTest, DropClassGetsNoRowOfEitherTable) {
  const auto pmap = policy();
  countedClass(pmap, "copp-system-drop");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusCmapSm::handleInitialized()",
                               "8 HwStatusCmapSm::handleCmap( copp-system-drop )",
                           }));
}

TEST_F(HwStatusCmapSmTest, DropClassLeavesRowsUnderItsIndexesAlone) {
  const auto pmap = policy();
  const auto drop = countedClass(pmap, "copp-system-drop");
  const QosSnmp::QosStatsTableIndex statsIndex("policy-in", 0, "copp-system-drop", 1);
  const QosSnmp::PolicyMapActionTableIndex actionIndex("policy-in", 0, "copp-system-drop", 0);
  switch_.qosMib->qosStatsTableIs(statsIndex, drop, nullptr);
  switch_.qosMib->policyMapActionTableIs(actionIndex, nullptr, nullptr, drop, nullptr, nullptr);
  const auto before = rows();
  const auto sm = makeSm(pmap);
  sm->handleCmap("copp-system-drop");
  EXPECT_EQ(rows(), before);
}

TEST_F(HwStatusCmapSmTest, NewClassHardwareStatusIsFollowed) {
  const auto pmap = policy();
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  countedClass(pmap, "copp-system-bgp");
  EXPECT_EQ(rows().size(), 3U);
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleCmap( copp-system-bgp )",
                                   "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( copp-system-bgp )",
                               },
                               staticCoppTestLines(bgp_),
                           }));
}

TEST_F(HwStatusCmapSmTest, ClassWhoseHardwareStatusGoesLosesItsStatisticsAndActionRows) {
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  pmap->cmapDel("copp-system-bgp");
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-web, 1) class-web class-web"});
  EXPECT_TRUE(sm->policyMapActionTableKey().empty());
  EXPECT_EQ(sm->qosStatsTableKey().size(), 1U);
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleCmap( copp-system-bgp )",
                                   "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( copp-system-bgp )",
                               },
                               staticCoppTestLines(bgp_),
                           }));
}

TEST_F(HwStatusCmapSmTest, ActionRowsAreRebuiltFromScratch) {
  const auto pmap = policy();
  const auto bgp = countedClass(pmap, "copp-system-bgp");
  const QosSnmp::PolicyMapActionTableIndex index0("policy-in", 0, "copp-system-bgp", 0);
  const auto stale = Kel::make<Qos::ClassMapHwStatus>("stale");
  switch_.qosMib->policyMapActionTableIs(index0, Kel::make<Qos::ClassAction>("configured"), nullptr, stale,
                                         nullptr, nullptr);
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
                "qosStatsTable (policy-in, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
            }));
}

TEST_F(HwStatusCmapSmTest, ExistingActionRowIsDeletedEvenWhenTheClassHasNoHardwareStatus) {
  const auto pmap = policy();
  const QosSnmp::PolicyMapActionTableIndex index1("policy-in", 0, "copp-system-bgp", 1);
  switch_.qosMib->policyMapActionTableIs(index1, Kel::make<Qos::ClassAction>("configured"), nullptr, nullptr,
                                         nullptr, nullptr);
  const auto sm = makeSm(pmap);
  sm->handleCmap("copp-system-bgp");
  EXPECT_TRUE(rows().empty());
}

TEST_F(HwStatusCmapSmTest, InfinitePeriodGivesActionRowsButNoStatistics) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
            }));
  EXPECT_TRUE(sm->qosStatsTableKey().empty());
}

TEST_F(HwStatusCmapSmTest, FinitePeriodEnablesStatisticsOnce) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(10.0);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
                "qosStatsTable (policy-in, 0, class-web, 1) class-web class-web",
                "qosStatsTable (policy-in, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
            }));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusCmapSm::handleUpdateInterval()",
                               "8 HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable enabled",
                               "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( class-web )",
                               "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( copp-system-bgp )",
                           }));
  const auto enabled = rows();
  trace.clear();
  switch_.qosMibConfig->counterPollPeriodIs(30.0);
  EXPECT_EQ(rows(), enabled);
  EXPECT_EQ(trace.lines(), Texts{"8 HwStatusCmapSm::handleUpdateInterval()"});
}

TEST_F(HwStatusCmapSmTest, InfinityRemovesEveryStatisticsRowAndKeepsActionRows) {
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
            }));
  EXPECT_TRUE(sm->qosStatsTableKey().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusCmapSm::handleUpdateInterval()",
                               "8 HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable disabled",
                           }));
  const auto disabled = rows();
  trace.clear();
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(rows(), disabled);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(HwStatusCmapSmTest, InfinityWithoutStatisticsRowsTracesOnlyTheEntry) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  sm->handleUpdateInterval();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 HwStatusCmapSm::handleUpdateInterval()"});
}

TEST_F(HwStatusCmapSmTest, InfinityWhenNoClassQualifiedTracesOnlyTheEntry) {
  const auto pmap = policy("policy-in", 2);
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(trace.lines(), Texts{"8 HwStatusCmapSm::handleUpdateInterval()"});
}

TEST_F(HwStatusCmapSmTest, EveryFinitePeriodRetriesWhileNoStatisticsRowExists) {
  const auto pmap = policy("policy-in", 2);
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(10.0);
  switch_.qosMibConfig->counterPollPeriodIs(20.0);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusCmapSm::handleUpdateInterval()",
                               "8 HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable enabled",
                               "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( class-web )",
                               "8 HwStatusCmapSm::handleUpdateInterval()",
                               "8 HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable enabled",
                               "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( class-web )",
                           }));
}

TEST_F(HwStatusCmapSmTest, EnablingSkipsTheDropClassAndClassesWithoutCounters) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  countedClass(pmap, "copp-system-drop");
  const auto sm = makeSm(pmap);
  switch_.qosMibConfig->counterPollPeriodIs(1.0);
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-web, 1) class-web class-web"});
}

TEST_F(HwStatusCmapSmTest, MapKindTwoGetsActionRowsButNoStatistics) {
  const auto pmap = policy("policy-in", 2);
  countedClass(pmap, "copp-system-bgp");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 2, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 2, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
            }));
}

TEST_F(HwStatusCmapSmTest, MapKindOneGetsNoRows) {
  const auto pmap = policy("policy-in", 1);
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
}

TEST_F(HwStatusCmapSmTest, IndexesCarryTheMapKindAndTheKeysDirection) {
  const auto pmap = policy("policy-out", 3, 2);
  countedClass(pmap, "copp-system-bgp");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-out, 3, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-out, 3, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
                "qosStatsTable (policy-out, 3, copp-system-bgp, 2) copp-system-bgp copp-system-bgp",
            }));
}

TEST_F(HwStatusCmapSmTest, LongNamesAreShortenedInEveryIndex) {
  const Kel::String pmapName("policy-with-a-name-longer-than-thirty-characters");
  const Kel::String cmapName("copp-system-class-with-a-very-long-name");
  addCoppClassMap(switch_, cmapName, Qos::classMapCpStatic_);
  const auto pmap = policy(pmapName);
  const auto cmap = countedClass(pmap, cmapName);
  const auto sm = makeSm(pmap);
  const Snmp::String pmapId = QosSnmp::uniqueId(pmapName);
  const Snmp::String cmapId = QosSnmp::uniqueId(cmapName);
  EXPECT_TRUE(switch_.qosMib->qosStatsTable(QosSnmp::QosStatsTableIndex(pmapId, 0, cmapId, 1)) != nullptr);
  EXPECT_TRUE(switch_.qosMib->policyMapActionTable(
                  QosSnmp::PolicyMapActionTableIndex(pmapId, 0, cmapId, 0)) != nullptr);
  EXPECT_TRUE(switch_.qosMib->policyMapActionTable(
                  QosSnmp::PolicyMapActionTableIndex(pmapId, 0, cmapId, 1)) != nullptr);
  EXPECT_EQ(switch_.qosMib->rowCount(), 3U);
}

TEST_F(HwStatusCmapSmTest, CoppSystemPolicyGetsNoStatisticsWhileTheHardwareCountsIt) {
  switch_.qosHwStatus->coppHwStatsSupportedIs(true);
  const auto pmap = policy("copp-system-policy");
  countedClass(pmap, "copp-system-bgp");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 0) - - "
                        "copp-system-bgp hw FixedSystem",
                        "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 1) - - "
                        "copp-system-bgp hw FixedSystem",
                    }));
}

TEST_F(HwStatusCmapSmTest, CoppSystemPolicyIsLikeAnyOtherWhileTheFlagIsClear) {
  const auto pmap = policy("copp-system-policy");
  countedClass(pmap, "copp-system-bgp");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 0) - - copp-system-bgp hw "
                "FixedSystem",
                "policyMapActionTable (copp-system-policy, 0, copp-system-bgp, 1) - - copp-system-bgp hw "
                "FixedSystem",
                "qosStatsTable (copp-system-policy, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
            }));
}

TEST_F(HwStatusCmapSmTest, FlagLeavesOtherPolicyMapsAlone) {
  switch_.qosHwStatus->coppHwStatsSupportedIs(true);
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-web, 1) class-web class-web"});
}

TEST_F(HwStatusCmapSmTest, WithoutControlPlaneClassMapsNoRowIsWritten) {
  switch_.qosStatus->cmapTypeDel(Qos::mapControlPlane_);
  switch_.cmapType(Qos::mapQos_);
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
}

TEST_F(HwStatusCmapSmTest, ClassFilterReadsOnlyTheControlPlaneClassMaps) {
  auto qosClass = switch_.classMap(Qos::mapQos_, "class-static-elsewhere");
  qosClass->cpTypeIs(Qos::classMapCpStatic_);
  const auto pmap = policy();
  countedClass(pmap, "class-static-elsewhere");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-static-elsewhere, 1) class-static-elsewhere "
                          "class-static-elsewhere"});
}

TEST_F(HwStatusCmapSmTest, WithoutConfigurationStatisticsAreEnabled) {
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap, nullptr);
  EXPECT_EQ(sm->qosMibConfig(), nullptr);
  EXPECT_EQ(sm->interval(), 0.0);
  EXPECT_EQ(rows(), Texts{"qosStatsTable (policy-in, 0, class-web, 1) class-web class-web"});
}

TEST_F(HwStatusCmapSmTest, IntervalIsThePollPeriod) {
  switch_.qosMibConfig->counterPollPeriodIs(5.0);
  const auto sm = makeSm(policy());
  EXPECT_EQ(sm->interval(), 5.0);
}

TEST_F(HwStatusCmapSmTest, WithoutPolicyMapHardwareStatusNothingIsWritten) {
  countedClass(policy(), "copp-system-bgp");
  const auto sm = Kel::make<QosSnmp::HwStatusCmapSm>(Qos::PolicyMapHwStatusKey(1, "policy-in"), nullptr,
                                                     switch_.qosMibConfig, switch_.qosHwStatus, slice_,
                                                     switch_.qosStatus, switch_.qosMib);
  sm->handleCmap("copp-system-bgp");
  sm->handleUpdateInterval();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->policyMapHwStatus(), nullptr);
}

TEST_F(HwStatusCmapSmTest, ClosingRemovesExactlyTheRowsItAdded) {
  const auto other = Kel::make<Qos::ClassMapHwStatus>("other");
  switch_.qosMib->qosStatsTableIs(QosSnmp::QosStatsTableIndex("policy-out", 0, "class-web", 2), other,
                                  nullptr);
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("policy-in", 0, "class-web", 0),
                                         nullptr, nullptr, other, nullptr, nullptr);
  const auto before = rows();
  const auto pmap = policy();
  countedClass(pmap, "copp-system-bgp");
  countedClass(pmap, "class-web");
  auto sm = makeSm(pmap);
  EXPECT_EQ(rows().size(), before.size() + 4);
  const AgentTrace trace;
  sm = nullptr;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), Texts{"8 HwStatusCmapSm::doClose()"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusCmapSm"), 0);
}

TEST_F(HwStatusCmapSmTest, ClosedMachineIgnoresNotifications) {
  const auto pmap = policy();
  auto sm = makeSm(pmap);
  sm->close();
  const AgentTrace trace;
  countedClass(pmap, "class-web");
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(HwStatusCmapSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const RingCapture ring;
  auto sm = makeSm(pmap);
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  sm = nullptr;
  EXPECT_EQ(ring.entries(),
            (Texts{
                "void QosSnmp::HwStatusCmapSm::handleInitialized() []",
                "void QosSnmp::HwStatusCmapSm::handleCmap(Kel::String) [p] class-web",
                "void QosSnmp::HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry(Kel::String) [p] class-web",
                "void QosSnmp::HwStatusCmapSm::handleUpdateInterval() []",
                "void QosSnmp::HwStatusCmapSm::doClose() []",
            }));
}

TEST_F(HwStatusCmapSmTest, ArgumentsAreTheInputs) {
  const auto pmap = policy();
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(sm->arguments() == std::make_tuple(pmap->key(), Kel::Ptr<const Qos::PolicyMapHwStatus>(pmap),
                                                 Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                                                 Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                 Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                                                 Kel::Ptr<const Qos::Status>(switch_.qosStatus),
                                                 switch_.qosMib));
  EXPECT_EQ(sm->key(), pmap->key());
}

using HwStatusCmapSmDeathTest = HwStatusCmapSmTest;

TEST_F(HwStatusCmapSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm(policy());
  EXPECT_DEATH(sm->handleInitialized(),
               "HwStatusCmapSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST_F(HwStatusCmapSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm(policy());
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleCmap("class-web"), "handleCmap.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->doMaybeAddOrRemoveStatsEntry("class-web"),
               "doMaybeAddOrRemoveStatsEntry.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleUpdateInterval(), "handleUpdateInterval.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->doClose(), "doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

constexpr const char* kCountersAssertion =
    "doMaybeAddOrRemoveStatsEntry.*: Assertion `pmapStatus && pmapStatus->cmapCounters\\( classMapName \\) "
    "&& "
    "\"qosStatus must be populated before qosHwStatus\"' failed";

TEST_F(HwStatusCmapSmDeathTest, ClassHardwareStatusWithoutItsPolicyMapStatusAborts) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  EXPECT_DEATH(makeSm(pmap), kCountersAssertion);
}

TEST_F(HwStatusCmapSmDeathTest, ClassHardwareStatusWithoutItsCountersAborts) {
  const auto pmap = policy();
  countedClass(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_DEATH(addCmapHwStatus(pmap, "class-mail"), kCountersAssertion);
}

TEST_F(HwStatusCmapSmDeathTest, CountersAreLookedUpUnderTheControlPlanePolicyMapsOnly) {
  const auto pmap = policy();
  switch_.policyMap(Qos::mapQos_, "policy-in")
      ->cmapCountersIs("class-web", Kel::make<Qos::Counter>("class-web"));
  addCmapHwStatus(pmap, "class-web");
  EXPECT_DEATH(makeSm(pmap), kCountersAssertion);
}

}  // namespace
