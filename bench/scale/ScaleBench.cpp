#include "bench/scale/ScaleBench.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include <nlohmann/json.hpp>

#include "bench/gen/ChurnStream.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"
#include "bench/scale/ProcessMeter.h"
#include "host/app/AgentHost.h"
#include "host/app/PluginLoader.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"
#include "kel/Toggle.h"

namespace QosSnmpBench {

namespace {

template <typename T>
T median(std::vector<T> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? T{} : values[values.size() / 2];
}

bool policerStatsTableEnabled() {
  return Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
}

QosSnmp::RootSmFactory* pluginFactory(std::ostream& log) {
  std::string error;
  QosSnmp::RootSmFactory* factory =
      QosSnmpHost::PluginLoader::load(QosSnmpHost::PluginLoader::defaultPath(), error);
  if (factory == nullptr) {
    log << "qos-scale-bench: " << error << '\n';
  }
  return factory;
}

std::string fixed(double value, int digits) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(digits) << value;
  return out.str();
}

// 1234567 -> "1,234,567".
std::string grouped(std::size_t value) {
  const std::string digits = std::to_string(value);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) {
      text += ',';
    }
    text += digits[i];
  }
  return text;
}

std::string megabytes(long kb) { return fixed(static_cast<double>(kb) / 1024.0, 1); }

}  // namespace

int ScaleBench::measureLoad(const std::string& stateFile) {
  QosSnmp::RootSmFactory* factory = pluginFactory(std::cerr);
  if (factory == nullptr) {
    return 1;
  }
  const Kel::VirtualTime time;
  auto state = QosSnmpHost::SwitchState::loadFile(stateFile);
  if (!state) {
    std::cerr << state.error().text() << '\n';
    return 2;
  }
  // Leaked on purpose: the process ends right after the measurement.
  auto* host = new QosSnmpHost::AgentHost(std::move(state.value()), policerStatsTableEnabled());
  if (auto refused = host->build(*factory)) {
    std::cerr << refused->text() << '\n';
    return 2;
  }
  std::cout << "rows " << host->mib().rowCount() << " rss " << ProcessMeter::residentKb() << " peak "
            << ProcessMeter::peakResidentKb() << std::endl;
  std::_Exit(0);
}

bool ScaleBench::measureLoadChild(const std::string& stateFile, std::size_t& rows, long& rssKb, long& peakKb,
                                  std::ostream& log) const {
  std::vector<long> rss;
  std::vector<long> peak;
  for (int round = 0; round < options_.repeat; ++round) {
    const ProcessMeter::Run run = ProcessMeter::run({options_.selfProgram, "--measure-load", stateFile});
    std::istringstream out(run.out);
    std::string rowsWord, rssWord, peakWord;
    long oneRss = 0;
    long onePeak = 0;
    if (run.status != 0 || !(out >> rowsWord >> rows >> rssWord >> oneRss >> peakWord >> onePeak)) {
      log << "qos-scale-bench: --measure-load " << stateFile << " failed (status " << run.status << ")\n";
      return false;
    }
    rss.push_back(oneRss);
    peak.push_back(onePeak);
  }
  rssKb = median(rss);
  peakKb = median(peak);
  return true;
}

bool ScaleBench::run(std::ostream& log) {
  const std::string empty = options_.workDir + "/empty.json";
  // The least the agent starts on: the control-plane policy map alone.
  std::ofstream(empty)
      << R"({"qosStatus": {"pmapType": {"mapControlPlane": {"pmap": {"copp-system-policy": {}}}}}})" << '\n';
  std::vector<long> emptyPeaks;
  for (int round = 0; round < options_.repeat; ++round) {
    const ProcessMeter::Run run = ProcessMeter::run({options_.agentProgram, "check", "--state", empty});
    if (run.status != 0) {
      log << "qos-scale-bench: " << options_.agentProgram << " check of an empty document failed\n";
      return false;
    }
    emptyPeaks.push_back(run.peakRssKb);
  }
  emptyCheckPeakKb_ = median(emptyPeaks);
  std::size_t rows = 0;
  if (!measureLoadChild(empty, rows, emptyLoadedRssKb_, emptyLoadedPeakKb_, log)) {
    return false;
  }
  for (const std::string& preset : options_.presets) {
    if (!runPreset(preset, log)) {
      return false;
    }
  }
  return true;
}

bool ScaleBench::runPreset(const std::string& preset, std::ostream& log) {
  const std::optional<SwitchParams> params = SwitchParams::preset(preset);
  if (!params) {
    log << "qos-scale-bench: no preset " << preset << '\n';
    return false;
  }
  PresetResult result;
  result.preset = preset;
  const SwitchLayout layout(*params);
  const std::string stateFile = options_.workDir + "/" + preset + ".json";
  {
    std::ofstream out(stateFile, std::ios::binary);
    SwitchGenerator(layout).writeState(out);
  }
  log << "== " << preset << ": " << stateFile << '\n';

  std::vector<double> cpu;
  std::vector<long> peak;
  for (int round = 0; round < options_.repeat; ++round) {
    const ProcessMeter::Run run = ProcessMeter::run({options_.agentProgram, "check", "--state", stateFile});
    if (run.status != 0) {
      log << "qos-scale-bench: check of " << stateFile << " failed (status " << run.status << ")\n";
      return false;
    }
    cpu.push_back(run.cpuSeconds);
    peak.push_back(run.peakRssKb);
    log << "   check: " << fixed(run.cpuSeconds, 3) << " s CPU, peak RSS " << megabytes(run.peakRssKb)
        << " MB; " << run.out;
  }
  result.checkCpuSeconds = median(cpu);
  result.checkPeakKb = median(peak);

  if (!measureLoadChild(stateFile, result.rows, result.loadedRssKb, result.loadedPeakKb, log)) {
    return false;
  }
  log << "   after load: " << result.rows << " rows, RSS " << megabytes(result.loadedRssKb) << " MB\n";

  {
    std::ifstream in(stateFile, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const std::string document = text.str();
    result.documentBytes = document.size();
    std::vector<double> parse;
    for (int round = 0; round < options_.repeat; ++round) {
      const double start = ProcessMeter::cpuSeconds();
      auto dom = std::make_unique<nlohmann::json>(nlohmann::json::parse(document));
      parse.push_back(ProcessMeter::cpuSeconds() - start);
    }
    result.domParseSeconds = median(parse);
    log << "   DOM parse: " << fixed(result.domParseSeconds, 3) << " s CPU\n";
  }

  if (!measureChanges(preset, stateFile, result, log)) {
    return false;
  }
  results_.push_back(std::move(result));
  return true;
}

bool ScaleBench::measureChanges(const std::string& preset, const std::string& stateFile, PresetResult& result,
                                std::ostream& log) const {
  QosSnmp::RootSmFactory* factory = pluginFactory(log);
  if (factory == nullptr) {
    return false;
  }
  const auto count = options_.changes.count(preset) != 0 ? options_.changes.at(preset) : std::size_t{200};
  result.changesPerKind = count;
  const std::optional<SwitchParams> params = SwitchParams::preset(preset);
  if (!params) {
    log << "qos-scale-bench: no preset " << preset << '\n';
    return false;
  }
  const SwitchLayout layout(*params);
  for (const auto& [kind, name] : ChurnStream::kinds()) {
    const Kel::VirtualTime time;
    auto state = QosSnmpHost::SwitchState::loadFile(stateFile);
    if (!state) {
      log << state.error().text() << '\n';
      return false;
    }
    QosSnmpHost::AgentHost host(std::move(state.value()), policerStatsTableEnabled());
    if (auto refused = host.build(*factory)) {
      log << refused->text() << '\n';
      return false;
    }
    ChurnStream stream(layout, kind, 1);
    std::vector<double> perChange;
    std::size_t number = 0;
    for (int round = 0; round < options_.repeat; ++round) {
      std::vector<std::string> lines(count);
      for (std::string& line : lines) {
        line = stream.next();
      }
      const double start = ProcessMeter::cpuSeconds();
      for (const std::string& line : lines) {
        const auto change = host.apply(line, {name + ".jsonl", static_cast<int>(++number)});
        if (!change) {
          log << change.error().text() << '\n';
          return false;
        }
      }
      perChange.push_back((ProcessMeter::cpuSeconds() - start) / static_cast<double>(count) * 1e6);
    }
    result.changeMicros[name] = median(perChange);
    log << "   " << name << ": " << fixed(result.changeMicros[name], 1) << " us per change\n";
    host.release();
  }
  return true;
}

void ScaleBench::writeReport(std::ostream& out) const {
  out << "Empty document: `check` peak RSS " << megabytes(emptyCheckPeakKb_) << " MB; after load RSS "
      << megabytes(emptyLoadedRssKb_) << " MB. Medians of " << options_.repeat << ".\n\n";
  out << "| preset | rows in all ten tables | document | `check` CPU | `check` peak RSS | bytes per row "
         "(peak) "
         "| RSS after load | bytes per row (after load) | DOM parse CPU | `check` / DOM parse |\n";
  out << "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n";
  for (const PresetResult& r : results_) {
    const double rows = static_cast<double>(std::max<std::size_t>(r.rows, 1));
    const double peakPerRow = static_cast<double>(r.checkPeakKb - emptyCheckPeakKb_) * 1024.0 / rows;
    const double loadedPerRow = static_cast<double>(r.loadedRssKb - emptyLoadedRssKb_) * 1024.0 / rows;
    out << "| " << r.preset << " | " << grouped(r.rows) << " | "
        << megabytes(static_cast<long>(r.documentBytes / 1024)) << " MB | " << fixed(r.checkCpuSeconds, 3)
        << " s | " << megabytes(r.checkPeakKb) << " MB | "
        << grouped(static_cast<std::size_t>(std::max(0.0, peakPerRow))) << " | " << megabytes(r.loadedRssKb)
        << " MB | " << grouped(static_cast<std::size_t>(std::max(0.0, loadedPerRow))) << " | "
        << fixed(r.domParseSeconds, 3) << " s | "
        << fixed(r.checkCpuSeconds / std::max(r.domParseSeconds, 1e-9), 1) << "x |\n";
  }

  out << "\n| one change (CPU per change) |";
  for (const PresetResult& r : results_) {
    out << ' ' << r.preset << " (" << r.changesPerKind << " x " << options_.repeat << ") |";
  }
  std::vector<std::pair<std::size_t, std::size_t>> ratios;
  for (std::size_t i = 1; i < results_.size(); ++i) {
    ratios.emplace_back(i, i - 1);
    out << ' ' << results_[i].preset << " / " << results_[i - 1].preset << " |";
  }
  out << "\n|---|";
  for (std::size_t i = 0; i < results_.size() + ratios.size(); ++i) {
    out << "---:|";
  }
  out << '\n';
  for (const auto& [kind, name] : ChurnStream::kinds()) {
    out << "| " << name << " |";
    for (const PresetResult& r : results_) {
      out << ' ' << fixed(r.changeMicros.at(name), 1) << " us |";
    }
    for (const auto& [bigger, smaller] : ratios) {
      out << ' '
          << fixed(results_[bigger].changeMicros.at(name) /
                       std::max(results_[smaller].changeMicros.at(name), 1e-9),
                   2)
          << "x |";
    }
    out << '\n';
  }
}

}  // namespace QosSnmpBench
