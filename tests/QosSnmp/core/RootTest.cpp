#include "QosSnmp/core/Root.h"

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace {

using QosSnmpTest::TestSwitch;

class Counter : public Kel::StateMachine {
 public:
  int changes = 0;
};

class KelRoot : public Kel::Notifiee<KelRoot, Counter, const QosSnmp::Root, QosSnmp::Root::RootSmAttr> {
 public:
  using Notifiee::Notifiee;
  void on(QosSnmp::Root::RootSmAttr /*attr*/) { ++owner().changes; }
};

class RootTest : public ::testing::Test {
 protected:
  RootTest() { switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy"); }

  Kel::Ptr<QosSnmp::RootSm> rootSmIs() {
    return root_->rootSmIs(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                           switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir, switch_.qosMibConfig,
                           switch_.allIntfStatusDir, switch_.qosHwCounter, switch_.qosMib,
                           switch_.ecnCounterTable);
  }

  TestSwitch switch_;
  Kel::Ptr<QosSnmp::Root> root_ = Kel::make<QosSnmp::Root>("qosSnmp");
  Kel::Ptr<Counter> counter_ = Kel::make<Counter>();
  Kel::Ptr<KelRoot> reactor_ = Kel::makeReactor<KelRoot>(counter_.get(), root_);
};

TEST_F(RootTest, StartsWithoutAMachine) {
  EXPECT_EQ(root_->name(), Kel::String("qosSnmp"));
  EXPECT_FALSE(root_->rootSm());
}

TEST_F(RootTest, IdenticalArgumentsBuildOneMachineAndNotifyOnce) {
  const auto first = rootSmIs();
  const auto second = rootSmIs();
  EXPECT_EQ(first, second);
  EXPECT_EQ(counter_->changes, 1);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::RootSm"), 1);
  EXPECT_TRUE(first->hasNotificationActive());
}

TEST_F(RootTest, AnyOtherArgumentReplacesTheMachine) {
  const auto first = rootSmIs();
  const auto second =
      root_->rootSmIs(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus, switch_.qosSliceHwStatusDir,
                      nullptr, switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                      switch_.qosMib, switch_.ecnCounterTable);
  EXPECT_NE(first, second);
  EXPECT_EQ(root_->rootSm(), second);
  EXPECT_EQ(counter_->changes, 2);
  EXPECT_EQ(first->references(), 1);  // the root let it go
}

TEST_F(RootTest, RootSmDelHandsTheMachineOverSwitchedOff) {
  const auto built = rootSmIs();
  const auto removed = root_->rootSmDel();
  EXPECT_EQ(removed, built);
  EXPECT_FALSE(root_->rootSm());
  EXPECT_FALSE(removed->hasNotificationActive());
  EXPECT_EQ(counter_->changes, 2);
  EXPECT_FALSE(root_->rootSmDel());
}

}  // namespace
