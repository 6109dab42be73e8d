#include "host/app/LineReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace QosSnmpHost {
namespace {

// Lines and overlong lines as the reader reports them, from what a pipe
// carried.
struct Read {
  std::vector<std::pair<std::size_t, std::string>> lines;
  std::vector<std::pair<std::size_t, std::size_t>> overlong;
};

class LineReaderTest : public ::testing::Test {
 protected:
  // The read end does not block, as the program's change stream.
  void SetUp() override { ASSERT_EQ(::pipe2(fds_, O_NONBLOCK), 0); }
  void TearDown() override {
    ::close(fds_[0]);
    if (fds_[1] >= 0) {
      ::close(fds_[1]);
    }
  }

  void write(const std::string& bytes) {
    // REQUIRES: the pipe has room for `bytes` (64 KiB at least).
    for (std::size_t at = 0; at < bytes.size();) {
      const ssize_t put = ::write(fds_[1], bytes.data() + at, bytes.size() - at);
      ASSERT_GT(put, 0);
      at += static_cast<std::size_t>(put);
    }
  }
  void endStream() {
    ::close(fds_[1]);
    fds_[1] = -1;
  }
  // Everything the reader delivers in one readAvailable().
  void readInto(LineReader& reader, Read& read) {
    ASSERT_TRUE(reader.readAvailable(
        [&](std::string_view line, std::size_t number) {
          read.lines.emplace_back(number, std::string(line));
        },
        [&](std::size_t number, std::size_t bytes) { read.overlong.emplace_back(number, bytes); }));
  }

  int fds_[2] = {-1, -1};
};

TEST_F(LineReaderTest, LinesAreCutAtNewlinesAndNumbered) {
  LineReader reader(fds_[0], 100);
  write("one\ntwo\n\nfour");
  endStream();
  Read read;
  readInto(reader, read);
  EXPECT_TRUE(reader.ended());
  const std::vector<std::pair<std::size_t, std::string>> expected = {
      {1, "one"}, {2, "two"}, {3, ""}, {4, "four"}};
  EXPECT_EQ(read.lines, expected);
  EXPECT_TRUE(read.overlong.empty());
}

TEST_F(LineReaderTest, OverlongLineIsSkippedToItsNewlineAndReportedWithItsLength) {
  // The long line arrives in pieces over several reads, as from a FIFO.
  LineReader reader(fds_[0], 10);
  Read read;
  write("short\n0123456789");
  readInto(reader, read);
  write("abcdef");
  readInto(reader, read);
  write("ghi\nnext\n");
  endStream();
  readInto(reader, read);
  const std::vector<std::pair<std::size_t, std::string>> lines = {{1, "short"}, {3, "next"}};
  EXPECT_EQ(read.lines, lines);
  const std::vector<std::pair<std::size_t, std::size_t>> overlong = {{2, 19}};
  EXPECT_EQ(read.overlong, overlong);
}

TEST_F(LineReaderTest, ALineOfExactlyTheLimitIsDelivered) {
  LineReader reader(fds_[0], 10);
  write("0123456789\n01234567890\n");
  endStream();
  Read read;
  readInto(reader, read);
  ASSERT_EQ(read.lines.size(), 1U);
  EXPECT_EQ(read.lines[0].second, "0123456789");
  const std::vector<std::pair<std::size_t, std::size_t>> overlong = {{2, 11}};
  EXPECT_EQ(read.overlong, overlong);
}

TEST_F(LineReaderTest, AnOverlongLastLineWithoutNewlineIsReportedAtTheEnd) {
  LineReader reader(fds_[0], 4);
  write("ok\ntoo long");
  endStream();
  Read read;
  readInto(reader, read);
  const std::vector<std::pair<std::size_t, std::size_t>> overlong = {{2, 8}};
  EXPECT_EQ(read.overlong, overlong);
}

TEST_F(LineReaderTest, ANewlineLessStreamIsReadInLinearTime) {
  // 64 MiB without a newline, in 64 KiB reads: rescanning what was read
  // would take minutes; the reader looks at each byte once and keeps none.
  LineReader reader(fds_[0], 1024);
  Read read;
  const std::string chunk(1 << 16, 'x');
  for (int i = 0; i < 1024; ++i) {
    write(chunk);
    readInto(reader, read);
  }
  write("\n");
  endStream();
  readInto(reader, read);
  EXPECT_TRUE(read.lines.empty());
  const std::vector<std::pair<std::size_t, std::size_t>> overlong = {{1, std::size_t{64} << 20U}};
  EXPECT_EQ(read.overlong, overlong);
}

TEST_F(LineReaderTest, AReadStopsAfterItsByteBudgetAndTheRestWaitsForTheNext) {
  // 256 KiB of 16-byte lines wait in a pipe made large enough; with a budget
  // of 16 KiB one call stops after its first read, the next takes the rest.
  ASSERT_GE(::fcntl(fds_[1], F_SETPIPE_SZ, 1 << 20), 1 << 18);
  LineReader reader(fds_[0], 100);
  constexpr std::size_t kLines = 16384;
  std::string lines;
  for (std::size_t i = 0; i < kLines; ++i) {
    lines += "0123456789abcde\n";
  }
  write(lines);
  Read read;
  ASSERT_TRUE(reader.readAvailable(
      [&](std::string_view line, std::size_t number) { read.lines.emplace_back(number, std::string(line)); },
      [&](std::size_t number, std::size_t bytes) { read.overlong.emplace_back(number, bytes); },
      std::size_t{16} * 1024));
  EXPECT_GT(read.lines.size(), 0U);
  EXPECT_LT(read.lines.size(), kLines);
  EXPECT_FALSE(reader.ended());
  for (int call = 0; call < 8 && read.lines.size() < kLines; ++call) {
    readInto(reader, read);
  }
  ASSERT_EQ(read.lines.size(), kLines);
  EXPECT_EQ(read.lines.back().first, kLines);
}

}  // namespace
}  // namespace QosSnmpHost
