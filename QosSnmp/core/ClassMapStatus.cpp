#include "QosSnmp/core/ClassMapStatus.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

ClassMapStatus::ClassMapStatus(Kel::String name) : Entity(std::move(name)) {}

void ClassMapStatus::matchIs(ClassMapMatchOption option, Kel::Ptr<ClassMapMatch> classMapMatch) {
  Kel::requireArgument(classMapMatch, "classMapMatch");
  KEL_ASSERT(classMapMatch->option() == option);
  match_.set(*this, option, std::move(classMapMatch));
}

}  // namespace Qos
