// Fuzzes the change stream's line reader: LineReader over a non-blocking
// pipe, fed in chunks whose sizes the input chooses, with a read after each
// chunk and one after the writer closes, under a line length cap the input
// chooses too.
//
// Input layout: the first byte is the chunk size in units of 64 bytes (0
// means "everything at once"); the second is the cap in units of 8 bytes (0
// means the default cap, which no input reaches); the rest is the stream.
//
// Checked against the stream cut at its newlines: each line within the cap
// is delivered whole and holds no '\n'; each longer line is reported as
// overlong with its exact length and never delivered; lines are numbered
// 1, 2, 3, ... in stream order across both kinds; the stream ends.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "host/app/LineReader.h"

namespace {

// Bounds the work of one input.
constexpr std::size_t kMaxInput = std::size_t{256} * 1024;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "LineReaderFuzzer: %s\n", what);
  std::abort();
}

// A pipe whose both ends are closed when it goes.
struct Pipe {
  int readFd = -1;
  int writeFd = -1;
  Pipe() {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) {
      fail("pipe");
    }
    readFd = fds[0];
    writeFd = fds[1];
  }
  ~Pipe() {
    ::close(readFd);
    if (writeFd >= 0) {
      ::close(writeFd);
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeWriter() {
    ::close(writeFd);
    writeFd = -1;
  }
};

// Checks what the reader reported for `stream`, line by line (`delivered`:
// the text, or empty for an overlong line; `overlong`: its length, or 0)
// against the stream's own lines: a last line without a newline counts, an
// empty remainder after the last newline does not.
void checkReported(std::string_view stream, std::size_t cap, const std::vector<std::string>& delivered,
                   const std::vector<std::size_t>& overlong) {
  std::vector<std::string_view> expected;
  for (std::size_t start = 0; start < stream.size();) {
    const std::size_t end = std::min(stream.find('\n', start), stream.size());
    expected.push_back(stream.substr(start, end - start));
    start = end + 1;
  }
  if (expected.size() != delivered.size()) {
    fail("not every line was reported once");
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (expected[i].size() > cap ? overlong[i] != expected[i].size() : delivered[i] != expected[i]) {
      fail("a line was not reported as the stream has it");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > kMaxInput) {
    return 0;
  }
  if (size < 2) {
    return 0;
  }
  const std::size_t chunk = data[0] == 0 ? size : std::size_t{data[0]} * 64;
  const std::size_t cap = data[1] == 0 ? QosSnmpHost::InputLimits{}.maxLineBytes : std::size_t{data[1]} * 8;
  const std::string_view stream(reinterpret_cast<const char*>(data) + 2, size - 2);

  Pipe pipe;
  QosSnmpHost::LineReader reader(pipe.readFd, cap);
  // What the reader reported, line by line: the text, or the length of an
  // overlong line.
  std::vector<std::string> delivered;
  std::vector<std::size_t> overlong;
  std::size_t lines = 0;
  const auto onLine = [&](std::string_view line, std::size_t number) {
    if (line.find('\n') != std::string_view::npos) {
      fail("a line holds a newline");
    }
    if (line.size() > cap) {
      fail("a line over the cap is delivered");
    }
    if (number != ++lines) {
      fail("lines are not numbered 1, 2, 3, ...");
    }
    delivered.emplace_back(line);
    overlong.push_back(0);
  };
  const auto onOverlong = [&](std::size_t number, std::size_t bytes) {
    if (number != ++lines) {
      fail("lines are not numbered 1, 2, 3, ...");
    }
    if (bytes <= cap) {
      fail("a line within the cap is reported overlong");
    }
    delivered.emplace_back();
    overlong.push_back(bytes);
  };

  std::size_t offset = 0;
  while (offset < stream.size()) {
    const std::size_t want = std::min(chunk, stream.size() - offset);
    const ssize_t wrote = ::write(pipe.writeFd, stream.data() + offset, want);
    if (wrote > 0) {
      offset += static_cast<std::size_t>(wrote);
    }
    if (!reader.readAvailable(onLine, onOverlong)) {
      fail("read error on a pipe");
    }
    if (reader.ended()) {
      fail("ended while the writer is open");
    }
  }
  pipe.closeWriter();
  if (!reader.readAvailable(onLine, onOverlong) || !reader.ended()) {
    fail("the stream does not end when the writer closes");
  }

  checkReported(stream, cap, delivered, overlong);
  return 0;
}
