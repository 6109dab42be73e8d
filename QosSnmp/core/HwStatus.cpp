#include "QosSnmp/core/HwStatus.h"

#include <utility>

namespace Qos {

HwStatus::HwStatus(Kel::String name) : Entity(std::move(name)) {}

}  // namespace Qos
