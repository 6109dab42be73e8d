// What the agent's tests share: a switch built in stages from the ten input
// entities, the MIB model rendered as one text per row for exact
// comparison, and the agent's trace lines captured with their levels.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "QosSnmp/core/AllIntfStatusDir.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/IntfStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "kel/Dir.h"
#include "kel/Make.h"
#include "kel/RingTrace.h"
#include "kel/RingTraceReader.h"
#include "kel/Trace.h"

namespace QosSnmpTest {

// The ten entities the agent's factory takes, empty but present.
struct TestSwitch {
  Kel::Ptr<Qos::Config> qosConfig = Kel::make<Qos::Config>("config");
  Kel::Ptr<Qos::Status> qosStatus = Kel::make<Qos::Status>("status");
  Kel::Ptr<Qos::HwStatus> qosHwStatus = Kel::make<Qos::HwStatus>("hwStatus");
  Kel::Ptr<Kel::Dir> qosSliceHwStatusDir = Kel::make<Kel::Dir>("sliceHwStatus");
  Kel::Ptr<Kel::Dir> qosAclSliceHwStatusDir = Kel::make<Kel::Dir>("aclSliceHwStatus");
  Kel::Ptr<QosSnmp::QosMibConfig> qosMibConfig = Kel::make<QosSnmp::QosMibConfig>("mibConfig");
  Kel::Ptr<Interface::AllIntfStatusDir> allIntfStatusDir =
      Kel::make<Interface::AllIntfStatusDir>("intfStatus");
  Kel::Ptr<Qos::HwCounter> qosHwCounter = Kel::make<Qos::HwCounter>("hwCounter");
  Kel::Ptr<QosSnmp::QosMib> qosMib = Kel::make<QosSnmp::QosMib>("qosMib");
  Kel::Ptr<Qos::EcnCounterTable> ecnCounterTable = Kel::make<Qos::EcnCounterTable>("ecnCounterTable");

  // The class-map type status of `type`, created on first use.
  Kel::Ptr<Qos::ClassMapTypeStatus> cmapType(Qos::MapType type) {
    if (!qosStatus->cmapType(type)) {
      qosStatus->cmapTypeIs(type, Kel::make<Qos::ClassMapTypeStatus>(type));
    }
    return mutableOf(qosStatus->cmapType(type));
  }
  // The policy-map type status of `type`, created on first use.
  Kel::Ptr<Qos::PolicyMapTypeStatus> pmapType(Qos::MapType type) {
    if (!qosStatus->pmapType(type)) {
      qosStatus->pmapTypeIs(type, Kel::make<Qos::PolicyMapTypeStatus>(type));
    }
    return mutableOf(qosStatus->pmapType(type));
  }
  // A class map of `type` named `name`, added to its type status.
  Kel::Ptr<Qos::ClassMapStatus> classMap(Qos::MapType type, const Kel::String& name) {
    auto cmap = Kel::make<Qos::ClassMapStatus>(name);
    cmap->typeIs(type);
    cmapType(type)->cmapIs(name, cmap);
    return cmap;
  }
  // A policy map of `type` named `name`, added to its type status.
  Kel::Ptr<Qos::PolicyMapStatus> policyMap(Qos::MapType type, const Kel::String& name) {
    auto pmap = Kel::make<Qos::PolicyMapStatus>(name);
    pmap->typeIs(type);
    pmapType(type)->pmapIs(name, pmap);
    return pmap;
  }
  // A slice's hardware status, added to the slice directory.
  Kel::Ptr<Qos::SliceHwStatus> slice(const Kel::String& name) {
    auto status = Kel::make<Qos::SliceHwStatus>(name);
    qosSliceHwStatusDir->entityIs(name, status);
    return status;
  }
  // An interface with an SNMP ifIndex, added to the interface directory.
  Kel::Ptr<Interface::IntfStatus> interface(const std::string& name, Kel::S32 ifIndex) {
    const Pellix::IntfId intf{Kel::String(name)};
    auto status = Kel::make<Interface::IntfStatus>(intf);
    status->snmpIfIndexIs(ifIndex);
    allIntfStatusDir->intfStatusIs(intf, status);
    return status;
  }

  template <typename T>
  static Kel::Ptr<T> mutableOf(const Kel::Ptr<const T>& p) {
    return Kel::Ptr<T>(const_cast<T*>(p.get()));
  }
};

namespace detail {

// A row's entity by name, "-" for none.
inline std::string rowEntityName(const auto& entity) {
  return entity ? entity->name().stringValue() : std::string("-");
}

inline std::string classMapMatchRowText(const auto& row) {
  std::ostringstream match;
  match << rowEntityName(row.classMapStatus) << ' ';
  if (row.classMapMatch) {
    match << row.classMapMatch->option();
  } else {
    match << '-';
  }
  return match.str();
}

inline std::string policyMapActionRowText(const auto& row) {
  std::ostringstream action;
  action << rowEntityName(row.classAction) << ' ';
  if (row.action) {
    action << row.action->actionType();
  } else {
    action << '-';
  }
  action << ' ' << rowEntityName(row.classMapHwStatus) << ' ' << (row.hwStatus ? "hw" : "-") << ' '
         << rowEntityName(row.sliceHwStatus);
  return action.str();
}

inline std::string ecnQueueCounterRowText(const auto& row) {
  std::ostringstream queue;
  queue << row.intfId << ' ' << rowEntityName(row.sliceHwStatus) << ' '
        << (row.ecnCounterTable ? "table" : "-") << ' ' << row.ecnQueueCountersFlag;
  return queue.str();
}

// Collects "<table> <index> <row>" texts in the order they are added.
class RowTexts {
 public:
  void add(const std::string& table, const auto& index, const std::string& row) {
    std::ostringstream out;
    out << table << ' ' << index << ' ' << row;
    texts_.push_back(out.str());
  }
  void addText(std::string text) { texts_.push_back(std::move(text)); }
  std::vector<std::string> take() { return std::move(texts_); }

 private:
  std::vector<std::string> texts_;
};

// The class-map and policy-map tables' rows, table by table.
inline void addClassAndPolicyRows(const QosSnmp::QosMib& mib, RowTexts& rows) {
  for (const auto& [index, row] : mib.classMapTable()) {
    rows.add("classMapTable", index, rowEntityName(row.classMapStatus));
  }
  for (const auto& [index, row] : mib.classMapMatchTable()) {
    rows.add("classMapMatchTable", index, classMapMatchRowText(row));
  }
  for (const auto& [index, row] : mib.policyMapTable()) {
    rows.add("policyMapTable", index, rowEntityName(row.policyMapStatus));
  }
  for (const auto& [index, row] : mib.policyMapClassTable()) {
    rows.add("policyMapClassTable", index,
             rowEntityName(row.policyMapStatus) + ' ' + row.cmapName.stringValue());
  }
  for (const auto& [index, row] : mib.policyMapActionTable()) {
    rows.add("policyMapActionTable", index, policyMapActionRowText(row));
  }
}

// The statistics, service-policy and ECN tables' rows, table by table.
inline void addStatsRows(const QosSnmp::QosMib& mib, RowTexts& rows) {
  for (const auto& [index, row] : mib.qosStatsTable()) {
    rows.add("qosStatsTable", index, rowEntityName(row.classMapHwStatus) + ' ' + rowEntityName(row.counter));
  }
  for (const auto& [index, row] : mib.qosPolicerStatsTable()) {
    rows.add("qosPolicerStatsTable", index, rowEntityName(row.policerHwStatus));
  }
  for (const auto& [index, row] : mib.servicePolicyTable()) {
    std::ostringstream key;
    key << row.pmapName << ' ' << row.servicePolicyKey;
    rows.add("servicePolicyTable", index, key.str());
  }
  for (const auto& [chip, row] : mib.ecnCounterTable()) {
    rows.add("ecnCounterTable", chip, rowEntityName(row.chipCounter) + ' ' + std::to_string(row.flags));
  }
  for (const auto& [index, row] : mib.ecnQueueCounterTable()) {
    rows.add("ecnQueueCounterTable", index, ecnQueueCounterRowText(row));
  }
}

// The two maps' entries: "cmapByStaticType <type> <entity>" and
// "intfIdToifIndex <intf> <ifIndex>".
inline void addMapEntries(const QosSnmp::QosMib& mib, RowTexts& rows) {
  for (const auto& [type, cmap] : mib.cmapByStaticType()) {
    std::ostringstream entry;
    entry << "cmapByStaticType " << type << ' ' << rowEntityName(cmap);
    rows.addText(entry.str());
  }
  for (const auto& [intf, ifIndex] : mib.intfIdToifIndex()) {
    std::ostringstream entry;
    entry << "intfIdToifIndex " << intf << ' ' << ifIndex;
    rows.addText(entry.str());
  }
}

}  // namespace detail

// Every row of the MIB model, table by table in index order, as
// "<table> <index> <row>" texts; then the two maps.
inline std::vector<std::string> mibRows(const QosSnmp::QosMib& mib) {
  detail::RowTexts rows;
  detail::addClassAndPolicyRows(mib, rows);
  detail::addStatsRows(mib, rows);
  detail::addMapEntries(mib, rows);
  return rows.take();
}

// Captures the agent's trace lines at every level while it lives, as
// "<level> <text>" texts.
class AgentTrace {
 public:
  AgentTrace() { Kel::traceLevelsIs("QosSnmp/0-9"); }
  ~AgentTrace() { Kel::traceLevelsIs("QosSnmp/"); }
  AgentTrace(const AgentTrace&) = delete;
  AgentTrace& operator=(const AgentTrace&) = delete;

  std::vector<std::string> lines() const {
    std::vector<std::string> texts;
    for (const auto& line : sink_.lines()) {
      texts.push_back(std::to_string(line.level) + ' ' + line.text);
    }
    return texts;
  }
  void clear() { sink_.clear(); }

 private:
  Kel::CapturingTraceSink sink_;
};

// Makes a fresh ring-buffer trace file the process's default while it
// lives; entries() reads back each entry as "<text> [<format>] <args...>".
class RingCapture {
 public:
  RingCapture()
      : path_("/tmp/qos-snmp-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter()++) +
              ".ring") {
    RingTrace::openDefaultRingTraceFile(path_);
  }
  ~RingCapture() {
    RingTrace::closeDefaultRingTraceFile();
    std::remove(path_.c_str());
  }
  RingCapture(const RingCapture&) = delete;
  RingCapture& operator=(const RingCapture&) = delete;

  std::vector<std::string> entries() const {
    const RingTrace::Reader reader(path_);
    std::vector<std::string> texts;
    for (const RingTrace::Entry& entry : reader.entries()) {
      const RingTrace::Descriptor& descriptor = reader.descriptorOf(entry);
      std::ostringstream out;
      out << descriptor.text << " [" << descriptor.format << "]";
      for (const RingTrace::Value& value : entry.arguments) {
        if (const auto* integer = std::get_if<Kel::S64>(&value)) {
          out << ' ' << *integer;
        } else {
          out << ' ' << std::get<std::string>(value);
        }
      }
      texts.push_back(out.str());
    }
    return texts;
  }

 private:
  static int& counter() {
    static int count = 0;
    return count;
  }
  std::string path_;
};

}  // namespace QosSnmpTest
