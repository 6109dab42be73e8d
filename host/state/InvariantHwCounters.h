// InvariantHwCounters: refuses the states in which the agent's hardware-status
// statistics machine (HwStatusCmapSm) would fail its assertion that a class's
// counters are published before its hardware status.
//
// That machine follows the hardware status of the applied policy maps of the
// slice the agent watches (the newest slice added; the last one by name when
// the agent starts). For a class with hardware status it asserts the
// class's counters in the QoS status, always looked up under map type 0
// (mapControlPlane) whatever the hardware status's own map type:
//   /qosStatus/pmapType/mapControlPlane/pmap/<policy map>/cmapCounters/<class>
// It makes that check whenever it looks at the class (the class added or
// changed, the machine rebuilt, the poll period turning finite with no row)
// and reads, not watches, what decides whether it checks at all. So the
// rule is a state invariant, judged on the document after each transition:
// while
// - the poll period (counterPollPeriod) is finite,
// - the QoS status has class maps of map type 0 (cmapType/mapControlPlane),
// every class of every hardware policy map of the watched slice with
// - a map type other than 2 (mapPbr, never followed),
// - a pmapKind other than 1 and 2 (kinds without statistics),
// - a class name other than "copp-system-drop",
// - a policy map other than "copp-system-policy" while coppHwStatsSupported,
// has its counters. The status comes first and goes last: hardware status
// without its counters, and removing counters (or their policy map) while
// such hardware status remains, are both refused, as is any change of the
// conditions above that would expose such a class.
//
// Only what a transition can reach is judged: one hardware policy map for a
// change inside it, the hardware policy maps of one name for a change of
// that control-plane policy map, the whole slice for a change of the
// conditions or of the watched slice.
#pragma once

#include <optional>
#include <string>

#include "host/state/InvariantView.h"

namespace QosSnmpHost {

class InvariantHwCounters {
 public:
  // `slice` is the slice the agent watches after the transition;
  // `sliceChanged` when the transition makes it watch another one (or
  // builds the agent).
  std::optional<Refusal> refusal(const InvariantView& view, const std::optional<std::string>& slice,
                                 bool sliceChanged) const;

 private:
  // The hardware policy map `key` of map type `type` on `slice`, judged.
  static std::optional<Refusal> policyMapRefusal(const InvariantView& view, const std::string& slice,
                                                 const std::string& type, const std::string& key,
                                                 const InvariantView::Json& policyMap);
};

}  // namespace QosSnmpHost
