#include "host/app/SignalStopper.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace QosSnmpHost {

namespace {

// The signals the loop takes over: SIGINT and SIGTERM stop, SIGHUP re-reads.
constexpr std::array kStopSignals = {SIGINT, SIGTERM, SIGHUP};

int writeFd = -1;

void onSignal(int signal) {
  const int saved = errno;
  const auto byte = static_cast<unsigned char>(signal);
  [[maybe_unused]] const ssize_t written = ::write(writeFd, &byte, 1);
  errno = saved;
}

}  // namespace

SignalStopper::SignalStopper(Kel::ActivityManager& loop, std::function<void(int)> onSignalRead)
    : loop_(loop) {
  int fds[2];
  if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  readFd_ = fds[0];
  writeFd = fds[1];
  struct sigaction action {};
  action.sa_handler = onSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (const int signal : kStopSignals) {
    ::sigaction(signal, &action, nullptr);
  }
  loop_.fdReadableIs(readFd_, [this, onSignalRead = std::move(onSignalRead)] {
    unsigned char byte = 0;
    while (::read(readFd_, &byte, 1) == 1) {
      onSignalRead(byte);
    }
  });
}

SignalStopper::~SignalStopper() {
  for (const int signal : kStopSignals) {
    ::signal(signal, SIG_DFL);
  }
  loop_.fdDel(readFd_);
  ::close(readFd_);
  ::close(writeFd);
  writeFd = -1;
}

}  // namespace QosSnmpHost
