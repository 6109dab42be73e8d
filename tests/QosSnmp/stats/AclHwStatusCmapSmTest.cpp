#include "QosSnmp/stats/AclHwStatusCmapSm.h"

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
using QosSnmpTest::addPmapHwStatus;
using QosSnmpTest::addPmapTypeHwStatus;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::joined;
using QosSnmpTest::mibRows;
using QosSnmpTest::RingCapture;
using QosSnmpTest::staticCoppTestLines;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

// A switch with one slice and one ACL slice; the ACL-based policy map
// "acl-in" applied in direction 1 on the ACL slice; control-plane class maps
// "copp-system-bgp" (static) and "copp-system-default" (configured).
// "class-web" is no control-plane class map at all. No counters are
// published: nothing here writes statistics.
class AclHwStatusCmapSmTest : public ::testing::Test {
 protected:
  AclHwStatusCmapSmTest()
      : slice_(switch_.slice("FixedSystem")),
        aclSlice_(Kel::make<Qos::AclSliceHwStatus>("Acl1")),
        typeStatus_(addPmapTypeHwStatus(aclSlice_, Qos::mapQos_)),
        bgp_(addCoppClassMap(switch_, "copp-system-bgp", Qos::classMapCpStatic_)),
        coppDefault_(addCoppClassMap(switch_, "copp-system-default", Qos::classMapCpDynamic_)) {}

  Kel::Ptr<Qos::PolicyMapHwStatus> policy(Kel::S32 pmapKind = 0) {
    return addPmapHwStatus(typeStatus_, Qos::PolicyMapHwStatusKey(1, "acl-in"), pmapKind);
  }

  Kel::Ptr<QosSnmp::AclHwStatusCmapSm> makeSm(const Kel::Ptr<Qos::PolicyMapHwStatus>& pmapStatus) {
    return Kel::make<QosSnmp::AclHwStatusCmapSm>(pmapStatus->key(), pmapStatus, switch_.qosMibConfig,
                                                 switch_.qosHwStatus, slice_, aclSlice_, switch_.qosStatus,
                                                 switch_.qosMib);
  }

  Texts rows() const { return mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
  Kel::Ptr<Qos::AclSliceHwStatus> aclSlice_;
  Kel::Ptr<Qos::PolicyMapTypeHwStatus> typeStatus_;
  Kel::Ptr<Qos::ClassMapStatus> bgp_;
  Kel::Ptr<Qos::ClassMapStatus> coppDefault_;
};

TEST_F(AclHwStatusCmapSmTest, OrdinaryClassGetsTwoActionRowsOnTheOrdinarySlice) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-in, 0, class-web, 1) - - class-web hw FixedSystem",
                    }));
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( class-web )",
                               },
                               staticCoppTestLines(nullptr),
                           }));
}

TEST_F(AclHwStatusCmapSmTest, StaticControlPlaneClassGetsNoActionRows) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "copp-system-bgp");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), joined({
                               {
                                   "8 HwStatusCmapSm::handleInitialized()",
                                   "8 AclHwStatusCmapSm::handleCmap( copp-system-bgp )",
                               },
                               staticCoppTestLines(bgp_),
                           }));
}

TEST_F(AclHwStatusCmapSmTest, CoppSystemDefaultIsLikeAnyOtherConfiguredClass) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "copp-system-default");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(
      rows(),
      (Texts{
          "policyMapActionTable (acl-in, 0, copp-system-default, 0) - - copp-system-default hw FixedSystem",
          "policyMapActionTable (acl-in, 0, copp-system-default, 1) - - copp-system-default hw FixedSystem",
      }));
}

TEST_F(AclHwStatusCmapSmTest, StaticCoppSystemDefaultGetsNoActionRows) {
  coppDefault_->cpTypeIs(Qos::classMapCpStatic_);
  const auto pmap = policy();
  addCmapHwStatus(pmap, "copp-system-default");
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
}

TEST_F(AclHwStatusCmapSmTest, DropClassGetsNoRows) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "copp-system-drop");
  const AgentTrace trace;
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 HwStatusCmapSm::handleInitialized()",
                               "8 AclHwStatusCmapSm::handleCmap( copp-system-drop )",
                           }));
}

TEST_F(AclHwStatusCmapSmTest, MapKindOneGetsNoRows) {
  const auto pmap = policy(1);
  addCmapHwStatus(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
}

TEST_F(AclHwStatusCmapSmTest, MapKindTwoGetsActionRows) {
  const auto pmap = policy(2);
  addCmapHwStatus(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 2, class-web, 0) - - class-web hw FixedSystem",
                        "policyMapActionTable (acl-in, 2, class-web, 1) - - class-web hw FixedSystem",
                    }));
}

TEST_F(AclHwStatusCmapSmTest, WithoutControlPlaneClassMapsNoRowIsWritten) {
  switch_.qosStatus->cmapTypeDel(Qos::mapControlPlane_);
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(rows().empty());
}

TEST_F(AclHwStatusCmapSmTest, ClassWhoseHardwareStatusGoesLosesItsActionRows) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  addCmapHwStatus(pmap, "class-mail");
  const auto sm = makeSm(pmap);
  const AgentTrace trace;
  pmap->cmapDel("class-web");
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (acl-in, 0, class-mail, 0) - - class-mail hw FixedSystem",
                        "policyMapActionTable (acl-in, 0, class-mail, 1) - - class-mail hw FixedSystem",
                    }));
  EXPECT_EQ(sm->policyMapActionTableKey().size(), 2U);
  EXPECT_EQ(trace.lines(),
            joined({{"8 AclHwStatusCmapSm::handleCmap( class-web )"}, staticCoppTestLines(nullptr)}));
}

TEST_F(AclHwStatusCmapSmTest, PollPeriodChangesNothing) {
  switch_.qosMibConfig->counterPollPeriodIs(std::numeric_limits<double>::infinity());
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  const auto sm = makeSm(pmap);
  const auto written = rows();
  EXPECT_EQ(written.size(), 2U);
  const AgentTrace trace;
  switch_.qosMibConfig->counterPollPeriodIs(10.0);
  switch_.qosMibConfig->counterPollPeriodIs(std::numeric_limits<double>::infinity());
  EXPECT_EQ(rows(), written);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(sm->qosStatsTableKey().empty());
}

TEST_F(AclHwStatusCmapSmTest, ClosingRemovesOnlyItsActionRows) {
  const auto other = Kel::make<Qos::ClassMapHwStatus>("other");
  switch_.qosMib->qosStatsTableIs(QosSnmp::QosStatsTableIndex("acl-in", 0, "class-web", 1), other, nullptr);
  switch_.qosMib->policyMapActionTableIs(
      QosSnmp::PolicyMapActionTableIndex("acl-in", 0, "copp-system-bgp", 0), nullptr, nullptr, other, nullptr,
      nullptr);
  const auto before = rows();
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  addCmapHwStatus(pmap, "copp-system-bgp");
  auto sm = makeSm(pmap);
  EXPECT_EQ(rows().size(), before.size() + 2);
  const AgentTrace trace;
  sm = nullptr;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(trace.lines(), Texts{"8 AclHwStatusCmapSm::doClose()"});
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::AclHwStatusCmapSm"), 0);
}

TEST_F(AclHwStatusCmapSmTest, WithoutPolicyMapHardwareStatusNothingIsWritten) {
  addCmapHwStatus(policy(), "class-web");
  const auto sm = Kel::make<QosSnmp::AclHwStatusCmapSm>(Qos::PolicyMapHwStatusKey(1, "acl-in"), nullptr,
                                                        switch_.qosMibConfig, switch_.qosHwStatus, slice_,
                                                        aclSlice_, switch_.qosStatus, switch_.qosMib);
  sm->handleCmap("class-web");
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->policyMapHwStatus(), nullptr);
}

TEST_F(AclHwStatusCmapSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  const auto pmap = policy();
  addCmapHwStatus(pmap, "class-web");
  const RingCapture ring;
  auto sm = makeSm(pmap);
  addCmapHwStatus(pmap, "class-mail");
  sm = nullptr;
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::AclHwStatusCmapSm::handleInitialized() []",
                                "void QosSnmp::AclHwStatusCmapSm::handleCmap(Kel::String) [p] class-web",
                                "void QosSnmp::AclHwStatusCmapSm::handleCmap(Kel::String) [p] class-mail",
                                "void QosSnmp::AclHwStatusCmapSm::doClose() []",
                            }));
}

TEST_F(AclHwStatusCmapSmTest, ArgumentsAreTheInputs) {
  const auto pmap = policy();
  const auto sm = makeSm(pmap);
  EXPECT_TRUE(sm->arguments() == std::make_tuple(pmap->key(), Kel::Ptr<const Qos::PolicyMapHwStatus>(pmap),
                                                 Kel::Ptr<const QosSnmp::QosMibConfig>(switch_.qosMibConfig),
                                                 Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                                 Kel::Ptr<const Qos::SliceHwStatus>(slice_),
                                                 Kel::Ptr<const Qos::AclSliceHwStatus>(aclSlice_),
                                                 Kel::Ptr<const Qos::Status>(switch_.qosStatus),
                                                 switch_.qosMib));
}

using AclHwStatusCmapSmDeathTest = AclHwStatusCmapSmTest;

TEST_F(AclHwStatusCmapSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm(policy());
  EXPECT_DEATH(sm->handleInitialized(),
               "AclHwStatusCmapSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST_F(AclHwStatusCmapSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm(policy());
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleCmap("class-web"),
               "AclHwStatusCmapSm.cpp:[0-9]+: .*handleCmap.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->doClose(),
               "AclHwStatusCmapSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
