// qos-churn-soak: K random valid changes over a generated switch, then the
// soaked agent's MIB against a fresh agent's over the final state (see
// bench/soak/ChurnSoak.h). Exits 0 when every difference is one a stated
// behaviour of the agent requires and teardown leaves nothing alive.
//
//   qos-churn-soak --preset large --changes 1000000
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "bench/GuardedMain.h"
#include "bench/soak/ChurnSoak.h"
#include "host/app/PluginLoader.h"

namespace {

int runProgram(int argc, char** argv) {
  using namespace QosSnmpBench;

  CLI::App app{
      "qos-churn-soak: random valid changes over a generated switch, then the MIB against a fresh agent's"};
  std::string preset = "large";
  std::size_t changes = 1000000;
  std::uint64_t seed = 1;
  std::size_t show = 5;
  app.add_option("--preset", preset, "small, large or huge (default large)")
      ->check(CLI::IsMember(SwitchParams::presetNames()));
  app.add_option("--changes", changes, "Changes to apply (default 1,000,000)");
  app.add_option("--seed", seed, "Seed of the changes (default 1)");
  app.add_option("--show", show, "Rows shown per kind of difference (default 5)");
  CLI11_PARSE(app, argc, argv);

  std::string error;
  QosSnmp::RootSmFactory* factory =
      QosSnmpHost::PluginLoader::load(QosSnmpHost::PluginLoader::defaultPath(), error);
  if (factory == nullptr) {
    std::cerr << "qos-churn-soak: " << error << '\n';
    return 1;
  }
  const std::optional<SwitchParams> params = SwitchParams::preset(preset);
  if (!params) {
    std::cerr << "qos-churn-soak: no preset " << preset << '\n';
    return 2;
  }
  const ChurnSoak soak(*params, changes, seed);
  const ChurnSoak::Result result = soak.run(*factory, &std::cerr);
  if (!result.refusal.empty()) {
    std::cout << "refused after " << result.applied << " changes: " << result.refusal << '\n';
    return 1;
  }
  std::cout << "applied " << result.applied << " changes over " << preset << "; rows: soaked "
            << result.soakedRows << ", fresh " << result.freshRows << '\n';
  const auto print = [show](const std::vector<ChurnSoak::Difference>& differences) {
    std::size_t shown = 0;
    for (const ChurnSoak::Difference& difference : differences) {
      if (shown++ == show) {
        break;
      }
      std::cout << "    " << (difference.soakedOnly ? "soaked only: " : "fresh only:  ") << difference.row
                << '\n';
    }
  };
  for (const auto& [name, differences] : result.explained) {
    std::cout << "  explained, " << name << ": " << differences.size() << " rows\n";
    print(differences);
  }
  std::cout << "  unexplained: " << result.unexplained.size() << " rows\n";
  print(result.unexplained);

  std::cout << "  tracked objects alive before teardown: " << result.liveBeforeTeardown << '\n';
  for (const auto& [type, live] : result.aliveAfterTeardown) {
    std::cout << "  alive after teardown: " << live << " " << type << '\n';
  }
  return result.unexplained.empty() && result.aliveAfterTeardown.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) { return Bench::guardedMain("qos-churn-soak", runProgram, argc, argv); }
