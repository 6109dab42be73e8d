#include "bench/gen/SwitchParams.h"

namespace QosSnmpBench {

namespace {

SwitchParams large() {
  SwitchParams params;
  params.ethernetPorts = 3584;
  params.subInterfaces = 384;
  params.portChannels = 128;
  params.noIfIndexEvery = 64;
  params.classMaps = 2048;
  params.matchRules = 4;
  params.policyMaps = 512;
  params.classesPerPolicyMap = 16;
  params.actionsPerClass = 4;
  params.policedInterfaces = 4;
  params.coppStaticClasses = 12;
  params.coppDynamicClasses = 8;
  params.slices = 4;
  params.chipsPerSlice = 8;
  params.ecnQueues = 8;
  return params;
}

}  // namespace

std::optional<SwitchParams> SwitchParams::preset(std::string_view name) {
  if (name == "small") {
    return SwitchParams{};
  }
  if (name == "large") {
    return large();
  }
  if (name == "huge") {
    SwitchParams params = large();
    params.ethernetPorts *= 10;
    params.subInterfaces *= 10;
    params.portChannels *= 10;
    params.classMaps *= 10;
    params.policyMaps *= 10;
    params.chipsPerSlice *= 10;
    return params;
  }
  return std::nullopt;
}

std::vector<std::string> SwitchParams::presetNames() { return {"small", "large", "huge"}; }

std::optional<std::string> SwitchParams::invalid() const {
  if (ethernetPorts == 0) {
    return "at least one Ethernet port is needed";
  }
  if (policyMaps < 2 || policyMaps % 2 != 0) {
    return "policy maps: an even number of at least 2 (one input and one output per interface)";
  }
  if (classMaps == 0 || classesPerPolicyMap == 0 || classesPerPolicyMap >= classMaps) {
    return "classes per policy map: at least 1 and fewer than the class maps";
  }
  if (matchRules > 7) {
    return "match rules: at most 7";
  }
  if (actionsPerClass == 0 || actionsPerClass > 7) {
    return "actions per class: 1 to 7";
  }
  if (coppStaticClasses > 17) {
    return "control-plane static classes: at most 17";
  }
  if (slices == 0) {
    return "at least one slice is needed";
  }
  if (ecnQueues > 255) {
    return "ECN queues: at most 255";
  }
  return std::nullopt;
}

}  // namespace QosSnmpBench
