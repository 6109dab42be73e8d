// JsonInput: the one place where JSON text from outside becomes a value.
//
// Parsing is bounded before it starts: a linear scan refuses nesting deeper
// than InputLimits::maxDepth (so no code that recurses over a value can run
// out of stack) and a NUL byte (which the library would take for the end of
// the text), and every exception of the JSON library (syntax, a number
// that does not fit, invalid UTF-8) stops here as an error with the line it
// was found on. Nothing else in the host parses input text.
//
//   auto parsed = JsonInput::parse(text, limits);
//   if (!parsed.value) { report(parsed.line, parsed.error); }
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "host/state/InputLimits.h"

namespace QosSnmpHost {

class JsonInput {
 public:
  struct Parsed {
    std::optional<nlohmann::json> value;
    // Without a value: what is wrong, and the line (from 1) of `text` it
    // was found on.
    std::string error;
    int line = 0;
  };

  static Parsed parse(std::string_view text, const InputLimits& limits);

  // The byte offset at which `text` first nests deeper than `maxDepth`
  // arrays and objects; nullopt when it never does. Strings are skipped, so
  // brackets inside them do not count.
  static std::optional<std::size_t> tooDeepAt(std::string_view text, std::size_t maxDepth);

  // Whether `value` nests arrays and objects more than `maxDepth` deep (a
  // scalar is 0 deep, {} and [] 1): the same bound for a value that did not
  // come as text. Looks no deeper than maxDepth + 1 levels.
  static bool nestedDeeperThan(const nlohmann::json& value, std::size_t maxDepth);

  // The line (from 1) of byte `offset` of `text`.
  static int lineAt(std::string_view text, std::size_t offset);
};

}  // namespace QosSnmpHost
