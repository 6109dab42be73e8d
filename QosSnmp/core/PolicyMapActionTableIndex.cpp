#include "QosSnmp/core/PolicyMapActionTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

PolicyMapActionTableIndex::PolicyMapActionTableIndex(Snmp::String pmapName, Kel::S32 type,
                                                     Snmp::String cmapName, Kel::S32 actionType) noexcept
    : pmapName_(std::move(pmapName)), type_(type), cmapName_(std::move(cmapName)), actionType_(actionType) {}

Kel::U32 PolicyMapActionTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(pmapName_);
  h.add(type_);
  h.add(cmapName_);
  h.add(actionType_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const PolicyMapActionTableIndex& index) {
  return out << '(' << index.pmapName() << ", " << index.type() << ", " << index.cmapName() << ", "
             << index.actionType() << ')';
}

}  // namespace QosSnmp
