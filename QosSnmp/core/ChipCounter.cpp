#include "QosSnmp/core/ChipCounter.h"

#include <utility>

namespace Qos {

ChipCounter::ChipCounter(Kel::String name) : Entity(std::move(name)) {}

}  // namespace Qos
