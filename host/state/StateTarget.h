// StateTarget: where in the switch state document a change line points,
// resolved against the schema.
//
// A target is a root entity, an attribute of an entity, or a member of a
// collection attribute. Resolving canonicalises every key on the way
// ("/qosStatus/pmapType/1" -> "/qosStatus/pmapType/mapQos") and checks that
// every entity above the target exists in the document; the target itself
// may be absent (a set adds it).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/state/StateSchema.h"

namespace QosSnmpHost {

// A collection member that a change target lies in: its collection, the
// JSON Pointer text of the collection's holder, and its key.
struct EnclosingMember {
  const Attr* attr = nullptr;
  std::string holderPathText;
  std::string key;
};

struct StateTarget {
  // The root the target lies under.
  const StateSchema::Root* root = nullptr;
  // The target's canonical pointer, its unescaped segments and its text.
  JsonPointer path;
  std::vector<std::string> segments;
  std::string pathText;
  // The entity that holds the attribute: its type, pointer, own key and its
  // holder's key (the context of defaults). For a root target, the root.
  const EntityType* holderType = nullptr;
  JsonPointer holderPath;
  // holderPath as JSON Pointer text, as the entity store looks it up.
  std::string holderPathText;
  std::string holderKey;
  std::string holderOwnerKey;
  // The attribute; null for a root target.
  const Attr* attr = nullptr;
  JsonPointer attrPath;
  std::string attrPathText;
  // The member's canonical key, for a member target.
  std::optional<std::string> key;
  // The nearest collection member that the holding entity is or lies in;
  // nullopt when the holder is a root or lies in none.
  std::optional<EnclosingMember> enclosing;
  // Where the target's value lives in the document resolved against: the
  // collection for a member target (which may lack the member), else the
  // value itself. Valid while that document's value there stays.
  const Json* place = nullptr;

  bool isRoot() const { return attr == nullptr; }
  bool isMember() const { return key.has_value(); }

  // Resolves the path of unescaped `segments` in the canonical `document`,
  // looking each step's member up once. Throws SchemaError for a path that
  // names nothing the schema has or goes through an absent entity, and
  // std::invalid_argument (with the message) for the empty path.
  static StateTarget resolve(std::vector<std::string> segments, const Json& document);
};

}  // namespace QosSnmpHost
