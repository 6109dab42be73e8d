#include "QosSnmp/stats/QosStatsTableSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Child.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpTest::addCmapHwStatus;
using QosSnmpTest::addCounters;
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::joined;
using QosSnmpTest::mibRows;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTestLines;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class QosStatsTableSmTest : public ::testing::Test {
 protected:
  QosStatsTableSmTest()
      : slice_(switch_.slice("FixedSystem")), aclSlice_(Kel::make<Qos::AclSliceHwStatus>("Acl1")) {
    switch_.cmapType(Qos::mapControlPlane_);
  }

  // Map type `type` on the slice with policy map "policy-in" (direction 1)
  // and its counted class "class-web": one statistics row.
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> sliceType(Qos::MapType type) {
    auto typeStatus = addPmapTypeHwStatus(slice_, type);
    auto pmap = addPmapHwStatus(typeStatus, Qos::PolicyMapHwStatusKey(1, "policy-in"));
    addCounters(switch_, "policy-in", "class-web");
    addCmapHwStatus(pmap, "class-web");
    return typeStatus;
  }

  // Map type `type` on the ACL slice with policy map "acl-in" (direction 1)
  // and its class "class-web": two action rows.
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> aclType(Qos::MapType type) {
    auto typeStatus = addPmapTypeHwStatus(aclSlice_, type);
    auto pmap = addPmapHwStatus(typeStatus, Qos::PolicyMapHwStatusKey(1, "acl-in"));
    addCmapHwStatus(pmap, "class-web");
    return typeStatus;
  }

  Kel::Ptr<QosSnmp::QosStatsTableSm> makeSm() { return makeSm(slice_, aclSlice_); }
  Kel::Ptr<QosSnmp::QosStatsTableSm> makeSm(const Kel::Ptr<const Qos::SliceHwStatus>& slice,
                                            const Kel::Ptr<const Qos::AclSliceHwStatus>& aclSlice) {
    return Kel::make<QosSnmp::QosStatsTableSm>(switch_.qosHwStatus, slice, aclSlice, switch_.qosMibConfig,
                                               switch_.qosStatus, switch_.qosMib);
  }

  Texts rows() const { return mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
  Kel::Ptr<Qos::AclSliceHwStatus> aclSlice_;
};

TEST_F(QosStatsTableSmTest, InitialScanMakesOneChildPerMapTypeOfEachSlice) {
  addPmapTypeHwStatus(slice_, Qos::mapQos_);
  addPmapTypeHwStatus(slice_, Qos::mapControlPlane_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapQos_);
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(sm->hwStatusPmapSm().size(), 2U);
  EXPECT_NE(sm->hwStatusPmapSm(Qos::mapControlPlane_), nullptr);
  EXPECT_NE(sm->hwStatusPmapSm(Qos::mapQos_), nullptr);
  EXPECT_EQ(sm->aclHwStatusPmapSm().size(), 1U);
  EXPECT_NE(sm->aclHwStatusPmapSm(Qos::mapQos_), nullptr);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatsTableSm::handleInitialized()",
                               "8 QosStatsTableSm::handlePmapType( mapControlPlane )",
                               "8 HwStatusPmapSm::handleInitialized()",
                               "8 QosStatsTableSm::handlePmapType( mapQos )",
                               "8 HwStatusPmapSm::handleInitialized()",
                               "8 QosStatsTableSm::handlePmapType( mapQos )",
                               "8 AclHwStatusPmapSm::handleInitialized()",
                           }));
}

TEST_F(QosStatsTableSmTest, ChildrenAreKeptUnderTheirMapTypeAndGetTheInputs) {
  const auto typeStatus = addPmapTypeHwStatus(slice_, Qos::mapQos_);
  const auto aclTypeStatus = addPmapTypeHwStatus(aclSlice_, Qos::mapControlPlane_);
  const auto sm = makeSm();
  const QosSnmp::HwStatusPmapSm* child = sm->hwStatusPmapSm(Qos::mapQos_);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(child->policyMapType(), Qos::mapQos_);
  EXPECT_TRUE(child->arguments() ==
              std::make_tuple(Kel::Ptr<const Qos::PolicyMapTypeHwStatus>(typeStatus),
                              Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                              Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                              Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                              Kel::Ptr<const Qos::Status>(switch_.qosStatus), switch_.qosMib));
  const QosSnmp::AclHwStatusPmapSm* aclChild = sm->aclHwStatusPmapSm(Qos::mapControlPlane_);
  ASSERT_NE(aclChild, nullptr);
  EXPECT_EQ(aclChild->policyMapType(), Qos::mapControlPlane_);
  EXPECT_TRUE(aclChild->arguments() ==
              std::make_tuple(Kel::Ptr<const Qos::PolicyMapTypeHwStatus>(aclTypeStatus),
                              Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                              Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                              Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                              Kel::Ptr<const Qos::AclSliceHwStatus>(aclSlice_),
                              Kel::Ptr<const Qos::Status>(switch_.qosStatus), switch_.qosMib));
}

TEST_F(QosStatsTableSmTest, ChildrenWriteTheirRows) {
  sliceType(Qos::mapQos_);
  aclType(Qos::mapQos_);
  const auto sm = makeSm();
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-in, 0, class-web, 1) - - class-web hw FixedSystem",
                        "qosStatsTable (policy-in, 0, class-web, 1) class-web class-web",
                    }));
}

TEST_F(QosStatsTableSmTest, MapTypeTwoGetsNoChild) {
  addPmapTypeHwStatus(slice_, Qos::mapPbr_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapPbr_);
  const auto sm = makeSm();
  EXPECT_TRUE(sm->hwStatusPmapSm().empty());
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
  slice_->pmapTypeHwStatusDel(Qos::mapPbr_);
  aclSlice_->pmapTypeHwStatusDel(Qos::mapPbr_);
  const AgentTrace trace;
  addPmapTypeHwStatus(slice_, Qos::mapPbr_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapPbr_);
  EXPECT_TRUE(sm->hwStatusPmapSm().empty());
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatsTableSm::handlePmapType( mapPbr )",
                               "8 QosStatsTableSm::handlePmapType( mapPbr )",
                           }));
}

TEST_F(QosStatsTableSmTest, MapTypeTwoRemovalDeletesNothing) {
  const auto sm = makeSm();
  // Children under key 2 made by hand: only the map type decides.
  const auto typeStatus = addPmapTypeHwStatus(slice_, Qos::mapPbr_);
  const auto aclTypeStatus = addPmapTypeHwStatus(aclSlice_, Qos::mapPbr_);
  sm->hwStatusPmapSmIs(typeStatus, switch_.qosMibConfig, switch_.qosHwStatus, slice_, switch_.qosStatus,
                       switch_.qosMib);
  sm->aclHwStatusPmapSmIs(aclTypeStatus, switch_.qosMibConfig, switch_.qosHwStatus, slice_, aclSlice_,
                          switch_.qosStatus, switch_.qosMib);
  slice_->pmapTypeHwStatusDel(Qos::mapPbr_);
  aclSlice_->pmapTypeHwStatusDel(Qos::mapPbr_);
  EXPECT_NE(sm->hwStatusPmapSm(Qos::mapPbr_), nullptr);
  EXPECT_NE(sm->aclHwStatusPmapSm(Qos::mapPbr_), nullptr);
}

TEST_F(QosStatsTableSmTest, WithoutSliceStatusTheInitialScanMakesNoAclChild) {
  aclType(Qos::mapQos_);
  const AgentTrace trace;
  const auto sm = makeSm(nullptr, aclSlice_);
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 QosStatsTableSm::handleInitialized()"});
}

TEST_F(QosStatsTableSmTest, WithoutSliceStatusAnAclNotificationMakesAChild) {
  aclType(Qos::mapQos_);
  const auto sm = makeSm(nullptr, aclSlice_);
  const AgentTrace trace;
  const auto typeStatus = aclType(Qos::mapControlPlane_);
  ASSERT_NE(sm->aclHwStatusPmapSm(Qos::mapControlPlane_), nullptr);
  EXPECT_EQ(sm->aclHwStatusPmapSm(Qos::mapQos_), nullptr);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-web, 0) - - class-web hw -",
                        "policyMapActionTable (acl-in, 0, class-web, 1) - - class-web hw -",
                    }));
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 QosStatsTableSm::handlePmapType( mapControlPlane )",
                                   "8 AclHwStatusPmapSm::handleInitialized()",
                                   "8 HwStatusPmapSm::handlePmap( 1/acl-in )",
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                           }));
}

TEST_F(QosStatsTableSmTest, WithoutAclSliceStatusOnlySliceChildrenExist) {
  sliceType(Qos::mapQos_);
  const auto sm = makeSm(slice_, nullptr);
  EXPECT_EQ(sm->hwStatusPmapSm().size(), 1U);
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
  EXPECT_EQ(sm->qosAclSliceHwStatus(), nullptr);
  sm->handleDynamicPmapType(Qos::mapQos_);
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
}

TEST_F(QosStatsTableSmTest, NotificationForAPresentKeyKeepsTheChild) {
  addPmapTypeHwStatus(slice_, Qos::mapQos_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapQos_);
  const auto sm = makeSm();
  const QosSnmp::HwStatusPmapSm* child = sm->hwStatusPmapSm(Qos::mapQos_);
  const QosSnmp::AclHwStatusPmapSm* aclChild = sm->aclHwStatusPmapSm(Qos::mapQos_);
  const auto made = Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusPmapSm");
  const auto aclMade = Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusPmapSm");
  sm->handlePmapType(Qos::mapQos_);
  sm->handleDynamicPmapType(Qos::mapQos_);
  EXPECT_EQ(sm->hwStatusPmapSm(Qos::mapQos_), child);
  EXPECT_EQ(sm->aclHwStatusPmapSm(Qos::mapQos_), aclChild);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusPmapSm"), made);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusPmapSm"), aclMade);
}

TEST_F(QosStatsTableSmTest, AnotherMemberUnderAPresentKeyIsAReinstantiation) {
  addPmapTypeHwStatus(slice_, Qos::mapQos_);
  const auto sm = makeSm();
  EXPECT_THROW(addPmapTypeHwStatus(slice_, Qos::mapQos_), Kel::MutatorReinstantiatingException);
}

TEST_F(QosStatsTableSmTest, RemovingAMapTypeDeletesItsChildAndItsRows) {
  sliceType(Qos::mapQos_);
  aclType(Qos::mapQos_);
  const auto sm = makeSm();
  const AgentTrace trace;
  slice_->pmapTypeHwStatusDel(Qos::mapQos_);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-in, 0, class-web, 1) - - class-web hw FixedSystem",
                    }));
  aclSlice_->pmapTypeHwStatusDel(Qos::mapQos_);
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(sm->hwStatusPmapSm().empty());
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 QosStatsTableSm::handlePmapType( mapQos )",
                               "8 HwStatusPmapSm::doClose()",
                               "8 HwStatusCmapSm::doClose()",
                               "8 QosStatsTableSm::handlePmapType( mapQos )",
                               "8 AclHwStatusPmapSm::doClose()",
                               "8 AclHwStatusCmapSm::doClose()",
                           }));
}

TEST_F(QosStatsTableSmTest, NullInputsMakeNoReactorsAndNoChildren) {
  const auto sm =
      Kel::make<QosSnmp::QosStatsTableSm>(nullptr, nullptr, nullptr, nullptr, nullptr, switch_.qosMib);
  EXPECT_TRUE(sm->initialized());
  EXPECT_EQ(sm->qosSliceHwStatus(), nullptr);
  EXPECT_EQ(sm->qosAclSliceHwStatus(), nullptr);
  sm->handlePmapType(Qos::mapQos_);
  sm->handleDynamicPmapType(Qos::mapQos_);
  EXPECT_TRUE(sm->hwStatusPmapSm().empty());
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
}

TEST_F(QosStatsTableSmTest, NullMemberForAChildIsAMutatorError) {
  const auto sm = makeSm();
  try {
    sm->hwStatusPmapSmIs(nullptr, switch_.qosMibConfig, switch_.qosHwStatus, slice_, switch_.qosStatus,
                         switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "policyMapTypeHwStatus");
  }
  try {
    sm->aclHwStatusPmapSmIs(nullptr, switch_.qosMibConfig, switch_.qosHwStatus, slice_, aclSlice_,
                            switch_.qosStatus, switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "policyMapTypeHwStatus");
  }
}

TEST_F(QosStatsTableSmTest, ChildDeletionsAreHarmlessForAbsentKeys) {
  sliceType(Qos::mapQos_);
  const auto sm = makeSm();
  const auto written = rows();
  sm->hwStatusPmapSmDel(Qos::mapControlPlane_);
  sm->aclHwStatusPmapSmDel(Qos::mapQos_);
  EXPECT_EQ(rows(), written);
  sm->hwStatusPmapSmDelAll();
  sm->aclHwStatusPmapSmDelAll();
  EXPECT_TRUE(rows().empty());
}

TEST_F(QosStatsTableSmTest, ReleasingTheMachineClosesEveryChild) {
  const auto other = Kel::make<Qos::ClassMapHwStatus>("other");
  switch_.qosMib->qosStatsTableIs(QosSnmp::QosStatsTableIndex("policy-x", 0, "class-web", 1), other, nullptr);
  const auto before = rows();
  sliceType(Qos::mapQos_);
  aclType(Qos::mapQos_);
  auto sm = makeSm();
  EXPECT_EQ(rows().size(), before.size() + 3);
  sm = nullptr;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::QosStatsTableSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusPmapSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusPmapSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusCmapSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusCmapSm"), 0);
}

TEST_F(QosStatsTableSmTest, SwitchedOffMachineIgnoresNotifications) {
  const auto sm = makeSm();
  sm->hasNotificationActiveIs(false);
  const AgentTrace trace;
  addPmapTypeHwStatus(slice_, Qos::mapQos_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapQos_);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(sm->hwStatusPmapSm().empty());
  EXPECT_TRUE(sm->aclHwStatusPmapSm().empty());
}

TEST_F(QosStatsTableSmTest, ArgumentsAreTheInputs) {
  const auto sm = makeSm();
  EXPECT_TRUE(sm->arguments() == std::make_tuple(Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                 Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                                                 Kel::Ptr<const Qos::AclSliceHwStatus>(aclSlice_),
                                                 Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                                                 Kel::Ptr<const Qos::Status>(switch_.qosStatus),
                                                 switch_.qosMib));
}

TEST_F(QosStatsTableSmTest, AsASingleChildItIsKeptForTheSameInputsAndRebuiltForOthers) {
  sliceType(Qos::mapQos_);
  aclType(Qos::mapQos_);
  const Kel::Ptr<const Qos::Status> qosStatus = switch_.qosStatus;
  Kel::Child<QosSnmp::QosStatsTableSm> child;
  QosSnmp::QosStatsTableSm* first =
      child.is(switch_.qosHwStatus, slice_, aclSlice_, switch_.qosMibConfig, qosStatus, switch_.qosMib);
  const auto written = rows();
  EXPECT_EQ(child.is(switch_.qosHwStatus, slice_, aclSlice_, switch_.qosMibConfig, qosStatus, switch_.qosMib),
            first);
  const AgentTrace trace;
  child.is(switch_.qosHwStatus, slice_, nullptr, switch_.qosMibConfig, qosStatus, switch_.qosMib);
  EXPECT_NE(child.get(), first);
  EXPECT_EQ(child->qosAclSliceHwStatus(), nullptr);
  // The new machine is built before the old one is closed, and both own the
  // statistics row under the same index: the old one's close removes it.
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 QosStatsTableSm::handleInitialized()",
                                   "8 QosStatsTableSm::handlePmapType( mapQos )",
                                   "8 HwStatusPmapSm::handleInitialized()",
                                   "8 HwStatusPmapSm::handlePmap( 1/policy-in )",
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 HwStatusCmapSm::handleCmap( class-web )",
                                   "8 HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                               // The old machine has no doClose() of its own: its
                               // collections go in reverse declaration order.
                               {
                                   "8 AclHwStatusPmapSm::doClose()",
                                   "8 AclHwStatusCmapSm::doClose()",
                                   "8 HwStatusPmapSm::doClose()",
                                   "8 HwStatusCmapSm::doClose()",
                               },
                           }));
  EXPECT_EQ(written.size(), 3U);
}

TEST_F(QosStatsTableSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  addPmapTypeHwStatus(slice_, Qos::mapQos_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapQos_);
  const RingCapture ring;
  const auto sm = makeSm();
  addPmapTypeHwStatus(slice_, Qos::mapPbr_);
  addPmapTypeHwStatus(aclSlice_, Qos::mapPbr_);
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::QosStatsTableSm::handleInitialized() []",
                                "void QosSnmp::QosStatsTableSm::handlePmapType(Qos::MapType) [i] 1",
                                "void QosSnmp::HwStatusPmapSm::handleInitialized() []",
                                "void QosSnmp::QosStatsTableSm::handleDynamicPmapType(Qos::MapType) [i] 1",
                                "void QosSnmp::AclHwStatusPmapSm::handleInitialized() []",
                                "void QosSnmp::QosStatsTableSm::handlePmapType(Qos::MapType) [i] 2",
                                "void QosSnmp::QosStatsTableSm::handleDynamicPmapType(Qos::MapType) [i] 2",
                            }));
}

TEST(QosStatsTableSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm =
      Kel::make<QosSnmp::QosStatsTableSm>(nullptr, nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  EXPECT_DEATH(sm->handleInitialized(),
               "QosStatsTableSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST(QosStatsTableSmDeathTest, HandlersBeforeInitializationAbort) {
  TestSwitch testSwitch;
  const auto sm =
      Kel::make<QosSnmp::QosStatsTableSm>(nullptr, nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handlePmapType(Qos::mapQos_),
               "QosStatsTableSm.cpp:[0-9]+: .*handlePmapType.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleDynamicPmapType(Qos::mapQos_),
               "QosStatsTableSm.cpp:[0-9]+: .*handleDynamicPmapType.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
