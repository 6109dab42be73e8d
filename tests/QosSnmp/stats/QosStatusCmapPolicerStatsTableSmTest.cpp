#include "QosSnmp/stats/QosStatusCmapPolicerStatsTableSm.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosPolicerStatsTableIndex.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"
#include "kel/String.h"
#include "pellix/IntfId.h"

namespace {

using QosSnmp::QosStatusCmapPolicerStatsTableSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

const std::string kRowEthernet1 = "qosPolicerStatsTable (pm1, 1, cm1, 3) Ethernet1";
const std::string kRowEthernet2 = "qosPolicerStatsTable (pm1, 1, cm1, 5) Ethernet2";

std::string handlerLine(const std::string& intfName) {
  return "8 QosStatusCmapPolicerStatsTableSm::handleClassMapPolicer( cm1, mapQos, pm1, " + intfName + " )";
}

class QosStatusCmapPolicerStatsTableSmTest : public ::testing::Test {
 protected:
  QosStatusCmapPolicerStatsTableSmTest() {
    switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet1")), 3);
    switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet2")), 5);
  }

  Kel::Ptr<QosStatusCmapPolicerStatsTableSm> makeSm(
      const Kel::Ptr<const QosSnmp::QosMibConfig>& qosMibConfig) {
    return Kel::make<QosStatusCmapPolicerStatsTableSm>(Kel::String("cm1"), Qos::mapQos_, Kel::String("pm1"),
                                                       counter_, qosMibConfig, switch_.qosMib);
  }
  Kel::Ptr<QosStatusCmapPolicerStatsTableSm> makeSm() { return makeSm(switch_.qosMibConfig); }

  void policerIs(const std::string& intfName) {
    counter_->policerHwStatusIs(Kel::String(intfName),
                                Kel::make<Qos::PolicerHwStatus>(Kel::String(intfName)));
  }

  // The policer statistics rows of the MIB model.
  Texts policerRows() const {
    Texts rows;
    for (const std::string& row : QosSnmpTest::mibRows(*switch_.qosMib)) {
      if (row.starts_with("qosPolicerStatsTable ")) {
        rows.push_back(row);
      }
    }
    return rows;
  }

  TestSwitch switch_;
  Kel::Ptr<Qos::Counter> counter_ = Kel::make<Qos::Counter>(Kel::String("cm1"));
};

TEST_F(QosStatusCmapPolicerStatsTableSmTest, InitialScanWritesOneRowPerInterface) {
  policerIs("Ethernet1");
  policerIs("Ethernet2");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()",
                               handlerLine("Ethernet1"),
                               handlerLine("Ethernet2"),
                           }));
  EXPECT_EQ(policerRows(), (Texts{kRowEthernet1, kRowEthernet2}));
  EXPECT_EQ(sm->qosPolicerStatsTableKey().size(), 2U);
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, InterfaceUnknownToTheMirrorGetsIfIndexZero) {
  const auto sm = makeSm();
  policerIs("Ethernet9");
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm1, 1, cm1, 0) Ethernet9"});
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, PolicerStatusRemovedForOneInterfaceRemovesExactlyThatRow) {
  policerIs("Ethernet1");
  policerIs("Ethernet2");
  const auto sm = makeSm();
  const AgentTrace trace;
  counter_->policerHwStatusDel(Kel::String("Ethernet1"));
  EXPECT_EQ(trace.lines(), Texts{handlerLine("Ethernet1")});
  EXPECT_EQ(policerRows(), Texts{kRowEthernet2});
  EXPECT_EQ(sm->qosPolicerStatsTableKey().size(), 1U);
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, InfinitePeriodWritesNothingUntilAFinitePeriodWritesEveryRow) {
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  const auto sm = makeSm();
  const AgentTrace trace;
  policerIs("Ethernet1");
  policerIs("Ethernet2");
  EXPECT_EQ(trace.lines(), (Texts{handlerLine("Ethernet1"), handlerLine("Ethernet2")}));
  EXPECT_TRUE(policerRows().empty());

  switch_.qosMibConfig->counterPollPeriodIs(30.0);
  EXPECT_EQ(policerRows(), (Texts{kRowEthernet1, kRowEthernet2}));
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, EveryFinitePeriodChangeRescansEveryInterface) {
  switch_.qosMibConfig->counterPollPeriodIs(10.0);
  policerIs("Ethernet1");
  policerIs("Ethernet2");
  const auto sm = makeSm();
  // A row lost meanwhile comes back with the rescan.
  switch_.qosMib->qosPolicerStatsTableDel(QosSnmp::QosPolicerStatsTableIndex(
      QosSnmp::uniqueId("pm1"), Qos::mapQos_, QosSnmp::uniqueId("cm1"), 3));
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(20.0);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatusCmapPolicerStatsTableSm::handleInterval()",
                               "8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()",
                               handlerLine("Ethernet1"),
                               handlerLine("Ethernet2"),
                           }));
  EXPECT_EQ(policerRows(), (Texts{kRowEthernet1, kRowEthernet2}));
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, InfinitePeriodRemovesEveryRowAndTheMachineStaysUsable) {
  policerIs("Ethernet1");
  policerIs("Ethernet2");
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatusCmapPolicerStatsTableSm::handleInterval()",
                               "0 QosStatusCmapPolicerStatsTableSm::doClose()",
                           }));
  EXPECT_TRUE(policerRows().empty());
  EXPECT_TRUE(sm->qosPolicerStatsTableKey().empty());
  EXPECT_FALSE(sm->closed());

  switch_.qosMibConfig->counterPollPeriodIs(0.0);
  EXPECT_EQ(policerRows(), (Texts{kRowEthernet1, kRowEthernet2}));
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, WithoutConfigurationThePeriodReadsAsZero) {
  policerIs("Ethernet1");
  const auto sm = makeSm(nullptr);
  EXPECT_EQ(sm->interval(), 0.0);
  EXPECT_EQ(sm->qosMibConfig(), nullptr);
  EXPECT_EQ(policerRows(), Texts{kRowEthernet1});
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, WithoutCounterTheScanFindsNothing) {
  const AgentTrace trace;
  const auto sm = Kel::make<QosStatusCmapPolicerStatsTableSm>(
      Kel::String("cm1"), Qos::mapQos_, Kel::String("pm1"), nullptr, switch_.qosMibConfig, switch_.qosMib);
  EXPECT_EQ(trace.lines(), Texts{"8 QosStatusCmapPolicerStatsTableSm::handleAllEntries()"});
  EXPECT_EQ(sm->cmapCounter(), nullptr);
  EXPECT_TRUE(policerRows().empty());
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, RowWrittenBeforeItsInterfaceHadAnIfIndexStaysUnderTheOldIndex) {
  const auto sm = makeSm();
  policerIs("Ethernet9");
  switch_.qosMib->intfIdToifIndexIs(Pellix::IntfId(Kel::String("Ethernet9")), 12);
  policerIs("Ethernet9");
  EXPECT_EQ(policerRows(), (Texts{
                               "qosPolicerStatsTable (pm1, 1, cm1, 0) Ethernet9",
                               "qosPolicerStatsTable (pm1, 1, cm1, 12) Ethernet9",
                           }));
  sm->close();
  EXPECT_TRUE(policerRows().empty());
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, ClosingRemovesExactlyTheRowsItAddedAndTracesAtLevelZero) {
  policerIs("Ethernet1");
  const QosSnmp::QosPolicerStatsTableIndex foreign(QosSnmp::uniqueId("pm2"), Qos::mapQos_,
                                                   QosSnmp::uniqueId("cm1"), 3);
  switch_.qosMib->qosPolicerStatsTableIs(foreign, counter_->policerHwStatus(Kel::String("Ethernet1")));
  auto sm = makeSm();
  ASSERT_EQ(policerRows().size(), 2U);
  const AgentTrace trace;
  sm = nullptr;
  EXPECT_EQ(trace.lines(), Texts{"0 QosStatusCmapPolicerStatsTableSm::doClose()"});
  EXPECT_EQ(policerRows(), Texts{"qosPolicerStatsTable (pm2, 1, cm1, 3) Ethernet1"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::QosStatusCmapPolicerStatsTableSm"), 0);
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, ClosedMachineHearsNothingMore) {
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  policerIs("Ethernet1");
  switch_.qosMibConfig->counterPollPeriodIs(5.0);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(policerRows().empty());
}

TEST_F(QosStatusCmapPolicerStatsTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  policerIs("Ethernet1");
  const RingCapture ring;
  auto sm = makeSm();
  switch_.qosMibConfig->counterPollPeriodIs(kInfinity);
  switch_.qosMibConfig->counterPollPeriodIs(1.0);
  sm = nullptr;
  const std::string prefix = "void QosSnmp::QosStatusCmapPolicerStatsTableSm::";
  EXPECT_EQ(ring.entries(), (Texts{
                                prefix + "handleAllEntries() []",
                                prefix + "handleClassMapPolicer(Kel::String) [p] Ethernet1",
                                prefix + "handleInterval() []",
                                prefix + "doClose() []",
                                prefix + "handleInterval() []",
                                prefix + "handleAllEntries() []",
                                prefix + "handleClassMapPolicer(Kel::String) [p] Ethernet1",
                                prefix + "doClose() []",
                            }));
}

}  // namespace
