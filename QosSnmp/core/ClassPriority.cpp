#include "QosSnmp/core/ClassPriority.h"

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

ClassPriority::ClassPriority(Kel::U32 prio) : Entity(keyText(prio)), prio_(prio) {}

}  // namespace Qos
