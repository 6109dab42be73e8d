#include "QosSnmp/core/PolicyMapStatus.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

PolicyMapStatus::PolicyMapStatus(Kel::String name) : Entity(std::move(name)) {}

void PolicyMapStatus::classActionIs(const Kel::String& cmapName, Kel::Ptr<Qos::ClassAction> classAction) {
  Kel::requireArgument(classAction, "classAction");
  KEL_ASSERT(classAction->name() == cmapName);
  classAction_.set(*this, cmapName, std::move(classAction));
}

void PolicyMapStatus::classPrioIs(Kel::U32 prio, Kel::Ptr<ClassPriority> classPriority) {
  Kel::requireArgument(classPriority, "classPriority");
  KEL_ASSERT(classPriority->prio() == prio);
  classPrio_.set(*this, prio, std::move(classPriority));
}

void PolicyMapStatus::cmapCountersIs(const Kel::String& cmapName, Kel::Ptr<Counter> counter) {
  Kel::requireArgument(counter, "counter");
  KEL_ASSERT(counter->name() == cmapName);
  cmapCounters_.set(*this, cmapName, std::move(counter));
}

}  // namespace Qos
