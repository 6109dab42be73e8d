// ServicePolicyTableIndex: the index of one row of the service-policy table,
// the policy map applied to one interface in one direction.
//
// Fields, in declaration and SNMP index order: the interface's ifIndex and
// the direction, the second field of the service-policy key.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(ifIndex, direction)".
//
//   const ServicePolicyTableIndex index(ifIndex, static_cast<Kel::S32>(key.direction()));
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class ServicePolicyTableIndex {
 public:
  ServicePolicyTableIndex(Kel::S32 ifIndex, Kel::S32 direction) noexcept;

  Kel::S32 ifIndex() const noexcept { return ifIndex_; }
  Kel::S32 direction() const noexcept { return direction_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const ServicePolicyTableIndex& a,
                         const ServicePolicyTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const ServicePolicyTableIndex& a,
                                          const ServicePolicyTableIndex& b) noexcept {
    if (const auto c = a.ifIndex_ <=> b.ifIndex_; std::is_neq(c)) {
      return c;
    }
    return a.direction_ <=> b.direction_;
  }

 private:
  Kel::S32 ifIndex_;
  Kel::S32 direction_;
};

std::ostream& operator<<(std::ostream& out, const ServicePolicyTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::ServicePolicyTableIndex> {
  std::size_t operator()(const QosSnmp::ServicePolicyTableIndex& index) const noexcept {
    return index.hash();
  }
};
