// Qos::PolicyMapTypeHwStatus: the hardware status of the policy maps of one map type on one slice.
//
// Keyed by its map type, given at construction and never changed; the entity's name is the type's printed
// form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class PolicyMapTypeHwStatus : public Kel::Entity {
 public:
  struct Pmap : Kel::CollectionAttribute<1, PolicyMapHwStatusKey> {};

  explicit PolicyMapTypeHwStatus(MapType type);

  MapType type() const { return type_; }

  // The policy maps, by direction and name: every input policy before any output policy.
  Kel::Ptr<const PolicyMapHwStatus> pmap(const PolicyMapHwStatusKey& key) const { return pmap_.get(key); }
  const Kel::Collection<Pmap, Kel::Ptr<PolicyMapHwStatus>>& pmap() const { return pmap_; }
  // REQUIRES: policyMapHwStatus is not null (else MutatorArgNullPointerException), policyMapHwStatus->key()
  // == key.
  void pmapIs(const PolicyMapHwStatusKey& key, Kel::Ptr<PolicyMapHwStatus> policyMapHwStatus);
  bool pmapDel(const PolicyMapHwStatusKey& key) { return pmap_.del(*this, key); }
  void pmapDelAll() { pmap_.delAll(*this); }

 private:
  const MapType type_;
  Kel::Collection<Pmap, Kel::Ptr<PolicyMapHwStatus>> pmap_;
};

}  // namespace Qos
