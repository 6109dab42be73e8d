#include "host/app/RunningAgent.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "host/BuildVersion.h"
#include "host/app/PluginLoader.h"
#include "host/log/Logger.h"
#include "kel/Trace.h"

namespace QosSnmpHost {

namespace {

constexpr const char* kDefaultListen = "udp:127.0.0.1:1161";

// The SNMPv3 user file's text, compared across SIGHUP; unreadable: a
// marker that differs from every text.
std::string readUsers(const std::string& path) {
  if (path.empty()) {
    return {};
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    return std::string(1, '\0') + "unreadable";
  }
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Where the tools find the MIB modules: the installed directories next to
// the program, else the repository's (run from its top directory).
std::string mibSearchHint() {
  std::error_code ignored;
  const std::filesystem::path share = std::filesystem::path(PluginLoader::programDir()) / ".." / "share";
  const std::filesystem::path base = share / "qos-snmp-agent" / "mibs";
  if (std::filesystem::exists(base / "SNMPv2-SMI.txt", ignored)) {
    const std::filesystem::path mibs = std::filesystem::weakly_canonical(share / "snmp" / "mibs", ignored);
    return "-M +" + mibs.string() + ":" + std::filesystem::weakly_canonical(base, ignored).string();
  }
  return "-M +:mib:mib/base";
}

}  // namespace

RunningAgent::RunningAgent(CommonOptions common, RunOptions options, SnmpFrontEnd& snmp)
    : common_(std::move(common)), options_(std::move(options)), snmp_(snmp) {
  usersText_ = readUsers(options_.snmpv3Users);
}

SnmpFrontEndOptions RunningAgent::snmpOptions() const {
  SnmpFrontEndOptions snmpOptions;
  snmpOptions.community = options_.noV2c ? std::string() : options_.community;
  snmpOptions.snmpv3UserFile = options_.snmpv3Users;
  snmpOptions.persistentDir = options_.snmpPersistentDir;
  // sysDescr: the program, its version (as --version says), what it is.
  snmpOptions.sysDescr = "qos-snmp-agent " QOS_BUILD_VERSION ": the QoS SNMP agent of a switch";
  snmpOptions.sysContact = options_.sysContact;
  snmpOptions.sysName = options_.sysName;
  snmpOptions.sysLocation = options_.sysLocation;
  snmpOptions.agentxPingIntervalSeconds = options_.agentxPingInterval;
  if (!options_.agentx.empty()) {
    snmpOptions.agentxSocket = options_.agentx;
  } else if (!listenNow_.empty()) {
    snmpOptions.listen = listenNow_;
  } else {
    snmpOptions.listen = options_.listen.empty() ? kDefaultListen : options_.listen;
  }
  return snmpOptions;
}

void RunningAgent::announce() const {
  if (!options_.agentx.empty()) {
    Logger::info("main", "serving the QoS MIB as an AgentX subagent of " + options_.agentx +
                             (snmp_.subagentConnected() ? "" : " once connected"));
    return;
  }
  const std::vector<std::string>& bound = snmp_.boundAddresses();
  const std::string address = bound.empty() ? snmpOptions().listen : bound.front();
  if (options_.noV2c) {
    Logger::info("main", "serving the QoS MIB on " + address + " to SNMPv3 users only (authPriv)");
    return;
  }
  Logger::info("main", "serving the QoS MIB on " + address + " (community " + options_.community + ")");
  Logger::info("main", "walk it with: snmpwalk -v2c -c " + options_.community + " " + mibSearchHint() +
                           " -m QOS-SNMP-MIB " + address + " qosSnmpMIB");
}

void RunningAgent::reload(const OptionsReader& reread) {
  if (!reread) {
    Logger::warning("main", "SIGHUP: nothing to re-read");
    return;
  }
  CommonOptions common;
  RunOptions options;
  std::string error;
  if (!reread(common, options, error)) {
    Logger::error("config", "SIGHUP: configuration not applied, the running one stays: " + error);
    return;
  }
  Logger::info("main", "SIGHUP: re-reading the configuration" +
                           (common.config.empty() ? std::string(" (no file)") : " from " + common.config));
  applyLogAndTrace(common);
  reportUnapplied(common, options);
  applySnmpAccess(options);
}

void RunningAgent::applyLogAndTrace(const CommonOptions& common) {
  if (common.log != common_.log || common.logLevel != common_.logLevel) {
    const std::optional<LogDestination> destination = Logger::destinationNamed(common.log);
    const std::optional<LogLevel> level = Logger::levelNamed(common.logLevel);
    if (destination && level) {
      Logger::destinationIs(*destination);
      Logger::thresholdIs(*level);
      Logger::info("main", "SIGHUP: logging to " + common.log + " from level " + common.logLevel);
      common_.log = common.log;
      common_.logLevel = common.logLevel;
    }
  }
  if (common.trace != common_.trace) {
    // Exactly the new levels: every module off first.
    if (std::optional<std::string> error = Kel::traceLevelsIs("*/;" + common.trace)) {
      Logger::error("main", "SIGHUP: --trace " + common.trace + " not applied: " + *error);
    } else {
      Logger::info("main", "SIGHUP: trace levels now '" + common.trace + "'");
      common_.trace = common.trace;
    }
  }
}

void RunningAgent::reportUnapplied(const CommonOptions& common, const RunOptions& options) const {
  const auto unapplied = [](const char* name, const std::string& was, const std::string& now) {
    if (was != now) {
      Logger::warning("main", std::string("SIGHUP: ") + name + " changed from '" + was + "' to '" + now +
                                  "'; not applied until the next start");
    }
  };
  unapplied("state", options_.state, options.state);
  unapplied("changes", options_.changes, options.changes);
  unapplied("listen", options_.listen, options.listen);
  unapplied("agentx", options_.agentx, options.agentx);
  unapplied("agentx-ping-interval", std::to_string(options_.agentxPingInterval),
            std::to_string(options.agentxPingInterval));
  unapplied("plugin", common_.plugin, common.plugin);
  unapplied("ring-trace", common_.ringTrace, common.ringTrace);
  unapplied("toggles", common_.toggles, common.toggles);
}

void RunningAgent::applySnmpAccess(const RunOptions& options) {
  const std::string usersText = readUsers(options.snmpv3Users);
  const bool changed = options.community != options_.community ||
                       options.snmpv3Users != options_.snmpv3Users || usersText != usersText_;
  if (!changed) {
    return;
  }
  if (!options_.agentx.empty()) {
    Logger::warning("main",
                    "SIGHUP: community and SNMPv3 users are the AgentX master's; nothing to apply here");
    return;
  }
  RunOptions next = options_;
  next.community = options.community;
  next.snmpv3Users = options.snmpv3Users;
  // The same sockets again, ports the system chose included.
  std::string bound;
  for (const std::string& address : snmp_.boundAddresses()) {
    bound += (bound.empty() ? "" : ",") + address;
  }
  listenNow_ = bound;
  const RunOptions previous = std::exchange(options_, next);
  snmp_.stop();
  try {
    snmp_.start(snmpOptions());
    usersText_ = usersText;
    Logger::info("main",
                 "SIGHUP: SNMP agent restarted with community " + options_.community +
                     (options_.snmpv3Users.empty() ? "" : " and the users of " + options_.snmpv3Users));
    return;
  } catch (const std::exception& error) {
    Logger::error("main", std::string("SIGHUP: community and SNMPv3 users not applied: ") + error.what());
  }
  options_ = previous;
  try {
    snmp_.start(snmpOptions());
    Logger::info("main", "SIGHUP: SNMP agent serving again with the previous community and users");
  } catch (const std::exception& error) {
    Logger::error("main", std::string("SIGHUP: the SNMP agent cannot restart: ") + error.what());
    failed_ = true;
  }
}

}  // namespace QosSnmpHost
