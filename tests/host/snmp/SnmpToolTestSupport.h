// What the SNMP front end's tests share: a scratch directory, a free
// loopback UDP port, and child processes (the net-snmp command-line tools,
// a real snmpd) whose output is read by the test's own event loop, so that
// the agent under test keeps answering on the same thread while they run.
#pragma once

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kel/ActivityManager.h"

extern char** environ;

namespace QosSnmpHostTest {

// A fresh directory under $TMPDIR (or /tmp), removed with everything in it.
class ScratchDir {
 public:
  ScratchDir() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern =
        std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/qos-snmp-test.XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
      ADD_FAILURE() << "mkdtemp " << pattern << ": " << std::strerror(errno);
    }
    path_ = pattern;
  }
  ~ScratchDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

// A port on 127.0.0.1 that was free a moment ago for sockets of `type`
// (SOCK_DGRAM, SOCK_STREAM): bound to port 0, read back, released.
inline int freePort(int type) {
  const int fd = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  int port = 0;
  if (fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    port = ntohs(address.sin_port);
  }
  if (fd >= 0) {
    ::close(fd);
  }
  EXPECT_NE(port, 0) << "no free port on 127.0.0.1";
  return port;
}
inline int freeUdpPort() { return freePort(SOCK_DGRAM); }
inline int freeTcpPort() { return freePort(SOCK_STREAM); }

// Turns `loop` until `done()` holds or `seconds` of real time have passed;
// true when done.
inline bool turnUntil(Kel::ActivityManager& loop, const std::function<bool()>& done, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    loop.runOnce(0.05);
  }
  return true;
}

// Turns `loop` for `seconds` of real time.
inline void turnFor(Kel::ActivityManager& loop, double seconds) {
  turnUntil(
      loop, [] { return false; }, seconds);
}

// A child process running a program found in PATH, with this process's
// environment plus `environment` ("NAME=value", replacing a variable of the
// same name). Its standard output and error are read by the loop into out()
// and err(), or go to the file `logPath` when one is given. It inherits no
// other descriptor (none of the agent's sockets). The destructor kills it
// if it still runs.
class ChildProcess {
 public:
  ChildProcess(Kel::ActivityManager& loop, const std::vector<std::string>& argv,
               const std::vector<std::string>& environment, const std::string& logPath = {})
      : loop_(loop), command_(commandOf(argv)) {
    int outPipe[2] = {-1, -1};
    int errPipe[2] = {-1, -1};
    if (logPath.empty() && (::pipe2(outPipe, O_CLOEXEC) != 0 || ::pipe2(errPipe, O_CLOEXEC) != 0)) {
      ADD_FAILURE() << "pipe: " << std::strerror(errno);
      return;
    }
    std::vector<std::string> envTexts = mergedEnvironment(environment);
    std::vector<char*> args = pointersTo(argv);
    std::vector<char*> env = pointersTo(envTexts);
    pid_ = ::fork();
    if (pid_ == 0) {
      if (logPath.empty()) {
        ::dup2(outPipe[1], 1);
        ::dup2(errPipe[1], 2);
      } else {
        const int log = ::open(logPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(log, 1);
        ::dup2(log, 2);
      }
      ::close_range(3, ~0U, 0);
      ::execvpe(args[0], args.data(), env.data());
      ::_exit(127);
    }
    if (pid_ < 0) {
      ADD_FAILURE() << "fork: " << std::strerror(errno);
    }
    if (logPath.empty()) {
      ::close(outPipe[1]);
      ::close(errPipe[1]);
      watch(outPipe[0], out_);
      watch(errPipe[0], err_);
    }
  }
  ~ChildProcess() {
    running();
    if (pid_ > 0 && !exited_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    for (const int fd : fds_) {
      loop_.fdDel(fd);
      ::close(fd);
    }
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // False once the process has exited and its output has been read.
  bool running() {
    if (pid_ > 0 && !exited_) {
      int status = 0;
      if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        exited_ = true;
        exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
    }
    return pid_ > 0 && (!exited_ || !fds_.empty());
  }
  // The exit code, or 128 + the signal that ended it.
  int exitStatus() const { return exitStatus_; }
  void signal(int number) const { ::kill(pid_, number); }
  pid_t pid() const { return pid_; }
  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }
  const std::string& command() const { return command_; }

 private:
  static std::string commandOf(const std::vector<std::string>& argv) {
    std::string text;
    for (const std::string& arg : argv) {
      text += (text.empty() ? "" : " ") + arg;
    }
    return text;
  }
  static std::vector<std::string> mergedEnvironment(const std::vector<std::string>& overrides) {
    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
      const std::string text(*entry);
      variables[text.substr(0, text.find('='))] = text;
    }
    for (const std::string& text : overrides) {
      variables[text.substr(0, text.find('='))] = text;
    }
    std::vector<std::string> texts;
    texts.reserve(variables.size());
    for (const auto& [name, text] : variables) {
      texts.push_back(text);
    }
    return texts;
  }
  static std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
      pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
  }
  void watch(int fd, std::string& sink) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    fds_.push_back(fd);
    loop_.fdReadableIs(fd, [this, fd, &sink] {
      char buffer[65536];
      const ssize_t n = ::read(fd, buffer, sizeof buffer);
      if (n > 0) {
        sink.append(buffer, static_cast<std::size_t>(n));
      } else if (n == 0 || errno != EAGAIN) {
        loop_.fdDel(fd);
        ::close(fd);
        std::erase(fds_, fd);
      }
    });
  }

  Kel::ActivityManager& loop_;
  std::string command_;
  pid_t pid_ = -1;
  bool exited_ = false;
  int exitStatus_ = -1;
  std::vector<int> fds_;
  std::string out_;
  std::string err_;
};

// A finished tool run: exit status (-1: killed after the time limit), what
// it wrote, and the command, for failure messages.
struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
  std::string command;

  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) {
      result.push_back(line);
    }
    return result;
  }
};

inline std::ostream& operator<<(std::ostream& out, const ToolRun& run) {
  return out << "`" << run.command << "` exited " << run.status << "; stderr: " << run.err;
}

// Runs a tool to completion while `loop` turns (the agent answers in the
// meantime); kills it after `seconds`.
inline ToolRun runTool(Kel::ActivityManager& loop, const std::vector<std::string>& argv,
                       const std::vector<std::string>& environment, double seconds = 120.0) {
  ChildProcess child(loop, argv, environment);
  const bool finished = turnUntil(
      loop, [&] { return !child.running(); }, seconds);
  ToolRun run{finished ? child.exitStatus() : -1, child.out(), child.err(), child.command()};
  if (!finished) {
    run.err += "[killed after " + std::to_string(seconds) + " s]";
  }
  return run;
}

}  // namespace QosSnmpHostTest
