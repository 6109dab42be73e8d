#include "QosSnmp/core/ServicePolicyKey.h"

#include <ostream>

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

Kel::U32 ServicePolicyKey::hash() const noexcept {
  Kel::U32 h = hashCombine(kKeyHashSeed, type_);
  h = hashCombine(h, direction_);
  h = hashCombine(h, pmapName_.hash());
  return hashFinish(h);
}

std::ostream& operator<<(std::ostream& out, const ServicePolicyKey& key) {
  return out << key.type() << '/' << key.direction() << '/' << key.pmapName();
}

}  // namespace Qos
