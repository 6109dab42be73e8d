#include "host/state/InvariantHwCounters.h"

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/stats/HwStatusClassRows.h"

namespace QosSnmpHost {
namespace {

using Json = InvariantView::Json;
using Path = InvariantView::Path;

const std::string kControlPlane = Qos::enumName(Qos::mapControlPlane_);

const Path kPollPeriod = {"mibConfig", "counterPollPeriod"};
const Path kCoppHwStats = {"hwStatus", "coppHwStatsSupported"};
const Path kControlPlaneClassMaps = {"qosStatus", "cmapType", kControlPlane};
const Path kControlPlanePolicyMaps = {"qosStatus", "pmapType", kControlPlane, "pmap"};

// The policy-map name of a hardware policy-map key ("directionInput pm-in"):
// everything after the first space.
std::string policyMapNameOf(const std::string& key) {
  const auto space = key.find(' ');
  return space == std::string::npos ? std::string() : key.substr(space + 1);
}

// The members of the object at `at` after the transition (an empty object
// when there is none).
const Json& membersAfter(const InvariantView& view, const Path& at) {
  static const Json kNone = Json::object();
  const Json* members = view.after(at);
  return members != nullptr && members->is_object() ? *members : kNone;
}

// The refusal of hardware status at `hw` without its counters at
// `counters`, which the transition `removed` or never were.
Refusal missingCounters(const Path& hw, const Path& counters, bool removed) {
  const std::string hwText = InvariantView::pointerText(hw);
  const std::string countersText = InvariantView::pointerText(counters);
  if (removed) {
    return {countersText,
            "counters " + countersText + " are still needed by hardware status " + hwText +
                ": remove the hardware status first (the statistics machine asserts the counters)"};
  }
  return {hwText, "hardware status " + hwText + " needs counters " + countersText +
                      " first (the statistics machine asserts them)"};
}

}  // namespace

std::optional<Refusal> InvariantHwCounters::policyMapRefusal(const InvariantView& view,
                                                             const std::string& slice,
                                                             const std::string& type, const std::string& key,
                                                             const Json& policyMap) {
  if (invariantEnum<Qos::MapType>(Json(type)) == Qos::mapPbr_) {
    return std::nullopt;
  }
  const Json kind = policyMap.value("pmapKind", Json(0));
  if (kind.is_number_integer() && (kind.get<long long>() == QosSnmp::kPmapKindWithoutRows ||
                                   kind.get<long long>() == QosSnmp::kPmapKindWithoutStats)) {
    return std::nullopt;
  }
  const std::string pmapName = policyMapNameOf(key);
  if (pmapName == QosSnmp::kCoppPolicyMapName && view.flagAfter(kCoppHwStats)) {
    return std::nullopt;
  }
  const auto classes = policyMap.find("cmap");
  if (classes == policyMap.end() || !classes->is_object()) {
    return std::nullopt;
  }
  for (const auto& member : classes->items()) {
    if (member.key() == QosSnmp::kCoppDropClassMapName) {
      continue;
    }
    const Path counters =
        InvariantView::join(kControlPlanePolicyMaps, {pmapName, "cmapCounters", member.key()});
    if (view.after(counters) != nullptr) {
      continue;
    }
    return missingCounters(
        {"sliceHwStatus", slice, "pmapTypeHwStatus", type, "pmap", key, "cmap", member.key()}, counters,
        view.before(counters) != nullptr);
  }
  return std::nullopt;
}

std::optional<Refusal> InvariantHwCounters::refusal(const InvariantView& view,
                                                    const std::optional<std::string>& slice,
                                                    bool sliceChanged) const {
  if (!slice) {
    return std::nullopt;
  }
  const Json* period = view.after(kPollPeriod);
  const bool statisticsOff = period != nullptr && period->is_string();
  if (statisticsOff || view.after(kControlPlaneClassMaps) == nullptr) {
    return std::nullopt;
  }
  const Path hwTypes = {"sliceHwStatus", *slice, "pmapTypeHwStatus"};
  // A change of what decides whether a class is checked, or of the slice,
  // exposes every class of the slice.
  const bool everyPolicyMap = view.isBuild() || sliceChanged || view.reaches(kPollPeriod) ||
                              view.reaches(kCoppHwStats) || view.covers(kControlPlaneClassMaps) ||
                              view.covers(kControlPlanePolicyMaps) || view.covers(hwTypes);
  // A change of one control-plane policy map exposes the hardware policy
  // maps of that name.
  // Only whether counters exist matters, not their values: a change below
  // one counter's level changes nothing here.
  const Path& path = view.path();
  const std::size_t policyMapLevel = kControlPlanePolicyMaps.size();
  std::optional<std::string> policyMapName;
  if (view.within(kControlPlanePolicyMaps) && path.size() > policyMapLevel &&
      (path.size() == policyMapLevel + 1 ||
       (path[policyMapLevel + 1] == "cmapCounters" && path.size() <= policyMapLevel + 3))) {
    policyMapName = path[policyMapLevel];
  }
  // Likewise only whether a class has hardware status matters, not its
  // values: hwTypes / <type> / pmap / <key> / cmap / <class>.
  const bool hwReached = view.within(hwTypes) && path.size() <= hwTypes.size() + 5;
  if (!everyPolicyMap && !policyMapName && !hwReached) {
    return std::nullopt;
  }
  for (const auto& type : membersAfter(view, hwTypes).items()) {
    const Path policyMaps = InvariantView::join(hwTypes, {type.key(), "pmap"});
    for (const auto& policyMap : membersAfter(view, policyMaps).items()) {
      const bool inScope = everyPolicyMap ||
                           (policyMapName && policyMapNameOf(policyMap.key()) == *policyMapName) ||
                           view.reaches(InvariantView::join(policyMaps, {policyMap.key()}));
      if (!inScope) {
        continue;
      }
      if (auto refused = policyMapRefusal(view, *slice, type.key(), policyMap.key(), policyMap.value())) {
        return refused;
      }
    }
  }
  return std::nullopt;
}

}  // namespace QosSnmpHost
