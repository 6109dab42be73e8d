// Interface::AllIntfStatusDir: the status of every interface of the switch.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/IntfStatus.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Interface {

class AllIntfStatusDir : public Kel::Entity {
 public:
  struct IntfStatus : Kel::CollectionAttribute<1, Pellix::IntfId> {};

  // The entity name is for traces only.
  explicit AllIntfStatusDir(Kel::String name = {});

  // The interfaces, in their natural order (Ethernet2 before Ethernet10).
  Kel::Ptr<const Interface::IntfStatus> intfStatus(const Pellix::IntfId& intfId) const {
    return intfStatus_.get(intfId);
  }
  const Kel::Collection<IntfStatus, Kel::Ptr<Interface::IntfStatus>>& intfStatus() const {
    return intfStatus_;
  }
  // REQUIRES: intfStatus is not null (else MutatorArgNullPointerException), intfStatus->intfId() == intfId.
  void intfStatusIs(const Pellix::IntfId& intfId, Kel::Ptr<Interface::IntfStatus> intfStatus);
  bool intfStatusDel(const Pellix::IntfId& intfId) { return intfStatus_.del(*this, intfId); }
  void intfStatusDelAll() { intfStatus_.delAll(*this); }

 private:
  Kel::Collection<IntfStatus, Kel::Ptr<Interface::IntfStatus>> intfStatus_;
};

}  // namespace Interface
