#include "QosSnmp/core/ClassMapMatch.h"

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

ClassMapMatch::ClassMapMatch(ClassMapMatchOption option) : Entity(keyText(option)), option_(option) {}

}  // namespace Qos
