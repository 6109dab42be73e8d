#include "QosSnmp/core/Status.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "kel/Make.h"
#include "kel/MutatorException.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::Recorder;
using QosInputTest::Texts;

class StatusReactor : public Kel::Notifiee<StatusReactor, Recorder, const Status, Status::CmapType,
                                           Status::PmapType, Status::ServicePolicyStatus> {
 public:
  using Notifiee::Notifiee;
  void on(Status::CmapType /*attr*/, const MapType& type) { owner().record("cmapType", type); }
  void on(Status::PmapType /*attr*/, const MapType& type) { owner().record("pmapType", type); }
  void on(Status::ServicePolicyStatus /*attr*/, const ServicePolicyKey& key) {
    owner().record("servicePolicyStatus", key);
  }
};

class StatusTest : public ::testing::Test {
 protected:
  const Texts& log() const { return recorder_->log(); }

  Kel::Ptr<Status> status_ = Kel::make<Status>("status");
  Kel::Ptr<Recorder> recorder_ = Kel::make<Recorder>();
  Kel::Ptr<StatusReactor> reactor_ = Kel::makeReactor<StatusReactor>(recorder_.get(), status_);
};

TEST_F(StatusTest, AttributeIdsFollowDeclarationOrder) {
  EXPECT_EQ(Status::CmapType::id, 1U);
  EXPECT_EQ(Status::PmapType::id, 2U);
  EXPECT_EQ(Status::ServicePolicyStatus::id, 3U);
}

TEST_F(StatusTest, MissingMembersReadAsNull) {
  EXPECT_FALSE(status_->cmapType(mapQos_));
  EXPECT_FALSE(status_->pmapType(mapControlPlane_));
  EXPECT_FALSE(status_->servicePolicyStatus(ServicePolicyKey(mapQos_, directionInput_, "p")));
  EXPECT_TRUE(status_->cmapType().empty());
  EXPECT_FALSE(status_->cmapType().contains(mapQos_));
}

TEST_F(StatusTest, AddedMemberIsReadUnderItsKeyAndNotifiedWithIt) {
  const auto cmaps = Kel::make<ClassMapTypeStatus>(mapQos_);
  status_->cmapTypeIs(mapQos_, cmaps);
  EXPECT_EQ(status_->cmapType(mapQos_), cmaps);
  EXPECT_TRUE(status_->cmapType().contains(mapQos_));
  EXPECT_EQ(status_->cmapType().size(), 1U);
  EXPECT_EQ(log(), Texts{"cmapType mapQos"});
}

TEST_F(StatusTest, ReplacedMemberIsNotifiedAndTheSameMemberIsNot) {
  const auto first = Kel::make<PolicyMapTypeStatus>(mapControlPlane_);
  const auto second = Kel::make<PolicyMapTypeStatus>(mapControlPlane_);
  status_->pmapTypeIs(mapControlPlane_, first);
  status_->pmapTypeIs(mapControlPlane_, first);
  status_->pmapTypeIs(mapControlPlane_, second);
  EXPECT_EQ(status_->pmapType(mapControlPlane_), second);
  EXPECT_EQ(log(), (Texts{"pmapType mapControlPlane", "pmapType mapControlPlane"}));
}

TEST_F(StatusTest, DeletedMemberIsNotifiedAndMissingOneIsNot) {
  status_->cmapTypeIs(mapQos_, Kel::make<ClassMapTypeStatus>(mapQos_));
  recorder_->clear();
  EXPECT_TRUE(status_->cmapTypeDel(mapQos_));
  EXPECT_FALSE(status_->cmapTypeDel(mapQos_));
  EXPECT_FALSE(status_->cmapType(mapQos_));
  EXPECT_EQ(log(), Texts{"cmapType mapQos"});
}

TEST_F(StatusTest, DelAllDeletesMemberByMemberInKeyOrder) {
  status_->cmapTypeIs(mapPbr_, Kel::make<ClassMapTypeStatus>(mapPbr_));
  status_->cmapTypeIs(mapControlPlane_, Kel::make<ClassMapTypeStatus>(mapControlPlane_));
  status_->cmapTypeIs(mapQos_, Kel::make<ClassMapTypeStatus>(mapQos_));
  recorder_->clear();
  status_->cmapTypeDelAll();
  EXPECT_TRUE(status_->cmapType().empty());
  EXPECT_EQ(log(), (Texts{"cmapType mapControlPlane", "cmapType mapQos", "cmapType mapPbr"}));
}

TEST_F(StatusTest, ServicePolicyIsNotifiedWithItsKey) {
  const ServicePolicyKey key(mapQos_, directionOutput_, "policy-out");
  const auto servicePolicy = Kel::make<ServicePolicyStatus>(key);
  status_->servicePolicyStatusIs(key, servicePolicy);
  EXPECT_EQ(status_->servicePolicyStatus(key), servicePolicy);
  EXPECT_EQ(status_->servicePolicyStatus(key)->key(), key);
  EXPECT_EQ(log(), Texts{"servicePolicyStatus mapQos/directionOutput/policy-out"});
}

TEST_F(StatusTest, MemberChangedInPlaceIsSeenThroughTheReadersPointer) {
  const auto cmaps = Kel::make<ClassMapTypeStatus>(mapQos_);
  status_->cmapTypeIs(mapQos_, cmaps);
  const Kel::Ptr<const ClassMapTypeStatus> view = status_->cmapType(mapQos_);
  cmaps->cmapIs("cm-voice", Kel::make<ClassMapStatus>("cm-voice"));
  EXPECT_TRUE(view->cmap("cm-voice"));
}

TEST_F(StatusTest, NullMemberIsRefused) {
  EXPECT_THROW(status_->cmapTypeIs(mapQos_, nullptr), Kel::MutatorArgNullPointerException);
  EXPECT_FALSE(status_->cmapType().contains(mapQos_));
  EXPECT_TRUE(log().empty());
}

TEST(StatusDeathTest, MemberUnderAnotherKeyAborts) {
  const auto status = Kel::make<Status>();
  EXPECT_DEATH(status->cmapTypeIs(mapQos_, Kel::make<ClassMapTypeStatus>(mapPbr_)), "type\\(\\) == type");
}

}  // namespace
}  // namespace Qos
