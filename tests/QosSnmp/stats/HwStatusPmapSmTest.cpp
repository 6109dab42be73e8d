#include "QosSnmp/stats/HwStatusPmapSm.h"

#include <limits>
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
using QosSnmpTest::addCounters;
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::mibRows;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class HwStatusPmapSmTest : public ::testing::Test {
 protected:
  HwStatusPmapSmTest()
      : slice_(switch_.slice("FixedSystem")), typeStatus_(addPmapTypeHwStatus(slice_, Qos::mapQos_)) {
    addCoppClassMap(switch_, "copp-system-bgp", Qos::classMapCpStatic_);
  }

  // Policy map `name` in `direction`, with one static control-plane class
  // ("copp-system-bgp") that has hardware status and counters: three rows.
  Kel::Ptr<Qos::PolicyMapHwStatus> policy(Kel::U32 direction, const Kel::String& name) {
    auto pmap = addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(direction, name));
    addCounters(switch_, name, "copp-system-bgp");
    addCmapHwStatus(pmap, "copp-system-bgp");
    return pmap;
  }

  Kel::Ptr<QosSnmp::HwStatusPmapSm> makeSm() { return makeSm(typeStatus_); }
  Kel::Ptr<QosSnmp::HwStatusPmapSm> makeSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& typeStatus) {
    return Kel::make<QosSnmp::HwStatusPmapSm>(typeStatus, switch_.qosMibConfig, switch_.qosHwStatus, slice_,
                                              switch_.qosStatus, switch_.qosMib);
  }

  Texts rows() const { return mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> typeStatus_;
};

TEST_F(HwStatusPmapSmTest, InitialScanMakesOneChildPerPolicyMapInKeyOrder) {
  typeStatus_->pmapIs(Qos::PolicyMapHwStatusKey(2, "alpha"),
                      QosSnmpTest::pmapHwStatusOf(Qos::PolicyMapHwStatusKey(2, "alpha")));
  typeStatus_->pmapIs(Qos::PolicyMapHwStatusKey(1, "zulu"),
                      QosSnmpTest::pmapHwStatusOf(Qos::PolicyMapHwStatusKey(1, "zulu")));
  typeStatus_->pmapIs(Qos::PolicyMapHwStatusKey(1, "bravo"),
                      QosSnmpTest::pmapHwStatusOf(Qos::PolicyMapHwStatusKey(1, "bravo")));
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(sm->hwStatusCmapSm().size(), 3U);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusPmapSm::handleInitialized()",
                               "8 HwStatusPmapSm::handlePmap( 1/bravo )",
                               "8 HwStatusCmapSm::handleInitialized()",
                               "8 HwStatusPmapSm::handlePmap( 1/zulu )",
                               "8 HwStatusCmapSm::handleInitialized()",
                               "8 HwStatusPmapSm::handlePmap( 2/alpha )",
                               "8 HwStatusCmapSm::handleInitialized()",
                           }));
}

TEST_F(HwStatusPmapSmTest, ChildIsBuiltFromTheKeysMemberAndTheInputs) {
  const auto pmap = policy(1, "policy-in");
  const auto sm = makeSm();
  const QosSnmp::HwStatusCmapSm* child = sm->hwStatusCmapSm(pmap->key());
  ASSERT_NE(child, nullptr);
  EXPECT_TRUE(child->arguments() ==
              std::make_tuple(pmap->key(), Kel::Ptr<const Qos::PolicyMapHwStatus>(pmap),
                              Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                              Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                              Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                              Kel::Ptr<const Qos::Status>(switch_.qosStatus), switch_.qosMib));
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
                "qosStatsTable (policy-in, 0, copp-system-bgp, 1) copp-system-bgp copp-system-bgp",
            }));
}

TEST_F(HwStatusPmapSmTest, AddedPolicyMapGetsAChild) {
  const auto sm = makeSm();
  const AgentTrace trace;
  const auto pmap = addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(1, "policy-in"));
  ASSERT_NE(sm->hwStatusCmapSm(pmap->key()), nullptr);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusPmapSm::handlePmap( 1/policy-in )",
                               "8 HwStatusCmapSm::handleInitialized()",
                           }));
}

TEST_F(HwStatusPmapSmTest, RemovedPolicyMapLosesItsChildAndItsRows) {
  const auto before = rows();
  policy(1, "policy-in");
  policy(2, "policy-out");
  const auto sm = makeSm();
  const auto outRows = rows();
  typeStatus_->pmapDel(Qos::PolicyMapHwStatusKey(1, "policy-in"));
  const AgentTrace trace;
  typeStatus_->pmapDel(Qos::PolicyMapHwStatusKey(2, "policy-out"));
  EXPECT_EQ(sm->hwStatusCmapSm().size(), 0U);
  EXPECT_EQ(rows(), before);
  EXPECT_NE(outRows, before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusPmapSm::handlePmap( 2/policy-out )",
                               "8 HwStatusCmapSm::doClose()",
                           }));
}

TEST_F(HwStatusPmapSmTest, NotificationForAPresentKeyKeepsTheChild) {
  const auto pmap = policy(1, "policy-in");
  const auto sm = makeSm();
  const QosSnmp::HwStatusCmapSm* child = sm->hwStatusCmapSm(pmap->key());
  const auto made = Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusCmapSm");
  sm->handlePmap(pmap->key());
  EXPECT_EQ(sm->hwStatusCmapSm(pmap->key()), child);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusCmapSm"), made);
}

TEST_F(HwStatusPmapSmTest, AbsentKeyDeletesNothing) {
  const auto pmap = policy(1, "policy-in");
  const auto sm = makeSm();
  const auto withRows = rows();
  sm->handlePmap(Qos::PolicyMapHwStatusKey(1, "policy-elsewhere"));
  EXPECT_EQ(sm->hwStatusCmapSm().size(), 1U);
  EXPECT_EQ(rows(), withRows);
}

TEST_F(HwStatusPmapSmTest, WithoutTypeStatusThereIsNothingToFollow) {
  policy(1, "policy-in");
  const AgentTrace trace;
  const auto sm = makeSm(nullptr);
  sm->handlePmap(Qos::PolicyMapHwStatusKey(1, "policy-in"));
  EXPECT_EQ(sm->policyMapTypeHwStatus(), nullptr);
  EXPECT_TRUE(sm->hwStatusCmapSm().empty());
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusPmapSm::handleInitialized()",
                               "8 HwStatusPmapSm::handlePmap( 1/policy-in )",
                           }));
}

TEST_F(HwStatusPmapSmTest, PolicyMapTypeIsTheWatchedEntitysType) {
  const auto sm = makeSm();
  EXPECT_EQ(sm->policyMapType(), Qos::mapQos_);
}

TEST_F(HwStatusPmapSmTest, ClosingDeletesEveryChildAndRemovesExactlyTheirRows) {
  const auto other = Kel::make<Qos::ClassMapHwStatus>("other");
  switch_.qosMib->qosStatsTableIs(QosSnmp::QosStatsTableIndex("policy-x", 0, "copp-system-bgp", 1), other,
                                  nullptr);
  const auto before = rows();
  policy(1, "policy-in");
  policy(2, "policy-out");
  auto sm = makeSm();
  EXPECT_EQ(rows().size(), before.size() + 6);
  const AgentTrace trace;
  sm = nullptr;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusPmapSm::doClose()",
                               "8 HwStatusCmapSm::doClose()",
                               "8 HwStatusCmapSm::doClose()",
                           }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusPmapSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::HwStatusCmapSm"), 0);
}

TEST_F(HwStatusPmapSmTest, ChildrenFollowThePollPeriod) {
  policy(1, "policy-in");
  const auto sm = makeSm();
  switch_.qosMibConfig->counterPollPeriodIs(std::numeric_limits<double>::infinity());
  EXPECT_EQ(rows(),
            (Texts{
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 0) - - copp-system-bgp hw FixedSystem",
                "policyMapActionTable (policy-in, 0, copp-system-bgp, 1) - - copp-system-bgp hw FixedSystem",
            }));
}

TEST_F(HwStatusPmapSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(1, "policy-in"));
  const RingCapture ring;
  auto sm = makeSm();
  typeStatus_->pmapDel(Qos::PolicyMapHwStatusKey(1, "policy-in"));
  addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(2, "policy-out"));
  sm = nullptr;
  EXPECT_EQ(
      ring.entries(),
      (Texts{
          "void QosSnmp::HwStatusPmapSm::handleInitialized() []",
          "void QosSnmp::HwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&) [pi] policy-in 1",
          "void QosSnmp::HwStatusCmapSm::handleInitialized() []",
          "void QosSnmp::HwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&) [pi] policy-in 1",
          "void QosSnmp::HwStatusCmapSm::doClose() []",
          "void QosSnmp::HwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&) [pi] policy-out 2",
          "void QosSnmp::HwStatusCmapSm::handleInitialized() []",
          "void QosSnmp::HwStatusPmapSm::doClose() []",
          "void QosSnmp::HwStatusCmapSm::doClose() []",
      }));
}

TEST(HwStatusPmapSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm =
      Kel::make<QosSnmp::HwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  EXPECT_DEATH(sm->handleInitialized(),
               "HwStatusPmapSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST(HwStatusPmapSmDeathTest, HandlersBeforeInitializationAbort) {
  TestSwitch testSwitch;
  const auto sm =
      Kel::make<QosSnmp::HwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handlePmap(Qos::PolicyMapHwStatusKey(1, "policy-in")),
               "HwStatusPmapSm.cpp:[0-9]+: .*handlePmap.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->doClose(), "HwStatusPmapSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

TEST(HwStatusPmapSmDeathTest, PolicyMapTypeWithoutTypeStatusAborts) {
  TestSwitch testSwitch;
  const auto sm =
      Kel::make<QosSnmp::HwStatusPmapSm>(nullptr, nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  EXPECT_DEATH(
      sm->policyMapType(),
      "HwStatusPmapSm.cpp:[0-9]+: .*policyMapType.*: Assertion `policyMapTypeHwStatus\\(\\)' failed");
}

}  // namespace
