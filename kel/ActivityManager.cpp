#include "kel/ActivityManager.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <vector>

namespace Kel {

namespace {

bool isReady(const pollfd& p) { return (p.revents & (POLLIN | POLLHUP | POLLERR)) != 0; }

// Tells each hook of `hooks` still in `registered` which of its descriptors
// (polled[begin, hookEnds[h]) for hook h) are ready; returns how many were.
std::size_t serveHooks(const std::vector<ActivityManager::TurnHook*>& hooks,
                       const std::vector<ActivityManager::TurnHook*>& registered,
                       const std::vector<std::size_t>& hookEnds, const std::vector<pollfd>& polled,
                       std::size_t begin, bool anyReady) {
  std::size_t served = 0;
  std::vector<int> fds;
  for (std::size_t h = 0; h < hooks.size(); begin = hookEnds[h], ++h) {
    // An earlier callback may have removed this hook.
    if (std::find(registered.begin(), registered.end(), hooks[h]) == registered.end()) {
      continue;
    }
    fds.clear();
    for (std::size_t i = begin; anyReady && i < hookEnds[h]; ++i) {
      if (isReady(polled[i])) {
        fds.push_back(polled[i].fd);
      }
    }
    hooks[h]->afterWait(fds);
    served += fds.size();
  }
  return served;
}

}  // namespace

ActivityManager::ActivityManager(Ptr<Clock> clock) : clock_(std::move(clock)) {}

void ActivityManager::fdReadableIs(int fd, std::function<void()> onReadable) {
  readers_.insert_or_assign(fd, std::move(onReadable));
}

void ActivityManager::fdDel(int fd) { readers_.erase(fd); }

void ActivityManager::turnHookIs(TurnHook* hook) {
  if (std::find(hooks_.begin(), hooks_.end(), hook) == hooks_.end()) {
    hooks_.push_back(hook);
  }
}

void ActivityManager::turnHookDel(TurnHook* hook) { std::erase(hooks_, hook); }

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
  const std::size_t readerCount = polled.size();
  // Each hook's descriptors follow the readers', in hook order; hookEnds
  // marks where each hook's run ends.
  const std::vector<TurnHook*> hooks = hooks_;
  std::vector<std::size_t> hookEnds;
  hookEnds.reserve(hooks.size());
  std::vector<int> fds;
  for (TurnHook* hook : hooks) {
    fds.clear();
    wait = std::min(wait, std::max(0.0, hook->beforeWait(fds)));
    for (const int fd : fds) {
      polled.push_back({fd, POLLIN, 0});
    }
    hookEnds.push_back(polled.size());
  }
  const int timeoutMs = static_cast<int>(std::ceil(std::min(wait, 3600.0) * 1000.0));
  const int ready = ::poll(polled.data(), polled.size(), timeoutMs);
  std::size_t served = 0;
  for (std::size_t i = 0; ready > 0 && i < readerCount; ++i) {
    if (!isReady(polled[i])) {
      continue;
    }
    // The callback may remove itself or others: look it up again.
    const auto it = readers_.find(polled[i].fd);
    if (it != readers_.end()) {
      const std::function<void()> reader = it->second;
      reader();
      ++served;
    }
  }
  served += serveHooks(hooks, hooks_, hookEnds, polled, readerCount, ready > 0);
  clock_->runDue();
  return served;
}

bool ActivityManager::hookReadable() {
  std::vector<pollfd> polled;
  std::vector<int> fds;
  for (TurnHook* hook : hooks_) {
    fds.clear();
    hook->beforeWait(fds);
    for (const int fd : fds) {
      polled.push_back({fd, POLLIN, 0});
    }
  }
  if (polled.empty() || ::poll(polled.data(), polled.size(), 0) <= 0) {
    return false;
  }
  return std::any_of(polled.begin(), polled.end(), isReady);
}

void ActivityManager::run() {
  stopped_ = false;
  while (!stopped_) {
    runOnce(1.0);
  }
}

}  // namespace Kel
