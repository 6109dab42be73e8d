#include "QosSnmp/ecn/EcnQueueCounterTableSliceSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/ecn/EcnQueueCounterTableSm.h"
#include "QosSnmp/ecn/EcnTestSupport.h"

namespace {

using EcnTest::ecnIntf;
using EcnTest::intfId;
using QosSnmp::EcnQueueCounterTableIndex;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class EcnQueueCounterTableSliceSmTest : public ::testing::Test {
 protected:
  EcnQueueCounterTableSliceSmTest() {
    switch_.qosHwStatus->ecnQueueCountersSupportedIs(true);
    switch_.qosHwStatus->numEcnQueuesIs(2);
    switch_.qosHwStatus->ecnQueueCountersFlagIs(true);
  }

  // The parent, over the test switch's slice directory; its slice machines
  // are the machines under test.
  Kel::Ptr<QosSnmp::EcnQueueCounterTableSm> makeParent() {
    return Kel::make<QosSnmp::EcnQueueCounterTableSm>(
        Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
        Kel::Ptr<const Kel::Dir>(switch_.qosSliceHwStatusDir), switch_.qosMib,
        Kel::Ptr<const Qos::EcnCounterTable>(switch_.ecnCounterTable));
  }
  // A parent without a directory, for slice machines made by hand.
  Kel::Ptr<QosSnmp::EcnQueueCounterTableSm> makeParentWithoutDirectory() {
    return Kel::make<QosSnmp::EcnQueueCounterTableSm>(
        Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus), nullptr, switch_.qosMib,
        Kel::Ptr<const Qos::EcnCounterTable>(switch_.ecnCounterTable));
  }
  void indexed(const std::string& intf, Kel::S32 ifIndex) {
    switch_.qosMib->intfIdToifIndexIs(intfId(intf), ifIndex);
  }
  void addForeignRow(Kel::S32 ifIndex, Kel::U8 queue) {
    switch_.qosMib->ecnQueueCounterTableIs(EcnQueueCounterTableIndex(ifIndex, queue), intfId("Foreign1"),
                                           Kel::make<Qos::SliceHwStatus>("Foreign"), nullptr, false);
  }
  Texts queueRows() const {
    Texts rows;
    for (const std::string& row : QosSnmpTest::mibRows(*switch_.qosMib)) {
      if (row.rfind("ecnQueueCounterTable ", 0) == 0) {
        rows.push_back(row);
      }
    }
    return rows;
  }

  TestSwitch switch_;
};

TEST_F(EcnQueueCounterTableSliceSmTest, TraceSeparatesTheSliceNameAndTheInterfaceWithOneBlank) {
  EXPECT_EQ(QosSnmp::EcnQueueCounterTableSliceSm::kSliceIntfSeparator, " ");
  auto linecard3 = switch_.slice("Linecard3");
  const auto parent = makeParent();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet3/1");
  EXPECT_EQ(trace.lines(),
            Texts{"8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet3/1"});
}

TEST_F(EcnQueueCounterTableSliceSmTest, InitialScanWalksTheInterfacesInNaturalOrderWithoutTracingItself) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet10");
  ecnIntf(*linecard3, "Ethernet2");
  const auto parent = makeParent();
  const AgentTrace trace;
  const auto slice = Kel::make<QosSnmp::EcnQueueCounterTableSliceSm>(
      Kel::String("Linecard3"), Kel::Ptr<const Qos::SliceHwStatus>(linecard3), parent.get());
  EXPECT_TRUE(slice->initialized());
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet2",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet10",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, InterfaceAddedToTheSliceAddsItsRowsUnderItsIfIndex) {
  auto linecard3 = switch_.slice("Linecard3");
  indexed("Ethernet1", 11);
  const auto parent = makeParent();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (11, 0) Ethernet1 Linecard3 table 1",
                             "ecnQueueCounterTable (11, 1) Ethernet1 Linecard3 table 1",
                         }));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:11",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, InterfaceRemovedFromTheSliceDeletesItsRows) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  ecnIntf(*linecard3, "Ethernet2");
  indexed("Ethernet1", 11);
  indexed("Ethernet2", 12);
  const auto parent = makeParent();
  const AgentTrace trace;
  linecard3->ecnIntfCounterHwStatusDel(intfId("Ethernet1"));
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (12, 0) Ethernet2 Linecard3 table 1",
                             "ecnQueueCounterTable (12, 1) Ethernet2 Linecard3 table 1",
                         }));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:11",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, InterfaceWithoutIfIndexIsIgnoredOnAddAndRemoval) {
  auto linecard3 = switch_.slice("Linecard3");
  addForeignRow(0, 0);
  const auto parent = makeParent();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet1");
  linecard3->ecnIntfCounterHwStatusDel(intfId("Ethernet1"));
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (0, 0) Foreign1 Foreign - 0"});
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, IfIndexIsReadWhenTheInterfaceIsNotified) {
  auto linecard3 = switch_.slice("Linecard3");
  const auto parent = makeParent();
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_TRUE(queueRows().empty());
  indexed("Ethernet1", 21);
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_EQ(queueRows().size(), 2U);
  EXPECT_NE(switch_.qosMib->ecnQueueCounterTable(EcnQueueCounterTableIndex(21, 1)), nullptr);
}

TEST_F(EcnQueueCounterTableSliceSmTest, ChangedInterfaceStatusAddsAgainAndLeavesItsRows) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  indexed("Ethernet1", 1);
  const auto parent = makeParent();
  const Texts before = queueRows();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_EQ(queueRows(), before);
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:1",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, ClosingDeletesTheRowsOfEveryInterfaceTheSliceLists) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  ecnIntf(*linecard3, "Ethernet2");
  indexed("Ethernet1", 1);
  indexed("Ethernet2", 2);
  const auto parent = makeParent();
  ASSERT_EQ(queueRows().size(), 4U);
  const AgentTrace trace;
  parent->sliceSmDel("Linecard3");
  EXPECT_TRUE(queueRows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnQueueCounterTableSliceSm::doClose() Linecard3",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:1",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet2 ifIndex:2",
                           }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, ClosingReadsAnInterfaceWithoutIfIndexAsIfIndexZero) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  addForeignRow(0, 0);
  addForeignRow(0, 1);
  addForeignRow(0, 2);
  const auto parent = makeParent();
  const AgentTrace trace;
  parent->sliceSmDel("Linecard3");
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (0, 2) Foreign1 Foreign - 0"});
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnQueueCounterTableSliceSm::doClose() Linecard3",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:0",
                           }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, ClosedSliceMachineReactsToNothing) {
  auto linecard3 = switch_.slice("Linecard3");
  indexed("Ethernet1", 1);
  const auto parent = makeParentWithoutDirectory();
  const auto slice = Kel::make<QosSnmp::EcnQueueCounterTableSliceSm>(
      Kel::String("Linecard3"), Kel::Ptr<const Qos::SliceHwStatus>(linecard3), parent.get());
  slice->close();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(EcnQueueCounterTableSliceSmTest, SwitchedOffSliceMachineIgnoresItsInterfaces) {
  auto linecard3 = switch_.slice("Linecard3");
  indexed("Ethernet1", 1);
  const auto parent = makeParent();
  QosSnmp::EcnQueueCounterTableSliceSm* slice = parent->sliceSm("Linecard3");
  ASSERT_NE(slice, nullptr);
  slice->hasNotificationActiveIs(false);
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_TRUE(queueRows().empty());
  slice->hasNotificationActiveIs(true);
  ecnIntf(*linecard3, "Ethernet2");
  linecard3->ecnIntfCounterHwStatusDel(intfId("Ethernet2"));
  ecnIntf(*linecard3, "Ethernet1");
  EXPECT_EQ(queueRows().size(), 2U);
}

TEST_F(EcnQueueCounterTableSliceSmTest, WithoutSliceStatusEveryInterfaceReadsAsRemoved) {
  indexed("Ethernet1", 1);
  addForeignRow(1, 0);
  addForeignRow(2, 0);
  const auto parent = makeParentWithoutDirectory();
  const auto slice =
      Kel::make<QosSnmp::EcnQueueCounterTableSliceSm>(Kel::String("Linecard3"), nullptr, parent.get());
  EXPECT_EQ(slice->sliceHwStatus(), nullptr);
  const AgentTrace trace;
  slice->handleEcnIntfCounterHwStatus(intfId("Ethernet1"));
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (2, 0) Foreign1 Foreign - 0"});
  slice->close();
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (2, 0) Foreign1 Foreign - 0"});
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:1",
                "8 EcnQueueCounterTableSliceSm::doClose() Linecard3",
            }));
}

TEST_F(EcnQueueCounterTableSliceSmTest, ArgumentsAreTheSliceNameStatusAndParent) {
  auto linecard3 = switch_.slice("Linecard3");
  const auto parent = makeParent();
  const QosSnmp::EcnQueueCounterTableSliceSm* slice = parent->sliceSm("Linecard3");
  ASSERT_NE(slice, nullptr);
  EXPECT_EQ(slice->arguments(), std::make_tuple(Kel::String("Linecard3"),
                                                Kel::Ptr<const Qos::SliceHwStatus>(linecard3), parent.get()));
  EXPECT_EQ(slice->sliceName(), Kel::String("Linecard3"));
}

TEST_F(EcnQueueCounterTableSliceSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  auto linecard3 = switch_.slice("Linecard3");
  const auto parent = makeParent();
  const RingCapture ring;
  ecnIntf(*linecard3, "Ethernet1");
  parent->sliceSmDel("Linecard3");
  const auto slice = Kel::make<QosSnmp::EcnQueueCounterTableSliceSm>(
      Kel::String("Linecard3"), Kel::Ptr<const Qos::SliceHwStatus>(linecard3), parent.get());
  EXPECT_EQ(
      ring.entries(),
      (Texts{
          ("void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus(Pellix::IntfId) [p] "
           "Ethernet1"),
          "void QosSnmp::EcnQueueCounterTableSliceSm::doClose() []",
          "void QosSnmp::EcnQueueCounterTableSm::deleteIntfIndex(Pellix::IntfId, S32) [pi] Ethernet1 0",
          "void QosSnmp::EcnQueueCounterTableSliceSm::handleInitialized() []",
          "void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() []",
          ("void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus(Pellix::IntfId) [p] "
           "Ethernet1"),
      }));
}

TEST(EcnQueueCounterTableSliceSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto parent = Kel::make<QosSnmp::EcnQueueCounterTableSm>(
      Kel::Ptr<const Qos::HwStatus>(testSwitch.qosHwStatus), nullptr, testSwitch.qosMib,
      Kel::Ptr<const Qos::EcnCounterTable>(testSwitch.ecnCounterTable));
  const auto slice = Kel::make<QosSnmp::EcnQueueCounterTableSliceSm>(
      Kel::String("Linecard3"), Kel::Ptr<const Qos::SliceHwStatus>(testSwitch.slice("Linecard3")),
      parent.get());
  EXPECT_DEATH(slice->handleInitialized(),
               "EcnQueueCounterTableSliceSm.cpp:[0-9]+: .*EcnQueueCounterTableSliceSm::handleInitialized.*: "
               "Assertion `!initialized\\(\\)' failed");
}

}  // namespace
