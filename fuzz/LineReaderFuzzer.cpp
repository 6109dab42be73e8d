// Fuzzes the change stream's line reader: LineReader over a non-blocking
// pipe, fed in chunks whose sizes the input chooses, with a read after each
// chunk and one after the writer closes.
//
// Input layout: the first byte is the chunk size in units of 64 bytes (0
// means "everything at once"); the rest is the stream.
//
// Checked: no delivered line holds a '\n'; lines are numbered 1, 2, 3, ...;
// the stream ends; and, as no line of a fuzz input comes near the reader's
// line length cap, the lines joined with '\n' are the stream itself
// (without the last newline, when it ends with one).
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/app/LineReader.h"

namespace {

// Far below any sane line length cap, so every line of an input this size
// is delivered whole.
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > kMaxInput) {
    return 0;
  }
  const std::size_t chunk = data[0] == 0 ? size : std::size_t{data[0]} * 64;
  const std::string_view stream(reinterpret_cast<const char*>(data) + 1, size - 1);

  Pipe pipe;
  QosSnmpHost::LineReader reader(pipe.readFd);
  std::string joined;
  std::size_t lines = 0;
  const auto onLine = [&](std::string_view line, std::size_t number) {
    if (line.find('\n') != std::string_view::npos) {
      fail("a line holds a newline");
    }
    if (number != ++lines) {
      fail("lines are not numbered 1, 2, 3, ...");
    }
    if (lines > 1) {
      joined += '\n';
    }
    joined.append(line);
  };

  std::size_t offset = 0;
  while (offset < stream.size()) {
    const std::size_t want = std::min(chunk, stream.size() - offset);
    const ssize_t wrote = ::write(pipe.writeFd, stream.data() + offset, want);
    if (wrote > 0) {
      offset += static_cast<std::size_t>(wrote);
    }
    if (!reader.readAvailable(onLine)) {
      fail("read error on a pipe");
    }
    if (reader.ended()) {
      fail("ended while the writer is open");
    }
  }
  pipe.closeWriter();
  if (!reader.readAvailable(onLine) || !reader.ended()) {
    fail("the stream does not end when the writer closes");
  }

  std::string_view expected = stream;
  if (!expected.empty() && expected.back() == '\n') {
    expected.remove_suffix(1);
  }
  if (joined != expected) {
    fail("the lines joined are not the stream");
  }
  return 0;
}
