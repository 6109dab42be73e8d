#include "bench/gen/SwitchGenerator.h"

#include <sstream>
#include <string_view>
#include <vector>

namespace QosSnmpBench {

// Streams JSON text into an ostream in blocks, placing the commas. Members
// down to a few levels start a line of their own, so that a refusal's line
// number points somewhere useful.
class SwitchGenerator::Writer {
 public:
  Writer(std::ostream& out, std::uint64_t seed) : out_(out), random_(seed) {}
  ~Writer() { flush(); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  Writer& key(std::string_view name) {
    separate();
    if (first_.size() <= kLineDepth) {
      text_ += '\n';
    }
    quote(name);
    text_ += ':';
    valueDue_ = true;
    return *this;
  }
  Writer& open() {
    separate();
    text_ += '{';
    first_.push_back(true);
    return *this;
  }
  Writer& close() {
    text_ += '}';
    first_.pop_back();
    if (text_.size() > kBlock) {
      flush();
    }
    return *this;
  }
  Writer& raw(std::string_view value) {
    separate();
    text_ += value;
    return *this;
  }
  Writer& string(std::string_view value) {
    separate();
    quote(value);
    return *this;
  }
  Writer& number(std::uint64_t value) { return raw(std::to_string(value)); }
  Writer& number(std::int64_t value) { return raw(std::to_string(value)); }

  Writer& member(std::string_view name, std::uint64_t value) { return key(name).number(value); }
  Writer& memberText(std::string_view name, std::string_view value) { return key(name).string(value); }
  Writer& memberRaw(std::string_view name, std::string_view value) { return key(name).raw(value); }
  Writer& object(std::string_view name) { return key(name).open(); }

  // A counter value: deterministic from the seed, below 2^40.
  std::uint64_t counter() {
    // splitmix64
    std::uint64_t z = (random_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return (z ^ (z >> 31)) >> 24;
  }

  void flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }

 private:
  static constexpr std::size_t kBlock = 1 << 20;
  static constexpr std::size_t kLineDepth = 5;

  void separate() {
    if (valueDue_) {
      valueDue_ = false;
      return;
    }
    if (!first_.empty()) {
      if (!first_.back()) {
        text_ += ',';
      }
      first_.back() = false;
    }
  }
  // Generated names need no escaping.
  void quote(std::string_view text) {
    text_ += '"';
    text_ += text;
    text_ += '"';
  }

  std::ostream& out_;
  std::string text_;
  std::vector<bool> first_;
  bool valueDue_ = false;
  std::uint64_t random_;
};

void SwitchGenerator::writeState(std::ostream& out) const {
  Writer writer(out, layout_.params().seed);
  writer.open();
  writeQosConfig(writer);
  writeQosStatus(writer);
  writeHwStatus(writer);
  writeSlices(writer);
  writeAclSlices(writer);
  writer.object("mibConfig").member("counterPollPeriod", std::uint64_t{10}).close();
  writeInterfaces(writer);
  writeHwCounter(writer);
  writeEcnCounters(writer);
  writer.close();
  writer.raw("\n");
}

std::string SwitchGenerator::stateText() const {
  std::ostringstream out;
  writeState(out);
  return out.str();
}

void SwitchGenerator::writeQosConfig(Writer& out) const {
  out.object("qosConfig").object("servicePolicyConfig");
  for (std::uint32_t pmap = 0; pmap < layout_.params().policyMaps; ++pmap) {
    out.object(layout_.servicePolicyKey(pmap)).object("intfIds");
    for (const std::uint32_t intf : layout_.interfacesOf(pmap)) {
      out.memberRaw(layout_.interfaceName(intf), "true");
    }
    out.close().close();
  }
  out.close().close();
}

void SwitchGenerator::writeQosStatus(Writer& out) const {
  out.object("qosStatus");
  writeClassMaps(out);
  out.object("pmapType");
  out.object("mapControlPlane").object("pmap");
  writeCoppPolicyMap(out);
  out.close().close();
  writePolicyMaps(out);
  out.close();
  out.object("servicePolicyStatus");
  for (std::uint32_t pmap = 0; pmap < layout_.params().policyMaps; ++pmap) {
    out.object(layout_.servicePolicyKey(pmap)).object("intfIds");
    for (const std::uint32_t intf : layout_.interfacesOf(pmap)) {
      out.memberRaw(layout_.interfaceName(intf), "true");
    }
    out.close().close();
  }
  out.close();
  out.close();
}

void SwitchGenerator::writeClassMaps(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("cmapType");
  out.object("mapControlPlane").object("cmap");
  for (std::uint32_t index = 0; index < params.coppStaticClasses; ++index) {
    out.object(SwitchLayout::coppStaticClassMapName(index))
        .memberText("cpType", "classMapCpStatic")
        .memberText("cpStaticType", SwitchLayout::coppStaticTypeName(index))
        .close();
  }
  out.object(SwitchLayout::coppDefaultClassMapName())
      .memberText("cpType", "classMapCpStatic")
      .memberText("cpStaticType", "cpStaticDefault")
      .close();
  out.object(SwitchLayout::coppDropClassMapName())
      .memberText("cpType", "classMapCpStatic")
      .memberText("cpStaticType", "cpStaticDrop")
      .close();
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    out.object(layout_.coppDynamicClassMapName(index))
        .memberText("cpType", "classMapCpDynamic")
        .object("match")
        .object("matchIpAccessGroup")
        .memberText("value", "acl-copp-" + std::to_string(index))
        .close()
        .close()
        .close();
  }
  out.close().close();

  out.object("mapQos").object("cmap");
  out.object(SwitchLayout::classDefaultName()).close();
  for (std::uint32_t cmap = 0; cmap < params.classMaps; ++cmap) {
    out.object(layout_.classMapName(cmap));
    if (params.matchRules > 1) {
      out.memberText("matchCondition", cmap % 2 == 0 ? "matchConditionAny" : "matchConditionAll");
    }
    out.object("match");
    for (std::uint32_t rule = 0; rule < params.matchRules; ++rule) {
      out.object(SwitchLayout::matchOptionName(rule))
          .memberText("value", SwitchLayout::matchValue(cmap, rule))
          .close();
    }
    out.close().close();
  }
  out.close().close();
  out.close();
}

void SwitchGenerator::writePolicyMaps(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("mapQos").object("pmap");
  for (std::uint32_t pmap = 0; pmap < params.policyMaps; ++pmap) {
    out.object(layout_.policyMapName(pmap));
    out.object("classAction");
    for (std::uint32_t cls = 0; cls < params.classesPerPolicyMap; ++cls) {
      out.object(layout_.classMapName(layout_.classMapOf(pmap, cls))).object("policyAction");
      for (std::uint32_t action = 0; action < params.actionsPerClass; ++action) {
        out.object(SwitchLayout::actionName(action));
        switch (action) {
          case 0:
            out.member("rate", std::uint64_t{100 + (pmap + cls) % 900})
                .memberText("rateUnit", "rateUnitMbps")
                .member("burstSize", std::uint64_t{256000});
            break;
          case 5:
          case 6:
            out.member("rate", std::uint64_t{1 + cls % 50}).memberText("rateUnit", "rateUnitPercent");
            break;
          default:
            out.member("value", std::uint64_t{(pmap + cls + action) % 8});
            break;
        }
        out.close();
      }
      out.close().close();
    }
    out.close();
    out.object("classPrio");
    for (std::uint32_t cls = 0; cls < params.classesPerPolicyMap; ++cls) {
      out.object(std::to_string(cls + 1))
          .memberText("cmapName", layout_.classMapName(layout_.classMapOf(pmap, cls)))
          .close();
    }
    out.close();
    out.memberText("classDefault", SwitchLayout::classDefaultName());
    out.object("cmapCounters");
    for (std::uint32_t cls = 0; cls < params.classesPerPolicyMap; ++cls) {
      if (!layout_.isCounted(pmap, cls)) {
        continue;
      }
      out.object(layout_.classMapName(layout_.classMapOf(pmap, cls)))
          .member("packets", out.counter())
          .member("bytes", out.counter())
          .member("droppedPackets", out.counter() >> 8)
          .member("droppedBytes", out.counter() >> 4);
      out.object("policerHwStatus");
      for (const std::uint32_t intf : layout_.policedInterfacesOf(pmap)) {
        out.object(layout_.interfaceName(intf))
            .member("conformedPackets", out.counter())
            .member("conformedBytes", out.counter())
            .member("exceededPackets", out.counter() >> 8)
            .member("exceededBytes", out.counter() >> 4)
            .member("violatedPackets", out.counter() >> 12)
            .member("violatedBytes", out.counter() >> 8)
            .close();
      }
      out.close().close();
    }
    out.close();
    out.close();
  }
  out.close().close();
}

void SwitchGenerator::writeCoppPolicyMap(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object(SwitchLayout::coppPolicyMapName());
  out.object("classAction");
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    out.object(layout_.coppDynamicClassMapName(index))
        .object("policyAction")
        .object("actionPolice")
        .member("rate", std::uint64_t{1000 + index})
        .memberText("rateUnit", "rateUnitPps")
        .member("burstSize", std::uint64_t{100})
        .close()
        .close()
        .close();
  }
  out.close();
  out.object("classPrio");
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    out.object(std::to_string(index + 1))
        .memberText("cmapName", layout_.coppDynamicClassMapName(index))
        .close();
  }
  out.close();
  out.memberText("classDefault", SwitchLayout::coppDefaultClassMapName());
  out.object("cmapCounters");
  const auto counters = [&out](const std::string& name) {
    out.object(name)
        .member("packets", out.counter())
        .member("bytes", out.counter())
        .member("droppedPackets", out.counter() >> 8)
        .member("droppedBytes", out.counter() >> 4)
        .close();
  };
  for (std::uint32_t index = 0; index < params.coppStaticClasses; ++index) {
    counters(SwitchLayout::coppStaticClassMapName(index));
  }
  counters(SwitchLayout::coppDefaultClassMapName());
  counters(SwitchLayout::coppDropClassMapName());
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    counters(layout_.coppDynamicClassMapName(index));
  }
  out.close();
  out.close();
}

void SwitchGenerator::writeHwStatus(Writer& out) const {
  out.object("hwStatus")
      .memberRaw("coppSupported", "true")
      .memberRaw("coppHwStatsSupported", "false")
      .memberRaw("ecnCountersSupported", "true")
      .memberRaw("ecnQueueCountersSupported", "true")
      .memberRaw("ecnQueueCountersFlag", "true")
      .member("numEcnQueues", std::uint64_t{layout_.params().ecnQueues})
      .close();
}

void SwitchGenerator::writeSlices(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("sliceHwStatus");
  for (std::uint32_t slice = 0; slice < params.slices; ++slice) {
    const bool watched = slice + 1 == params.slices;
    out.object(layout_.sliceName(slice));
    out.object("pmapTypeHwStatus");
    if (watched) {
      writeWatchedSlicePolicyMaps(out);
    }
    out.close();
    if (watched) {
      writeWatchedSliceStaticClassesAndQueues(out);
    }
    out.close();
  }
  out.close();
}

void SwitchGenerator::writeWatchedSlicePolicyMaps(Writer& out) const {
  const SwitchParams& params = layout_.params();
  const auto hardwareClass = [&out](const std::string& name) {
    out.object(name)
        .memberText("programmingStatus", "hwStatusProgrammed")
        .member("packets", out.counter())
        .member("bytes", out.counter())
        .member("shapeRate", std::uint64_t{2000})
        .member("bandwidth", std::uint64_t{1000})
        .close();
  };
  out.object("mapControlPlane").object("pmap");
  out.object("directionInput " + SwitchLayout::coppPolicyMapName()).member("pmapKind", std::uint64_t{0});
  out.object("cmap");
  for (std::uint32_t index = 0; index < params.coppStaticClasses; ++index) {
    hardwareClass(SwitchLayout::coppStaticClassMapName(index));
  }
  hardwareClass(SwitchLayout::coppDefaultClassMapName());
  hardwareClass(SwitchLayout::coppDropClassMapName());
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    hardwareClass(layout_.coppDynamicClassMapName(index));
  }
  out.close().close();
  out.close().close();
  if (!params.qosHardwareStatus) {
    return;
  }
  out.object("mapQos").object("pmap");
  for (std::uint32_t pmap = 0; pmap < params.policyMaps; ++pmap) {
    out.object(SwitchLayout::directionName(pmap) + " " + layout_.policyMapName(pmap))
        .member("pmapKind", std::uint64_t{1});
    out.object("cmap");
    for (std::uint32_t cls = 0; cls < params.classesPerPolicyMap; ++cls) {
      out.object(layout_.classMapName(layout_.classMapOf(pmap, cls)))
          .memberText("programmingStatus", "hwStatusProgrammed")
          .close();
    }
    out.close().close();
  }
  out.close().close();
}

void SwitchGenerator::writeWatchedSliceStaticClassesAndQueues(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("cpStaticClassHwStatus");
  for (std::uint32_t index = 0; index < params.coppStaticClasses; ++index) {
    out.object(SwitchLayout::coppStaticTypeName(index))
        .member("hwRank", std::uint64_t{10 + index})
        .memberText("programmingStatus", "hwStatusProgrammed")
        .close();
  }
  out.object("cpStaticDefault")
      .member("hwRank", std::uint64_t{1})
      .memberText("programmingStatus", "hwStatusProgrammed")
      .close();
  out.object("cpStaticDrop")
      .member("hwRank", std::uint64_t{0})
      .memberText("programmingStatus", "hwStatusProgrammed")
      .close();
  out.close();
  out.object("ecnIntfCounterHwStatus");
  for (std::uint32_t intf = 0; intf < params.ethernetPorts; ++intf) {
    out.object(layout_.interfaceName(intf)).memberText("programmingStatus", "hwStatusProgrammed").close();
  }
  out.close();
}

void SwitchGenerator::writeAclSlices(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("aclSliceHwStatus").object(layout_.watchedSliceName()).object("pmapTypeHwStatus");
  out.object("mapControlPlane").object("pmap");
  out.object("directionInput " + SwitchLayout::coppPolicyMapName()).member("pmapKind", std::uint64_t{0});
  out.object("cmap");
  for (std::uint32_t index = 0; index < params.coppDynamicClasses; ++index) {
    out.object(layout_.coppDynamicClassMapName(index))
        .memberText("programmingStatus", "hwStatusProgrammed")
        .member("shapeRate", std::uint64_t{1000})
        .member("bandwidth", std::uint64_t{500})
        .close();
  }
  out.close().close();
  out.close().close();
  out.close().close().close();
}

void SwitchGenerator::writeInterfaces(Writer& out) const {
  out.object("intfStatus");
  for (std::uint32_t intf = 0; intf < layout_.interfaceCount(); ++intf) {
    out.object(layout_.interfaceName(intf))
        .key("snmpIfIndex")
        .number(std::int64_t{layout_.ifIndexOf(intf)})
        .memberText("operStatus", intf % 7 == 3 ? "intfOperDown" : "intfOperUp")
        .close();
  }
  out.close();
}

void SwitchGenerator::writeHwCounter(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("hwCounter").object("sliceHwCounter");
  for (std::uint32_t slice = 0; slice < params.slices; ++slice) {
    out.object(layout_.sliceName(slice)).object("perChipCount");
    for (std::uint32_t chip = 0; chip < params.chipsPerSlice; ++chip) {
      out.object(layout_.chipName(chip))
          .member("ecnMarkedPackets", out.counter())
          .member("ecnMarkedBytes", out.counter())
          .member("ecnDroppedPackets", out.counter() >> 8)
          .close();
    }
    out.close().close();
  }
  out.close().close();
}

void SwitchGenerator::writeEcnCounters(Writer& out) const {
  const SwitchParams& params = layout_.params();
  out.object("ecnCounterTable").object("intfQueueCounter");
  for (std::uint32_t intf = 0; intf < params.ethernetPorts; ++intf) {
    out.object(layout_.interfaceName(intf));
    for (const char* field : {"queueMarkedPackets", "queueMarkedBytes"}) {
      out.object(field);
      for (std::uint32_t queue = 0; queue < params.ecnQueues; ++queue) {
        out.member(std::to_string(queue), out.counter() >> 8);
      }
      out.close();
    }
    out.close();
  }
  out.close().close();
}

std::map<std::string, std::size_t> SwitchGenerator::expectedRows() const {
  const SwitchParams& params = layout_.params();
  std::size_t indexed = 0;
  std::size_t indexedPorts = 0;
  for (std::uint32_t intf = 0; intf < layout_.interfaceCount(); ++intf) {
    if (layout_.ifIndexOf(intf) > 0) {
      ++indexed;
      indexedPorts += layout_.isEthernetPort(intf) ? 1 : 0;
    }
  }
  std::size_t countedClasses = 0;
  std::size_t policerRows = 0;
  for (std::uint32_t pmap = 0; pmap < params.policyMaps; ++pmap) {
    // A row per interface, under its ifIndex; the interfaces without one
    // share a row under ifIndex 0.
    std::size_t policed = 0;
    bool unindexed = false;
    for (const std::uint32_t intf : layout_.policedInterfacesOf(pmap)) {
      policed += layout_.ifIndexOf(intf) > 0 ? 1 : 0;
      unindexed = unindexed || layout_.ifIndexOf(intf) <= 0;
    }
    policed += unindexed ? 1 : 0;
    for (std::uint32_t cls = 0; cls < params.classesPerPolicyMap; ++cls) {
      if (layout_.isCounted(pmap, cls)) {
        ++countedClasses;
        policerRows += policed;
      }
    }
  }
  const std::size_t coppStatic = params.coppStaticClasses;
  const std::size_t coppDynamic = params.coppDynamicClasses;
  const std::size_t policyMaps = params.policyMaps;
  const std::size_t classes = policyMaps * params.classesPerPolicyMap;
  return {
      {"classMapTable", params.classMaps + 1 + coppStatic + coppDynamic},
      {"classMapMatchTable", std::size_t{params.classMaps} * params.matchRules + coppDynamic},
      {"policyMapTable", policyMaps + 1},
      {"policyMapClassTable", classes + policyMaps + coppDynamic + coppStatic + 1},
      {"policyMapActionTable", classes * params.actionsPerClass + 2 * (coppStatic + 1 + coppDynamic)},
      {"qosStatsTable", countedClasses + 2 * coppDynamic + coppStatic + 1},
      {"qosPolicerStatsTable", policerRows},
      {"servicePolicyTable", 2 * indexed},
      {"ecnCounterTable", params.chipsPerSlice},
      {"ecnQueueCounterTable", indexedPorts * params.ecnQueues},
  };
}

}  // namespace QosSnmpBench
