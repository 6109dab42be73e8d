#include "kel/Notifiee.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"

namespace {

using KelTest::Gadget;
using KelTest::GadgetReactor;
using KelTest::Recorder;
using Texts = std::vector<std::string>;

class NotifieeTest : public ::testing::Test {
 protected:
  Texts log_;
  Kel::Ptr<Recorder> owner_ = Kel::make<Recorder>(&log_);
  Kel::Ptr<Gadget> gadget_ = Kel::make<Gadget>("g");
};

TEST_F(NotifieeTest, ScalarChangeCallsTheScalarHandler) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  gadget_->colorIs(3);
  EXPECT_EQ(log_, Texts{"r:color"});
}

TEST_F(NotifieeTest, UnchangedScalarNotifiesNobody) {
  gadget_->colorIs(3);
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  gadget_->colorIs(3);
  EXPECT_TRUE(log_.empty());
}

TEST_F(NotifieeTest, CollectionChangeDeliversTheKeyInItsType) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  gadget_->portIs(7, true);
  gadget_->portIs(7, false);
  gadget_->portIs(7, false);
  gadget_->portDel(7);
  gadget_->partIs("wheel", Kel::make<Gadget>("wheel"));
  EXPECT_EQ(log_, (Texts{"r:port 7", "r:port 7", "r:port 7", "r:part wheel"}));
}

TEST_F(NotifieeTest, NullKeyForACollectionIsIgnored) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  gadget_->notifyPortWithoutKey();
  EXPECT_TRUE(log_.empty());
}

TEST_F(NotifieeTest, UnwatchedAttributeIsIgnored) {
  // A reactor that watches only the color.
  class ColorOnly : public Kel::Notifiee<ColorOnly, Recorder, const Gadget, Gadget::Color> {
   public:
    using Notifiee::Notifiee;
    void on(Gadget::Color /*attr*/) { owner().record("color"); }
  };
  const auto reactor = Kel::makeReactor<ColorOnly>(owner_.get(), gadget_);
  gadget_->portIs(1, true);
  gadget_->colorIs(1);
  EXPECT_EQ(log_, Texts{"color"});
}

TEST_F(NotifieeTest, NoReactorForANullNotifier) {
  EXPECT_FALSE(Kel::makeReactor<GadgetReactor>(owner_.get(), Kel::Ptr<Gadget>(), std::string("r")));
  const Kel::Watch<GadgetReactor> watch;
  EXPECT_FALSE(watch);
  EXPECT_EQ(watch.get(), nullptr);
}

TEST_F(NotifieeTest, SwitchedOffReactorIgnoresNotifications) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  reactor->hasNotificationActiveIs(false);
  gadget_->colorIs(1);
  reactor->hasNotificationActiveIs(true);
  gadget_->colorIs(2);
  EXPECT_EQ(log_, Texts{"r:color"});
}

TEST_F(NotifieeTest, SwitchedOffOwnerSilencesItsReactors) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  owner_->hasNotificationActiveIs(false);
  gadget_->colorIs(1);
  EXPECT_TRUE(log_.empty());
}

TEST_F(NotifieeTest, ClosedOwnersReactorsAreZombies) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  owner_->close();
  gadget_->colorIs(1);
  EXPECT_TRUE(log_.empty());
}

TEST_F(NotifieeTest, NotifierIsRetargetsTheReactor) {
  const auto other = Kel::make<Gadget>("other");
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  reactor->notifierIs(other);
  gadget_->colorIs(1);
  other->colorIs(1);
  EXPECT_EQ(log_, Texts{"r:color"});
  EXPECT_EQ(gadget_->notifieeList().size(), 0U);
  EXPECT_EQ(other->notifieeList().size(), 1U);
  EXPECT_EQ(reactor->notifier(), other.get());
}

TEST_F(NotifieeTest, DestroyedReactorLeavesTheList) {
  {
    const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
    EXPECT_EQ(gadget_->notifieeList().size(), 1U);
  }
  EXPECT_EQ(gadget_->notifieeList().size(), 0U);
  gadget_->colorIs(1);
  EXPECT_TRUE(log_.empty());
}

TEST_F(NotifieeTest, WatchReadsItsEntityAndDropsTheReactorOnReset) {
  class ColorWatch : public Kel::Notifiee<ColorWatch, Recorder, const Gadget, Gadget::Color> {
   public:
    using Notifiee::Notifiee;
    void on(Gadget::Color /*attr*/) { owner().record("color"); }
  };
  Kel::Watch<ColorWatch> watch(owner_.get(), gadget_);
  ASSERT_TRUE(watch);
  EXPECT_EQ(watch.get(), gadget_.get());
  EXPECT_EQ(watch.entity(), gadget_);
  gadget_->colorIs(1);
  watch.reset();
  gadget_->colorIs(2);
  EXPECT_FALSE(watch);
  EXPECT_EQ(log_, Texts{"color"});
  EXPECT_EQ(gadget_->notifieeList().size(), 0U);
}

}  // namespace
