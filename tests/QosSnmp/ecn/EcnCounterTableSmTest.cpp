#include "QosSnmp/ecn/EcnCounterTableSm.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/ecn/EcnTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Child.h"
#include "kel/MutatorException.h"
#include "kel/System.h"

namespace {

using EcnTest::chip;
using EcnTest::sliceCounter;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class EcnCounterTableSmTest : public ::testing::Test {
 protected:
  EcnCounterTableSmTest() { switch_.qosHwStatus->ecnCountersSupportedIs(true); }

  Kel::Ptr<QosSnmp::EcnCounterTableSm> makeSm() {
    return Kel::make<QosSnmp::EcnCounterTableSm>(Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                 Kel::Ptr<const Qos::HwCounter>(switch_.qosHwCounter),
                                                 switch_.qosMib);
  }
  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }
  // A row the machine did not write.
  void addForeignRow() {
    switch_.qosMib->ecnCounterTableIs("Foreign0", Kel::make<Qos::ChipCounter>("Foreign0"), 7);
  }
  static long count(const Texts& texts, const std::string& text) {
    return std::count(texts.begin(), texts.end(), text);
  }

  // Virtual time starts well after 0, so that the timer's first wake-up
  // (time 0) is visibly in the past.
  Kel::VirtualTime time_{100.0};
  TestSwitch switch_;
};

TEST_F(EcnCounterTableSmTest, InitialScanAddsOneRowPerChip) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*linecard3, "Jericho1");
  auto linecard4 = sliceCounter(*switch_.qosHwCounter, "Linecard4");
  chip(*linecard4, "Jericho2");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(rows(), (Texts{
                        "ecnCounterTable Jericho0 Jericho0 0",
                        "ecnCounterTable Jericho1 Jericho1 0",
                        "ecnCounterTable Jericho2 Jericho2 0",
                    }));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleInitialized()",
                               "8 EcnCounterTableSm::handleAllEntries()",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho0",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho1",
                               "8 EcnCounterTableSm::handleChip()Linecard4 Jericho2",
                           }));
  EXPECT_EQ(sm->sliceHwCounter().size(), 2U);
  EXPECT_TRUE(sm->initialized());
}

TEST_F(EcnCounterTableSmTest, RowIsKeyedByTheShortenedChipName) {
  const Kel::String longName("Linecard3-ForwardingEngine-Jericho-Chip0");
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), longName);
  const auto sm = makeSm();
  const Snmp::String chipId = QosSnmp::uniqueId(longName);
  ASSERT_LE(chipId.size(), QosSnmp::kUniqueIdMaxLength);
  ASSERT_NE(chipId.stringValue(), longName.stringValue());
  EXPECT_EQ(rows(), Texts{"ecnCounterTable " + chipId.stringValue() + " " + longName.stringValue() + " 0"});
}

TEST_F(EcnCounterTableSmTest, UnsupportedCountersAddNothingAndTraceEachChipAtLevelZero) {
  switch_.qosHwStatus->ecnCountersSupportedIs(false);
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*linecard3, "Jericho1");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleInitialized()",
                               "8 EcnCounterTableSm::handleAllEntries()",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho0",
                               "0 ECN counters not supported ",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho1",
                               "0 ECN counters not supported ",
                           }));
}

TEST_F(EcnCounterTableSmTest, UnsupportedCountersRemoveNothing) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*linecard3, "Jericho1");
  const auto sm = makeSm();
  switch_.qosHwStatus->ecnCountersSupportedIs(false);
  const AgentTrace trace;
  linecard3->perChipCountDel("Jericho0");
  switch_.qosHwCounter->sliceHwCounterDel("Linecard3");
  EXPECT_EQ(rows(), (Texts{"ecnCounterTable Jericho0 Jericho0 0", "ecnCounterTable Jericho1 Jericho1 0"}));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho0",
                               "0 ECN counters not supported ",
                               "8 EcnCounterTableSm::handleRemoval()Linecard3",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho1",
                               "0 ECN counters not supported ",
                           }));
}

TEST_F(EcnCounterTableSmTest, WithoutHardwareStatusCountersReadAsUnsupported) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const AgentTrace trace;
  const auto sm = Kel::make<QosSnmp::EcnCounterTableSm>(
      nullptr, Kel::Ptr<const Qos::HwCounter>(switch_.qosHwCounter), switch_.qosMib);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines().back(), "0 ECN counters not supported ");
}

TEST_F(EcnCounterTableSmTest, ChipAddedToASliceAddsItsRowAtOnce) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  const auto sm = makeSm();
  const AgentTrace trace;
  chip(*linecard3, "Jericho0");
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::handleChip()Linecard3 Jericho0"});
}

TEST_F(EcnCounterTableSmTest, ChipRemovedFromASliceRemovesItsRowAtOnce) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*linecard3, "Jericho1");
  const auto sm = makeSm();
  const AgentTrace trace;
  linecard3->perChipCountDel("Jericho0");
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho1 Jericho1 0"});
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::handleChip()Linecard3 Jericho0"});
}

TEST_F(EcnCounterTableSmTest, ReplacedChipCounterRewritesItsRowWithTheNewCounter) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  const auto sm = makeSm();
  const auto replacement = Kel::make<Qos::ChipCounter>("Jericho0");
  linecard3->perChipCountIs("Jericho0", replacement);
  ASSERT_NE(switch_.qosMib->ecnCounterTable("Jericho0"), nullptr);
  EXPECT_EQ(switch_.qosMib->ecnCounterTable("Jericho0")->chipCounter, replacement);
}

TEST_F(EcnCounterTableSmTest, SliceRemovedRemovesTheRowsOfAllItsChips) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*linecard3, "Jericho1");
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard4"), "Jericho2");
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.qosHwCounter->sliceHwCounterDel("Linecard3");
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho2 Jericho2 0"});
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleRemoval()Linecard3",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho0",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho1",
                           }));
  EXPECT_EQ(sm->sliceHwCounter().find("Linecard3"), nullptr);
  EXPECT_EQ(sm->sliceHwCounter().size(), 1U);
}

TEST_F(EcnCounterTableSmTest, SliceAddedLaterIsWatchedAtOnce) {
  const auto sm = makeSm();
  auto linecard5 = sliceCounter(*switch_.qosHwCounter, "Linecard5");
  ASSERT_NE(sm->sliceHwCounter().find("Linecard5"), nullptr);
  EXPECT_EQ(sm->sliceHwCounter().find("Linecard5")->sliceName(), Kel::String("Linecard5"));
  chip(*linecard5, "Jericho0");
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
}

TEST_F(EcnCounterTableSmTest, ChipsOfASliceAddedLaterWaitForTheNextPoll) {
  const auto sm = makeSm();
  time_.advance(0.0);
  auto linecard5 = Kel::make<Qos::SliceHwCounter>("Linecard5");
  chip(*linecard5, "Jericho0");
  const AgentTrace trace;
  switch_.qosHwCounter->sliceHwCounterIs("Linecard5", linecard5);
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(trace.lines().empty());
  time_.advance(QosSnmp::EcnCounterTableSm::kPollPeriod);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
}

TEST_F(EcnCounterTableSmTest, SharedChipNameRemovedFromOneSliceComesBackFromTheOtherAtTheNextPoll) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  auto linecard4 = sliceCounter(*switch_.qosHwCounter, "Linecard4");
  chip(*linecard3, "Jericho0");
  const auto fromLinecard4 = chip(*linecard4, "Jericho0");
  const auto sm = makeSm();
  time_.advance(0.0);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
  linecard3->perChipCountDel("Jericho0");
  EXPECT_TRUE(rows().empty());
  time_.advance(QosSnmp::EcnCounterTableSm::kPollPeriod - 0.5);
  EXPECT_TRUE(rows().empty());
  time_.advance(0.5);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
  EXPECT_EQ(switch_.qosMib->ecnCounterTable("Jericho0")->chipCounter, fromLinecard4);
}

TEST_F(EcnCounterTableSmTest, TimerIsCreatedDueAtTimeZeroAndFiresAtTheFirstTurn) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const auto sm = makeSm();
  ASSERT_NE(sm->timer(), nullptr);
  EXPECT_EQ(sm->timer()->timeMin(), 0.0);
  const AgentTrace trace;
  time_.advance(0.0);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleTimer()",
                               "8 EcnCounterTableSm::handleAllEntries()",
                               "8 EcnCounterTableSm::handleChip()Linecard3 Jericho0",
                           }));
  EXPECT_EQ(sm->timer()->timeMin(), 110.0);
}

TEST_F(EcnCounterTableSmTest, PollRefreshesRowsEveryTenSecondsAndNotBefore) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const auto sm = makeSm();
  time_.advance(0.0);
  switch_.qosMib->ecnCounterTableDel("Jericho0");
  const AgentTrace trace;
  time_.advance(9.99);
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(trace.lines().empty());
  time_.advance(0.01);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
  EXPECT_EQ(count(trace.lines(), "8 EcnCounterTableSm::handleTimer()"), 1);
  EXPECT_EQ(sm->timer()->timeMin(), 120.0);
  time_.advance(30.0);
  EXPECT_EQ(count(trace.lines(), "8 EcnCounterTableSm::handleTimer()"), 4);
  EXPECT_EQ(sm->timer()->timeMin(), 150.0);
}

TEST_F(EcnCounterTableSmTest, SupportTurnedOnTakesEffectAtTheNextPoll) {
  switch_.qosHwStatus->ecnCountersSupportedIs(false);
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const auto sm = makeSm();
  time_.advance(0.0);
  switch_.qosHwStatus->ecnCountersSupportedIs(true);
  time_.advance(9.0);
  EXPECT_TRUE(rows().empty());
  time_.advance(1.0);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
}

TEST_F(EcnCounterTableSmTest, SupportTurnedOffKeepsRowsUntilTheMachineCloses) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const auto sm = makeSm();
  switch_.qosHwStatus->ecnCountersSupportedIs(false);
  time_.advance(20.0);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(EcnCounterTableSmTest, TimerDelStopsThePoll) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  const auto sm = makeSm();
  sm->timerDel();
  EXPECT_EQ(sm->timer(), nullptr);
  EXPECT_EQ(time_.clock()->armedTimers(), 0U);
  const AgentTrace trace;
  time_.advance(30.0);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(EcnCounterTableSmTest, ClosingEmptiesTheWholeTableIncludingRowsItDidNotAdd) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  addForeignRow();
  const auto sm = makeSm();
  ASSERT_EQ(rows().size(), 2U);
  const AgentTrace trace;
  sm->close();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::doClose()"});
}

TEST_F(EcnCounterTableSmTest, ClosedMachineNeitherPollsNorReacts) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  time_.advance(30.0);
  chip(*linecard3, "Jericho1");
  sliceCounter(*switch_.qosHwCounter, "Linecard4");
  switch_.qosHwCounter->sliceHwCounterDel("Linecard3");
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(EcnCounterTableSmTest, ReleasingTheMachineLeavesAnEmptyTableAndNothingAlive) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard4"), "Jericho1");
  {
    const auto sm = makeSm();
    ASSERT_EQ(rows().size(), 2U);
  }
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(time_.clock()->armedTimers(), 0U);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnCounterTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnCounterTableSm::KelSliceHwCounter"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnCounterTableSm::KelQosHwCounter"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnCounterTableSm::KelTimer"), 0);
  EXPECT_EQ(switch_.qosHwCounter->notifieeList().size(), 0U);
  EXPECT_EQ(linecard3->notifieeList().size(), 0U);
}

TEST_F(EcnCounterTableSmTest, SliceReactorsDroppedWithTheMachineWriteNoRowsBack) {
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard3"), "Jericho0");
  auto sm = makeSm();
  const AgentTrace trace;
  sm.reset();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::doClose()"});
}

TEST_F(EcnCounterTableSmTest, WithoutHardwareCountersEveryChipEvaluationDeletes) {
  switch_.qosMib->ecnCounterTableIs("Jericho0", Kel::make<Qos::ChipCounter>("Jericho0"), 0);
  const AgentTrace trace;
  const auto sm = Kel::make<QosSnmp::EcnCounterTableSm>(Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                        nullptr, switch_.qosMib);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleInitialized()",
                               "8 EcnCounterTableSm::handleAllEntries()",
                           }));
  EXPECT_TRUE(sm->sliceHwCounter().empty());
  EXPECT_EQ(sm->qosHwCounter(), nullptr);
  sm->handleChip("Linecard3", "Jericho0");
  EXPECT_TRUE(rows().empty());
}

TEST_F(EcnCounterTableSmTest, ClosingWithoutAMibIsHarmless) {
  const auto sm = Kel::make<QosSnmp::EcnCounterTableSm>(Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                        nullptr, nullptr);
  const AgentTrace trace;
  sm->close();
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::doClose()"});
}

TEST_F(EcnCounterTableSmTest, QosHwCounterDelStopsFollowingSlices) {
  const auto sm = makeSm();
  sm->qosHwCounterDel();
  EXPECT_EQ(sm->qosHwCounter(), nullptr);
  sliceCounter(*switch_.qosHwCounter, "Linecard5");
  EXPECT_TRUE(sm->sliceHwCounter().empty());
}

TEST_F(EcnCounterTableSmTest, NullSliceIsRefusedNamingTheArgument) {
  const auto sm = makeSm();
  try {
    sm->sliceHwCounterIs(nullptr);
    FAIL() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "sliceHwCounter");
  }
}

TEST_F(EcnCounterTableSmTest, SliceWithAReactorKeepsItEvenForAnotherEntityOfTheSameName) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  const auto sm = makeSm();
  time_.advance(0.0);
  const auto replacement = Kel::make<Qos::SliceHwCounter>("Linecard3");
  switch_.qosHwCounter->sliceHwCounterIs("Linecard3", replacement);
  ASSERT_EQ(sm->sliceHwCounter().size(), 1U);
  EXPECT_EQ(sm->sliceHwCounter().find("Linecard3")->notifier(), linecard3.get());
  EXPECT_EQ(sm->sliceHwCounterIs(replacement)->notifier(), linecard3.get());
  // The reactor still watches the entity it was made for, so a chip of the
  // replacement shows at the next poll.
  chip(*replacement, "Jericho0");
  EXPECT_TRUE(rows().empty());
  time_.advance(QosSnmp::EcnCounterTableSm::kPollPeriod);
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho0 Jericho0 0"});
}

TEST_F(EcnCounterTableSmTest, SliceHwCounterDelAllReEvaluatesEveryChipOfEverySlice) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  chip(*sliceCounter(*switch_.qosHwCounter, "Linecard4"), "Jericho1");
  const auto sm = makeSm();
  linecard3->perChipCountDel("Jericho0");
  switch_.qosMib->ecnCounterTableDelAll();
  const AgentTrace trace;
  sm->sliceHwCounterDelAll();
  // The slices are still in qosHwCounter: re-evaluation writes their rows.
  EXPECT_EQ(rows(), Texts{"ecnCounterTable Jericho1 Jericho1 0"});
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnCounterTableSm::handleRemoval()Linecard3",
                               "8 EcnCounterTableSm::handleRemoval()Linecard4",
                               "8 EcnCounterTableSm::handleChip()Linecard4 Jericho1",
                           }));
  EXPECT_TRUE(sm->sliceHwCounter().empty());
}

TEST_F(EcnCounterTableSmTest, SwitchedOffMachineIgnoresSliceAndChipNotifications) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  const auto sm = makeSm();
  sm->hasNotificationActiveIs(false);
  const AgentTrace trace;
  chip(*linecard3, "Jericho0");
  sliceCounter(*switch_.qosHwCounter, "Linecard4");
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_EQ(sm->sliceHwCounter().size(), 1U);
  sm->hasNotificationActiveIs(true);
  chip(*linecard3, "Jericho1");
  EXPECT_EQ(trace.lines(), Texts{"8 EcnCounterTableSm::handleChip()Linecard3 Jericho1"});
}

TEST_F(EcnCounterTableSmTest, RootKeepsTheMachineForTheSameInputs) {
  Kel::Child<QosSnmp::EcnCounterTableSm> child;
  const Kel::Ptr<const Qos::HwStatus> hwStatus = switch_.qosHwStatus;
  const Kel::Ptr<const Qos::HwCounter> hwCounter = switch_.qosHwCounter;
  QosSnmp::EcnCounterTableSm* first = child.is(hwStatus, hwCounter, switch_.qosMib);
  EXPECT_EQ(child.is(hwStatus, hwCounter, switch_.qosMib), first);
  EXPECT_NE(child.is(hwStatus, Kel::Ptr<const Qos::HwCounter>(), switch_.qosMib), first);
}

TEST_F(EcnCounterTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  auto linecard3 = sliceCounter(*switch_.qosHwCounter, "Linecard3");
  chip(*linecard3, "Jericho0");
  const RingCapture ring;
  const auto sm = makeSm();
  time_.advance(0.0);
  switch_.qosHwCounter->sliceHwCounterDel("Linecard3");
  sm->close();
  EXPECT_EQ(
      ring.entries(),
      (Texts{
          "void QosSnmp::EcnCounterTableSm::handleInitialized() []",
          "void QosSnmp::EcnCounterTableSm::handleAllEntries() []",
          "void QosSnmp::EcnCounterTableSm::handleChip(Kel::String, Kel::String) [pp] Linecard3 Jericho0",
          "void QosSnmp::EcnCounterTableSm::handleTimer() []",
          "void QosSnmp::EcnCounterTableSm::handleAllEntries() []",
          "void QosSnmp::EcnCounterTableSm::handleChip(Kel::String, Kel::String) [pp] Linecard3 Jericho0",
          "void QosSnmp::EcnCounterTableSm::KelSliceHwCounter::handleRemoval() []",
          "void QosSnmp::EcnCounterTableSm::handleChip(Kel::String, Kel::String) [pp] Linecard3 Jericho0",
          "void QosSnmp::EcnCounterTableSm::doClose() []",
      }));
}

TEST(EcnCounterTableSmDeathTest, SecondInitializationAborts) {
  const Kel::VirtualTime time;
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::EcnCounterTableSm>(
      Kel::Ptr<const Qos::HwStatus>(testSwitch.qosHwStatus),
      Kel::Ptr<const Qos::HwCounter>(testSwitch.qosHwCounter), testSwitch.qosMib);
  EXPECT_DEATH(sm->handleInitialized(),
               "EcnCounterTableSm.cpp:[0-9]+: .*EcnCounterTableSm::handleInitialized.*: Assertion "
               "`!initialized\\(\\)' failed");
}

}  // namespace
