// ChangeLine: reads one line of the change stream (JSON Lines; the format
// is in docs/state-format.md) into what it asks for: nothing (a blank line
// or a comment), a StateChange, or an advance of the clock.
//
// Reading checks the line's own form (its length against InputLimits, its
// JSON syntax and depth, "op" and the keys each op allows, the path's form,
// the advance's seconds); whether the change fits the state is for the
// state to decide when it applies it (SwitchState::apply). No exception
// leaves read(): a line that does not fit is a LoadError naming `where`.
//
//   auto read = QosSnmpHost::ChangeLine::read(line, {"changes.jsonl", 7}, limits);
//   if (!read) { ... read.error().text() ... }
//   else if (read->kind == QosSnmpHost::ChangeLine::Kind::change) { state.apply(read->change, where); }
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/state/InputLimits.h"
#include "host/state/LoadError.h"
#include "host/state/StateChange.h"

namespace QosSnmpHost {

// NOLINTNEXTLINE(bugprone-exception-escape): nlohmann::json member; its moves do not throw
class ChangeLine {
 public:
  enum class Kind {
    none,     // a blank line or a comment ('#')
    change,   // `change`
    advance,  // the clock moves on by `seconds`
  };
  Kind kind = Kind::none;
  StateChange change;
  double seconds = 0.0;

  static Result<ChangeLine> read(std::string_view line, const Source& where, const InputLimits& limits);

  // The unescaped segments of a change's "path": a JSON Pointer's text or
  // an array of segments. Throws std::invalid_argument, with the message,
  // for any other form.
  static std::vector<std::string> pathSegments(const nlohmann::json& path);
};

}  // namespace QosSnmpHost
