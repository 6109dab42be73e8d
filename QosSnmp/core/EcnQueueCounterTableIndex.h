// EcnQueueCounterTableIndex: the index of one row of the ECN queue counter
// table, one queue of one interface.
//
// Fields, in declaration and SNMP index order: the interface's ifIndex and
// the queue number (0 up to the number of ECN queues minus 1). The queue is
// an 8-bit field: it feeds one byte to the hash.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(ifIndex, queue)", the queue as a number.
//
//   const EcnQueueCounterTableIndex index(ifIndex, queue);
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class EcnQueueCounterTableIndex {
 public:
  EcnQueueCounterTableIndex(Kel::S32 ifIndex, Kel::U8 queue) noexcept;

  Kel::S32 ifIndex() const noexcept { return ifIndex_; }
  Kel::U8 queue() const noexcept { return queue_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const EcnQueueCounterTableIndex& a,
                         const EcnQueueCounterTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const EcnQueueCounterTableIndex& a,
                                          const EcnQueueCounterTableIndex& b) noexcept {
    if (const auto c = a.ifIndex_ <=> b.ifIndex_; std::is_neq(c)) {
      return c;
    }
    return a.queue_ <=> b.queue_;
  }

 private:
  Kel::S32 ifIndex_;
  Kel::U8 queue_;
};

std::ostream& operator<<(std::ostream& out, const EcnQueueCounterTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::EcnQueueCounterTableIndex> {
  std::size_t operator()(const QosSnmp::EcnQueueCounterTableIndex& index) const noexcept {
    return index.hash();
  }
};
