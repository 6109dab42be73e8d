// Dir: a directory entity — named child entities of any type, in name order.
//
// Readers look a child up with entityPtr(name) (null when absent) and
// narrow it with Kel::ptrCast<const T>, treating a child of another type as
// absent. Adding or removing a child notifies the Dir's reactors on the
// attribute Dir::Entry with the child's name.
#pragma once

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"

namespace Kel {

class Dir : public Entity {
 public:
  struct Entry : CollectionAttribute<1, String> {};
  // Ids of attributes that types derived from Dir add start here.
  static constexpr AttributeId kFirstDerivedAttributeId = 2;

  using Entity::Entity;

  Ptr<Entity> entityPtr(const String& name) const { return entries_.get(name); }
  bool contains(const String& name) const { return entries_.contains(name); }
  std::size_t size() const { return entries_.size(); }

  // Iteration over (name, entity) pairs in name order.
  const Collection<Entry, Ptr<Entity>>& entityPtrIteratorConst() const { return entries_; }

  void entityIs(const String& name, Ptr<Entity> entity) { entries_.set(*this, name, std::move(entity)); }
  bool entityDel(const String& name) { return entries_.del(*this, name); }

 private:
  Collection<Entry, Ptr<Entity>> entries_;
};

}  // namespace Kel
