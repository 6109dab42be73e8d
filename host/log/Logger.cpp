#include "host/log/Logger.h"

#include <syslog.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <iostream>

namespace QosSnmpHost {

namespace {

struct Settings {
  LogDestination destination = LogDestination::standardError;
  LogLevel threshold = LogLevel::info;
  std::ostream* stream = nullptr;
  bool syslogOpen = false;
};

Settings& settings() {
  static Settings instance;
  return instance;
}

constexpr std::array<std::string_view, 5> kLevelNames = {"debug", "info", "notice", "warning", "error"};

int syslogPriority(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return LOG_DEBUG;
    case LogLevel::info:
      return LOG_INFO;
    case LogLevel::notice:
      return LOG_NOTICE;
    case LogLevel::warning:
      return LOG_WARNING;
    case LogLevel::error:
      break;
  }
  return LOG_ERR;
}

// One line of printable text, at most kMaxTextBytes long.
std::string oneLine(std::string_view text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
    text.remove_suffix(1);
  }
  std::string clean(text.substr(0, Logger::kMaxTextBytes));
  for (char& c : clean) {
    if (c == '\n' || c == '\r' || c == '\t') {
      c = ' ';
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      c = '?';
    }
  }
  return clean;
}

}  // namespace

std::optional<LogLevel> Logger::levelNamed(std::string_view name) {
  for (std::size_t i = 0; i < kLevelNames.size(); ++i) {
    if (kLevelNames[i] == name) {
      return static_cast<LogLevel>(i);
    }
  }
  return std::nullopt;
}

std::string_view Logger::nameOf(LogLevel level) { return kLevelNames.at(static_cast<std::size_t>(level)); }

std::optional<LogDestination> Logger::destinationNamed(std::string_view name) {
  if (name == "stderr") {
    return LogDestination::standardError;
  }
  if (name == "syslog") {
    return LogDestination::syslog;
  }
  return std::nullopt;
}

void Logger::destinationIs(LogDestination destination) {
  Settings& s = settings();
  if (destination == LogDestination::syslog && !s.syslogOpen) {
    ::openlog("qos-snmp-agent", LOG_PID, LOG_DAEMON);
    s.syslogOpen = true;
  } else if (destination != LogDestination::syslog && s.syslogOpen) {
    ::closelog();
    s.syslogOpen = false;
  }
  s.destination = destination;
}

LogDestination Logger::destination() { return settings().destination; }

void Logger::thresholdIs(LogLevel level) { settings().threshold = level; }

LogLevel Logger::threshold() { return settings().threshold; }

std::string Logger::line(std::chrono::system_clock::time_point when, LogLevel level,
                         std::string_view component, std::string_view text) {
  const auto sinceEpoch = when.time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch - seconds).count();
  const auto time = static_cast<std::time_t>(seconds.count());
  std::tm utc{};
  ::gmtime_r(&time, &utc);
  std::array<char, 40> stamp{};
  const std::size_t length = std::strftime(stamp.data(), stamp.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::array<char, 8> fraction{};
  std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(millis));
  std::string result(stamp.data(), length);
  result += fraction.data();
  result += ' ';
  result += nameOf(level);
  result += ' ';
  result += oneLine(component);
  result += ": ";
  result += oneLine(text);
  return result;
}

void Logger::log(LogLevel level, std::string_view component, std::string_view text) {
  Settings& s = settings();
  if (level < s.threshold) {
    return;
  }
  if (s.destination == LogDestination::syslog) {
    const std::string message = oneLine(component) + ": " + oneLine(text);
    ::syslog(syslogPriority(level), "%s", message.c_str());
    return;
  }
  std::ostream& out = s.stream != nullptr ? *s.stream : std::cerr;
  out << line(std::chrono::system_clock::now(), level, component, text) << '\n';
  out.flush();
}

void Logger::streamIsForTest(std::ostream* stream) { settings().stream = stream; }

}  // namespace QosSnmpHost
