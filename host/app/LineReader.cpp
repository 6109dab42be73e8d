#include "host/app/LineReader.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace QosSnmpHost {
namespace {

// Memory kept for a line between reads once a long line has gone.
constexpr std::size_t kKeptCapacity = std::size_t{1} << 16U;

}  // namespace

bool LineReader::readAvailable(const OnLine& onLine, const OnOverlong& onOverlong, std::size_t maxBytes) {
  std::array<char, 65536> buffer{};
  for (std::size_t read = 0; !ended_ && read < maxBytes;) {
    const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno == EAGAIN || errno == EWOULDBLOCK;
    }
    if (got == 0) {
      ended_ = true;
      break;
    }
    read += static_cast<std::size_t>(got);
    take(std::string_view(buffer.data(), static_cast<std::size_t>(got)), onLine, onOverlong);
  }
  if (ended_ && (!pending_.empty() || skipped_ != 0)) {
    endLine(onLine, onOverlong);
  }
  return true;
}

void LineReader::take(std::string_view bytes, const OnLine& onLine, const OnOverlong& onOverlong) {
  while (!bytes.empty()) {
    const std::size_t newline = bytes.find('\n');
    const std::string_view part = bytes.substr(0, newline);
    if (skipped_ != 0 || pending_.size() + part.size() > maxLineBytes_) {
      skipped_ += pending_.size() + part.size();
      pending_.clear();
    } else {
      pending_.append(part);
    }
    if (newline == std::string_view::npos) {
      return;
    }
    endLine(onLine, onOverlong);
    bytes.remove_prefix(newline + 1);
  }
}

void LineReader::endLine(const OnLine& onLine, const OnOverlong& onOverlong) {
  ++lineNumber_;
  if (skipped_ != 0) {
    const std::size_t bytes = skipped_;
    skipped_ = 0;
    onOverlong(lineNumber_, bytes);
  } else {
    onLine(pending_, lineNumber_);
  }
  pending_.clear();
  if (pending_.capacity() > kKeptCapacity) {
    pending_.shrink_to_fit();
  }
}

}  // namespace QosSnmpHost
