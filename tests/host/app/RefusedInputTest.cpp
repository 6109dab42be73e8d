// Malformed and invariant-breaking input against the example leaf switch:
// each case is refused with its exact message, and neither the state nor
// the MIB model changes. The same table runs through the agent in-process
// (AgentHost) and through the qos-snmp-agent program (check and dump exit
// with status 2 and print the message).
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/app/AgentHost.h"
#include "host/dump/MibDump.h"
#include "kel/System.h"

namespace {

using QosSnmpHost::AgentHost;
using QosSnmpHost::MibDump;
using QosSnmpHost::SwitchState;

const std::string kExample = QOS_EXAMPLES_DIR "/leaf-switch.json";
const std::string kSlicePmap = "/sliceHwStatus/FixedSystem/pmapTypeHwStatus";
const std::string kCoppPmap = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
const std::string kPolicyIn = "/qosStatus/pmapType/mapQos/pmap/policy-in";

struct Case {
  std::string name;
  // Accepted lines applied first, to reach the state the case needs.
  std::vector<std::string> setup;
  std::string line;
  // The error, as printed for a change file named "changes.jsonl" whose
  // setup lines come first.
  std::string expected;
};

// Names the case in test output.
void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

std::string set(const std::string& path, const std::string& value) {
  return R"({"op": "set", "path": ")" + path + R"(", "value": )" + value + "}";
}
std::string del(const std::string& path) { return R"({"op": "delete", "path": ")" + path + R"("})"; }

std::string repeated(const std::string& text, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) {
    out += text;
  }
  return out;
}
std::string quoted(const std::string& text) {
  std::string out(1, '"');
  out.append(text);
  out.push_back('"');
  return out;
}
// `line` followed by a NUL byte.
std::string withNul(const std::string& line) {
  std::string out = line;
  out.push_back('\0');
  return out;
}
// A change line whose value is `depth` objects, one inside the other.
std::string deepObjects(int depth) {
  return set("/hwStatus/coppSupported", repeated(R"({"a": )", depth) + "1" + std::string(depth, '}'));
}

std::vector<Case> cases() {
  return {
#include "RefusedInputCases.inc"
  };
}

class RefusedInputTest : public ::testing::TestWithParam<Case> {};

TEST_P(RefusedInputTest, RefusedWithItsMessageLeavingStateAndMibUnchanged) {
  const Case& c = GetParam();
  Kel::VirtualTime time;
  auto loaded = SwitchState::loadFile(kExample);
  ASSERT_TRUE(loaded) << loaded.error().text();
  AgentHost host(std::move(loaded.value()), true);
  ASSERT_FALSE(host.build(QosSnmp::rootSmFactory));
  int number = 0;
  for (const std::string& line : c.setup) {
    const auto applied = host.apply(line, {"changes.jsonl", ++number});
    ASSERT_TRUE(applied) << applied.error().text();
  }
  const MibDump dump(host.pathOf());
  const std::string mibBefore = dump.text(host.mib());
  const nlohmann::json stateBefore = host.state().document();

  const auto refused = host.apply(c.line, {"changes.jsonl", ++number});

  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().text(), c.expected);
  EXPECT_EQ(dump.text(host.mib()), mibBefore);
  EXPECT_EQ(host.state().document(), stateBefore);
}

// Runs the program in `dir`; returns its exit status, standard output and
// standard error.
struct ProgramRun {
  int status = -1;
  std::string out;
  std::string err;
};

std::string slurp(const std::filesystem::path& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

ProgramRun runProgram(const std::filesystem::path& dir, const std::string& arguments) {
  const std::string command =
      "cd '" + dir.string() + "' && '" QOS_SNMP_AGENT_PROGRAM "' " + arguments + " >out.txt 2>err.txt";
  const int raw = std::system(command.c_str());
  ProgramRun run;
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.out = slurp(dir / "out.txt");
  run.err = slurp(dir / "err.txt");
  return run;
}

TEST_P(RefusedInputTest, CheckAndDumpExitWithStatus2AndTheMessage) {
  const Case& c = GetParam();
  const std::filesystem::path dir = std::filesystem::path(::testing::TempDir()) / ("refused-" + c.name);
  std::filesystem::create_directories(dir);
  {
    std::ofstream changes(dir / "changes.jsonl");
    for (const std::string& line : c.setup) {
      changes << line << '\n';
    }
    changes << c.line << '\n';
  }
  for (const char* command : {"check", "dump"}) {
    const ProgramRun run =
        runProgram(dir, std::string(command) + " --state '" + kExample + "' --changes changes.jsonl");
    EXPECT_EQ(run.status, 2) << command;
    EXPECT_EQ(run.err, c.expected + "\n") << command;
    EXPECT_EQ(run.out, "") << command;
  }
  std::filesystem::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Cases, RefusedInputTest, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& info) { return info.param.name; });

}  // namespace
