#include "QosSnmp/copp/CoppStaticSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"

namespace {

using QosSnmp::CoppStaticSm;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::assertionFailure;
using QosSnmpTest::concat;
using QosSnmpTest::hwClass;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticClassMap;
using QosSnmpTest::staticCoppTrace;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

constexpr const char* kSource = "CoppStaticSm.cpp";

// A switch with control-plane policing supported, the control-plane policy
// with its default class, and one slice.
class CoppStaticSmTest : public ::testing::Test {
 protected:
  CoppStaticSmTest() { switch_.qosHwStatus->coppSupportedIs(true); }

  // A static class map filed by static type in the MIB model, as the class
  // map's MatchSm files it.
  Kel::Ptr<Qos::ClassMapStatus> filed(const Kel::String& name, Qos::ClassMapCpStaticType cpStaticType) {
    auto cmap = staticClassMap(name, cpStaticType);
    switch_.qosMib->cmapByStaticTypeIs(cpStaticType, cmap);
    return cmap;
  }

  Kel::Ptr<CoppStaticSm> makeSm() {
    return Kel::make<CoppStaticSm>(hwStatus(), slice(), switch_.qosMib, pmap_);
  }
  Kel::Ptr<const Qos::HwStatus> hwStatus() const { return switch_.qosHwStatus; }
  Kel::Ptr<const Qos::SliceHwStatus> slice() const { return slice_; }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::PolicyMapStatus> pmap_ = QosSnmpTest::coppSystemPolicy(switch_);
  Kel::Ptr<Qos::SliceHwStatus> slice_ = switch_.slice("FixedSystem");
};

using CoppStaticSmDeathTest = CoppStaticSmTest;

TEST_F(CoppStaticSmTest, InitialScanMirrorsEveryPresentStaticClass) {
  const auto bgp = filed("copp-system-bgp", Qos::cpStaticBgp_);
  const auto lacp = filed("copp-system-lacp", Qos::cpStaticLacp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  hwClass(*slice_, Qos::cpStaticLacp_, 3);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
  EXPECT_EQ(trace.lines(), concat(
                               {
                                   "8 CoppStaticSm::handleInitialized()",
                                   "0 CoppStaticSm:handleCmap()",
                                   "8 CoppStaticSm::handleCmap( cpStaticLacp )",
                               },
                               {
                                   staticCoppTrace("mapControlPlane", lacp.get(), true),
                                   {"8 CoppStaticSm::handleCmap( cpStaticBgp )"},
                                   staticCoppTrace("mapControlPlane", bgp.get(), true),
                               }));
  EXPECT_EQ(sm->coppPmapId(), Snmp::String("copp-system-policy"));
  EXPECT_EQ(sm->policyMapClassTablePriority().get(Qos::cpStaticBgp_), 6136U);
  EXPECT_EQ(sm->policyMapClassTablePriority().get(Qos::cpStaticLacp_), 6143U);
}

TEST_F(CoppStaticSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  const RingCapture ring;
  {
    const auto sm = makeSm();
    hwClass(*slice_, Qos::cpStaticBgp_, 1);
  }
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::CoppStaticSm::handleInitialized() []",
                                "void QosSnmp::CoppStaticSm::handleCmap() []",
                                "void QosSnmp::CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType) [i] 10",
                                "void QosSnmp::CoppStaticSm::doClose() []",
                            }));
}

TEST_F(CoppStaticSmTest, ClassAddedLaterIsMirroredAndRemovedClassLosesBothRows) {
  const auto sm = makeSm();
  const auto bgp = filed("copp-system-bgp", Qos::cpStaticBgp_);
  const AgentTrace trace;
  hwClass(*slice_, Qos::cpStaticBgp_, 0);
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-bgp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticBgp_);
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  const Texts perClass = concat({"8 CoppStaticSm::handleCmap( cpStaticBgp )"},
                                {staticCoppTrace("mapControlPlane", bgp.get(), true)});
  EXPECT_EQ(trace.lines(), concat(perClass, {perClass}));
  EXPECT_TRUE(sm->classMapTableKey().empty());
  EXPECT_TRUE(sm->policyMapClassTableKey().empty());
  EXPECT_TRUE(sm->policyMapClassTablePriority().empty());
}

TEST_F(CoppStaticSmTest, PriorityIsBaseMinusHardwareRank) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  filed("copp-system-lacp", Qos::cpStaticLacp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 0);
  hwClass(*slice_, Qos::cpStaticLacp_, 255);
  const auto sm = makeSm();
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 5891) copp-system-policy copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6146) copp-system-policy copp-system-bgp",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
}

TEST_F(CoppStaticSmTest, DropClassIsNeverMirrored) {
  // No class map is filed for it: it is not even looked up.
  const auto sm = makeSm();
  const auto before = rows();
  const AgentTrace trace;
  hwClass(*slice_, Qos::cpStaticDrop_, 4);
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticDrop_);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 CoppStaticSm::handleCmap( cpStaticDrop )",
                               "8 CoppStaticSm::handleCmap( cpStaticDrop )",
                           }));
  EXPECT_TRUE(sm->policyMapClassTablePriority().empty());
}

TEST_F(CoppStaticSmTest, DefaultClassGetsOnlyAPolicyMapClassRow) {
  hwClass(*slice_, Qos::cpStaticDefault_, 2);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (copp-system-policy, 0, 6144) copp-system-policy "
                          "copp-system-default"});
  EXPECT_TRUE(sm->classMapTableKey().empty());
  EXPECT_EQ(trace.lines(), concat(
                               {
                                   "8 CoppStaticSm::handleInitialized()",
                                   "0 CoppStaticSm:handleCmap()",
                                   "8 CoppStaticSm::handleCmap( cpStaticDefault )",
                               },
                               {staticCoppTrace("mapControlPlane", pmap_->classDefault().get(), true)}));
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticDefault_);
  EXPECT_TRUE(rows().empty());
}

TEST_F(CoppStaticSmTest, DefaultClassLeavesAClassMapRowUnderItsIndexAlone) {
  // Another writer's class-map row under the default class's index.
  const auto classDefault = pmap_->classDefault();
  switch_.qosMib->classMapTableIs(QosSnmp::ClassMapTableIndex("copp-system-default", Qos::mapControlPlane_),
                                  classDefault);
  hwClass(*slice_, Qos::cpStaticDefault_, 2);
  const auto sm = makeSm();
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticDefault_);
  EXPECT_EQ(rows(), Texts{"classMapTable (copp-system-default, 0) copp-system-default"});
}

TEST_F(CoppStaticSmTest, RemovingAClassWithoutPriorityRecordRemovesOnlyItsClassMapRow) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  // Control-plane policing off at start: the class is present but gets no
  // rows and no priority record.
  switch_.qosHwStatus->coppSupportedIs(false);
  const auto sm = makeSm();
  // Rows under the class's indexes, as another writer would leave them.
  switch_.qosMib->classMapTableIs(QosSnmp::ClassMapTableIndex("copp-system-bgp", Qos::mapControlPlane_),
                                  switch_.qosMib->cmapByStaticType(Qos::cpStaticBgp_));
  switch_.qosMib->policyMapClassTableIs(
      QosSnmp::PolicyMapClassTableIndex("copp-system-policy", Qos::mapControlPlane_, 6136), pmap_,
      "copp-system-bgp");
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticBgp_);
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
}

TEST_F(CoppStaticSmTest, CoppUnsupportedRemovesAllRowsButKeepsPriorityRecords) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  hwClass(*slice_, Qos::cpStaticDefault_, 0);
  const auto sm = makeSm();
  const auto withRows = rows();
  const AgentTrace trace;
  switch_.qosHwStatus->coppSupportedIs(false);
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  EXPECT_EQ(trace.lines(), (Texts{"0 CoppStaticSm:handleCmap()", "0 CoppStaticSm:doClose()"}));
  EXPECT_EQ(sm->policyMapClassTablePriority().get(Qos::cpStaticBgp_), 6136U);
  EXPECT_EQ(sm->policyMapClassTablePriority().get(Qos::cpStaticDefault_), 6146U);
  EXPECT_TRUE(sm->classMapTableKey().empty());
  EXPECT_TRUE(sm->policyMapClassTableKey().empty());

  switch_.qosHwStatus->coppSupportedIs(true);
  EXPECT_EQ(rows(), withRows);
}

TEST_F(CoppStaticSmTest, RemovalAfterCoppOffStillDeletesUnderTheRecordedPriority) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = makeSm();
  switch_.qosHwStatus->coppSupportedIs(false);
  // A row under the recorded priority that this machine no longer holds.
  switch_.qosMib->policyMapClassTableIs(
      QosSnmp::PolicyMapClassTableIndex("copp-system-policy", Qos::mapControlPlane_, 6136), pmap_, "other");
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticBgp_);
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  EXPECT_TRUE(sm->policyMapClassTablePriority().empty());
}

TEST_F(CoppStaticSmTest, RankChangeAddsARowUnderTheNewPriorityAndKeepsTheOldOne) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  {
    const auto sm = makeSm();
    hwClass(*slice_, Qos::cpStaticBgp_, 20);
    EXPECT_EQ(rows(),
              (Texts{
                  "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                  "policyMapClassTable (copp-system-policy, 0, 6126) copp-system-policy copp-system-bgp",
                  "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                  "cmapByStaticType cpStaticBgp copp-system-bgp",
              }));
    EXPECT_EQ(sm->policyMapClassTablePriority().get(Qos::cpStaticBgp_), 6126U);
    EXPECT_EQ(sm->policyMapClassTableKey().size(), 2U);

    // Removal deletes the row under the recorded priority only.
    slice_->cpStaticClassHwStatusDel(Qos::cpStaticBgp_);
    EXPECT_EQ(rows(),
              (Texts{
                  "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                  "cmapByStaticType cpStaticBgp copp-system-bgp",
              }));
  }
  // Closing removes the old one.
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
}

TEST_F(CoppStaticSmTest, RankChangedInPlaceIsNotFollowed) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  const auto bgp = hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = makeSm();
  const auto before = rows();
  const AgentTrace trace;
  bgp->hwRankIs(30);
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(CoppStaticSmTest, FullScanVisitsPresentClassesOnly) {
  const auto bgp = filed("copp-system-bgp", Qos::cpStaticBgp_);
  filed("copp-system-lacp", Qos::cpStaticLacp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  hwClass(*slice_, Qos::cpStaticLacp_, 3);
  const auto sm = makeSm();
  // The removal goes unheard.
  sm->hasNotificationActiveIs(false);
  slice_->cpStaticClassHwStatusDel(Qos::cpStaticLacp_);
  sm->hasNotificationActiveIs(true);
  const AgentTrace trace;
  sm->handleCmap();
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
  EXPECT_EQ(trace.lines(),
            concat({"0 CoppStaticSm:handleCmap()", "8 CoppStaticSm::handleCmap( cpStaticBgp )"},
                   {staticCoppTrace("mapControlPlane", bgp.get(), true)}));
}

TEST_F(CoppStaticSmTest, CoppUnsupportedAtStartWritesNothingAndCloses) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  switch_.qosHwStatus->coppSupportedIs(false);
  const auto before = rows();
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 CoppStaticSm::handleInitialized()",
                               "0 CoppStaticSm:handleCmap()",
                               "0 CoppStaticSm:doClose()",
                           }));
}

TEST_F(CoppStaticSmTest, PerClassNotificationsDoNotAskWhetherCoppIsSupported) {
  switch_.qosHwStatus->coppSupportedIs(false);
  const auto sm = makeSm();
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 0) copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 0, 6136) copp-system-policy copp-system-bgp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
}

TEST_F(CoppStaticSmTest, WithoutSliceNothingIsWritten) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  const auto before = rows();
  const AgentTrace trace;
  const auto sm = Kel::make<CoppStaticSm>(hwStatus(), nullptr, switch_.qosMib, pmap_);
  sm->handleCmap(Qos::cpStaticBgp_);
  // No class map is needed: nothing is looked up.
  sm->handleCmap(Qos::cpStaticArp_);
  switch_.qosHwStatus->coppSupportedIs(false);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 CoppStaticSm::handleInitialized()",
                               "0 CoppStaticSm:handleCmap()",
                               "8 CoppStaticSm::handleCmap( cpStaticBgp )",
                               "8 CoppStaticSm::handleCmap( cpStaticArp )",
                               "0 CoppStaticSm:handleCmap()",
                           }));
}

TEST_F(CoppStaticSmTest, WithoutHwStatusOnlyPerClassNotificationsWriteRows) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  filed("copp-system-lacp", Qos::cpStaticLacp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = Kel::make<CoppStaticSm>(nullptr, slice(), switch_.qosMib, pmap_);
  EXPECT_EQ(rows(), (Texts{
                        "cmapByStaticType cpStaticLacp copp-system-lacp",
                        "cmapByStaticType cpStaticBgp copp-system-bgp",
                    }));
  hwClass(*slice_, Qos::cpStaticLacp_, 3);
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-lacp, 0) copp-system-lacp",
                "policyMapClassTable (copp-system-policy, 0, 6143) copp-system-policy copp-system-lacp",
                "cmapByStaticType cpStaticLacp copp-system-lacp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
}

TEST_F(CoppStaticSmTest, LongPolicyAndClassNamesAreShortened) {
  const Kel::String pmapName = "copp-system-policy-with-a-much-longer-name";
  const Kel::String cmapName = "copp-system-class-with-a-much-longer-name";
  const auto pmap = switch_.policyMap(Qos::mapControlPlane_, pmapName);
  const auto cmap = filed(cmapName, Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = Kel::make<CoppStaticSm>(hwStatus(), slice(), switch_.qosMib, pmap);
  const Snmp::String pmapId = QosSnmp::uniqueId(pmapName);
  const Snmp::String cmapId = QosSnmp::uniqueId(cmapName);
  ASSERT_EQ(pmapId.size(), 30U);
  ASSERT_EQ(cmapId.size(), 30U);
  EXPECT_EQ(sm->coppPmapId(), pmapId);
  EXPECT_EQ(rows(), (Texts{
                        "classMapTable (" + cmapId.stringValue() + ", 0) " + cmapName.stringValue(),
                        "policyMapClassTable (" + pmapId.stringValue() + ", 0, 6136) " +
                            pmapName.stringValue() + " " + cmapId.stringValue(),
                        "cmapByStaticType cpStaticBgp " + cmapName.stringValue(),
                    }));
}

TEST_F(CoppStaticSmTest, RowsCarryTheTypesOfTheClassMapAndThePolicyMap) {
  // The class map's own type is not the control plane's: the class-map row
  // takes it all the same.
  const auto bgp = filed("copp-system-bgp", Qos::cpStaticBgp_);
  bgp->typeIs(Qos::mapQos_);
  pmap_->typeIs(Qos::mapPbr_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = makeSm();
  EXPECT_EQ(rows(),
            (Texts{
                "classMapTable (copp-system-bgp, 1) copp-system-bgp",
                "policyMapClassTable (copp-system-policy, 2, 6136) copp-system-policy copp-system-bgp",
                "cmapByStaticType cpStaticBgp copp-system-bgp",
            }));
}

TEST_F(CoppStaticSmTest, ClosingRemovesExactlyTheRowsItAdded) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  filed("copp-system-lacp", Qos::cpStaticLacp_);
  // Rows of other writers, including one in each table this machine writes.
  switch_.qosMib->classMapTableIs(QosSnmp::ClassMapTableIndex("class-voice", Qos::mapQos_), nullptr);
  switch_.qosMib->policyMapClassTableIs(QosSnmp::PolicyMapClassTableIndex("policy-edge", Qos::mapQos_, 1),
                                        nullptr, "class-voice");
  const auto before = rows();
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  hwClass(*slice_, Qos::cpStaticLacp_, 3);
  hwClass(*slice_, Qos::cpStaticDefault_, 0);
  auto sm = makeSm();
  EXPECT_EQ(rows().size(), before.size() + 5);
  const AgentTrace trace;
  sm.reset();
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), Texts{"0 CoppStaticSm:doClose()"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStaticSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStaticSm::KelQosHwStatus"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStaticSm::KelQosSliceHwStatus"), 0);
}

TEST_F(CoppStaticSmTest, ClosedMachineIgnoresNotifications) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  const auto sm = makeSm();
  sm->close();
  const auto before = rows();
  const AgentTrace trace;
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  switch_.qosHwStatus->coppSupportedIs(false);
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(CoppStaticSmTest, OtherHardwareAttributesAreIgnored) {
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.qosHwStatus->coppHwStatsSupportedIs(true);
  switch_.qosHwStatus->ecnCountersSupportedIs(true);
  switch_.qosHwStatus->numEcnQueuesIs(8);
  slice_->ecnIntfCounterHwStatusIs(
      Pellix::IntfId(Kel::String("Ethernet1")),
      Kel::make<Qos::EcnIntfCounterStatus>(Pellix::IntfId(Kel::String("Ethernet1"))));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(CoppStaticSmTest, DroppedInputsAreNoLongerFollowed) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  const auto sm = makeSm();
  sm->qosHwStatusDel();
  sm->qosSliceHwStatusDel();
  EXPECT_FALSE(sm->qosHwStatus());
  EXPECT_FALSE(sm->qosSliceHwStatus());
  const AgentTrace trace;
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  switch_.qosHwStatus->coppSupportedIs(false);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_EQ(rows(), Texts{"cmapByStaticType cpStaticBgp copp-system-bgp"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStaticSm::KelQosHwStatus"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::CoppStaticSm::KelQosSliceHwStatus"), 0);
}

TEST_F(CoppStaticSmTest, ArgumentsAreTheInputsInConstructorOrder) {
  const auto sm = makeSm();
  EXPECT_EQ(sm->arguments(), std::make_tuple(hwStatus(), slice(), switch_.qosMib,
                                             Kel::Ptr<const Qos::PolicyMapStatus>(pmap_)));
}

TEST_F(CoppStaticSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm();
  EXPECT_DEATH(
      sm->handleInitialized(),
      assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleInitialized()", "!initialized()"));
}

TEST_F(CoppStaticSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm();
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleCmap(),
               assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleCmap()", "initialized()"));
  EXPECT_DEATH(sm->handleCmap(Qos::cpStaticBgp_),
               assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType)",
                                "initialized()"));
  EXPECT_DEATH(sm->doClose(),
               assertionFailure(kSource, "virtual void QosSnmp::CoppStaticSm::doClose()", "initialized()"));
  sm->initializedIs(true);
}

TEST_F(CoppStaticSmDeathTest, MissingControlPlanePolicyMapAborts) {
  EXPECT_DEATH(Kel::make<CoppStaticSm>(hwStatus(), slice(), switch_.qosMib, nullptr),
               assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleInitialized()",
                                "coppPmap() && \"PolicyMapStatus must exist for copp-system-policy\""));
}

TEST_F(CoppStaticSmDeathTest, StaticClassWithoutClassMapAborts) {
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  EXPECT_DEATH(makeSm(),
               assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType)",
                                "cmap && \"ClassMapStatus entity must exist for static copp ClassMaps\""));
}

TEST_F(CoppStaticSmDeathTest, DefaultClassWithoutClassDefaultAborts) {
  pmap_->classDefaultIs(nullptr);
  hwClass(*slice_, Qos::cpStaticDefault_, 0);
  EXPECT_DEATH(makeSm(),
               "Assertion `cmap && \"ClassMapStatus entity must exist for static copp ClassMaps\"' failed");
}

TEST_F(CoppStaticSmDeathTest, RemovingAClassWhoseClassMapIsGoneAborts) {
  filed("copp-system-bgp", Qos::cpStaticBgp_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  const auto sm = makeSm();
  switch_.qosMib->cmapByStaticTypeDel(Qos::cpStaticBgp_);
  EXPECT_DEATH(slice_->cpStaticClassHwStatusDel(Qos::cpStaticBgp_),
               "Assertion `cmap && \"ClassMapStatus entity must exist for static copp ClassMaps\"' failed");
}

TEST_F(CoppStaticSmDeathTest, ClassMapThatIsNotStaticAborts) {
  const auto bgp = filed("copp-system-bgp", Qos::cpStaticBgp_);
  bgp->cpTypeIs(Qos::classMapCpDynamic_);
  hwClass(*slice_, Qos::cpStaticBgp_, 10);
  EXPECT_DEATH(makeSm(),
               assertionFailure(kSource, "void QosSnmp::CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType)",
                                "isStaticCoppClassMap( Qos::mapControlPlane_, cmap )"));
}

TEST_F(CoppStaticSmDeathTest, DefaultClassThatIsNotStaticAborts) {
  const auto classDefault = QosSnmpTest::TestSwitch::mutableOf(pmap_->classDefault());
  classDefault->typeIs(Qos::mapQos_);
  hwClass(*slice_, Qos::cpStaticDefault_, 0);
  // The class map's own type does not count: the test asks about the
  // control-plane type, and this class map is static.
  const auto sm = makeSm();
  EXPECT_EQ(rows().size(), 1U);
  classDefault->cpTypeIs(Qos::classMapCpDynamic_);
  EXPECT_DEATH(slice_->cpStaticClassHwStatusDel(Qos::cpStaticDefault_),
               "Assertion `isStaticCoppClassMap\\( Qos::mapControlPlane_, cmap \\)' failed");
}

}  // namespace
