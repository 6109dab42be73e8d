// Fuzzes the change line reader (ChangeLine::read) on its own, without an
// agent, so that it runs thousands of lines a second where the change
// stream target runs a few.
//
// The input is one line. Checked: reading never throws; an error names the
// line ("fuzz:1: ..."); a blank or comment line asks for nothing; a change
// carries a path whose segments, written back as a JSON Pointer in a
// delete line, read back the same.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "host/state/ChangeLine.h"
#include "host/state/StateSchema.h"

namespace {

// Bounds the work of one input.
constexpr std::size_t kMaxInput = std::size_t{64} * 1024;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "ChangeLineFuzzer: %s\n", what);
  std::abort();
}

QosSnmpHost::InputLimits limits() {
  QosSnmpHost::InputLimits bounded;
  bounded.maxLineBytes = kMaxInput / 2;
  return bounded;
}

void checkPathRoundTrip(const QosSnmpHost::StateChange& change) {
  std::string pointer;
  for (const std::string& segment : change.path) {
    pointer = QosSnmpHost::pointerAppend(std::move(pointer), segment);
  }
  const nlohmann::json line = {{"op", "delete"}, {"path", pointer}};
  const auto again = QosSnmpHost::ChangeLine::read(line.dump(), {"fuzz", 1}, limits());
  if (!again || again->kind != QosSnmpHost::ChangeLine::Kind::change || again->change.path != change.path) {
    fail("a path written back as a pointer reads back otherwise");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kMaxInput) {
    return -1;
  }
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  const auto read = QosSnmpHost::ChangeLine::read(line, {"fuzz", 1}, limits());
  if (!read) {
    if (read.error().text().rfind("fuzz:1: ", 0) != 0) {
      fail("an error does not name its line");
    }
    return 0;
  }
  const auto first = line.find_first_not_of(" \t\r\n");
  const bool nothing = first == std::string_view::npos || line[first] == '#';
  if (nothing != (read->kind == QosSnmpHost::ChangeLine::Kind::none)) {
    fail("a blank or comment line and a line asking for nothing differ");
  }
  if (read->kind == QosSnmpHost::ChangeLine::Kind::advance &&
      (read->seconds < 0.0 || read->seconds > limits().maxAdvanceSeconds)) {
    fail("an advance outside its bounds was read");
  }
  if (read->kind == QosSnmpHost::ChangeLine::Kind::change) {
    checkPathRoundTrip(read->change);
  }
  return 0;
}
