// The agent's feature toggles.
#pragma once

namespace QosSnmp {

// Whether the policer statistics table is on: toggle
// "QosSnmpPolicerStatsTable" of "QosSnmp.json", default on. Asked of the
// toggle store once, on the first call (concurrent first calls ask once);
// every later call returns the kept answer.
bool toggleQosSnmpPolicerStatsTableEnabled();

}  // namespace QosSnmp
