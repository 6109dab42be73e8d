#include "QosSnmp/core/QosPolicerStatsTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

QosPolicerStatsTableIndex::QosPolicerStatsTableIndex(Snmp::String pmapName, Kel::S32 type,
                                                     Snmp::String cmapName, Kel::S32 ifIndex) noexcept
    : pmapName_(std::move(pmapName)), type_(type), cmapName_(std::move(cmapName)), ifIndex_(ifIndex) {}

Kel::U32 QosPolicerStatsTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(pmapName_);
  h.add(type_);
  h.add(cmapName_);
  h.add(ifIndex_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const QosPolicerStatsTableIndex& index) {
  return out << '(' << index.pmapName() << ", " << index.type() << ", " << index.cmapName() << ", "
             << index.ifIndex() << ')';
}

}  // namespace QosSnmp
