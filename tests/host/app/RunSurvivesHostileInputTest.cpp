// A running agent keeps serving through hostile input: `qos-snmp-agent run`
// on the example leaf switch is fed, through its change-stream FIFO, every
// refused line of RefusedInputCases.inc that needs no setup, then a line of
// 5 MiB over the line limit, then one valid counter change as a marker.
// SNMP answers between the lines; each line is reported on standard error
// with its own message; the walk of the QoS subtree afterwards differs from
// the walk before only in the marker's counter and the agent group's count
// of applied and refused lines and time of the last change; SIGTERM ends the run with
// status 0. Only the program's command line, FIFO, SNMP and standard error
// are used, so the test holds whatever follows the stream inside.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "host/app/RefusedInputSupport.h"
#include "host/snmp/SnmpToolTestSupport.h"
#include "kel/ActivityManager.h"
#include "kel/System.h"

namespace {

using QosSnmpHostTest::ChildProcess;
using QosSnmpHostTest::RefusedInputCase;
using QosSnmpHostTest::ScratchDir;
using QosSnmpHostTest::ToolRun;

const std::string kExample = QOS_EXAMPLES_DIR "/leaf-switch.json";
const std::string kQosSubtree = "1.3.6.1.4.1.32473.1";

// The marker: policy-in's class-video packets, set to a value the example
// does not hold.
const std::string kMarkerLine =
    QosSnmpHostTest::set(QosSnmpHostTest::kPolicyIn + "/cmapCounters/class-video/packets", "987654321");
const std::string kMarkerValue = "Counter64: 987654321";

// An index part of a DisplayString: its length, then its bytes.
std::string stringIndex(std::string_view text) {
  std::string out = std::to_string(text.size());
  for (const char c : text) {
    out.push_back('.');
    out.append(std::to_string(static_cast<unsigned char>(c)));
  }
  return out;
}

// qosStatsPackets (qosStatsTable column 5) of (policy-in, mapQos(1),
// class-video, qualifier 0).
const std::string kMarkerOid =
    kQosSubtree + ".1.6.1.5." + stringIndex("policy-in") + ".1." + stringIndex("class-video") + ".0";

constexpr std::size_t kOverlongLineBytes = std::size_t{5} << 20U;
constexpr int kLinesBetweenGets = 4;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class RunSurvivesHostileInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // A write to a FIFO whose reader died must fail, not kill the test.
    std::signal(SIGPIPE, SIG_IGN);
    ASSERT_EQ(::mkfifo(fifo_.c_str(), 0600), 0) << std::strerror(errno);
  }
  void TearDown() override {
    if (fifoFd_ >= 0) {
      ::close(fifoFd_);
    }
  }

  ToolRun snmp(const std::string& tool, const std::vector<std::string>& arguments) {
    std::vector<std::string> argv = {tool, "-v2c", "-c", "public", "-m", "", "-On", "-t", "2", "-r", "1"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return QosSnmpHostTest::runTool(loop_, argv, {"MIBS="}, 20.0);
  }
  ToolRun getMarker() { return snmp("snmpget", {address_, kMarkerOid}); }
  ToolRun walk() { return snmp("snmpwalk", {address_, kQosSubtree}); }

  // Writes all of `bytes` to the FIFO within `seconds`, waiting while the
  // FIFO is full (the agent reads it as it can); false on an error or when
  // time runs out.
  bool writeToFifo(std::string_view bytes, double seconds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!bytes.empty()) {
      const ssize_t n = ::write(fifoFd_, bytes.data(), bytes.size());
      if (n > 0) {
        bytes.remove_prefix(static_cast<std::size_t>(n));
        continue;
      }
      if (n < 0 && errno != EAGAIN && errno != EINTR) {
        ADD_FAILURE() << "write to the FIFO: " << std::strerror(errno);
        return false;
      }
      if (std::chrono::steady_clock::now() > deadline) {
        ADD_FAILURE() << "the FIFO stayed full for " << seconds << " s";
        return false;
      }
      pollfd writable{fifoFd_, POLLOUT, 0};
      ::poll(&writable, 1, 50);
    }
    return true;
  }
  bool writeLine(const std::string& line) { return writeToFifo(line + '\n', 10.0); }

  // The message the program prints for line `number` of the FIFO, from the
  // table's message for line 1 of "changes.jsonl".
  std::string reported(const std::string& expected, std::size_t number) const {
    const std::string tablePrefix = "changes.jsonl:1:";
    EXPECT_EQ(expected.substr(0, tablePrefix.size()), tablePrefix);
    return fifo_ + ":" + std::to_string(number) + ":" + expected.substr(tablePrefix.size());
  }

  Kel::ActivityManager loop_{Kel::System::clock()};
  ScratchDir dir_;
  const std::string fifo_ = dir_ / "changes";
  const std::string log_ = dir_ / "agent.err";
  const std::string address_ = "udp:127.0.0.1:" + std::to_string(QosSnmpHostTest::freeUdpPort());
  int fifoFd_ = -1;
};

TEST_F(RunSurvivesHostileInputTest, AnswersThroughEveryRefusedLineAndChangesOnlyTheMarker) {
  ChildProcess agent(
      loop_, {QOS_SNMP_AGENT_PROGRAM, "run", "--state", kExample, "--changes", fifo_, "--listen", address_},
      {}, log_);
  const bool serving = QosSnmpHostTest::turnUntil(
      loop_,
      [&] {
        return !agent.running() ||
               QosSnmpHostTest::runTool(loop_,
                                        {"snmpget", "-v2c", "-c", "public", "-m", "", "-On", "-t", "1", "-r",
                                         "0", address_, kMarkerOid},
                                        {"MIBS="}, 5.0)
                       .status == 0;
      },
      10.0);
  ASSERT_TRUE(serving && agent.running()) << "no SNMP answer within 10 s; agent output:\n" << slurp(log_);

  const ToolRun before = walk();
  ASSERT_EQ(before.status, 0) << before;
  ASSERT_FALSE(before.lines().empty());

  // The agent holds the FIFO open for reading and writing, so a writer
  // opening it now does not wait.
  fifoFd_ = ::open(fifo_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(fifoFd_, 0) << "open " << fifo_ << ": " << std::strerror(errno);

  std::vector<std::string> expectedLines;
  std::size_t number = 0;
  for (const RefusedInputCase& c : QosSnmpHostTest::refusedInputCases()) {
    if (!c.setup.empty()) {
      continue;
    }
    ASSERT_TRUE(writeLine(c.line)) << c.name;
    expectedLines.push_back(reported(c.expected, ++number));
    if (number % kLinesBetweenGets == 0) {
      const ToolRun answer = getMarker();
      ASSERT_EQ(answer.status, 0) << "after " << c.name << ": " << answer << "\nagent output:\n"
                                  << slurp(log_);
      EXPECT_NE(answer.out.find("Counter64: "), std::string::npos) << answer.out;
    }
  }
  ASSERT_GT(number, 0U);

  ASSERT_TRUE(writeLine(std::string(kOverlongLineBytes, 'x')));
  expectedLines.push_back(fifo_ + ":" + std::to_string(++number) +
                          ": line of 5242880 bytes is longer than the limit of 4194304 bytes; skipped");
  const ToolRun afterOverlong = getMarker();
  ASSERT_EQ(afterOverlong.status, 0) << "after the overlong line: " << afterOverlong;

  ASSERT_TRUE(writeLine(kMarkerLine));
  std::string markerAnswer;
  const bool markerSeen = QosSnmpHostTest::turnUntil(
      loop_,
      [&] {
        const ToolRun answer = getMarker();
        markerAnswer = answer.out + answer.err;
        return answer.status == 0 && answer.out.find(kMarkerValue) != std::string::npos;
      },
      10.0);
  ASSERT_TRUE(markerSeen) << "the marker change did not show within 10 s; last answer: " << markerAnswer
                          << "\nagent output:\n"
                          << slurp(log_);
  EXPECT_TRUE(agent.running());

  // Each line is reported once, with its own message; the order of the
  // reports is left open (an overlong line is reported as it is read).
  // The run logs each report as "<time stamp> <level> <component>: <text>".
  std::vector<std::string> logLines;
  for (const std::string& line : linesOf(slurp(log_))) {
    const std::size_t level = line.find(' ');
    const std::size_t component = level == std::string::npos ? level : line.find(' ', level + 1);
    const std::size_t text = component == std::string::npos ? component : line.find(": ", component + 1);
    logLines.push_back(text == std::string::npos ? line : line.substr(text + 2));
  }
  for (const std::string& expected : expectedLines) {
    EXPECT_EQ(std::count(logLines.begin(), logLines.end(), expected), 1)
        << "not a line of the agent's standard error: " << expected.substr(0, 300);
  }
  EXPECT_EQ(std::count_if(logLines.begin(), logLines.end(),
                          [&](const std::string& line) { return line.starts_with(fifo_ + ":"); }),
            static_cast<std::ptrdiff_t>(expectedLines.size()))
      << "reports about the change stream other than the refused lines'";

  const ToolRun after = walk();
  ASSERT_EQ(after.status, 0) << after;
  const std::vector<std::string> beforeLines = before.lines();
  const std::vector<std::string> afterLines = after.lines();
  ASSERT_EQ(afterLines.size(), beforeLines.size());
  const std::string markerCell = "." + kMarkerOid + " = ";
  // The agent group counts what the stream did: one change applied (the
  // marker), every other line refused; the time of the last change moves.
  const std::string lastChangeCell = ".1.3.6.1.4.1.32473.1.1.11.2.0 = ";
  const std::string appliedCell = ".1.3.6.1.4.1.32473.1.1.11.3.0 = ";
  const std::string refusedCell = ".1.3.6.1.4.1.32473.1.1.11.4.0 = ";
  std::size_t markerCells = 0;
  std::size_t agentCells = 0;
  for (std::size_t i = 0; i < beforeLines.size(); ++i) {
    if (beforeLines[i].starts_with(markerCell)) {
      ++markerCells;
      EXPECT_EQ(afterLines[i], markerCell + kMarkerValue);
      EXPECT_NE(beforeLines[i], afterLines[i]);
    } else if (beforeLines[i].starts_with(lastChangeCell)) {
      ++agentCells;
      EXPECT_NE(afterLines[i], beforeLines[i]);
    } else if (beforeLines[i].starts_with(appliedCell)) {
      ++agentCells;
      EXPECT_EQ(afterLines[i], appliedCell + "Counter32: 1");
    } else if (beforeLines[i].starts_with(refusedCell)) {
      ++agentCells;
      EXPECT_EQ(afterLines[i], refusedCell + "Counter32: " + std::to_string(expectedLines.size()));
    } else {
      EXPECT_EQ(afterLines[i], beforeLines[i]);
    }
  }
  EXPECT_EQ(markerCells, 1U);
  EXPECT_EQ(agentCells, 3U);

  agent.signal(SIGTERM);
  ASSERT_TRUE(QosSnmpHostTest::turnUntil(
      loop_, [&] { return !agent.running(); }, 10.0))
      << "still running 10 s after SIGTERM";
  EXPECT_EQ(agent.exitStatus(), 0) << slurp(log_);
}

}  // namespace
