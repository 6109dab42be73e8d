#include "QosSnmp/core/PolicyMapHwStatus.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"
#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

PolicyMapHwStatus::PolicyMapHwStatus(PolicyMapHwStatusKey key) : Entity(keyText(key)), key_(std::move(key)) {}

void PolicyMapHwStatus::cmapIs(const Kel::String& name, Kel::Ptr<ClassMapHwStatus> classMapHwStatus) {
  Kel::requireArgument(classMapHwStatus, "classMapHwStatus");
  KEL_ASSERT(classMapHwStatus->name() == name);
  cmap_.set(*this, name, std::move(classMapHwStatus));
}

}  // namespace Qos
