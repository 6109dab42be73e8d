// LineReader: the change stream as lines of bounded length, read from a
// descriptor without blocking the reactor thread.
//
// Bytes are read as they come and cut at '\n'; a last line without a
// newline is delivered when the stream ends. Each line carries its number
// in the stream, for error messages. A line longer than `maxLineBytes` is
// never held: its bytes are dropped as they arrive up to its newline, and
// it is reported to onOverlong with its number and length instead of being
// delivered. Every byte is looked at once, so reading is linear in the
// stream whatever its lines' lengths.
//
//   LineReader reader(fd, limits.maxLineBytes);
//   reader.readAvailable([&](std::string_view line, std::size_t number) { ... },
//                        [&](std::size_t number, std::size_t bytes) { ... });
//   if (reader.ended()) { ... }
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/state/InputLimits.h"

namespace QosSnmpHost {

class LineReader {
 public:
  using OnLine = std::function<void(std::string_view line, std::size_t number)>;
  using OnOverlong = std::function<void(std::size_t number, std::size_t bytes)>;

  explicit LineReader(int fd, std::size_t maxLineBytes = InputLimits{}.maxLineBytes)
      : fd_(fd), maxLineBytes_(maxLineBytes) {}

  // Reads what the descriptor has now (everything, for a regular file), or
  // at most about `maxBytes` of it (the reads stop once that many bytes have
  // come, so that a writer refilling a pipe cannot keep the caller reading),
  // and calls onLine for each complete line, onOverlong for each line over
  // the limit. Returns false on a read error.
  bool readAvailable(const OnLine& onLine, const OnOverlong& onOverlong,
                     std::size_t maxBytes = static_cast<std::size_t>(-1));
  bool ended() const { return ended_; }
  int fd() const { return fd_; }
  std::size_t maxLineBytes() const { return maxLineBytes_; }

 private:
  void take(std::string_view bytes, const OnLine& onLine, const OnOverlong& onOverlong);
  void endLine(const OnLine& onLine, const OnOverlong& onOverlong);

  int fd_;
  std::size_t maxLineBytes_;
  bool ended_ = false;
  std::size_t lineNumber_ = 0;
  // The line read so far; while `skipped_` is non-zero, the line is over
  // the limit and `pending_` is empty.
  std::string pending_;
  std::size_t skipped_ = 0;
};

}  // namespace QosSnmpHost
