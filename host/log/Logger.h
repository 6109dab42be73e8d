// Logger: the one log of the process. Every line the program writes about
// itself (start, stop, SNMP, change stream, refused input while running)
// and every line net-snmp logs goes through it.
//
// A line on standard error reads
//
//   2026-11-25T00:41:07.123Z info snmp: listening on udp:127.0.0.1:1161
//
// (UTC time stamp with milliseconds, level, component, text): systemd's
// journal keeps such lines as they are. With the syslog destination the
// time stamp is left to syslog, the level becomes the syslog priority and
// the line reads "snmp: listening on ...".
//
// Lines below the threshold level are dropped. A text is one line: line
// breaks inside it become spaces, and it is cut at kMaxTextBytes, so that a
// hostile input quoted in a message cannot forge or flood lines.
//
// Process-wide, because net-snmp's log callback and signal-time code have no
// other way to reach it. Call it from the reactor thread; the settings may
// change at any time (SIGHUP), the next line follows them.
//
//   Logger::destinationIs(LogDestination::standardError);
//   Logger::thresholdIs(LogLevel::info);
//   Logger::info("snmp", "listening on " + address);
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace QosSnmpHost {

enum class LogLevel { debug, info, notice, warning, error };
enum class LogDestination { standardError, syslog };

class Logger {
 public:
  static constexpr std::size_t kMaxTextBytes = 4096;

  // "debug", "info", "notice", "warning", "error"; nullopt for anything else.
  static std::optional<LogLevel> levelNamed(std::string_view name);
  static std::string_view nameOf(LogLevel level);
  // "stderr" or "syslog"; nullopt for anything else.
  static std::optional<LogDestination> destinationNamed(std::string_view name);

  static void destinationIs(LogDestination destination);
  static LogDestination destination();
  static void thresholdIs(LogLevel level);
  static LogLevel threshold();

  static void log(LogLevel level, std::string_view component, std::string_view text);
  static void debug(std::string_view component, std::string_view text) {
    log(LogLevel::debug, component, text);
  }
  static void info(std::string_view component, std::string_view text) {
    log(LogLevel::info, component, text);
  }
  static void notice(std::string_view component, std::string_view text) {
    log(LogLevel::notice, component, text);
  }
  static void warning(std::string_view component, std::string_view text) {
    log(LogLevel::warning, component, text);
  }
  static void error(std::string_view component, std::string_view text) {
    log(LogLevel::error, component, text);
  }

  // The standard-error line of a message logged at `when`, without the
  // final newline.
  static std::string line(std::chrono::system_clock::time_point when, LogLevel level,
                          std::string_view component, std::string_view text);

  // Lines for the standard-error destination go to `stream` instead (null:
  // back to std::cerr).
  static void streamIsForTest(std::ostream* stream);
};

}  // namespace QosSnmpHost
