#include "QosSnmp/servicepolicy/ServicePolicyTableSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyTableIndex.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/servicepolicy/ServicePolicyTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Collection.h"
#include "kel/Make.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmp::ServicePolicyTableSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::appliedPolicy;
using QosSnmpTest::configuredPolicy;
using QosSnmpTest::indexInterface;
using QosSnmpTest::intfId;
using QosSnmpTest::intfPair;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

const Qos::ServicePolicyKey kPolicyIn(Qos::mapQos_, Qos::directionInput_, "policy-in");
const Qos::ServicePolicyKey kOtherIn(Qos::mapQos_, Qos::directionInput_, "other-in");
const Qos::ServicePolicyKey kPolicyOut(Qos::mapQos_, Qos::directionOutput_, "policy-out");
const Qos::ServicePolicyKey kCoppKey(Qos::mapControlPlane_, Qos::directionInput_, "copp-system-policy");
const Qos::ServicePolicyKey kPbrKey(Qos::mapPbr_, Qos::directionInput_, "pbr-in");

// The key kPolicyIn as the trace lines print it.
const std::string kPolicyInText = "mapQos/directionInput/policy-in";

// The trace lines of the handlers that name an interface, as AgentTrace
// shows them.
std::string maybeLine(const std::string& intf, const std::string& key = kPolicyInText) {
  return "8 ServicePolicyTableSm::doMaybeAddOrRemoveEntry( " + intf + ", " + key + " )";
}
std::string entryLine(const std::string& intf, bool add, const std::string& key = kPolicyInText) {
  return "8 ServicePolicyTableSm::doAddOrRemoveEntry( " + intf + ", " + key + ", " + (add ? "1" : "0") + " )";
}
std::string ifIndexLine(int ifIndex) {
  return "8 ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: " + std::to_string(ifIndex);
}
std::string pairLine(const std::string& pair, const std::string& key = kPolicyInText) {
  return "8 ServicePolicyStatusSm::handleIntfIds( " + pair + ", " + key + " )";
}

const std::string kPolicyInRow3 = "servicePolicyTable (3, 1) policy-in mapQos/directionInput/policy-in";
const std::string kPolicyInRow7 = "servicePolicyTable (7, 1) policy-in mapQos/directionInput/policy-in";

class ServicePolicyTableSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<ServicePolicyTableSm> makeSm() {
    return Kel::make<ServicePolicyTableSm>(switch_.qosConfig, switch_.qosStatus, switch_.qosMib);
  }

  // The service-policy rows of the MIB model.
  Texts servicePolicyRows() const {
    Texts rows;
    for (const std::string& row : QosSnmpTest::mibRows(*switch_.qosMib)) {
      if (row.starts_with("servicePolicyTable ")) {
        rows.push_back(row);
      }
    }
    return rows;
  }

  TestSwitch switch_;
};

TEST_F(ServicePolicyTableSmTest, InitialScanJudgesConfigurationThenStatusInOrder) {
  indexInterface(switch_, "Ethernet1", 3);
  indexInterface(switch_, "Port-Channel10", 7);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               entryLine("Port-Channel10", true),
                               ifIndexLine(7),
                               "8 ServicePolicyStatusSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               pairLine("Ethernet1"),
                               entryLine("Ethernet1", true),
                               ifIndexLine(3),
                               "8 ServicePolicyTableSm::syncIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               entryLine("Port-Channel10", true),
                               ifIndexLine(7),
                           }));
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib), (Texts{
                                                       kPolicyInRow3,
                                                       kPolicyInRow7,
                                                       "intfIdToifIndex Ethernet1 3",
                                                       "intfIdToifIndex Port-Channel10 7",
                                                   }));
  ASSERT_NE(sm->servicePolicyConfig(kPolicyIn), nullptr);
  ASSERT_NE(sm->servicePolicyStatus(kPolicyIn), nullptr);
  EXPECT_EQ(sm->servicePolicyStatus(kPolicyIn)->key(), kPolicyIn);
  EXPECT_EQ(sm->servicePolicyTableKey().size(), 2U);
}

TEST_F(ServicePolicyTableSmTest, AppliedPolicyAddsAndRemovesTheRowOfItsInterface) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  const auto status = appliedPolicy(switch_, kPolicyIn);
  status->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
  const AgentTrace trace;
  status->intfIdsIs(intfPair("Ethernet1"), false);
  EXPECT_EQ(trace.lines(), (Texts{
                               pairLine("Ethernet1"),
                               entryLine("Ethernet1", false),
                               ifIndexLine(3),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
  EXPECT_TRUE(sm->servicePolicyTableKey().empty());
  status->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
  status->intfIdsDel(intfPair("Ethernet1"));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, InterfaceWithoutIfIndexGetsItsRowWhenTheRootAddsIt) {
  const auto sm = makeSm();
  const AgentTrace trace;
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyStatusSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyTableSm::syncIntfIds( mapQos/directionInput/policy-in )",
                               pairLine("Ethernet1"),
                               entryLine("Ethernet1", true),
                               ifIndexLine(0),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
  EXPECT_TRUE(sm->servicePolicyTableKey().empty());

  indexInterface(switch_, "Ethernet1", 3);
  QosSnmpTest::addServicePolicyEntries(switch_, *sm, intfId("Ethernet1"));
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
}

TEST_F(ServicePolicyTableSmTest, RootDeleteRemovesConfiguredRowsWithoutThePortChannelRule) {
  indexInterface(switch_, "Ethernet1", 3);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Ethernet1"), true);
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  const auto sm = makeSm();
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
  const AgentTrace trace;
  QosSnmpTest::deleteServicePolicyEntries(switch_, *sm, intfId("Ethernet1"));
  EXPECT_EQ(trace.lines(), (Texts{
                               entryLine("Ethernet1", false),
                               ifIndexLine(3),
                               entryLine("Ethernet1", false),
                               ifIndexLine(3),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, SubInterfacePairIsIgnored) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto status = appliedPolicy(switch_, kPolicyIn);
  const auto sm = makeSm();
  const AgentTrace trace;
  status->intfIdsIs(intfPair("Ethernet1", "Ethernet1.100"), true);
  EXPECT_EQ(trace.lines(), (Texts{
                               pairLine("Ethernet1,Ethernet1.100"),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, StatusMemberGoneRemovesTheRowOfEveryPairAndReJudgesPortChannels) {
  indexInterface(switch_, "Ethernet1", 3);
  indexInterface(switch_, "Port-Channel10", 7);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  const auto status = appliedPolicy(switch_, kPolicyIn);
  status->intfIdsIs(intfPair("Ethernet1"), true);
  status->intfIdsIs(intfPair("Ethernet1", "Ethernet1.100"), true);
  const auto sm = makeSm();
  EXPECT_EQ(servicePolicyRows(), (Texts{kPolicyInRow3, kPolicyInRow7}));
  const AgentTrace trace;
  switch_.qosStatus->servicePolicyStatusDel(kPolicyIn);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyStatusSm::doClose( mapQos/directionInput/policy-in )",
                               entryLine("Ethernet1", false),
                               ifIndexLine(3),
                               entryLine("Ethernet1", false),
                               ifIndexLine(3),
                               "8 ServicePolicyTableSm::syncIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): No spStatus",
                               entryLine("Port-Channel10", false),
                               ifIndexLine(7),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
  EXPECT_EQ(sm->servicePolicyStatus(kPolicyIn), nullptr);
  EXPECT_TRUE(sm->servicePolicyTableKey().empty());
}

TEST_F(ServicePolicyTableSmTest, PortChannelGetsItsRowOnlyWhileTheStatusHoldsThePolicy) {
  indexInterface(switch_, "Port-Channel10", 7);
  const auto sm = makeSm();
  AgentTrace trace;
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): No spStatus",
                               entryLine("Port-Channel10", false),
                               ifIndexLine(7),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());

  trace.clear();
  appliedPolicy(switch_, kPolicyIn);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyStatusSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyTableSm::syncIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               entryLine("Port-Channel10", true),
                               ifIndexLine(7),
                           }));
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow7});

  switch_.qosStatus->servicePolicyStatusDel(kPolicyIn);
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, PortChannelRowFollowsItsConfiguredValue) {
  indexInterface(switch_, "Port-Channel10", 7);
  appliedPolicy(switch_, kPolicyIn);
  const auto config = configuredPolicy(switch_, kPolicyIn);
  const auto sm = makeSm();
  config->intfIdsIs(intfId("Port-Channel10"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow7});
  const AgentTrace trace;
  config->intfIdsIs(intfId("Port-Channel10"), false);
  EXPECT_EQ(trace.lines(), (Texts{
                               maybeLine("Port-Channel10"),
                               entryLine("Port-Channel10", false),
                               ifIndexLine(7),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
  config->intfIdsIs(intfId("Port-Channel10"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow7});
  config->intfIdsDel(intfId("Port-Channel10"));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, ConfigurationMemberGoneRemovesItsPortChannelRows) {
  indexInterface(switch_, "Port-Channel10", 7);
  appliedPolicy(switch_, kPolicyIn);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  const auto sm = makeSm();
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow7});
  const AgentTrace trace;
  switch_.qosConfig->servicePolicyConfigDel(kPolicyIn);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyConfigSm::doClose( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10"),
                               entryLine("Port-Channel10", false),
                               ifIndexLine(7),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
  EXPECT_EQ(sm->servicePolicyConfig(kPolicyIn), nullptr);
}

TEST_F(ServicePolicyTableSmTest, ConfiguredInterfaceThatIsNotAPortChannelOnlyTracesIsNotALagIntf) {
  indexInterface(switch_, "Ethernet1", 3);
  appliedPolicy(switch_, kPolicyIn);
  const auto sm = makeSm();
  const AgentTrace trace;
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Ethernet1"), true);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Ethernet1"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): Is not a lagIntf",
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, SubInterfaceOfAPortChannelIsNotALagIntf) {
  indexInterface(switch_, "Port-Channel10.5", 9);
  appliedPolicy(switch_, kPolicyIn);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10.5"), true);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10.5"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): Is not a lagIntf",
                               "8 ServicePolicyStatusSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyTableSm::syncIntfIds( mapQos/directionInput/policy-in )",
                               "8 ServicePolicyConfigSm::handleIntfIds( mapQos/directionInput/policy-in )",
                               maybeLine("Port-Channel10.5"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): Is not a lagIntf",
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, LaterPolicyOnTheSameIndexReplacesTheEarlierRow) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  appliedPolicy(switch_, kOtherIn)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{"servicePolicyTable (3, 1) other-in mapQos/directionInput/other-in"});
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
  EXPECT_EQ(sm->servicePolicyTableKey().size(), 1U);
}

TEST_F(ServicePolicyTableSmTest, InputAndOutputPoliciesOfOneInterfaceHaveRowsOfTheirOwn) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  appliedPolicy(switch_, kPolicyOut)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), (Texts{
                                     kPolicyInRow3,
                                     "servicePolicyTable (3, 2) policy-out mapQos/directionOutput/policy-out",
                                 }));
}

TEST_F(ServicePolicyTableSmTest, RemovingAPolicyRemovesWhicheverRowHoldsItsIndex) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  appliedPolicy(switch_, kOtherIn)->intfIdsIs(intfPair("Ethernet1"), false);
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(servicePolicyRows(), Texts{kPolicyInRow3});
  switch_.qosStatus->servicePolicyStatusDel(kOtherIn);
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, ControlPlaneKeyTracesTheIfIndexButWritesNoRow) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  const AgentTrace trace;
  sm->doAddOrRemoveEntry(intfId("Ethernet1"), kCoppKey, true);
  EXPECT_EQ(trace.lines(),
            (Texts{
                entryLine("Ethernet1", true, "mapControlPlane/directionInput/copp-system-policy"),
                ifIndexLine(3),
            }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, IgnoredMapTypeStopsBeforeTheIfIndexLine) {
  indexInterface(switch_, "Ethernet1", 3);
  const auto sm = makeSm();
  const AgentTrace trace;
  appliedPolicy(switch_, kPbrKey)->intfIdsIs(intfPair("Ethernet1"), true);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ServicePolicyStatusSm::handleIntfIds( mapPbr/directionInput/pbr-in )",
                               "8 ServicePolicyTableSm::syncIntfIds( mapPbr/directionInput/pbr-in )",
                               pairLine("Ethernet1", "mapPbr/directionInput/pbr-in"),
                               entryLine("Ethernet1", true, "mapPbr/directionInput/pbr-in"),
                           }));
  EXPECT_TRUE(servicePolicyRows().empty());
}

TEST_F(ServicePolicyTableSmTest, LongPolicyMapNameIsShortenedInTheRow) {
  indexInterface(switch_, "Ethernet1", 3);
  const Qos::ServicePolicyKey longKey(Qos::mapQos_, Qos::directionInput_,
                                      "a-policy-map-name-well-beyond-thirty-characters");
  const auto sm = makeSm();
  sm->doAddOrRemoveEntry(intfId("Ethernet1"), longKey, true);
  const QosSnmp::ServicePolicyTableRow* row =
      switch_.qosMib->servicePolicyTable(QosSnmp::ServicePolicyTableIndex(3, Qos::directionInput_));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->pmapName, QosSnmp::uniqueId(longKey.pmapName()));
  EXPECT_LE(row->pmapName.size(), QosSnmp::kUniqueIdMaxLength);
  EXPECT_EQ(row->servicePolicyKey, longKey);
}

TEST_F(ServicePolicyTableSmTest, NullMemberThrowsTheNullArgumentException) {
  const auto sm = makeSm();
  try {
    sm->servicePolicyConfigIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "servicePolicyConfig");
  }
  try {
    sm->servicePolicyStatusIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "servicePolicyStatus");
  }
}

TEST_F(ServicePolicyTableSmTest, MemberOfTheSameKeyFromAnotherEntityThrowsReinstantiation) {
  appliedPolicy(switch_, kPolicyIn);
  configuredPolicy(switch_, kPolicyIn);
  const auto sm = makeSm();
  EXPECT_EQ(sm->servicePolicyStatusIs(switch_.qosStatus->servicePolicyStatus(kPolicyIn)),
            sm->servicePolicyStatus(kPolicyIn));
  EXPECT_THROW(sm->servicePolicyStatusIs(Kel::make<Qos::ServicePolicyStatus>(kPolicyIn)),
               Kel::MutatorReinstantiatingException);
  EXPECT_THROW(sm->servicePolicyConfigIs(Kel::make<Qos::ServicePolicyConfig>(kPolicyIn)),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ServicePolicyTableSmTest, MemberChangedInPlaceKeepsItsReactor) {
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  const auto sm = makeSm();
  auto* const reactor = sm->servicePolicyStatus(kPolicyIn);
  const AgentTrace trace;
  Kel::notifyMemberChanged<Qos::Status::ServicePolicyStatus>(*switch_.qosStatus, kPolicyIn);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_EQ(sm->servicePolicyStatus(kPolicyIn), reactor);
}

TEST_F(ServicePolicyTableSmTest, ClosingRemovesExactlyTheRowsItAdded) {
  indexInterface(switch_, "Ethernet1", 3);
  indexInterface(switch_, "Port-Channel10", 7);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  // A row of another writer, under an index this machine never uses.
  switch_.qosMib->servicePolicyTableIs(QosSnmp::ServicePolicyTableIndex(11, Qos::directionOutput_), "foreign",
                                       kPolicyOut);
  auto sm = makeSm();
  const AgentTrace trace;
  sm->close();
  EXPECT_EQ(trace.lines(), Texts{"8 ServicePolicyTableSm::doClose()"});
  EXPECT_TRUE(sm->servicePolicyTableKey().empty());
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib),
            (Texts{
                "servicePolicyTable (11, 2) foreign mapQos/directionOutput/policy-out",
                "intfIdToifIndex Ethernet1 3",
                "intfIdToifIndex Port-Channel10 7",
            }));
  // A closed machine hears nothing more, and its reactors judge nothing
  // when they go with it.
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet2"), true);
  switch_.qosStatus->servicePolicyStatusDel(kPolicyIn);
  sm = nullptr;
  EXPECT_EQ(trace.lines(), Texts{"8 ServicePolicyTableSm::doClose()"});
}

TEST_F(ServicePolicyTableSmTest, ReleasingTheMachineLeavesNoReactorAlive) {
  indexInterface(switch_, "Ethernet1", 3);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1"), true);
  makeSm();
  EXPECT_TRUE(servicePolicyRows().empty());
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ServicePolicyTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ServicePolicyTableSm::KelServicePolicyConfig"),
            0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ServicePolicyTableSm::KelServicePolicyStatus"),
            0);
}

TEST_F(ServicePolicyTableSmTest, NullInputsMakeNoReactors) {
  indexInterface(switch_, "Port-Channel10", 7);
  const auto sm = Kel::make<ServicePolicyTableSm>(nullptr, nullptr, switch_.qosMib);
  EXPECT_EQ(sm->qosConfig(), nullptr);
  EXPECT_EQ(sm->qosStatus(), nullptr);
  const AgentTrace trace;
  sm->doMaybeAddOrRemoveEntry(intfId("Port-Channel10"), kPolicyIn);
  EXPECT_EQ(trace.lines(), (Texts{
                               maybeLine("Port-Channel10"),
                               "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): No spStatus",
                               entryLine("Port-Channel10", false),
                               ifIndexLine(7),
                           }));
}

TEST_F(ServicePolicyTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  indexInterface(switch_, "Port-Channel10", 7);
  configuredPolicy(switch_, kPolicyIn)->intfIdsIs(intfId("Port-Channel10"), true);
  const RingCapture ring;
  auto sm = makeSm();
  appliedPolicy(switch_, kPolicyIn)->intfIdsIs(intfPair("Ethernet1", "Ethernet1.100"), true);
  switch_.qosConfig->servicePolicyConfigDel(kPolicyIn);
  switch_.qosStatus->servicePolicyStatusDel(kPolicyIn);
  sm = nullptr;
  const std::string prefix = "void QosSnmp::ServicePolicyTableSm::";
  const std::string maybe =
      prefix + "doMaybeAddOrRemoveEntry(Pellix::IntfId, const Qos::ServicePolicyKey&) [piip] ";
  const std::string entry =
      prefix + "doAddOrRemoveEntry(Pellix::IntfId, const Qos::ServicePolicyKey&, bool) [piipi] ";
  const std::string pair = prefix + "KelServicePolicyStatus::handleIntfIds(const Qos::IntfPairKey&) [pp] ";
  EXPECT_EQ(ring.entries(), (Texts{
                                prefix + "KelServicePolicyConfig::handleIntfIds() []",
                                maybe + "Port-Channel10 1 1 policy-in",
                                entry + "Port-Channel10 1 1 policy-in 0",
                                "ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: [i] 7",
                                prefix + "KelServicePolicyStatus::handleIntfIds() []",
                                prefix + "syncIntfIds(const Qos::ServicePolicyKey&) [iip] 1 1 policy-in",
                                prefix + "KelServicePolicyConfig::handleIntfIds() []",
                                maybe + "Port-Channel10 1 1 policy-in",
                                entry + "Port-Channel10 1 1 policy-in 1",
                                "ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: [i] 7",
                                pair + "Ethernet1 Ethernet1.100",
                                prefix + "KelServicePolicyConfig::doClose() []",
                                maybe + "Port-Channel10 1 1 policy-in",
                                entry + "Port-Channel10 1 1 policy-in 0",
                                "ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: [i] 7",
                                prefix + "KelServicePolicyStatus::doClose() []",
                                entry + "Ethernet1 1 1 policy-in 0",
                                "ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: [i] 0",
                                prefix + "syncIntfIds(const Qos::ServicePolicyKey&) [iip] 1 1 policy-in",
                                prefix + "doClose() []",
                            }));
}

}  // namespace
