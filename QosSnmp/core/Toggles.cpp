#include "QosSnmp/core/Toggles.h"

#include "kel/Toggle.h"

namespace QosSnmp {

bool toggleQosSnmpPolicerStatsTableEnabled() {
  static const bool enabled = Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
  return enabled;
}

}  // namespace QosSnmp
