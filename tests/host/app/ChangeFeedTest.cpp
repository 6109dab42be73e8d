#include "host/app/ChangeFeed.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "kel/ActivityManager.h"
#include "kel/Clock.h"

namespace QosSnmpHost {
namespace {

// A change stream on a pipe: the feed owns the read end, the test writes.
class ChangeFeedTest : public ::testing::Test {
 protected:
  ChangeFeedTest() : clock_(Kel::Clock::makeVirtual()), loop_(clock_) {
    int fds[2] = {-1, -1};
    EXPECT_EQ(::pipe2(fds, O_NONBLOCK | O_CLOEXEC), 0);
    readEnd_ = fds[0];
    writeEnd_ = fds[1];
  }
  ~ChangeFeedTest() override {
    feed_.reset();
    ::close(writeEnd_);
  }

  // A feed whose applier records each line and moves the virtual clock by
  // `costSeconds`, as applying a change takes time. A line "advance N" is an
  // advance of N seconds; a line "bad" is refused.
  void makeFeed(double costSeconds, const ChangeFeedOptions& options = {}) {
    feed_ = std::make_unique<ChangeFeed>(
        loop_,
        [this, costSeconds](std::string_view line, const Source& where) -> Result<Change> {
          clock_->advanceTo(clock_->now() + costSeconds);
          applied_.emplace_back(line);
          if (line == "bad") {
            return LoadError{where.file, where.line, std::nullopt, "refused"};
          }
          Change change;
          if (line.starts_with("advance ")) {
            change.op = Change::Op::advance;
            change.seconds = std::stod(std::string(line.substr(8)));
          } else {
            change.op = Change::Op::set;
          }
          return change;
        },
        "changes.fifo", readEnd_,
        [this](ChangeFeedLog kind, const std::string& text) {
          log_ << (kind == ChangeFeedLog::refused ? "warning: " : "") << text << '\n';
        },
        options);
  }

  void write(const std::string& text) const {
    ASSERT_EQ(::write(writeEnd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  static std::string lines(int first, int count) {
    std::string text;
    for (int i = first; i < first + count; ++i) {
      text += "line " + std::to_string(i) + "\n";
    }
    return text;
  }
  static std::vector<std::string> expectedLines(int first, int count) {
    std::vector<std::string> expected;
    for (int i = first; i < first + count; ++i) {
      expected.push_back("line " + std::to_string(i));
    }
    return expected;
  }
  // Turns the loop without waiting (reads what the pipe holds).
  void turn() { loop_.runOnce(0.0); }

  Kel::Ptr<Kel::Clock> clock_;
  Kel::ActivityManager loop_;
  int readEnd_ = -1;
  int writeEnd_ = -1;
  std::ostringstream log_;
  std::vector<std::string> applied_;
  std::unique_ptr<ChangeFeed> feed_;
};

TEST_F(ChangeFeedTest, SliceStopsAtItsTimeBudgetAndKeepsTheRestInOrder) {
  ChangeFeedOptions options;
  options.sliceSeconds = 0.0025;
  makeFeed(0.001, options);
  write(lines(1, 10));
  turn();
  EXPECT_EQ(feed_->backlog(), 10U);

  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(applied_, expectedLines(1, 3));
  EXPECT_EQ(feed_->backlog(), 7U);

  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(feed_->applySlice(), Kel::Clock::kNever);
  EXPECT_EQ(applied_, expectedLines(1, 10));
  EXPECT_EQ(feed_->backlog(), 0U);
  EXPECT_EQ(feed_->applied(), 10U);
  EXPECT_EQ(feed_->largestBacklog(), 10U);
}

TEST_F(ChangeFeedTest, SliceAppliesOneLineEvenWhenThatLineAloneExceedsTheBudget) {
  makeFeed(0.050);
  write(lines(1, 3));
  turn();
  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(applied_, expectedLines(1, 1));
  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(feed_->applySlice(), Kel::Clock::kNever);
  EXPECT_EQ(applied_, expectedLines(1, 3));
}

TEST_F(ChangeFeedTest, LinesArrivingBetweenSlicesQueueBehindTheBacklog) {
  makeFeed(0.002);
  write(lines(1, 4));
  turn();
  EXPECT_EQ(feed_->applySlice(), 0.0);
  write(lines(5, 4));
  turn();
  EXPECT_EQ(feed_->backlog(), 6U);
  while (feed_->applySlice() == 0.0) {
  }
  EXPECT_EQ(applied_, expectedLines(1, 8));
}

TEST_F(ChangeFeedTest, WaitingRequestEndsTheSliceEarly) {
  bool waiting = false;
  int checks = 0;
  ChangeFeedOptions options;
  options.sliceSeconds = 10.0 / 1024.0;
  options.checkEverySeconds = 0.0;
  options.requestWaiting = [&] {
    ++checks;
    return waiting;
  };
  makeFeed(1.0 / 1024.0, options);
  write(lines(1, 20));
  turn();
  EXPECT_EQ(feed_->applySlice(), 0.0);  // ten lines fill the slice
  EXPECT_EQ(applied_.size(), 10U);
  EXPECT_EQ(checks, 9);  // between lines, none once the time is up

  waiting = true;
  EXPECT_EQ(feed_->applySlice(), 0.0);  // still one line: nothing starves
  EXPECT_EQ(applied_, expectedLines(1, 11));
}

TEST_F(ChangeFeedTest, WaitingRequestIsCheckedAtMostEveryCheckInterval) {
  int checks = 0;
  ChangeFeedOptions options;
  options.sliceSeconds = 0.004;
  options.checkEverySeconds = 0.001;
  options.requestWaiting = [&] {
    ++checks;
    return false;
  };
  makeFeed(1.0 / 8192.0, options);  // about 0.12 ms a line
  write(lines(1, 100));
  turn();
  EXPECT_EQ(feed_->applySlice(), 0.0);
  EXPECT_EQ(applied_.size(), 33U);  // 4 ms
  EXPECT_EQ(checks, 3);             // after lines 9, 18 and 27 (1.1, 2.2, 3.3 ms)
}

TEST_F(ChangeFeedTest, NothingPendingLetsTheLoopSleep) {
  makeFeed(0.001);
  EXPECT_EQ(feed_->applySlice(), Kel::Clock::kNever);
  EXPECT_TRUE(applied_.empty());
}

TEST_F(ChangeFeedTest, AdvanceHoldsBackTheLinesAfterItForItsSeconds) {
  makeFeed(0.0);
  write("line 1\nadvance 5\nline 2\n");
  turn();
  EXPECT_DOUBLE_EQ(feed_->applySlice(), 5.0);
  EXPECT_EQ(applied_, (std::vector<std::string>{"line 1", "advance 5"}));

  clock_->advanceTo(clock_->now() + 4.5);
  EXPECT_DOUBLE_EQ(feed_->applySlice(), 0.5);
  EXPECT_EQ(feed_->backlog(), 1U);

  clock_->advanceTo(clock_->now() + 0.5);
  EXPECT_EQ(feed_->applySlice(), Kel::Clock::kNever);
  EXPECT_EQ(applied_, (std::vector<std::string>{"line 1", "advance 5", "line 2"}));
}

TEST_F(ChangeFeedTest, RefusedLineIsLoggedAndTheNextOneFollows) {
  makeFeed(0.0);
  write("line 1\nbad\nline 3\n");
  turn();
  EXPECT_EQ(feed_->applySlice(), Kel::Clock::kNever);
  EXPECT_EQ(applied_, (std::vector<std::string>{"line 1", "bad", "line 3"}));
  EXPECT_EQ(log_.str(), "warning: changes.fifo:2: refused\n");
}

TEST_F(ChangeFeedTest, FullBacklogStopsReadingSoThePipeHoldsTheWriterBack) {
  ChangeFeedOptions options;
  options.maxLines = 100;
  makeFeed(0.001, options);
  write(lines(1, 100));
  turn();
  EXPECT_FALSE(feed_->reading());
  EXPECT_EQ(log_.str(),
            "changes.fifo: 100 change lines waiting; reading paused until half of them are "
            "applied\n");

  // The writer fills the pipe and is then refused more: it is held back.
  int written = 100;
  for (std::string next = lines(written + 1, 1); ::write(writeEnd_, next.data(), next.size()) > 0;
       next = lines(written + 1, 1)) {
    ++written;
  }
  EXPECT_EQ(errno, EAGAIN);
  turn();
  EXPECT_EQ(feed_->backlog(), 100U);

  // Applying half of the backlog resumes reading.
  while (feed_->backlog() > 50U) {
    EXPECT_FALSE(feed_->reading());
    feed_->applySlice();
  }
  EXPECT_TRUE(feed_->reading());

  // Everything the writer wrote is applied, once, in order.
  while (feed_->backlog() > 0U || applied_.size() < static_cast<std::size_t>(written)) {
    turn();
    feed_->applySlice();
    EXPECT_LE(feed_->backlog(), 100U + 65536U / 7U);
  }
  EXPECT_EQ(applied_, expectedLines(1, written));

  // Reading paused again after it resumed: logged once, counted in the summary.
  const std::string log = log_.str();
  EXPECT_EQ(log.find("reading paused until"), log.rfind("reading paused until")) << log;
  EXPECT_NE(log.find("caught up: " + std::to_string(written) + " lines applied"), std::string::npos) << log;
  EXPECT_NE(log.find(" times\n"), std::string::npos) << log;
}

TEST_F(ChangeFeedTest, ByteBoundStopsReadingToo) {
  ChangeFeedOptions options;
  options.maxBytes = 60;
  makeFeed(0.001, options);
  write(lines(1, 10));  // 61 bytes without their newlines
  turn();
  EXPECT_FALSE(feed_->reading());
  EXPECT_EQ(feed_->backlogBytes(), 61U);
  while (feed_->backlogBytes() > 30U) {
    feed_->applySlice();
  }
  EXPECT_TRUE(feed_->reading());
}

TEST_F(ChangeFeedTest, EndOfStreamClosesTheDescriptorAndAppliesWhatWasRead) {
  makeFeed(0.001);
  write(lines(1, 5));
  ::close(writeEnd_);
  writeEnd_ = ::open("/dev/null", O_WRONLY | O_CLOEXEC);  // closed by the fixture
  turn();
  EXPECT_TRUE(feed_->ended());
  EXPECT_FALSE(feed_->reading());
  EXPECT_EQ(loop_.fds(), 0U);
  while (feed_->applySlice() == 0.0) {
  }
  EXPECT_EQ(applied_, expectedLines(1, 5));
  EXPECT_EQ(log_.str(), "changes.fifo: change stream ended; still serving\n");
}

// Costs are powers of two so that the virtual clock's sums are exact.
constexpr double kMillisecondOrSo = 1.0 / 1024.0;

TEST_F(ChangeFeedTest, LongEpisodeBehindIsSummarisedWhenCaughtUp) {
  makeFeed(kMillisecondOrSo);
  write(lines(1, 1100));
  turn();
  while (feed_->applySlice() == 0.0) {
  }
  EXPECT_EQ(log_.str(), "changes.fifo: caught up: 1100 lines applied in 1074 ms, at most 1100 waiting\n");
}

TEST_F(ChangeFeedTest, ShortEpisodeBehindIsNotLogged) {
  makeFeed(kMillisecondOrSo);
  write(lines(1, 50));
  turn();
  while (feed_->applySlice() == 0.0) {
  }
  EXPECT_EQ(applied_.size(), 50U);
  EXPECT_EQ(log_.str(), "");
}

TEST_F(ChangeFeedTest, ProgressIsLoggedEveryTenSecondsWhileBehind) {
  makeFeed(1.0 / 128.0);
  write(lines(1, 1900));
  turn();
  while (feed_->applySlice() == 0.0) {
  }
  EXPECT_EQ(log_.str(),
            "changes.fifo: behind for 10 s: 1280 lines applied, 620 waiting\n"
            "changes.fifo: caught up: 1900 lines applied in 14844 ms, at most 1900 waiting\n");
}

}  // namespace
}  // namespace QosSnmpHost
