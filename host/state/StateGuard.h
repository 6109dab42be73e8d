// StateGuard: the hook through which the host refuses switch states that
// would break an invariant the agent asserts.
//
// SwitchState asks its guard about every transition before any entity
// changes: the initial document as a whole (Kind::build, through
// SwitchState::checkBuild()), then each accepted change line (Kind::set,
// Kind::del). The guard sees the canonical document as it will be after the
// transition (`after`) and the canonical value at the changed path before it
// (`before`, null when the path was absent or for a build). A refusal leaves
// the document and every entity as they were; the caller reports it as an
// error ("refused: <message>").
//
// After the transition has reached the entities (and the agent, if one
// watches them, has reacted), SwitchState calls applied() with the same
// transition; for a build the host triggers it with
// SwitchState::buildApplied() once it has built the agent.
//
// The references in a transition are valid only during the call.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace QosSnmpHost {

// Why the guard refuses a transition: the rule it would break, and the value
// of the document that breaks it (its JSON Pointer). A change is reported at
// its own path; a build at this one, so that the operator finds the value in
// the document.
struct Refusal {
  std::string path;
  std::string message;
};

// One accepted-so-far change, before it touches an entity.
struct StateTransition {
  enum class Kind { build, set, del };
  Kind kind;
  // The canonical JSON Pointer of the changed value; "" for a build.
  nlohmann::json::json_pointer path;
  // The canonical document as it will be once the transition is applied.
  const nlohmann::json& after;
  // The canonical value at `path` before the transition; null when the path
  // was absent, and for a build.
  const nlohmann::json* before;
  // `path`'s unescaped segments when the caller has them at hand; null: the
  // reader splits `path` itself.
  const std::vector<std::string>* segments = nullptr;
};

class StateGuard {
 public:
  virtual ~StateGuard() = default;

  // The rule the transition would break, or nullopt to let it through.
  virtual std::optional<Refusal> refusal(const StateTransition& transition) = 0;

  // Called after the transition has been applied to the entities.
  virtual void applied(const StateTransition& /*transition*/) {}
};

}  // namespace QosSnmpHost
