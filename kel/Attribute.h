// Attribute descriptors: compile-time names for an entity's attributes.
//
// An entity type declares one descriptor type per attribute that notifies:
//
//   class Status : public Kel::Entity {
//    public:
//     struct CmapType : Kel::CollectionAttribute<1, Qos::MapType> {};
//     struct Name : Kel::ScalarAttribute<2> {};
//     ...
//   };
//
// The descriptor carries the attribute id used in notifications and, for a
// collection, the key type, so that a reactor receives the key in its real
// type (see Notifiee).
#pragma once

#include "kel/Types.h"

namespace Kel {

template <AttributeId Id>
struct ScalarAttribute {
  // The entity model, its reactors and tests read every attribute's number as
  // `Attr::id` (43 places); renaming it to the constant style is a change of its own.
  static constexpr AttributeId id = Id;  // NOLINT(readability-identifier-naming)
  static constexpr bool kKeyed = false;
};

template <AttributeId Id, typename K>
struct CollectionAttribute {
  // The entity model, its reactors and tests read every attribute's number as
  // `Attr::id` (43 places); renaming it to the constant style is a change of its own.
  static constexpr AttributeId id = Id;  // NOLINT(readability-identifier-naming)
  static constexpr bool kKeyed = true;
  using Key = K;
};

}  // namespace Kel
