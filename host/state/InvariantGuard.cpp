#include "host/state/InvariantGuard.h"

namespace QosSnmpHost {
namespace {

// The slices a transition adds, in name order (every slice, for a build):
// the agent watches each in turn, the last one from then on.
std::vector<std::string> addedSlices(const InvariantView& view) {
  return view.addedMembers({"sliceHwStatus"});
}

// A change inside a class's counters of a policy map, below
// /qosStatus/pmapType/<type>/pmap/<name>/cmapCounters/<class>: the counter
// values. The rules read those counters only for whether they exist and
// which entity they are, and such a change keeps both (the counters are
// changed in place), so no rule can refuse it or needs to hear of it. The
// steadiest stream of a live switch costs the guard nothing.
bool countValuesOnly(const InvariantView& view) {
  const InvariantView::Path& path = view.path();
  constexpr std::size_t kCountersMemberDepth = 7;
  return !view.isBuild() && path.size() > kCountersMemberDepth && path[0] == "qosStatus" &&
         path[1] == "pmapType" && path[3] == "pmap" && path[5] == "cmapCounters";
}

}  // namespace

InvariantGuard::InvariantGuard(const QosSnmp::QosMib& qosMib, bool policerStatsTable)
    : coppStatic_(qosMib), policerStats_(policerStatsTable) {}

std::optional<Refusal> InvariantGuard::refusal(const StateTransition& transition) {
  const InvariantView view(transition);
  if (countValuesOnly(view)) {
    return std::nullopt;
  }
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
  if (countValuesOnly(view)) {
    return;
  }
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
