#include "kel/StateMachine.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"
#include "kel/Child.h"
#include "kel/ChildMap.h"
#include "kel/MutatorException.h"

namespace {

using KelTest::Gadget;
using Texts = std::vector<std::string>;

// A machine that watches a gadget's color and logs its life cycle.
class LampSm : public Kel::StateMachine {
 public:
  class KelGadget : public Kel::Notifiee<KelGadget, LampSm, const Gadget, Gadget::Color> {
   public:
    using Notifiee::Notifiee;
    void on(Gadget::Color /*attr*/) { owner().handleColor(); }
  };

  LampSm(Kel::Ptr<const Gadget> gadget, int wattage, Texts* log)
      : gadget_(this, gadget), wattage_(wattage), log_(log) {
    handleInitialized();
  }

  auto arguments() const { return std::make_tuple(gadget_.entity(), wattage_, log_); }

  void handleInitialized() {
    initializedIs(true);
    log_->push_back("init " + name());
  }
  void handleColor() { log_->push_back("color " + name()); }

 protected:
  void doClose() override {
    log_->push_back("close " + name());
    // A zombie: its reactor ignores what happens from now on.
    if (gadget_) {
      const_cast<Gadget*>(gadget_.get())->colorIs(gadget_->color() + 100);
    }
  }

 private:
  std::string name() const { return gadget_ ? gadget_->name().stringValue() : std::string("none"); }

  Kel::Watch<KelGadget> gadget_;
  int wattage_;
  Texts* log_;
};

class StateMachineTest : public ::testing::Test {
 protected:
  Texts log_;
  Kel::Ptr<Gadget> desk_ = Kel::make<Gadget>("desk");
  Kel::Ptr<Gadget> floor_ = Kel::make<Gadget>("floor");
};

TEST_F(StateMachineTest, LastReleaseClosesOnce) {
  {
    const auto lamp = Kel::make<LampSm>(desk_, 40, &log_);
    desk_->colorIs(1);
  }
  EXPECT_EQ(log_, (Texts{"init desk", "color desk", "close desk"}));
}

TEST_F(StateMachineTest, ExplicitCloseMakesReactorsZombiesBeforeDoClose) {
  const auto lamp = Kel::make<LampSm>(desk_, 40, &log_);
  lamp->close();
  desk_->colorIs(7);
  lamp->close();
  EXPECT_EQ(log_, (Texts{"init desk", "close desk"}));
  EXPECT_TRUE(lamp->closed());
}

TEST_F(StateMachineTest, SingleChildWithSameArgumentsIsKept) {
  Kel::Child<LampSm> lamp;
  LampSm* first = lamp.is(Kel::Ptr<const Gadget>(desk_), 40, &log_);
  LampSm* again = lamp.is(Kel::Ptr<const Gadget>(desk_), 40, &log_);
  EXPECT_EQ(first, again);
  EXPECT_EQ(log_, Texts{"init desk"});
}

TEST_F(StateMachineTest, SingleChildWithAnyOtherArgumentIsBuiltAnewBeforeTheOldCloses) {
  Kel::Child<LampSm> lamp;
  LampSm* first = lamp.is(Kel::Ptr<const Gadget>(desk_), 40, &log_);
  LampSm* second = lamp.is(Kel::Ptr<const Gadget>(floor_), 40, &log_);
  LampSm* third = lamp.is(Kel::Ptr<const Gadget>(floor_), 60, &log_);
  EXPECT_NE(first, second);
  EXPECT_NE(second, third);
  // The old floor machine's close changes the floor's color: the old one is
  // a zombie by then, the new one sees it.
  EXPECT_EQ(log_,
            (Texts{"init desk", "init floor", "close desk", "init floor", "close floor", "color floor"}));
}

TEST_F(StateMachineTest, SingleChildNullArgumentEqualsNull) {
  Kel::Child<LampSm> lamp;
  LampSm* first = lamp.is(Kel::Ptr<const Gadget>(), 40, &log_);
  EXPECT_EQ(lamp.is(Kel::Ptr<const Gadget>(), 40, &log_), first);
  EXPECT_EQ(log_, Texts{"init none"});
}

TEST_F(StateMachineTest, SingleChildDelClosesAndReleases) {
  Kel::Child<LampSm> lamp;
  lamp.is(Kel::Ptr<const Gadget>(desk_), 40, &log_);
  lamp.del();
  EXPECT_FALSE(lamp);
  desk_->colorIs(3);
  EXPECT_EQ(log_, (Texts{"init desk", "close desk"}));
  EXPECT_EQ(desk_->notifieeList().size(), 0U);
}

TEST_F(StateMachineTest, KeyedChildIsCreatedForANewKeyAndReturnedForEqualArguments) {
  Kel::ChildMap<Kel::String, LampSm> lamps;
  LampSm* desk = lamps.is("desk", Kel::Ptr<const Gadget>(desk_), 40, &log_);
  EXPECT_EQ(lamps.is("desk", Kel::Ptr<const Gadget>(desk_), 40, &log_), desk);
  lamps.is("floor", Kel::Ptr<const Gadget>(floor_), 40, &log_);
  EXPECT_EQ(lamps.size(), 2U);
  EXPECT_EQ(lamps.find("desk"), desk);
  EXPECT_EQ(lamps.find("attic"), nullptr);
  EXPECT_EQ(log_, (Texts{"init desk", "init floor"}));
}

TEST_F(StateMachineTest, KeyedChildWithOtherArgumentsThrowsReinstantiating) {
  Kel::ChildMap<Kel::String, LampSm> lamps;
  lamps.is("desk", Kel::Ptr<const Gadget>(desk_), 40, &log_);
  EXPECT_THROW(lamps.is("desk", Kel::Ptr<const Gadget>(desk_), 60, &log_),
               Kel::MutatorReinstantiatingException);
  EXPECT_THROW(lamps.is("desk", Kel::Ptr<const Gadget>(floor_), 40, &log_), Kel::MutatorException);
  EXPECT_EQ(log_, Texts{"init desk"});
}

TEST_F(StateMachineTest, KeyedChildDelAndDelAllCloseInKeyOrder) {
  {
    Kel::ChildMap<Kel::String, LampSm> lamps;
    lamps.is("b", Kel::Ptr<const Gadget>(floor_), 1, &log_);
    lamps.is("a", Kel::Ptr<const Gadget>(desk_), 1, &log_);
    lamps.is("c", Kel::Ptr<const Gadget>(), 1, &log_);
    EXPECT_TRUE(lamps.del("c"));
    EXPECT_FALSE(lamps.del("c"));
    lamps.delAll();
    EXPECT_TRUE(lamps.empty());
  }
  EXPECT_EQ(log_, (Texts{"init floor", "init desk", "init none", "close none", "close desk", "close floor"}));
}

TEST_F(StateMachineTest, OwnerDestructionClosesItsChildren) {
  {
    Kel::ChildMap<int, LampSm> lamps;
    lamps.is(1, Kel::Ptr<const Gadget>(desk_), 1, &log_);
  }
  EXPECT_EQ(log_, (Texts{"init desk", "close desk"}));
}

TEST_F(StateMachineTest, RequireArgumentNamesTheNullArgument) {
  try {
    Kel::requireArgument(Kel::Ptr<const Gadget>(), "classMapTypeStatus");
    FAIL() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "classMapTypeStatus");
    EXPECT_NE(std::string(e.what()).find("classMapTypeStatus"), std::string::npos);
  }
  EXPECT_NO_THROW(Kel::requireArgument(Kel::Ptr<const Gadget>(desk_), "gadget"));
}

TEST_F(StateMachineTest, ReinstValExceptionIsAMutatorException) {
  EXPECT_THROW(Kel::throwMutatorReinstVal("name"), Kel::MutatorReinstValException);
  EXPECT_THROW(Kel::throwMutatorReinstantiating("x"), Kel::MutatorException);
}

}  // namespace
