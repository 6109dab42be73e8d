#include "QosSnmp/core/ServicePolicyTableIndex.h"

#include <ostream>

namespace QosSnmp {

ServicePolicyTableIndex::ServicePolicyTableIndex(Kel::S32 ifIndex, Kel::S32 direction) noexcept
    : ifIndex_(ifIndex), direction_(direction) {}

Kel::U32 ServicePolicyTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(ifIndex_);
  h.add(direction_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const ServicePolicyTableIndex& index) {
  return out << '(' << index.ifIndex() << ", " << index.direction() << ')';
}

}  // namespace QosSnmp
