#include "QosSnmp/core/PolicyMapClassTableIndex.h"

#include <ostream>
#include <utility>

namespace QosSnmp {

PolicyMapClassTableIndex::PolicyMapClassTableIndex(Snmp::String name, Qos::MapType type,
                                                   Kel::U32 prio) noexcept
    : name_(std::move(name)), type_(type), prio_(prio) {}

Kel::U32 PolicyMapClassTableIndex::hash() const noexcept {
  IndexHash h;
  h.add(name_);
  h.add(type_);
  h.add(prio_);
  return h.finish();
}

std::ostream& operator<<(std::ostream& out, const PolicyMapClassTableIndex& index) {
  return out << '(' << index.name() << ", " << static_cast<Kel::U32>(index.type()) << ", " << index.prio()
             << ')';
}

}  // namespace QosSnmp
