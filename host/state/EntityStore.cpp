#include "host/state/EntityStore.h"

#include <algorithm>

namespace QosSnmpHost {
namespace {

std::string attrPathOf(const EntityType& type, const Attr& attr, const std::string& path) {
  return type.flat ? path : pointerAppend(path, attr.name);
}

const Json& attrValueOf(const EntityType& type, const Attr& attr, const Json& canonical) {
  return type.flat ? canonical : canonical.at(attr.name);
}

// The canonical value of an attribute of a freshly made entity, as far as
// collections and entity-valued scalars go (scalars are always set).
Json freshValueOf(const Attr& attr) { return attr.isCollection() ? Json::object() : Json(nullptr); }

}  // namespace

void EntityStore::reserve(std::size_t entities) {
  // With room for a quarter more, so that the first entities later changes
  // add do not rehash the whole index at once.
  const std::size_t room = entities + entities / 4;
  byPath_.reserve(room);
  pathByEntity_.reserve(room);
}

Kel::Ptr<Kel::Entity> EntityStore::buildRoot(const EntityType& type, const std::string& name,
                                             const Json& canonical) {
  return build(type.makeRoot(name), type, canonical, pointerAppend("", name));
}

Kel::Ptr<Kel::Entity> EntityStore::at(const std::string& path) const {
  const auto it = byPath_.find(path);
  return it == byPath_.end() ? nullptr : it->second;
}

const std::string* EntityStore::pathOf(const Kel::Entity* entity) const {
  const auto it = pathByEntity_.find(entity);
  return it == pathByEntity_.end() ? nullptr : it->second;
}

std::vector<std::string> EntityStore::paths() const {
  std::vector<std::string> paths;
  paths.reserve(byPath_.size());
  for (const auto& [path, entity] : byPath_) {
    paths.push_back(path);
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

void EntityStore::add(const std::string& path, const Kel::Ptr<Kel::Entity>& entity) {
  const auto [it, added] = byPath_.try_emplace(path, entity);
  if (!added) {
    pathByEntity_.erase(it->second.get());
    it->second = entity;
  }
  pathByEntity_[entity.get()] = &it->first;
}

void EntityStore::forget(const std::string& path) {
  const auto it = byPath_.find(path);
  if (it != byPath_.end()) {
    pathByEntity_.erase(it->second.get());
    byPath_.erase(it);
  }
}

Kel::Ptr<Kel::Entity> EntityStore::build(const Kel::Ptr<Kel::Entity>& entity, const EntityType& type,
                                         const Json& canonical, const std::string& path) {
  add(path, entity);
  fill(*entity, type, canonical, path);
  return entity;
}

void EntityStore::fill(Kel::Entity& entity, const EntityType& type, const Json& canonical,
                       const std::string& path) {
  for (const auto& attr : type.attrs) {
    const Json& value = attrValueOf(type, attr, canonical);
    if (attr.kind == Attr::Kind::scalar) {
      attr.setScalar(entity, value);
    } else {
      updateAttr(entity, attr, freshValueOf(attr), value, path, attrPathOf(type, attr, path));
    }
  }
}

void EntityStore::update(Kel::Entity& entity, const EntityType& type, const Json& before, const Json& after,
                         const std::string& path) {
  for (const auto& attr : type.attrs) {
    const Json& was = attrValueOf(type, attr, before);
    const Json& now = attrValueOf(type, attr, after);
    if (was != now) {
      updateAttr(entity, attr, was, now, path, attrPathOf(type, attr, path));
    }
  }
}

void EntityStore::updateAttr(Kel::Entity& holder, const Attr& attr, const Json& before, const Json& after,
                             const std::string& holderPath, const std::string& attrPath) {
  switch (attr.kind) {
    case Attr::Kind::scalar:
      if (before != after) {
        attr.setScalar(holder, after);
      }
      return;
    case Attr::Kind::values:
    case Attr::Kind::entities:
      updateCollection(holder, attr, before, after, attrPath);
      return;
    case Attr::Kind::reference:
    case Attr::Kind::entityOrReference:
      updateEntityValued(holder, attr, before, after, holderPath, attrPath);
      return;
  }
}

void EntityStore::updateCollection(Kel::Entity& holder, const Attr& attr, const Json& before,
                                   const Json& after, const std::string& attrPath) {
  for (const auto& [key, was] : before.items()) {
    if (!after.contains(key)) {
      deleteMember(holder, attr, key, was, pointerAppend(attrPath, key));
    }
  }
  for (const auto& [key, now] : after.items()) {
    const auto was = before.find(key);
    setMember(holder, attr, key, was == before.end() ? nullptr : &*was, now, pointerAppend(attrPath, key));
  }
}

void EntityStore::setMember(Kel::Entity& holder, const Attr& attr, const std::string& key, const Json* before,
                            const Json& after, const std::string& memberPath) {
  if (before != nullptr && *before == after) {
    return;
  }
  if (attr.kind == Attr::Kind::values) {
    attr.setValue(holder, key, after);
  } else if (before == nullptr) {
    attr.addEntity(holder, key, build(attr.makeMember(key), *attr.member, after, memberPath));
  } else {
    update(*at(memberPath), *attr.member, *before, after, memberPath);
    if (attr.memberChanged != nullptr) {
      attr.memberChanged(holder, key);
    }
  }
}

void EntityStore::deleteMember(Kel::Entity& holder, const Attr& attr, const std::string& key,
                               const Json& before, const std::string& memberPath) {
  if (attr.kind == Attr::Kind::entities) {
    empty(*at(memberPath), *attr.member, before, memberPath);
  }
  attr.delMember(holder, key);
  if (attr.kind == Attr::Kind::entities) {
    forget(memberPath);
  }
}

void EntityStore::empty(Kel::Entity& entity, const EntityType& type, const Json& canonical,
                        const std::string& path) {
  for (const auto& attr : type.attrs) {
    const Json& value = attrValueOf(type, attr, canonical);
    if (attr.isEntityValued() && !value.is_null()) {
      updateEntityValued(entity, attr, value, nullptr, path, attrPathOf(type, attr, path));
    }
  }
  for (const auto& attr : type.attrs) {
    if (attr.isCollection()) {
      const std::string attrPath = attrPathOf(type, attr, path);
      for (const auto& [key, member] : attrValueOf(type, attr, canonical).items()) {
        deleteMember(entity, attr, key, member, pointerAppend(attrPath, key));
      }
    }
  }
}

void EntityStore::dropOwned(Kel::Entity& holder, const Attr& attr, const Json& before,
                            const std::string& attrPath) {
  empty(*at(attrPath), *attr.member, before, attrPath);
  attr.setEntity(holder, nullptr);
  forget(attrPath);
}

void EntityStore::updateEntityValued(Kel::Entity& holder, const Attr& attr, const Json& before,
                                     const Json& after, const std::string& holderPath,
                                     const std::string& attrPath) {
  if (before == after) {
    return;
  }
  if (before.is_object() && after.is_object() && before.at("name") == after.at("name")) {
    update(*at(attrPath), *attr.member, before, after, attrPath);
    return;
  }
  // Anything else replaces the value: an owned entity is deleted first.
  if (before.is_object()) {
    dropOwned(holder, attr, before, attrPath);
  }
  if (after.is_string()) {
    attr.setEntity(holder,
                   at(attr.referencePath(JsonPointer(holderPath), after.get<std::string>()).to_string()));
  } else if (after.is_object()) {
    const auto& name = after.at("name").get_ref<const std::string&>();
    attr.setEntity(holder, build(attr.makeMember(name), *attr.member, after, attrPath));
  } else if (!before.is_object()) {
    attr.setEntity(holder, nullptr);
  }
}

}  // namespace QosSnmpHost
