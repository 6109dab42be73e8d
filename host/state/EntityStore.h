// EntityStore: the entities of a switch state, by canonical path, and the
// one place that changes them.
//
// Holds every live entity of the state under its canonical JSON Pointer
// (and the pointer of every entity), and turns a change of the canonical
// document into calls of the entities' own mutators, driven by the schema:
// - build: a new entity is made from its key and filled before it is added
//   to its holder, so its holder's reactors hear of it once, complete;
// - update: an existing entity is changed in place (scalars set one by one,
//   members deleted, then added or updated, in key order); only a member
//   that is new is built;
// - remove: an entity is emptied before it leaves, deepest first: its
//   entity-valued scalars reset to null (an owned object emptied first),
//   then each collection emptied member by member, in key order, each member
//   emptied before its own deletion.
// References (classDefault, a defaultClassAction name) are resolved through
// the store, so they must name an entity already built: the schema lists a
// referenced collection before the attribute that refers to it.
//
// The canonical values given must fit the schema (see StateSchema); the
// store does not validate. Paths are given as JSON Pointer text.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/state/StateSchema.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"

namespace QosSnmpHost {

class EntityStore {
 public:
  // Makes room for `entities` live entities in all (and some more), so
  // that building a whole state does not grow the index step by step.
  void reserve(std::size_t entities);
  // Makes the root entity of `type` and fills it from its canonical form.
  Kel::Ptr<Kel::Entity> buildRoot(const EntityType& type, const std::string& name, const Json& canonical);

  // The live entity at the JSON Pointer text `path`; null when there is none.
  Kel::Ptr<Kel::Entity> at(const std::string& path) const;
  // The canonical path of a live entity; nullptr when it is not (or no
  // longer) part of the state.
  const std::string* pathOf(const Kel::Entity* entity) const;
  // The paths of every live entity, in byte-wise order.
  std::vector<std::string> paths() const;

  // Brings `entity` (of `type`, at `path`) from canonical form `before` to
  // `after` in place.
  void update(Kel::Entity& entity, const EntityType& type, const Json& before, const Json& after,
              const std::string& path);
  // Brings attribute `attr` of `holder` (at `holderPath`) from `before` to
  // `after`.
  void updateAttr(Kel::Entity& holder, const Attr& attr, const Json& before, const Json& after,
                  const std::string& holderPath, const std::string& attrPath);
  // Sets member `key` of collection `attr` of `holder` to `after`: adds it
  // when `before` is null, else updates it in place.
  void setMember(Kel::Entity& holder, const Attr& attr, const std::string& key, const Json* before,
                 const Json& after, const std::string& memberPath);
  // Removes member `key` (canonical form `before`) of collection `attr`.
  void deleteMember(Kel::Entity& holder, const Attr& attr, const std::string& key, const Json& before,
                    const std::string& memberPath);

 private:
  void add(const std::string& path, const Kel::Ptr<Kel::Entity>& entity);
  void forget(const std::string& path);
  Kel::Ptr<Kel::Entity> build(const Kel::Ptr<Kel::Entity>& entity, const EntityType& type,
                              const Json& canonical, const std::string& path);
  void fill(Kel::Entity& entity, const EntityType& type, const Json& canonical, const std::string& path);
  void empty(Kel::Entity& entity, const EntityType& type, const Json& canonical, const std::string& path);
  void updateEntityValued(Kel::Entity& holder, const Attr& attr, const Json& before, const Json& after,
                          const std::string& holderPath, const std::string& attrPath);
  void dropOwned(Kel::Entity& holder, const Attr& attr, const Json& before, const std::string& attrPath);
  void updateCollection(Kel::Entity& holder, const Attr& attr, const Json& before, const Json& after,
                        const std::string& attrPath);

  // Every live entity by its path, and back: each path is stored once, as
  // a key of byPath_ (whose nodes, and so keys, stay where they are until
  // erased), which pathByEntity_ points to.
  std::unordered_map<std::string, Kel::Ptr<Kel::Entity>> byPath_;
  std::unordered_map<const Kel::Entity*, const std::string*> pathByEntity_;
};

}  // namespace QosSnmpHost
