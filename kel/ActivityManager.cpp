#include "kel/ActivityManager.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <vector>

namespace Kel {

ActivityManager::ActivityManager(Ptr<Clock> clock) : clock_(std::move(clock)) {}

void ActivityManager::fdReadableIs(int fd, std::function<void()> onReadable) {
  readers_.insert_or_assign(fd, std::move(onReadable));
}

void ActivityManager::fdDel(int fd) { readers_.erase(fd); }

std::size_t ActivityManager::runOnce(double maxWaitSeconds) {
  double wait = std::max(0.0, maxWaitSeconds);
  if (!clock_->isVirtual()) {
    wait = std::min(wait, std::max(0.0, clock_->nextTimeMin() - clock_->now()));
  }
  std::vector<pollfd> polled;
  polled.reserve(readers_.size());
  for (const auto& [fd, reader] : readers_) {
    polled.push_back({fd, POLLIN, 0});
  }
  const int timeoutMs = static_cast<int>(std::ceil(std::min(wait, 3600.0) * 1000.0));
  const int ready = ::poll(polled.data(), polled.size(), timeoutMs);
  std::size_t served = 0;
  if (ready > 0) {
    for (const pollfd& p : polled) {
      if ((p.revents & (POLLIN | POLLHUP | POLLERR)) == 0) {
        continue;
      }
      // The callback may remove itself or others: look it up again.
      const auto it = readers_.find(p.fd);
      if (it != readers_.end()) {
        const std::function<void()> reader = it->second;
        reader();
        ++served;
      }
    }
  }
  clock_->runDue();
  return served;
}

void ActivityManager::run() {
  stopped_ = false;
  while (!stopped_) {
    runOnce(1.0);
  }
}

}  // namespace Kel
