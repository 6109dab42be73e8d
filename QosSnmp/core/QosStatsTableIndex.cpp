#include "QosSnmp/core/QosStatsTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

QosStatsTableIndex::QosStatsTableIndex(Snmp::String pmapName, Kel::S32 type, Snmp::String cmapName,
                                       Kel::S32 qualifier) noexcept
    : pmapName_(std::move(pmapName)), type_(type), cmapName_(std::move(cmapName)), qualifier_(qualifier) {}

Kel::U32 QosStatsTableIndex::hash() const noexcept {
  IndexHash h;
  // Class-map name first: see the header.
  h.add(cmapName_);
  h.add(pmapName_);
  h.add(type_);
  h.add(qualifier_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const QosStatsTableIndex& index) {
  return out << '(' << index.pmapName() << ", " << index.type() << ", " << index.cmapName() << ", "
             << index.qualifier() << ')';
}

}  // namespace QosSnmp
