#include "QosSnmp/core/IntfStatus.h"

#include <ostream>
#include <utility>

namespace Interface {

IntfStatus::IntfStatus(Pellix::IntfId intfId) : Entity(intfId.name()), intfId_(std::move(intfId)) {}

std::ostream& operator<<(std::ostream& out, IntfOperStatus value) {
  switch (value) {
    case intfOperUnknown_:
      return out << "intfOperUnknown";
    case intfOperUp_:
      return out << "intfOperUp";
    case intfOperDown_:
      return out << "intfOperDown";
    case intfOperNotPresent_:
      return out << "intfOperNotPresent";
  }
  return out << static_cast<Kel::U32>(value);
}

}  // namespace Interface
