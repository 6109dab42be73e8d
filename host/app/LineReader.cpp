#include "host/app/LineReader.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace QosSnmpHost {

bool LineReader::readAvailable(const OnLine& onLine) {
  std::array<char, 65536> buffer{};
  while (!ended_) {
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
    pending_.append(buffer.data(), static_cast<std::size_t>(got));
    std::size_t start = 0;
    for (std::size_t end = pending_.find('\n'); end != std::string::npos; end = pending_.find('\n', start)) {
      onLine(std::string_view(pending_).substr(start, end - start), ++lineNumber_);
      start = end + 1;
    }
    pending_.erase(0, start);
  }
  if (ended_ && !pending_.empty()) {
    const std::string last = std::move(pending_);
    pending_.clear();
    onLine(last, ++lineNumber_);
  }
  return true;
}

}  // namespace QosSnmpHost
