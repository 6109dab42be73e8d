#include "host/app/Commands.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/app/AgentHost.h"
#include "host/app/ChangeFeed.h"
#include "host/app/LineReader.h"
#include "host/app/PluginLoader.h"
#include "host/app/SignalStopper.h"
#include "host/dump/MibDump.h"
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

constexpr int kOk = 0;
constexpr int kSetUpFailed = 1;
constexpr int kBadInput = 2;

// The plug-in's one feature toggle, read the way the agent reads it.
bool policerStatsTableEnabled() {
  return Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
}

// Trace, ring trace and toggles, then the plug-in. Null after printing why.
QosSnmp::RootSmFactory* setUp(const CommonOptions& common) {
  if (!common.trace.empty()) {
    if (std::optional<std::string> error = Kel::traceLevelsIs(common.trace)) {
      std::cerr << "qos-snmp-agent: --trace " << common.trace << ": " << *error << '\n';
      return nullptr;
    }
  }
  if (!common.ringTrace.empty()) {
    try {
      RingTrace::openDefaultRingTraceFile(common.ringTrace);
    } catch (const std::exception& error) {
      std::cerr << "qos-snmp-agent: --ring-trace " << common.ringTrace << ": " << error.what() << '\n';
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
    std::cerr << "qos-snmp-agent: " << error << '\n';
  }
  return factory;
}

// Loads the state document and builds the agent over it. Null after
// printing the error; `status` says which kind.
std::unique_ptr<AgentHost> buildAgent(const CommonOptions& common, const std::string& stateFile,
                                      int& status) {
  QosSnmp::RootSmFactory* factory = setUp(common);
  if (factory == nullptr) {
    status = kSetUpFailed;
    return nullptr;
  }
  Result<SwitchState> state = SwitchState::loadFile(stateFile);
  if (!state) {
    std::cerr << state.error().text() << '\n';
    status = kBadInput;
    return nullptr;
  }
  auto host = std::make_unique<AgentHost>(std::move(state.value()), policerStatsTableEnabled());
  if (std::optional<LoadError> refused = host->build(*factory)) {
    std::cerr << refused->text() << '\n';
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
  std::unique_ptr<AgentHost> host = buildAgent(common, stateFile, status);
  if (!host) {
    return status;
  }
  if (!changes.empty()) {
    if ((status = applyChangeFile(*host, changes, time)) != kOk) {
      return status;
    }
  }
  show(*host);
  host->release();
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
    std::cerr << "qos-snmp-agent: --changes " << path << ": cannot be opened\n";
    return -1;
  }
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
  return fd;
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

int runCommand(const CommonOptions& common, const RunOptions& options) {
  int status = kOk;
  std::unique_ptr<AgentHost> host = buildAgent(common, options.state, status);
  if (!host) {
    return status;
  }
  Kel::ActivityManager loop(Kel::System::clock());
  bool stopping = false;
  const SignalStopper signals(loop, [&](int) {
    stopping = true;
    loop.stop();
  });

  const MibView view(host->mib());
  SnmpFrontEnd snmp(loop, view);
  SnmpFrontEndOptions snmpOptions;
  snmpOptions.community = options.community;
  snmpOptions.snmpv3UserFile = options.snmpv3Users;
  snmpOptions.agentxPingIntervalSeconds = options.agentxPingInterval;
  if (!options.agentx.empty()) {
    snmpOptions.agentxSocket = options.agentx;
  } else {
    snmpOptions.listen = options.listen.empty() ? "udp:127.0.0.1:1161" : options.listen;
  }
  try {
    snmp.start(snmpOptions);
  } catch (const std::exception& error) {
    std::cerr << "qos-snmp-agent: " << error.what() << '\n';
    return kSetUpFailed;
  }
  if (!options.agentx.empty()) {
    std::cerr << "qos-snmp-agent: serving the QoS MIB as an AgentX subagent of " << options.agentx << '\n';
  } else {
    std::cerr << "qos-snmp-agent: serving the QoS MIB on " << snmpOptions.listen << " (community "
              << options.community << "); walk it with:\n"
              << "  snmpwalk -v2c -c " << options.community << " -M +:mib:mib/base -m QOS-SNMP-MIB "
              << snmpOptions.listen << " qosSnmpMIB\n"
              << "(from the repository's top directory, where mib/ holds the MIB module)\n";
  }

  std::unique_ptr<ChangeFeed> feed;
  if (!options.changes.empty()) {
    const int fd = openChangeStream(options.changes);
    if (fd < 0) {
      return kSetUpFailed;
    }
    ChangeFeedOptions feedOptions;
    feedOptions.requestWaiting = [&loop] { return loop.hookReadable(); };
    feed = std::make_unique<ChangeFeed>(
        loop, [&host](std::string_view line, const Source& where) { return host->apply(line, where); },
        options.changes == "-" ? "(stdin)" : options.changes, fd,
        [](ChangeFeedLog kind, const std::string& text) {
          std::cerr << (kind == ChangeFeedLog::notice ? "qos-snmp-agent: " : "") << text << '\n';
        },
        feedOptions);
  }
  // The loop sleeps until a descriptor is ready or a timer (the agent's, or
  // net-snmp's) is due; between slices of changes it only polls.
  while (!stopping) {
    loop.runOnce(feed ? feed->applySlice() : Kel::Clock::kNever);
  }
  std::cerr << "qos-snmp-agent: stopping\n";
  feed.reset();
  snmp.stop();
  host->release();
  return kOk;
}

}  // namespace QosSnmpHost
