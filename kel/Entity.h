// Entity: an object of the state database — a name, typed attributes, and
// the list of reactors that watch it.
//
// Entities are counted and handed to readers as Ptr<const T>. Changing an
// attribute (Scalar::set, Collection::set/del) visits the notifiee list with
// the attribute's id and, for a collection, the member's key. Nothing is
// delivered while the entity is being destroyed.
#pragma once

#include "kel/NotifieeList.h"
#include "kel/PtrInterface.h"
#include "kel/String.h"

namespace Kel {

class Entity : public PtrInterface {
 public:
  explicit Entity(String name = {}) : name_(std::move(name)) {}

  const String& name() const { return name_; }

  // Watching is not a change of the entity, so the list is reachable
  // through a const entity.
  NotifieeList& notifieeList() const { return notifieeList_; }

  // Tells every deliverable reactor that attribute `attributeId` changed.
  void notify(AttributeId attributeId, const void* key = nullptr) const {
    if (!beingDestroyed()) {
      notifieeList_.visit(attributeId, key);
    }
  }

 private:
  String name_;
  mutable NotifieeList notifieeList_;
};

}  // namespace Kel
