// QosStatusCmapPolicerStatsTableSm: keeps the policer statistics rows of one
// class map of one policy map: one row per interface for which the class's
// counter reports policer status. Made only by the control-plane statistics
// table (CoppStatsTableSm), once per class map, while the policer statistics
// table is switched on.
//
// Watches:
// - the class's Qos::Counter, its policerHwStatus collection keyed by
//   interface name (KelCmapCounter): handleClassMapPolicer(intfName);
// - QosMibConfig's counterPollPeriod (KelQosMibConfig): handleInterval().
// A reactor exists only for a non-null input; without a configuration the
// period reads as 0 (enabled).
// Writes: QosMib's policer statistics table, under (uniqueId(policy map),
//   map type, uniqueId(class map), ifIndex of the interface). The rows it
//   added are in qosPolicerStatsTableKey; doClose() removes exactly those.
// Children: none.
//
// Deliberate, keep as it stands:
// - an interface that the MIB model's interface map does not know gets a
//   row all the same, under ifIndex 0;
// - every change to a finite poll period rescans every interface (no "only
//   when empty" condition); an infinite one removes every row, and the
//   machine stays usable;
// - doClose() traces at level 0, every other handler at level 8.
// Follows from the index: the ifIndex is read when a row is written or
// removed, so a row written before its interface got its ifIndex stays under
// the old index until doClose().
#pragma once

#include <tuple>

#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/QosPolicerStatsTableIndex.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class QosStatusCmapPolicerStatsTableSm : public Kel::StateMachine {
 public:
  class KelCmapCounter : public Kel::Notifiee<KelCmapCounter, QosStatusCmapPolicerStatsTableSm,
                                              const Qos::Counter, Qos::Counter::PolicerHwStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::Counter::PolicerHwStatus /*attr*/, const Kel::String& intfName) {
      owner().handleClassMapPolicer(intfName);
    }
  };

  class KelQosMibConfig : public Kel::Notifiee<KelQosMibConfig, QosStatusCmapPolicerStatsTableSm,
                                               const QosMibConfig, QosMibConfig::CounterPollPeriod> {
   public:
    using Notifiee::Notifiee;
    void on(QosMibConfig::CounterPollPeriod /*attr*/) { owner().handleInterval(); }
  };

  // Ends with the full scan, handleAllEntries().
  QosStatusCmapPolicerStatsTableSm(Kel::String classMapName, Qos::MapType mapType, Kel::String policyMapName,
                                   const Kel::Ptr<const Qos::Counter>& cmapCounter,
                                   const Kel::Ptr<const QosMibConfig>& qosMibConfig, Kel::Ptr<QosMib> qosMib);

  auto arguments() const {
    return std::make_tuple(classMapName_, mapType_, policyMapName_, cmapCounter_.entity(),
                           qosMibConfig_.entity(), qosMib_);
  }

  void handleClassMapPolicer(const Kel::String& intfName);
  void handleInterval();
  void handleAllEntries();
  // Removes every row this machine added; called on close and when the
  // poll period turns infinite.
  void doClose() override;

  const Kel::String& classMapName() const { return classMapName_; }
  Qos::MapType mapType() const { return mapType_; }
  const Kel::String& policyMapName() const { return policyMapName_; }
  Kel::Ptr<const Qos::Counter> cmapCounter() const { return cmapCounter_.entity(); }
  Kel::Ptr<const QosMibConfig> qosMibConfig() const { return qosMibConfig_.entity(); }
  // The counter poll period in seconds; 0 without a configuration, positive
  // infinity when statistics are switched off.
  double interval() const;

  void qosPolicerStatsTableKeyIs(const QosPolicerStatsTableIndex& index) {
    qosPolicerStatsTableKey_.is(index);
  }
  void qosPolicerStatsTableKeyDel(const QosPolicerStatsTableIndex& index) {
    qosPolicerStatsTableKey_.del(index);
  }
  const Kel::KeySet<QosPolicerStatsTableIndex>& qosPolicerStatsTableKey() const {
    return qosPolicerStatsTableKey_;
  }

 private:
  const Kel::String classMapName_;
  const Qos::MapType mapType_;
  const Kel::String policyMapName_;
  Kel::Watch<KelCmapCounter> cmapCounter_;
  Kel::Watch<KelQosMibConfig> qosMibConfig_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<QosPolicerStatsTableIndex> qosPolicerStatsTableKey_;
};

}  // namespace QosSnmp
