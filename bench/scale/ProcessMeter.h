// ProcessMeter: runs a program to its end and reports what it cost, as the
// kernel accounted it: CPU time (user + system) and peak resident set size,
// with its standard output captured.
//
//   ProcessMeter::Run run = ProcessMeter::run({"build/host/qos-snmp-agent", "check", "--state", "s.json"});
//   if (run.status == 0) { ... run.cpuSeconds, run.peakRssKb, run.out ... }
#pragma once

#include <string>
#include <vector>

namespace QosSnmpBench {

class ProcessMeter {
 public:
  struct Run {
    int status = -1;  // exit status; -1 when it did not exit normally
    double cpuSeconds = 0.0;
    long peakRssKb = 0;
    std::string out;
  };

  // Runs argv[0] (a path) with its arguments; standard error passes through.
  static Run run(const std::vector<std::string>& argv);

  // This process's current and peak resident set sizes, in KiB (VmRSS and
  // VmHWM of /proc/self/status).
  static long residentKb();
  static long peakResidentKb();
  // CPU time of this process so far, in seconds.
  static double cpuSeconds();
};

}  // namespace QosSnmpBench
