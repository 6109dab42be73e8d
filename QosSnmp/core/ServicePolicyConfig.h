// Qos::ServicePolicyConfig: one configured service policy — a policy map applied in one direction — and the
// interfaces the operator applied it to.
//
// Keyed by its ServicePolicyKey, given at construction and never changed; the entity's name is the key's
// printed form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Qos {

class ServicePolicyConfig : public Kel::Entity {
 public:
  struct IntfIds : Kel::CollectionAttribute<1, Pellix::IntfId> {};

  explicit ServicePolicyConfig(ServicePolicyKey key);

  const ServicePolicyKey& key() const { return key_; }

  // The interfaces the policy is configured on, in the interfaces' natural order; a missing interface reads
  // as false.
  bool intfIds(const Pellix::IntfId& intfId) const { return intfIds_.get(intfId); }
  const Kel::Collection<IntfIds, bool>& intfIds() const { return intfIds_; }
  void intfIdsIs(const Pellix::IntfId& intfId, bool configured) { intfIds_.set(*this, intfId, configured); }
  bool intfIdsDel(const Pellix::IntfId& intfId) { return intfIds_.del(*this, intfId); }
  void intfIdsDelAll() { intfIds_.delAll(*this); }

 private:
  const ServicePolicyKey key_;
  Kel::Collection<IntfIds, bool> intfIds_;
};

}  // namespace Qos
