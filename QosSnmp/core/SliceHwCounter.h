// Qos::SliceHwCounter: the ECN counters of one hardware slice, per chip.
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

#include "QosSnmp/core/ChipCounter.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class SliceHwCounter : public Kel::Entity {
 public:
  struct PerChipCount : Kel::CollectionAttribute<1, Kel::String> {};

  explicit SliceHwCounter(Kel::String name);

  // The counters of each chip, by chip name.
  Kel::Ptr<const ChipCounter> perChipCount(const Kel::String& name) const { return perChipCount_.get(name); }
  const Kel::Collection<PerChipCount, Kel::Ptr<ChipCounter>>& perChipCount() const { return perChipCount_; }
  // REQUIRES: chipCounter is not null (else MutatorArgNullPointerException), chipCounter->name() == name.
  void perChipCountIs(const Kel::String& name, Kel::Ptr<ChipCounter> chipCounter);
  bool perChipCountDel(const Kel::String& name) { return perChipCount_.del(*this, name); }
  void perChipCountDelAll() { perChipCount_.delAll(*this); }

 private:
  Kel::Collection<PerChipCount, Kel::Ptr<ChipCounter>> perChipCount_;
};

}  // namespace Qos
