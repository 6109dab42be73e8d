#include "QosSnmp/core/QosEnums.h"

#include <array>
#include <cstddef>
#include <ostream>

namespace Qos {
namespace {

// One table of names per enumeration, indexed by value: every enumeration
// here numbers its enumerators 0, 1, 2, ... without gaps.
template <std::size_t N>
using Names = std::array<const char*, N>;

constexpr Names<3> kMapTypeNames = {"mapControlPlane", "mapQos", "mapPbr"};

constexpr Names<2> kClassMapCpTypeNames = {"classMapCpStatic", "classMapCpDynamic"};

constexpr Names<20> kClassMapCpStaticTypeNames = {
    "cpStaticInvalid",     "cpStaticBpdu",
    "cpStaticLacp",        "cpStaticLldp",
    "cpStaticArp",         "cpStaticArpResolver",
    "cpStaticIpBroadcast", "cpStaticIpMcast",
    "cpStaticL3Ttl1",      "cpStaticL3DestinationMiss",
    "cpStaticBgp",         "cpStaticOspfIsis",
    "cpStaticIgmp",        "cpStaticPim",
    "cpStaticVrrp",        "cpStaticSflow",
    "cpStaticAclLog",      "cpStaticLinkLocal",
    "cpStaticDrop",        "cpStaticDefault",
};

constexpr Names<9> kClassMapMatchOptionNames = {
    "matchInvalid",        "matchIpAccessGroup", "matchIpv6AccessGroup",
    "matchMacAccessGroup", "matchVlan",          "matchCos",
    "matchDscp",           "matchEcn",           "matchMplsTrafficClass",
};

constexpr Names<8> kActionTypeNames = {
    "actionSetShape", "actionSetBandwidth",      "actionSetCos", "actionSetDscp",
    "actionSetTc",    "actionSetDropPrecedence", "actionPolice", "actionCount",
};

constexpr Names<3> kPolicyMapDirectionNames = {"directionInvalid", "directionInput", "directionOutput"};

constexpr Names<2> kMatchConditionNames = {"matchConditionAny", "matchConditionAll"};

constexpr Names<4> kHwProgrammingStatusNames = {"hwStatusUnknown", "hwStatusProgrammed",
                                                "hwStatusNotProgrammed", "hwStatusError"};

constexpr Names<6> kRateUnitNames = {"rateUnitBps",  "rateUnitKbps", "rateUnitMbps",
                                     "rateUnitGbps", "rateUnitPps",  "rateUnitPercent"};

// The last enumerator of each enumeration closes its table.
static_assert(kMapTypeNames.size() == mapPbr_ + 1);
static_assert(kClassMapCpTypeNames.size() == classMapCpDynamic_ + 1);
static_assert(kClassMapCpStaticTypeNames.size() == cpStaticDefault_ + 1);
static_assert(kClassMapMatchOptionNames.size() == matchMplsTrafficClass_ + 1);
static_assert(kActionTypeNames.size() == actionCount_ + 1);
static_assert(kPolicyMapDirectionNames.size() == directionOutput_ + 1);
static_assert(kMatchConditionNames.size() == matchConditionAll_ + 1);
static_assert(kHwProgrammingStatusNames.size() == hwStatusError_ + 1);
static_assert(kRateUnitNames.size() == rateUnitPercent_ + 1);

constexpr const auto& namesOf(MapType /*tag*/) { return kMapTypeNames; }
constexpr const auto& namesOf(ClassMapCpType /*tag*/) { return kClassMapCpTypeNames; }
constexpr const auto& namesOf(ClassMapCpStaticType /*tag*/) { return kClassMapCpStaticTypeNames; }
constexpr const auto& namesOf(ClassMapMatchOption /*tag*/) { return kClassMapMatchOptionNames; }
constexpr const auto& namesOf(ActionType /*tag*/) { return kActionTypeNames; }
constexpr const auto& namesOf(PolicyMapDirection /*tag*/) { return kPolicyMapDirectionNames; }
constexpr const auto& namesOf(MatchCondition /*tag*/) { return kMatchConditionNames; }
constexpr const auto& namesOf(HwProgrammingStatus /*tag*/) { return kHwProgrammingStatusNames; }
constexpr const auto& namesOf(RateUnit /*tag*/) { return kRateUnitNames; }

template <typename E>
const char* nameOf(E value) noexcept {
  const auto& names = namesOf(value);
  const auto index = static_cast<Kel::U32>(value);
  return index < names.size() ? names[index] : nullptr;
}

template <typename E>
std::ostream& print(std::ostream& out, E value) {
  if (const char* name = nameOf(value)) {
    return out << name;
  }
  return out << static_cast<Kel::U32>(value);
}

}  // namespace

template <typename E>
std::optional<E> enumFromName(std::string_view name) noexcept {
  const auto& names = namesOf(E{});
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (name == names[index]) {
      return static_cast<E>(index);
    }
  }
  return std::nullopt;
}

template std::optional<MapType> enumFromName<MapType>(std::string_view name) noexcept;
template std::optional<ClassMapCpType> enumFromName<ClassMapCpType>(std::string_view name) noexcept;
template std::optional<ClassMapCpStaticType> enumFromName<ClassMapCpStaticType>(
    std::string_view name) noexcept;
template std::optional<ClassMapMatchOption> enumFromName<ClassMapMatchOption>(std::string_view name) noexcept;
template std::optional<ActionType> enumFromName<ActionType>(std::string_view name) noexcept;
template std::optional<PolicyMapDirection> enumFromName<PolicyMapDirection>(std::string_view name) noexcept;
template std::optional<MatchCondition> enumFromName<MatchCondition>(std::string_view name) noexcept;
template std::optional<HwProgrammingStatus> enumFromName<HwProgrammingStatus>(std::string_view name) noexcept;
template std::optional<RateUnit> enumFromName<RateUnit>(std::string_view name) noexcept;

const char* enumName(MapType value) noexcept { return nameOf(value); }
const char* enumName(ClassMapCpType value) noexcept { return nameOf(value); }
const char* enumName(ClassMapCpStaticType value) noexcept { return nameOf(value); }
const char* enumName(ClassMapMatchOption value) noexcept { return nameOf(value); }
const char* enumName(ActionType value) noexcept { return nameOf(value); }
const char* enumName(PolicyMapDirection value) noexcept { return nameOf(value); }
const char* enumName(MatchCondition value) noexcept { return nameOf(value); }
const char* enumName(HwProgrammingStatus value) noexcept { return nameOf(value); }
const char* enumName(RateUnit value) noexcept { return nameOf(value); }

std::ostream& operator<<(std::ostream& out, MapType value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, ClassMapCpType value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, ClassMapCpStaticType value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, ClassMapMatchOption value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, ActionType value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, PolicyMapDirection value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, MatchCondition value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, HwProgrammingStatus value) { return print(out, value); }
std::ostream& operator<<(std::ostream& out, RateUnit value) { return print(out, value); }

}  // namespace Qos
