#include "host/snmp/SnmpLogBridge.h"

#include <syslog.h>

#include <cstring>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace QosSnmpHost {

namespace {

constexpr std::string_view kComponent = "net-snmp";
constexpr const char* kHandlerToken = "qos-snmp-agent-log";

std::string& pending() {
  static std::string text;
  return text;
}

int onLog(int /*majorId*/, int /*minorId*/, void* serverArgument, void* /*clientArgument*/) {
  const auto* message = static_cast<const snmp_log_message*>(serverArgument);
  if (message != nullptr && message->msg != nullptr) {
    SnmpLogBridge::add(message->priority, message->msg);
  }
  return SNMPERR_SUCCESS;
}

}  // namespace

LogLevel SnmpLogBridge::levelOf(int priority) {
  switch (priority) {
    case LOG_DEBUG:
      return LogLevel::debug;
    case LOG_INFO:
      return LogLevel::info;
    case LOG_NOTICE:
      return LogLevel::notice;
    case LOG_WARNING:
      return LogLevel::warning;
    default:
      return LogLevel::error;
  }
}

void SnmpLogBridge::add(int priority, std::string_view piece) {
  std::string& text = pending();
  while (!piece.empty()) {
    const std::size_t end = piece.find('\n');
    const std::string_view part = piece.substr(0, end);
    if (text.size() < Logger::kMaxTextBytes) {
      text.append(part.substr(0, Logger::kMaxTextBytes - text.size()));
    }
    if (end == std::string_view::npos) {
      return;
    }
    if (!text.empty()) {
      Logger::log(levelOf(priority), kComponent, text);
    }
    text.clear();
    piece.remove_prefix(end + 1);
  }
}

void SnmpLogBridge::install() {
  if (netsnmp_find_loghandler(kHandlerToken) != nullptr) {
    return;
  }
  snmp_disable_log();
  snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, onLog, nullptr);
  netsnmp_log_handler* handler = netsnmp_register_loghandler(NETSNMP_LOGHANDLER_CALLBACK, LOG_DEBUG);
  if (handler != nullptr) {
    // The library frees the token with the handler.
    handler->token = ::strdup(kHandlerToken);
    handler->pri_max = LOG_EMERG;
  }
}

}  // namespace QosSnmpHost
