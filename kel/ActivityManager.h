// ActivityManager: the one event loop of the reactor thread.
//
// It waits on file descriptors (the change stream, SNMP sockets) and on the
// clock's next timer, and runs whatever is ready: readable descriptors'
// callbacks first, then due timers. Descriptors are re-read on every turn,
// so a callback may add or remove descriptors (including its own), and a
// descriptor number reused after a reconnect is picked up.
//
//   Kel::ActivityManager loop(Kel::System::clock());
//   loop.fdReadableIs(fd, [&] { readChanges(); });
//   loop.run();              // until stop()
#pragma once

#include <functional>
#include <map>

#include "kel/Clock.h"
#include "kel/Ptr.h"

namespace Kel {

class ActivityManager {
 public:
  explicit ActivityManager(Ptr<Clock> clock);
  ActivityManager(const ActivityManager&) = delete;
  ActivityManager& operator=(const ActivityManager&) = delete;

  // Calls `onReadable` whenever `fd` is readable (or closed by its peer).
  void fdReadableIs(int fd, std::function<void()> onReadable);
  void fdDel(int fd);
  std::size_t fds() const { return readers_.size(); }

  // One turn: waits at most `maxWaitSeconds` (less when a timer is due
  // sooner), then runs ready descriptors and due timers. Returns the number
  // of descriptors served.
  std::size_t runOnce(double maxWaitSeconds);
  // Turns until stop() is called (from a callback or a signal handler).
  void run();
  void stop() { stopped_ = true; }
  bool stopped() const { return stopped_; }

  const Ptr<Clock>& clock() const { return clock_; }

 private:
  Ptr<Clock> clock_;
  std::map<int, std::function<void()>> readers_;
  volatile bool stopped_ = false;
};

}  // namespace Kel
