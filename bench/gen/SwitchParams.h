// SwitchParams: the shape of a generated switch, from which SwitchLayout
// names every entity and SwitchGenerator writes its state document.
//
// Every count is exact: the generator writes that many entities of each
// kind and nothing else, so the rows the agent makes of them follow from
// these numbers alone (SwitchGenerator::expectedRows). The presets:
//
//   small   32 interfaces, 8 policy maps x 8 classes x 4 actions, 48 class
//           maps x 2 rules (the defaults below)                (~1k rows)
//   large   4,096 interfaces, 512 policy maps x 16 classes x 4 actions,
//           2,048 class maps x 4 rules, a service policy in and out on every
//           interface, 8 ECN queues on each Ethernet port      (~100k rows)
//   huge    large x 10                                          (~1M rows)
//
//   std::optional<SwitchParams> params = SwitchParams::preset("large");
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace QosSnmpBench {

struct SwitchParams {
  // Interfaces: Ethernet ports, sub-interfaces of the first ports, and port
  // channels. Every `noIfIndexEvery`-th Ethernet port has no ifIndex
  // (alternately "not yet", -1, and "never", -2); 0 gives every port one.
  std::uint32_t ethernetPorts = 24;
  std::uint32_t subInterfaces = 4;
  std::uint32_t portChannels = 4;
  std::uint32_t noIfIndexEvery = 16;

  // QoS class maps ("class-default" comes on top) with `matchRules` rules
  // each (at most 7, so that a rule can always be added).
  std::uint32_t classMaps = 48;
  std::uint32_t matchRules = 2;

  // QoS policy maps, even ones applied in the input direction and odd ones in
  // the output direction; each interface gets one of each. Every policy
  // map's classes use consecutive class maps; a class map's counters live
  // under the first policy map that uses it (a class map is counted under one
  // policy map only), with policer counters on `policedInterfaces` of the
  // interfaces the policy map is applied to.
  std::uint32_t policyMaps = 8;
  std::uint32_t classesPerPolicyMap = 8;
  std::uint32_t actionsPerClass = 4;  // 1..7, policing first
  std::uint32_t policedInterfaces = 4;

  // Control plane: static classes (besides the default and drop classes,
  // at most 17) and configured ones, all counted and reported by the hardware.
  std::uint32_t coppStaticClasses = 4;
  std::uint32_t coppDynamicClasses = 2;

  // Hardware: slices (the agent watches the last one by name), ECN chips per
  // slice, ECN queues per Ethernet port; whether the watched slice reports
  // the hardware status of the QoS policy maps.
  std::uint32_t slices = 2;
  std::uint32_t chipsPerSlice = 2;
  std::uint32_t ecnQueues = 8;
  bool qosHardwareStatus = true;

  // Seeds the counter values of the document.
  std::uint64_t seed = 1;

  std::uint32_t interfaceCount() const { return ethernetPorts + subInterfaces + portChannels; }

  // "small", "large" or "huge"; nullopt for another name.
  static std::optional<SwitchParams> preset(std::string_view name);
  static std::vector<std::string> presetNames();

  // Why these parameters cannot make a valid switch; nullopt when they can.
  std::optional<std::string> invalid() const;
};

}  // namespace QosSnmpBench
