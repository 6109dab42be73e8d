// RunningAgent: how run serves SNMP now, and what a SIGHUP changes of it.
//
// It holds the options run started with, gives the SNMP front end its
// options, announces where the MIB is served, and on reload() applies the
// options read again:
//   - log destination and level, trace levels: at once;
//   - community and SNMPv3 users (their file's text included): the embedded
//     agent restarts on the sockets it had bound (a port the system chose
//     stays the same); if the new settings fail it restarts with the old
//     ones, and only if that fails too does failed() turn true;
//   - everything else: logged as not applied until the next start.
// Options that no longer parse are logged and change nothing.
//
// Call everything on the reactor thread, between two turns of the loop.
#pragma once

#include <string>

#include "host/app/Commands.h"
#include "host/snmp/SnmpFrontEnd.h"

namespace QosSnmpHost {

class RunningAgent {
 public:
  // `snmp` must outlive this object.
  RunningAgent(CommonOptions common, RunOptions options, SnmpFrontEnd& snmp);

  SnmpFrontEndOptions snmpOptions() const;
  // Logs where the MIB is served and how to walk it.
  void announce() const;
  // SIGHUP: `reread` gives the options as they are now.
  void reload(const OptionsReader& reread);
  // The SNMP agent could not be restarted at all: run must stop.
  bool failed() const { return failed_; }

 private:
  void applyLogAndTrace(const CommonOptions& common);
  void reportUnapplied(const CommonOptions& common, const RunOptions& options) const;
  void applySnmpAccess(const RunOptions& options);

  CommonOptions common_;
  RunOptions options_;     // as configured
  std::string listenNow_;  // after a restart: the sockets bound at the first start
  SnmpFrontEnd& snmp_;
  std::string usersText_;
  bool failed_ = false;
};

}  // namespace QosSnmpHost
