#include "host/app/Commands.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/app/AgentHost.h"
#include "host/app/ChangeFeed.h"
#include "host/app/LineReader.h"
#include "host/app/PluginLoader.h"
#include "host/app/RunningAgent.h"
#include "host/app/SignalStopper.h"
#include "host/dump/MibDump.h"
#include "host/log/Logger.h"
#include "host/snmp/MibAgentStatus.h"
#include "host/snmp/MibView.h"
#include "host/snmp/SnmpFrontEnd.h"
#include "host/tree/MachineTree.h"
#include "kel/ActivityManager.h"
#include "kel/Clock.h"
#include "kel/RingTrace.h"
#include "kel/System.h"
#include "kel/Toggle.h"
#include "kel/Trace.h"
#include "toggles/JsonToggleStore.h"

namespace QosSnmpHost {

namespace {

constexpr int kOk = kExitOk;
constexpr int kSetUpFailed = kExitSetUpFailed;
constexpr int kBadInput = kExitBadInput;

// Where a command's messages go: dump, check and tree print them as they
// are (the message is their output); run logs them.
class Messages {
 public:
  explicit Messages(bool logged) : logged_(logged) {}
  // A problem of the program's own set-up: "--trace X: ...".
  void setUpFailed(const std::string& text) const {
    if (logged_) {
      Logger::error("main", text);
    } else {
      std::cerr << "qos-snmp-agent: " << text << '\n';
    }
  }
  // Malformed or refused input; the text names the file and the line.
  void refused(const std::string& text) const {
    if (logged_) {
      Logger::error("input", text);
    } else {
      std::cerr << text << '\n';
    }
  }

 private:
  bool logged_;
};

// The log destination and level of the options; false after saying why.
bool applyLogOptions(const CommonOptions& common, const Messages& messages) {
  const std::optional<LogDestination> destination = Logger::destinationNamed(common.log);
  const std::optional<LogLevel> level = Logger::levelNamed(common.logLevel);
  if (!destination || !level) {
    messages.setUpFailed("--log " + common.log + " --log-level " + common.logLevel + ": not a log setting");
    return false;
  }
  Logger::destinationIs(*destination);
  Logger::thresholdIs(*level);
  return true;
}

// The plug-in's one feature toggle, read the way the agent reads it.
bool policerStatsTableEnabled() {
  return Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
}

// Log, trace, ring trace and toggles, then the plug-in. Null after saying
// why.
QosSnmp::RootSmFactory* setUp(const CommonOptions& common, const Messages& messages) {
  if (!applyLogOptions(common, messages)) {
    return nullptr;
  }
  if (!common.trace.empty()) {
    if (std::optional<std::string> error = Kel::traceLevelsIs(common.trace)) {
      messages.setUpFailed("--trace " + common.trace + ": " + *error);
      return nullptr;
    }
  }
  if (!common.ringTrace.empty()) {
    try {
      RingTrace::openDefaultRingTraceFile(common.ringTrace);
    } catch (const std::exception& error) {
      messages.setUpFailed("--ring-trace " + common.ringTrace + ": " + error.what());
      return nullptr;
    }
  }
  if (!common.toggles.empty()) {
    Kel::toggleStoreIs(std::make_shared<Kel::JsonToggleStore>(common.toggles));
  }
  const std::string plugin = common.plugin.empty() ? PluginLoader::defaultPath() : common.plugin;
  std::string error;
  QosSnmp::RootSmFactory* factory = PluginLoader::load(plugin, error);
  if (factory == nullptr) {
    messages.setUpFailed(error);
  }
  return factory;
}

// Loads the state document and builds the agent over it. Null after
// printing the error; `status` says which kind.
std::unique_ptr<AgentHost> buildAgent(const CommonOptions& common, const std::string& stateFile,
                                      const Messages& messages, int& status) {
  QosSnmp::RootSmFactory* factory = setUp(common, messages);
  if (factory == nullptr) {
    status = kSetUpFailed;
    return nullptr;
  }
  Result<SwitchState> state = SwitchState::loadFile(stateFile);
  if (!state) {
    messages.refused(state.error().text());
    status = kBadInput;
    return nullptr;
  }
  auto host = std::make_unique<AgentHost>(std::move(state.value()), policerStatsTableEnabled());
  if (std::optional<LoadError> refused = host->build(*factory)) {
    messages.refused(refused->text());
    status = kBadInput;
    return nullptr;
  }
  status = kOk;
  return host;
}

// Applies a change file line by line on the virtual clock; stops at the
// first error.
int applyChangeFile(AgentHost& host, const std::string& path, Kel::VirtualTime& time) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    std::cerr << path << ": cannot be read\n";
    return kBadInput;
  }
  LineReader reader(fd);
  int status = kOk;
  const auto refuse = [&status](const LoadError& error) {
    std::cerr << error.text() << '\n';
    status = kBadInput;
  };
  // The reader hands over every line of a regular file at once; lines after
  // the first error are not applied.
  const bool read = reader.readAvailable(
      [&](std::string_view line, std::size_t number) {
        if (status != kOk) {
          return;
        }
        Result<Change> change = host.apply(line, {path, static_cast<int>(number)});
        if (!change) {
          refuse(change.error());
        } else if (change->op == Change::Op::advance) {
          time.advance(change->seconds);
        }
      },
      [&](std::size_t number, std::size_t bytes) {
        if (status == kOk) {
          refuse(overlongLineError({path, static_cast<int>(number)}, bytes, reader.maxLineBytes()));
        }
      });
  ::close(fd);
  if (!read && status == kOk) {
    std::cerr << path << ": cannot be read\n";
    return kBadInput;
  }
  return status;
}

// dump, check and tree: an agent on a virtual clock that starts at 0, so
// that the output depends on the input alone.
template <typename Show>
int offlineCommand(const CommonOptions& common, const std::string& stateFile, const std::string& changes,
                   Show&& show) {
  Kel::VirtualTime time;
  int status = kOk;
  std::unique_ptr<AgentHost> host = buildAgent(common, stateFile, Messages(false), status);
  if (!host) {
    return status;
  }
  if (!changes.empty()) {
    status = applyChangeFile(*host, changes, time);
    if (status != kOk) {
      return status;
    }
  }
  show(*host);
  // The process ends here and gives its memory back at once: closing every
  // machine and freeing every entity of a large switch would cost a fifth of
  // the command. The agent's own teardown is tested where it matters (the
  // root released leaves nothing alive). Kept reachable, so that leak
  // checkers do not report it.
  static auto* const kKeptUntilExit = new std::vector<AgentHost*>();  // never destroyed: stays reachable
  kKeptUntilExit->push_back(host.release());
  return kOk;
}

// Opens the change stream of run: "-" is standard input; a FIFO is opened
// for reading and writing, so that writers may come and go without the
// stream ending. -1 after printing why.
int openChangeStream(const std::string& path) {
  int fd = -1;
  if (path == "-") {
    fd = ::dup(STDIN_FILENO);
  } else {
    struct stat info {};
    const bool fifo = ::stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode);
    fd = ::open(path.c_str(), (fifo ? O_RDWR : O_RDONLY) | O_CLOEXEC);
  }
  if (fd < 0) {
    Logger::error("changes", "--changes " + path + ": cannot be opened: " + std::strerror(errno));
    return -1;
  }
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
  return fd;
}

// The change feed of run over `fd`: applies the stream to `host` in slices
// between SNMP requests, logs refusals and progress, and counts what the
// stream did in the agent group: changes applied (a comment or an advance
// is none) and lines refused.
std::unique_ptr<ChangeFeed> followChanges(AgentHost& host, Kel::ActivityManager& loop,
                                          const std::string& name, int fd, MibAgentStatus& agentStatus) {
  ChangeFeedOptions feedOptions;
  feedOptions.requestWaiting = [&loop] { return loop.hookReadable(); };
  return std::make_unique<ChangeFeed>(
      loop,
      [&host, &agentStatus](std::string_view line, const Source& where) {
        Result<Change> change = host.apply(line, where);
        if (change && (change->op == Change::Op::set || change->op == Change::Op::del)) {
          agentStatus.changeAppliedIs(MibAgentStatus::Clock::now());
        }
        return change;
      },
      name, fd,
      [&agentStatus](ChangeFeedLog kind, const std::string& text) {
        if (kind == ChangeFeedLog::refused) {
          agentStatus.changeRefused();
          Logger::warning("changes", text);
        } else {
          Logger::notice("changes", text);
        }
      },
      feedOptions);
}

}  // namespace

int dumpCommand(const CommonOptions& common, const DumpOptions& options) {
  return offlineCommand(common, options.state, options.changes, [&](const AgentHost& host) {
    const MibDump dump(host.pathOf());
    if (options.format == "json") {
      std::cout << dump.json(host.mib()).dump(2) << '\n';
    } else {
      dump.writeText(std::cout, host.mib());
    }
  });
}

int checkCommand(const CommonOptions& common, const DumpOptions& options) {
  return offlineCommand(common, options.state, options.changes, [&](const AgentHost& host) {
    std::cout << options.state << ": OK";
    if (!options.changes.empty()) {
      std::cout << ", " << options.changes << ": OK";
    }
    std::cout << " (" << host.mib().rowCount() << " rows)\n";
  });
}

int treeCommand(const CommonOptions& common, const TreeOptions& options) {
  return offlineCommand(common, options.state, options.changes, [&](const AgentHost& host) {
    const MachineTree tree(*host.root());
    std::cout << (options.format == "dot" ? tree.dot() : tree.text());
  });
}

int runCommand(const CommonOptions& common, const RunOptions& options, const OptionsReader& reread) {
  int status = kOk;
  const Messages messages(true);
  std::unique_ptr<AgentHost> host = buildAgent(common, options.state, messages, status);
  if (!host) {
    return status;
  }
  if (!common.config.empty()) {
    Logger::info("main", "configuration read from " + common.config);
  }
  Kel::ActivityManager loop(Kel::System::clock());
  MibAgentStatus agentStatus;
  agentStatus.stateLoadedIs(MibAgentStatus::Clock::now());
  // Counters the model got at load are stamped 0; later ones with the time
  // since the SNMP agent started, which sysUpTime counts.
  host->counterClockIs([&agentStatus] { return agentStatus.timeStamp(MibAgentStatus::Clock::now()); });
  const MibView view(host->mib(), &agentStatus);
  SnmpFrontEnd snmp(loop, view);
  RunningAgent running{common, options, snmp};
  bool stopping = false;
  // A reload runs between two turns of the loop, where the SNMP agent may
  // restart, never inside the loop's dispatch.
  bool reloadDue = false;
  const SignalStopper signals(loop, [&](int signal) {
    if (signal == SIGHUP) {
      reloadDue = true;
      return;
    }
    Logger::info("main", std::string("stopping on ") + (signal == SIGINT ? "SIGINT" : "SIGTERM"));
    stopping = true;
    loop.stop();
  });

  try {
    agentStatus.upTimeOrigin = MibAgentStatus::Clock::now();  // sysUpTime starts with the agent
    snmp.start(running.snmpOptions());
  } catch (const std::exception& error) {
    Logger::error("snmp", error.what());
    return kSetUpFailed;
  }
  running.announce();

  std::unique_ptr<ChangeFeed> feed;
  if (!options.changes.empty()) {
    const int fd = openChangeStream(options.changes);
    if (fd < 0) {
      return kSetUpFailed;
    }
    feed = followChanges(*host, loop, options.changes == "-" ? "(stdin)" : options.changes, fd, agentStatus);
  }
  // The loop sleeps until a descriptor is ready or a timer (the agent's, or
  // net-snmp's) is due; between slices of changes it only polls; a reload
  // runs between two turns.
  while (!stopping && !running.failed()) {
    if (std::exchange(reloadDue, false)) {
      running.reload(reread);
      continue;
    }
    loop.runOnce(feed ? feed->applySlice() : Kel::Clock::kNever);
  }
  feed.reset();
  snmp.stop();
  host->release();
  host->counterClockIs({});  // agentStatus goes first
  if (running.failed()) {
    Logger::error("main", "stopped: the SNMP agent could not be restarted");
    return kSetUpFailed;
  }
  Logger::info("main", "stopped");
  return kOk;
}

}  // namespace QosSnmpHost
