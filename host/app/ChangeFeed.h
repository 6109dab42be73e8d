// ChangeFeed: the change stream of `run`, read from a descriptor and applied
// in slices of bounded work between turns of the event loop, so that SNMP
// requests are answered while a burst of changes is still being applied.
//
// Contract:
// - Lines are applied in the order they were read, each exactly once; a
//   refused line is reported on the log and the next one follows.
// - A slice applies at least one line (nothing starves), then stops at the
//   first line boundary after `sliceSeconds` of the loop's clock, or earlier
//   when a request is waiting (see ChangeFeedOptions::requestWaiting).
// - An `advance` line holds back the lines after it for that many seconds of
//   the loop's clock, so that the agent sees changes and timers in the same
//   order as on a virtual clock.
// - The backlog (lines read and not yet applied) is bounded: once it holds
//   `maxLines` lines or `maxBytes` bytes, the descriptor is no longer
//   watched, and it is watched again once the backlog has drained to half of
//   both. A writer is then held back by the pipe; nothing is dropped. One
//   read (at most 256 KiB) may carry the backlog past the bound.
// - When the stream ends the descriptor is closed; lines already read are
//   still applied.
// - Log lines: refusals and overlong lines, the stream's end, the first
//   pause of reading until the backlog is next empty, and, after an episode
//   in which the agent was behind for a second or more or paused reading, a
//   summary (lines applied, milliseconds, largest backlog, pauses); while
//   behind, a progress line at most every 10 seconds.
//
//   ChangeFeed feed(loop, [&](std::string_view line, const Source& where) { return host.apply(line, where);
//   },
//                   "changes.fifo", fd, [](ChangeFeedLog, const std::string& text) { std::cerr << text <<
//                   '\n'; });
//   while (!stopping) loop.runOnce(feed.applySlice());
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "host/app/LineReader.h"
#include "host/state/LoadError.h"
#include "host/state/SwitchState.h"
#include "kel/ActivityManager.h"

namespace QosSnmpHost {

// What a message of the feed is about: a line refused (malformed, refused
// by the guard, or too long: one message per line), or the stream's progress
// (its end, a pause of reading, being behind, catching up).
enum class ChangeFeedLog { refused, notice };

struct ChangeFeedOptions {
  // Work per slice, in seconds of the loop's clock.
  double sliceSeconds = 0.003;
  // Whether a request waits to be served (for example
  // ActivityManager::hookReadable); when set, a slice also ends at the first
  // line boundary after a check found one. Checked at most every
  // `checkEverySeconds` within a slice. Empty: slices end on time alone.
  std::function<bool()> requestWaiting;
  double checkEverySeconds = 0.0005;
  // Backlog at which reading pauses. The lines bound keeps the time to catch
  // up after a flood to a few seconds at ~1 ms a change.
  std::size_t maxLines = 2000;
  std::size_t maxBytes = 4U << 20U;
};

class ChangeFeed {
 public:
  using Apply = std::function<Result<Change>(std::string_view line, const Source& where)>;
  // One message, without a newline; the stream's messages start with its
  // name, a refusal with its file and line.
  using Log = std::function<void(ChangeFeedLog kind, const std::string& text)>;

  // Watches `fd` (non-blocking, owned: closed at the end of the stream or on
  // destruction) on `loop`, which must outlive the feed. `name` is the
  // stream's name in messages.
  ChangeFeed(Kel::ActivityManager& loop, Apply apply, std::string name, int fd, Log log,
             ChangeFeedOptions options = {});
  ~ChangeFeed();
  ChangeFeed(const ChangeFeed&) = delete;
  ChangeFeed& operator=(const ChangeFeed&) = delete;

  // Applies one slice of the due lines. Returns how long the loop may wait
  // before the next call: 0 when due lines remain, the time left of an
  // `advance` hold, Kel::Clock::kNever when nothing is pending.
  double applySlice();

  // Lines read and not yet applied, and their bytes.
  std::size_t backlog() const { return pending_.size(); }
  std::size_t backlogBytes() const { return pendingBytes_; }
  // The largest backlog seen since construction.
  std::size_t largestBacklog() const { return largestBacklog_; }
  // Lines applied (accepted or refused) since construction.
  std::size_t applied() const { return applied_; }
  // Whether the descriptor is watched: false while the backlog is full and
  // after the stream ended.
  bool reading() const { return watching_; }
  bool ended() const { return closed_; }

 private:
  struct Pending {
    std::string line;
    std::size_t number;
  };

  void read();
  void watch();
  void unwatch();
  void close();
  bool full() const;
  bool drained() const;
  // Asks options_.requestWaiting when the last check (at `checkedAt`,
  // updated) is old enough.
  bool requestWaiting(double& checkedAt, double now) const;
  void applyOne();
  // A slice that began at `sliceStart` and applied `appliedInSlice` lines
  // ended at `now` with due lines left.
  void noteBehind(double sliceStart, std::size_t appliedInSlice, double now);
  void noteCaughtUp(double now);

  Kel::ActivityManager& loop_;
  Apply apply_;
  std::string name_;
  LineReader reader_;
  Log log_;
  ChangeFeedOptions options_;
  bool watching_ = false;
  bool closed_ = false;
  std::deque<Pending> pending_;
  std::size_t pendingBytes_ = 0;
  std::size_t largestBacklog_ = 0;
  std::size_t applied_ = 0;
  double resumeAt_ = 0.0;

  // The current episode of being behind (a slice ended with due lines left).
  bool behind_ = false;
  // Times reading paused since the backlog was last empty.
  std::size_t pausesInEpisode_ = 0;
  double behindSince_ = 0.0;
  double lastProgressLog_ = 0.0;
  std::size_t appliedAtEpisodeStart_ = 0;
  std::size_t largestInEpisode_ = 0;
};

}  // namespace QosSnmpHost
