#include "kel/ActivityManager.h"

#include <unistd.h>

#include <chrono>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

class Pipe {
 public:
  Pipe() { EXPECT_EQ(::pipe(fds_), 0); }
  ~Pipe() {
    ::close(fds_[0]);
    ::close(fds_[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  int readEnd() const { return fds_[0]; }
  void write(const std::string& text) const {
    EXPECT_EQ(::write(fds_[1], text.data(), text.size()), ssize_t(text.size()));
  }

 private:
  int fds_[2] = {-1, -1};
};

TEST(ActivityManagerTest, ReadableDescriptorRunsItsCallback) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe pipe;
  std::string received;
  loop.fdReadableIs(pipe.readEnd(), [&] {
    char buffer[16];
    const ssize_t n = ::read(pipe.readEnd(), buffer, sizeof buffer);
    received.append(buffer, n > 0 ? std::size_t(n) : 0);
  });
  EXPECT_EQ(loop.runOnce(0.0), 0U);
  pipe.write("line\n");
  EXPECT_EQ(loop.runOnce(1.0), 1U);
  EXPECT_EQ(received, "line\n");
}

TEST(ActivityManagerTest, CallbackMayRemoveItsOwnDescriptor) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe pipe;
  int calls = 0;
  loop.fdReadableIs(pipe.readEnd(), [&] {
    ++calls;
    loop.fdDel(pipe.readEnd());
  });
  pipe.write("x");
  loop.runOnce(1.0);
  loop.runOnce(0.0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(loop.fds(), 0U);
}

TEST(ActivityManagerTest, StopEndsRun) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe pipe;
  loop.fdReadableIs(pipe.readEnd(), [&] { loop.stop(); });
  pipe.write("x");
  loop.run();
  EXPECT_TRUE(loop.stopped());
}

// Declares one descriptor and a wait limit each turn, and records what it was told.
class RecordingHook : public Kel::ActivityManager::TurnHook {
 public:
  RecordingHook(int fd, double maxWait) : fd_(fd), maxWait_(maxWait) {}
  double beforeWait(std::vector<int>& fds) override {
    ++before;
    fds.push_back(fd_);
    return maxWait_;
  }
  void afterWait(const std::vector<int>& readyFds) override {
    readyCounts.push_back(readyFds.size());
    if (!readyFds.empty()) {
      EXPECT_EQ(readyFds.front(), fd_);
      char buffer[16];
      EXPECT_GT(::read(fd_, buffer, sizeof buffer), 0);
    }
    if (onAfter) {
      onAfter();
    }
  }

  int before = 0;
  std::vector<std::size_t> readyCounts;
  std::function<void()> onAfter;

 private:
  int fd_;
  double maxWait_;
};

TEST(ActivityManagerTest, TurnHookIsToldWhichOfItsDescriptorsAreReady) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe pipe;
  RecordingHook hook(pipe.readEnd(), std::numeric_limits<double>::infinity());
  loop.turnHookIs(&hook);
  EXPECT_EQ(loop.runOnce(0.0), 0U);
  pipe.write("x");
  EXPECT_EQ(loop.runOnce(1.0), 1U);
  EXPECT_EQ(hook.before, 2);
  EXPECT_EQ(hook.readyCounts, (std::vector<std::size_t>{0, 1}));
  loop.turnHookDel(&hook);
  EXPECT_EQ(loop.turnHooks(), 0U);
}

TEST(ActivityManagerTest, HookReadableSeesAHookDescriptorWithoutServingIt) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe hookPipe;
  const Pipe readerPipe;
  RecordingHook hook(hookPipe.readEnd(), std::numeric_limits<double>::infinity());
  loop.turnHookIs(&hook);
  loop.fdReadableIs(readerPipe.readEnd(), [] {});
  readerPipe.write("x");
  EXPECT_FALSE(loop.hookReadable());  // a reader's descriptor does not count
  hookPipe.write("x");
  EXPECT_TRUE(loop.hookReadable());
  EXPECT_TRUE(hook.readyCounts.empty());
  loop.turnHookDel(&hook);
}

TEST(ActivityManagerTest, HookReadableWithoutHooksIsFalse) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  EXPECT_FALSE(loop.hookReadable());
}

TEST(ActivityManagerTest, TurnHookShortensTheWait) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe pipe;
  RecordingHook hook(pipe.readEnd(), 0.0);
  loop.turnHookIs(&hook);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(loop.runOnce(30.0), 0U);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(hook.readyCounts, (std::vector<std::size_t>{0}));
}

TEST(ActivityManagerTest, TurnHookRemovedByAnEarlierHookGetsNoCall) {
  Kel::ActivityManager loop(Kel::Clock::makeVirtual());
  const Pipe first;
  const Pipe second;
  RecordingHook remover(first.readEnd(), 0.0);
  RecordingHook removed(second.readEnd(), 0.0);
  remover.onAfter = [&] { loop.turnHookDel(&removed); };
  loop.turnHookIs(&remover);
  loop.turnHookIs(&removed);
  loop.runOnce(0.0);
  EXPECT_EQ(removed.before, 1);
  EXPECT_TRUE(removed.readyCounts.empty());
  EXPECT_EQ(loop.turnHooks(), 1U);
}

}  // namespace
