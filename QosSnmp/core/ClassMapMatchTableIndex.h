// ClassMapMatchTableIndex: the index of one row of the class-map match
// table, one match rule of one class map.
//
// Fields, in declaration and SNMP index order: the class map's shortened
// name (uniqueId), its map type, and the rule's position among the class
// map's match rules, counted from 1.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(name, type, matchIndex)", the map type as its number.
//
//   const ClassMapMatchTableIndex index(uniqueId(cmapName), type, matchIndex);
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class ClassMapMatchTableIndex {
 public:
  ClassMapMatchTableIndex(Snmp::String name, Qos::MapType type, Kel::U32 matchIndex) noexcept;

  const Snmp::String& name() const noexcept { return name_; }
  Qos::MapType type() const noexcept { return type_; }
  Kel::U32 matchIndex() const noexcept { return matchIndex_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const ClassMapMatchTableIndex& a,
                         const ClassMapMatchTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const ClassMapMatchTableIndex& a,
                                          const ClassMapMatchTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.name_, b.name_); std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    return a.matchIndex_ <=> b.matchIndex_;
  }

 private:
  Snmp::String name_;
  Qos::MapType type_;
  Kel::U32 matchIndex_;
};

std::ostream& operator<<(std::ostream& out, const ClassMapMatchTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::ClassMapMatchTableIndex> {
  std::size_t operator()(const QosSnmp::ClassMapMatchTableIndex& index) const noexcept {
    return index.hash();
  }
};
