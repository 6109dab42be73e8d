// InvariantGuard: the host's guard against switch states that would end the
// agent. It refuses, before anything changes, a transition that would make
// one of the agent's machines fail an assertion or throw a framework mutator
// exception, so that a publisher's mistake is reported as a refused change
// instead of aborting the agent.
//
// It judges each transition on the document after it (and the values before
// it at the changed path), together with a little shadow state that follows
// what the agent holds beyond the document:
// - the slice the agent watches: the last slice by name when it starts,
//   then each slice added (a removed slice stays watched, empty);
// - InvariantCoppStatic: the static control-plane machine (the control-plane
//   policy map it needs at every build, the class map of every static class
//   the watched slice reports);
// - InvariantHwCounters: the hardware-status statistics machine (a class's
//   counters before its hardware status, and after it);
// - InvariantClassActions: the class machine of each policy map (one action
//   machine per name, never re-created from another entity);
// - InvariantPolicerStats: the control-plane statistics table's policer
//   statistics machines (one per class-map name, never re-created with other
//   arguments), while that table is switched on.
// Each rule's header says exactly which inputs reach which assertion, and
// why; the messages name the values involved by their JSON Pointers and the
// machine that would fail, for example
//   hardware status /sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput
//   copp-system-policy/cmap/c1 needs counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/
//   cmapCounters/c1 first (the statistics machine asserts them)
// (one line; SwitchState reports it as "refused: <message>").
//
// Not guarded here, because the loader already rules them out: the input
// model's own assertions (a member stored under another key, a NaN poll
// period), and the re-instantiation of every other keyed child machine,
// which is only ever re-asked with the entity it was made from: the loader
// changes an existing entity in place (without telling its holder) and
// replaces one only by deleting it first. The rules replay the loader's
// order of delivery; a loader that delivered changes otherwise would need
// them revisited.
//
//   // The toggle as the agent reads it (QosSnmp/core/Toggles.cpp).
//   const bool policerStats = Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
//   InvariantGuard guard(*qosMib, policerStats);
//   state.guardIs(&guard);
//   if (auto refused = state.checkBuild()) { ... }
//   auto root = QosSnmp::rootSmFactory(..., qosMib, ...);
//   state.buildApplied();
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "QosSnmp/core/QosMib.h"
#include "host/state/InvariantClassActions.h"
#include "host/state/InvariantCoppStatic.h"
#include "host/state/InvariantHwCounters.h"
#include "host/state/InvariantPolicerStats.h"
#include "host/state/InvariantView.h"
#include "host/state/StateGuard.h"

namespace QosSnmpHost {

class InvariantGuard : public StateGuard {
 public:
  // REQUIRES: `qosMib` is the MIB model the agent writes, and outlives the
  // guard. `policerStatsTable`: the feature toggle of the policer
  // statistics table, as the agent reads it.
  InvariantGuard(const QosSnmp::QosMib& qosMib, bool policerStatsTable);

  std::optional<Refusal> refusal(const StateTransition& transition) override;
  void applied(const StateTransition& transition) override;

  // The slice the agent watches, as far as the guard has seen; nullopt
  // before a build or without slices.
  const std::optional<std::string>& watchedSlice() const { return slice_; }

 private:
  std::optional<std::string> slice_;
  InvariantCoppStatic coppStatic_;
  InvariantHwCounters hwCounters_;
  InvariantClassActions classActions_;
  InvariantPolicerStats policerStats_;
};

}  // namespace QosSnmpHost
