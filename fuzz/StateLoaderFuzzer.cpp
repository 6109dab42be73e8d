// Fuzzes the state document loader: SwitchState::loadText over any bytes.
//
// A refused document must say why. An accepted one must load again from its
// own canonical form to the same canonical form, and an agent is built over
// it (the guard's whole-document check, then every machine's start-up) and
// released, so that input the loader lets through is also input the agent
// survives.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "QosSnmp/core/RootSm.h"
#include "host/app/AgentHost.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"

namespace {

[[noreturn]] void fail(const char* what, const std::string& detail) {
  std::fprintf(stderr, "StateLoaderFuzzer: %s: %s\n", what, detail.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using QosSnmpHost::SwitchState;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Kel::VirtualTime time;
  auto loaded = SwitchState::loadText(text, "fuzz.json");
  if (!loaded) {
    if (loaded.error().text().empty()) {
      fail("refusal without a message", std::string(text));
    }
    return 0;
  }
  const std::string canonical = loaded.value().document().dump();
  auto reloaded = SwitchState::loadText(canonical, "canonical.json");
  if (!reloaded) {
    fail("canonical form refused", reloaded.error().text());
  }
  if (reloaded.value().document().dump() != canonical) {
    fail("canonical form not stable", canonical);
  }

  QosSnmpHost::AgentHost host(std::move(loaded.value()), true);
  if (!host.build(QosSnmp::rootSmFactory)) {
    host.release();
  }
  return 0;
}
