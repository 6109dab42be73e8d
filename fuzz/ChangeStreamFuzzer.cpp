// Fuzzes the change stream applied to a live agent: an AgentHost over the
// example leaf switch, built with the agent's own factory, takes every line
// of the input through AgentHost::apply (the loader, the guard, then the
// entities and every state machine that watches them), on a virtual clock
// that "advance" lines move; the agent is released at the end.
//
// Checked: a refused line says why and leaves the MIB model exactly as it
// was (its full text dump); an accepted one leaves the agent serving a
// model whose dump can be taken.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "QosSnmp/core/RootSm.h"
#include "host/app/AgentHost.h"
#include "host/dump/MibDump.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"

namespace {

[[noreturn]] void fail(const char* what, const std::string& detail) {
  std::fprintf(stderr, "ChangeStreamFuzzer: %s: %s\n", what, detail.c_str());
  std::abort();
}

const std::string& exampleDocument() {
  static const std::string kText = [] {
    std::ifstream in(QOS_EXAMPLES_DIR "/leaf-switch.json");
    std::stringstream buffer;
    buffer << in.rdbuf();
    if (!in) {
      fail("cannot read", QOS_EXAMPLES_DIR "/leaf-switch.json");
    }
    return buffer.str();
  }();
  return kText;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using QosSnmpHost::AgentHost;
  using QosSnmpHost::Change;
  using QosSnmpHost::SwitchState;

  Kel::VirtualTime time;
  auto loaded = SwitchState::loadText(exampleDocument(), "leaf-switch.json");
  if (!loaded) {
    fail("example refused", loaded.error().text());
  }
  AgentHost host(std::move(loaded.value()), true);
  if (auto refused = host.build(QosSnmp::rootSmFactory)) {
    fail("example refused by the guard", refused->text());
  }
  const QosSnmpHost::MibDump dump(host.pathOf());
  std::string mibBefore = dump.text(host.mib());

  const std::string_view input(reinterpret_cast<const char*>(data), size);
  int number = 0;
  for (std::size_t start = 0; start <= input.size();) {
    std::size_t end = input.find('\n', start);
    if (end == std::string_view::npos) {
      end = input.size();
    }
    const std::string_view line = input.substr(start, end - start);
    start = end + 1;

    const auto change = host.apply(line, {"fuzz.jsonl", ++number});
    if (!change) {
      if (change.error().text().empty()) {
        fail("refusal without a message", std::string(line));
      }
      if (dump.text(host.mib()) != mibBefore) {
        fail("a refused line changed the MIB", change.error().text());
      }
      continue;
    }
    if (change->op == Change::Op::advance) {
      time.advance(change->seconds);
    }
    mibBefore = dump.text(host.mib());
  }
  host.release();
  return 0;
}
