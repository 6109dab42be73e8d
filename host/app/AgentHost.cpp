#include "host/app/AgentHost.h"

#include <malloc.h>

#include <utility>

#include "kel/Make.h"

namespace QosSnmpHost {

AgentHost::AgentHost(SwitchState state, bool policerStatsTableEnabled)
    : state_(std::move(state)),
      mib_(Kel::make<QosSnmp::QosMib>()),
      guard_(std::make_unique<InvariantGuard>(*mib_, policerStatsTableEnabled)),
      ecnCounterTable_(this, state_.ecnCounterTable()) {
  state_.guardIs(guard_.get());
}

AgentHost::~AgentHost() {
  release();
  state_.guardIs(nullptr);
}

std::optional<LoadError> AgentHost::build(QosSnmp::RootSmFactory& factory) {
  if (std::optional<LoadError> refused = state_.checkBuild()) {
    return refused;
  }
  root_ = factory(state_.qosConfig(), state_.qosStatus(), state_.hwStatus(), state_.sliceHwStatusDir(),
                  state_.aclSliceHwStatusDir(), state_.mibConfig(), state_.allIntfStatusDir(),
                  state_.hwCounter(), mib_, state_.ecnCounterTable());
  state_.buildApplied();
  // Loading parsed and copied the whole document; what it freed would stay
  // with the process (the allocator keeps freed pages for reuse), so it is
  // handed back to the system now that the agent holds what it keeps.
  malloc_trim(0);
  return std::nullopt;
}

Result<Change> AgentHost::apply(std::string_view line, const Source& where) {
  return state_.apply(line, where);
}

void AgentHost::release() {
  if (root_) {
    root_->close();
    root_ = nullptr;
  }
}

MibDump::PathOf AgentHost::pathOf() const {
  return [this](const Kel::Entity& entity) { return state_.pathOf(&entity); };
}

}  // namespace QosSnmpHost
