#include "kel/RingTraceCommand.h"

#include <cstdio>
#include <ctime>
#include <ostream>
#include <string_view>
#include <variant>

namespace RingTrace {

namespace {

constexpr int kFailure = 2;
constexpr S64 kNsPerSecond = 1'000'000'000;

constexpr std::string_view kUsage =
    "usage: kel-ringtrace [--descriptors] FILE\n"
    "  prints the entries of the ring trace FILE, oldest first,\n"
    "  or with --descriptors its message descriptors\n";

void appendQuoted(std::string& line, std::string_view chars) {
  line += '"';
  for (const char c : chars) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      line += '\\';
      line += c;
    } else if (byte < 0x20 || byte >= 0x7f) {
      char escaped[5];
      std::snprintf(escaped, sizeof(escaped), "\\x%02x", byte);
      line += escaped;
    } else {
      line += c;
    }
  }
  line += '"';
}

void appendSource(std::string& line, const Descriptor& descriptor) {
  line += " (";
  line += descriptor.file;
  line += ':';
  line += std::to_string(descriptor.line);
  line += ')';
}

}  // namespace

std::string formatTime(S64 realtimeNs) {
  S64 seconds = realtimeNs / kNsPerSecond;
  S64 ns = realtimeNs % kNsPerSecond;
  if (ns < 0) {
    ns += kNsPerSecond;
    --seconds;
  }
  const auto time = static_cast<time_t>(seconds);
  tm utc{};
  gmtime_r(&time, &utc);
  char text[64];
  std::snprintf(text, sizeof(text), "%04d-%02d-%02dT%02d:%02d:%02d.%09lldZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<long long>(ns));
  return text;
}

std::string formatEntry(const Reader& reader, const Entry& entry) {
  const Descriptor& descriptor = reader.descriptorOf(entry);
  std::string line = std::to_string(entry.sequence);
  line += ' ';
  line += formatTime(reader.realtimeNsOf(entry.timestampNs));
  line += ' ';
  if (!entry.isBlock) {
    line += '-';
  } else if (entry.durationNs) {
    line += std::to_string(*entry.durationNs);
  } else {
    line += "open";
  }
  line += ' ';
  line += descriptor.text;
  for (const Value& value : entry.arguments) {
    line += ' ';
    if (const S64* integer = std::get_if<S64>(&value)) {
      line += std::to_string(*integer);
    } else {
      appendQuoted(line, std::get<std::string>(value));
    }
  }
  appendSource(line, descriptor);
  return line;
}

std::string formatDescriptor(const Descriptor& descriptor) {
  std::string line = std::to_string(descriptor.messageId);
  line += ' ';
  line += descriptor.format.empty() ? "-" : descriptor.format;
  line += ' ';
  line += descriptor.text;
  appendSource(line, descriptor);
  return line;
}

int runRingTraceCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  bool descriptors = false;
  const std::string* path = nullptr;
  for (const std::string& argument : arguments) {
    if (argument == "--help" || argument == "-h") {
      out << kUsage;
      return 0;
    }
    if (argument == "--descriptors") {
      descriptors = true;
    } else if (argument.starts_with('-') || path != nullptr) {
      err << "kel-ringtrace: unexpected argument '" << argument << "'\n" << kUsage;
      return kFailure;
    } else {
      path = &argument;
    }
  }
  if (path == nullptr) {
    err << "kel-ringtrace: no ring trace file given\n" << kUsage;
    return kFailure;
  }

  try {
    const Reader reader(*path);
    if (descriptors) {
      for (const Descriptor& descriptor : reader.descriptors()) {
        out << formatDescriptor(descriptor) << '\n';
      }
    } else {
      for (const Entry& entry : reader.entries()) {
        out << formatEntry(reader, entry) << '\n';
      }
    }
  } catch (const Error& error) {
    err << "kel-ringtrace: " << error.what() << '\n';
    return kFailure;
  }
  if (!out.flush()) {
    err << "kel-ringtrace: cannot write the output\n";
    return kFailure;
  }
  return 0;
}

}  // namespace RingTrace
