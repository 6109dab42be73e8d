#include "host/app/ChangeFeed.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "kel/Clock.h"

namespace QosSnmpHost {

namespace {

// The most one read of the stream takes in; the backlog's bound holds to
// within this much, however fast a writer refills the pipe.
constexpr std::size_t kReadBytes = std::size_t{256} << 10U;

constexpr double kSummaryAfterSeconds = 1.0;
constexpr double kProgressEverySeconds = 10.0;

}  // namespace

ChangeFeed::ChangeFeed(Kel::ActivityManager& loop, Apply apply, std::string name, int fd, Log log,
                       ChangeFeedOptions options)
    : loop_(loop),
      apply_(std::move(apply)),
      name_(std::move(name)),
      reader_(fd),
      log_(std::move(log)),
      options_(std::move(options)) {
  watch();
}

ChangeFeed::~ChangeFeed() { close(); }

double ChangeFeed::applySlice() {
  const Kel::Ptr<Kel::Clock>& clock = loop_.clock();
  const double start = clock->now();
  double now = start;
  double checkedAt = start;
  std::size_t appliedInSlice = 0;
  while (!pending_.empty()) {
    if (now < resumeAt_) {
      return resumeAt_ - now;
    }
    if (appliedInSlice > 0 && (now - start >= options_.sliceSeconds || requestWaiting(checkedAt, now))) {
      noteBehind(start, appliedInSlice, now);
      return 0.0;
    }
    applyOne();
    ++appliedInSlice;
    now = clock->now();
  }
  noteCaughtUp(now);
  return Kel::Clock::kNever;
}

bool ChangeFeed::requestWaiting(double& checkedAt, double now) const {
  if (!options_.requestWaiting || now - checkedAt < options_.checkEverySeconds) {
    return false;
  }
  checkedAt = now;
  return options_.requestWaiting();
}

void ChangeFeed::applyOne() {
  Pending next = std::move(pending_.front());
  pending_.pop_front();
  pendingBytes_ -= next.line.size();
  ++applied_;
  Result<Change> change = apply_(next.line, {name_, static_cast<int>(next.number)});
  if (!change) {
    log_(ChangeFeedLog::refused, change.error().text());
  } else if (change->op == Change::Op::advance) {
    resumeAt_ = loop_.clock()->now() + change->seconds;
  }
  if (!watching_ && !closed_ && drained()) {
    watch();
  }
}

void ChangeFeed::read() {
  reader_.readAvailable(
      [this](std::string_view line, std::size_t number) {
        pending_.push_back({std::string(line), number});
        pendingBytes_ += line.size();
      },
      [this](std::size_t number, std::size_t bytes) {
        log_(ChangeFeedLog::refused,
             overlongLineError({name_, static_cast<int>(number)}, bytes, reader_.maxLineBytes()).text());
      },
      kReadBytes);
  largestBacklog_ = std::max(largestBacklog_, pending_.size());
  largestInEpisode_ = std::max(largestInEpisode_, pending_.size());
  if (reader_.ended()) {
    log_(ChangeFeedLog::notice, name_ + ": change stream ended; still serving");
    close();
  } else if (full()) {
    if (pausesInEpisode_++ == 0) {
      log_(ChangeFeedLog::notice, name_ + ": " + std::to_string(pending_.size()) +
                                      " change lines waiting; reading paused until half of them are applied");
    }
    unwatch();
  }
}

void ChangeFeed::watch() {
  loop_.fdReadableIs(reader_.fd(), [this] { read(); });
  watching_ = true;
}

void ChangeFeed::unwatch() {
  if (watching_) {
    loop_.fdDel(reader_.fd());
    watching_ = false;
  }
}

void ChangeFeed::close() {
  if (!closed_) {
    unwatch();
    ::close(reader_.fd());
    closed_ = true;
  }
}

bool ChangeFeed::full() const {
  return pending_.size() >= options_.maxLines || pendingBytes_ >= options_.maxBytes;
}

bool ChangeFeed::drained() const {
  return pending_.size() <= options_.maxLines / 2 && pendingBytes_ <= options_.maxBytes / 2;
}

void ChangeFeed::noteBehind(double sliceStart, std::size_t appliedInSlice, double now) {
  if (!behind_) {
    behind_ = true;
    behindSince_ = sliceStart;
    lastProgressLog_ = sliceStart;
    appliedAtEpisodeStart_ = applied_ - appliedInSlice;
    return;
  }
  if (now - lastProgressLog_ >= kProgressEverySeconds) {
    lastProgressLog_ = now;
    log_(ChangeFeedLog::notice, name_ + ": behind for " + std::to_string(std::lround(now - behindSince_)) +
                                    " s: " + std::to_string(applied_ - appliedAtEpisodeStart_) +
                                    " lines applied, " + std::to_string(pending_.size()) + " waiting");
  }
}

void ChangeFeed::noteCaughtUp(double now) {
  if (behind_ && (pausesInEpisode_ > 0 || now - behindSince_ >= kSummaryAfterSeconds)) {
    std::string text = name_ + ": caught up: " + std::to_string(applied_ - appliedAtEpisodeStart_) +
                       " lines applied in " + std::to_string(std::lround((now - behindSince_) * 1000.0)) +
                       " ms, at most " + std::to_string(largestInEpisode_) + " waiting";
    if (pausesInEpisode_ > 0) {
      text += ", reading paused " + std::to_string(pausesInEpisode_) +
              (pausesInEpisode_ == 1 ? " time" : " times");
    }
    log_(ChangeFeedLog::notice, text);
  }
  behind_ = false;
  pausesInEpisode_ = 0;
  largestInEpisode_ = 0;
}

}  // namespace QosSnmpHost
