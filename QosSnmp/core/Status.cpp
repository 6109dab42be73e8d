#include "QosSnmp/core/Status.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

Status::Status(Kel::String name) : Entity(std::move(name)) {}

void Status::cmapTypeIs(MapType type, Kel::Ptr<ClassMapTypeStatus> classMapTypeStatus) {
  Kel::requireArgument(classMapTypeStatus, "classMapTypeStatus");
  KEL_ASSERT(classMapTypeStatus->type() == type);
  cmapType_.set(*this, type, std::move(classMapTypeStatus));
}

void Status::pmapTypeIs(MapType type, Kel::Ptr<PolicyMapTypeStatus> policyMapTypeStatus) {
  Kel::requireArgument(policyMapTypeStatus, "policyMapTypeStatus");
  KEL_ASSERT(policyMapTypeStatus->type() == type);
  pmapType_.set(*this, type, std::move(policyMapTypeStatus));
}

void Status::servicePolicyStatusIs(const ServicePolicyKey& key,
                                   Kel::Ptr<Qos::ServicePolicyStatus> servicePolicyStatus) {
  Kel::requireArgument(servicePolicyStatus, "servicePolicyStatus");
  KEL_ASSERT(servicePolicyStatus->key() == key);
  servicePolicyStatus_.set(*this, key, std::move(servicePolicyStatus));
}

}  // namespace Qos
