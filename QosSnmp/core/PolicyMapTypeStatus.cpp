#include "QosSnmp/core/PolicyMapTypeStatus.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"
#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

PolicyMapTypeStatus::PolicyMapTypeStatus(MapType type) : Entity(keyText(type)), type_(type) {}

void PolicyMapTypeStatus::pmapIs(const Kel::String& name, Kel::Ptr<PolicyMapStatus> policyMapStatus) {
  Kel::requireArgument(policyMapStatus, "policyMapStatus");
  KEL_ASSERT(policyMapStatus->name() == name);
  pmap_.set(*this, name, std::move(policyMapStatus));
}

}  // namespace Qos
