#include "host/snmp/SnmpFrontEnd.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <stdexcept>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/agent/agent_sysORTable.h>
#include <net-snmp/library/large_fd_set.h>

#include "host/log/Logger.h"
#include "host/snmp/SnmpLogBridge.h"
#include "host/snmp/SnmpUserFile.h"

// Access control and user handling live in libnetsnmpmibs; Debian's headers
// do not declare them. (The library's names, hence NOLINT.)
extern "C" {
void init_vacm_vars(void);   // NOLINT(readability-identifier-naming)
void init_usmUser(void);     // NOLINT(readability-identifier-naming)
void init_system_mib(void);  // NOLINT(readability-identifier-naming)
void init_sysORTable(void);  // NOLINT(readability-identifier-naming)
void init_snmpEngine(void);  // NOLINT(readability-identifier-naming)
}

// The agent library's AgentX subagent state, which snmp_shutdown() does not
// reset (see SnmpFrontEnd::forgetSubagentState). Exported by
// libnetsnmpagent, declared by no installed header.
extern "C" {
extern netsnmp_session* main_session;          // NOLINT(readability-identifier-naming)
extern netsnmp_session* agentx_callback_sess;  // NOLINT(readability-identifier-naming)
extern int callback_master_num;                // NOLINT(readability-identifier-naming)
// NOLINTNEXTLINE(readability-identifier-naming)
int handle_subagent_response(int operation, netsnmp_session* session, int requestId, netsnmp_pdu* pdu,
                             void* magic);
// NOLINTNEXTLINE(readability-identifier-naming)
int subagent_startup(int majorId, int minorId, void* serverArgument, void* clientArgument);
}

namespace QosSnmpHost {

namespace {

// The front end that net-snmp's global state belongs to, if any.
SnmpFrontEnd* startedFrontEnd = nullptr;

// The library sets its subagent up once per process (a static counter in
// subagent_init()) and resets that only when it shuts down a connected
// session. After a subagent stopped while its master was away, the next
// subagent start must do the two set-up steps itself.
bool subagentSetUpSkipped = false;

constexpr const char* kMasterName = "qos-snmp-agent";
constexpr std::string_view kComponent = "snmp";
constexpr const char* kSubagentName = "qos-snmp-agent-agentx";

// What the master serves besides the module: the system group
// (1.3.6.1.2.1.1, sysORTable included) and the SNMPv3 engine scalars
// (snmpEngine, 1.3.6.1.6.3.10.2.1).
constexpr const char* kSystemGroup = ".1.3.6.1.2.1.1";
constexpr const char* kSnmpEngineGroup = ".1.3.6.1.6.3.10.2.1";
constexpr std::size_t kMaxSystemText = 255;

std::string dotted(OidSpan oid) {
  std::string text;
  for (const std::uint32_t subId : oid) {
    text += '.' + std::to_string(subId);
  }
  return text;
}

// "udp:127.0.0.1:1161" or "udp6:[::1]:1161" for a bound UDP or TCP socket;
// empty for any other descriptor (pipes, Unix sockets).
std::string boundAddressOf(int fd) {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  int type = 0;
  socklen_t typeLength = sizeof type;
  if (::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
      ::getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &typeLength) != 0) {
    return {};
  }
  const std::string transport = type == SOCK_STREAM ? "tcp" : "udp";
  char host[INET6_ADDRSTRLEN] = {};
  if (address.ss_family == AF_INET) {
    const auto* in = reinterpret_cast<const sockaddr_in*>(&address);
    ::inet_ntop(AF_INET, &in->sin_addr, host, sizeof host);
    return transport + ':' + host + ':' + std::to_string(ntohs(in->sin_port));
  }
  if (address.ss_family == AF_INET6) {
    const auto* in6 = reinterpret_cast<const sockaddr_in6*>(&address);
    ::inet_ntop(AF_INET6, &in6->sin6_addr, host, sizeof host);
    return transport + "6:[" + host + "]:" + std::to_string(ntohs(in6->sin6_port));
  }
  return {};
}

// Seconds with one decimal.
std::string secondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", seconds);
  return text;
}

bool isSystemText(const std::string& text) {
  return text.size() <= kMaxSystemText &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 127; });
}

bool isPlainWord(const std::string& word) {
  return !word.empty() && word.size() <= 255 && std::all_of(word.begin(), word.end(), [](char c) {
    return c > ' ' && c < 127 && c != '"' && c != '\'' && c != '\\' && c != '#';
  });
}

// The access rules of the embedded master, as configuration lines: read
// and write views are both the module subtree, so that a SET of one of our
// objects reaches the read-only registration and is answered notWritable.
std::vector<std::string> masterConfigLines(const SnmpFrontEndOptions& options, const SnmpUserFile& users) {
  const std::string view = dotted(MibView::moduleOid());
  // Reads see the system group and the engine scalars too; writes only the
  // module (SETs elsewhere are refused by access control).
  std::vector<std::string> lines = {
      "view qosModule included " + view,
      "view qosRead included " + view,
      std::string("view qosRead included ") + kSystemGroup,
      std::string("view qosRead included ") + kSnmpEngineGroup,
  };
  if (!options.community.empty()) {
    lines.insert(lines.end(), {
                                  "com2sec qosCommunity default " + options.community,
                                  "com2sec6 qosCommunity default " + options.community,
                                  "group qosCommunityGroup v1 qosCommunity",
                                  "group qosCommunityGroup v2c qosCommunity",
                                  "access qosCommunityGroup \"\" any noauth exact qosRead qosModule none",
                              });
  }
  for (const SnmpUserFile::User& user : users.users()) {
    lines.push_back("createUser " + user.name + ' ' + user.authProtocol + ' ' + user.authPassphrase + ' ' +
                    user.privProtocol + ' ' + user.privPassphrase);
    lines.emplace_back("group qosUserGroup usm " + user.name);
  }
  if (!users.users().empty()) {
    lines.emplace_back("access qosUserGroup \"\" usm priv exact qosRead qosModule none");
  }
  // The system group's values; the library's own handlers serve them.
  lines.push_back("sysdescr " + options.sysDescr);
  lines.push_back("sysobjectid " + dotted(options.sysObjectId.empty() ? MibView::agentObjectId()
                                                                      : OidSpan(options.sysObjectId)));
  for (const auto& [token, value] :
       {std::pair{"syscontact ", &options.sysContact}, std::pair{"sysname ", &options.sysName},
        std::pair{"syslocation ", &options.sysLocation}}) {
    if (!value->empty()) {
      lines.push_back(token + *value);
    }
  }
  // A switch forwards at layers 2 and 3 and runs applications.
  lines.emplace_back("sysservices 78");
  return lines;
}

void checkOptions(const SnmpFrontEndOptions& options) {
  if (options.listen.empty() == options.agentxSocket.empty()) {
    throw std::runtime_error("SNMP: give either an address to listen on or an AgentX socket, not both");
  }
  if (!options.listen.empty()) {
    if (!isPlainWord(options.listen)) {
      throw std::runtime_error("SNMP: listen address '" + options.listen + "' is not a transport address");
    }
    if (!options.community.empty() && !isPlainWord(options.community)) {
      throw std::runtime_error(
          "SNMP: the community must be 1 to 255 printable characters without blanks, quotes, backslashes or "
          "'#'");
    }
    if (options.community.empty() && options.snmpv3UserFile.empty()) {
      throw std::runtime_error("SNMP: without SNMPv1/v2c access, SNMPv3 users are required");
    }
    for (const std::string* text :
         {&options.sysDescr, &options.sysContact, &options.sysName, &options.sysLocation}) {
      if (!isSystemText(*text)) {
        throw std::runtime_error("SNMP: system group values must be at most 255 printable characters");
      }
    }
    if (options.sysObjectId.size() > 128) {
      throw std::runtime_error("SNMP: sysObjectID is longer than 128 sub-identifiers");
    }
    if (options.persistentDir.find('\n') != std::string::npos) {
      throw std::runtime_error("SNMP: the persistent directory's name must be one line");
    }
  } else if (options.agentxPingIntervalSeconds < 1) {
    throw std::runtime_error("SNMP: the AgentX ping interval must be at least 1 second");
  }
}

// Nothing from the system: no configuration file, no persistent state but
// the agent's own (`persistentDir`, when given), no MIB module file; alarms
// run from the loop, never from SIGALRM. What the library still looks up in
// its configuration and persistent directories (certificate indexes, for
// instance) it looks up in `privateDir`.
void isolateLibrary(const std::string& privateDir, const std::string& persistentDir) {
  const bool persist = !persistentDir.empty();
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_CONFIGURATION_DIR, privateDir.c_str());
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR,
                        persist ? persistentDir.c_str() : privateDir.c_str());
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_MIBDIRS, "");
  // Reading configuration files is needed to load the persistent file; the
  // configuration directory is the empty private one.
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, persist ? 0 : 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, persist ? 0 : 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, persist ? 0 : 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, persist ? 0 : 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_ALARM_DONT_USE_SIG, 1);
  char noMibs[] = "mibs :";
  netsnmp_config_remember(noMibs);
}

// A write to a master that has just gone away must not end the process. A
// disposition the host installed itself is kept.
void ignoreBrokenPipes() {
  struct sigaction current {};
  if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL) {
    ::signal(SIGPIPE, SIG_IGN);
  }
}

// Made before the library looks for it, so that it does not announce
// making it.
void makeCertIndexes(const std::string& dir) { ::mkdir((dir + "/cert_indexes").c_str(), 0700); }

// An empty directory of our own, for the library's configuration and
// persistent paths.
std::string makePrivateDir() {
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/qos-snmp-agent.XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("SNMP: cannot create a private directory " + pattern + ": " +
                             std::strerror(errno));
  }
  makeCertIndexes(pattern);
  return pattern;
}

void remember(const std::string& line) {
  std::vector<char> text(line.begin(), line.end());
  text.push_back('\0');
  netsnmp_config_remember(text.data());
}

bool userExists(const std::string& name) {
  for (const usmUser* user = usm_get_userList(); user != nullptr; user = user->next) {
    if (user->name != nullptr && name == user->name) {
      return true;
    }
  }
  return false;
}

// The library reads SNMPCONFPATH and SNMP_PERSISTENT_FILE from the
// environment ahead of the paths it is given: a configuration path of the
// user's would be read, and the persistent directory ignored. While the
// library reads or writes its files, they are hidden; the environment is
// restored afterwards.
class LibraryEnvironmentHidden {
 public:
  LibraryEnvironmentHidden() {
    for (const char* name : kNames) {
      const char* value = std::getenv(name);
      saved_.emplace_back(name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
      ::unsetenv(name);
    }
  }
  ~LibraryEnvironmentHidden() {
    for (const auto& [name, value] : saved_) {
      if (value) {
        ::setenv(name, value->c_str(), 1);
      }
    }
  }
  LibraryEnvironmentHidden(const LibraryEnvironmentHidden&) = delete;
  LibraryEnvironmentHidden& operator=(const LibraryEnvironmentHidden&) = delete;

 private:
  static constexpr const char* kNames[] = {"SNMPCONFPATH", "SNMP_PERSISTENT_FILE"};
  std::vector<std::pair<const char*, std::optional<std::string>>> saved_;
};

// The users of the user file live in memory only: none is saved to the
// persistent directory (a user taken out of the file must lose access at
// the next start), and a user found there that the file does not name is
// removed.
void keepOnlyUsersOf(const SnmpUserFile& users) {
  usmUser* user = usm_get_userList();
  while (user != nullptr) {
    usmUser* following = user->next;
    const bool listed = std::any_of(users.users().begin(), users.users().end(), [user](const auto& entry) {
      return user->name != nullptr && entry.name == user->name;
    });
    if (listed) {
      user->userStorageType = ST_VOLATILE;
    } else {
      usm_free_user(usm_remove_user(user));
    }
    user = following;
  }
}

void setValue(netsnmp_variable_list* varBind, const SnmpValue& value) {
  switch (value.type) {
    case SnmpValue::Type::integer32: {
      const long integer = value.integer;
      snmp_set_var_typed_value(varBind, ASN_INTEGER, &integer, sizeof integer);
      break;
    }
    case SnmpValue::Type::unsigned32: {
      const auto number = static_cast<u_long>(value.number);
      snmp_set_var_typed_value(varBind, ASN_UNSIGNED, &number, sizeof number);
      break;
    }
    case SnmpValue::Type::counter64: {
      counter64 number{};
      number.high = static_cast<u_long>(value.number >> 32);
      number.low = static_cast<u_long>(value.number & 0xffffffffU);
      snmp_set_var_typed_value(varBind, ASN_COUNTER64, &number, sizeof number);
      break;
    }
    case SnmpValue::Type::octetString:
      snmp_set_var_typed_value(varBind, ASN_OCTET_STR, value.octets.data(), value.octets.size());
      break;
    case SnmpValue::Type::counter32:
    case SnmpValue::Type::timeTicks: {
      const auto number = static_cast<u_long>(value.number);
      snmp_set_var_typed_value(varBind,
                               value.type == SnmpValue::Type::counter32 ? ASN_COUNTER : ASN_TIMETICKS,
                               &number, sizeof number);
      break;
    }
  }
}

int exceptionType(SnmpException exception) {
  switch (exception) {
    case SnmpException::noSuchObject:
      return SNMP_NOSUCHOBJECT;
    case SnmpException::noSuchInstance:
      return SNMP_NOSUCHINSTANCE;
    case SnmpException::endOfMibView:
      return SNMP_ENDOFMIBVIEW;
    case SnmpException::none:
      break;
  }
  return SNMP_NOSUCHOBJECT;
}

}  // namespace

SnmpFrontEnd::SnmpFrontEnd(Kel::ActivityManager& loop, const MibView& view) : loop_(loop), view_(view) {}

SnmpFrontEnd::~SnmpFrontEnd() { stop(); }

void SnmpFrontEnd::start(const SnmpFrontEndOptions& options) {
  if (started_ || startedFrontEnd != nullptr) {
    throw std::runtime_error("SNMP: the agent is already started in this process");
  }
  checkOptions(options);
  const SnmpUserFile users =
      options.snmpv3UserFile.empty() ? SnmpUserFile() : SnmpUserFile::read(options.snmpv3UserFile);
  master_ = !options.listen.empty();
  applicationName_ = !options.applicationName.empty() ? options.applicationName
                     : master_                        ? kMasterName
                                                      : kSubagentName;
  varbindsAnswered_ = 0;
  boundAddresses_.clear();
  agentxSocket_ = options.agentxSocket;
  agentxPingIntervalSeconds_ = options.agentxPingIntervalSeconds;
  SnmpLogBridge::install();
  configureLibrary(options, users);
  startLibrary(users);
  if (master_) {
    errno = 0;
    if (init_master_agent() != 0) {
      const int reason = errno;
      stop();
      throw std::runtime_error(
          "SNMP: cannot listen on '" + options.listen + "': " +
          (reason != 0 ? std::strerror(reason) : "not an address to listen on ([udp:|tcp:]HOST[:PORT])"));
    }
  }
  for (const SnmpUserFile::User& user : users.users()) {
    if (!userExists(user.name)) {
      stop();
      throw std::runtime_error("SNMP: SNMPv3 user '" + user.name + "' from " + options.snmpv3UserFile +
                               " was not created");
    }
  }
  registerSubtree();
  loop_.turnHookIs(this);
  if (master_) {
    logBoundAddresses();
  } else {
    subagentConnected_ = main_session != nullptr;
    everConnected_ = subagentConnected_;
    if (subagentConnected_) {
      Logger::info(kComponent, "connected to the AgentX master at " + agentxSocket_);
    } else {
      lostAt_ = std::chrono::steady_clock::now();
      Logger::warning(kComponent, "no AgentX master at " + agentxSocket_ + " yet, retrying every " +
                                      std::to_string(agentxPingIntervalSeconds_) + " s");
    }
  }
}

void SnmpFrontEnd::logBoundAddresses() {
  std::vector<int> fds;
  beforeWait(fds);
  for (const int fd : fds) {
    std::string address = boundAddressOf(fd);
    if (!address.empty()) {
      Logger::info(kComponent, "listening on " + address);
      boundAddresses_.push_back(std::move(address));
    }
  }
}

void SnmpFrontEnd::followSubagentConnection() {
  const bool connected = main_session != nullptr;
  if (connected == subagentConnected_) {
    return;
  }
  subagentConnected_ = connected;
  const auto now = std::chrono::steady_clock::now();
  if (!connected) {
    lostAt_ = now;
    Logger::warning(kComponent, "lost the AgentX master at " + agentxSocket_ + ", retrying every " +
                                    std::to_string(agentxPingIntervalSeconds_) + " s");
    return;
  }
  const double away = std::chrono::duration<double>(now - lostAt_).count();
  Logger::info(kComponent, (everConnected_ ? "connected again to the AgentX master at "
                                           : "connected to the AgentX master at ") +
                               agentxSocket_ + " after " + secondsText(away) + " s");
  everConnected_ = true;
}

void SnmpFrontEnd::configureLibrary(const SnmpFrontEndOptions& options, const SnmpUserFile& users) {
  privateDir_ = makePrivateDir();
  const std::string persistentDir = master_ ? options.persistentDir : std::string();
  if (!persistentDir.empty()) {
    std::error_code error;
    std::filesystem::create_directories(persistentDir, error);
    if (error || !std::filesystem::is_directory(persistentDir)) {
      std::filesystem::remove_all(privateDir_, error);
      throw std::runtime_error("SNMP: cannot use '" + persistentDir + "' as the persistent directory");
    }
  }
  if (!persistentDir.empty()) {
    makeCertIndexes(persistentDir);
  }
  isolateLibrary(privateDir_, persistentDir);
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_MASTER, 0);
  // The daemon name that TCP wrappers rules (hosts.allow, hosts.deny) match.
  netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PROGNAME, applicationName_.c_str());
  // One log line per received packet is noise for an agent walked all day.
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS, 1);
  if (master_) {
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 0);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS, options.listen.c_str());
    for (const std::string& line : masterConfigLines(options, users)) {
      remember(line);
    }
  } else {
    ignoreBrokenPipes();
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options.agentxSocket.c_str());
    // A configuration line, because the agent library sets its default
    // interval during init_agent().
    remember("agentxPingInterval " + std::to_string(options.agentxPingIntervalSeconds));
  }
  // The agent library would otherwise open a SMUX listener on every
  // address (TCP port 199).
  char noSmux[] = "-smux";
  add_to_init_list(noSmux);
}

void SnmpFrontEnd::startLibrary(const SnmpUserFile& users) {
  const LibraryEnvironmentHidden hidden;
  init_agent(applicationName_.c_str());
  if (master_) {
    init_vacm_vars();
    init_usmUser();
    init_system_mib();
    init_sysORTable();
    init_snmpEngine();
  }
  init_snmp(applicationName_.c_str());
  startedFrontEnd = this;
  started_ = true;
  if (master_) {
    keepOnlyUsersOf(users);
    // Saved at once (engine ID, the boot count just taken), so that an
    // agent killed later still comes back as the same engine.
    snmp_store(applicationName_.c_str());
  }
  if (!master_ && subagentSetUpSkipped) {
    agentx_callback_sess =
        netsnmp_callback_open(callback_master_num, handle_subagent_response, nullptr, nullptr);
    subagent_startup(0, 0, nullptr, nullptr);
  }
}

void SnmpFrontEnd::registerSubtree() {
  const OidSpan module = MibView::moduleOid();
  std::vector<oid> root(module.begin(), module.end());
  registration_ = netsnmp_create_handler_registration("qosSnmpMIB", &SnmpFrontEnd::handle, root.data(),
                                                      root.size(), HANDLER_CAN_RONLY);
  if (registration_ == nullptr) {
    stop();
    throw std::runtime_error("SNMP: cannot create the registration of " + dotted(module));
  }
  registration_->handler->myvoid = this;
  if (netsnmp_register_handler(registration_) != MIB_REGISTERED_OK) {
    // netsnmp_register_handler frees the registration when it fails.
    registration_ = nullptr;
    stop();
    throw std::runtime_error("SNMP: cannot register " + dotted(module));
  }
  if (master_) {
    register_sysORTable(root.data(), root.size(), "The QoS MIB: class maps, policy maps, statistics, ECN");
  }
}

void SnmpFrontEnd::stop() {
  if (!started_) {
    return;
  }
  loop_.turnHookDel(this);
  if (registration_ != nullptr) {
    if (master_) {
      const OidSpan module = MibView::moduleOid();
      std::vector<oid> root(module.begin(), module.end());
      unregister_sysORTable(root.data(), root.size());
    }
    netsnmp_unregister_handler(registration_);
    registration_ = nullptr;
  }
  shutDownLibrary();
  started_ = false;
  startedFrontEnd = nullptr;
}

void SnmpFrontEnd::shutDownLibrary() {
  // A connected subagent's session is shut down by a library callback,
  // which also re-arms the library's subagent set-up.
  const bool subagentConnected = !master_ && main_session != nullptr;
  const LibraryEnvironmentHidden hidden;
  snmp_shutdown(applicationName_.c_str());
  if (master_) {
    shutdown_master_agent();
  }
  shutdown_agent();
  // The shutdown removed the log handler; the library may still log.
  SnmpLogBridge::install();
  forgetSubagentState(subagentConnected);
  std::error_code ignored;
  std::filesystem::remove_all(privateDir_, ignored);
  privateDir_.clear();
}

void SnmpFrontEnd::forgetSubagentState(bool subagentConnected) const {
  // Both sessions are closed by now; the library keeps pointing at them.
  main_session = nullptr;
  agentx_callback_sess = nullptr;
  if (!master_) {
    subagentSetUpSkipped = !subagentConnected;
  }
}

double SnmpFrontEnd::beforeWait(std::vector<int>& fds) {
  netsnmp_large_fd_set readable;
  netsnmp_large_fd_set_init(&readable, FD_SETSIZE);
  int maxFd = 0;
  timeval timeout{};
  int block = 1;
  snmp_select_info2(&maxFd, &readable, &timeout, &block);
  for (int fd = 0; fd < maxFd; ++fd) {
    if (NETSNMP_LARGE_FD_ISSET(fd, &readable)) {
      fds.push_back(fd);
    }
  }
  netsnmp_large_fd_set_cleanup(&readable);
  if (block != 0) {
    return std::numeric_limits<double>::infinity();
  }
  return static_cast<double>(timeout.tv_sec) + static_cast<double>(timeout.tv_usec) / 1e6;
}

void SnmpFrontEnd::afterWait(const std::vector<int>& readyFds) {
  // The model changes only outside this hook (on the same thread).
  const MibView::ModelUnchanged unchanged(view_);
  if (!readyFds.empty()) {
    netsnmp_large_fd_set ready;
    netsnmp_large_fd_set_init(&ready,
                              std::max(FD_SETSIZE, *std::max_element(readyFds.begin(), readyFds.end()) + 1));
    for (const int fd : readyFds) {
      NETSNMP_LARGE_FD_SET(fd, &ready);
    }
    snmp_read2(&ready);
    netsnmp_large_fd_set_cleanup(&ready);
  } else {
    snmp_timeout();
  }
  run_alarms();
  netsnmp_check_outstanding_agent_requests();
  if (!master_) {
    followSubagentConnection();
  }
}

int SnmpFrontEnd::handle(netsnmp_mib_handler_s* handler, netsnmp_handler_registration_s* /*registration*/,
                         netsnmp_agent_request_info_s* requestInfo, netsnmp_request_info_s* requests) {
  // No exception may cross the library's C frames: a request that cannot
  // be answered gets genErr.
  try {
    static_cast<SnmpFrontEnd*>(handler->myvoid)->answer(requestInfo, requests);
  } catch (...) {
    netsnmp_request_set_error_all(requests, SNMP_ERR_GENERR);
  }
  return SNMP_ERR_NOERROR;
}

void SnmpFrontEnd::answer(netsnmp_agent_request_info_s* requestInfo, netsnmp_request_info_s* requests) {
  const int mode = requestInfo->mode;
  for (netsnmp_request_info* request = requests; request != nullptr; request = request->next) {
    if (request->processed != 0) {
      continue;
    }
    netsnmp_variable_list* varBind = request->requestvb;
    if (mode != MODE_GET && mode != MODE_GETNEXT && mode != MODE_GETBULK) {
      netsnmp_set_request_error(requestInfo, request, SNMP_ERR_NOTWRITABLE);
      continue;
    }
    requested_.assign(varBind->name, varBind->name + varBind->name_length);
    ++varbindsAnswered_;
    if (mode == MODE_GET) {
      view_.get(requested_, answer_);
      if (answer_.exception == SnmpException::none) {
        setValue(varBind, answer_.value);
      } else {
        netsnmp_set_request_error(requestInfo, request, exceptionType(answer_.exception));
      }
      continue;
    }
    // GETNEXT: an inclusive request (AgentX) may be answered by the OID itself.
    if (request->inclusive != 0) {
      view_.get(requested_, answer_);
    }
    if (request->inclusive == 0 || answer_.exception != SnmpException::none) {
      view_.next(requested_, answer_);
    }
    if (answer_.exception != SnmpException::none) {
      // Nothing after it here: left unanswered, the agent goes on to the
      // next registration (or answers endOfMibView).
      continue;
    }
    // The view's OIDs are short: names are at most 30 bytes.
    assert(answer_.oid.size() <= MAX_OID_LEN);
    oid name[MAX_OID_LEN];
    std::copy(answer_.oid.begin(), answer_.oid.end(), name);
    snmp_set_var_objid(varBind, name, answer_.oid.size());
    setValue(varBind, answer_.value);
  }
}

}  // namespace QosSnmpHost
