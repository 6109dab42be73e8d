#include "host/state/ChangeLine.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <stdexcept>
#include <utility>

#include "host/state/JsonInput.h"
#include "host/state/StateCodec.h"

namespace QosSnmpHost {
namespace {

using Json = nlohmann::json;
// A line that does not have a change's form.
using LineError = std::invalid_argument;

constexpr const char* kPathForm = "a JSON Pointer (\"/qosStatus/cmapType/mapQos\") or an array of segments";

const Json& field(const Json& line, const char* name) {
  const auto it = line.find(name);
  if (it == line.end()) {
    throw LineError(std::string("a change needs \"") + name + "\"");
  }
  return *it;
}

void checkFields(const Json& line, std::initializer_list<const char*> allowed) {
  for (const auto& [key, value] : line.items()) {
    const std::string& given = key;
    if (std::none_of(allowed.begin(), allowed.end(), [&given](const char* name) { return given == name; })) {
      std::string list;
      for (const char* name : allowed) {
        list += (list.empty() ? "\"" : ", \"") + std::string(name) + '"';
      }
      std::string message = "unknown key \"" + given;
      message += "\" in a " + line.at("op").get<std::string>();
      message += " change (expected " + list + ")";
      throw LineError(message);
    }
  }
}

ChangeLine readParsed(const Json& line, const InputLimits& limits) {
  if (!line.is_object()) {
    throw LineError("a change is an object with \"op\", got " + detail::shown(line));
  }
  const Json& op = field(line, "op");
  ChangeLine read;
  if (op == "advance") {
    checkFields(line, {"op", "seconds"});
    const Json& seconds = field(line, "seconds");
    if (!seconds.is_number() || !std::isfinite(seconds.get<double>()) || seconds.get<double>() < 0.0 ||
        seconds.get<double>() > limits.maxAdvanceSeconds) {
      throw LineError("\"seconds\": expected a number of seconds from 0 to " +
                      std::to_string(static_cast<long long>(limits.maxAdvanceSeconds)) + ", got " +
                      detail::shown(seconds));
    }
    read.kind = ChangeLine::Kind::advance;
    read.seconds = seconds.get<double>();
    return read;
  }
  if (op == "set") {
    checkFields(line, {"op", "path", "value"});
    read.change.value = field(line, "value");
    read.change.op = StateChange::Op::set;
  } else if (op == "delete") {
    checkFields(line, {"op", "path"});
    read.change.op = StateChange::Op::del;
  } else {
    throw LineError(R"("op": expected "set", "delete" or "advance", got )" + detail::shown(op));
  }
  read.kind = ChangeLine::Kind::change;
  read.change.path = ChangeLine::pathSegments(field(line, "path"));
  return read;
}

}  // namespace

Result<ChangeLine> ChangeLine::read(std::string_view line, const Source& where, const InputLimits& limits) {
  const auto first = line.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos || line[first] == '#') {
    return ChangeLine{};
  }
  if (line.size() > limits.maxLineBytes) {
    return overlongLineError(where, line.size(), limits.maxLineBytes);
  }
  JsonInput::Parsed parsed = JsonInput::parse(line, limits);
  if (!parsed.value) {
    return LoadError{where.file, where.line, std::nullopt, parsed.error};
  }
  try {
    return readParsed(*parsed.value, limits);
  } catch (const LineError& error) {
    return LoadError{where.file, where.line, std::nullopt, error.what()};
  } catch (const nlohmann::json::exception& error) {
    // Every value is checked before it is read; this is the boundary's last
    // line of defence, so that no input can end the program.
    return LoadError{where.file, where.line, std::nullopt, std::string("malformed change: ") + error.what()};
  }
}

std::vector<std::string> ChangeLine::pathSegments(const Json& path) {
  std::vector<std::string> segments;
  if (path.is_array()) {
    for (const auto& segment : path) {
      if (!segment.is_string()) {
        throw std::invalid_argument(std::string("\"path\": expected ") + kPathForm + ", got " + path.dump());
      }
      segments.push_back(segment.get<std::string>());
    }
    return segments;
  }
  if (!path.is_string()) {
    throw std::invalid_argument(std::string("\"path\": expected ") + kPathForm + ", got " + path.dump());
  }
  const auto& text = path.get_ref<const std::string&>();
  if (!text.empty() && text.front() != '/') {
    throw std::invalid_argument("\"path\": a JSON Pointer starts with '/', got " + path.dump());
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('/', at + 1), text.size());
    std::string segment;
    for (std::size_t i = at + 1; i < end; ++i) {
      if (text[i] != '~') {
        segment += text[i];
      } else if (i + 1 < end && (text[i + 1] == '0' || text[i + 1] == '1')) {
        segment += text[++i] == '0' ? '~' : '/';
      } else {
        throw std::invalid_argument("\"path\": '~' must be followed by '0' or '1' in " + path.dump());
      }
    }
    segments.push_back(std::move(segment));
    at = end;
  }
  return segments;
}

}  // namespace QosSnmpHost
