#include "QosSnmp/core/ClassMapHwStatus.h"

#include <utility>

namespace Qos {

ClassMapHwStatus::ClassMapHwStatus(Kel::String name) : Entity(std::move(name)) {}

}  // namespace Qos
