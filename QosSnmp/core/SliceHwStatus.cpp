#include "QosSnmp/core/SliceHwStatus.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

SliceHwStatus::SliceHwStatus(Kel::String name) : Entity(std::move(name)) {}

void SliceHwStatus::pmapTypeHwStatusIs(MapType type, Kel::Ptr<PolicyMapTypeHwStatus> policyMapTypeHwStatus) {
  Kel::requireArgument(policyMapTypeHwStatus, "policyMapTypeHwStatus");
  KEL_ASSERT(policyMapTypeHwStatus->type() == type);
  pmapTypeHwStatus_.set(*this, type, std::move(policyMapTypeHwStatus));
}

void SliceHwStatus::cpStaticClassHwStatusIs(ClassMapCpStaticType cpStaticType,
                                            Kel::Ptr<Qos::CpStaticClassHwStatus> cpStaticClassHwStatus) {
  Kel::requireArgument(cpStaticClassHwStatus, "cpStaticClassHwStatus");
  KEL_ASSERT(cpStaticClassHwStatus->cpStaticType() == cpStaticType);
  cpStaticClassHwStatus_.set(*this, cpStaticType, std::move(cpStaticClassHwStatus));
}

void SliceHwStatus::ecnIntfCounterHwStatusIs(const Pellix::IntfId& intfId,
                                             Kel::Ptr<EcnIntfCounterStatus> ecnIntfCounterStatus) {
  Kel::requireArgument(ecnIntfCounterStatus, "ecnIntfCounterStatus");
  KEL_ASSERT(ecnIntfCounterStatus->intfId() == intfId);
  ecnIntfCounterHwStatus_.set(*this, intfId, std::move(ecnIntfCounterStatus));
}

}  // namespace Qos
