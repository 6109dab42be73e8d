// SnmpLogBridge: hands every line net-snmp logs to the Logger, under the
// component "net-snmp", at the level matching its priority.
//
// net-snmp may log a line in pieces (a message without its newline, then
// the rest); pieces are joined until the newline, and a joined line longer
// than Logger::kMaxTextBytes is passed on at that length.
//
// install() replaces net-snmp's own handlers (standard error by default)
// with one callback handler. It does nothing while that handler is in
// place; snmp_shutdown() removes every handler, so call it again after a
// shutdown.
#pragma once

#include <string>
#include <string_view>

#include "host/log/Logger.h"

namespace QosSnmpHost {

class SnmpLogBridge {
 public:
  static void install();

  // The Logger level of a syslog priority as net-snmp uses them.
  static LogLevel levelOf(int priority);
  // Adds a piece of a net-snmp message; logs every line it completes.
  static void add(int priority, std::string_view piece);
};

}  // namespace QosSnmpHost
