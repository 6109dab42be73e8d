// ScaleBench: what the agent costs at each preset size of the generated
// switch, measured in one run on this machine, with the ratios the targets
// are stated in. docs/performance.md describes every figure; bench/run-scale
// is the command that runs it.
//
// Per preset, each figure the median of `repeat` runs:
// - `check`: the qos-snmp-agent program checking the state document, run as
//   a child process: its CPU time (user + system, so load, build, teardown
//   and exit) and its peak RSS;
// - after load: a child process (this program, --measure-load) that loads
//   the document and builds the agent over it, then reports its RSS;
// - bytes per row: (RSS - the same RSS over an empty document, one with
//   the control-plane policy map alone) / rows;
// - DOM parse: the CPU time of nlohmann::json::parse of the document's text,
//   already in memory (the yardstick of load);
// - per change kind: N change lines of that kind (ChurnStream) applied
//   in-process through AgentHost, over one agent built with the plug-in's
//   factory as the program does; CPU time / N. The kinds run in sequence over
//   the same agent, in ChurnStream::kinds() order.
#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace QosSnmpBench {

class ScaleBench {
 public:
  struct Options {
    std::vector<std::string> presets = {"small", "large"};
    std::string agentProgram;  // qos-snmp-agent
    std::string selfProgram;   // this program, for --measure-load
    std::string workDir;       // generated documents go here
    int repeat = 3;
    // Change lines per kind and round, by preset.
    std::map<std::string, std::size_t> changes = {{"small", 1000}, {"large", 1000}, {"huge", 200}};
  };

  struct PresetResult {
    std::string preset;
    std::size_t rows = 0;
    double checkCpuSeconds = 0.0;
    long checkPeakKb = 0;
    long loadedRssKb = 0;
    long loadedPeakKb = 0;
    double domParseSeconds = 0.0;
    std::size_t documentBytes = 0;
    std::size_t changesPerKind = 0;
    std::map<std::string, double> changeMicros;  // by kind name
  };

  explicit ScaleBench(Options options) : options_(std::move(options)) {}

  // Runs every preset, printing progress to `log`; false after printing why
  // a step failed.
  bool run(std::ostream& log);
  // The results as Markdown tables, with the ratios.
  void writeReport(std::ostream& out) const;

  // The --measure-load child: loads `stateFile`, builds the agent, prints
  // "rows <n> rss <KiB> peak <KiB>" and ends the process without teardown.
  // Returns an exit status on failure.
  static int measureLoad(const std::string& stateFile);

 private:
  bool runPreset(const std::string& preset, std::ostream& log);
  bool measureChanges(const std::string& preset, const std::string& stateFile, PresetResult& result,
                      std::ostream& log) const;
  // Median over `repeat` runs of the --measure-load child.
  bool measureLoadChild(const std::string& stateFile, std::size_t& rows, long& rssKb, long& peakKb,
                        std::ostream& log) const;

  Options options_;
  long emptyCheckPeakKb_ = 0;
  long emptyLoadedRssKb_ = 0;
  long emptyLoadedPeakKb_ = 0;
  std::vector<PresetResult> results_;
};

}  // namespace QosSnmpBench
