#include "QosSnmp/core/ClassMapMatchTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

ClassMapMatchTableIndex::ClassMapMatchTableIndex(Snmp::String name, Qos::MapType type,
                                                 Kel::U32 matchIndex) noexcept
    : name_(std::move(name)), type_(type), matchIndex_(matchIndex) {}

Kel::U32 ClassMapMatchTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(name_);
  h.add(type_);
  h.add(matchIndex_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const ClassMapMatchTableIndex& index) {
  return out << '(' << index.name() << ", " << static_cast<Kel::U32>(index.type()) << ", "
             << index.matchIndex() << ')';
}

}  // namespace QosSnmp
