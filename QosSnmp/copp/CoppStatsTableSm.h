// CoppStatsTableSm: writes one statistics row for every class of every
// policy map whose status carries a counter for that class, taking the
// counter from the QoS status tree; with the policer statistics table
// switched on (toggle "QosSnmpPolicerStatsTable"), it also keeps one
// QosStatusCmapPolicerStatsTableSm per class map for the policer rows.
//
// Watches:
// - Qos::Status's pmapType (KelQosStatus): a map type present gets its
//   KelPmapType, a map type gone loses it;
// - each map type's pmap (KelPmapType, keyed by map type): a policy map
//   present gets its KelPmap, a policy map gone loses it;
// - each policy map's cmapCounters (KelPmap, keyed by policy-map name):
//   handleClassMap(cmapName, policy map's name, policy map's type); made, a
//   KelPmap walks all its counters (handleCmaps());
// - QosMibConfig's counterPollPeriod (KelQosMibConfig): handleInterval().
// Reads, not watched: Qos::HwStatus's coppHwStatsSupported.
// Writes: QosMib's statistics table, under (uniqueId(policy map), map type,
//   uniqueId(class map), 0), with a null class-map hardware status and the
//   class's counter. qosStatsTableKey holds the rows it added; doClose()
//   removes exactly those.
// Children: qosStatusCmapPolicerStatsTableSm, keyed by class-map name. They
//   are not dropped by doClose() (each follows the poll period itself) and
//   go with the machine.
//
// Deliberate, keep as it stands:
// - no row for map type 2, for the class "copp-system-drop", for static
//   control-plane class maps, or while the poll period is infinite;
// - while coppHwStatsSupported is true the classes of "copp-system-policy"
//   (map type 0) are the hardware-status statistics' business and are
//   skipped here; the flag is read, not watched, so rows written while it
//   was false stay until the machine closes or the period turns infinite;
// - the policer children are keyed by the class-map name only: the same
//   class map under two policy maps shares one child (the one made first,
//   which keeps the counter it was made with), and a counter removed from
//   either policy map removes it for both;
// - an infinite poll period removes every statistics row (doClose()); a
//   finite one rescans everything;
// - handleCmaps() traces at level 0, the other handlers at level 8.
// Choices where the requirements are silent: a policy map or map type that
// leaves the status only loses its reactor, its rows stay until the machine
// closes or the period turns infinite (the reactors have no close action of
// their own); a KelPmap walks its counters when it is made, so the initial
// scan judges each class twice (handleCmaps(), then handleAllEntries()),
// which writes the same rows.
#pragma once

#include <tuple>

#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/Status.h"
#include "QosSnmp/stats/QosStatusCmapPolicerStatsTableSm.h"
#include "kel/ChildMap.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class CoppStatsTableSm : public Kel::StateMachine {
 public:
  class KelQosStatus
      : public Kel::Notifiee<KelQosStatus, CoppStatsTableSm, const Qos::Status, Qos::Status::PmapType> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::Status::PmapType /*attr*/, const Qos::MapType& type);
  };

  class KelQosMibConfig : public Kel::Notifiee<KelQosMibConfig, CoppStatsTableSm, const QosMibConfig,
                                               QosMibConfig::CounterPollPeriod> {
   public:
    using Notifiee::Notifiee;
    void on(QosMibConfig::CounterPollPeriod /*attr*/) { owner().handleInterval(); }
  };

  // Follows the policy maps of one map type; a member of pmapType, keyed by
  // the map type. Made, it makes a KelPmap for every policy map present.
  class KelPmapType : public Kel::Notifiee<KelPmapType, CoppStatsTableSm, const Qos::PolicyMapTypeStatus,
                                           Qos::PolicyMapTypeStatus::Pmap> {
   public:
    // Follows the counters of one policy map; a member of its type's pmap,
    // keyed by the policy map's name. Delivers only while the machine does.
    class KelPmap : public Kel::Notifiee<KelPmap, CoppStatsTableSm, const Qos::PolicyMapStatus,
                                         Qos::PolicyMapStatus::CmapCounters> {
     public:
      KelPmap(CoppStatsTableSm* owner, const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus);

      auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }

      void on(Qos::PolicyMapStatus::CmapCounters /*attr*/, const Kel::String& cmapName) {
        owner().handleClassMap(cmapName, notifier()->name(), notifier()->type());
      }
      // Judges every class of the policy map that has a counter.
      void handleCmaps();
    };

    KelPmapType(CoppStatsTableSm* owner, const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus);

    auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }

    void on(Qos::PolicyMapTypeStatus::Pmap /*attr*/, const Kel::String& name);

    // REQUIRES: policyMapStatus is not null (MutatorArgNullPointerException);
    // the reactor is kept under the policy map's name.
    KelPmap* pmapIs(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus);
    void pmapDel(const Kel::String& name) { pmap_.del(name); }
    void pmapDelAll() { pmap_.delAll(); }
    KelPmap* pmap(const Kel::String& name) const { return pmap_.find(name); }
    const Kel::ChildMap<Kel::String, KelPmap>& pmap() const { return pmap_; }

   private:
    Kel::ChildMap<Kel::String, KelPmap> pmap_;
  };

  // Builds the reactors of the non-null inputs and a KelPmapType per map
  // type present, then runs handleAllEntries().
  CoppStatsTableSm(const Kel::Ptr<const Qos::Status>& qosStatus,
                   const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                   Kel::Ptr<const Qos::HwStatus> qosHwStatus, Kel::Ptr<QosMib> qosMib);

  auto arguments() const {
    return std::make_tuple(qosStatus_.entity(), qosMibConfig_.entity(), qosHwStatus_, qosMib_);
  }

  // Adds or removes the statistics row (and the policer child) of one class
  // of one policy map.
  void handleClassMap(const Kel::String& cmapName, const Kel::String& pmapName, Qos::MapType type);
  // Judges every class with a counter of every policy map.
  void handleAllEntries();
  void handleInterval();
  // Removes every statistics row this machine added; the policer children
  // stay.
  void doClose() override;

  // The counter poll period in seconds; 0 without a configuration, positive
  // infinity when statistics are switched off.
  double interval() const;

  // The per-map-type reactors. REQUIRES: policyMapTypeStatus is not null
  // (MutatorArgNullPointerException); kept under its map type.
  KelPmapType* pmapTypeIs(const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus);
  void pmapTypeDel(Qos::MapType type) { pmapType_.del(type); }
  void pmapTypeDelAll() { pmapType_.delAll(); }
  KelPmapType* pmapType(Qos::MapType type) const { return pmapType_.find(type); }
  const Kel::ChildMap<Qos::MapType, KelPmapType>& pmapType() const { return pmapType_; }

  // The policer children: made under cmapName when the key is new, returned
  // when the key has a child built from the same arguments; a child under
  // the key built from other arguments makes the framework throw its
  // re-instantiation exception.
  QosStatusCmapPolicerStatsTableSm* qosStatusCmapPolicerStatsTableSmIs(
      const Kel::String& cmapName, Qos::MapType type, const Kel::String& pmapName,
      const Kel::Ptr<const Qos::Counter>& counter, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
      const Kel::Ptr<QosMib>& qosMib);
  void qosStatusCmapPolicerStatsTableSmDel(const Kel::String& cmapName) {
    qosStatusCmapPolicerStatsTableSm_.del(cmapName);
  }
  void qosStatusCmapPolicerStatsTableSmDelAll() { qosStatusCmapPolicerStatsTableSm_.delAll(); }
  QosStatusCmapPolicerStatsTableSm* qosStatusCmapPolicerStatsTableSm(const Kel::String& cmapName) const {
    return qosStatusCmapPolicerStatsTableSm_.find(cmapName);
  }
  const Kel::ChildMap<Kel::String, QosStatusCmapPolicerStatsTableSm>& qosStatusCmapPolicerStatsTableSm()
      const {
    return qosStatusCmapPolicerStatsTableSm_;
  }

  // The statistics rows this machine added.
  void qosStatsTableKeyIs(const QosStatsTableIndex& index) { qosStatsTableKey_.is(index); }
  void qosStatsTableKeyDel(const QosStatsTableIndex& index) { qosStatsTableKey_.del(index); }
  void qosStatsTableKeyDelAll() { qosStatsTableKey_.delAll(); }
  const Kel::KeySet<QosStatsTableIndex>& qosStatsTableKey() const { return qosStatsTableKey_; }

  const Qos::Status* qosStatus() const { return qosStatus_.get(); }
  const QosMibConfig* qosMibConfig() const { return qosMibConfig_.get(); }
  // Drop an input and its reactor.
  void qosStatusDel() { qosStatus_.reset(); }
  void qosMibConfigDel() { qosMibConfig_.reset(); }

 private:
  // Whether the classes of `pmapName` of `type` belong to the hardware-status
  // statistics instead of this table.
  bool handedToHwStats(const Kel::String& pmapName, Qos::MapType type) const;

  Kel::Watch<KelQosStatus> qosStatus_;
  Kel::Watch<KelQosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<QosStatsTableIndex> qosStatsTableKey_;
  Kel::ChildMap<Kel::String, QosStatusCmapPolicerStatsTableSm> qosStatusCmapPolicerStatsTableSm_;
  // Last, so that the reactors go first when the machine is destroyed.
  Kel::ChildMap<Qos::MapType, KelPmapType> pmapType_;
};

}  // namespace QosSnmp
