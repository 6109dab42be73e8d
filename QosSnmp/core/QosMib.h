// QosSnmp::QosMib: the MIB model, the agent's only output. The state
// machines write its tables and maps through the operations below; the
// host's SNMP layer answers queries from it.
//
// Tables. Each keeps its rows in SNMP index order (see MibTable): a GET is
// the lookup <table>(index), a GETNEXT an upper bound in <table>(), a walk
// an iteration of <table>(). Nothing scans. Per table:
//
//   <table>Is(index, ...)   creates the row under index;
//   <table>Del(index)       removes it; harmless when there is none;
//   <table>(index)          the row, or null;
//   <table>()               every row, in index order (size, lowerBound...).
//
// <table>Is on an index that has a row replaces that row. Writers never rely
// on this (where a row may exist they look it up or delete it first), but
// two long names that shorten to the same identifier (see uniqueId) would
// land on one index, and that must not bring the agent down: the row
// written last wins.
//
// Rows hold counted references to input entities, never copies of their
// values (see QosMibRows.h); rowCount() counts the rows of every table.
//
// Counter stamps. The rows of the four counter tables (statistics, policer
// statistics, ECN counters, ECN queue counters) record the TimeStamp at
// which they last got different counters (CounterStamp): when <table>Is
// creates the row, or replaces it with other counters (MibTable::set). The
// time is read from the clock the host installs with counterClockIs (0
// without one, as offline). An ECN queue row reaches its interface's
// counters through the ECN counter table at query time, so when that table's
// member of an interface is replaced the host calls
// ecnQueueCountersRestarted() for it. Stamps are no part of a row's
// identity (operator==).
//
// Maps, not SNMP tables, and not counted by rowCount():
//   cmapByStaticType   static control-plane class type -> class map;
//                      an absent type reads as null.
//   intfIdToifIndex    interface -> ifIndex; an absent interface reads as
//                      0, hasIntfIdToifIndex() tells absent from 0.
//
// Nothing here notifies: the SNMP layer reads the model when asked. One
// reactor thread writes and reads it.
//
//   mib->classMapTableIs(ClassMapTableIndex(uniqueId(cmap->name()), cmap->type()), cmap);
//   if (const ClassMapTableRow* row = mib->classMapTable(index)) { ... }
//   for (auto it = mib->classMapTable().upperBound(index); it != mib->classMapTable().end(); ++it) { ... }
#pragma once

#include <cstddef>
#include <utility>

#include "QosSnmp/core/ClassMapMatchTableIndex.h"
#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/CounterStamp.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/EcnQueueCounterTableIndex.h"
#include "QosSnmp/core/IndexHash.h"
#include "QosSnmp/core/MibTable.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapClassTableIndex.h"
#include "QosSnmp/core/PolicyMapTableIndex.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMibRows.h"
#include "QosSnmp/core/QosPolicerStatsTableIndex.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/ServicePolicyTableIndex.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "kel/ValueMap.h"
#include "pellix/IntfId.h"
#include "snmp/String.h"

namespace QosSnmp {

class QosMib : public Kel::Entity {
 public:
  using ClassMapTableRows = MibTable<ClassMapTableIndex, ClassMapTableRow>;
  using ClassMapMatchTableRows = MibTable<ClassMapMatchTableIndex, ClassMapMatchTableRow>;
  using PolicyMapTableRows = MibTable<PolicyMapTableIndex, PolicyMapTableRow>;
  using PolicyMapClassTableRows = MibTable<PolicyMapClassTableIndex, PolicyMapClassTableRow>;
  using PolicyMapActionTableRows = MibTable<PolicyMapActionTableIndex, PolicyMapActionTableRow>;
  using QosStatsTableRows = MibTable<QosStatsTableIndex, QosStatsTableRow>;
  using QosPolicerStatsTableRows = MibTable<QosPolicerStatsTableIndex, QosPolicerStatsTableRow>;
  using ServicePolicyTableRows = MibTable<ServicePolicyTableIndex, ServicePolicyTableRow>;
  // Keyed by the shortened chip name, in SNMP order (length first).
  using EcnCounterTableRows = MibTable<Snmp::String, EcnCounterTableRow, OctetStringIndexLess>;
  using EcnQueueCounterTableRows = MibTable<EcnQueueCounterTableIndex, EcnQueueCounterTableRow>;
  using CmapByStaticTypeMap = Kel::ValueMap<Qos::ClassMapCpStaticType, Kel::Ptr<const Qos::ClassMapStatus>>;
  using IntfIdToifIndexMap = Kel::ValueMap<Pellix::IntfId, Kel::S32>;

  explicit QosMib(Kel::String name = "qosMib") : Entity(std::move(name)) {}

  // Rows of all ten tables.
  std::size_t rowCount() const;

  // The clock of the counter stamps; an empty one reads as 0.
  void counterClockIs(CounterClock clock) { counterClock_ = std::move(clock); }
  // Stamps the ECN queue rows of `intf` that read its counters through
  // `ecnCounterTable` with the clock's time: the table's member for `intf`
  // was added, replaced or deleted. Finds the rows by the interface's
  // ifIndex; does nothing when it has none.
  void ecnQueueCountersRestarted(const Qos::EcnCounterTable& ecnCounterTable, const Pellix::IntfId& intf);

  // Class-map table.
  const ClassMapTableRows& classMapTable() const { return classMapTable_; }
  const ClassMapTableRow* classMapTable(const ClassMapTableIndex& index) const {
    return classMapTable_.find(index);
  }
  void classMapTableIs(const ClassMapTableIndex& index, Kel::Ptr<const Qos::ClassMapStatus> classMapStatus);
  void classMapTableDel(const ClassMapTableIndex& index);

  // Class-map match table.
  const ClassMapMatchTableRows& classMapMatchTable() const { return classMapMatchTable_; }
  const ClassMapMatchTableRow* classMapMatchTable(const ClassMapMatchTableIndex& index) const {
    return classMapMatchTable_.find(index);
  }
  void classMapMatchTableIs(const ClassMapMatchTableIndex& index,
                            Kel::Ptr<const Qos::ClassMapStatus> classMapStatus,
                            Kel::Ptr<const Qos::ClassMapMatch> classMapMatch);
  void classMapMatchTableDel(const ClassMapMatchTableIndex& index);

  // Class maps by static control-plane type.
  const CmapByStaticTypeMap& cmapByStaticType() const { return cmapByStaticType_; }
  Kel::Ptr<const Qos::ClassMapStatus> cmapByStaticType(Qos::ClassMapCpStaticType type) const {
    return cmapByStaticType_.get(type);
  }
  void cmapByStaticTypeIs(Qos::ClassMapCpStaticType type, Kel::Ptr<const Qos::ClassMapStatus> classMapStatus);
  void cmapByStaticTypeDel(Qos::ClassMapCpStaticType type);

  // Policy-map table.
  const PolicyMapTableRows& policyMapTable() const { return policyMapTable_; }
  const PolicyMapTableRow* policyMapTable(const PolicyMapTableIndex& index) const {
    return policyMapTable_.find(index);
  }
  void policyMapTableIs(const PolicyMapTableIndex& index,
                        Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus);
  void policyMapTableDel(const PolicyMapTableIndex& index);

  // Policy-map class table.
  const PolicyMapClassTableRows& policyMapClassTable() const { return policyMapClassTable_; }
  const PolicyMapClassTableRow* policyMapClassTable(const PolicyMapClassTableIndex& index) const {
    return policyMapClassTable_.find(index);
  }
  void policyMapClassTableIs(const PolicyMapClassTableIndex& index,
                             Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus, Snmp::String cmapName);
  void policyMapClassTableDel(const PolicyMapClassTableIndex& index);

  // Policy-map action table. Any of the pointers may be null.
  const PolicyMapActionTableRows& policyMapActionTable() const { return policyMapActionTable_; }
  const PolicyMapActionTableRow* policyMapActionTable(const PolicyMapActionTableIndex& index) const {
    return policyMapActionTable_.find(index);
  }
  void policyMapActionTableIs(const PolicyMapActionTableIndex& index,
                              Kel::Ptr<const Qos::ClassAction> classAction,
                              Kel::Ptr<const Qos::Action> action,
                              Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus,
                              Kel::Ptr<const Qos::HwStatus> hwStatus,
                              Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus);
  void policyMapActionTableDel(const PolicyMapActionTableIndex& index);

  // Statistics table. classMapHwStatus is null for control-plane rows.
  const QosStatsTableRows& qosStatsTable() const { return qosStatsTable_; }
  const QosStatsTableRow* qosStatsTable(const QosStatsTableIndex& index) const {
    return qosStatsTable_.find(index);
  }
  void qosStatsTableIs(const QosStatsTableIndex& index,
                       Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus,
                       Kel::Ptr<const Qos::Counter> counter);
  void qosStatsTableDel(const QosStatsTableIndex& index);

  // Policer statistics table.
  const QosPolicerStatsTableRows& qosPolicerStatsTable() const { return qosPolicerStatsTable_; }
  const QosPolicerStatsTableRow* qosPolicerStatsTable(const QosPolicerStatsTableIndex& index) const {
    return qosPolicerStatsTable_.find(index);
  }
  void qosPolicerStatsTableIs(const QosPolicerStatsTableIndex& index,
                              Kel::Ptr<const Qos::PolicerHwStatus> policerHwStatus);
  void qosPolicerStatsTableDel(const QosPolicerStatsTableIndex& index);

  // Service-policy table.
  const ServicePolicyTableRows& servicePolicyTable() const { return servicePolicyTable_; }
  const ServicePolicyTableRow* servicePolicyTable(const ServicePolicyTableIndex& index) const {
    return servicePolicyTable_.find(index);
  }
  void servicePolicyTableIs(const ServicePolicyTableIndex& index, Snmp::String pmapName,
                            Qos::ServicePolicyKey servicePolicyKey);
  void servicePolicyTableDel(const ServicePolicyTableIndex& index);

  // ECN counter table, keyed by the shortened chip name.
  const EcnCounterTableRows& ecnCounterTable() const { return ecnCounterTable_; }
  const EcnCounterTableRow* ecnCounterTable(const Snmp::String& chipName) const {
    return ecnCounterTable_.find(chipName);
  }
  void ecnCounterTableIs(const Snmp::String& chipName, Kel::Ptr<const Qos::ChipCounter> chipCounter,
                         Kel::U32 flags);
  void ecnCounterTableDel(const Snmp::String& chipName);
  void ecnCounterTableDelAll();

  // ECN queue counter table.
  const EcnQueueCounterTableRows& ecnQueueCounterTable() const { return ecnQueueCounterTable_; }
  const EcnQueueCounterTableRow* ecnQueueCounterTable(const EcnQueueCounterTableIndex& index) const {
    return ecnQueueCounterTable_.find(index);
  }
  void ecnQueueCounterTableIs(const EcnQueueCounterTableIndex& index, Pellix::IntfId intfId,
                              Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus,
                              Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable,
                              bool ecnQueueCountersFlag);
  void ecnQueueCounterTableDel(const EcnQueueCounterTableIndex& index);
  void ecnQueueCounterTableDelAll();

  // Interface to ifIndex.
  const IntfIdToifIndexMap& intfIdToifIndex() const { return intfIdToifIndex_; }
  // 0 when the interface has no entry.
  Kel::S32 intfIdToifIndex(const Pellix::IntfId& intf) const { return intfIdToifIndex_.get(intf); }
  bool hasIntfIdToifIndex(const Pellix::IntfId& intf) const { return intfIdToifIndex_.contains(intf); }
  void intfIdToifIndexIs(const Pellix::IntfId& intf, Kel::S32 ifIndex);
  void intfIdToifIndexDel(const Pellix::IntfId& intf);

 private:
  ClassMapTableRows classMapTable_;
  ClassMapMatchTableRows classMapMatchTable_;
  CmapByStaticTypeMap cmapByStaticType_;
  PolicyMapTableRows policyMapTable_;
  PolicyMapClassTableRows policyMapClassTable_;
  PolicyMapActionTableRows policyMapActionTable_;
  QosStatsTableRows qosStatsTable_;
  QosPolicerStatsTableRows qosPolicerStatsTable_;
  ServicePolicyTableRows servicePolicyTable_;
  EcnCounterTableRows ecnCounterTable_;
  EcnQueueCounterTableRows ecnQueueCounterTable_;
  IntfIdToifIndexMap intfIdToifIndex_;
  CounterClock counterClock_;
};

}  // namespace QosSnmp
