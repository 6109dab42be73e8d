// AgentHost: one agent over one switch state, as the commands of
// qos-snmp-agent drive it.
//
// Owns the switch state (the nine input roots and their document), the MIB
// model (the tenth root, the agent's output), the invariant guard that keeps
// a publisher's mistake from reaching the agent, and the root state machine
// built by the plug-in's factory. Everything runs on the caller's thread, the
// reactor thread.
//
// Order of use:
//
//   AgentHost host(std::move(state));
//   if (auto refused = host.build(*factory)) { ... refused->text() ... }   // guard, then root
//   auto change = host.apply(line, {"changes.jsonl", 3});                 // guard, then entities
//   MibDump(host.pathOf()).writeText(std::cout, host.mib());
//   host.release();                                                       // closes every machine
//
// Counter stamps (see QosMib): the host gives the model the clock of its
// SNMP agent (counterClockIs; none offline, where stamps read 0), and tells
// it when the ECN counter table's member of an interface is added, replaced
// or deleted, which restarts the counters of that interface's ECN queue rows
// without touching the rows.
//
// Invariants: the root exists between a successful build() and release();
// a refused or malformed input changes no entity and no row.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "QosSnmp/core/CounterStamp.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/RootSm.h"
#include "host/dump/MibDump.h"
#include "host/state/InvariantGuard.h"
#include "host/state/SwitchState.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "pellix/IntfId.h"

namespace QosSnmpHost {

class AgentHost {
 public:
  // `policerStatsTableEnabled`: the agent's policer statistics toggle, which
  // decides some of what the guard refuses.
  AgentHost(SwitchState state, bool policerStatsTableEnabled);
  ~AgentHost();
  AgentHost(const AgentHost&) = delete;
  AgentHost& operator=(const AgentHost&) = delete;

  // Asks the guard about the whole state, then builds the root. On a refusal
  // nothing is built.
  std::optional<LoadError> build(QosSnmp::RootSmFactory& factory);
  // One change line (see SwitchState::apply).
  Result<Change> apply(std::string_view line, const Source& where);
  // The clock of the model's counter stamps: the current TimeStamp.
  void counterClockIs(QosSnmp::CounterClock clock) { mib_->counterClockIs(std::move(clock)); }
  // Closes every machine (the MIB model empties) and releases the root.
  void release();

  const QosSnmp::QosMib& mib() const { return *mib_; }
  const Kel::StateMachine* root() const { return root_.get(); }
  const SwitchState& state() const { return state_; }
  // Entities by their place in the state document, for MibDump.
  MibDump::PathOf pathOf() const;

 private:
  // Reports every change of the ECN counter table's members to the model.
  class KelEcnCounterTable : public Kel::Notifiee<KelEcnCounterTable, AgentHost, const Qos::EcnCounterTable,
                                                  Qos::EcnCounterTable::IntfQueueCounter> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::EcnCounterTable::IntfQueueCounter /*attr*/, const Pellix::IntfId& intf) {
      owner().mib_->ecnQueueCountersRestarted(*notifier(), intf);
    }
  };

  SwitchState state_;
  Kel::Ptr<QosSnmp::QosMib> mib_;
  std::unique_ptr<InvariantGuard> guard_;
  Kel::Ptr<QosSnmp::RootSm> root_;
  Kel::Watch<KelEcnCounterTable> ecnCounterTable_;
};

}  // namespace QosSnmpHost
