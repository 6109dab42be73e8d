// Qos::Config: the QoS configuration the agent reads — the service policies the operator applied, each with
// the interfaces it is applied to.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class Config : public Kel::Entity {
 public:
  struct ServicePolicyConfig : Kel::CollectionAttribute<1, ServicePolicyKey> {};

  // The entity name is for traces only.
  explicit Config(Kel::String name = {});

  // The configured service policies, by policy.
  Kel::Ptr<const Qos::ServicePolicyConfig> servicePolicyConfig(const ServicePolicyKey& key) const {
    return servicePolicyConfig_.get(key);
  }
  const Kel::Collection<ServicePolicyConfig, Kel::Ptr<Qos::ServicePolicyConfig>>& servicePolicyConfig()
      const {
    return servicePolicyConfig_;
  }
  // REQUIRES: servicePolicyConfig is not null (else MutatorArgNullPointerException),
  // servicePolicyConfig->key() == key.
  void servicePolicyConfigIs(const ServicePolicyKey& key,
                             Kel::Ptr<Qos::ServicePolicyConfig> servicePolicyConfig);
  bool servicePolicyConfigDel(const ServicePolicyKey& key) { return servicePolicyConfig_.del(*this, key); }
  void servicePolicyConfigDelAll() { servicePolicyConfig_.delAll(*this); }

 private:
  Kel::Collection<ServicePolicyConfig, Kel::Ptr<Qos::ServicePolicyConfig>> servicePolicyConfig_;
};

}  // namespace Qos
