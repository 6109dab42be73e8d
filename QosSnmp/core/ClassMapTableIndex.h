// ClassMapTableIndex: the index of one row of the class-map table, one class
// map of one map type.
//
// Fields, in declaration and SNMP index order: the class map's shortened
// name (uniqueId) and its map type.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(name, type)", the map type as its number.
//
//   const ClassMapTableIndex index(uniqueId(classMapStatus->name()), classMapStatus->type());
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

class ClassMapTableIndex {
 public:
  ClassMapTableIndex(Snmp::String name, Qos::MapType type) noexcept;

  const Snmp::String& name() const noexcept { return name_; }
  Qos::MapType type() const noexcept { return type_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const ClassMapTableIndex& a, const ClassMapTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const ClassMapTableIndex& a, const ClassMapTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.name_, b.name_); std::is_neq(c)) {
      return c;
    }
    return a.type_ <=> b.type_;
  }

 private:
  Snmp::String name_;
  Qos::MapType type_;
};

std::ostream& operator<<(std::ostream& out, const ClassMapTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::ClassMapTableIndex> {
  std::size_t operator()(const QosSnmp::ClassMapTableIndex& index) const noexcept { return index.hash(); }
};
