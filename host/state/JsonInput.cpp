#include "host/state/JsonInput.h"

#include <algorithm>
#include <exception>

namespace QosSnmpHost {
namespace {

// The library's message without its "[json.exception.X.N] " prefix and,
// for a syntax error, the "parse error at line L, column C: " part (the
// caller names the line itself).
std::string libraryMessage(const nlohmann::json::exception& error) {
  std::string text = error.what();
  if (const auto bracket = text.find("] ");
      text.starts_with("[json.exception.") && bracket != std::string::npos) {
    text.erase(0, bracket + 2);
  }
  if (const auto column = text.find("column ");
      text.starts_with("parse error") && column != std::string::npos) {
    if (const auto colon = text.find(": ", column); colon != std::string::npos) {
      text.erase(0, colon + 2);
    }
  }
  // The library quotes the offending token whole (a number of 400 digits):
  // keep the message to one short line.
  constexpr std::size_t kMaxLibraryMessage = 120;
  if (text.size() > kMaxLibraryMessage) {
    text = text.substr(0, kMaxLibraryMessage) + "...";
  }
  return text;
}

// Finds where the parser gives up, for the errors whose exception does not
// say (a number that does not fit a double).
class ErrorLocator : public nlohmann::json_sax<nlohmann::json> {
 public:
  std::size_t position = 0;

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override { return true; }
  bool key(string_t& /*key*/) override { return true; }
  bool end_object() override { return true; }
  bool start_array(std::size_t /*elements*/) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t at, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    position = at;
    return false;
  }
};

}  // namespace

std::optional<std::size_t> JsonInput::tooDeepAt(std::string_view text, std::size_t maxDepth) {
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (inString) {
      if (c == '\\') {
        ++at;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > maxDepth) {
        return at;
      }
    } else if ((c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return std::nullopt;
}

int JsonInput::lineAt(std::string_view text, std::size_t offset) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
  return 1 + static_cast<int>(std::count(text.begin(), end, '\n'));
}

JsonInput::Parsed JsonInput::parse(std::string_view text, const InputLimits& limits) {
  Parsed parsed;
  if (const auto deep = tooDeepAt(text, limits.maxDepth)) {
    parsed.error = "invalid JSON: nested deeper than " + std::to_string(limits.maxDepth) + " levels";
    parsed.line = lineAt(text, *deep);
    return parsed;
  }
  // The library takes a NUL byte for the end of the text and would accept
  // what comes before it.
  if (const auto nul = text.find('\0'); nul != std::string_view::npos) {
    parsed.error = "invalid JSON: a NUL byte at byte " + std::to_string(nul + 1);
    parsed.line = lineAt(text, nul);
    return parsed;
  }
  try {
    parsed.value = nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    parsed.error = "invalid JSON: " + libraryMessage(error);
    parsed.line = lineAt(text, error.byte == 0 ? 0 : error.byte - 1);
  } catch (const nlohmann::json::exception& error) {
    // A number that does not fit a double (1e999), for instance: the
    // exception does not say where, a second pass does.
    parsed.error = "invalid JSON: " + libraryMessage(error);
    ErrorLocator locator;
    try {
      nlohmann::json::sax_parse(text, &locator);
    } catch (const nlohmann::json::exception&) {
      // The position found so far stands.
    }
    parsed.line = lineAt(text, locator.position == 0 ? 0 : locator.position - 1);
  }
  return parsed;
}

}  // namespace QosSnmpHost
