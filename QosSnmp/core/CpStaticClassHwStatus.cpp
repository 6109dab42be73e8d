#include "QosSnmp/core/CpStaticClassHwStatus.h"

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

CpStaticClassHwStatus::CpStaticClassHwStatus(ClassMapCpStaticType cpStaticType)
    : Entity(keyText(cpStaticType)), cpStaticType_(cpStaticType) {}

}  // namespace Qos
