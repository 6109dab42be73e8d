#include "QosSnmp/core/Counter.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

Counter::Counter(Kel::String name) : Entity(std::move(name)) {}

void Counter::policerHwStatusIs(const Kel::String& intfName, Kel::Ptr<Qos::PolicerHwStatus> policerHwStatus) {
  Kel::requireArgument(policerHwStatus, "policerHwStatus");
  KEL_ASSERT(policerHwStatus->intfName() == intfName);
  policerHwStatus_.set(*this, intfName, std::move(policerHwStatus));
}

}  // namespace Qos
