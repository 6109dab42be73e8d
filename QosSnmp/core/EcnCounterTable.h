// Qos::EcnCounterTable: the per-queue ECN counters of every interface.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/EcnIntfQueueCounter.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Qos {

class EcnCounterTable : public Kel::Entity {
 public:
  struct IntfQueueCounter : Kel::CollectionAttribute<1, Pellix::IntfId> {};

  // The entity name is for traces only.
  explicit EcnCounterTable(Kel::String name = {});

  // The counters of each interface, in the interfaces' natural order.
  Kel::Ptr<const EcnIntfQueueCounter> intfQueueCounter(const Pellix::IntfId& intfId) const {
    return intfQueueCounter_.get(intfId);
  }
  const Kel::Collection<IntfQueueCounter, Kel::Ptr<EcnIntfQueueCounter>>& intfQueueCounter() const {
    return intfQueueCounter_;
  }
  // REQUIRES: ecnIntfQueueCounter is not null (else MutatorArgNullPointerException),
  // ecnIntfQueueCounter->intfId() == intfId.
  void intfQueueCounterIs(const Pellix::IntfId& intfId, Kel::Ptr<EcnIntfQueueCounter> ecnIntfQueueCounter);
  bool intfQueueCounterDel(const Pellix::IntfId& intfId) { return intfQueueCounter_.del(*this, intfId); }
  void intfQueueCounterDelAll() { intfQueueCounter_.delAll(*this); }

 private:
  Kel::Collection<IntfQueueCounter, Kel::Ptr<EcnIntfQueueCounter>> intfQueueCounter_;
};

}  // namespace Qos
