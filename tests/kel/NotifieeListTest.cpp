#include "kel/NotifieeList.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"

namespace {

using KelTest::Gadget;
using KelTest::Recorder;
using Texts = std::vector<std::string>;

// A reactor that runs an arbitrary action on every color change.
class Hook : public Kel::Notifiee<Hook, Recorder, const Gadget, Gadget::Color> {
 public:
  Hook(Recorder* owner, Kel::Ptr<const Gadget> gadget, std::string tag, std::function<void()> action)
      : Notifiee(owner, std::move(gadget)), tag_(std::move(tag)), action_(std::move(action)) {}
  void on(Gadget::Color /*attr*/) {
    owner().record(tag_);
    if (action_) {
      action_();
    }
  }

 private:
  std::string tag_;
  std::function<void()> action_;
};

class NotifieeListTest : public ::testing::Test {
 protected:
  Kel::Ptr<Hook> hook(const std::string& tag, std::function<void()> action = {}) {
    return Kel::makeReactor<Hook>(owner_.get(), gadget_, tag, std::move(action));
  }

  Texts log_;
  Kel::Ptr<Recorder> owner_ = Kel::make<Recorder>(&log_);
  Kel::Ptr<Gadget> gadget_ = Kel::make<Gadget>("g");
};

TEST_F(NotifieeListTest, DeliversInTheOrderReactorsWereAdded) {
  const auto a = hook("a");
  const auto b = hook("b");
  const auto c = hook("c");
  gadget_->colorIs(1);
  EXPECT_EQ(log_, (Texts{"a", "b", "c"}));
}

TEST_F(NotifieeListTest, ReactorRemovedDuringAVisitGetsNoFurtherCall) {
  Kel::Ptr<Hook> b;
  const auto a = hook("a", [&] { b = nullptr; });
  b = hook("b");
  const auto c = hook("c");
  gadget_->colorIs(1);
  EXPECT_EQ(log_, (Texts{"a", "c"}));
}

TEST_F(NotifieeListTest, ReactorAddedDuringAVisitMissesTheNotificationInFlight) {
  Kel::Ptr<Hook> late;
  const auto a = hook("a", [&] {
    if (!late) {
      late = hook("late");
    }
  });
  gadget_->colorIs(1);
  EXPECT_EQ(log_, Texts{"a"});
  gadget_->colorIs(2);
  EXPECT_EQ(log_, (Texts{"a", "a", "late"}));
}

TEST_F(NotifieeListTest, ReactorThatDropsItselfFinishesItsCall) {
  Kel::Ptr<Hook> self;
  self = hook("self", [&] { self = nullptr; });
  const auto after = hook("after");
  gadget_->colorIs(1);
  EXPECT_EQ(log_, (Texts{"self", "after"}));
  EXPECT_EQ(gadget_->notifieeList().size(), 1U);
}

TEST_F(NotifieeListTest, HandlerReplacingEveryReactorKeepsDeliverySound) {
  std::vector<Kel::Ptr<Hook>> hooks;
  bool rebuilt = false;
  const auto rebuild = hook("rebuild", [&] {
    if (std::exchange(rebuilt, true)) {
      return;
    }
    hooks.clear();
    for (int i = 0; i < 50; ++i) {
      hooks.push_back(hook("new"));
    }
  });
  for (int i = 0; i < 50; ++i) {
    hooks.push_back(hook("old"));
  }
  gadget_->colorIs(1);
  EXPECT_EQ(log_, Texts{"rebuild"});
  log_.clear();
  gadget_->colorIs(2);
  EXPECT_EQ(log_.size(), 51U);
  EXPECT_EQ(gadget_->notifieeList().size(), 51U);
}

TEST_F(NotifieeListTest, NestedChangeIsDeliveredInsideTheOuterVisit) {
  const auto a = hook("a", [&] {
    if (gadget_->color() == 1) {
      gadget_->colorIs(2);
    }
  });
  const auto b = hook("b");
  gadget_->colorIs(1);
  EXPECT_EQ(log_, (Texts{"a", "a", "b", "b"}));
}

TEST_F(NotifieeListTest, ManyRemovalsKeepTheListConsistent) {
  std::vector<Kel::Ptr<Hook>> hooks;
  hooks.reserve(1000);
  for (int i = 0; i < 1000; ++i) {
    hooks.push_back(hook(std::to_string(i)));
  }
  for (int i = 0; i < 1000; i += 2) {
    hooks[i] = nullptr;
  }
  EXPECT_EQ(gadget_->notifieeList().size(), 500U);
  gadget_->colorIs(1);
  ASSERT_EQ(log_.size(), 500U);
  EXPECT_EQ(log_.front(), "1");
  EXPECT_EQ(log_.back(), "999");
  hooks.clear();
  EXPECT_TRUE(gadget_->notifieeList().empty());
}

}  // namespace
