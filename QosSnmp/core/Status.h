// Qos::Status: the QoS processes' view of the class maps, policy maps and service policies in force: the
// root of the QoS state the agent mirrors.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class Status : public Kel::Entity {
 public:
  struct CmapType : Kel::CollectionAttribute<1, MapType> {};
  struct PmapType : Kel::CollectionAttribute<2, MapType> {};
  struct ServicePolicyStatus : Kel::CollectionAttribute<3, ServicePolicyKey> {};

  // The entity name is for traces only.
  explicit Status(Kel::String name = {});

  // The class maps, one collection per map type.
  Kel::Ptr<const ClassMapTypeStatus> cmapType(MapType type) const { return cmapType_.get(type); }
  const Kel::Collection<CmapType, Kel::Ptr<ClassMapTypeStatus>>& cmapType() const { return cmapType_; }
  // REQUIRES: classMapTypeStatus is not null (else MutatorArgNullPointerException),
  // classMapTypeStatus->type() == type.
  void cmapTypeIs(MapType type, Kel::Ptr<ClassMapTypeStatus> classMapTypeStatus);
  bool cmapTypeDel(MapType type) { return cmapType_.del(*this, type); }
  void cmapTypeDelAll() { cmapType_.delAll(*this); }

  // The policy maps, one collection per map type.
  Kel::Ptr<const PolicyMapTypeStatus> pmapType(MapType type) const { return pmapType_.get(type); }
  const Kel::Collection<PmapType, Kel::Ptr<PolicyMapTypeStatus>>& pmapType() const { return pmapType_; }
  // REQUIRES: policyMapTypeStatus is not null (else MutatorArgNullPointerException),
  // policyMapTypeStatus->type() == type.
  void pmapTypeIs(MapType type, Kel::Ptr<PolicyMapTypeStatus> policyMapTypeStatus);
  bool pmapTypeDel(MapType type) { return pmapType_.del(*this, type); }
  void pmapTypeDelAll() { pmapType_.delAll(*this); }

  // The service policies in force, by policy, with the interfaces they are applied to.
  Kel::Ptr<const Qos::ServicePolicyStatus> servicePolicyStatus(const ServicePolicyKey& key) const {
    return servicePolicyStatus_.get(key);
  }
  const Kel::Collection<ServicePolicyStatus, Kel::Ptr<Qos::ServicePolicyStatus>>& servicePolicyStatus()
      const {
    return servicePolicyStatus_;
  }
  // REQUIRES: servicePolicyStatus is not null (else MutatorArgNullPointerException),
  // servicePolicyStatus->key() == key.
  void servicePolicyStatusIs(const ServicePolicyKey& key,
                             Kel::Ptr<Qos::ServicePolicyStatus> servicePolicyStatus);
  bool servicePolicyStatusDel(const ServicePolicyKey& key) { return servicePolicyStatus_.del(*this, key); }
  void servicePolicyStatusDelAll() { servicePolicyStatus_.delAll(*this); }

 private:
  Kel::Collection<CmapType, Kel::Ptr<ClassMapTypeStatus>> cmapType_;
  Kel::Collection<PmapType, Kel::Ptr<PolicyMapTypeStatus>> pmapType_;
  Kel::Collection<ServicePolicyStatus, Kel::Ptr<Qos::ServicePolicyStatus>> servicePolicyStatus_;
};

}  // namespace Qos
