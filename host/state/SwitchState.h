// SwitchState: the switch's input entities, built from a state document and
// kept current by change lines.
//
// Owns the nine input roots the agent's factory takes (the tenth argument,
// the MIB model, is the agent's output and belongs to the host) and the
// document's canonical form as a mirror of them. The document's shape and
// the change stream are described in docs/state-format.md; one schema table
// per entity type (StateSchema) drives parsing, validation, canonical form,
// building, in-place update and deletion.
//
// Guarantees:
// - Everything is validated before anything changes: a document or change
//   line that is malformed, does not fit the schema, leaves a reference
//   (classDefault, defaultClassAction) dangling, or is refused by the guard
//   changes neither the mirror nor any entity.
// - A change reaches the entities through their own mutators, the way a live
//   state database delivers it: scalar attributes set one by one (a scalar
//   notifies only on change), collection members deleted, added and updated
//   one by one, each with its own notification. An entity that exists before
//   and after a change is updated in place and keeps its identity; it is
//   replaced only by delete then add. A deleted entity is emptied first,
//   deepest first: its entity-valued scalars reset to null, then every
//   collection emptied member by member, each member emptied before it
//   leaves.
// - pathOf() names every live entity by its canonical JSON Pointer.
//
// Not thread-safe: one thread (the reactor thread) loads and applies.
//
//   auto loaded = QosSnmpHost::SwitchState::loadFile("switch.json");
//   if (!loaded) { std::cerr << loaded.error().text() << '\n'; return 1; }
//   QosSnmpHost::SwitchState& state = loaded.value();
//   state.guardIs(&guard);
//   if (auto refused = state.checkBuild()) { ... refused->text() ... }
//   auto root = QosSnmp::rootSmFactory(state.qosConfig(), state.qosStatus(), ..., qosMib,
//                                      state.ecnCounterTable());
//   state.buildApplied();
//   auto change = state.apply(line, {"changes.jsonl", 7});
//   if (!change) { ... change.error().text() ... }
//   else if (change->op == QosSnmpHost::Change::Op::advance) { clock.advance(change->seconds); }
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "QosSnmp/core/AllIntfStatusDir.h"
#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/Status.h"
#include "host/state/InputLimits.h"
#include "host/state/LoadError.h"
#include "host/state/StateChange.h"
#include "host/state/StateGuard.h"
#include "kel/Dir.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"

namespace QosSnmpHost {

// What one change line asked for, once applied.
struct Change {
  enum class Op {
    none,     // a blank line or a comment ('#'): nothing to do
    set,      // applied
    del,      // applied
    advance,  // not applied here: the caller advances its clock by `seconds`
  };
  Op op = Op::none;
  // The canonical JSON Pointer of the changed value (set, del).
  std::string path;
  // How far to advance the clock, in seconds (advance).
  double seconds = 0.0;
};

class SwitchState {
 public:
  // The document's top-level keys, one per root, in the factory's order.
  static constexpr const char* kQosConfig = "qosConfig";
  static constexpr const char* kQosStatus = "qosStatus";
  static constexpr const char* kHwStatus = "hwStatus";
  static constexpr const char* kSliceHwStatus = "sliceHwStatus";
  static constexpr const char* kAclSliceHwStatus = "aclSliceHwStatus";
  static constexpr const char* kMibConfig = "mibConfig";
  static constexpr const char* kIntfStatus = "intfStatus";
  static constexpr const char* kHwCounter = "hwCounter";
  static constexpr const char* kEcnCounterTable = "ecnCounterTable";

  // Builds the nine roots from a parsed document; `file` names it in errors.
  static Result<SwitchState> load(const nlohmann::json& document, const std::string& file = "(document)");
  // The same from JSON text; errors carry the line of the syntax error or of
  // the offending member.
  // `limits` bound the text and every later change line.
  static Result<SwitchState> loadText(std::string_view text, const std::string& file,
                                      const InputLimits& limits = {});
  // The same from a file (an unreadable file is a LoadError too).
  static Result<SwitchState> loadFile(const std::string& path, const InputLimits& limits = {});

  SwitchState(SwitchState&&) noexcept;
  SwitchState& operator=(SwitchState&&) noexcept;
  ~SwitchState();

  // The guard asked about every later transition (null: none). Not owned.
  void guardIs(StateGuard* guard);

  // Asks the guard about the whole document (Kind::build); the host calls it
  // before it builds the agent over the roots. nullopt: accepted (or no
  // guard). The error's message starts with "refused: ".
  std::optional<LoadError> checkBuild() const;
  // Tells the guard that the agent has been built over the document.
  void buildApplied() const;

  // Applies one line of the change stream (JSON Lines, see the format
  // description): reads it (ChangeLine), then applies the change it carries.
  // `where` names the line in errors. An "advance" line changes nothing and
  // is handed back to the caller.
  Result<Change> apply(std::string_view line, const Source& where);
  // Applies one change, however it arrived: canonicalises and validates it
  // whole, asks the guard, then changes the mirror and the entities. On
  // error nothing has changed; `where` names the change's source in errors.
  Result<Change> apply(const StateChange& change, const Source& where);

  // The canonical document (every attribute present, keys and enumerations
  // by name).
  const nlohmann::json& document() const;

  // The canonical JSON Pointer of a live entity of the state ("/qosStatus",
  // "/qosStatus/cmapType/mapQos/cmap/c1"); "(deleted)" for an entity that
  // is no longer part of the state or never was.
  std::string pathOf(const Kel::Entity* entity) const;
  // The live entity at a canonical JSON Pointer; null when there is none.
  Kel::Ptr<const Kel::Entity> entityAt(const std::string& path) const;
  // The canonical JSON Pointers of every live entity, in byte-wise order.
  std::vector<std::string> entityPaths() const;

  // The nine roots, as the agent's factory takes them.
  Kel::Ptr<const Qos::Config> qosConfig() const;
  Kel::Ptr<const Qos::Status> qosStatus() const;
  Kel::Ptr<const Qos::HwStatus> hwStatus() const;
  Kel::Ptr<const Kel::Dir> sliceHwStatusDir() const;
  Kel::Ptr<const Kel::Dir> aclSliceHwStatusDir() const;
  Kel::Ptr<const QosSnmp::QosMibConfig> mibConfig() const;
  Kel::Ptr<const Interface::AllIntfStatusDir> allIntfStatusDir() const;
  Kel::Ptr<const Qos::HwCounter> hwCounter() const;
  Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable() const;

 private:
  class Impl;
  explicit SwitchState(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> impl_;
};

}  // namespace QosSnmpHost
