#include "QosSnmp/core/SliceHwCounter.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

SliceHwCounter::SliceHwCounter(Kel::String name) : Entity(std::move(name)) {}

void SliceHwCounter::perChipCountIs(const Kel::String& name, Kel::Ptr<ChipCounter> chipCounter) {
  Kel::requireArgument(chipCounter, "chipCounter");
  KEL_ASSERT(chipCounter->name() == name);
  perChipCount_.set(*this, name, std::move(chipCounter));
}

}  // namespace Qos
