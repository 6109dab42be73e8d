// Clock: the framework's clock entity and its timers.
//
// A clock reactor (Clock::NotifieeConst) asks with timeMinIs(t) to be called
// once at absolute time t (seconds); re-arming is the handler's job. Timers
// due at the same time fire in the order they were armed.
//
// A clock is either virtual (tests: time moves only when advanceTo() is
// called, which fires every timer due on the way, each at its own time) or
// real (the host: now() reads the system clock and the event loop calls
// runDue()). Kel::System holds the process's clock.
//
//   class KelTimer : public Kel::ClockNotifiee<EcnCounterTableSm> {
//    public:
//     using ClockNotifiee::ClockNotifiee;
//     void onTimeMin() override { owner().handleTimer(); }
//   };
//   timer_ = Kel::makeReactor<KelTimer>(this, Kel::System::clock());
//   timer_->timeMinIs(Kel::System::currentTime() + 10.0);
#pragma once

#include <limits>
#include <map>
#include <type_traits>
#include <utility>

#include "kel/Entity.h"
#include "kel/NotifieeBase.h"
#include "kel/Ptr.h"
#include "kel/Types.h"

namespace Kel {

class Clock : public Entity {
 public:
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  class NotifieeConst : public NotifieeBase {
   public:
    using NotifierType = const Clock;

    // Arms the reactor for one call at `seconds` (kNever disarms).
    void timeMinIs(double seconds);
    double timeMin() const { return timeMin_; }
    const Clock* clock() const { return clock_.get(); }

    // The timer's handler.
    virtual void onTimeMin() = 0;

    void onAttribute(AttributeId /*attributeId*/, const void* /*key*/) final {}

   protected:
    NotifieeConst(PtrInterface* owner, Ptr<const Clock> clock);
    ~NotifieeConst() override;

   private:
    friend class Clock;
    using QueueKey = std::pair<double, U64>;

    Ptr<const Clock> clock_;
    double timeMin_ = kNever;
    QueueKey queueKey_{kNever, 0};
  };

  static Ptr<Clock> makeVirtual(double start = 0.0);
  static Ptr<Clock> makeReal();

  bool isVirtual() const { return virtual_; }
  double now() const;

  // Virtual clock: moves time forward to `seconds`, firing every timer due
  // on the way at its own time. Never moves time backwards.
  void advanceTo(double seconds);
  // Fires every timer due at now().
  void runDue();
  // The earliest armed time, or kNever.
  double nextTimeMin() const;
  std::size_t armedTimers() const { return queue_.size(); }

 protected:
  explicit Clock(bool isVirtual, double start);

 private:
  void arm(NotifieeConst* notifiee, double seconds) const;
  void disarm(NotifieeConst* notifiee) const;
  void fireDue(double upTo);

  bool virtual_;
  double virtualNow_;
  mutable U64 armings_ = 0;
  mutable std::map<NotifieeConst::QueueKey, NotifieeConst*> queue_;
};

// A clock reactor of an Owner, which it is gated by (see NotifieeBase).
template <typename Owner>
class ClockNotifiee : public Clock::NotifieeConst {
 public:
  ClockNotifiee(Owner* owner, Ptr<const Clock> clock)
      : NotifieeConst(ownerGate(owner), std::move(clock)), owner_(owner) {}

  Owner& owner() const { return *owner_; }

 private:
  Owner* owner_;
};

}  // namespace Kel
