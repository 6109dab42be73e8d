#include "QosSnmp/core/Toggles.h"

#include "kel/Toggle.h"

namespace QosSnmp {

bool toggleQosSnmpPolicerStatsTableEnabled() {
  static const bool kEnabled = Kel::getToggleState("QosSnmpPolicerStatsTable", "QosSnmp.json", true);
  return kEnabled;
}

}  // namespace QosSnmp
