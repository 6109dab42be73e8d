// qos-scale-bench: the agent's load, memory and per-change costs at the
// generated switch's preset sizes, in one run (see bench/scale/ScaleBench.h;
// bench/run-scale is the command to use).
//
//   qos-scale-bench --agent build/host/qos-snmp-agent --presets small,large --work /tmp/scale
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "bench/GuardedMain.h"
#include "bench/scale/ScaleBench.h"

namespace {

int runProgram(int argc, char** argv) {
  using QosSnmpBench::ScaleBench;
  if (argc == 3 && std::string(argv[1]) == "--measure-load") {
    return ScaleBench::measureLoad(argv[2]);
  }

  CLI::App app{
      "qos-scale-bench: load, memory and per-change costs of the agent at the generated switch's presets"};
  ScaleBench::Options options;
  app.add_option("--agent", options.agentProgram, "The qos-snmp-agent program")->required();
  app.add_option("--work", options.workDir, "Directory for the generated documents")->required();
  app.add_option("--presets", options.presets, "Presets to run, in order (small, large, huge)")
      ->delimiter(',');
  app.add_option("--repeat", options.repeat, "Runs per figure; the median is reported (default 3)")
      ->check(CLI::Range(1, 99));
  std::size_t changes = 0;
  app.add_option("--changes", changes,
                 "Change lines per kind and run, for every preset (default: small and large 1000, huge 200)");
  CLI11_PARSE(app, argc, argv);

  if (changes > 0) {
    for (auto& [preset, count] : options.changes) {
      count = changes;
    }
  }
  char self[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", self, sizeof self - 1);
  if (length <= 0) {
    std::cerr << "qos-scale-bench: cannot find its own program\n";
    return 1;
  }
  options.selfProgram.assign(self, static_cast<std::size_t>(length));

  ScaleBench bench(options);
  if (!bench.run(std::cerr)) {
    return 1;
  }
  bench.writeReport(std::cout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return Bench::guardedMain("qos-scale-bench", runProgram, argc, argv); }
