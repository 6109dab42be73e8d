#include "QosSnmp/policy/ClassMapTableSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/policy/PolicyTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmp::ClassMapTableSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::assertionFailure;
using QosSnmpTest::classMapIndex;
using QosSnmpTest::concat;
using QosSnmpTest::matchRule;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTrace;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr const char* kSource = "ClassMapTableSm.cpp";

// The trace of a MatchSm's initial scan over a class map that is not a
// static control-plane class map, with its options in key order.
Texts matchSmStartTrace(const std::string& type, const Qos::ClassMapStatus* cmap, const Texts& options) {
  Texts lines = concat({"8 MatchSm::handleInitialized()", "8 MatchSm::handleTableEntries()"},
                       {staticCoppTrace(type, cmap, false), {"8 MatchSm::handleMatch()"}});
  for (const auto& option : options) {
    lines.emplace_back("8 MatchSm::handleMatch( " + option + " )");
  }
  return lines;
}

class ClassMapTableSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<ClassMapTableSm> makeSm(Qos::MapType type) {
    return Kel::make<ClassMapTableSm>(Kel::Ptr<const Qos::ClassMapTypeStatus>(switch_.cmapType(type)),
                                      switch_.qosMib);
  }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
};

using ClassMapTableSmDeathTest = ClassMapTableSmTest;

TEST_F(ClassMapTableSmTest, InitialScanGivesEveryClassMapItsMatchMachine) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto data = switch_.classMap(Qos::mapQos_, "class-data");
  matchRule(*voice, Qos::matchDscp_);
  matchRule(*data, Qos::matchVlan_);
  matchRule(*data, Qos::matchCos_);
  const AgentTrace trace;
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-data, 1) class-data",
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-data, 1, 1) class-data matchVlan",
                        "classMapMatchTable (class-data, 1, 2) class-data matchCos",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchDscp",
                    }));
  EXPECT_EQ(trace.lines(),
            concat({"8 ClassMapTableSm::handleInitialized()", "8 ClassMapTableSm::handleCmap( class-data )"},
                   {
                       matchSmStartTrace("mapQos", data.get(), {"matchVlan", "matchCos"}),
                       {"8 ClassMapTableSm::handleCmap( class-voice )"},
                       matchSmStartTrace("mapQos", voice.get(), {"matchDscp"}),
                   }));
  EXPECT_EQ(sm->matchSm().size(), 2U);
  ASSERT_NE(sm->matchSm("class-voice"), nullptr);
  EXPECT_EQ(sm->matchSm("class-voice")->index(), classMapIndex("class-voice", Qos::mapQos_));
  EXPECT_EQ(sm->matchSm("class-voice")->classMapStatus(), voice);
  EXPECT_EQ(sm->type(), Qos::mapQos_);
}

TEST_F(ClassMapTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  switch_.classMap(Qos::mapQos_, "class-voice");
  const RingCapture ring;
  {
    const auto sm = makeSm(Qos::mapQos_);
    switch_.cmapType(Qos::mapQos_)->cmapDel("class-voice");
  }
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::ClassMapTableSm::handleInitialized() []",
                                "void QosSnmp::ClassMapTableSm::handleCmap(Kel::String) [p] class-voice",
                                "void QosSnmp::MatchSm::handleInitialized() []",
                                "void QosSnmp::MatchSm::handleTableEntries() []",
                                "void QosSnmp::MatchSm::handleMatch() []",
                                "void QosSnmp::ClassMapTableSm::handleCmap(Kel::String) [p] class-voice",
                                "void QosSnmp::MatchSm::doClose() []",
                                "void QosSnmp::ClassMapTableSm::doClose() []",
                            }));
}

TEST_F(ClassMapTableSmTest, EmptyCollectionYieldsNoChildren) {
  const AgentTrace trace;
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_TRUE(sm->matchSm().empty());
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 ClassMapTableSm::handleInitialized()"});
}

TEST_F(ClassMapTableSmTest, ClassMapAddedLaterGetsItsChild) {
  const auto sm = makeSm(Qos::mapQos_);
  const AgentTrace trace;
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  EXPECT_EQ(rows(), Texts{"classMapTable (class-voice, 1) class-voice"});
  EXPECT_EQ(trace.lines(), concat({"8 ClassMapTableSm::handleCmap( class-voice )"},
                                  {matchSmStartTrace("mapQos", voice.get(), {})}));
  EXPECT_NE(sm->matchSm("class-voice"), nullptr);
}

TEST_F(ClassMapTableSmTest, DeletingAClassMapRemovesItsChildAndEveryRowItAdded) {
  const auto data = switch_.classMap(Qos::mapQos_, "class-data");
  matchRule(*data, Qos::matchCos_);
  const auto sm = makeSm(Qos::mapQos_);
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  matchRule(*voice, Qos::matchVlan_);
  matchRule(*voice, Qos::matchVlan_, "20");  // a second row under a fresh index
  matchRule(*voice, Qos::matchDscp_);
  const AgentTrace trace;
  switch_.cmapType(Qos::mapQos_)->cmapDel("class-voice");
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-data, 1) class-data",
                        "classMapMatchTable (class-data, 1, 1) class-data matchCos",
                    }));
  EXPECT_EQ(trace.lines(), (Texts{"8 ClassMapTableSm::handleCmap( class-voice )", "8 MatchSm::doClose()"}));
  EXPECT_EQ(sm->matchSm("class-voice"), nullptr);
  EXPECT_EQ(sm->matchSm().size(), 1U);
}

TEST_F(ClassMapTableSmTest, CoppDropClassMapIsNeverMirrored) {
  const auto drop = switch_.classMap(Qos::mapControlPlane_, "copp-system-drop");
  drop->cpTypeIs(Qos::classMapCpDynamic_);
  matchRule(*drop, Qos::matchIpAccessGroup_);
  const AgentTrace trace;
  const auto sm = makeSm(Qos::mapControlPlane_);
  EXPECT_TRUE(sm->matchSm().empty());
  EXPECT_TRUE(rows().empty());

  // Its deletion removes nothing, not even a row under its index.
  switch_.qosMib->classMapTableIs(classMapIndex("copp-system-drop", Qos::mapControlPlane_), drop);
  const auto before = rows();
  switch_.cmapType(Qos::mapControlPlane_)->cmapDel("copp-system-drop");
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassMapTableSm::handleInitialized()",
                               "8 ClassMapTableSm::handleCmap( copp-system-drop )",
                               "8 ClassMapTableSm::handleCmap( copp-system-drop )",
                           }));
}

TEST_F(ClassMapTableSmTest, NamesCloseToTheDropClassAreMirrored) {
  switch_.classMap(Qos::mapQos_, "copp-system-drop ");
  switch_.classMap(Qos::mapQos_, "COPP-SYSTEM-DROP");
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_EQ(sm->matchSm().size(), 2U);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (COPP-SYSTEM-DROP, 1) COPP-SYSTEM-DROP",
                        "classMapTable (copp-system-drop , 1) copp-system-drop ",
                    }));
}

TEST_F(ClassMapTableSmTest, LongNamesAreShortenedInTheIndexWhileTheChildKeepsTheFullName) {
  const Kel::String longName = "class-map-with-a-name-well-beyond-thirty-characters";
  const Kel::String exactName = "class-map-of-exactly-30-chars!";
  ASSERT_EQ(exactName.size(), 30U);
  const auto longCmap = switch_.classMap(Qos::mapQos_, longName);
  matchRule(*longCmap, Qos::matchVlan_);
  switch_.classMap(Qos::mapQos_, exactName);
  const auto sm = makeSm(Qos::mapQos_);
  const Snmp::String shortId = QosSnmp::uniqueId(longName);
  ASSERT_EQ(shortId.size(), 30U);
  ASSERT_NE(shortId.view(), longName.view());

  ASSERT_NE(sm->matchSm(longName), nullptr);
  EXPECT_EQ(sm->matchSm(shortId.kelString()), nullptr);
  EXPECT_EQ(sm->matchSm(longName)->index(), QosSnmp::ClassMapTableIndex(shortId, Qos::mapQos_));
  EXPECT_EQ(sm->matchSm(exactName)->index(), QosSnmp::ClassMapTableIndex(exactName, Qos::mapQos_));
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (" + exactName.stringValue() + ", 1) " + exactName.stringValue(),
                        "classMapTable (" + shortId.stringValue() + ", 1) " + longName.stringValue(),
                        "classMapMatchTable (" + shortId.stringValue() + ", 1, 1) " + longName.stringValue() +
                            " matchVlan",
                    }));

  switch_.cmapType(Qos::mapQos_)->cmapDel(longName);
  EXPECT_EQ(rows(), Texts{"classMapTable (" + exactName.stringValue() + ", 1) " + exactName.stringValue()});
}

TEST_F(ClassMapTableSmTest, ContentChangesAreTheChildsToFollow) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto sm = makeSm(Qos::mapQos_);
  const auto* child = sm->matchSm("class-voice");
  const AgentTrace trace;
  matchRule(*voice, Qos::matchVlan_);
  EXPECT_EQ(trace.lines(), Texts{"8 MatchSm::handleMatch( matchVlan )"});
  EXPECT_EQ(sm->matchSm("class-voice"), child);
}

TEST_F(ClassMapTableSmTest, AnotherClassMapEntityUnderTheSameNameKeepsTheExistingChild) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto sm = makeSm(Qos::mapQos_);
  const auto* child = sm->matchSm("class-voice");
  const AgentTrace trace;
  const auto replacement = switch_.classMap(Qos::mapQos_, "class-voice");
  EXPECT_EQ(trace.lines(), Texts{"8 ClassMapTableSm::handleCmap( class-voice )"});
  EXPECT_EQ(sm->matchSm("class-voice"), child);
  EXPECT_EQ(child->classMapStatus(), voice);
  EXPECT_EQ(rows(), Texts{"classMapTable (class-voice, 1) class-voice"});
}

TEST_F(ClassMapTableSmTest, StaticControlPlaneClassMapsAreFiledByStaticType) {
  const auto bgp = switch_.classMap(Qos::mapControlPlane_, "copp-system-bgp");
  bgp->cpStaticTypeIs(Qos::cpStaticBgp_);
  const auto acl = switch_.classMap(Qos::mapControlPlane_, "copp-acl-telnet");
  acl->cpTypeIs(Qos::classMapCpDynamic_);
  const auto sm = makeSm(Qos::mapControlPlane_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (copp-acl-telnet, 0) copp-acl-telnet",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                    }));
}

TEST_F(ClassMapTableSmTest, ClosingRemovesTheRowsOfEveryClassMapOfItsTypeAndLeavesNone) {
  // Another type's rows stay.
  const auto other = switch_.classMap(Qos::mapPbr_, "class-other");
  switch_.qosMib->classMapTableIs(classMapIndex("class-other", Qos::mapPbr_), other);
  const auto before = rows();
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto data = switch_.classMap(Qos::mapQos_, "class-data");
  matchRule(*voice, Qos::matchVlan_);
  matchRule(*voice, Qos::matchDscp_);
  matchRule(*data, Qos::matchCos_);
  auto sm = makeSm(Qos::mapQos_);
  matchRule(*data, Qos::matchCos_, "5");
  EXPECT_EQ(rows().size(), before.size() + 6);
  const AgentTrace trace;
  sm.reset();
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassMapTableSm::doClose()",
                               "8 MatchSm::doClose()",
                               "8 MatchSm::doClose()",
                           }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ClassMapTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::MatchSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ClassMapTableSm::KelClassMapTypeStatus"), 0);
}

TEST_F(ClassMapTableSmTest, ClosedMachineIgnoresNotifications) {
  const auto sm = makeSm(Qos::mapQos_);
  sm->close();
  const AgentTrace trace;
  switch_.classMap(Qos::mapQos_, "class-voice");
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ClassMapTableSmTest, WithoutTypeStatusTheTypeIsZeroAndNothingIsMirrored) {
  const AgentTrace trace;
  const auto sm = Kel::make<ClassMapTableSm>(nullptr, switch_.qosMib);
  EXPECT_EQ(sm->type(), Qos::mapControlPlane_);
  sm->handleCmap("class-voice");
  EXPECT_TRUE(sm->matchSm().empty());
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassMapTableSm::handleInitialized()",
                               "8 ClassMapTableSm::handleCmap( class-voice )",
                           }));
}

TEST_F(ClassMapTableSmTest, TypeIsTheTypeStatusKey) {
  EXPECT_EQ(makeSm(Qos::mapQos_)->type(), Qos::mapQos_);
  EXPECT_EQ(makeSm(Qos::mapPbr_)->type(), Qos::mapPbr_);
}

TEST_F(ClassMapTableSmTest, MatchSmIsReturnsTheExistingChildForTheSameIndexAndMib) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto sm = makeSm(Qos::mapQos_);
  auto* child = sm->matchSm("class-voice");
  EXPECT_EQ(sm->matchSmIs(voice, classMapIndex("class-voice", Qos::mapQos_), switch_.qosMib), child);
}

TEST_F(ClassMapTableSmTest, MatchSmIsWithAnotherIndexOrMibThrows) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_THROW(sm->matchSmIs(voice, classMapIndex("class-voice", Qos::mapPbr_), switch_.qosMib),
               Kel::MutatorReinstantiatingException);
  EXPECT_THROW(sm->matchSmIs(voice, classMapIndex("class-voice", Qos::mapQos_), Kel::make<QosSnmp::QosMib>()),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ClassMapTableSmTest, MatchSmIsWithANullArgumentThrowsNamingIt) {
  const auto voice = switch_.classMap(Qos::mapQos_, "class-voice");
  const auto sm = Kel::make<ClassMapTableSm>(nullptr, switch_.qosMib);
  try {
    sm->matchSmIs(voice, classMapIndex("class-voice", Qos::mapQos_), nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "qosMib");
  }
  try {
    sm->matchSmIs(nullptr, classMapIndex("class-voice", Qos::mapQos_), switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "cmap");
  }
  EXPECT_TRUE(sm->matchSm().empty());
}

TEST_F(ClassMapTableSmTest, ArgumentsAreTheInputsInConstructorOrder) {
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_TRUE(sm->arguments() ==
              std::make_tuple(Kel::Ptr<const Qos::ClassMapTypeStatus>(switch_.cmapType(Qos::mapQos_)),
                              switch_.qosMib));
}

TEST_F(ClassMapTableSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm(Qos::mapQos_);
  EXPECT_DEATH(
      sm->handleInitialized(),
      assertionFailure(kSource, "void QosSnmp::ClassMapTableSm::handleInitialized()", "!initialized()"));
}

TEST_F(ClassMapTableSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm(Qos::mapQos_);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleCmap("class-voice"),
               assertionFailure(kSource, "void QosSnmp::ClassMapTableSm::handleCmap(const Kel::String&)",
                                "initialized()"));
  EXPECT_DEATH(sm->doClose(), assertionFailure(kSource, "virtual void QosSnmp::ClassMapTableSm::doClose()",
                                               "initialized()"));
  sm->initializedIs(true);
}

}  // namespace
