#include "host/state/JsonInput.h"

#include <algorithm>
#include <exception>

#include "host/state/JsonSkimmer.h"

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

bool JsonInput::nestedDeeperThan(const nlohmann::json& value, std::size_t maxDepth) {
  if (!value.is_structured()) {
    return false;
  }
  if (maxDepth == 0) {
    return true;
  }
  return std::any_of(value.begin(), value.end(), [maxDepth](const nlohmann::json& member) {
    return nestedDeeperThan(member, maxDepth - 1);
  });
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
    JsonSkimmer skimmer;
    try {
      nlohmann::json::sax_parse(text, &skimmer);
    } catch (const nlohmann::json::exception&) {
      // The position found so far stands.
    }
    parsed.line = lineAt(text, skimmer.errorAt == 0 ? 0 : skimmer.errorAt - 1);
  }
  return parsed;
}

}  // namespace QosSnmpHost
