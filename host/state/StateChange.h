// StateChange: one change of the switch state, however it arrived: read
// from a line of the change stream (ChangeLine), or delivered by another
// state source, such as a state database's change feed.
//
// A change names its target by the unescaped segments of its path as the
// source gave them (keys in any form the document accepts: "1" or
// "mapQos"), and carries the new value in the document's form; the state
// (SwitchState::apply) canonicalises, validates and guards it like any
// other input.
//
//   QosSnmpHost::StateChange change{QosSnmpHost::StateChange::Op::set,
//                                   {"mibConfig", "counterPollPeriod"}, 30};
//   auto applied = state.apply(change, {"feed", 0});
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace QosSnmpHost {

// NOLINTNEXTLINE(bugprone-exception-escape): nlohmann::json member; its moves do not throw
struct StateChange {
  enum class Op {
    set,  // the value at `path` becomes `value` (a member is added when absent)
    del,  // a member leaves its collection; an attribute returns to its default
  };
  Op op = Op::set;
  std::vector<std::string> path;
  // The new value (set); null for del.
  nlohmann::json value;
};

}  // namespace QosSnmpHost
