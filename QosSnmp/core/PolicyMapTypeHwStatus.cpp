#include "QosSnmp/core/PolicyMapTypeHwStatus.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"
#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

PolicyMapTypeHwStatus::PolicyMapTypeHwStatus(MapType type) : Entity(keyText(type)), type_(type) {}

void PolicyMapTypeHwStatus::pmapIs(const PolicyMapHwStatusKey& key,
                                   Kel::Ptr<PolicyMapHwStatus> policyMapHwStatus) {
  Kel::requireArgument(policyMapHwStatus, "policyMapHwStatus");
  KEL_ASSERT(policyMapHwStatus->key() == key);
  pmap_.set(*this, key, std::move(policyMapHwStatus));
}

}  // namespace Qos
