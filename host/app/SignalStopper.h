// SignalStopper: turns SIGINT, SIGTERM and SIGHUP into a readable descriptor
// of the event loop, so the reactor thread stops between two events, never
// inside a handler, and the program leaves the way it does at a normal end:
// every destructor runs, so nothing it made (the SNMP front end's private
// directory, for one) is left behind. SIGHUP is caught because the agent
// started from a terminal gets it when the terminal goes.
//
// One per process. The signal handler only writes a byte to a pipe.
#pragma once

#include <functional>

#include "kel/ActivityManager.h"

namespace QosSnmpHost {

class SignalStopper {
 public:
  // Installs the handlers; `onSignal` runs on the loop's thread with the
  // signal's number.
  SignalStopper(Kel::ActivityManager& loop, std::function<void(int)> onSignal);
  ~SignalStopper();
  SignalStopper(const SignalStopper&) = delete;
  SignalStopper& operator=(const SignalStopper&) = delete;

 private:
  Kel::ActivityManager& loop_;
  int readFd_ = -1;
};

}  // namespace QosSnmpHost
