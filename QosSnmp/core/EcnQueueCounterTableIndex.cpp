#include "QosSnmp/core/EcnQueueCounterTableIndex.h"

#include <ostream>

namespace QosSnmp {

EcnQueueCounterTableIndex::EcnQueueCounterTableIndex(Kel::S32 ifIndex, Kel::U8 queue) noexcept
    : ifIndex_(ifIndex), queue_(queue) {}

Kel::U32 EcnQueueCounterTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(ifIndex_);
  h.addByte(queue_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const EcnQueueCounterTableIndex& index) {
  return out << '(' << index.ifIndex() << ", " << static_cast<unsigned>(index.queue()) << ')';
}

}  // namespace QosSnmp
