// Qos::IntfPairKey: where a service policy is applied — the interface that
// carries the policy, and the sub-interface through which it is applied
// (the empty id when the policy is applied to the interface itself).
//
// A value type: equality and ordering are those of the fields in order,
// each in the interfaces' natural order (Pellix::IntfId), so collections
// keyed by it list an interface's own entry before its sub-interfaces'.
// hash() mixes both ids' hashes and agrees with equality.
//
// Printed as "<intfId>" when there is no sub-interface, else as
// "<intfId>,<subIntfId>":
//
//   const Pellix::IntfId eth(Kel::String("Ethernet1/1"));
//   const Pellix::IntfId sub100(Kel::String("Ethernet1/1.100"));
//   Qos::IntfPairKey own(eth, Pellix::IntfId());
//   Qos::IntfPairKey sub(eth, sub100);
//   std::cout << own << ' ' << sub;  // Ethernet1/1 Ethernet1/1,Ethernet1/1.100
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <utility>

#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Qos {

class IntfPairKey {
 public:
  IntfPairKey() noexcept = default;
  IntfPairKey(Pellix::IntfId intfId, Pellix::IntfId subIntfId) noexcept
      : intfId_(std::move(intfId)), subIntfId_(std::move(subIntfId)) {}

  const Pellix::IntfId& intfId() const noexcept { return intfId_; }
  const Pellix::IntfId& subIntfId() const noexcept { return subIntfId_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const IntfPairKey& a, const IntfPairKey& b) noexcept = default;
  friend std::strong_ordering operator<=>(const IntfPairKey& a, const IntfPairKey& b) noexcept {
    if (const auto c = a.intfId_ <=> b.intfId_; std::is_neq(c)) {
      return c;
    }
    return a.subIntfId_ <=> b.subIntfId_;
  }

 private:
  Pellix::IntfId intfId_;
  Pellix::IntfId subIntfId_;
};

std::ostream& operator<<(std::ostream& out, const IntfPairKey& key);

}  // namespace Qos

template <>
struct std::hash<Qos::IntfPairKey> {
  std::size_t operator()(const Qos::IntfPairKey& key) const noexcept { return key.hash(); }
};
