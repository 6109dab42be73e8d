// LineReader: the change stream as lines, read from a descriptor without
// blocking the reactor thread.
//
// Bytes are read as they come and cut at '\n'; a last line without a
// newline is delivered when the stream ends. Each line carries its number
// in the stream, for error messages.
//
//   LineReader reader(fd);
//   reader.readAvailable([&](std::string_view line, std::size_t number) { ... });
//   if (reader.ended()) { ... }
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace QosSnmpHost {

class LineReader {
 public:
  using OnLine = std::function<void(std::string_view line, std::size_t number)>;

  explicit LineReader(int fd) : fd_(fd) {}

  // Reads what the descriptor has now (everything, for a regular file) and
  // calls onLine for each complete line. Returns false on a read error.
  bool readAvailable(const OnLine& onLine);
  bool ended() const { return ended_; }
  int fd() const { return fd_; }

 private:
  int fd_;
  bool ended_ = false;
  std::size_t lineNumber_ = 0;
  std::string pending_;
};

}  // namespace QosSnmpHost
