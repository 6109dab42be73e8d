// qos-switch-gen: writes a generated switch's state document and churn
// change streams (see bench/gen/SwitchGenerator.h and ChurnStream.h).
//
//   qos-switch-gen --preset large --state large.json --changes mix=mix.jsonl --count 10000
//   qos-switch-gen --preset small --rows        # rows per table the agent will make
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "bench/GuardedMain.h"
#include "bench/gen/ChurnStream.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"

namespace {

using QosSnmpBench::ChurnStream;
using QosSnmpBench::SwitchGenerator;
using QosSnmpBench::SwitchLayout;
using QosSnmpBench::SwitchParams;

// A parameter the command line may set after the preset.
struct Override {
  const char* name;
  std::uint32_t SwitchParams::*field;
  const char* help;
};

const std::vector<Override>& overrides() {
  static const std::vector<Override> kOverrides = {
      {"--ethernet-ports", &SwitchParams::ethernetPorts, "Ethernet ports"},
      {"--sub-interfaces", &SwitchParams::subInterfaces, "sub-interfaces"},
      {"--port-channels", &SwitchParams::portChannels, "port channels"},
      {"--no-ifindex-every", &SwitchParams::noIfIndexEvery,
       "every Nth Ethernet port has no ifIndex (0: none)"},
      {"--class-maps", &SwitchParams::classMaps, "QoS class maps"},
      {"--match-rules", &SwitchParams::matchRules, "match rules per class map"},
      {"--policy-maps", &SwitchParams::policyMaps, "QoS policy maps (even)"},
      {"--classes", &SwitchParams::classesPerPolicyMap, "classes per policy map"},
      {"--actions", &SwitchParams::actionsPerClass, "actions per class"},
      {"--policed-interfaces", &SwitchParams::policedInterfaces,
       "interfaces with policer counters per class"},
      {"--copp-static", &SwitchParams::coppStaticClasses, "static control-plane classes"},
      {"--copp-dynamic", &SwitchParams::coppDynamicClasses, "configured control-plane classes"},
      {"--slices", &SwitchParams::slices, "slices"},
      {"--chips", &SwitchParams::chipsPerSlice, "ECN chips per slice"},
      {"--ecn-queues", &SwitchParams::ecnQueues, "ECN queues per Ethernet port"},
  };
  return kOverrides;
}

// Writes `count` change lines of each KIND=FILE of `changes`. Returns the
// exit status: 0, 1 when a file cannot be written, 2 for a malformed
// KIND=FILE.
int writeChanges(const SwitchLayout& layout, const std::vector<std::string>& changes, std::uint64_t count,
                 std::uint64_t seed) {
  for (const std::string& change : changes) {
    const std::size_t equals = change.find('=');
    const std::optional<ChurnStream::Kind> kind =
        equals == std::string::npos ? std::nullopt : ChurnStream::kindOf(change.substr(0, equals));
    if (!kind) {
      std::cerr << "qos-switch-gen: --changes " << change << ": expected KIND=FILE with a known KIND\n";
      return 2;
    }
    const std::string path = change.substr(equals + 1);
    std::ofstream out(path, std::ios::binary);
    ChurnStream stream(layout, *kind, seed);
    for (std::uint64_t line = 0; line < count; ++line) {
      out << stream.next() << '\n';
    }
    if (!out.flush()) {
      std::cerr << "qos-switch-gen: " << path << ": cannot be written\n";
      return 1;
    }
  }
  return 0;
}

void printRows(const SwitchGenerator& generator) {
  std::size_t total = 0;
  for (const auto& [table, count] : generator.expectedRows()) {
    std::cout << table << ' ' << count << '\n';
    total += count;
  }
  std::cout << "total " << total << '\n';
}

// The command line's values.
struct Options {
  std::string preset = "small";
  std::string statePath;
  std::vector<std::string> changes;
  std::uint64_t count = 1000;
  std::uint64_t seed = 1;
  bool rows = false;
  // One value and one option per entry of overrides(), in its order.
  std::vector<std::uint32_t> given = std::vector<std::uint32_t>(overrides().size());
  std::vector<CLI::Option*> overriding;
};

void addOptions(CLI::App& app, Options& options) {
  app.add_option("--preset", options.preset, "small (~1k rows), large (~100k) or huge (~1M)")
      ->check(CLI::IsMember(SwitchParams::presetNames()));
  app.add_option("--state", options.statePath, "Write the state document (JSON) to FILE");
  app.add_option(
      "--changes", options.changes,
      "KIND=FILE: write COUNT change lines of KIND (counters, match-rule, class-added, service-policy, "
      "if-index, poll-period, mix) to FILE; repeatable");
  app.add_option("--count", options.count, "Change lines per stream (default 1000)");
  app.add_option("--seed", options.seed,
                 "Seed of the counter values and of the streams' choices (default 1)");
  app.add_flag("--rows", options.rows, "Print the rows per MIB table an agent over the document holds");
  // Every parameter may be overridden after the preset.
  options.overriding.reserve(overrides().size());
  for (std::size_t i = 0; i < overrides().size(); ++i) {
    options.overriding.push_back(app.add_option(overrides()[i].name, options.given[i], overrides()[i].help));
  }
}

// The preset's parameters with the overrides given and the seed; nothing,
// after saying why, when they cannot make a valid switch.
std::optional<SwitchParams> paramsOf(const Options& options) {
  std::optional<SwitchParams> params = SwitchParams::preset(options.preset);
  if (!params) {
    std::cerr << "qos-switch-gen: no preset " << options.preset << '\n';
    return std::nullopt;
  }
  for (std::size_t i = 0; i < overrides().size(); ++i) {
    if (options.overriding[i]->count() > 0) {
      (*params).*(overrides()[i].field) = options.given[i];
    }
  }
  params->seed = options.seed;
  if (std::optional<std::string> why = params->invalid()) {
    std::cerr << "qos-switch-gen: " << *why << '\n';
    return std::nullopt;
  }
  return params;
}

// Writes what the options ask for; returns the exit status.
int writeOutputs(const Options& options, const SwitchParams& params) {
  const SwitchLayout layout(params);
  const SwitchGenerator generator(layout);
  if (!options.statePath.empty()) {
    std::ofstream out(options.statePath, std::ios::binary);
    generator.writeState(out);
    if (!out.flush()) {
      std::cerr << "qos-switch-gen: " << options.statePath << ": cannot be written\n";
      return 1;
    }
  }
  if (const int status = writeChanges(layout, options.changes, options.count, options.seed); status != 0) {
    return status;
  }
  if (options.rows) {
    printRows(generator);
  }
  return 0;
}

int runProgram(int argc, char** argv) {
  CLI::App app{
      "qos-switch-gen: a generated switch's state document and change streams, deterministic from a seed"};
  Options options;
  addOptions(app, options);
  CLI11_PARSE(app, argc, argv);
  const std::optional<SwitchParams> params = paramsOf(options);
  if (!params) {
    return 2;
  }
  return writeOutputs(options, *params);
}

}  // namespace

int main(int argc, char** argv) { return Bench::guardedMain("qos-switch-gen", runProgram, argc, argv); }
