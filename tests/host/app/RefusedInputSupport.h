// The table of refused change lines (RefusedInputCases.inc) and the helpers
// its entries are written with, shared by the tests that feed those lines to
// the agent: in-process, through check and dump, and through a running
// agent's change stream.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace QosSnmpHostTest {

inline const std::string kSlicePmap = "/sliceHwStatus/FixedSystem/pmapTypeHwStatus";
inline const std::string kCoppPmap = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
inline const std::string kPolicyIn = "/qosStatus/pmapType/mapQos/pmap/policy-in";

struct RefusedInputCase {
  std::string name;
  // Accepted lines applied first, to reach the state the case needs.
  std::vector<std::string> setup;
  std::string line;
  // The error, as printed for a change file named "changes.jsonl" whose
  // setup lines come first.
  std::string expected;
};

// Names the case in test output.
// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest finds a value printer by the name PrintTo.
inline void PrintTo(const RefusedInputCase& c, std::ostream* out) { *out << c.name; }

inline std::string set(const std::string& path, const std::string& value) {
  return R"({"op": "set", "path": ")" + path + R"(", "value": )" + value + "}";
}
inline std::string del(const std::string& path) { return R"({"op": "delete", "path": ")" + path + R"("})"; }

inline std::string repeated(const std::string& text, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) {
    out += text;
  }
  return out;
}
inline std::string quoted(const std::string& text) {
  std::string out(1, '"');
  out.append(text);
  out.push_back('"');
  return out;
}
// `line` followed by a NUL byte.
inline std::string withNul(const std::string& line) {
  std::string out = line;
  out.push_back('\0');
  return out;
}
// A change line whose value is `depth` objects, one inside the other.
inline std::string deepObjects(int depth) {
  return set("/hwStatus/coppSupported", repeated(R"({"a": )", depth) + "1" + std::string(depth, '}'));
}

// Every case of the table, in its order.
inline std::vector<RefusedInputCase> refusedInputCases() {
  return {
#include "RefusedInputCases.inc"
  };
}

}  // namespace QosSnmpHostTest
