// The QoS input model's enumerations, and their printers.
//
// Each is a plain enumeration over Kel::U32 whose enumerators end in '_'
// (Qos::mapQos_), so that they read as values next to the attribute names
// they are stored in. The numbers are the ones the QoS processes publish:
// they are fixed and must never be renumbered.
//
// Printers write an enumerator's name without the trailing '_' ("mapQos",
// "cpStaticBgp"), and a value that has no enumerator as its number ("42"),
// so that a value from a newer publisher still reads in a trace line.
// enumName() gives the same name (null for a value without an enumerator);
// enumFromName() reads a printed name back, for parsers at the host's
// boundary.
//
//   Qos::MapType type = Qos::mapQos_;
//   std::cout << type;                                   // mapQos
//   auto parsed = Qos::enumFromName<Qos::MapType>("mapPbr");  // Qos::mapPbr_
#pragma once

#include <iosfwd>
#include <optional>
#include <string_view>

#include "kel/Types.h"

namespace Qos {

// The kind of a class map or policy map.
enum MapType : Kel::U32 {
  // Control-plane policing: the control-plane policy ("copp-system-policy")
  // and its class maps.
  mapControlPlane_ = 0,
  // Ordinary QoS policy maps, applied to interfaces as service policies.
  mapQos_ = 1,
  // Policy-based routing maps: published, but never mirrored into the MIB.
  mapPbr_ = 2,
};

// Whether a control-plane class map is built in or configured.
enum ClassMapCpType : Kel::U32 {
  classMapCpStatic_ = 0,   // a static class the hardware provides
  classMapCpDynamic_ = 1,  // configured by the operator
};

// The hardware's static control-plane classes: the traffic the switch traps
// to its CPU, one class per kind.
enum ClassMapCpStaticType : Kel::U32 {
  cpStaticInvalid_ = 0,
  cpStaticBpdu_ = 1,               // spanning-tree BPDUs
  cpStaticLacp_ = 2,               // link aggregation control
  cpStaticLldp_ = 3,               // link-layer discovery
  cpStaticArp_ = 4,                // ARP requests and replies for the switch
  cpStaticArpResolver_ = 5,        // packets that need an ARP resolution first
  cpStaticIpBroadcast_ = 6,        // IP broadcast
  cpStaticIpMcast_ = 7,            // IP multicast to the CPU
  cpStaticL3Ttl1_ = 8,             // routed packets whose TTL expires
  cpStaticL3DestinationMiss_ = 9,  // routed packets without a route
  cpStaticBgp_ = 10,               // BGP sessions
  cpStaticOspfIsis_ = 11,          // OSPF and IS-IS
  cpStaticIgmp_ = 12,              // IGMP
  cpStaticPim_ = 13,               // PIM
  cpStaticVrrp_ = 14,              // VRRP
  cpStaticSflow_ = 15,             // sampled packets for sFlow
  cpStaticAclLog_ = 16,            // packets copied by ACL rules that log
  cpStaticLinkLocal_ = 17,         // other link-local control traffic
  // Traffic the hardware drops; never mirrored into the MIB.
  cpStaticDrop_ = 18,
  // The control-plane policy's default class.
  cpStaticDefault_ = 19,
};

// The kind of one match rule of a class map; the key of its rules.
enum ClassMapMatchOption : Kel::U32 {
  matchInvalid_ = 0,
  matchIpAccessGroup_ = 1,
  matchIpv6AccessGroup_ = 2,
  matchMacAccessGroup_ = 3,
  matchVlan_ = 4,
  matchCos_ = 5,
  matchDscp_ = 6,
  matchEcn_ = 7,
  matchMplsTrafficClass_ = 8,
};

// The kind of one action of a policy map's class; the key of its actions.
// The hardware-side rows of control-plane classes use 0 and 1.
enum ActionType : Kel::U32 {
  actionSetShape_ = 0,
  actionSetBandwidth_ = 1,
  actionSetCos_ = 2,
  actionSetDscp_ = 3,
  actionSetTc_ = 4,
  actionSetDropPrecedence_ = 5,
  actionPolice_ = 6,
  actionCount_ = 7,
};

// The direction in which a policy map applies to an interface's traffic.
enum PolicyMapDirection : Kel::U32 {
  directionInvalid_ = 0,
  directionInput_ = 1,
  directionOutput_ = 2,
};

// How a class map combines its match rules, for display.
enum MatchCondition : Kel::U32 {
  matchConditionAny_ = 0,
  matchConditionAll_ = 1,
};

// The hardware's programming state of a class, policy or counter.
enum HwProgrammingStatus : Kel::U32 {
  hwStatusUnknown_ = 0,
  hwStatusProgrammed_ = 1,
  hwStatusNotProgrammed_ = 2,
  hwStatusError_ = 3,
};

// The unit of a policer's, shaper's or bandwidth guarantee's rate.
enum RateUnit : Kel::U32 {
  rateUnitBps_ = 0,
  rateUnitKbps_ = 1,
  rateUnitMbps_ = 2,
  rateUnitGbps_ = 3,
  rateUnitPps_ = 4,
  rateUnitPercent_ = 5,
};

// The enumerator's name without its trailing '_'; null for a value without
// an enumerator.
const char* enumName(MapType value) noexcept;
const char* enumName(ClassMapCpType value) noexcept;
const char* enumName(ClassMapCpStaticType value) noexcept;
const char* enumName(ClassMapMatchOption value) noexcept;
const char* enumName(ActionType value) noexcept;
const char* enumName(PolicyMapDirection value) noexcept;
const char* enumName(MatchCondition value) noexcept;
const char* enumName(HwProgrammingStatus value) noexcept;
const char* enumName(RateUnit value) noexcept;

// The value whose enumName() is `name` (case matters); nullopt when none.
// Provided for the nine enumerations above.
template <typename E>
std::optional<E> enumFromName(std::string_view name) noexcept;

std::ostream& operator<<(std::ostream& out, MapType value);
std::ostream& operator<<(std::ostream& out, ClassMapCpType value);
std::ostream& operator<<(std::ostream& out, ClassMapCpStaticType value);
std::ostream& operator<<(std::ostream& out, ClassMapMatchOption value);
std::ostream& operator<<(std::ostream& out, ActionType value);
std::ostream& operator<<(std::ostream& out, PolicyMapDirection value);
std::ostream& operator<<(std::ostream& out, MatchCondition value);
std::ostream& operator<<(std::ostream& out, HwProgrammingStatus value);
std::ostream& operator<<(std::ostream& out, RateUnit value);

}  // namespace Qos
