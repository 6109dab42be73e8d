#include "QosSnmp/core/AllIntfStatusDirSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/RootSm.h"

namespace {

using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

// The mirror's lines and the root's relays, without what other machines
// trace.
Texts mirrorLines(const AgentTrace& trace) {
  Texts lines;
  for (const std::string& line : trace.lines()) {
    for (const char* prefix :
         {"8 AllIntfStatusDirSm::", "8 ifIndex: ", "8 RootSm::", "8 EcnQueueCounterTableSm::deleteEcn"}) {
      if (line.rfind(prefix, 0) == 0) {
        lines.push_back(line);
        break;
      }
    }
  }
  return lines;
}

// The mirror's and the root's ring-buffer entries.
Texts mirrorEntries(const RingCapture& ring) {
  Texts entries;
  for (const std::string& entry : ring.entries()) {
    if (entry.rfind("void QosSnmp::RootSm::", 0) == 0 ||
        entry.rfind("void QosSnmp::AllIntfStatusDirSm::", 0) == 0) {
      entries.push_back(entry);
    }
  }
  return entries;
}

class AllIntfStatusDirSmTest : public ::testing::Test {
 protected:
  AllIntfStatusDirSmTest() { switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy"); }

  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }
  std::vector<std::string> rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
};

TEST_F(AllIntfStatusDirSmTest, InitialScanMirrorsIndexedInterfacesInOrder) {
  switch_.interface("Ethernet10", 10);
  switch_.interface("Ethernet2", 2);
  switch_.interface("Port-Channel5", 1000005);
  const AgentTrace trace;
  const auto root = makeRoot();
  EXPECT_EQ(rows(), (Texts{"intfIdToifIndex Ethernet2 2", "intfIdToifIndex Ethernet10 10",
                           "intfIdToifIndex Port-Channel5 1000005"}));
  EXPECT_EQ(mirrorLines(trace), (Texts{
                                    "8 RootSm::handleInitialized()",
                                    "8 AllIntfStatusDirSm::handleInitialized()",
                                    "8 AllIntfStatusDirSm::handleIntfStatus( Ethernet2 )",
                                    "8 ifIndex: 2",
                                    "8 RootSm::addServicePolicyEntries( Ethernet2 )",
                                    "8 RootSm::addEcnQueueCounterEntries() Ethernet2",
                                    "8 AllIntfStatusDirSm::handleIntfStatus( Ethernet10 )",
                                    "8 ifIndex: 10",
                                    "8 RootSm::addServicePolicyEntries( Ethernet10 )",
                                    "8 RootSm::addEcnQueueCounterEntries() Ethernet10",
                                    "8 AllIntfStatusDirSm::handleIntfStatus( Port-Channel5 )",
                                    "8 ifIndex: 1000005",
                                    "8 RootSm::addServicePolicyEntries( Port-Channel5 )",
                                    "8 RootSm::addEcnQueueCounterEntries() Port-Channel5",
                                }));
}

TEST_F(AllIntfStatusDirSmTest, IgnoredInterfaceNeverEntersTheMap) {
  const auto root = makeRoot();
  const AgentTrace trace;
  switch_.interface("Management1", -2);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(mirrorLines(trace),
            (Texts{
                "8 AllIntfStatusDirSm::handleIntfStatus( Management1 )",
                "8 ifIndex: -2",
                "8 AllIntfStatusDirSm::handleIntfStatus : skipping Management1 because intfIndex "
                "is ignored",
            }));
}

TEST_F(AllIntfStatusDirSmTest, InterfaceWithoutIndexYetIsSkippedWithItsNumber) {
  const auto root = makeRoot();
  const AgentTrace trace;
  switch_.interface("Ethernet3", -1);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(mirrorLines(trace).back(),
            "8 AllIntfStatusDirSm::handleIntfStatus : skipping Ethernet3 because intfIndex is -1");
}

TEST_F(AllIntfStatusDirSmTest, InterfaceGainingItsIndexLaterIsAdded) {
  const auto status = switch_.interface("Ethernet3", -1);
  const auto root = makeRoot();
  status->snmpIfIndexIs(3);
  Kel::notifyMemberChanged<Interface::AllIntfStatusDir::IntfStatus>(*switch_.allIntfStatusDir,
                                                                    status->intfId());
  EXPECT_EQ(rows(), Texts{"intfIdToifIndex Ethernet3 3"});
}

TEST_F(AllIntfStatusDirSmTest, RemovedInterfaceDeletesItsEntryAndTellsTheRoot) {
  switch_.interface("Ethernet1", 1);
  const auto root = makeRoot();
  const AgentTrace trace;
  switch_.allIntfStatusDir->intfStatusDel(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(mirrorLines(trace), (Texts{
                                    "8 AllIntfStatusDirSm::handleIntfStatus( Ethernet1 )",
                                    "8 RootSm::deleteServicePolicyEntries( Ethernet1 )",
                                    "8 EcnQueueCounterTableSm::deleteEcnQueueCounterEntries() Ethernet1",
                                }));
}

TEST_F(AllIntfStatusDirSmTest, RemovingAnInterfaceThatNeverHadAnIndexStillCallsBothDeletesWithIndexZero) {
  switch_.interface("Ethernet9", -1);
  const auto root = makeRoot();
  const RingCapture ring;
  switch_.allIntfStatusDir->intfStatusDel(Pellix::IntfId(Kel::String("Ethernet9")));
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(mirrorEntries(ring),
            (Texts{
                "void QosSnmp::AllIntfStatusDirSm::handleIntfStatus(Pellix::IntfId) [p] Ethernet9",
                "void QosSnmp::RootSm::deleteServicePolicyEntries(Pellix::IntfId) [p] Ethernet9",
                "void QosSnmp::RootSm::deleteEcnQueueCounterEntries(Pellix::IntfId, S32) [pi] "
                "Ethernet9 0",
            }));
}

TEST_F(AllIntfStatusDirSmTest, RepeatedNotificationRewritesTheEntryAndRepeatsBothAdds) {
  const auto status = switch_.interface("Ethernet1", 1);
  const auto root = makeRoot();
  const AgentTrace trace;
  status->descriptionIs("uplink");
  Kel::notifyMemberChanged<Interface::AllIntfStatusDir::IntfStatus>(*switch_.allIntfStatusDir,
                                                                    status->intfId());
  EXPECT_EQ(rows(), Texts{"intfIdToifIndex Ethernet1 1"});
  EXPECT_EQ(mirrorLines(trace), (Texts{
                                    "8 AllIntfStatusDirSm::handleIntfStatus( Ethernet1 )",
                                    "8 ifIndex: 1",
                                    "8 RootSm::addServicePolicyEntries( Ethernet1 )",
                                    "8 RootSm::addEcnQueueCounterEntries() Ethernet1",
                                }));
}

TEST_F(AllIntfStatusDirSmTest, IndexTurningNegativeKeepsTheEntry) {
  const auto status = switch_.interface("Ethernet1", 1);
  const auto root = makeRoot();
  status->snmpIfIndexIs(-1);
  Kel::notifyMemberChanged<Interface::AllIntfStatusDir::IntfStatus>(*switch_.allIntfStatusDir,
                                                                    status->intfId());
  EXPECT_EQ(rows(), Texts{"intfIdToifIndex Ethernet1 1"});
}

TEST_F(AllIntfStatusDirSmTest, DroppedMirrorLeavesItsEntries) {
  switch_.interface("Ethernet1", 1);
  const auto root = makeRoot();
  root->allIntfStatusDirSmDel();
  EXPECT_EQ(rows(), Texts{"intfIdToifIndex Ethernet1 1"});
  switch_.interface("Ethernet2", 2);
  EXPECT_EQ(rows(), Texts{"intfIdToifIndex Ethernet1 1"});
}

TEST(AllIntfStatusDirSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::AllIntfStatusDirSm>(
      Kel::Ptr<const Interface::AllIntfStatusDir>(testSwitch.allIntfStatusDir), testSwitch.qosMib, nullptr);
  EXPECT_DEATH(sm->handleInitialized(), "Assertion `!initialized\\(\\)' failed");
}

TEST(AllIntfStatusDirSmDeathTest, HandlerBeforeInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::AllIntfStatusDirSm>(
      Kel::Ptr<const Interface::AllIntfStatusDir>(testSwitch.allIntfStatusDir), testSwitch.qosMib, nullptr);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleIntfStatus(Pellix::IntfId(Kel::String("Ethernet1"))),
               "Assertion `initialized\\(\\)' failed");
}

}  // namespace
