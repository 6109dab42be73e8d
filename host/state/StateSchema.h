// StateSchema: the switch state document's schema, one table per entity
// type, and what it drives: reading a document fragment into canonical form
// with a precise error, and the typed operations that change an entity.
//
// Each EntityType lists the model entity's attributes by their own names,
// in the entity's declaration order, each of one kind:
//   scalar             a value (bool, integer, period, string, enumeration)
//                      with its default;
//   values             a collection of values, keyed;
//   entities           a collection of member entities of one type, keyed;
//                      a member is built from its key (its name or key);
//   reference          an entity-valued scalar naming an entity held
//                      elsewhere in the document (classDefault: a class map);
//   entityOrReference  an entity-valued scalar that is either its own entity
//                      (a JSON object with a "name") or a reference
//                      (defaultClassAction: the policy map's class action).
// A flat type (the directories) has one entities attribute whose members
// are the JSON object's members themselves.
//
// The typed operations are generated from the model's mutators (valueIs,
// cmapIs/cmapDel, ...) and the codecs of their argument types
// (StateCodec.h), so no entity has hand-written parsing or applying code.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "kel/Entity.h"
#include "kel/Ptr.h"

namespace QosSnmpHost {

using Json = nlohmann::json;
using JsonPointer = nlohmann::json::json_pointer;

// A value of the document that does not fit the schema: the JSON Pointer of
// the value (keys as written) and what was expected.
struct SchemaError {
  JsonPointer path;
  std::string message;
};

struct EntityType;

// NOLINTNEXTLINE(bugprone-exception-escape): nlohmann::json member; its moves do not throw
struct Attr {
  enum class Kind { scalar, values, entities, reference, entityOrReference };

  std::string name;
  Kind kind = Kind::scalar;

  // scalar, values: the value's form.
  std::string (*valueExpected)() = nullptr;
  std::optional<Json> (*valueCanonical)(const Json&) = nullptr;
  // scalar: the canonical default; with defaultIsOwnerKey, the default is the
  // key of the entity that holds the attribute's entity (a class map's type
  // is the map type it is listed under).
  Json defaultValue;
  bool defaultIsOwnerKey = false;

  // values, entities: the key's form.
  std::string keyExpected;
  std::optional<std::string> (*keyCanonical)(std::string_view) = nullptr;

  // entities, entityOrReference: the member type, and how a member is made
  // from its canonical key (or, for entityOrReference, its name).
  const EntityType* member = nullptr;
  Kel::Ptr<Kel::Entity> (*makeMember)(const std::string& key) = nullptr;

  // reference, entityOrReference: the canonical path of the entity that the
  // name refers to, from the path of the entity holding the attribute.
  std::string referenceNoun;
  JsonPointer (*referencePath)(const JsonPointer& holder, const std::string& name) = nullptr;

  // The typed mutators of the holding entity.
  void (*setScalar)(Kel::Entity& holder, const Json& canonical) = nullptr;
  void (*setValue)(Kel::Entity& holder, const std::string& key, const Json& canonical) = nullptr;
  void (*addEntity)(Kel::Entity& holder, const std::string& key,
                    const Kel::Ptr<Kel::Entity>& member) = nullptr;
  void (*delMember)(Kel::Entity& holder, const std::string& key) = nullptr;
  void (*setEntity)(Kel::Entity& holder, const Kel::Ptr<Kel::Entity>& entity) = nullptr;
  // entities: set for a collection whose reactors also hear of a member
  // changed in place, as the member's key (the interface status directory:
  // an interface's ifIndex changes without the interface leaving it).
  void (*memberChanged)(Kel::Entity& holder, const std::string& key) = nullptr;

  bool isCollection() const { return kind == Kind::values || kind == Kind::entities; }
  bool isEntityValued() const { return kind == Kind::reference || kind == Kind::entityOrReference; }
};

struct EntityType {
  // The model type's name, for messages ("PolicyMapStatus").
  std::string name;
  std::vector<Attr> attrs;
  // The JSON object is the members of attrs[0] (a directory).
  bool flat = false;
  // The entity's identity is a "name" member of its object (the object form
  // of defaultClassAction).
  bool named = false;
  // Some attribute at or below this type is a reference.
  bool holdsReferences = false;
  // Roots only: makes the root entity, named after its document key.
  Kel::Ptr<Kel::Entity> (*makeRoot)(const std::string& name) = nullptr;

  const Attr* attr(std::string_view attrName) const;
  // "\"a\", \"b\" or \"c\"": the attribute names, for messages.
  std::string attrList() const;
};

struct StateSchema {
  struct Root {
    std::string name;
    const EntityType* type;
  };
  // The nine roots, in the agent factory's order.
  std::vector<Root> roots;

  const Root* root(std::string_view name) const;
  std::string rootList() const;
};

const StateSchema& stateSchema();

// Canonical forms. `holderKey` is the key of the entity that holds the
// attribute or collection, `holderOwnerKey` the key of that entity's own
// holder ("" for a root). Each throws SchemaError on a value that does not
// fit, with `path` the value's pointer.
Json canonicalEntity(const EntityType& type, const Json& input, const JsonPointer& path,
                     const std::string& ownKey, const std::string& ownerKey);
Json canonicalAttr(const Attr& attr, const Json& input, const JsonPointer& path, const std::string& holderKey,
                   const std::string& holderOwnerKey);
Json canonicalMember(const Attr& attr, const Json& input, const JsonPointer& path, const std::string& key,
                     const std::string& holderKey);
// The same in place: `value` (as written) becomes its canonical form, so a
// whole document is made canonical without a second tree. After a
// SchemaError, `value` is partly canonical and only good for discarding.
// `entities`, when given, counts the entities read (the value's own and
// every one below it).
void canonicalizeEntity(const EntityType& type, Json& value, const JsonPointer& path,
                        const std::string& ownKey, const std::string& ownerKey,
                        std::size_t* entities = nullptr);
void canonicalizeAttr(const Attr& attr, Json& value, const JsonPointer& path, const std::string& holderKey,
                      const std::string& holderOwnerKey);
void canonicalizeMember(const Attr& attr, Json& value, const JsonPointer& path, const std::string& key,
                        const std::string& holderKey);
// The JSON Pointer text `text` followed by the segment `key`, escaped ("~"
// as "~0", "/" as "~1").
std::string pointerAppend(std::string text, std::string_view key);
// The canonical key of a collection member, as written `raw`.
std::string canonicalKey(const Attr& attr, std::string_view raw, const JsonPointer& path);
// The attribute's canonical value when the document does not give it.
Json defaultOf(const Attr& attr, const std::string& holderOwnerKey);

// Throws SchemaError when a reference of `document` (canonical) names an
// entity that the document does not hold.
void checkReferences(const Json& document);
// The same for the references held at or below the entity of `type` whose
// canonical form `canonical` stands at `path` in `document`.
void checkEntityReferences(const Json& document, const EntityType& type, const Json& canonical,
                           const JsonPointer& path);
// The same for a change of `document` at `changed` (canonical; `before` the
// value there before it, null when it was absent): only the references the
// change can affect are looked at, so the cost follows the size of the
// change and of the map type it touches, never that of the document:
// - those held in the changed value, or in the policy map it lies in
//   (a default class action names a class action of its own policy map);
// - those naming a class map that the change removed: the class defaults of
//   the policy maps of that class map's type.
// `changed` is given as its unescaped segments.
void checkReferencesOfChange(const Json& document, const std::vector<std::string>& changed,
                             const Json* before);

}  // namespace QosSnmpHost
