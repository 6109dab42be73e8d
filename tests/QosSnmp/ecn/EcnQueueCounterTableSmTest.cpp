#include "QosSnmp/ecn/EcnQueueCounterTableSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/ecn/EcnTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Child.h"
#include "kel/MutatorException.h"

namespace {

using EcnTest::ecnIntf;
using EcnTest::intfId;
using QosSnmp::EcnQueueCounterTableIndex;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class EcnQueueCounterTableSmTest : public ::testing::Test {
 protected:
  EcnQueueCounterTableSmTest() {
    switch_.qosHwStatus->ecnQueueCountersSupportedIs(true);
    switch_.qosHwStatus->numEcnQueuesIs(2);
    switch_.qosHwStatus->ecnQueueCountersFlagIs(true);
  }

  Kel::Ptr<QosSnmp::EcnQueueCounterTableSm> makeSm() {
    return Kel::make<QosSnmp::EcnQueueCounterTableSm>(
        Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
        Kel::Ptr<const Kel::Dir>(switch_.qosSliceHwStatusDir), switch_.qosMib,
        Kel::Ptr<const Qos::EcnCounterTable>(switch_.ecnCounterTable));
  }
  // The interface's ifIndex, as the interface-index mirror records it.
  void indexed(const std::string& intf, Kel::S32 ifIndex) {
    switch_.qosMib->intfIdToifIndexIs(intfId(intf), ifIndex);
  }
  // A row the machine did not write.
  void addForeignRow(Kel::S32 ifIndex, Kel::U8 queue) {
    switch_.qosMib->ecnQueueCounterTableIs(EcnQueueCounterTableIndex(ifIndex, queue), intfId("Foreign1"),
                                           Kel::make<Qos::SliceHwStatus>("Foreign"), nullptr, false);
  }
  // The ECN queue rows only, without the interface map.
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

TEST_F(EcnQueueCounterTableSmTest, InitialScanMakesOneSliceMachinePerSliceAndAddsRowsOfIndexedInterfaces) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet3/1");
  ecnIntf(*linecard3, "Ethernet3/2");
  ecnIntf(*switch_.slice("Linecard4"), "Ethernet4/1");
  indexed("Ethernet3/1", 31);
  indexed("Ethernet4/1", 41);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib),
            (Texts{
                "ecnQueueCounterTable (31, 0) Ethernet3/1 Linecard3 table 1",
                "ecnQueueCounterTable (31, 1) Ethernet3/1 Linecard3 table 1",
                "ecnQueueCounterTable (41, 0) Ethernet4/1 Linecard4 table 1",
                "ecnQueueCounterTable (41, 1) Ethernet4/1 Linecard4 table 1",
                "intfIdToifIndex Ethernet3/1 31",
                "intfIdToifIndex Ethernet4/1 41",
            }));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSm::handleInitialized()",
                "8 EcnQueueCounterTableSm::handleSlice()",
                "8 EcnQueueCounterTableSm::handleSlice() Linecard3",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet3/1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet3/1 ifIndex:31",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet3/2",
                "8 EcnQueueCounterTableSm::handleSlice() Linecard4",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard4 Ethernet4/1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet4/1 ifIndex:41",
            }));
  EXPECT_TRUE(sm->initialized());
  ASSERT_EQ(sm->sliceSm().size(), 2U);
  ASSERT_NE(sm->sliceSm("Linecard3"), nullptr);
  EXPECT_EQ(sm->sliceSm("Linecard3")->sliceHwStatus(), linecard3.get());
  EXPECT_TRUE(sm->sliceSm("Linecard3")->initialized());
}

TEST_F(EcnQueueCounterTableSmTest, RowsCarryTheQueueCountersFlagUnchanged) {
  switch_.qosHwStatus->ecnQueueCountersFlagIs(false);
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (1, 0) Ethernet1 Linecard3 table 0",
                             "ecnQueueCounterTable (1, 1) Ethernet1 Linecard3 table 0",
                         }));
  ASSERT_NE(switch_.qosMib->ecnQueueCounterTable(EcnQueueCounterTableIndex(1, 0)), nullptr);
  EXPECT_EQ(switch_.qosMib->ecnQueueCounterTable(EcnQueueCounterTableIndex(1, 0))->ecnCounterTable,
            switch_.ecnCounterTable);
}

TEST_F(EcnQueueCounterTableSmTest, WithNoEcnQueuesNoRowIsEverAddedOrDeleted) {
  switch_.qosHwStatus->numEcnQueuesIs(0);
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  indexed("Ethernet1", 1);
  addForeignRow(1, 0);
  const auto sm = makeSm();
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (1, 0) Foreign1 Foreign - 0"});
  sm->deleteIntfIndex(intfId("Ethernet1"), 1);
  linecard3->ecnIntfCounterHwStatusDel(intfId("Ethernet1"));
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (1, 0) Foreign1 Foreign - 0"});
}

TEST_F(EcnQueueCounterTableSmTest, UnsupportedQueueCountersAddNothingButDeleteStillDeletes) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  switch_.qosHwStatus->ecnQueueCountersSupportedIs(false);
  switch_.qosMib->ecnQueueCounterTableDelAll();
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_TRUE(queueRows().empty());
  addForeignRow(1, 1);
  sm->deleteIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_TRUE(queueRows().empty());
}

TEST_F(EcnQueueCounterTableSmTest, WithoutHardwareStatusNothingIsAddedOrDeleted) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  indexed("Ethernet1", 1);
  addForeignRow(1, 0);
  const auto sm = Kel::make<QosSnmp::EcnQueueCounterTableSm>(
      nullptr, Kel::Ptr<const Kel::Dir>(switch_.qosSliceHwStatusDir), switch_.qosMib,
      Kel::Ptr<const Qos::EcnCounterTable>(switch_.ecnCounterTable));
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  sm->deleteIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows(), Texts{"ecnQueueCounterTable (1, 0) Foreign1 Foreign - 0"});
}

TEST_F(EcnQueueCounterTableSmTest, InterfaceReportedByTwoSlicesGetsItsRowsOnceFromTheFirstSlice) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  ecnIntf(*switch_.slice("Linecard4"), "Ethernet1");
  indexed("Ethernet1", 1);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (1, 0) Ethernet1 Linecard3 table 1",
                             "ecnQueueCounterTable (1, 1) Ethernet1 Linecard3 table 1",
                         }));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSm::handleInitialized()",
                "8 EcnQueueCounterTableSm::handleSlice()",
                "8 EcnQueueCounterTableSm::handleSlice() Linecard3",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:1",
                "8 EcnQueueCounterTableSm::handleSlice() Linecard4",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard4 Ethernet1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:1",
            }));
}

TEST_F(EcnQueueCounterTableSmTest, AddLeavesAnExistingRowAsItIs) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  addForeignRow(1, 0);
  const auto sm = makeSm();
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (1, 0) Foreign1 Foreign - 0",
                             "ecnQueueCounterTable (1, 1) Ethernet1 Linecard3 table 1",
                         }));
}

TEST_F(EcnQueueCounterTableSmTest, AddForAnInterfaceNoSliceReportsAddsNothing) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  const auto sm = makeSm();
  const AgentTrace trace;
  sm->addIntfIndex(intfId("Ethernet9"), 9);
  EXPECT_TRUE(queueRows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 EcnQueueCounterTableSm::addIntfIndex() Ethernet9 ifIndex:9"});
}

TEST_F(EcnQueueCounterTableSmTest, AddFromTheRootUsesTheIfIndexItIsGiven) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  const auto sm = makeSm();
  EXPECT_TRUE(queueRows().empty());
  sm->addIntfIndex(intfId("Ethernet1"), 7);
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (7, 0) Ethernet1 Linecard3 table 1",
                             "ecnQueueCounterTable (7, 1) Ethernet1 Linecard3 table 1",
                         }));
}

TEST_F(EcnQueueCounterTableSmTest, AddSkipsDirectoryEntriesOfAnotherType) {
  switch_.qosSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  const auto sm = makeSm();
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows().size(), 2U);
}

TEST_F(EcnQueueCounterTableSmTest, RemovingTheInterfaceFromOneSliceDeletesAllItsRowsEvenIfAnotherReportsIt) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  ecnIntf(*switch_.slice("Linecard4"), "Ethernet1");
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  const AgentTrace trace;
  linecard3->ecnIntfCounterHwStatusDel(intfId("Ethernet1"));
  EXPECT_TRUE(queueRows().empty());
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:1",
            }));
  // They come back with the next add for the interface, from the slice that
  // still reports it.
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (1, 0) Ethernet1 Linecard4 table 1",
                             "ecnQueueCounterTable (1, 1) Ethernet1 Linecard4 table 1",
                         }));
}

TEST_F(EcnQueueCounterTableSmTest, DeleteRemovesEveryQueueBelowNumEcnQueuesWithoutConsultingTheSlices) {
  addForeignRow(1, 0);
  addForeignRow(1, 1);
  addForeignRow(1, 5);
  addForeignRow(2, 0);
  const auto sm = makeSm();
  const AgentTrace trace;
  sm->deleteIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (1, 5) Foreign1 Foreign - 0",
                             "ecnQueueCounterTable (2, 0) Foreign1 Foreign - 0",
                         }));
  EXPECT_EQ(trace.lines(), Texts{"8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:1"});
}

TEST_F(EcnQueueCounterTableSmTest, SliceAddedLaterGetsItsMachineAndRows) {
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  auto linecard3 = Kel::make<Qos::SliceHwStatus>("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  const AgentTrace trace;
  switch_.qosSliceHwStatusDir->entityIs("Linecard3", linecard3);
  EXPECT_NE(sm->sliceSm("Linecard3"), nullptr);
  EXPECT_EQ(queueRows().size(), 2U);
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 EcnQueueCounterTableSm::handleSlice() Linecard3",
                "8 EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() Linecard3 Ethernet1",
                "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:1",
            }));
}

TEST_F(EcnQueueCounterTableSmTest, SliceRemovedClosesItsMachineWhichDeletesItsInterfacesRows) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet3/1");
  ecnIntf(*linecard3, "Ethernet3/2");
  ecnIntf(*switch_.slice("Linecard4"), "Ethernet4/1");
  indexed("Ethernet3/1", 31);
  indexed("Ethernet4/1", 41);
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.qosSliceHwStatusDir->entityDel("Linecard3");
  EXPECT_EQ(sm->sliceSm("Linecard3"), nullptr);
  EXPECT_EQ(queueRows(), (Texts{
                             "ecnQueueCounterTable (41, 0) Ethernet4/1 Linecard4 table 1",
                             "ecnQueueCounterTable (41, 1) Ethernet4/1 Linecard4 table 1",
                         }));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnQueueCounterTableSm::handleSlice() Linecard3",
                               "8 EcnQueueCounterTableSliceSm::doClose() Linecard3",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet3/1 ifIndex:31",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet3/2 ifIndex:0",
                           }));
}

TEST_F(EcnQueueCounterTableSmTest, DirectoryEntryOfAnotherTypeHasNoSliceMachine) {
  switch_.qosSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  const auto sm = makeSm();
  EXPECT_TRUE(sm->sliceSm().empty());
}

TEST_F(EcnQueueCounterTableSmTest, SliceEntryReplacedByAnotherTypeDropsTheSliceMachine) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  ASSERT_EQ(queueRows().size(), 2U);
  switch_.qosSliceHwStatusDir->entityIs("Linecard3", Kel::make<Qos::AclSliceHwStatus>("Linecard3"));
  EXPECT_EQ(sm->sliceSm("Linecard3"), nullptr);
  EXPECT_TRUE(queueRows().empty());
}

TEST_F(EcnQueueCounterTableSmTest, SliceMachineAskedForAgainWithItsOwnArgumentsIsKept) {
  auto linecard3 = switch_.slice("Linecard3");
  const auto sm = makeSm();
  QosSnmp::EcnQueueCounterTableSliceSm* first = sm->sliceSm("Linecard3");
  EXPECT_EQ(sm->sliceSmIs("Linecard3", linecard3, sm.get()), first);
  sm->handleSlice("Linecard3");
  EXPECT_EQ(sm->sliceSm("Linecard3"), first);
}

TEST_F(EcnQueueCounterTableSmTest, SliceMachineAskedForWithAnotherStatusThrows) {
  switch_.slice("Linecard3");
  const auto sm = makeSm();
  const Kel::Ptr<const Qos::SliceHwStatus> other = Kel::make<Qos::SliceHwStatus>("Linecard3");
  EXPECT_THROW(sm->sliceSmIs("Linecard3", other, sm.get()), Kel::MutatorReinstantiatingException);
}

TEST_F(EcnQueueCounterTableSmTest, SliceEntryReplacedByAnotherSliceStatusThrows) {
  switch_.slice("Linecard3");
  const auto sm = makeSm();
  EXPECT_THROW(switch_.slice("Linecard3"), Kel::MutatorReinstantiatingException);
}

TEST_F(EcnQueueCounterTableSmTest, WithoutDirectoryThereAreNoSliceMachinesAndNoRows) {
  indexed("Ethernet1", 1);
  const AgentTrace trace;
  const auto sm = Kel::make<QosSnmp::EcnQueueCounterTableSm>(
      Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus), nullptr, switch_.qosMib,
      Kel::Ptr<const Qos::EcnCounterTable>(switch_.ecnCounterTable));
  sm->addIntfIndex(intfId("Ethernet1"), 1);
  EXPECT_TRUE(sm->sliceSm().empty());
  EXPECT_TRUE(queueRows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnQueueCounterTableSm::handleInitialized()",
                               "8 EcnQueueCounterTableSm::handleSlice()",
                               "8 EcnQueueCounterTableSm::addIntfIndex() Ethernet1 ifIndex:1",
                           }));
}

TEST_F(EcnQueueCounterTableSmTest, ClosingDropsEverySliceMachineThenEmptiesTheWholeTable) {
  ecnIntf(*switch_.slice("Linecard3"), "Ethernet1");
  ecnIntf(*switch_.slice("Linecard4"), "Ethernet2");
  indexed("Ethernet1", 1);
  indexed("Ethernet2", 2);
  addForeignRow(9, 0);
  const auto sm = makeSm();
  ASSERT_EQ(queueRows().size(), 5U);
  const AgentTrace trace;
  sm->close();
  EXPECT_TRUE(queueRows().empty());
  EXPECT_TRUE(sm->sliceSm().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 EcnQueueCounterTableSm::doClose",
                               "8 EcnQueueCounterTableSliceSm::doClose() Linecard3",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet1 ifIndex:1",
                               "8 EcnQueueCounterTableSliceSm::doClose() Linecard4",
                               "8 EcnQueueCounterTableSm::deleteIntfIndex() Ethernet2 ifIndex:2",
                           }));
  // The interface map is not this machine's to clear.
  EXPECT_TRUE(switch_.qosMib->hasIntfIdToifIndex(intfId("Ethernet1")));
}

TEST_F(EcnQueueCounterTableSmTest, ClosedMachineReactsToNothing) {
  auto linecard3 = switch_.slice("Linecard3");
  indexed("Ethernet1", 1);
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  ecnIntf(*linecard3, "Ethernet1");
  switch_.slice("Linecard4");
  switch_.qosSliceHwStatusDir->entityDel("Linecard3");
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(queueRows().empty());
}

TEST_F(EcnQueueCounterTableSmTest, ReleasingTheMachineLeavesAnEmptyTableAndNothingAlive) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  indexed("Ethernet1", 1);
  makeSm();
  EXPECT_TRUE(queueRows().empty());
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnQueueCounterTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnQueueCounterTableSliceSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnQueueCounterTableSm::KelQosSliceHwStatusDir"),
            0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::EcnQueueCounterTableSliceSm::KelSliceHwStatus"),
            0);
  EXPECT_EQ(switch_.qosSliceHwStatusDir->notifieeList().size(), 0U);
  EXPECT_EQ(linecard3->notifieeList().size(), 0U);
}

TEST_F(EcnQueueCounterTableSmTest, RootKeepsTheMachineForTheSameInputs) {
  Kel::Child<QosSnmp::EcnQueueCounterTableSm> child;
  const Kel::Ptr<const Qos::HwStatus> hwStatus = switch_.qosHwStatus;
  const Kel::Ptr<const Kel::Dir> dir = switch_.qosSliceHwStatusDir;
  const Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable = switch_.ecnCounterTable;
  QosSnmp::EcnQueueCounterTableSm* first = child.is(hwStatus, dir, switch_.qosMib, ecnCounterTable);
  EXPECT_EQ(child.is(hwStatus, dir, switch_.qosMib, ecnCounterTable), first);
  EXPECT_NE(child.is(hwStatus, dir, switch_.qosMib, Kel::Ptr<const Qos::EcnCounterTable>()), first);
}

TEST_F(EcnQueueCounterTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  auto linecard3 = switch_.slice("Linecard3");
  ecnIntf(*linecard3, "Ethernet1");
  indexed("Ethernet1", 1);
  const RingCapture ring;
  const auto sm = makeSm();
  sm->deleteIntfIndex(intfId("Ethernet1"), 1);
  sm->close();
  EXPECT_EQ(
      ring.entries(),
      (Texts{
          "void QosSnmp::EcnQueueCounterTableSm::handleInitialized() []",
          "void QosSnmp::EcnQueueCounterTableSm::handleSlice() []",
          "void QosSnmp::EcnQueueCounterTableSm::handleSlice(Kel::String) [p] Linecard3",
          "void QosSnmp::EcnQueueCounterTableSliceSm::handleInitialized() []",
          "void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() []",
          ("void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus(Pellix::IntfId) [p] "
           "Ethernet1"),
          "void QosSnmp::EcnQueueCounterTableSm::addIntfIndex(Pellix::IntfId, S32) [pi] Ethernet1 1",
          "void QosSnmp::EcnQueueCounterTableSm::deleteIntfIndex(Pellix::IntfId, S32) [pi] Ethernet1 1",
          "void QosSnmp::EcnQueueCounterTableSm::doClose() []",
          "void QosSnmp::EcnQueueCounterTableSliceSm::doClose() []",
          "void QosSnmp::EcnQueueCounterTableSm::deleteIntfIndex(Pellix::IntfId, S32) [pi] Ethernet1 1",
      }));
}

TEST(EcnQueueCounterTableSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::EcnQueueCounterTableSm>(
      Kel::Ptr<const Qos::HwStatus>(testSwitch.qosHwStatus),
      Kel::Ptr<const Kel::Dir>(testSwitch.qosSliceHwStatusDir), testSwitch.qosMib,
      Kel::Ptr<const Qos::EcnCounterTable>(testSwitch.ecnCounterTable));
  EXPECT_DEATH(sm->handleInitialized(),
               "EcnQueueCounterTableSm.cpp:[0-9]+: .*EcnQueueCounterTableSm::handleInitialized.*: Assertion "
               "`!initialized\\(\\)' failed");
}

}  // namespace
