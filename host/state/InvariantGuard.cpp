#include "host/state/InvariantGuard.h"

namespace QosSnmpHost {
namespace {

// The slices a transition adds, in name order (every slice, for a build):
// the agent watches each in turn, the last one from then on.
std::vector<std::string> addedSlices(const InvariantView& view) {
  return view.addedMembers({"sliceHwStatus"});
}

}  // namespace

InvariantGuard::InvariantGuard(const QosSnmp::QosMib& qosMib, bool policerStatsTable)
    : coppStatic_(qosMib), policerStats_(policerStatsTable) {}

std::optional<Refusal> InvariantGuard::refusal(const StateTransition& transition) {
  const InvariantView view(transition);
  const std::vector<std::string> added = addedSlices(view);
  const std::optional<std::string> sliceBefore = view.isBuild() ? std::nullopt : slice_;
  const std::optional<std::string> sliceAfter = added.empty() ? sliceBefore : added.back();
  if (auto refused = coppStatic_.refusal(view, sliceBefore, added)) {
    return refused;
  }
  if (auto refused = hwCounters_.refusal(view, sliceAfter, !added.empty())) {
    return refused;
  }
  if (auto refused = classActions_.refusal(view, !added.empty())) {
    return refused;
  }
  return policerStats_.refusal(view);
}

void InvariantGuard::applied(const StateTransition& transition) {
  const InvariantView view(transition);
  const std::vector<std::string> added = addedSlices(view);
  coppStatic_.applied(view, added);
  classActions_.applied(view, !added.empty());
  policerStats_.applied(view);
  if (view.isBuild()) {
    slice_.reset();
  }
  if (!added.empty()) {
    slice_ = added.back();
  }
}

}  // namespace QosSnmpHost
