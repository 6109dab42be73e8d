#include "QosSnmp/copp/CoppStatsTableSm.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/Toggles.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"
#include "kel/MutatorException.h"
#include "kel/String.h"
#include "kel/Toggle.h"
#include "kel/ToggleStore.h"
#include "pellix/IntfId.h"

namespace {

using QosSnmp::CoppStatsTableSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::concat;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTrace;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The rows of the MIB model's `table`.
Texts tableRows(const QosSnmp::QosMib& mib, const std::string& table) {
  Texts rows;
  for (const std::string& row : QosSnmpTest::mibRows(mib)) {
    if (row.starts_with(table + ' ')) {
      rows.push_back(row);
    }
  }
  return rows;
}

Kel::Ptr<Qos::Counter> counterIs(Qos::PolicyMapStatus& pmap, const std::string& cmapName) {
  auto counter = Kel::make<Qos::Counter>(Kel::String(cmapName));
  pmap.cmapCountersIs(Kel::String(cmapName), counter);
  return counter;
}

void policerIs(Qos::Counter& counter, const std::string& intfName) {
  counter.policerHwStatusIs(Kel::String(intfName), Kel::make<Qos::PolicerHwStatus>(Kel::String(intfName)));
}

// The entry line of handleClassMap.
std::string classMapLine(const std::string& cmapName, const std::string& pmapName, const std::string& type) {
  return "8 CoppStatsTableSm::handleClassMap( " + cmapName + ", " + pmapName + ", " + type + " )";
}

// The lines of handleClassMap for a class that gets as far as the static
// class-map test, which answers false for a class map with no status.
Texts judgedLines(const std::string& cmapName, const std::string& pmapName, const std::string& type) {
  return concat(Texts{classMapLine(cmapName, pmapName, type)}, {staticCoppTrace(type, nullptr, false)});
}

class CoppStatsTableSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<CoppStatsTableSm> makeSm(const Kel::Ptr<const QosSnmp::QosMibConfig>& qosMibConfig) {
    return Kel::make<CoppStatsTableSm>(switch_.qosStatus, qosMibConfig, switch_.qosHwStatus, switch_.qosMib);
  }
  Kel::Ptr<CoppStatsTableSm> makeSm() { return makeSm(switch_.qosMibConfig); }

  Texts statsRows() const { return tableRows(*switch_.qosMib, "qosStatsTable"); }
  Texts policerRows() const { return tableRows(*switch_.qosMib, "qosPolicerStatsTable"); }

  TestSwitch switch_;
};

TEST_F(CoppStatsTableSmTest, InitialScanWritesARowPerClassWithACounter) {
  const auto pmap = switch_.policyMap(Qos::mapQos_, "pm1");
  counterIs(*pmap, "cm1");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), concat(Texts{"0 CoppStatsTableSm::handleCmaps( pm1, mapQos )"},
                                  {
                                      judgedLines("cm1", "pm1", "mapQos"),
                                      {"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"},
                                      {"8 CoppStatsTableSm::handleAllEntries()"},
                                      judgedLines("cm1", "pm1", "mapQos"),
                                  }));
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"});
  EXPECT_EQ(sm->qosStatsTableKey().size(), 1U);
  ASSERT_NE(sm->qosStatusCmapPolicerStatsTableSm("cm1"), nullptr);
  ASSERT_NE(sm->pmapType(Qos::mapQos_), nullptr);
  EXPECT_NE(sm->pmapType(Qos::mapQos_)->pmap("pm1"), nullptr);
}

TEST_F(CoppStatsTableSmTest, CounterAddedAndRemovedAddsAndRemovesTheRowAndThePolicerChild) {
  const auto pmap = switch_.policyMap(Qos::mapQos_, "pm1");
  const auto sm = makeSm();
  const AgentTrace trace;
  counterIs(*pmap, "cm1");
  EXPECT_EQ(trace.lines(), concat(judgedLines("cm1", "pm1", "mapQos"),
                                  {{"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"}}));
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"});
  ASSERT_NE(sm->qosStatusCmapPolicerStatsTableSm("cm1"), nullptr);

  pmap->cmapCountersDel("cm1");
  EXPECT_TRUE(statsRows().empty());
  EXPECT_TRUE(sm->qosStatsTableKey().empty());
  EXPECT_EQ(sm->qosStatusCmapPolicerStatsTableSm("cm1"), nullptr);
}

TEST_F(CoppStatsTableSmTest, PolicerChildWritesThePolicerRowsOfItsCounter) {
  switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  const auto counter = counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  policerIs(*counter, "Ethernet1");
  const auto sm = makeSm();
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm1, 1, cm1, 3) Ethernet1"});
  const auto* child = sm->qosStatusCmapPolicerStatsTableSm("cm1");
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(child->policyMapName(), Kel::String("pm1"));
  EXPECT_EQ(child->mapType(), Qos::mapQos_);
  EXPECT_EQ(child->cmapCounter(), counter);
  EXPECT_EQ(child->qosMibConfig(), switch_.qosMibConfig);
}

TEST_F(CoppStatsTableSmTest, DropClassNeverGetsARow) {
  counterIs(*switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy"), "copp-system-drop");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "0 CoppStatsTableSm::handleCmaps( copp-system-policy, mapControlPlane )",
                               classMapLine("copp-system-drop", "copp-system-policy", "mapControlPlane"),
                               "8 CoppStatsTableSm::handleAllEntries()",
                               classMapLine("copp-system-drop", "copp-system-policy", "mapControlPlane"),
                           }));
  EXPECT_TRUE(statsRows().empty());
  EXPECT_TRUE(sm->qosStatusCmapPolicerStatsTableSm().empty());
}

TEST_F(CoppStatsTableSmTest, StaticControlPlaneClassGetsNoRowAndAConfiguredOneDoes) {
  const auto staticClass = switch_.classMap(Qos::mapControlPlane_, "copp-system-bpdu");
  const auto configured = switch_.classMap(Qos::mapControlPlane_, "copp-acl");
  configured->cpTypeIs(Qos::classMapCpDynamic_);
  const auto pmap = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  const auto sm = makeSm();
  const AgentTrace trace;
  counterIs(*pmap, "copp-system-bpdu");
  counterIs(*pmap, "copp-acl");
  EXPECT_EQ(trace.lines(),
            concat(Texts{classMapLine("copp-system-bpdu", "copp-system-policy", "mapControlPlane")},
                   {
                       staticCoppTrace("mapControlPlane", staticClass.get(), true),
                       {classMapLine("copp-acl", "copp-system-policy", "mapControlPlane")},
                       staticCoppTrace("mapControlPlane", configured.get(), false),
                       {"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"},
                   }));
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (copp-system-policy, 0, copp-acl, 0) - copp-acl"});
}

TEST_F(CoppStatsTableSmTest, IgnoredMapTypeIsIgnoredEntirely) {
  counterIs(*switch_.policyMap(Qos::mapPbr_, "pbr1"), "cm1");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "0 CoppStatsTableSm::handleCmaps( pbr1, mapPbr )",
                               classMapLine("cm1", "pbr1", "mapPbr"),
                               "8 CoppStatsTableSm::handleAllEntries()",
                               classMapLine("cm1", "pbr1", "mapPbr"),
                           }));
  EXPECT_TRUE(statsRows().empty());
  EXPECT_TRUE(sm->qosStatusCmapPolicerStatsTableSm().empty());
}

TEST_F(CoppStatsTableSmTest, InfinitePeriodAddsNothing) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "0 CoppStatsTableSm::handleCmaps( pm1, mapQos )",
                               classMapLine("cm1", "pm1", "mapQos"),
                               "8 CoppStatsTableSm::handleAllEntries()",
                               classMapLine("cm1", "pm1", "mapQos"),
                           }));
  EXPECT_TRUE(statsRows().empty());
  EXPECT_TRUE(sm->qosStatusCmapPolicerStatsTableSm().empty());
}

TEST_F(CoppStatsTableSmTest, InfinitePeriodRemovesEveryRowAndAFiniteOneReAddsThem) {
  switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  const auto pm1 = switch_.policyMap(Qos::mapQos_, "pm1");
  policerIs(*counterIs(*pm1, "cm1"), "Ethernet1");
  counterIs(*pm1, "cm2");
  const auto sm = makeSm();
  const Texts rows{"qosStatsTable (pm1, 1, cm1, 0) - cm1", "qosStatsTable (pm1, 1, cm2, 0) - cm2"};
  EXPECT_EQ(statsRows(), rows);
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm1, 1, cm1, 3) Ethernet1"});

  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 CoppStatsTableSm::handleInterval()",
                               "8 CoppStatsTableSm::doClose()",
                               "8 QosStatusCmapPolicerStatsTableSm::handleInterval()",
                               "0 QosStatusCmapPolicerStatsTableSm::doClose()",
                               "8 QosStatusCmapPolicerStatsTableSm::handleInterval()",
                               "0 QosStatusCmapPolicerStatsTableSm::doClose()",
                           }));
  EXPECT_TRUE(statsRows().empty());
  EXPECT_TRUE(policerRows().empty());
  EXPECT_TRUE(sm->qosStatsTableKey().empty());
  // The policer children stay; each has followed the period itself.
  EXPECT_EQ(sm->qosStatusCmapPolicerStatsTableSm().size(), 2U);

  switch_.qosMibConfig->counterPollPeriodIs(10.0);
  EXPECT_EQ(statsRows(), rows);
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm1, 1, cm1, 3) Ethernet1"});
}

TEST_F(CoppStatsTableSmTest, FinitePeriodChangeRescansEverything) {
  counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(0.5);
  EXPECT_EQ(trace.lines(),
            concat(Texts{"8 CoppStatsTableSm::handleInterval()", "8 CoppStatsTableSm::handleAllEntries()"},
                   {
                       judgedLines("cm1", "pm1", "mapQos"),
                       {"8 QosStatusCmapPolicerStatsTableSm::handleInterval()",
                        "8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"},
                   }));
}

TEST_F(CoppStatsTableSmTest, ZeroPeriodOrNoConfigurationKeepsTheTableOn) {
  counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  switch_.qosMibConfig->counterPollPeriodIs(0.0);
  const auto sm = makeSm(nullptr);
  EXPECT_EQ(sm->interval(), 0.0);
  EXPECT_EQ(sm->qosMibConfig(), nullptr);
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"});
  const auto other = makeSm();
  EXPECT_EQ(other->qosStatsTableKey().size(), 1U);
}

TEST_F(CoppStatsTableSmTest, CoppPolicyClassesAreLeftToHardwareStatsWhileTheyAreSupported) {
  switch_.qosHwStatus->coppHwStatsSupportedIs(true);
  const auto copp = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  counterIs(*copp, "copp-acl");
  counterIs(*switch_.policyMap(Qos::mapControlPlane_, "copp-other"), "copp-acl");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(),
            concat(Texts{"0 CoppStatsTableSm::handleCmaps( copp-other, mapControlPlane )"},
                   {
                       judgedLines("copp-acl", "copp-other", "mapControlPlane"),
                       {"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()",
                        "0 CoppStatsTableSm::handleCmaps( copp-system-policy, mapControlPlane )",
                        classMapLine("copp-acl", "copp-system-policy", "mapControlPlane"),
                        "8 CoppStatsTableSm::handleAllEntries()"},
                       judgedLines("copp-acl", "copp-other", "mapControlPlane"),
                   }));
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (copp-other, 0, copp-acl, 0) - copp-acl"});

  // The flag is read, not watched: the next change of the policy's counters
  // after it turns false gets its row.
  switch_.qosHwStatus->coppHwStatsSupportedIs(false);
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (copp-other, 0, copp-acl, 0) - copp-acl"});
  counterIs(*copp, "copp-arp");
  EXPECT_EQ(statsRows(), (Texts{
                             "qosStatsTable (copp-other, 0, copp-acl, 0) - copp-acl",
                             "qosStatsTable (copp-system-policy, 0, copp-arp, 0) - copp-arp",
                         }));
}

TEST_F(CoppStatsTableSmTest, CoppPolicyRowsWrittenBeforeHardwareStatsStayUntilClose) {
  const auto copp = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  counterIs(*copp, "copp-acl");
  auto sm = makeSm();
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (copp-system-policy, 0, copp-acl, 0) - copp-acl"});
  switch_.qosHwStatus->coppHwStatsSupportedIs(true);
  copp->cmapCountersDel("copp-acl");
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (copp-system-policy, 0, copp-acl, 0) - copp-acl"});
  sm = nullptr;
  EXPECT_TRUE(statsRows().empty());
}

TEST_F(CoppStatsTableSmTest, SameClassMapCountedUnderTwoPolicyMapsThrowsReinstantiation) {
  switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  const auto pmA = switch_.policyMap(Qos::mapQos_, "pmA");
  const auto pmB = switch_.policyMap(Qos::mapQos_, "pmB");
  policerIs(*counterIs(*pmA, "shared"), "Ethernet1");
  const auto sm = makeSm();
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pmA, 1, shared, 3) Ethernet1"});

  // The policer child is keyed by the class-map name alone: pmB's counters
  // ask for it with other arguments.
  EXPECT_THROW(counterIs(*pmB, "shared"), Kel::MutatorReinstantiatingException);
}

TEST_F(CoppStatsTableSmTest, PolicerChildUnderAKeyBuiltFromOtherArgumentsThrowsReinstantiation) {
  const auto counterA = counterIs(*switch_.policyMap(Qos::mapQos_, "pmA"), "shared");
  const auto sm = makeSm();
  const auto counterB = Kel::make<Qos::Counter>(Kel::String("shared"));
  auto* const child = sm->qosStatusCmapPolicerStatsTableSm("shared");
  EXPECT_EQ(sm->qosStatusCmapPolicerStatsTableSmIs("shared", Qos::mapQos_, "pmA", counterA,
                                                   switch_.qosMibConfig, switch_.qosMib),
            child);
  EXPECT_THROW(sm->qosStatusCmapPolicerStatsTableSmIs("shared", Qos::mapQos_, "pmB", counterB,
                                                      switch_.qosMibConfig, switch_.qosMib),
               Kel::MutatorReinstantiatingException);
}

TEST_F(CoppStatsTableSmTest, NullStatusThrowsTheNullArgumentException) {
  switch_.pmapType(Qos::mapQos_);
  const auto sm = makeSm();
  try {
    sm->pmapTypeIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "policyMapTypeStatus");
  }
  try {
    sm->pmapType(Qos::mapQos_)->pmapIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "policyMapStatus");
  }
}

TEST_F(CoppStatsTableSmTest, PolicyMapArrivingWithCountersIsWalkedAtOnce) {
  switch_.pmapType(Qos::mapQos_);
  const auto sm = makeSm();
  auto pmap = Kel::make<Qos::PolicyMapStatus>(Kel::String("pm2"));
  pmap->typeIs(Qos::mapQos_);
  counterIs(*pmap, "cm1");
  const AgentTrace trace;
  switch_.pmapType(Qos::mapQos_)->pmapIs("pm2", pmap);
  EXPECT_EQ(trace.lines(), concat(Texts{"0 CoppStatsTableSm::handleCmaps( pm2, mapQos )"},
                                  {
                                      judgedLines("cm1", "pm2", "mapQos"),
                                      {"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"},
                                  }));
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm2, 1, cm1, 0) - cm1"});
}

TEST_F(CoppStatsTableSmTest, MapTypeArrivingWithPolicyMapsIsWalkedAtOnce) {
  const auto sm = makeSm();
  auto pmap = Kel::make<Qos::PolicyMapStatus>(Kel::String("pm1"));
  pmap->typeIs(Qos::mapQos_);
  counterIs(*pmap, "cm1");
  auto pmapType = Kel::make<Qos::PolicyMapTypeStatus>(Qos::mapQos_);
  pmapType->pmapIs("pm1", pmap);
  switch_.qosStatus->pmapTypeIs(Qos::mapQos_, pmapType);
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"});
  switch_.qosStatus->pmapTypeDel(Qos::mapQos_);
  EXPECT_EQ(sm->pmapType(Qos::mapQos_), nullptr);
}

TEST_F(CoppStatsTableSmTest, PolicyMapLeavingTheStatusKeepsItsRowsUntilClose) {
  counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  auto sm = makeSm();
  const AgentTrace trace;
  switch_.pmapType(Qos::mapQos_)->pmapDel("pm1");
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_EQ(sm->pmapType(Qos::mapQos_)->pmap("pm1"), nullptr);
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"});
  sm = nullptr;
  EXPECT_TRUE(statsRows().empty());
}

TEST_F(CoppStatsTableSmTest, ClosingRemovesExactlyTheStatisticsRowsItAddedAndReleasingTheRest) {
  switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  const auto pmap = switch_.policyMap(Qos::mapQos_, "pm1");
  policerIs(*counterIs(*pmap, "cm1"), "Ethernet1");
  // A row of another writer, under an index with a non-zero qualifier.
  switch_.qosMib->qosStatsTableIs(
      QosSnmp::QosStatsTableIndex(QosSnmp::uniqueId("pm1"), Qos::mapQos_, QosSnmp::uniqueId("cm1"), 4),
      nullptr, pmap->cmapCounters("cm1"));
  auto sm = makeSm();
  EXPECT_EQ(statsRows().size(), 2U);
  const AgentTrace trace;
  sm->close();
  EXPECT_EQ(trace.lines(), Texts{"8 CoppStatsTableSm::doClose()"});
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 4) - cm1"});
  // The policer children go with the machine, not with its doClose().
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm1, 1, cm1, 3) Ethernet1"});

  // A closed machine hears nothing more.
  counterIs(*pmap, "cm2");
  EXPECT_EQ(trace.lines(), Texts{"8 CoppStatsTableSm::doClose()"});

  sm = nullptr;
  EXPECT_EQ(trace.lines(),
            (Texts{"8 CoppStatsTableSm::doClose()", "0 QosStatusCmapPolicerStatsTableSm::doClose()"}));
  EXPECT_TRUE(policerRows().empty());
  EXPECT_EQ(statsRows(), Texts{"qosStatsTable (pm1, 1, cm1, 4) - cm1"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStatsTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStatsTableSm::KelPmapType"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStatsTableSm::KelPmapType::KelPmap"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::QosStatusCmapPolicerStatsTableSm"), 0);
}

TEST_F(CoppStatsTableSmTest, NullInputsMakeNoReactors) {
  const AgentTrace trace;
  const auto sm = Kel::make<CoppStatsTableSm>(nullptr, nullptr, nullptr, switch_.qosMib);
  EXPECT_EQ(trace.lines(), Texts{"8 CoppStatsTableSm::handleAllEntries()"});
  EXPECT_EQ(sm->qosStatus(), nullptr);
  EXPECT_TRUE(sm->pmapType().empty());
}

TEST_F(CoppStatsTableSmTest, PolicerStatsToggleIsOnByDefault) {
  EXPECT_TRUE(QosSnmp::toggleQosSnmpPolicerStatsTableEnabled());
}

TEST_F(CoppStatsTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  counterIs(*switch_.policyMap(Qos::mapQos_, "pm1"), "cm1");
  const RingCapture ring;
  auto sm = makeSm();
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  sm = nullptr;
  const std::string copp = "void QosSnmp::CoppStatsTableSm::";
  const std::string policer = "void QosSnmp::QosStatusCmapPolicerStatsTableSm::";
  EXPECT_EQ(ring.entries(),
            (Texts{
                copp + "KelPmapType::KelPmap::handleCmaps() []",
                copp + "handleClassMap(Kel::String, Kel::String, Qos::MapType) [ppi] cm1 pm1 1",
                policer + "handleAllEntries() []",
                copp + "handleAllEntries() []",
                copp + "handleClassMap(Kel::String, Kel::String, Qos::MapType) [ppi] cm1 pm1 1",
                copp + "handleInterval() []",
                copp + "doClose() []",
                policer + "handleInterval() []",
                policer + "doClose() []",
                copp + "doClose() []",
                policer + "doClose() []",
            }));
}

// A toggle store that turns the policer statistics table off.
class ToggleOffStore : public Kel::ToggleStore {
 public:
  std::optional<bool> toggleState(const std::string& /*name*/, const std::string& /*file*/) override {
    return false;
  }
};

// The toggle is read once per process, so the case runs in a fresh process
// of its own and exits 0 when every expectation holds.
void runWithPolicerStatsToggleOff() {
  Kel::toggleStoreIs(std::make_shared<ToggleOffStore>());
  TestSwitch testSwitch;
  testSwitch.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  const auto pmap = testSwitch.policyMap(Qos::mapQos_, "pm1");
  policerIs(*counterIs(*pmap, "cm1"), "Ethernet1");
  const auto sm = Kel::make<CoppStatsTableSm>(testSwitch.qosStatus, testSwitch.qosMibConfig,
                                              testSwitch.qosHwStatus, testSwitch.qosMib);
  bool ok = !QosSnmp::toggleQosSnmpPolicerStatsTableEnabled();
  ok = ok && tableRows(*testSwitch.qosMib, "qosStatsTable") == Texts{"qosStatsTable (pm1, 1, cm1, 0) - cm1"};
  ok = ok && sm->qosStatusCmapPolicerStatsTableSm().empty();
  ok = ok && tableRows(*testSwitch.qosMib, "qosPolicerStatsTable").empty();
  pmap->cmapCountersDel("cm1");
  ok = ok && tableRows(*testSwitch.qosMib, "qosStatsTable").empty();
  std::exit(ok ? 0 : 1);
}

TEST(CoppStatsTableSmToggleTest, PolicerStatsToggleOffMakesNoPolicerChildren) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runWithPolicerStatsToggleOff(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
