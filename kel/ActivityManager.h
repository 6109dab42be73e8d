// ActivityManager: the one event loop of the reactor thread.
//
// It waits on file descriptors (the change stream, SNMP sockets) and on the
// clock's next timer, and runs whatever is ready: readable descriptors'
// callbacks first, then due timers. Descriptors are re-read on every turn,
// so a callback may add or remove descriptors (including its own), and a
// descriptor number reused after a reconnect is picked up.
//
// A library that keeps its own socket set and timeouts (net-snmp) joins the
// loop as a TurnHook: before every wait it declares the descriptors it wants
// watched and how long the wait may last, after the wait it is told which of
// them are ready, and it gets that call on every turn, ready or not.
//
//   Kel::ActivityManager loop(Kel::System::clock());
//   loop.fdReadableIs(fd, [&] { readChanges(); });
//   loop.run();              // until stop()
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "kel/Clock.h"
#include "kel/Ptr.h"

namespace Kel {

class ActivityManager {
 public:
  // A participant that re-declares its descriptors and wait limit on every
  // turn. It must outlive its registration (turnHookDel before destruction).
  class TurnHook {
   public:
    virtual ~TurnHook() = default;
    // Before the wait: appends the descriptors to watch for reading to
    // `fds`; returns the longest wait in seconds it allows (may be infinite).
    virtual double beforeWait(std::vector<int>& fds) = 0;
    // After the wait: the descriptors it appended that are readable (or
    // closed by their peer), possibly none.
    virtual void afterWait(const std::vector<int>& readyFds) = 0;
  };

  explicit ActivityManager(Ptr<Clock> clock);
  ActivityManager(const ActivityManager&) = delete;
  ActivityManager& operator=(const ActivityManager&) = delete;

  // Calls `onReadable` whenever `fd` is readable (or closed by its peer).
  void fdReadableIs(int fd, std::function<void()> onReadable);
  void fdDel(int fd);
  std::size_t fds() const { return readers_.size(); }

  // Hooks run in the order they were added; a hook may remove itself (or
  // another) from afterWait, and a removed hook gets no further call.
  void turnHookIs(TurnHook* hook);
  void turnHookDel(TurnHook* hook);
  std::size_t turnHooks() const { return hooks_.size(); }

  // One turn: waits at most `maxWaitSeconds` (less when a timer is due
  // sooner, or a turn hook asks for less), then runs ready descriptors, the
  // turn hooks and due timers. Returns the number of descriptors served
  // (readers' and hooks' alike).
  std::size_t runOnce(double maxWaitSeconds);
  // Whether a descriptor of a turn hook is readable right now (a poll that
  // does not wait; readers' descriptors are not looked at). Lets a long
  // piece of work on the loop's thread give way to a waiting request. Calls
  // the hooks' beforeWait, which must therefore have no effect beyond
  // declaring.
  bool hookReadable();
  // Turns until stop() is called (from a callback or a signal handler).
  void run();
  void stop() { stopped_ = true; }
  bool stopped() const { return stopped_; }

  const Ptr<Clock>& clock() const { return clock_; }

 private:
  Ptr<Clock> clock_;
  std::map<int, std::function<void()>> readers_;
  std::vector<TurnHook*> hooks_;
  volatile bool stopped_ = false;
};

}  // namespace Kel
