// Qos::ServicePolicyKey: names one service policy, a policy map of one kind
// applied in one direction.
//
// A value type: equality and ordering are those of the fields in order (map
// type, then direction, then policy-map name byte-wise), so collections
// keyed by it list a map type's policies together, input before output. The
// direction is the second field of the service-policy table index. hash()
// mixes the three fields' hashes and agrees with equality.
//
// Printed as "<type>/<direction>/<pmapName>", the enumerations with their
// own printers:
//
//   Qos::ServicePolicyKey key(Qos::mapQos_, Qos::directionInput_, "policy-in");
//   std::cout << key;  // mapQos/directionInput/policy-in
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <utility>

#include "QosSnmp/core/QosEnums.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ServicePolicyKey {
 public:
  // The control-plane type, no direction, no name.
  ServicePolicyKey() noexcept = default;
  ServicePolicyKey(MapType type, PolicyMapDirection direction, Kel::String pmapName) noexcept
      : type_(type), direction_(direction), pmapName_(std::move(pmapName)) {}

  MapType type() const noexcept { return type_; }
  PolicyMapDirection direction() const noexcept { return direction_; }
  const Kel::String& pmapName() const noexcept { return pmapName_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const ServicePolicyKey& a, const ServicePolicyKey& b) noexcept = default;
  friend std::strong_ordering operator<=>(const ServicePolicyKey& a, const ServicePolicyKey& b) noexcept {
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.direction_ <=> b.direction_; std::is_neq(c)) {
      return c;
    }
    return a.pmapName_ <=> b.pmapName_;
  }

 private:
  MapType type_ = mapControlPlane_;
  PolicyMapDirection direction_ = directionInvalid_;
  Kel::String pmapName_;
};

std::ostream& operator<<(std::ostream& out, const ServicePolicyKey& key);

}  // namespace Qos

template <>
struct std::hash<Qos::ServicePolicyKey> {
  std::size_t operator()(const Qos::ServicePolicyKey& key) const noexcept { return key.hash(); }
};
