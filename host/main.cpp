// qos-snmp-agent: builds the QoS agent over a switch state, follows its
// changes, shows the MIB model and serves it over SNMP.
//
// Every subcommand and option is registered in CommandLine's constructor,
// the one place to add an option; the same registration serves the start
// and every re-read of the configuration (SIGHUP).
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/BuildVersion.h"
#include "host/app/Commands.h"
#include "host/app/ConfigFile.h"

namespace {

using namespace QosSnmpHost;

constexpr const char* kExitStatuses =
    "Exit status:\n"
    "  0   success\n"
    "  1   could not start: plug-in, trace file, SNMP address, change stream\n"
    "  2   input refused: a malformed or refused switch state or change line (dump, check, tree)\n"
    "  64  usage error: an unknown or malformed option, a missing subcommand, a bad configuration file\n";

class CommandLine {
 public:
  CommandLine();

  CLI::App app{
      "qos-snmp-agent: the QoS agent of a switch. It loads the agent plug-in, builds the agent over a switch "
      "state document (JSON), follows a stream of changes (JSON Lines) and shows or serves the MIB model.",
      "qos-snmp-agent"};
  CommonOptions common;
  DumpOptions dump;
  DumpOptions check;
  TreeOptions tree;
  RunOptions run;
  CLI::App* dumpApp = nullptr;
  CLI::App* checkApp = nullptr;
  CLI::App* treeApp = nullptr;
  CLI::App* runApp = nullptr;

  // After a parse: the configuration file that was read, if any.
  std::string configFileRead() const;

 private:
  void addCommon(CLI::App* command);
  CLI::Option* config_ = nullptr;
};

CommandLine::CommandLine() {
  app.require_subcommand(1);
  app.set_help_all_flag("--help-all", "Show the help of every subcommand");
  app.set_version_flag("--version", std::string("qos-snmp-agent ") + QOS_BUILD_VERSION);
  app.footer(kExitStatuses);
  // Options of the program itself (--config) may follow the subcommand.
  app.fallthrough();
  config_ = app.set_config("--config", ConfigFile::kDefaultPath,
                           std::string("Read options of the subcommand from FILE (key = value, a long option "
                                       "per line; run reads ") +
                               ConfigFile::kDefaultPath + " when it exists)");
  config_->multi_option_policy(CLI::MultiOptionPolicy::Throw);
  app.config_formatter(std::make_shared<ConfigFile>(app, *config_));

  dumpApp = app.add_subcommand("dump", "Build the agent, apply the changes, print the whole MIB model");
  dumpApp->add_option("--state", dump.state, "Switch state document (JSON)")->required();
  dumpApp->add_option("--changes", dump.changes, "Change stream to apply first (JSON Lines)");
  dumpApp->add_option("--format", dump.format, "Output format")->check(CLI::IsMember({"text", "json"}));
  addCommon(dumpApp);

  checkApp = app.add_subcommand("check", "Validate a switch state and a change stream; print nothing else");
  checkApp->add_option("--state", check.state, "Switch state document (JSON)")->required();
  checkApp->add_option("--changes", check.changes, "Change stream (JSON Lines)");
  addCommon(checkApp);

  treeApp = app.add_subcommand("tree", "Print the live tree of state machines and the rows each owns");
  treeApp->add_option("--state", tree.state, "Switch state document (JSON)")->required();
  treeApp->add_option("--changes", tree.changes, "Change stream to apply first (JSON Lines)");
  treeApp->add_option("--format", tree.format, "Output format (dot: Graphviz)")
      ->check(CLI::IsMember({"text", "dot"}));
  addCommon(treeApp);

  runApp = app.add_subcommand(
      "run",
      "Run the agent on the real clock, follow the change stream and serve the MIB over SNMP until SIGINT "
      "or SIGTERM; SIGHUP re-reads the configuration file. Every option may stand in that file, --config "
      "FILE "
      "(default " +
          std::string(ConfigFile::kDefaultPath) + " when it exists)");
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
  runApp->add_flag("--no-v2c", run.noV2c, "No SNMPv1/v2c access: SNMPv3 users (authPriv) only");
  runApp->add_option("--snmp-persistent-dir", run.snmpPersistentDir,
                     "Directory that keeps the SNMPv3 engine ID and boot count across restarts");
  runApp->add_option("--sys-contact", run.sysContact, "sysContact of the embedded agent");
  runApp->add_option("--sys-name", run.sysName, "sysName of the embedded agent");
  runApp->add_option("--sys-location", run.sysLocation, "sysLocation of the embedded agent");
  runApp
      ->add_option("--agentx-ping-interval", run.agentxPingInterval,
                   "Seconds between AgentX pings and reconnection attempts (default 15)")
      ->check(CLI::Range(1, 3600));
  addCommon(runApp);
}

void CommandLine::addCommon(CLI::App* command) {
  command->add_option("--plugin", common.plugin,
                      "The agent plug-in (default: the module installed or built with this program)");
  command->add_option("--trace", common.trace,
                      "Framework trace levels per module, e.g. \"QosSnmp/0-8\" (lines to standard error)");
  command->add_option("--ring-trace", common.ringTrace, "Write the ring-buffer trace to FILE");
  command->add_option("--toggles", common.toggles, "Read feature toggles from DIR");
  command->add_option("--log", common.log, "Where log lines go: stderr (default) or syslog")
      ->check(CLI::IsMember({"stderr", "syslog"}));
  command->add_option("--log-level", common.logLevel, "Lowest level logged (default info)")
      ->check(CLI::IsMember({"debug", "info", "notice", "warning", "error"}));
}

std::string CommandLine::configFileRead() const {
  if (config_->count() > 0) {
    return config_->results().front();
  }
  std::error_code ignored;
  return runApp->parsed() && std::filesystem::is_regular_file(ConfigFile::kDefaultPath, ignored)
             ? ConfigFile::kDefaultPath
             : "";
}

// Parses the command line (and the configuration file it names). Returns
// the exit status when the program is done (help, version, usage error).
std::optional<int> parse(CommandLine& line, int argc, char** argv, std::string* usageError) {
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      return line.app.exit(error);  // --help, --help-all, --version
    }
    if (usageError != nullptr) {
      *usageError = error.what();
    } else {
      std::cerr << "qos-snmp-agent: " << error.what() << "\nRun with --help for more information.\n";
    }
    return kUsageError;
  }
  line.common.config = line.configFileRead();
  return std::nullopt;
}

int runProgram(int argc, char** argv) {
  auto line = std::make_unique<CommandLine>();
  if (std::optional<int> status = parse(*line, argc, argv, nullptr)) {
    return *status;
  }
  if (line->dumpApp->parsed()) {
    return dumpCommand(line->common, line->dump);
  }
  if (line->checkApp->parsed()) {
    return checkCommand(line->common, line->check);
  }
  if (line->treeApp->parsed()) {
    return treeCommand(line->common, line->tree);
  }
  // SIGHUP: the same command line again, with the configuration file as it
  // is now.
  const OptionsReader reread = [argc, argv](CommonOptions& common, RunOptions& run, std::string& error) {
    CommandLine again;
    if (parse(again, argc, argv, &error)) {
      return false;
    }
    common = again.common;
    run = again.run;
    return true;
  };
  return runCommand(line->common, line->run, reread);
}

}  // namespace

// net-snmp keeps a few blocks of every start of its agent past its
// shutdown (its MIB tables, certificate containers, the system group's
// sysORTable entries, a variable of an agent restarted by SIGHUP); builds
// with LeakSanitizer ignore those, and only those. The sanitizer runtime
// looks this hook up by name; other builds never call it.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
  return "leak:netsnmp_init_mib_internals\n"
         "leak:netsnmp_container_get_binary_array\n"
         "leak:netsnmp_certs_agent_init\n"
         "leak:init_sysORTable\n"
         "leak:snmp_varlist_add_variable\n"
         "leak:libnetsnmpmibs.so\n";
}

// Its report of the suppressions used would land among the log lines.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }

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
