// Qos::HwCounter: the QoS hardware's ECN counters, per slice.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/SliceHwCounter.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class HwCounter : public Kel::Entity {
 public:
  struct SliceHwCounter : Kel::CollectionAttribute<1, Kel::String> {};

  // The entity name is for traces only.
  explicit HwCounter(Kel::String name = {});

  // The counters of each slice, by slice name.
  Kel::Ptr<const Qos::SliceHwCounter> sliceHwCounter(const Kel::String& name) const {
    return sliceHwCounter_.get(name);
  }
  const Kel::Collection<SliceHwCounter, Kel::Ptr<Qos::SliceHwCounter>>& sliceHwCounter() const {
    return sliceHwCounter_;
  }
  // REQUIRES: sliceHwCounter is not null (else MutatorArgNullPointerException), sliceHwCounter->name() ==
  // name.
  void sliceHwCounterIs(const Kel::String& name, Kel::Ptr<Qos::SliceHwCounter> sliceHwCounter);
  bool sliceHwCounterDel(const Kel::String& name) { return sliceHwCounter_.del(*this, name); }
  void sliceHwCounterDelAll() { sliceHwCounter_.delAll(*this); }

 private:
  Kel::Collection<SliceHwCounter, Kel::Ptr<Qos::SliceHwCounter>> sliceHwCounter_;
};

}  // namespace Qos
