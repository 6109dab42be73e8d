#include "QosSnmp/core/EcnIntfCounterStatus.h"

#include <utility>

namespace Qos {

EcnIntfCounterStatus::EcnIntfCounterStatus(Pellix::IntfId intfId)
    : Entity(intfId.name()), intfId_(std::move(intfId)) {}

}  // namespace Qos
