#include "QosSnmp/core/PolicerHwStatus.h"

#include <utility>

namespace Qos {

PolicerHwStatus::PolicerHwStatus(Kel::String intfName) : Entity(std::move(intfName)) {}

}  // namespace Qos
