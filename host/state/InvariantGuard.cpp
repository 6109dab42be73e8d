#include "host/state/InvariantGuard.h"

#include <algorithm>
#include <vector>

namespace QosSnmpHost {
namespace {

// The slices a transition adds, in name order (every slice, for a build):
// the agent watches each in turn, the last one from then on.
std::vector<std::string> addedSlices(const InvariantView& view) {
  return view.addedMembers({"sliceHwStatus"});
}

// Whether the transition lies where no rule reads. The rules read only the
// map types under /qosStatus, /hwStatus, /mibConfig and /sliceHwStatus, and
// of those neither
// - the counter values, below /qosStatus/pmapType/<type>/pmap/<name>/
//   cmapCounters/<class>: counters are read only for whether they exist and
//   which entity they are, which a change inside them (in place) keeps, nor
// - a class map's match rules, /qosStatus/cmapType/<type>/cmap/<name>/match.
// Such a transition cannot be refused and changes no rule's shadow state, so
// the steadiest streams of a live switch (counters, match rules, service
// policies, interfaces) cost the guard nothing. A rule that reads more must
// be listed here.
bool readByNoRule(const InvariantView& view) {
  if (view.isBuild()) {
    return false;
  }
  static const std::vector<InvariantView::Path> kRead = {
      {"qosStatus", "pmapType"}, {"qosStatus", "cmapType"}, {"hwStatus"}, {"mibConfig"}, {"sliceHwStatus"}};
  const InvariantView::Path& path = view.path();
  constexpr std::size_t kCountersMemberDepth = 7;
  constexpr std::size_t kMatchDepth = 6;
  if (path.size() > kCountersMemberDepth && path[0] == "qosStatus" && path[1] == "pmapType" &&
      path[3] == "pmap" && path[5] == "cmapCounters") {
    return true;
  }
  if (path.size() >= kMatchDepth && path[0] == "qosStatus" && path[1] == "cmapType" && path[3] == "cmap" &&
      path[5] == "match") {
    return true;
  }
  return std::none_of(kRead.begin(), kRead.end(),
                      [&view](const InvariantView::Path& read) { return view.reaches(read); });
}

}  // namespace

InvariantGuard::InvariantGuard(const QosSnmp::QosMib& qosMib, bool policerStatsTable)
    : coppStatic_(qosMib), policerStats_(policerStatsTable) {}

std::optional<Refusal> InvariantGuard::refusal(const StateTransition& transition) {
  const InvariantView view(transition);
  if (readByNoRule(view)) {
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
  if (readByNoRule(view)) {
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
