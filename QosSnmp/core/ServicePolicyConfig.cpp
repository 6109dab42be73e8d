#include "QosSnmp/core/ServicePolicyConfig.h"

#include <utility>

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

ServicePolicyConfig::ServicePolicyConfig(ServicePolicyKey key) : Entity(keyText(key)), key_(std::move(key)) {}

}  // namespace Qos
