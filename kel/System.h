// System: the process's clock.
//
// Kel::System::currentTime() reads the installed clock; a real clock is
// installed on first use unless a test or the host installed one before.
//
//   Kel::VirtualTime time;            // tests: a virtual clock at 0.0
//   time.advance(10.0);               // fires the timers due on the way
#pragma once

#include "kel/Clock.h"
#include "kel/Ptr.h"

namespace Kel {

class System {
 public:
  static double currentTime() { return clock()->now(); }
  static const Ptr<Clock>& clock();
  // Installs `clock` as the process's clock (null: a real one on next use).
  static void clockIs(Ptr<Clock> clock);
};

// Installs a virtual clock for its lifetime and restores the previous one.
class VirtualTime {
 public:
  explicit VirtualTime(double start = 0.0);
  ~VirtualTime();
  VirtualTime(const VirtualTime&) = delete;
  VirtualTime& operator=(const VirtualTime&) = delete;

  double now() const { return clock_->now(); }
  void advance(double seconds) { clock_->advanceTo(clock_->now() + seconds); }
  void advanceTo(double seconds) { clock_->advanceTo(seconds); }
  const Ptr<Clock>& clock() const { return clock_; }

 private:
  Ptr<Clock> clock_;
  Ptr<Clock> previous_;
};

}  // namespace Kel
