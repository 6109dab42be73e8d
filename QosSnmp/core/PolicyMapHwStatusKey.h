// Qos::PolicyMapHwStatusKey: names one policy map in the hardware's status,
// by the direction it is programmed in (the number of a
// Qos::PolicyMapDirection, as the hardware publishes it) and its name.
//
// A value type: equality and ordering are those of the fields in order
// (direction numerically, then name byte-wise), so collections keyed by it
// list every input policy before any output policy. hash() mixes both
// fields' hashes and agrees with equality.
//
// Printed as "<direction>/<pmapName>", the direction as a number:
//
//   Qos::PolicyMapHwStatusKey key(Qos::directionInput_, "policy-in");
//   std::cout << key;  // 1/policy-in
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <utility>

#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class PolicyMapHwStatusKey {
 public:
  PolicyMapHwStatusKey() noexcept = default;
  PolicyMapHwStatusKey(Kel::U32 direction, Kel::String pmapName) noexcept
      : direction_(direction), pmapName_(std::move(pmapName)) {}

  Kel::U32 direction() const noexcept { return direction_; }
  const Kel::String& pmapName() const noexcept { return pmapName_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const PolicyMapHwStatusKey& a, const PolicyMapHwStatusKey& b) noexcept = default;
  friend std::strong_ordering operator<=>(const PolicyMapHwStatusKey& a,
                                          const PolicyMapHwStatusKey& b) noexcept {
    if (const auto c = a.direction_ <=> b.direction_; std::is_neq(c)) {
      return c;
    }
    return a.pmapName_ <=> b.pmapName_;
  }

 private:
  Kel::U32 direction_ = 0;
  Kel::String pmapName_;
};

std::ostream& operator<<(std::ostream& out, const PolicyMapHwStatusKey& key);

}  // namespace Qos

template <>
struct std::hash<Qos::PolicyMapHwStatusKey> {
  std::size_t operator()(const Qos::PolicyMapHwStatusKey& key) const noexcept { return key.hash(); }
};
