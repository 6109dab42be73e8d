// QosSnmpHost::SnmpFrontEnd: serves a MibView over SNMP with net-snmp's
// agent library, on the reactor thread, inside the one event loop.
//
// Two modes, chosen by the options:
//
//   embedded master agent   listens on `listen` (net-snmp transport syntax,
//                           "udp:127.0.0.1:1161"), bound to that address
//                           only. SNMPv1/v2c read access for `community`
//                           from any source (none when it is empty);
//                           optional SNMPv3 users (authPriv only) from an
//                           SnmpUserFile. It also answers the system group
//                           (sysDescr, sysObjectID, sysUpTime, sysContact,
//                           sysName, sysLocation, sysServices, sysORTable)
//                           and the SNMPv3 engine scalars (snmpEngineID,
//                           snmpEngineBoots, snmpEngineTime), with the
//                           library's own implementation of both.
//   AgentX subagent         connects to the master at `agentxSocket`
//                           ("/path", "unix:/path" or "tcp:127.0.0.1:705")
//                           and registers the module subtree there. While
//                           the master is away, it tries again every
//                           `agentxPingIntervalSeconds`; once connected it
//                           pings at that interval and re-registers by
//                           itself after the master restarts.
//
// What it answers: one read-only registration of the module subtree
// (MibView::moduleOid(), 1.3.6.1.4.1.32473.1). GET is MibView::get(), GETNEXT
// MibView::next(); GETBULK reaches the handler as GETNEXT per repetition.
// Every varbind of a request is answered in the one handler call. SET is
// refused with notWritable: the access control lets SETs of the subtree
// through to the handler (so managers learn that the objects are read-only
// rather than that they lack rights), and the registration itself is
// read-only. Nothing outside the subtree is registered.
//
// What it never touches: the system's SNMP configuration and state. No
// configuration file is read (the access rules are handed to the library as
// in-memory lines), no MIB module file is loaded, and no SMUX port is
// opened. The library's configuration path points at a private directory
// under $TMPDIR (or /tmp), removed by stop(). Its persistent path is that
// private directory too, and nothing is kept, unless `persistentDir` names
// a directory of the agent's own: the master then keeps its SNMPv3 engine
// ID there (in <persistentDir>/<applicationName>.conf) and counts its starts
// in snmpEngineBoots; the file is written as soon as the agent has started,
// so a killed agent keeps its identity too. Two things remain
// of the system's: the agent library checks every request against the TCP
// wrappers rules (/etc/hosts.allow, /etc/hosts.deny) under the application
// name.
//
// Logging: the library's own lines go to the Logger (SnmpLogBridge), and so
// do the front end's, under the component "snmp": the master's bound
// addresses with their ports once listening; the reason (errno text) when
// it cannot listen; a subagent's "connected to the AgentX master at ...",
// "no AgentX master at ... yet" and "lost the AgentX master at ...,
// retrying every N s", and "connected again ... after N s".
//
// Process-wide effects: a subagent sets SIGPIPE to ignored when it is still
// at its default (a master that goes away must not end the process), and
// SNMPCONFPATH and SNMP_PERSISTENT_FILE are taken out of the environment
// while the library starts and stops (they would override the paths above),
// then put back.
//
// Event loop: the front end is a TurnHook of the ActivityManager. Each turn
// it asks net-snmp for its current descriptors and next timeout (never
// cached: a reconnect may reuse a descriptor number), and after the wait
// reads what is ready, runs request timeouts, alarms (AgentX pings and
// reconnects) and delayed requests, holding MibView::ModelUnchanged
// meanwhile: nothing in that hook changes the model. No thread, no
// signal-driven alarm.
//
// One per process, and at most one started at a time: net-snmp's agent
// state is global. start() may follow stop() in the same process. Call
// everything on the reactor thread; the view (and its model) and the loop
// must outlive the started front end.
//
//   SnmpFrontEnd snmp(loop, view);
//   SnmpFrontEndOptions options;
//   options.listen = "udp:127.0.0.1:1161";
//   snmp.start(options);        // throws std::runtime_error on bad options
//   loop.run();
//   snmp.stop();
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/snmp/MibView.h"
#include "kel/ActivityManager.h"

struct netsnmp_mib_handler_s;
struct netsnmp_handler_registration_s;
struct netsnmp_agent_request_info_s;
struct netsnmp_request_info_s;

namespace QosSnmpHost {

class SnmpUserFile;

struct SnmpFrontEndOptions {
  // Embedded master agent: the address to listen on. Exactly one of listen
  // and agentxSocket is set.
  std::string listen;
  // SNMPv1/v2c community with read access (printable, no blanks or quotes);
  // empty: no SNMPv1/v2c access at all, SNMPv3 users only (then at least
  // one user is required).
  std::string community = "public";
  // Where the master keeps its SNMPv3 engine ID and boot count across
  // restarts (created when missing); empty: a new engine ID every start.
  std::string persistentDir;

  // The master's system group. Text values: at most 255 printable
  // characters. Left empty, sysName is the host's name and sysContact and
  // sysLocation the library's placeholder.
  std::string sysDescr;
  Oid sysObjectId;  // empty: MibView::agentObjectId()
  std::string sysContact;
  std::string sysName;
  std::string sysLocation;
  // SNMPv3 users (SnmpUserFile format); empty: none.
  std::string snmpv3UserFile;

  // AgentX subagent: the master's AgentX socket.
  std::string agentxSocket;
  // Ping, and reconnect, interval in whole seconds (at least 1).
  int agentxPingIntervalSeconds = 15;

  // net-snmp's application name (log prefix, configuration type); empty:
  // "qos-snmp-agent" for the master, "qos-snmp-agent-agentx" for the
  // subagent.
  std::string applicationName;
};

class SnmpFrontEnd : private Kel::ActivityManager::TurnHook {
 public:
  SnmpFrontEnd(Kel::ActivityManager& loop, const MibView& view);
  ~SnmpFrontEnd() override;
  SnmpFrontEnd(const SnmpFrontEnd&) = delete;
  SnmpFrontEnd& operator=(const SnmpFrontEnd&) = delete;

  // Checks the options (and reads the SNMPv3 user file) before touching
  // net-snmp, then starts the agent and joins the loop. Throws
  // std::runtime_error naming the problem: bad options, an unreadable or
  // malformed user file, an address that cannot be listened on, another
  // front end (this one included) already started. A subagent whose master
  // is not there yet starts anyway and keeps trying.
  void start(const SnmpFrontEndOptions& options);
  // Unregisters, closes every SNMP session and leaves the loop. Harmless
  // when not started.
  void stop();
  bool started() const { return started_; }

  // Varbinds the handler answered (GET and GETNEXT) since the last start().
  std::size_t varbindsAnswered() const { return varbindsAnswered_; }
  // The embedded master's bound sockets, "udp:127.0.0.1:1161", as the
  // system reports them (the port the system chose when none was given).
  const std::vector<std::string>& boundAddresses() const { return boundAddresses_; }
  // Whether a started subagent is connected to its master now.
  bool subagentConnected() const { return subagentConnected_; }

 private:
  double beforeWait(std::vector<int>& fds) override;
  void afterWait(const std::vector<int>& readyFds) override;

  static int handle(netsnmp_mib_handler_s* handler, netsnmp_handler_registration_s* registration,
                    netsnmp_agent_request_info_s* requestInfo, netsnmp_request_info_s* requests);
  void answer(netsnmp_agent_request_info_s* requestInfo, netsnmp_request_info_s* requests);
  void configureLibrary(const SnmpFrontEndOptions& options, const SnmpUserFile& users);
  void logBoundAddresses();
  // Logs the subagent's connection changes: lost, connected (again).
  void followSubagentConnection();
  void startLibrary(const SnmpUserFile& users);
  void registerSubtree();
  void shutDownLibrary();
  // Clears what net-snmp leaves behind after a shutdown, so that a later
  // start() in either mode begins clean.
  void forgetSubagentState(bool subagentConnected) const;

  Kel::ActivityManager& loop_;
  const MibView& view_;
  bool started_ = false;
  bool master_ = false;
  std::string applicationName_;
  std::string privateDir_;  // removed by stop()
  netsnmp_handler_registration_s* registration_ = nullptr;
  std::size_t varbindsAnswered_ = 0;
  std::vector<std::string> boundAddresses_;
  std::string agentxSocket_;
  int agentxPingIntervalSeconds_ = 15;
  bool subagentConnected_ = false;
  bool everConnected_ = false;
  std::chrono::steady_clock::time_point lostAt_;
  // Scratch, reused across varbinds: the OID of the varbind being answered
  // and the view's answer.
  Oid requested_;
  VarBind answer_;
};

}  // namespace QosSnmpHost
