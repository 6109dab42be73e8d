#include "QosSnmp/core/AclSliceHwStatus.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

AclSliceHwStatus::AclSliceHwStatus(Kel::String name) : Entity(std::move(name)) {}

void AclSliceHwStatus::pmapTypeHwStatusIs(MapType type,
                                          Kel::Ptr<PolicyMapTypeHwStatus> policyMapTypeHwStatus) {
  Kel::requireArgument(policyMapTypeHwStatus, "policyMapTypeHwStatus");
  KEL_ASSERT(policyMapTypeHwStatus->type() == type);
  pmapTypeHwStatus_.set(*this, type, std::move(policyMapTypeHwStatus));
}

}  // namespace Qos
