// Hostile and invariant-breaking state documents given to the qos-snmp-agent
// program: each is refused with one line naming the file, the line and the
// path of the offending value, and `check` exits with status 2, quickly,
// whatever the document's size or shape.
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace {

struct Document {
  std::string name;
  std::string text;
  // The error, for a document named "s.json".
  std::string expected;
};

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest finds a value printer by the name PrintTo.
void PrintTo(const Document& d, std::ostream* out) { *out << d.name; }

std::string repeated(const std::string& text, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) {
    out += text;
  }
  return out;
}

const std::string kNoCoppPolicy = R"({
  "qosStatus": {
    "pmapType": {
      "mapQos": {"pmap": {}}
    }
  }
}
)";

const std::string kCountedTwice = R"({
  "qosStatus": {
    "pmapType": {
      "mapControlPlane": {"pmap": {"copp-system-policy": {}}},
      "mapQos": {"pmap": {
        "pm1": {"cmapCounters": {"c1": {}}},
        "pm2": {
          "cmapCounters": {
            "c1": {"packets": 5}
          }
        }
      }}
    }
  }
}
)";

const std::string kCopp =
    R"("qosStatus": {"pmapType": {"mapControlPlane": {"pmap": {"copp-system-policy": {}}}}})";

std::vector<Document> documents() {
  return {
      {"Empty", "",
       "s.json:1: invalid JSON: syntax error while parsing value - unexpected end of input; expected '[', "
       "'{', or a literal"},
      {"AnArray", "[]",
       "s.json: (document): expected an object with the roots \"qosConfig\", \"qosStatus\", \"hwStatus\", "
       "\"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", \"intfStatus\", \"hwCounter\" or "
       "\"ecnCounterTable\", got []"},
      {"ArraysNestedAHundredThousandDeep", std::string(100000, '[') + std::string(100000, ']'),
       "s.json:1: invalid JSON: nested deeper than 64 levels"},
      {"ObjectsNestedFiveThousandDeepOverLines", repeated("{\"a\":\n", 5000) + "1" + std::string(5000, '}'),
       "s.json:65: invalid JSON: nested deeper than 64 levels"},
      {"NumberBeyondADouble", "{\n\"mibConfig\": {\n\"counterPollPeriod\": 1e999}}",
       "s.json:3: invalid JSON: number overflow parsing '1e999'"},
      {"NulByte", std::string("{}\n\0", 4), "s.json:2: invalid JSON: a NUL byte at byte 4"},
      {"InvalidUtf8InAKey", "{\"hwStatus\": {\"\xff\": 1}}",
       "s.json:1: invalid JSON: syntax error while parsing object key - invalid string: ill-formed UTF-8 "
       "byte; last read: '\"\\xff'; expected string literal"},
      {"NewlineInAKey", "{\n\"hw\\nStatus\": {}}",
       "s.json:2: /hw\\nStatus: unknown root \"hw\\nStatus\" (expected \"qosConfig\", \"qosStatus\", "
       "\"hwStatus\", \"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", \"intfStatus\", \"hwCounter\" "
       "or \"ecnCounterTable\")"},
      {"KeyOf64KiB", "{" + kCopp + R"(, "hwStatus": {")" + std::string(65536, 'k') + "\": true}}",
       "s.json:1: /hwStatus/" + std::string(246, 'k') + "...: unknown attribute \"" +
           std::string(1024 - 19, 'k') + "..."},
      {"NoControlPlanePolicyMap", kNoCoppPolicy,
       "s.json:3: /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy: refused: no control-plane "
       "policy map /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy (the static control-plane "
       "machine asserts it when the agent starts)"},
      {"ClassCountedUnderTwoPolicyMaps", kCountedTwice,
       "s.json:9: /qosStatus/pmapType/mapQos/pmap/pm2/cmapCounters/c1: refused: counters "
       "/qosStatus/pmapType/mapQos/pmap/pm1/cmapCounters/c1 and "
       "/qosStatus/pmapType/mapQos/pmap/pm2/cmapCounters/c1 count class map \"c1\" under two policy maps "
       "(the policer statistics machine is keyed by the class-map name alone and cannot be re-created with "
       "other arguments)"},
  };
}

class RefusedDocumentTest : public ::testing::TestWithParam<Document> {};

std::string slurp(const std::filesystem::path& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST_P(RefusedDocumentTest, CheckExitsWithStatus2AndOneLineNamingFileLineAndPath) {
  const Document& d = GetParam();
  const std::filesystem::path dir = std::filesystem::path(::testing::TempDir()) / ("refused-doc-" + d.name);
  std::filesystem::create_directories(dir);
  {
    std::ofstream state(dir / "s.json", std::ios::binary);
    state << d.text;
  }
  const std::string command =
      "cd '" + dir.string() + "' && '" QOS_SNMP_AGENT_PROGRAM "' check --state s.json >out.txt 2>err.txt";
  const int raw = std::system(command.c_str());
  EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, 2);
  EXPECT_EQ(slurp(dir / "err.txt"), d.expected + "\n");
  EXPECT_EQ(slurp(dir / "out.txt"), "");
  std::filesystem::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Documents, RefusedDocumentTest, ::testing::ValuesIn(documents()),
                         [](const ::testing::TestParamInfo<Document>& info) { return info.param.name; });

}  // namespace
