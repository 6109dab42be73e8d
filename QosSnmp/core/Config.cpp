#include "QosSnmp/core/Config.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

Config::Config(Kel::String name) : Entity(std::move(name)) {}

void Config::servicePolicyConfigIs(const ServicePolicyKey& key,
                                   Kel::Ptr<Qos::ServicePolicyConfig> servicePolicyConfig) {
  Kel::requireArgument(servicePolicyConfig, "servicePolicyConfig");
  KEL_ASSERT(servicePolicyConfig->key() == key);
  servicePolicyConfig_.set(*this, key, std::move(servicePolicyConfig));
}

}  // namespace Qos
