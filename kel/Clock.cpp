#include "kel/Clock.h"

#include <chrono>

#include "kel/Make.h"

namespace Kel {

Clock::NotifieeConst::NotifieeConst(PtrInterface* owner, Ptr<const Clock> clock)
    : NotifieeBase(owner), clock_(std::move(clock)) {
  notifierEntityIs(clock_);
}

Clock::NotifieeConst::~NotifieeConst() {
  if (clock_) {
    clock_->disarm(this);
  }
}

void Clock::NotifieeConst::timeMinIs(double seconds) {
  if (clock_) {
    clock_->arm(this, seconds);
  }
}

Ptr<Clock> Clock::makeVirtual(double start) { return make<Clock>(true, start); }
Ptr<Clock> Clock::makeReal() { return make<Clock>(false, 0.0); }

Clock::Clock(bool isVirtual, double start) : Entity("clock"), virtual_(isVirtual), virtualNow_(start) {}

double Clock::now() const {
  if (virtual_) {
    return virtualNow_;
  }
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count();
}

void Clock::arm(NotifieeConst* notifiee, double seconds) const {
  disarm(notifiee);
  notifiee->timeMin_ = seconds;
  if (seconds == kNever) {
    return;
  }
  notifiee->queueKey_ = {seconds, ++armings_};
  queue_.emplace(notifiee->queueKey_, notifiee);
}

void Clock::disarm(NotifieeConst* notifiee) const {
  if (notifiee->timeMin_ != kNever) {
    queue_.erase(notifiee->queueKey_);
    notifiee->timeMin_ = kNever;
  }
}

double Clock::nextTimeMin() const {
  if (queue_.empty()) {
    return kNever;
  }
  return queue_.begin()->first.first;
}

void Clock::advanceTo(double seconds) {
  if (!virtual_) {
    fireDue(now());
    return;
  }
  while (!queue_.empty() && queue_.begin()->first.first <= seconds) {
    virtualNow_ = std::max(virtualNow_, queue_.begin()->first.first);
    fireDue(virtualNow_);
  }
  virtualNow_ = std::max(virtualNow_, seconds);
}

void Clock::runDue() { fireDue(now()); }

void Clock::fireDue(double upTo) {
  // Timers armed by a handler for a time already due fire in this same call,
  // after those armed before them.
  while (!queue_.empty() && queue_.begin()->first.first <= upTo) {
    NotifieeConst* notifiee = queue_.begin()->second;
    disarm(notifiee);
    if (!notifiee->deliverable()) {
      continue;
    }
    PtrInterface* owner = notifiee->ownerObject();
    const Ptr<PtrInterface> holdNotifiee(notifiee->references() > 0 ? notifiee : nullptr);
    const Ptr<PtrInterface> holdOwner(owner != nullptr && owner->references() > 0 ? owner : nullptr);
    notifiee->onTimeMin();
  }
}

}  // namespace Kel
