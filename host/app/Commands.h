// The subcommands of qos-snmp-agent, one function each. main() parses the
// command line into these options; each function returns the process's exit
// status:
//
//   0   done;
//   1   the agent could not be set up (plug-in, trace file, SNMP address,
//       change stream);
//   2   the switch state or a change line was malformed or refused (dump,
//       check and tree stop at the first one; run reports it and goes on);
//   64  (main itself) a usage error: every command-line or configuration
//       file parse error.
//
// dump, check and tree print their errors as plain lines on standard error;
// run logs everything through the Logger.
#pragma once

#include <functional>
#include <string>

namespace QosSnmpHost {

constexpr int kExitOk = 0;
constexpr int kExitSetUpFailed = 1;
constexpr int kExitBadInput = 2;
constexpr int kUsageError = 64;

// Options every subcommand takes.
struct CommonOptions {
  std::string plugin;             // empty: PluginLoader::defaultPath()
  std::string trace;              // framework trace levels, "QosSnmp/0-8"
  std::string ringTrace;          // ring-buffer trace file
  std::string toggles;            // feature toggle directory
  std::string log = "stderr";     // stderr | syslog
  std::string logLevel = "info";  // debug | info | notice | warning | error
  std::string config;             // the configuration file read; empty: none
};

struct DumpOptions {
  std::string state;
  std::string changes;
  std::string format = "text";  // text | json
};

struct TreeOptions {
  std::string state;
  std::string changes;
  std::string format = "text";  // text | dot
};

struct RunOptions {
  std::string state;
  std::string changes;  // a file, a FIFO, or "-" for standard input; empty: none
  // SNMP: the embedded master's address, or the master's AgentX socket.
  std::string listen;
  std::string agentx;
  std::string community = "public";
  std::string snmpv3Users;
  bool noV2c = false;             // no SNMPv1/v2c access: SNMPv3 users only
  std::string snmpPersistentDir;  // keeps the SNMPv3 engine ID; empty: none
  std::string sysContact;
  std::string sysName;
  std::string sysLocation;
  int agentxPingInterval = 15;
};

int dumpCommand(const CommonOptions& common, const DumpOptions& options);
int checkCommand(const CommonOptions& common, const DumpOptions& options);
int treeCommand(const CommonOptions& common, const TreeOptions& options);
// Reads the options again, command line and configuration file as they are
// now: false with `error` set when they no longer parse.
using OptionsReader = std::function<bool(CommonOptions& common, RunOptions& run, std::string& error)>;

// run: serves until SIGINT or SIGTERM. On SIGHUP it calls `reread` (when
// given) and applies what can change while running: the log destination
// and level, the trace levels, the community and the SNMPv3 users (the
// embedded agent restarts on its address); it logs every other changed
// option as not applied until the next start.
int runCommand(const CommonOptions& common, const RunOptions& options, const OptionsReader& reread = {});

}  // namespace QosSnmpHost
