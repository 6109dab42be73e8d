#include "QosSnmp/core/ClassMapTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

ClassMapTableIndex::ClassMapTableIndex(Snmp::String name, Qos::MapType type) noexcept
    : name_(std::move(name)), type_(type) {}

Kel::U32 ClassMapTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(name_);
  h.add(type_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const ClassMapTableIndex& index) {
  return out << '(' << index.name() << ", " << static_cast<Kel::U32>(index.type()) << ')';
}

}  // namespace QosSnmp
