#include "QosSnmp/core/ServicePolicyStatus.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

ServicePolicyStatus::ServicePolicyStatus(ServicePolicyKey key) : Entity(keyText(key)), key_(std::move(key)) {}

}  // namespace Qos
