#include "QosSnmp/core/PolicyMapTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

PolicyMapTableIndex::PolicyMapTableIndex(Snmp::String name, Qos::MapType type) noexcept
    : name_(std::move(name)), type_(type) {}

Kel::U32 PolicyMapTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(name_);
  h.add(type_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const PolicyMapTableIndex& index) {
  return out << '(' << index.name() << ", " << static_cast<Kel::U32>(index.type()) << ')';
}

}  // namespace QosSnmp
