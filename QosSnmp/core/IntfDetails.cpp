#include "QosSnmp/core/IntfDetails.h"

#include "QosSnmp/core/QosSnmpTraceHandle.h"

namespace IntfSnmp {

Kel::S32 IntfDetails::ifIndex() const {
  const Kel::S32 index = status_ ? status_->snmpIfIndex() : kNoStatusIfIndex;
  if (auto t = QosSnmp::traceHandle().line(8)) {
    t << "ifIndex: " << index;
  }
  return index;
}

}  // namespace IntfSnmp
