// The subcommands of qos-snmp-agent, one function each. main() parses the
// command line into these options; each function returns the process's exit
// status:
//
//   0  done;
//   1  the agent could not be set up (plug-in, trace file, SNMP address);
//   2  the switch state or a change line was malformed or refused (dump,
//      check and tree stop at the first one; run reports it and goes on).
#pragma once

#include <string>

namespace QosSnmpHost {

// Options every subcommand takes.
struct CommonOptions {
  std::string plugin;     // empty: PluginLoader::defaultPath()
  std::string trace;      // framework trace levels, "QosSnmp/0-8"
  std::string ringTrace;  // ring-buffer trace file
  std::string toggles;    // feature toggle directory
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
int runCommand(const CommonOptions& common, const RunOptions& options);

}  // namespace QosSnmpHost
