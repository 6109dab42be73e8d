#include "QosSnmp/policy/MatchSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/policy/PolicyTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"

namespace {

using QosSnmp::MatchSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::assertionFailure;
using QosSnmpTest::classMapIndex;
using QosSnmpTest::concat;
using QosSnmpTest::matchRule;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticClassMap;
using QosSnmpTest::staticCoppTrace;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr const char* kSource = "MatchSm.cpp";

class MatchSmTest : public ::testing::Test {
 protected:
  // A MatchSm over `cmap`, with the index the class-map table machine gives
  // it.
  Kel::Ptr<MatchSm> makeSm(const Kel::Ptr<Qos::ClassMapStatus>& cmap) {
    return Kel::make<MatchSm>(Kel::Ptr<const Qos::ClassMapStatus>(cmap),
                              classMapIndex(cmap->name(), cmap->type()), switch_.qosMib);
  }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::ClassMapStatus> voice_ = switch_.classMap(Qos::mapQos_, "class-voice");
};

using MatchSmDeathTest = MatchSmTest;

TEST_F(MatchSmTest, InitialScanWritesTheClassMapRowAndOneRowPerOptionInKeyOrder) {
  matchRule(*voice_, Qos::matchDscp_);
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchIpAccessGroup_);
  const AgentTrace trace;
  const auto sm = makeSm(voice_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchIpAccessGroup",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 3) class-voice matchDscp",
                    }));
  EXPECT_EQ(trace.lines(), concat(
                               {
                                   "8 MatchSm::handleInitialized()",
                                   "8 MatchSm::handleTableEntries()",
                               },
                               {
                                   staticCoppTrace("mapQos", voice_.get(), false),
                                   {
                                       "8 MatchSm::handleMatch()",
                                       "8 MatchSm::handleMatch( matchIpAccessGroup )",
                                       "8 MatchSm::handleMatch( matchVlan )",
                                       "8 MatchSm::handleMatch( matchDscp )",
                                   },
                               }));
}

TEST_F(MatchSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  matchRule(*voice_, Qos::matchVlan_);
  const RingCapture ring;
  {
    const auto sm = makeSm(voice_);
    voice_->matchDel(Qos::matchVlan_);
  }
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::MatchSm::handleInitialized() []",
                                "void QosSnmp::MatchSm::handleTableEntries() []",
                                "void QosSnmp::MatchSm::handleMatch() []",
                                "void QosSnmp::MatchSm::handleMatch(Qos::ClassMapMatchOption) [i] 4",
                                "void QosSnmp::MatchSm::handleMatch(Qos::ClassMapMatchOption) [i] 4",
                                "void QosSnmp::MatchSm::doClose() []",
                            }));
}

TEST_F(MatchSmTest, OptionsAddedInTurnGetIndexesOneTwoThree) {
  const auto sm = makeSm(voice_);
  const AgentTrace trace;
  matchRule(*voice_, Qos::matchDscp_);
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchCos_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchDscp",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 3) class-voice matchCos",
                    }));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 MatchSm::handleMatch( matchDscp )",
                               "8 MatchSm::handleMatch( matchVlan )",
                               "8 MatchSm::handleMatch( matchCos )",
                           }));
  EXPECT_EQ(sm->matchIndex().get(Qos::matchCos_), 3U);
}

TEST_F(MatchSmTest, ReNotifiedOptionGetsFreshIndexAndKeepsOldRow) {
  const auto oldVlan = matchRule(*voice_, Qos::matchVlan_, "10");
  matchRule(*voice_, Qos::matchDscp_);
  const auto sm = makeSm(voice_);
  const auto newVlan = matchRule(*voice_, Qos::matchVlan_, "20");
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchDscp",
                        "classMapMatchTable (class-voice, 1, 3) class-voice matchVlan",
                    }));
  const QosSnmp::ClassMapMatchTableIndex first("class-voice", Qos::mapQos_, 1);
  const QosSnmp::ClassMapMatchTableIndex fresh("class-voice", Qos::mapQos_, 3);
  EXPECT_EQ(switch_.qosMib->classMapMatchTable(first)->classMapMatch, oldVlan);
  EXPECT_EQ(switch_.qosMib->classMapMatchTable(fresh)->classMapMatch, newVlan);
  EXPECT_EQ(sm->matchIndex().get(Qos::matchVlan_), 3U);
  EXPECT_EQ(sm->classMapMatchTableKey().size(), 3U);
  EXPECT_TRUE(sm->classMapMatchTableKey().contains(first));

  // Removing the option deletes its current row only; the old one stays
  // until the machine closes.
  voice_->matchDel(Qos::matchVlan_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchDscp",
                    }));
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(MatchSmTest, LaterAdditionTakesTheCountAndOverwritesARowStillPresent) {
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchDscp_);
  const auto sm = makeSm(voice_);
  // matchVlan goes from 1 to 3; the count stays 2.
  matchRule(*voice_, Qos::matchVlan_, "20");
  // The next option takes 2 + 1 = 3: matchVlan's current row.
  matchRule(*voice_, Qos::matchCos_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchDscp",
                        "classMapMatchTable (class-voice, 1, 3) class-voice matchCos",
                    }));
  EXPECT_EQ(sm->matchIndex().get(Qos::matchVlan_), 3U);
  EXPECT_EQ(sm->matchIndex().get(Qos::matchCos_), 3U);

  // Removing matchVlan deletes the row under its index, which is matchCos's.
  voice_->matchDel(Qos::matchVlan_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchDscp",
                    }));
}

TEST_F(MatchSmTest, RemovalFreesNoNumberExceptThroughTheCount) {
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchDscp_);
  const auto sm = makeSm(voice_);
  voice_->matchDel(Qos::matchVlan_);
  // One option left: the next takes 2, matchDscp's index, and overwrites it.
  matchRule(*voice_, Qos::matchCos_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 2) class-voice matchCos",
                    }));
}

TEST_F(MatchSmTest, RemovedOptionThatNeverHadAnIndexDeletesTheRowWithIndexZero) {
  const auto sm = makeSm(voice_);
  // Normally there is no row 0, and nothing changes.
  const auto before = rows();
  sm->handleMatch(Qos::matchCos_);
  EXPECT_EQ(rows(), before);

  // An option added while the machine was not listening has no index.
  sm->hasNotificationActiveIs(false);
  matchRule(*voice_, Qos::matchVlan_);
  sm->hasNotificationActiveIs(true);
  switch_.qosMib->classMapMatchTableIs(QosSnmp::ClassMapMatchTableIndex("class-voice", Qos::mapQos_, 0),
                                       voice_, nullptr);
  voice_->matchDel(Qos::matchVlan_);
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(sm->matchIndex().empty());
}

TEST_F(MatchSmTest, BecomingAStaticControlPlaneClassMapDropsItsRowsAndFilesItByStaticType) {
  voice_->cpStaticTypeIs(Qos::cpStaticBgp_);
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchDscp_);
  const auto sm = makeSm(voice_);
  const AgentTrace trace;
  voice_->typeIs(Qos::mapControlPlane_);
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp class-voice"});
  EXPECT_EQ(trace.lines(),
            concat({"8 MatchSm::handleTableEntries()"},
                   {staticCoppTrace("mapControlPlane", voice_.get(), true), {"8 MatchSm::doClose()"}}));
  EXPECT_TRUE(sm->classMapMatchTableKey().empty());
  // The match-index records stay.
  EXPECT_EQ(sm->matchIndex().size(), 2U);
}

TEST_F(MatchSmTest, StaticControlPlaneClassMapAtStartWritesNoRows) {
  const auto bgp = switch_.classMap(Qos::mapControlPlane_, "copp-system-bgp");
  bgp->cpStaticTypeIs(Qos::cpStaticBgp_);
  matchRule(*bgp, Qos::matchIpAccessGroup_);
  const AgentTrace trace;
  const auto sm = makeSm(bgp);
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  EXPECT_EQ(trace.lines(),
            concat({"8 MatchSm::handleInitialized()", "8 MatchSm::handleTableEntries()"},
                   {staticCoppTrace("mapControlPlane", bgp.get(), true), {"8 MatchSm::doClose()"}}));
}

TEST_F(MatchSmTest, StaticControlPlaneClassMapStillAddsMatchRowsForLaterOptions) {
  const auto bgp = switch_.classMap(Qos::mapControlPlane_, "copp-system-bgp");
  bgp->cpStaticTypeIs(Qos::cpStaticBgp_);
  const auto sm = makeSm(bgp);
  matchRule(*bgp, Qos::matchIpAccessGroup_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapMatchTable (copp-system-bgp, 0, 1) copp-system-bgp matchIpAccessGroup",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                    }));
  sm->close();
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
}

TEST_F(MatchSmTest, LeavingTheStaticKindRemovesTheEntryUnderTheCurrentStaticTypeAndWritesTheRows) {
  const auto bgp = switch_.classMap(Qos::mapControlPlane_, "copp-system-bgp");
  bgp->cpStaticTypeIs(Qos::cpStaticBgp_);
  matchRule(*bgp, Qos::matchIpAccessGroup_);
  matchRule(*bgp, Qos::matchVlan_);
  const auto sm = makeSm(bgp);
  // Not followed on its own.
  bgp->cpStaticTypeIs(Qos::cpStaticPim_);
  switch_.qosMib->cmapByStaticTypeIs(Qos::cpStaticPim_, staticClassMap("copp-system-pim", Qos::cpStaticPim_));
  const AgentTrace trace;
  bgp->typeIs(Qos::mapQos_);
  // The class-map row keeps the index the machine was built with; the match
  // rows take the current type.
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                        "classMapMatchTable (copp-system-bgp, 1, 1) copp-system-bgp matchIpAccessGroup",
                        "classMapMatchTable (copp-system-bgp, 1, 2) copp-system-bgp matchVlan",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                    }));
  EXPECT_EQ(trace.lines(),
            concat({"8 MatchSm::handleTableEntries()"}, {staticCoppTrace("mapQos", bgp.get(), false),
                                                         {
                                                             "8 MatchSm::handleMatch()",
                                                             "8 MatchSm::handleMatch( matchIpAccessGroup )",
                                                             "8 MatchSm::handleMatch( matchVlan )",
                                                         }}));
}

TEST_F(MatchSmTest, RoundTripThroughTheStaticKindNumbersFromTheKeptRecords) {
  voice_->cpStaticTypeIs(Qos::cpStaticBgp_);
  matchRule(*voice_, Qos::matchVlan_);
  matchRule(*voice_, Qos::matchDscp_);
  const auto sm = makeSm(voice_);
  voice_->typeIs(Qos::mapControlPlane_);
  voice_->typeIs(Qos::mapQos_);
  // Both options were recorded (count 2): both take 3, the second
  // overwriting the first.
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 3) class-voice matchDscp",
                    }));
}

TEST_F(MatchSmTest, NormalClassMapRemovesTheByStaticTypeEntryWhateverItHolds) {
  voice_->cpStaticTypeIs(Qos::cpStaticLacp_);
  switch_.qosMib->cmapByStaticTypeIs(Qos::cpStaticLacp_,
                                     staticClassMap("copp-system-lacp", Qos::cpStaticLacp_));
  switch_.qosMib->cmapByStaticTypeIs(Qos::cpStaticBgp_, staticClassMap("copp-system-bgp", Qos::cpStaticBgp_));
  const auto sm = makeSm(voice_);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                    }));
}

TEST_F(MatchSmTest, TypeChangeRewritesTheMatchRowsUnderTheNewType) {
  matchRule(*voice_, Qos::matchVlan_);
  const auto sm = makeSm(voice_);
  voice_->typeIs(Qos::mapPbr_);
  // The old row stays until close; the class-map row is written again under
  // the index the machine was built with.
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (class-voice, 1) class-voice",
                        "classMapMatchTable (class-voice, 1, 1) class-voice matchVlan",
                        "classMapMatchTable (class-voice, 2, 2) class-voice matchVlan",
                    }));
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(MatchSmTest, DoCloseMayRunTwiceAndDeletesTheClassMapRowAgain) {
  const auto bgp = switch_.classMap(Qos::mapControlPlane_, "copp-system-bgp");
  bgp->cpStaticTypeIs(Qos::cpStaticBgp_);
  auto sm = makeSm(bgp);
  // The static class's row, as CoppStaticSm writes it: same index.
  switch_.qosMib->classMapTableIs(sm->index(), bgp);
  const AgentTrace trace;
  sm.reset();
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  EXPECT_EQ(trace.lines(), Texts{"8 MatchSm::doClose()"});
}

TEST_F(MatchSmTest, ClosingRemovesExactlyTheRowsItAdded) {
  // Rows of other writers, including one in each table this machine writes.
  const auto data = switch_.classMap(Qos::mapQos_, "class-data");
  switch_.qosMib->classMapTableIs(classMapIndex("class-data", Qos::mapQos_), data);
  switch_.qosMib->classMapMatchTableIs(QosSnmp::ClassMapMatchTableIndex("class-data", Qos::mapQos_, 1), data,
                                       matchRule(*data, Qos::matchCos_));
  const auto before = rows();
  matchRule(*voice_, Qos::matchVlan_);
  auto sm = makeSm(voice_);
  matchRule(*voice_, Qos::matchVlan_, "20");
  matchRule(*voice_, Qos::matchDscp_);
  // The class-map row, matchVlan's first row, and row 2 (matchVlan's
  // second, overwritten by matchDscp).
  EXPECT_EQ(rows().size(), before.size() + 3);
  const AgentTrace trace;
  sm.reset();
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), Texts{"8 MatchSm::doClose()"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::MatchSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::MatchSm::KelClassMapStatus"), 0);
}

TEST_F(MatchSmTest, OtherClassMapAttributesAreNotFollowed) {
  matchRule(*voice_, Qos::matchVlan_);
  const auto sm = makeSm(voice_);
  const auto before = rows();
  const AgentTrace trace;
  voice_->cpTypeIs(Qos::classMapCpDynamic_);
  voice_->cpStaticTypeIs(Qos::cpStaticArp_);
  voice_->matchConditionIs(Qos::matchConditionAll_);
  QosSnmpTest::TestSwitch::mutableOf(voice_->match(Qos::matchVlan_))->valueIs("30");
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(MatchSmTest, WithoutClassMapOnlyTheClassMapRowIsWritten) {
  const AgentTrace trace;
  const auto sm = Kel::make<MatchSm>(nullptr, classMapIndex("class-gone", Qos::mapQos_), switch_.qosMib);
  EXPECT_EQ(rows(), Texts{"classMapTable (class-gone, 1) -"});
  EXPECT_TRUE(sm->classMapName().empty());
  EXPECT_EQ(trace.lines(),
            concat({"8 MatchSm::handleInitialized()", "8 MatchSm::handleTableEntries()"},
                   {staticCoppTrace("mapControlPlane", nullptr, false), {"8 MatchSm::handleMatch()"}}));
}

TEST_F(MatchSmTest, ArgumentsAreTheInputsInConstructorOrder) {
  const auto sm = makeSm(voice_);
  EXPECT_TRUE(sm->arguments() == std::make_tuple(Kel::Ptr<const Qos::ClassMapStatus>(voice_),
                                                 classMapIndex("class-voice", Qos::mapQos_), switch_.qosMib));
  EXPECT_EQ(sm->classMapName(), Kel::String("class-voice"));
}

TEST_F(MatchSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm(voice_);
  EXPECT_DEATH(sm->handleInitialized(),
               assertionFailure(kSource, "void QosSnmp::MatchSm::handleInitialized()", "!initialized()"));
}

TEST_F(MatchSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm(voice_);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleTableEntries(),
               assertionFailure(kSource, "void QosSnmp::MatchSm::handleTableEntries()", "initialized()"));
  EXPECT_DEATH(sm->handleMatch(Qos::matchVlan_),
               assertionFailure(kSource, "void QosSnmp::MatchSm::handleMatch(Qos::ClassMapMatchOption)",
                                "initialized()"));
  EXPECT_DEATH(sm->doClose(),
               assertionFailure(kSource, "virtual void QosSnmp::MatchSm::doClose()", "initialized()"));
  sm->initializedIs(true);
}

}  // namespace
