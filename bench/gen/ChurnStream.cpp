#include "bench/gen/ChurnStream.h"

#include <algorithm>
#include <tuple>

namespace QosSnmpBench {

namespace {

std::string setLine(const std::string& path, const std::string& value) {
  return R"({"op": "set", "path": ")" + path + R"(", "value": )" + value + "}";
}

std::string deleteLine(const std::string& path) { return R"({"op": "delete", "path": ")" + path + R"("})"; }

std::string quoted(const std::string& text) { return '"' + text + '"'; }

}  // namespace

const std::vector<std::pair<ChurnStream::Kind, std::string>>& ChurnStream::kinds() {
  static const std::vector<std::pair<Kind, std::string>> kAll = {{Kind::counters, "counters"},
                                                                 {Kind::matchRule, "match-rule"},
                                                                 {Kind::classAdded, "class-added"},
                                                                 {Kind::servicePolicy, "service-policy"},
                                                                 {Kind::ifIndex, "if-index"},
                                                                 {Kind::pollPeriod, "poll-period"},
                                                                 {Kind::mix, "mix"}};
  return kAll;
}

std::optional<ChurnStream::Kind> ChurnStream::kindOf(std::string_view name) {
  for (const auto& [kind, kindName] : kinds()) {
    if (kindName == name) {
      return kind;
    }
  }
  return std::nullopt;
}

std::string ChurnStream::nameOf(Kind kind) {
  for (const auto& [each, name] : kinds()) {
    if (each == kind) {
      return name;
    }
  }
  return "?";
}

ChurnStream::ChurnStream(const SwitchLayout& layout, Kind kind, std::uint64_t seed)
    : layout_(layout),
      kind_(kind),
      random_(seed * 0x2545F4914F6CDD1DULL + 1),
      ruleAdded_(layout.params().classMaps),
      classPresent_(layout.params().policyMaps),
      withdrawnInput_(layout.interfaceCount()),
      withdrawnOutput_(layout.interfaceCount()),
      ifIndex_(layout.interfaceCount()),
      operDown_(layout.interfaceCount()) {
  for (std::uint32_t intf = 0; intf < layout.interfaceCount(); ++intf) {
    ifIndex_[intf] = layout.ifIndexOf(intf);
    if (ifIndex_[intf] > 0) {
      indexedInterfaces_.push_back(intf);
    }
    operDown_[intf] = intf % 7 == 3;
  }
}

std::uint64_t ChurnStream::random() {
  // splitmix64
  std::uint64_t z = (random_ += 0x9E3779B97F4A7C15ULL);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

std::string ChurnStream::next() {
  switch (kind_) {
    case Kind::counters:
      return counters();
    case Kind::matchRule:
      return matchRule();
    case Kind::classAdded:
      return classAdded();
    case Kind::servicePolicy:
      return servicePolicy();
    case Kind::ifIndex:
      return ifIndex();
    case Kind::pollPeriod:
      return pollPeriod(false);
    case Kind::mix:
      break;
  }
  const std::uint32_t draw = below(1000);
  if (draw < 300) {
    return counters();
  }
  if (draw < 400) {
    return policerCounters();
  }
  if (draw < 500) {
    return ecnQueueCounters();
  }
  if (draw < 550) {
    return chipCounters();
  }
  if (draw < 600) {
    return hardwareClassCounters();
  }
  if (draw < 700) {
    return matchRule();
  }
  if (draw < 800) {
    return classToggled();
  }
  if (draw < 880) {
    return servicePolicy();
  }
  if (draw < 930) {
    return ifIndex();
  }
  if (draw < 980) {
    return policerRate();
  }
  if (draw < 995) {
    return operStatus();
  }
  return pollPeriod(true);
}

std::string ChurnStream::policyMapPath(std::uint32_t pmap) const {
  return "/qosStatus/pmapType/mapQos/pmap/" + layout_.policyMapName(pmap);
}

std::string ChurnStream::counters() {
  const SwitchParams& params = layout_.params();
  const std::uint64_t counted = std::min<std::uint64_t>(
      params.classMaps, std::uint64_t{params.policyMaps} * params.classesPerPolicyMap);
  const std::uint32_t slot = below(counted);
  const std::uint32_t pmap = slot / params.classesPerPolicyMap;
  const std::uint32_t cls = slot % params.classesPerPolicyMap;
  return setLine(policyMapPath(pmap) + "/cmapCounters/" +
                     layout_.classMapName(layout_.classMapOf(pmap, cls)) + "/packets",
                 std::to_string(value_++));
}

std::string ChurnStream::policerCounters() {
  const SwitchParams& params = layout_.params();
  const std::uint64_t counted = std::min<std::uint64_t>(
      params.classMaps, std::uint64_t{params.policyMaps} * params.classesPerPolicyMap);
  const std::uint32_t slot = below(counted);
  const std::uint32_t pmap = slot / params.classesPerPolicyMap;
  const std::vector<std::uint32_t> policed = layout_.policedInterfacesOf(pmap);
  if (policed.empty()) {
    return counters();
  }
  const std::uint32_t cls = slot % params.classesPerPolicyMap;
  const std::uint32_t intf = policed[below(policed.size())];
  return setLine(policyMapPath(pmap) + "/cmapCounters/" +
                     layout_.classMapName(layout_.classMapOf(pmap, cls)) + "/policerHwStatus/" +
                     pointerSegment(layout_.interfaceName(intf)) + "/conformedPackets",
                 std::to_string(value_++));
}

std::string ChurnStream::ecnQueueCounters() {
  const SwitchParams& params = layout_.params();
  if (params.ecnQueues == 0) {
    return counters();
  }
  const std::uint32_t port = below(params.ethernetPorts);
  return setLine("/ecnCounterTable/intfQueueCounter/" + pointerSegment(layout_.interfaceName(port)) +
                     "/queueMarkedPackets/" + std::to_string(below(params.ecnQueues)),
                 std::to_string(value_++));
}

std::string ChurnStream::chipCounters() {
  const SwitchParams& params = layout_.params();
  if (params.chipsPerSlice == 0) {
    return counters();
  }
  return setLine("/hwCounter/sliceHwCounter/" + layout_.sliceName(below(params.slices)) + "/perChipCount/" +
                     layout_.chipName(below(params.chipsPerSlice)) + "/ecnMarkedPackets",
                 std::to_string(value_++));
}

std::string ChurnStream::hardwareClassCounters() {
  const SwitchParams& params = layout_.params();
  const std::uint32_t pick = below(params.coppStaticClasses + 1);
  const std::string cmap = pick < params.coppStaticClasses ? SwitchLayout::coppStaticClassMapName(pick)
                                                           : SwitchLayout::coppDefaultClassMapName();
  return setLine("/sliceHwStatus/" + layout_.watchedSliceName() +
                     "/pmapTypeHwStatus/mapControlPlane/pmap/directionInput " +
                     SwitchLayout::coppPolicyMapName() + "/cmap/" + cmap + "/packets",
                 std::to_string(value_++));
}

std::string ChurnStream::matchRule() {
  const SwitchParams& params = layout_.params();
  const std::uint32_t cmap = below(params.classMaps);
  const std::string path = "/qosStatus/cmapType/mapQos/cmap/" + layout_.classMapName(cmap) + "/match/" +
                           SwitchLayout::matchOptionName(params.matchRules);
  if (ruleAdded_[cmap]) {
    ruleAdded_[cmap] = false;
    return deleteLine(path);
  }
  ruleAdded_[cmap] = true;
  return setLine(path, R"({"value": )" + quoted(SwitchLayout::matchValue(cmap, params.matchRules)) + "}");
}

std::string ChurnStream::classAdded() {
  const SwitchParams& params = layout_.params();
  // Policy maps in turn, each gaining the next class map it does not use;
  // once every class map is used everywhere, the classes leave in the same
  // order, then come again.
  const std::uint64_t spare =
      std::uint64_t{params.policyMaps} * (params.classMaps - params.classesPerPolicyMap);
  const std::uint64_t step = classSteps_++;
  const std::uint64_t slot = step % spare;
  const bool adding = (step / spare) % 2 == 0;
  const auto pmap = static_cast<std::uint32_t>(slot % params.policyMaps);
  const auto added = static_cast<std::uint32_t>(slot / params.policyMaps);
  const std::uint32_t cmap = layout_.classMapOf(pmap, params.classesPerPolicyMap + added);
  const std::string path = policyMapPath(pmap) + "/classAction/" + layout_.classMapName(cmap);
  if (!adding) {
    return deleteLine(path);
  }
  return setLine(path,
                 R"({"policyAction": {"actionSetDscp": {"value": )" + std::to_string(added % 64) + "}}}");
}

std::string ChurnStream::classToggled() {
  const SwitchParams& params = layout_.params();
  const std::uint32_t pmap = below(params.policyMaps);
  const std::uint32_t cmap = layout_.classMapOf(pmap, params.classesPerPolicyMap);
  const std::string path = policyMapPath(pmap) + "/classAction/" + layout_.classMapName(cmap);
  if (classPresent_[pmap]) {
    classPresent_[pmap] = false;
    return deleteLine(path);
  }
  classPresent_[pmap] = true;
  return setLine(path, R"({"policyAction": {"actionSetTc": {"value": )" + std::to_string(pmap % 8) + "}}}");
}

std::string ChurnStream::servicePolicy() {
  std::uint32_t intf = 0;
  bool input = true;
  bool withdraw = true;
  if (kind_ == Kind::servicePolicy) {
    if (withdrawn_) {
      std::tie(intf, input) = *withdrawn_;
      withdrawn_.reset();
      withdraw = false;
    } else {
      intf = below(layout_.interfaceCount());
      input = below(2) == 0;
      withdrawn_.emplace(intf, input);
    }
  } else {
    intf = below(layout_.interfaceCount());
    input = below(2) == 0;
    std::vector<bool>& withdrawn = input ? withdrawnInput_ : withdrawnOutput_;
    withdraw = !withdrawn[intf];
    withdrawn[intf] = withdraw;
  }
  const std::uint32_t pmap = input ? layout_.inputPolicyMapOf(intf) : layout_.outputPolicyMapOf(intf);
  const std::string path = "/qosStatus/servicePolicyStatus/" + layout_.servicePolicyKey(pmap) + "/intfIds/" +
                           pointerSegment(layout_.interfaceName(intf));
  return withdraw ? deleteLine(path) : setLine(path, "true");
}

std::string ChurnStream::ifIndex() {
  if (indexedInterfaces_.empty()) {
    return counters();
  }
  const std::uint32_t intf = indexedInterfaces_[below(indexedInterfaces_.size())];
  ifIndex_[intf] = nextIfIndex_++;
  return setLine("/intfStatus/" + pointerSegment(layout_.interfaceName(intf)) + "/snmpIfIndex",
                 std::to_string(ifIndex_[intf]));
}

std::string ChurnStream::pollPeriod(bool mayStop) {
  static constexpr std::uint32_t kPeriods[] = {20, 30, 10};
  if (mayStop && !pollStopped_ && below(4) == 0) {
    pollStopped_ = true;
    return setLine("/mibConfig/counterPollPeriod", R"("inf")");
  }
  pollStopped_ = false;
  const std::uint32_t period = kPeriods[pollStep_++ % 3];
  return setLine("/mibConfig/counterPollPeriod", std::to_string(period));
}

std::string ChurnStream::policerRate() {
  const SwitchParams& params = layout_.params();
  const std::uint32_t pmap = below(params.policyMaps);
  const std::uint32_t cls = below(params.classesPerPolicyMap);
  return setLine(policyMapPath(pmap) + "/classAction/" + layout_.classMapName(layout_.classMapOf(pmap, cls)) +
                     "/policyAction/actionPolice/rate",
                 std::to_string(100 + value_++ % 10000));
}

std::string ChurnStream::operStatus() {
  const std::uint32_t intf = below(layout_.interfaceCount());
  operDown_[intf] = !operDown_[intf];
  return setLine("/intfStatus/" + pointerSegment(layout_.interfaceName(intf)) + "/operStatus",
                 quoted(operDown_[intf] ? "intfOperDown" : "intfOperUp"));
}

}  // namespace QosSnmpBench
