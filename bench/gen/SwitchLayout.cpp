#include "bench/gen/SwitchLayout.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdio>
#include <utility>

namespace QosSnmpBench {

namespace {

constexpr std::uint32_t kPortsPerSlot = 64;

// Static control-plane classes other than drop (18) and default (19), by
// type number 1..17.
constexpr std::array<const char*, 17> kStaticTypes = {"Bpdu",    "Lacp",        "Lldp",
                                                      "Arp",     "ArpResolver", "IpBroadcast",
                                                      "IpMcast", "L3Ttl1",      "L3DestinationMiss",
                                                      "Bgp",     "OspfIsis",    "Igmp",
                                                      "Pim",     "Vrrp",        "Sflow",
                                                      "AclLog",  "LinkLocal"};

constexpr std::array<const char*, 8> kMatchOptions = {"matchDscp",
                                                      "matchCos",
                                                      "matchVlan",
                                                      "matchIpAccessGroup",
                                                      "matchEcn",
                                                      "matchMplsTrafficClass",
                                                      "matchIpv6AccessGroup",
                                                      "matchMacAccessGroup"};

constexpr std::array<const char*, 7> kActions = {
    "actionPolice",   "actionSetDscp",     "actionSetCos", "actionSetTc", "actionSetDropPrecedence",
    "actionSetShape", "actionSetBandwidth"};

// Zero-padded decimal, wide enough for `count` values.
std::string padded(std::uint32_t value, std::uint32_t count) {
  int width = 1;
  for (std::uint32_t limit = 10; limit < count; limit *= 10) {
    ++width;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%0*u", width, value);
  return text;
}

std::string lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return text;
}

}  // namespace

SwitchLayout::SwitchLayout(SwitchParams params) : params_(params), applied_(params_.policyMaps) {
  assert(!params_.invalid());
  for (std::uint32_t intf = 0; intf < interfaceCount(); ++intf) {
    applied_[inputPolicyMapOf(intf)].push_back(intf);
    applied_[outputPolicyMapOf(intf)].push_back(intf);
  }
}

std::string SwitchLayout::interfaceName(std::uint32_t intf) const {
  if (intf < params_.ethernetPorts) {
    return "Ethernet" + std::to_string(intf / kPortsPerSlot + 1) + "/" +
           std::to_string(intf % kPortsPerSlot + 1);
  }
  intf -= params_.ethernetPorts;
  if (intf < params_.subInterfaces) {
    const std::uint32_t port = intf % params_.ethernetPorts;
    return interfaceName(port) + "." + std::to_string(100 + intf / params_.ethernetPorts);
  }
  intf -= params_.subInterfaces;
  return "Port-Channel" + std::to_string(intf + 1);
}

std::int32_t SwitchLayout::ifIndexOf(std::uint32_t intf) const {
  if (intf < params_.ethernetPorts) {
    const std::uint32_t every = params_.noIfIndexEvery;
    if (every != 0 && intf % every == every - 1) {
      return (intf / every) % 2 == 0 ? -1 : -2;
    }
    return static_cast<std::int32_t>(intf + 1);
  }
  intf -= params_.ethernetPorts;
  if (intf < params_.subInterfaces) {
    return static_cast<std::int32_t>(500000 + intf);
  }
  intf -= params_.subInterfaces;
  return static_cast<std::int32_t>(1000000 + intf + 1);
}

std::uint32_t SwitchLayout::inputPolicyMapOf(std::uint32_t intf) const {
  return static_cast<std::uint32_t>((2ULL * intf) % params_.policyMaps);
}

std::uint32_t SwitchLayout::outputPolicyMapOf(std::uint32_t intf) const {
  return static_cast<std::uint32_t>((2ULL * intf + 1) % params_.policyMaps);
}

std::vector<std::uint32_t> SwitchLayout::policedInterfacesOf(std::uint32_t pmap) const {
  const std::vector<std::uint32_t>& all = applied_[pmap];
  const std::size_t count = std::min<std::size_t>(all.size(), params_.policedInterfaces);
  return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
}

std::string SwitchLayout::classMapName(std::uint32_t cmap) const {
  return "cm-" + padded(cmap, params_.classMaps);
}

std::string SwitchLayout::matchOptionName(std::uint32_t rule) { return kMatchOptions.at(rule); }

std::string SwitchLayout::matchValue(std::uint32_t cmap, std::uint32_t rule) {
  switch (rule) {
    case 0:
      return std::to_string(cmap % 64);
    case 1:
      return std::to_string(cmap % 8);
    case 2:
      return std::to_string(2 + cmap % 4000);
    case 4:
      return "ect1";
    case 5:
      return std::to_string(cmap % 8);
    default:
      return "acl-" + std::to_string(cmap) + "-" + std::to_string(rule);
  }
}

std::string SwitchLayout::policyMapName(std::uint32_t pmap) const {
  return "pm-" + padded(pmap, params_.policyMaps);
}

std::string SwitchLayout::servicePolicyKey(std::uint32_t pmap) const {
  return "mapQos " + directionName(pmap) + " " + policyMapName(pmap);
}

std::uint32_t SwitchLayout::classMapOf(std::uint32_t pmap, std::uint32_t cls) const {
  return static_cast<std::uint32_t>((std::uint64_t{pmap} * params_.classesPerPolicyMap + cls) %
                                    params_.classMaps);
}

bool SwitchLayout::isCounted(std::uint32_t pmap, std::uint32_t cls) const {
  return std::uint64_t{pmap} * params_.classesPerPolicyMap + cls < params_.classMaps;
}

std::string SwitchLayout::actionName(std::uint32_t action) { return kActions.at(action); }

std::string SwitchLayout::coppStaticTypeName(std::uint32_t index) {
  return std::string("cpStatic") + kStaticTypes.at(index);
}

std::string SwitchLayout::coppStaticClassMapName(std::uint32_t index) {
  return "copp-system-" + lower(kStaticTypes.at(index));
}

std::string SwitchLayout::coppDynamicClassMapName(std::uint32_t index) const {
  return "copp-user-" + padded(index, params_.coppDynamicClasses);
}

std::string SwitchLayout::sliceName(std::uint32_t slice) const {
  return "Linecard" + padded(slice + 1, params_.slices + 1);
}

std::string SwitchLayout::chipName(std::uint32_t chip) const {
  return "chip" + padded(chip, params_.chipsPerSlice);
}

std::string pointerSegment(const std::string& key) {
  std::string segment;
  segment.reserve(key.size());
  for (const char c : key) {
    if (c == '~') {
      segment += "~0";
    } else if (c == '/') {
      segment += "~1";
    } else {
      segment += c;
    }
  }
  return segment;
}

}  // namespace QosSnmpBench
