#include "kel/Clock.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"
#include "kel/Notifiee.h"
#include "kel/System.h"

namespace {

using KelTest::Recorder;
using Texts = std::vector<std::string>;

// A machine that polls every `period` seconds, re-arming in its handler.
class PollerSm : public Kel::StateMachine {
 public:
  class KelTimer : public Kel::ClockNotifiee<PollerSm> {
   public:
    using ClockNotifiee::ClockNotifiee;
    void onTimeMin() override { owner().handleTimer(); }
  };

  PollerSm(double period, std::vector<double>* firings) : period_(period), firings_(firings) {
    timer_ = Kel::makeReactor<KelTimer>(this, Kel::System::clock());
    timer_->timeMinIs(Kel::System::currentTime() + period_);
  }

  void handleTimer() {
    firings_->push_back(Kel::System::currentTime());
    timer_->timeMinIs(Kel::System::currentTime() + period_);
  }

 private:
  double period_;
  std::vector<double>* firings_;
  Kel::Ptr<KelTimer> timer_;
};

TEST(ClockTest, VirtualTimeMovesOnlyWhenAdvanced) {
  const Kel::VirtualTime time(100.0);
  EXPECT_EQ(Kel::System::currentTime(), 100.0);
  time.clock()->advanceTo(50.0);
  EXPECT_EQ(Kel::System::currentTime(), 100.0);
}

TEST(ClockTest, TimerFiresOnceAtItsTimeAndNotBefore) {
  Kel::VirtualTime time;
  std::vector<double> firings;
  const auto poller = Kel::make<PollerSm>(10.0, &firings);
  time.advance(9.999);
  EXPECT_TRUE(firings.empty());
  time.advance(0.001);
  EXPECT_EQ(firings, std::vector<double>{10.0});
}

TEST(ClockTest, AdvancingPastSeveralPeriodsFiresEachAtItsOwnTime) {
  Kel::VirtualTime time;
  std::vector<double> firings;
  const auto poller = Kel::make<PollerSm>(10.0, &firings);
  time.advance(35.0);
  EXPECT_EQ(firings, (std::vector<double>{10.0, 20.0, 30.0}));
  EXPECT_EQ(time.now(), 35.0);
}

TEST(ClockTest, TimersDueTogetherFireInArmingOrder) {
  Kel::VirtualTime time;
  Texts log;
  const auto owner = Kel::make<Recorder>(&log);
  struct Named : Kel::Clock::NotifieeConst {
    Named(Recorder* owner, Kel::Ptr<const Kel::Clock> clock, std::string tag)
        : NotifieeConst(owner, std::move(clock)), owner_(owner), tag_(std::move(tag)) {}
    void onTimeMin() override { owner_->record(tag_); }
    Recorder* owner_;
    std::string tag_;
  };
  const auto b = Kel::makeReactor<Named>(owner.get(), Kel::System::clock(), std::string("b"));
  const auto a = Kel::makeReactor<Named>(owner.get(), Kel::System::clock(), std::string("a"));
  b->timeMinIs(5.0);
  a->timeMinIs(5.0);
  time.advance(5.0);
  EXPECT_EQ(log, (Texts{"b", "a"}));
}

TEST(ClockTest, ReArmingReplacesTheEarlierTime) {
  Kel::VirtualTime time;
  std::vector<double> firings;
  const auto poller = Kel::make<PollerSm>(10.0, &firings);
  EXPECT_EQ(time.clock()->nextTimeMin(), 10.0);
  EXPECT_EQ(time.clock()->armedTimers(), 1U);
}

TEST(ClockTest, ClosedOwnersTimerDoesNotFire) {
  Kel::VirtualTime time;
  std::vector<double> firings;
  const auto poller = Kel::make<PollerSm>(10.0, &firings);
  poller->close();
  time.advance(30.0);
  EXPECT_TRUE(firings.empty());
}

TEST(ClockTest, DestroyedTimerIsDisarmed) {
  Kel::VirtualTime time;
  std::vector<double> firings;
  Kel::make<PollerSm>(10.0, &firings);
  EXPECT_EQ(time.clock()->armedTimers(), 0U);
  time.advance(30.0);
  EXPECT_TRUE(firings.empty());
}

TEST(ClockTest, VirtualTimeRestoresThePreviousClock) {
  const Kel::Ptr<Kel::Clock> before = Kel::System::clock();
  {
    const Kel::VirtualTime time;
    EXPECT_NE(Kel::System::clock(), before);
  }
  EXPECT_EQ(Kel::System::clock(), before);
}

TEST(ClockTest, RealClockReadsTheSystemTime) {
  const auto clock = Kel::Clock::makeReal();
  EXPECT_FALSE(clock->isVirtual());
  EXPECT_GT(clock->now(), 1.6e9);  // after 2020
}

}  // namespace
