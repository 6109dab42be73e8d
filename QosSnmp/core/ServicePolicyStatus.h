// Qos::ServicePolicyStatus: one service policy in force and the interfaces it is applied to.
//
// Keyed by its ServicePolicyKey, given at construction and never changed; the entity's name is the key's
// printed form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "QosSnmp/core/IntfPairKey.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ServicePolicyStatus : public Kel::Entity {
 public:
  struct IntfIds : Kel::CollectionAttribute<1, IntfPairKey> {};

  explicit ServicePolicyStatus(ServicePolicyKey key);

  const ServicePolicyKey& key() const { return key_; }

  // Where the policy is applied: interface and sub-interface pairs, in their order; a missing pair reads as
  // false.
  bool intfIds(const IntfPairKey& intfPair) const { return intfIds_.get(intfPair); }
  const Kel::Collection<IntfIds, bool>& intfIds() const { return intfIds_; }
  void intfIdsIs(const IntfPairKey& intfPair, bool applied) { intfIds_.set(*this, intfPair, applied); }
  bool intfIdsDel(const IntfPairKey& intfPair) { return intfIds_.del(*this, intfPair); }
  void intfIdsDelAll() { intfIds_.delAll(*this); }

 private:
  const ServicePolicyKey key_;
  Kel::Collection<IntfIds, bool> intfIds_;
};

}  // namespace Qos
