// Qos::ClassMapTypeStatus: the class maps of one map type, by name.
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

#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ClassMapTypeStatus : public Kel::Entity {
 public:
  struct Cmap : Kel::CollectionAttribute<1, Kel::String> {};

  explicit ClassMapTypeStatus(MapType type);

  MapType type() const { return type_; }

  // The class maps, in byte-wise order of their names.
  Kel::Ptr<const ClassMapStatus> cmap(const Kel::String& name) const { return cmap_.get(name); }
  const Kel::Collection<Cmap, Kel::Ptr<ClassMapStatus>>& cmap() const { return cmap_; }
  // REQUIRES: classMapStatus is not null (else MutatorArgNullPointerException), classMapStatus->name() ==
  // name.
  void cmapIs(const Kel::String& name, Kel::Ptr<ClassMapStatus> classMapStatus);
  bool cmapDel(const Kel::String& name) { return cmap_.del(*this, name); }
  void cmapDelAll() { cmap_.delAll(*this); }

 private:
  const MapType type_;
  Kel::Collection<Cmap, Kel::Ptr<ClassMapStatus>> cmap_;
};

}  // namespace Qos
