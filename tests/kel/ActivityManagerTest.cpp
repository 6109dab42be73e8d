#include "kel/ActivityManager.h"

#include <unistd.h>

#include <string>

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

}  // namespace
