#include "QosSnmp/core/HwCounter.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

HwCounter::HwCounter(Kel::String name) : Entity(std::move(name)) {}

void HwCounter::sliceHwCounterIs(const Kel::String& name, Kel::Ptr<Qos::SliceHwCounter> sliceHwCounter) {
  Kel::requireArgument(sliceHwCounter, "sliceHwCounter");
  KEL_ASSERT(sliceHwCounter->name() == name);
  sliceHwCounter_.set(*this, name, std::move(sliceHwCounter));
}

}  // namespace Qos
