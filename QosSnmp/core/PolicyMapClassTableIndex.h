// PolicyMapClassTableIndex: the index of one row of the policy-map class
// table, one class of one policy map, identified by its priority.
//
// Fields, in declaration and SNMP index order: the policy map's shortened
// name (uniqueId), its map type, and the class's priority.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(name, type, prio)", the map type as its number.
//
//   const PolicyMapClassTableIndex index(uniqueId(pmapName), type, prio);
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

class PolicyMapClassTableIndex {
 public:
  PolicyMapClassTableIndex(Snmp::String name, Qos::MapType type, Kel::U32 prio) noexcept;

  const Snmp::String& name() const noexcept { return name_; }
  Qos::MapType type() const noexcept { return type_; }
  Kel::U32 prio() const noexcept { return prio_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const PolicyMapClassTableIndex& a,
                         const PolicyMapClassTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const PolicyMapClassTableIndex& a,
                                          const PolicyMapClassTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.name_, b.name_); std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    return a.prio_ <=> b.prio_;
  }

 private:
  Snmp::String name_;
  Qos::MapType type_;
  Kel::U32 prio_;
};

std::ostream& operator<<(std::ostream& out, const PolicyMapClassTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::PolicyMapClassTableIndex> {
  std::size_t operator()(const QosSnmp::PolicyMapClassTableIndex& index) const noexcept {
    return index.hash();
  }
};
