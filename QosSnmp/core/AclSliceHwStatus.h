// Qos::AclSliceHwStatus: the QoS programming status of one ACL hardware slice. A member of the ACL slice
// hardware-status directory (a Kel::Dir), under the slice's name.
//
// Keyed by the slice name (the entity's name), given at construction and never changed.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class AclSliceHwStatus : public Kel::Entity {
 public:
  struct PmapTypeHwStatus : Kel::CollectionAttribute<1, MapType> {};

  explicit AclSliceHwStatus(Kel::String name);

  // The policy maps programmed on the slice, per map type.
  Kel::Ptr<const PolicyMapTypeHwStatus> pmapTypeHwStatus(MapType type) const {
    return pmapTypeHwStatus_.get(type);
  }
  const Kel::Collection<PmapTypeHwStatus, Kel::Ptr<PolicyMapTypeHwStatus>>& pmapTypeHwStatus() const {
    return pmapTypeHwStatus_;
  }
  // REQUIRES: policyMapTypeHwStatus is not null (else MutatorArgNullPointerException),
  // policyMapTypeHwStatus->type() == type.
  void pmapTypeHwStatusIs(MapType type, Kel::Ptr<PolicyMapTypeHwStatus> policyMapTypeHwStatus);
  bool pmapTypeHwStatusDel(MapType type) { return pmapTypeHwStatus_.del(*this, type); }
  void pmapTypeHwStatusDelAll() { pmapTypeHwStatus_.delAll(*this); }

 private:
  Kel::Collection<PmapTypeHwStatus, Kel::Ptr<PolicyMapTypeHwStatus>> pmapTypeHwStatus_;
};

}  // namespace Qos
