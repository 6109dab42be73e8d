// qos-snmp-agent: builds the QoS agent over a switch state, follows its
// changes, shows the MIB model and serves it over SNMP.
#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "host/app/Commands.h"

namespace {

int runProgram(int argc, char** argv) {
  using namespace QosSnmpHost;

  CLI::App app{
      "qos-snmp-agent: the QoS agent of a switch. It loads the agent plug-in, builds the agent over a switch "
      "state document (JSON), follows a stream of changes (JSON Lines) and shows or serves the MIB model."};
  app.require_subcommand(1);
  app.set_help_all_flag("--help-all", "Show the help of every subcommand");

  CommonOptions common;
  const auto addCommon = [&common](CLI::App* command) {
    command->add_option("--plugin", common.plugin,
                        "The agent plug-in (default: the module built with this program)");
    command->add_option("--trace", common.trace,
                        "Framework trace levels per module, e.g. \"QosSnmp/0-8\" (lines to standard error)");
    command->add_option("--ring-trace", common.ringTrace, "Write the ring-buffer trace to FILE");
    command->add_option("--toggles", common.toggles, "Read feature toggles from DIR");
  };

  DumpOptions dump;
  CLI::App* dumpApp =
      app.add_subcommand("dump", "Build the agent, apply the changes, print the whole MIB model");
  dumpApp->add_option("--state", dump.state, "Switch state document (JSON)")->required();
  dumpApp->add_option("--changes", dump.changes, "Change stream to apply first (JSON Lines)");
  dumpApp->add_option("--format", dump.format, "Output format")->check(CLI::IsMember({"text", "json"}));
  addCommon(dumpApp);

  DumpOptions check;
  CLI::App* checkApp =
      app.add_subcommand("check", "Validate a switch state and a change stream; print nothing else");
  checkApp->add_option("--state", check.state, "Switch state document (JSON)")->required();
  checkApp->add_option("--changes", check.changes, "Change stream (JSON Lines)");
  addCommon(checkApp);

  TreeOptions tree;
  CLI::App* treeApp =
      app.add_subcommand("tree", "Print the live tree of state machines and the rows each owns");
  treeApp->add_option("--state", tree.state, "Switch state document (JSON)")->required();
  treeApp->add_option("--changes", tree.changes, "Change stream to apply first (JSON Lines)");
  treeApp->add_option("--format", tree.format, "Output format (dot: Graphviz)")
      ->check(CLI::IsMember({"text", "dot"}));
  addCommon(treeApp);

  RunOptions run;
  CLI::App* runApp = app.add_subcommand(
      "run",
      "Run the agent on the real clock, follow the change stream and serve the MIB over SNMP until SIGINT "
      "or SIGTERM");
  runApp->add_option("--state", run.state, "Switch state document (JSON)")->required();
  runApp->add_option("--changes", run.changes,
                     "Change stream to follow: a file, a FIFO, or - for standard input");
  CLI::Option* listen = runApp->add_option(
      "--listen", run.listen, "Serve as an embedded SNMP agent on ADDRESS (default udp:127.0.0.1:1161)");
  CLI::Option* agentx = runApp->add_option("--agentx", run.agentx,
                                           "Serve as an AgentX subagent of the master at SOCKET instead");
  listen->excludes(agentx);
  runApp->add_option("--community", run.community, "SNMPv1/v2c read-only community (default public)");
  runApp->add_option("--snmpv3-users", run.snmpv3Users, "SNMPv3 users file (see the README)");
  runApp
      ->add_option("--agentx-ping-interval", run.agentxPingInterval,
                   "Seconds between AgentX pings and reconnection attempts (default 15)")
      ->check(CLI::Range(1, 3600));
  addCommon(runApp);

  CLI11_PARSE(app, argc, argv);

  if (dumpApp->parsed()) {
    return dumpCommand(common, dump);
  }
  if (checkApp->parsed()) {
    return checkCommand(common, check);
  }
  if (treeApp->parsed()) {
    return treeCommand(common, tree);
  }
  return runCommand(common, run);
}

}  // namespace

// An exception that reaches here is a bug, but it still leaves the way a
// normal exit does: the stack unwinds, so every destructor runs and the
// program's temporary files go.
int main(int argc, char** argv) {
  try {
    return runProgram(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "qos-snmp-agent: internal error: " << error.what() << '\n';
  } catch (...) {
    std::cerr << "qos-snmp-agent: internal error: unknown exception\n";
  }
  return 1;
}
