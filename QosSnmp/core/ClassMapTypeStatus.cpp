#include "QosSnmp/core/ClassMapTypeStatus.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"
#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

ClassMapTypeStatus::ClassMapTypeStatus(MapType type) : Entity(keyText(type)), type_(type) {}

void ClassMapTypeStatus::cmapIs(const Kel::String& name, Kel::Ptr<ClassMapStatus> classMapStatus) {
  Kel::requireArgument(classMapStatus, "classMapStatus");
  KEL_ASSERT(classMapStatus->name() == name);
  cmap_.set(*this, name, std::move(classMapStatus));
}

}  // namespace Qos
