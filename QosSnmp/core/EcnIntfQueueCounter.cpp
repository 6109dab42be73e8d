#include "QosSnmp/core/EcnIntfQueueCounter.h"

#include <utility>

namespace Qos {

EcnIntfQueueCounter::EcnIntfQueueCounter(Pellix::IntfId intfId)
    : Entity(intfId.name()), intfId_(std::move(intfId)) {}

}  // namespace Qos
