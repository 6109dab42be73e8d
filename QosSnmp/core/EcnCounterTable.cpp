#include "QosSnmp/core/EcnCounterTable.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

EcnCounterTable::EcnCounterTable(Kel::String name) : Entity(std::move(name)) {}

void EcnCounterTable::intfQueueCounterIs(const Pellix::IntfId& intfId,
                                         Kel::Ptr<EcnIntfQueueCounter> ecnIntfQueueCounter) {
  Kel::requireArgument(ecnIntfQueueCounter, "ecnIntfQueueCounter");
  KEL_ASSERT(ecnIntfQueueCounter->intfId() == intfId);
  intfQueueCounter_.set(*this, intfId, std::move(ecnIntfQueueCounter));
}

}  // namespace Qos
