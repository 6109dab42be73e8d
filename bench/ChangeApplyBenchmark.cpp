// The CPU one change line costs the host and the agent, per kind of change
// (ChurnStream) and preset size of the generated switch: the figure whose
// growth from small to large to huge the scale targets bound. bench/run-scale
// reports the same figure with its ratios; this is its Google Benchmark form,
// for profiling one kind at a time:
//
//   build/bench/ChangeApplyBenchmark --benchmark_filter='BM_ApplyChange/large/counters'
//
// Each kind runs over an agent built afresh for it, as in run-scale.
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/gen/ChurnStream.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"
#include "host/app/AgentHost.h"
#include "host/app/PluginLoader.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"

namespace {

using QosSnmpBench::ChurnStream;
using QosSnmpBench::SwitchGenerator;
using QosSnmpBench::SwitchLayout;
using QosSnmpBench::SwitchParams;

// The parameters of a preset the benchmarks name; aborts for another name.
SwitchParams presetParams(const std::string& preset) {
  std::optional<SwitchParams> params = SwitchParams::preset(preset);
  if (!params) {
    std::cerr << "ChangeApplyBenchmark: no preset " << preset << '\n';
    std::abort();
  }
  return *params;
}

// An agent over one preset's generated switch, and the change stream of
// one kind that runs over it.
struct Switch {
  // REQUIRES: `preset` is one of SwitchParams::presetNames().
  Switch(const std::string& preset, ChurnStream::Kind kind) : layout(presetParams(preset)) {
    std::string error;
    QosSnmp::RootSmFactory* factory =
        QosSnmpHost::PluginLoader::load(QosSnmpHost::PluginLoader::defaultPath(), error);
    auto state = QosSnmpHost::SwitchState::loadText(SwitchGenerator(layout).stateText(), preset + ".json");
    if (factory == nullptr || !state) {
      std::cerr << "ChangeApplyBenchmark: " << (factory == nullptr ? error : state.error().text()) << '\n';
      std::abort();
    }
    host = std::make_unique<QosSnmpHost::AgentHost>(std::move(state.value()), true);
    if (auto refused = host->build(*factory)) {
      std::cerr << "ChangeApplyBenchmark: " << refused->text() << '\n';
      std::abort();
    }
    stream = std::make_unique<ChurnStream>(layout, kind, 1);
  }

  SwitchLayout layout;
  Kel::VirtualTime time;
  std::unique_ptr<QosSnmpHost::AgentHost> host;
  std::unique_ptr<ChurnStream> stream;
  // Lines made but not applied yet: a run may end inside a batch.
  std::vector<std::string> lines;
  std::size_t next = 0;
};

// The agent of the benchmark that runs now: Google Benchmark runs one
// benchmark several times in a row (to size its iterations), and each run
// goes on where the last one left the agent and its stream. A new benchmark
// gets a fresh agent, so that the kinds do not see each other's changes.
Switch& switchOf(const std::string& preset, ChurnStream::Kind kind) {
  static std::string current;
  static std::unique_ptr<Switch> made;
  const std::string key = preset + "/" + ChurnStream::nameOf(kind);
  if (key != current) {
    made.reset();
    made = std::make_unique<Switch>(preset, kind);
    current = key;
  }
  return *made;
}

// One change line of `kind` per iteration; the lines are made in batches
// outside the timing.
void BM_ApplyChange(benchmark::State& state, const std::string& preset, ChurnStream::Kind kind) {
  Switch& agent = switchOf(preset, kind);
  int number = 0;
  for (auto _ : state) {
    if (agent.next == agent.lines.size()) {
      state.PauseTiming();
      agent.lines.resize(256);
      for (std::string& line : agent.lines) {
        line = agent.stream->next();
      }
      agent.next = 0;
      state.ResumeTiming();
    }
    const auto change = agent.host->apply(agent.lines[agent.next++], {"changes.jsonl", ++number});
    if (!change) {
      state.SkipWithError(change.error().text().c_str());
      break;
    }
  }
  state.SetItemsProcessed(state.iterations());
}

const bool kRegistered = [] {
  for (const std::string& preset : SwitchParams::presetNames()) {
    for (const auto& [kind, name] : ChurnStream::kinds()) {
      std::string benchmarkName = "BM_ApplyChange/";
      benchmarkName += preset;
      benchmarkName += '/';
      benchmarkName += name;
      benchmark::RegisterBenchmark(benchmarkName.c_str(), BM_ApplyChange, preset, kind)
          ->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

}  // namespace
