#include "QosSnmp/stats/AclHwStatusPmapSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"

namespace {

using QosSnmpTest::addCmapHwStatus;
using QosSnmpTest::addCoppClassMap;
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::joined;
using QosSnmpTest::mibRows;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTestLines;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class AclHwStatusPmapSmTest : public ::testing::Test {
 protected:
  AclHwStatusPmapSmTest()
      : slice_(switch_.slice("FixedSystem")),
        aclSlice_(Kel::make<Qos::AclSliceHwStatus>("Acl1")),
        typeStatus_(addPmapTypeHwStatus(aclSlice_, Qos::mapQos_)) {
    addCoppClassMap(switch_, "copp-system-bgp", Qos::classMapCpStatic_);
  }

  // ACL policy map `name` in `direction`, with one ordinary class
  // ("class-web") that has hardware status: two action rows.
  Kel::Ptr<Qos::PolicyMapHwStatus> policy(Kel::U32 direction, const Kel::String& name) {
    auto pmap = addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(direction, name));
    addCmapHwStatus(pmap, "class-web");
    return pmap;
  }

  Kel::Ptr<QosSnmp::AclHwStatusPmapSm> makeSm() { return makeSm(typeStatus_); }
  Kel::Ptr<QosSnmp::AclHwStatusPmapSm> makeSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& typeStatus) {
    return Kel::make<QosSnmp::AclHwStatusPmapSm>(typeStatus, switch_.qosMibConfig, switch_.qosHwStatus,
                                                 slice_, aclSlice_, switch_.qosStatus, switch_.qosMib);
  }

  Texts rows() const { return mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
  Kel::Ptr<Qos::AclSliceHwStatus> aclSlice_;
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> typeStatus_;
};

TEST_F(AclHwStatusPmapSmTest, InitialScanTracesTheSiblingsHandlePmapText) {
  policy(2, "acl-out");
  policy(1, "acl-in");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(sm->aclHwStatusCmapSm().size(), 2U);
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 AclHwStatusPmapSm::handleInitialized()",
                                   "8 HwStatusPmapSm::handlePmap( 1/acl-in )",
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                               {
                                   "8 HwStatusPmapSm::handlePmap( 2/acl-out )",
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                           }));
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-in, 0, class-web, 1) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-out, 0, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-out, 0, class-web, 1) - - class-web hw FixedSystem",
                    }));
}

TEST_F(AclHwStatusPmapSmTest, ChildIsHandedBothSliceStatuses) {
  const auto pmap = policy(1, "acl-in");
  const auto sm = makeSm();
  const QosSnmp::AclHwStatusCmapSm* child = sm->aclHwStatusCmapSm(pmap->key());
  ASSERT_NE(child, nullptr);
  EXPECT_TRUE(child->arguments() ==
              std::make_tuple(pmap->key(), Kel::Ptr<const Qos::PolicyMapHwStatus>(pmap),
                              Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                              Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                              Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                              Kel::Ptr<const Qos::AclSliceHwStatus>(aclSlice_),
                              Kel::Ptr<const Qos::Status>(switch_.qosStatus), switch_.qosMib));
}

TEST_F(AclHwStatusPmapSmTest, AddedAndRemovedPolicyMapsAreFollowed) {
  const auto sm = makeSm();
  const AgentTrace trace;
  const auto pmap = addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(1, "acl-in"));
  ASSERT_NE(sm->aclHwStatusCmapSm(pmap->key()), nullptr);
  addCmapHwStatus(pmap, "class-web");
  EXPECT_EQ(rows().size(), 2U);
  typeStatus_->pmapDel(pmap->key());
  EXPECT_EQ(sm->aclHwStatusCmapSm(pmap->key()), nullptr);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusPmapSm::handlePmap( 1/acl-in )",
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                               {
                                   "8 HwStatusPmapSm::handlePmap( 1/acl-in )",
                                   "8 AclHwStatusCmapSm::doClose()",
                               },
                           }));
}

TEST_F(AclHwStatusPmapSmTest, NotificationForAPresentKeyKeepsTheChild) {
  const auto pmap = policy(1, "acl-in");
  const auto sm = makeSm();
  const QosSnmp::AclHwStatusCmapSm* child = sm->aclHwStatusCmapSm(pmap->key());
  sm->handlePmap(pmap->key());
  EXPECT_EQ(sm->aclHwStatusCmapSm(pmap->key()), child);
  EXPECT_EQ(sm->aclHwStatusCmapSm().size(), 1U);
}

TEST_F(AclHwStatusPmapSmTest, WithoutTypeStatusThereIsNothingToFollow) {
  policy(1, "acl-in");
  const auto sm = makeSm(nullptr);
  sm->handlePmap(Qos::PolicyMapHwStatusKey(1, "acl-in"));
  EXPECT_EQ(sm->policyMapTypeHwStatus(), nullptr);
  EXPECT_TRUE(sm->aclHwStatusCmapSm().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(AclHwStatusPmapSmTest, PolicyMapTypeIsTheWatchedEntitysType) {
  const auto sm = makeSm();
  EXPECT_EQ(sm->policyMapType(), Qos::mapQos_);
}

TEST_F(AclHwStatusPmapSmTest, ClosingDeletesEveryChildAndRemovesExactlyTheirRows) {
  const auto other = Kel::make<Qos::ClassMapHwStatus>("other");
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("acl-x", 0, "class-web", 0),
                                         nullptr, nullptr, other, nullptr, nullptr);
  const auto before = rows();
  policy(1, "acl-in");
  policy(2, "acl-out");
  auto sm = makeSm();
  EXPECT_EQ(rows().size(), before.size() + 4);
  const AgentTrace trace;
  sm = nullptr;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 AclHwStatusPmapSm::doClose()",
                               "8 AclHwStatusCmapSm::doClose()",
                               "8 AclHwStatusCmapSm::doClose()",
                           }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusPmapSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusCmapSm"), 0);
}

TEST_F(AclHwStatusPmapSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(1, "acl-in"));
  const RingCapture ring;
  auto sm = makeSm();
  typeStatus_->pmapDel(Qos::PolicyMapHwStatusKey(1, "acl-in"));
  sm = nullptr;
  EXPECT_EQ(ring.entries(),
            (Texts{
                "void QosSnmp::AclHwStatusPmapSm::handleInitialized() []",
                "void QosSnmp::AclHwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&) [pi] acl-in 1",
                "void QosSnmp::AclHwStatusCmapSm::handleInitialized() []",
                "void QosSnmp::AclHwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&) [pi] acl-in 1",
                "void QosSnmp::AclHwStatusCmapSm::doClose() []",
                "void QosSnmp::AclHwStatusPmapSm::doClose() []",
            }));
}

TEST(AclHwStatusPmapSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::AclHwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                        testSwitch.qosMib);
  EXPECT_DEATH(sm->handleInitialized(),
               "AclHwStatusPmapSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST(AclHwStatusPmapSmDeathTest, HandlersBeforeInitializationAbort) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::AclHwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                        testSwitch.qosMib);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handlePmap(Qos::PolicyMapHwStatusKey(1, "acl-in")),
               "AclHwStatusPmapSm.cpp:[0-9]+: .*handlePmap.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->doClose(),
               "AclHwStatusPmapSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

TEST(AclHwStatusPmapSmDeathTest, PolicyMapTypeWithoutTypeStatusAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::AclHwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                        testSwitch.qosMib);
  EXPECT_DEATH(
      sm->policyMapType(),
      "AclHwStatusPmapSm.cpp:[0-9]+: .*policyMapType.*: Assertion `policyMapTypeHwStatus\\(\\)' failed");
}

}  // namespace
