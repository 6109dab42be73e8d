// qos-switch-gen: writes a generated switch's state document and churn
// change streams (see bench/gen/SwitchGenerator.h and ChurnStream.h).
//
//   qos-switch-gen --preset large --state large.json --changes mix=mix.jsonl --count 10000
//   qos-switch-gen --preset small --rows        # rows per table the agent will make
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "bench/gen/ChurnStream.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"

int main(int argc, char** argv) {
  using namespace QosSnmpBench;

  CLI::App app{
      "qos-switch-gen: a generated switch's state document and change streams, deterministic from a seed"};
  std::string preset = "small";
  std::string statePath;
  std::vector<std::string> changes;
  std::uint64_t count = 1000;
  std::uint64_t seed = 1;
  bool rows = false;
  app.add_option("--preset", preset, "small (~1k rows), large (~100k) or huge (~1M)")
      ->check(CLI::IsMember(SwitchParams::presetNames()));
  app.add_option("--state", statePath, "Write the state document (JSON) to FILE");
  app.add_option(
      "--changes", changes,
      "KIND=FILE: write COUNT change lines of KIND (counters, match-rule, class-added, service-policy, "
      "if-index, poll-period, mix) to FILE; repeatable");
  app.add_option("--count", count, "Change lines per stream (default 1000)");
  app.add_option("--seed", seed, "Seed of the counter values and of the streams' choices (default 1)");
  app.add_flag("--rows", rows, "Print the rows per MIB table an agent over the document holds");

  SwitchParams params = *SwitchParams::preset("small");
  // Every parameter may be overridden after the preset.
  struct Override {
    const char* name;
    std::uint32_t SwitchParams::*field;
    const char* help;
  };
  const std::vector<Override> overrides = {
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
  std::vector<std::pair<const Override*, std::uint32_t>> given(overrides.size());
  std::vector<CLI::Option*> options;
  for (std::size_t i = 0; i < overrides.size(); ++i) {
    given[i].first = &overrides[i];
    options.push_back(app.add_option(overrides[i].name, given[i].second, overrides[i].help));
  }
  CLI11_PARSE(app, argc, argv);

  params = *SwitchParams::preset(preset);
  for (std::size_t i = 0; i < overrides.size(); ++i) {
    if (options[i]->count() > 0) {
      params.*(overrides[i].field) = given[i].second;
    }
  }
  params.seed = seed;
  if (std::optional<std::string> why = params.invalid()) {
    std::cerr << "qos-switch-gen: " << *why << '\n';
    return 2;
  }
  const SwitchLayout layout(params);
  const SwitchGenerator generator(layout);

  if (!statePath.empty()) {
    std::ofstream out(statePath, std::ios::binary);
    generator.writeState(out);
    if (!out.flush()) {
      std::cerr << "qos-switch-gen: " << statePath << ": cannot be written\n";
      return 1;
    }
  }
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
  if (rows) {
    std::size_t total = 0;
    for (const auto& [table, count] : generator.expectedRows()) {
      std::cout << table << ' ' << count << '\n';
      total += count;
    }
    std::cout << "total " << total << '\n';
  }
  return 0;
}
