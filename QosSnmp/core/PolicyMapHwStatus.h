// Qos::PolicyMapHwStatus: the hardware status of one policy map in one direction, class by class.
//
// Keyed by its PolicyMapHwStatusKey, given at construction and never changed; the entity's name is the key's
// printed form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class PolicyMapHwStatus : public Kel::Entity {
 public:
  struct PmapKind : Kel::ScalarAttribute<1> {};
  struct Cmap : Kel::CollectionAttribute<2, Kel::String> {};

  explicit PolicyMapHwStatus(PolicyMapHwStatusKey key);

  const PolicyMapHwStatusKey& key() const { return key_; }

  // The kind of map as the hardware numbers it (the agent compares it with 1 and 2).
  Kel::S32 pmapKind() const { return pmapKind_.get(); }
  void pmapKindIs(Kel::S32 pmapKind) { pmapKind_.set(*this, pmapKind); }

  // The classes, by class-map name.
  Kel::Ptr<const ClassMapHwStatus> cmap(const Kel::String& name) const { return cmap_.get(name); }
  const Kel::Collection<Cmap, Kel::Ptr<ClassMapHwStatus>>& cmap() const { return cmap_; }
  // REQUIRES: classMapHwStatus is not null (else MutatorArgNullPointerException), classMapHwStatus->name() ==
  // name.
  void cmapIs(const Kel::String& name, Kel::Ptr<ClassMapHwStatus> classMapHwStatus);
  bool cmapDel(const Kel::String& name) { return cmap_.del(*this, name); }
  void cmapDelAll() { cmap_.delAll(*this); }

 private:
  const PolicyMapHwStatusKey key_;
  Kel::Scalar<PmapKind, Kel::S32> pmapKind_;
  Kel::Collection<Cmap, Kel::Ptr<ClassMapHwStatus>> cmap_;
};

}  // namespace Qos
