#include "QosSnmp/core/PolicyMapHwStatusKey.h"

#include <ostream>

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

Kel::U32 PolicyMapHwStatusKey::hash() const noexcept {
  return hashFinish(hashCombine(hashCombine(kKeyHashSeed, direction_), pmapName_.hash()));
}

std::ostream& operator<<(std::ostream& out, const PolicyMapHwStatusKey& key) {
  return out << key.direction() << '/' << key.pmapName();
}

}  // namespace Qos
