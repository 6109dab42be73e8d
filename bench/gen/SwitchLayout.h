// SwitchLayout: the names of a generated switch's entities and how they
// relate, computed from its parameters. SwitchGenerator writes the state
// document from it and ChurnStream picks the targets of its changes from it,
// so that both agree without reading the document back.
//
// Interfaces are numbered 0.. in this order: Ethernet ports
// ("Ethernet<slot>/<port>", 64 ports a slot), sub-interfaces
// ("Ethernet<slot>/<port>.<vlan>", on the first ports in turn) and port
// channels ("Port-Channel<n>"). Interface i has input policy map 2i mod P and
// output policy map 2i+1 mod P. Class k of policy map p uses class map
// (p*K + k) mod C; it is counted when p*K + k < C, so each class map is
// counted under exactly one policy map (the first that uses it).
//
//   SwitchLayout layout(*SwitchParams::preset("small"));
//   layout.interfaceName(0);   // "Ethernet1/1"
//   layout.policyMapName(3);   // "pm-003"
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/gen/SwitchParams.h"

namespace QosSnmpBench {

class SwitchLayout {
 public:
  // REQUIRES: !params.invalid().
  explicit SwitchLayout(SwitchParams params);

  const SwitchParams& params() const { return params_; }

  // Interfaces.
  std::uint32_t interfaceCount() const { return params_.interfaceCount(); }
  std::string interfaceName(std::uint32_t intf) const;
  bool isEthernetPort(std::uint32_t intf) const { return intf < params_.ethernetPorts; }
  // The ifIndex the document gives the interface: positive, -1 (not yet) or
  // -2 (never).
  std::int32_t ifIndexOf(std::uint32_t intf) const;
  std::uint32_t inputPolicyMapOf(std::uint32_t intf) const;
  std::uint32_t outputPolicyMapOf(std::uint32_t intf) const;
  // The interfaces policy map `pmap` is applied to, in its direction, in
  // number order.
  const std::vector<std::uint32_t>& interfacesOf(std::uint32_t pmap) const { return applied_[pmap]; }
  // The interfaces with policer counters in the counted classes of `pmap`:
  // the first `policedInterfaces` of interfacesOf(pmap).
  std::vector<std::uint32_t> policedInterfacesOf(std::uint32_t pmap) const;

  // Class maps: 0..C-1 are the QoS class maps with rules.
  std::string classMapName(std::uint32_t cmap) const;
  static std::string classDefaultName() { return "class-default"; }
  // The match option of rule `rule` (0..7), by name, and its value for
  // class map `cmap`.
  static std::string matchOptionName(std::uint32_t rule);
  static std::string matchValue(std::uint32_t cmap, std::uint32_t rule);

  // Policy maps.
  std::string policyMapName(std::uint32_t pmap) const;
  static bool isInput(std::uint32_t pmap) { return pmap % 2 == 0; }
  static std::string directionName(std::uint32_t pmap) {
    return isInput(pmap) ? "directionInput" : "directionOutput";
  }
  // "mapQos directionInput pm-000".
  std::string servicePolicyKey(std::uint32_t pmap) const;
  std::uint32_t classMapOf(std::uint32_t pmap, std::uint32_t cls) const;
  bool isCounted(std::uint32_t pmap, std::uint32_t cls) const;
  // The action type of action `action` (0..6), by name: police first.
  static std::string actionName(std::uint32_t action);

  // Control plane.
  static std::string coppPolicyMapName() { return "copp-system-policy"; }
  // Static class `index` (0..16): its static type's name ("cpStaticBpdu")
  // and its class map ("copp-system-bpdu").
  static std::string coppStaticTypeName(std::uint32_t index);
  static std::string coppStaticClassMapName(std::uint32_t index);
  static std::string coppDefaultClassMapName() { return "copp-system-default"; }
  static std::string coppDropClassMapName() { return "copp-system-drop"; }
  std::string coppDynamicClassMapName(std::uint32_t index) const;

  // Hardware: slices ("Linecard01"), the watched one (the last by name),
  // chips ("chip01").
  std::string sliceName(std::uint32_t slice) const;
  std::string watchedSliceName() const { return sliceName(params_.slices - 1); }
  std::string chipName(std::uint32_t chip) const;

 private:
  SwitchParams params_;
  std::vector<std::vector<std::uint32_t>> applied_;
};

// A key as one segment of a JSON Pointer ('~' as "~0", '/' as "~1").
std::string pointerSegment(const std::string& key);

}  // namespace QosSnmpBench
