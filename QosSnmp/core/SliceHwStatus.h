// Qos::SliceHwStatus: the QoS programming status of one hardware slice. A member of the slice hardware-
// status directory (a Kel::Dir), under the slice's name.
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

#include "QosSnmp/core/CpStaticClassHwStatus.h"
#include "QosSnmp/core/EcnIntfCounterStatus.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Qos {

class SliceHwStatus : public Kel::Entity {
 public:
  struct PmapTypeHwStatus : Kel::CollectionAttribute<1, MapType> {};
  struct CpStaticClassHwStatus : Kel::CollectionAttribute<2, ClassMapCpStaticType> {};
  struct EcnIntfCounterHwStatus : Kel::CollectionAttribute<3, Pellix::IntfId> {};

  explicit SliceHwStatus(Kel::String name);

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

  // The static control-plane classes programmed on the slice.
  Kel::Ptr<const Qos::CpStaticClassHwStatus> cpStaticClassHwStatus(ClassMapCpStaticType cpStaticType) const {
    return cpStaticClassHwStatus_.get(cpStaticType);
  }
  const Kel::Collection<CpStaticClassHwStatus, Kel::Ptr<Qos::CpStaticClassHwStatus>>& cpStaticClassHwStatus()
      const {
    return cpStaticClassHwStatus_;
  }
  // REQUIRES: cpStaticClassHwStatus is not null (else MutatorArgNullPointerException),
  // cpStaticClassHwStatus->cpStaticType() == cpStaticType.
  void cpStaticClassHwStatusIs(ClassMapCpStaticType cpStaticType,
                               Kel::Ptr<Qos::CpStaticClassHwStatus> cpStaticClassHwStatus);
  bool cpStaticClassHwStatusDel(ClassMapCpStaticType cpStaticType) {
    return cpStaticClassHwStatus_.del(*this, cpStaticType);
  }
  void cpStaticClassHwStatusDelAll() { cpStaticClassHwStatus_.delAll(*this); }

  // The ECN counters programmed on the slice, per interface, in the interfaces' natural order.
  Kel::Ptr<const EcnIntfCounterStatus> ecnIntfCounterHwStatus(const Pellix::IntfId& intfId) const {
    return ecnIntfCounterHwStatus_.get(intfId);
  }
  const Kel::Collection<EcnIntfCounterHwStatus, Kel::Ptr<EcnIntfCounterStatus>>& ecnIntfCounterHwStatus()
      const {
    return ecnIntfCounterHwStatus_;
  }
  // REQUIRES: ecnIntfCounterStatus is not null (else MutatorArgNullPointerException),
  // ecnIntfCounterStatus->intfId() == intfId.
  void ecnIntfCounterHwStatusIs(const Pellix::IntfId& intfId,
                                Kel::Ptr<EcnIntfCounterStatus> ecnIntfCounterStatus);
  bool ecnIntfCounterHwStatusDel(const Pellix::IntfId& intfId) {
    return ecnIntfCounterHwStatus_.del(*this, intfId);
  }
  void ecnIntfCounterHwStatusDelAll() { ecnIntfCounterHwStatus_.delAll(*this); }

 private:
  Kel::Collection<PmapTypeHwStatus, Kel::Ptr<PolicyMapTypeHwStatus>> pmapTypeHwStatus_;
  Kel::Collection<CpStaticClassHwStatus, Kel::Ptr<Qos::CpStaticClassHwStatus>> cpStaticClassHwStatus_;
  Kel::Collection<EcnIntfCounterHwStatus, Kel::Ptr<EcnIntfCounterStatus>> ecnIntfCounterHwStatus_;
};

}  // namespace Qos
