#include "kel/Ptr.h"

#include <gtest/gtest.h>

#include "kel/Entity.h"
#include "kel/Make.h"
#include "kel/StateMachine.h"

namespace {

class Counted : public Kel::PtrInterface {
 public:
  explicit Counted(int* destroyed) : destroyed_(destroyed) {}
  ~Counted() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

class Derived : public Counted {
 public:
  using Counted::Counted;
};

class Other : public Kel::PtrInterface {};

TEST(PtrTest, LastReleaseDestroysTheObject) {
  int destroyed = 0;
  {
    const Kel::Ptr<Counted> first = Kel::make<Counted>(&destroyed);
    EXPECT_EQ(first->references(), 1);
    {
      const Kel::Ptr<Counted> second = first;
      EXPECT_EQ(first->references(), 2);
    }
    EXPECT_EQ(first->references(), 1);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(PtrTest, MoveTransfersWithoutCounting) {
  int destroyed = 0;
  Kel::Ptr<Counted> first = Kel::make<Counted>(&destroyed);
  Kel::Ptr<Counted> second = std::move(first);
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(second->references(), 1);
  second = nullptr;
  EXPECT_EQ(destroyed, 1);
}

TEST(PtrTest, ConvertsToBaseAndConst) {
  int destroyed = 0;
  const Kel::Ptr<Derived> derived = Kel::make<Derived>(&destroyed);
  const Kel::Ptr<const Counted> view = derived;
  EXPECT_EQ(view, derived);
  EXPECT_EQ(derived->references(), 2);
}

TEST(PtrTest, CheckedDowncastReadsWrongTypeAsNull) {
  int destroyed = 0;
  const Kel::Ptr<Kel::PtrInterface> object = Kel::make<Derived>(&destroyed);
  EXPECT_TRUE(Kel::ptrCast<Derived>(object));
  EXPECT_FALSE(Kel::ptrCast<Other>(object));
  EXPECT_FALSE(Kel::ptrCast<Other>(Kel::Ptr<Kel::PtrInterface>()));
}

TEST(PtrTest, EqualityIsIdentity) {
  int destroyed = 0;
  const Kel::Ptr<Counted> a = Kel::make<Counted>(&destroyed);
  const Kel::Ptr<Counted> b = Kel::make<Counted>(&destroyed);
  EXPECT_NE(a, b);
  EXPECT_EQ(a, Kel::Ptr<Counted>(a));
  EXPECT_EQ(Kel::Ptr<Counted>(), nullptr);
}

TEST(PtrTest, CountIsNegativeWhileBeingDestroyed) {
  struct Probe : Kel::PtrInterface {
    explicit Probe(bool* seen) : seen_(seen) {}
    ~Probe() override { *seen_ = beingDestroyed(); }
    bool* seen_;
  };
  bool seenBeingDestroyed = false;
  Kel::make<Probe>(&seenBeingDestroyed);
  EXPECT_TRUE(seenBeingDestroyed);
}

TEST(PtrTest, ReferencesTakenDuringDestructionDoNotDestroyTwice) {
  struct SelfReferencing : Kel::PtrInterface {
    explicit SelfReferencing(int* destroyed) : destroyed_(destroyed) {}
    ~SelfReferencing() override {
      const Kel::Ptr<SelfReferencing> again(this);  // released at once
      ++*destroyed_;
    }
    int* destroyed_;
  };
  int destroyed = 0;
  Kel::make<SelfReferencing>(&destroyed);
  EXPECT_EQ(destroyed, 1);
}

TEST(PtrTest, ThreadSafeCountsCountTheSame) {
  Kel::threadSafePointers = true;
  int destroyed = 0;
  {
    const Kel::Ptr<Counted> first = Kel::make<Counted>(&destroyed);
    const Kel::Ptr<Counted> second = first;
    EXPECT_EQ(first->references(), 2);
  }
  Kel::threadSafePointers = false;
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
