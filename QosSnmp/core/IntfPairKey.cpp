#include "QosSnmp/core/IntfPairKey.h"

#include <ostream>

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

Kel::U32 IntfPairKey::hash() const noexcept {
  return hashFinish(hashCombine(hashCombine(kKeyHashSeed, intfId_.hash()), subIntfId_.hash()));
}

std::ostream& operator<<(std::ostream& out, const IntfPairKey& key) {
  out << key.intfId();
  if (!key.subIntfId().empty()) {
    out << ',' << key.subIntfId();
  }
  return out;
}

}  // namespace Qos
