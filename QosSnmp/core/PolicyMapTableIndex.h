// PolicyMapTableIndex: the index of one row of the policy-map table, one
// policy map of one map type.
//
// Fields, in declaration and SNMP index order: the policy map's shortened
// name (uniqueId) and its map type.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(name, type)", the map type as its number.
//
//   const PolicyMapTableIndex index(uniqueId(policyMapStatus->name()), policyMapStatus->type());
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

class PolicyMapTableIndex {
 public:
  PolicyMapTableIndex(Snmp::String name, Qos::MapType type) noexcept;

  const Snmp::String& name() const noexcept { return name_; }
  Qos::MapType type() const noexcept { return type_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const PolicyMapTableIndex& a, const PolicyMapTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const PolicyMapTableIndex& a,
                                          const PolicyMapTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.name_, b.name_); std::is_neq(c)) {
      return c;
    }
    return a.type_ <=> b.type_;
  }

 private:
  Snmp::String name_;
  Qos::MapType type_;
};

std::ostream& operator<<(std::ostream& out, const PolicyMapTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::PolicyMapTableIndex> {
  std::size_t operator()(const QosSnmp::PolicyMapTableIndex& index) const noexcept { return index.hash(); }
};
