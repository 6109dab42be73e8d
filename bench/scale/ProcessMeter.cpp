#include "bench/scale/ProcessMeter.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>

namespace QosSnmpBench {

namespace {

long statusFieldKb(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  const std::size_t length = std::strlen(field);
  while (std::getline(status, line)) {
    if (line.compare(0, length, field) == 0 && line.size() > length && line[length] == ':') {
      return std::strtol(line.c_str() + length + 1, nullptr, 10);
    }
  }
  return 0;
}

}  // namespace

ProcessMeter::Run ProcessMeter::run(const std::vector<std::string>& argv) {
  Run result;
  char path[] = "/tmp/qos-process-meter-XXXXXX";
  const int outFd = ::mkstemp(path);
  if (outFd < 0) {
    return result;
  }
  ::unlink(path);
  std::vector<char*> args;
  args.reserve(argv.size() + 1);
  for (const std::string& arg : argv) {
    args.push_back(const_cast<char*>(arg.c_str()));
  }
  args.push_back(nullptr);
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::dup2(outFd, STDOUT_FILENO);
    ::execv(args[0], args.data());
    std::perror(args[0]);
    ::_exit(127);
  }
  int status = 0;
  struct rusage usage {};
  if (pid < 0 || ::wait4(pid, &status, 0, &usage) != pid) {
    ::close(outFd);
    return result;
  }
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                      static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
  result.peakRssKb = usage.ru_maxrss;
  ::lseek(outFd, 0, SEEK_SET);
  char buffer[4096];
  ssize_t got = 0;
  while ((got = ::read(outFd, buffer, sizeof buffer)) > 0) {
    result.out.append(buffer, static_cast<std::size_t>(got));
  }
  ::close(outFd);
  return result;
}

long ProcessMeter::residentKb() { return statusFieldKb("VmRSS"); }

long ProcessMeter::peakResidentKb() { return statusFieldKb("VmHWM"); }

double ProcessMeter::cpuSeconds() {
  struct timespec now {};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace QosSnmpBench
