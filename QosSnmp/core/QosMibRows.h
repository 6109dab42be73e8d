// The rows of the MIB model's tables (see QosMib), one plain struct per
// table, named after it.
//
// A row holds counted references to the input entities it is rendered
// from, never copies of their values: the SNMP layer reads the live
// entities (counters included) when a query arrives, so no row is
// rewritten when a counter changes. Names are shortened (uniqueId). A
// pointer documented as "may be null" is a column the SNMP layer renders
// empty (or zero) while the entity is absent.
//
// The rows of the four tables whose columns are counters carry a
// CounterStamp (see MibTable), not part of their identity, and say through
// sameCounters() which rows have the same counters: the same counter entity,
// or for an ECN queue row the same interface of the same ECN counter table.
#pragma once

#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/CounterStamp.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Ptr.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"
#include "snmp/String.h"

namespace QosSnmp {

struct ClassMapTableRow {
  Kel::Ptr<const Qos::ClassMapStatus> classMapStatus;

  friend bool operator==(const ClassMapTableRow&, const ClassMapTableRow&) = default;
};

struct ClassMapMatchTableRow {
  Kel::Ptr<const Qos::ClassMapStatus> classMapStatus;
  Kel::Ptr<const Qos::ClassMapMatch> classMapMatch;

  friend bool operator==(const ClassMapMatchTableRow&, const ClassMapMatchTableRow&) = default;
};

struct PolicyMapTableRow {
  Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus;

  friend bool operator==(const PolicyMapTableRow&, const PolicyMapTableRow&) = default;
};

struct PolicyMapClassTableRow {
  Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus;
  Snmp::String cmapName;  // shortened

  friend bool operator==(const PolicyMapClassTableRow&, const PolicyMapClassTableRow&) = default;
};

// Every pointer may be null.
struct PolicyMapActionTableRow {
  Kel::Ptr<const Qos::ClassAction> classAction;
  Kel::Ptr<const Qos::Action> action;
  Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus;
  Kel::Ptr<const Qos::HwStatus> hwStatus;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus;

  friend bool operator==(const PolicyMapActionTableRow&, const PolicyMapActionTableRow&) = default;
};

struct QosStatsTableRow {
  Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus;  // null for control-plane rows
  Kel::Ptr<const Qos::Counter> counter;
  CounterStamp counterStamp;

  friend bool operator==(const QosStatsTableRow&, const QosStatsTableRow&) = default;
  friend bool sameCounters(const QosStatsTableRow& a, const QosStatsTableRow& b) {
    return a.counter == b.counter;
  }
};

struct QosPolicerStatsTableRow {
  Kel::Ptr<const Qos::PolicerHwStatus> policerHwStatus;
  CounterStamp counterStamp;

  friend bool operator==(const QosPolicerStatsTableRow&, const QosPolicerStatsTableRow&) = default;
  friend bool sameCounters(const QosPolicerStatsTableRow& a, const QosPolicerStatsTableRow& b) {
    return a.policerHwStatus == b.policerHwStatus;
  }
};

struct ServicePolicyTableRow {
  Snmp::String pmapName;  // shortened
  Qos::ServicePolicyKey servicePolicyKey;

  friend bool operator==(const ServicePolicyTableRow&, const ServicePolicyTableRow&) = default;
};

// Keyed by the shortened chip name.
struct EcnCounterTableRow {
  Kel::Ptr<const Qos::ChipCounter> chipCounter;
  // Handed through unchanged for the SNMP layer; the agent always writes 0.
  Kel::U32 flags = 0;
  CounterStamp counterStamp;

  friend bool operator==(const EcnCounterTableRow&, const EcnCounterTableRow&) = default;
  friend bool sameCounters(const EcnCounterTableRow& a, const EcnCounterTableRow& b) {
    return a.chipCounter == b.chipCounter;
  }
};

struct EcnQueueCounterTableRow {
  Pellix::IntfId intfId;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus;
  Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable;
  // The hardware status's ECN queue counters flag, handed through unchanged.
  bool ecnQueueCountersFlag = false;
  CounterStamp counterStamp;

  friend bool operator==(const EcnQueueCounterTableRow&, const EcnQueueCounterTableRow&) = default;
  friend bool sameCounters(const EcnQueueCounterTableRow& a, const EcnQueueCounterTableRow& b) {
    return a.ecnCounterTable == b.ecnCounterTable && a.intfId == b.intfId;
  }
};

}  // namespace QosSnmp
