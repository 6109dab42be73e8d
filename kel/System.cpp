#include "kel/System.h"

namespace Kel {
namespace {

Ptr<Clock>& installedClock() {
  // Leaked on purpose: timers may outlive static destruction order.
  static auto* clock = new Ptr<Clock>();
  return *clock;
}

}  // namespace

const Ptr<Clock>& System::clock() {
  Ptr<Clock>& clock = installedClock();
  if (!clock) {
    clock = Clock::makeReal();
  }
  return clock;
}

void System::clockIs(Ptr<Clock> clock) { installedClock() = std::move(clock); }

VirtualTime::VirtualTime(double start) : clock_(Clock::makeVirtual(start)), previous_(installedClock()) {
  System::clockIs(clock_);
}

VirtualTime::~VirtualTime() { System::clockIs(previous_); }

}  // namespace Kel
