// RootSm: the root of the agent's state machines. It watches the top of the
// QoS input model, owns every other machine, and relays the interface-index
// mirror's news to the service-policy and ECN queue counter tables.
//
// Watches:
// - Qos::Status: cmapType (handleCmapType(type)) and pmapType
//   (handlePmapType(type));
// - the slice hardware-status directory (handleSlice(name)) and the ACL
//   slice hardware-status directory (handleAclSlice(name)).
// A reactor exists only for a non-null input.
// Writes: no rows of its own; it has no doClose(). Its children remove their
// rows when they are dropped.
// Children, in the order handleInitialized() makes them: the class-map table
// machine of every class-map type (map type 2 is never mirrored), the
// policy-map tables machines (through the slice scan: with no slice they
// come only with a pmapType notification), the interface-index mirror, the
// service-policy table, the control-plane statistics table, the statistics
// table driver, the static control-plane machine, the ECN chip counter table
// and the ECN queue counter table.
// Deliberate, keep as it stands:
// - handlePmapType(type) drops and rebuilds the type's policy-map machine
//   on every notification of a present type, never keeping it;
// - a slice removed from its directory leaves qosSliceHwStatus and all
//   children as they were, while a removed ACL slice clears
//   qosAclSliceHwStatus and rebuilds the statistics driver;
// - with several slices of a kind, the last one handled wins;
// - deleteEcnQueueCounterEntries traces under the ECN queue counter table's
//   name, where its add counterpart traces under RootSm's.
#pragma once

#include <tuple>

#include "QosSnmp/copp/CoppStaticSm.h"
#include "QosSnmp/copp/CoppStatsTableSm.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/AllIntfStatusDirSm.h"
#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "QosSnmp/ecn/EcnCounterTableSm.h"
#include "QosSnmp/ecn/EcnQueueCounterTableSm.h"
#include "QosSnmp/policy/ClassMapTableSm.h"
#include "QosSnmp/policy/PolicyMapTablesSm.h"
#include "QosSnmp/servicepolicy/ServicePolicyTableSm.h"
#include "QosSnmp/stats/QosStatsTableSm.h"
#include "kel/Child.h"
#include "kel/ChildMap.h"
#include "kel/Dir.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

class RootSm : public Kel::StateMachine {
 public:
  class KelQosStatus : public Kel::Notifiee<KelQosStatus, RootSm, const Qos::Status, Qos::Status::PmapType,
                                            Qos::Status::CmapType> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::Status::PmapType /*attr*/, const Qos::MapType& type) { owner().handlePmapType(type); }
    void on(Qos::Status::CmapType /*attr*/, const Qos::MapType& type) { owner().handleCmapType(type); }
  };

  class KelQosSliceHwStatusDir
      : public Kel::Notifiee<KelQosSliceHwStatusDir, RootSm, const Kel::Dir, Kel::Dir::Entry> {
   public:
    using Notifiee::Notifiee;
    void on(Kel::Dir::Entry /*attr*/, const Kel::String& name) { owner().handleSlice(name); }
  };

  class KelQosAclSliceHwStatusDir
      : public Kel::Notifiee<KelQosAclSliceHwStatusDir, RootSm, const Kel::Dir, Kel::Dir::Entry> {
   public:
    using Notifiee::Notifiee;
    void on(Kel::Dir::Entry /*attr*/, const Kel::String& name) { owner().handleAclSlice(name); }
  };

  RootSm(const Kel::Ptr<const Qos::Config>& qosConfig, const Kel::Ptr<const Qos::Status>& qosStatus,
         const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
         const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
         const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir,
         const Kel::Ptr<const QosMibConfig>& qosMibConfig,
         const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
         const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib,
         const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable);

  // The ten inputs, in constructor order (for the reactor inputs, the
  // watched entity).
  auto arguments() const {
    return std::make_tuple(qosConfig_, qosStatus_.entity(), qosHwStatus_, qosSliceHwStatusDir_.entity(),
                           qosAclSliceHwStatusDir_.entity(), qosMibConfig_, allIntfStatusDir_, qosHwCounter_,
                           qosMib_, ecnCounterTable_);
  }

  void handleInitialized();
  void handleCmapType(Qos::MapType type);
  void handlePmapType(Qos::MapType type);
  void handlePmapType();
  void handleSlice(const Kel::String& name);
  void handleAclSlice(const Kel::String& name);

  // Called by the interface-index mirror when an interface gains or loses
  // its SNMP ifIndex.
  void addServicePolicyEntries(const Pellix::IntfId& intf);
  void deleteServicePolicyEntries(const Pellix::IntfId& intf);
  void addEcnQueueCounterEntries(const Pellix::IntfId& intf, Kel::S32 ifIndex);
  void deleteEcnQueueCounterEntries(const Pellix::IntfId& intf, Kel::S32 ifIndex);

  // Children. The keyed ...SmIs throw the null-argument exception for a
  // null status (it carries the key) and the re-instantiating exception for
  // an existing key built from other arguments.
  ClassMapTableSm* classMapTableSmIs(const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                     const Kel::Ptr<QosMib>& qosMib);
  void classMapTableSmDel(Qos::MapType type) { classMapTableSm_.del(type); }
  void classMapTableSmDelAll() { classMapTableSm_.delAll(); }
  const Kel::ChildMap<Qos::MapType, ClassMapTableSm>& classMapTableSm() const { return classMapTableSm_; }

  PolicyMapTablesSm* policyMapTablesSmIs(const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus,
                                         const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                         const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                         const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus,
                                         const Kel::Ptr<QosMib>& qosMib);
  void policyMapTablesSmDel(Qos::MapType type) { policyMapTablesSm_.del(type); }
  void policyMapTablesSmDelAll() { policyMapTablesSm_.delAll(); }
  const Kel::ChildMap<Qos::MapType, PolicyMapTablesSm>& policyMapTablesSm() const {
    return policyMapTablesSm_;
  }

  ServicePolicyTableSm* servicePolicyTableSmIs(const Kel::Ptr<const Qos::Config>& qosConfig,
                                               const Kel::Ptr<const Qos::Status>& qosStatus,
                                               const Kel::Ptr<QosMib>& qosMib) {
    return servicePolicyTableSm_.is(qosConfig, qosStatus, qosMib);
  }
  void servicePolicyTableSmDel() { servicePolicyTableSm_.del(); }
  ServicePolicyTableSm* servicePolicyTableSm() const { return servicePolicyTableSm_.get(); }

  AllIntfStatusDirSm* allIntfStatusDirSmIs(
      const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir, const Kel::Ptr<QosMib>& qosMib) {
    return allIntfStatusDirSm_.is(allIntfStatusDir, qosMib, this);
  }
  void allIntfStatusDirSmDel() { allIntfStatusDirSm_.del(); }
  AllIntfStatusDirSm* allIntfStatusDirSm() const { return allIntfStatusDirSm_.get(); }

  CoppStatsTableSm* coppStatsTableSmIs(const Kel::Ptr<const Qos::Status>& qosStatus,
                                       const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                       const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                       const Kel::Ptr<QosMib>& qosMib) {
    return coppStatsTableSm_.is(qosStatus, qosMibConfig, qosHwStatus, qosMib);
  }
  void coppStatsTableSmDel() { coppStatsTableSm_.del(); }
  CoppStatsTableSm* coppStatsTableSm() const { return coppStatsTableSm_.get(); }

  QosStatsTableSm* qosStatsTableSmIs(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                     const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus,
                                     const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                                     const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                     const Kel::Ptr<const Qos::Status>& qosStatus,
                                     const Kel::Ptr<QosMib>& qosMib) {
    return qosStatsTableSm_.is(qosHwStatus, qosSliceHwStatus, qosAclSliceHwStatus, qosMibConfig, qosStatus,
                               qosMib);
  }
  void qosStatsTableSmDel() { qosStatsTableSm_.del(); }
  QosStatsTableSm* qosStatsTableSm() const { return qosStatsTableSm_.get(); }

  CoppStaticSm* coppStaticSmIs(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                               const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus,
                               const Kel::Ptr<QosMib>& qosMib,
                               const Kel::Ptr<const Qos::PolicyMapStatus>& coppPmap) {
    return coppStaticSm_.is(qosHwStatus, qosSliceHwStatus, qosMib, coppPmap);
  }
  void coppStaticSmDel() { coppStaticSm_.del(); }
  CoppStaticSm* coppStaticSm() const { return coppStaticSm_.get(); }

  EcnCounterTableSm* ecnCounterTableSmIs(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                         const Kel::Ptr<const Qos::HwCounter>& qosHwCounter,
                                         const Kel::Ptr<QosMib>& qosMib) {
    return ecnCounterTableSm_.is(qosHwStatus, qosHwCounter, qosMib);
  }
  void ecnCounterTableSmDel() { ecnCounterTableSm_.del(); }
  EcnCounterTableSm* ecnCounterTableSm() const { return ecnCounterTableSm_.get(); }

  EcnQueueCounterTableSm* ecnQueueCounterTableSmIs(
      const Kel::Ptr<const Qos::HwStatus>& qosHwStatus, const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
      const Kel::Ptr<QosMib>& qosMib, const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable) {
    return ecnQueueCounterTableSm_.is(qosHwStatus, qosSliceHwStatusDir, qosMib, ecnCounterTable);
  }
  void ecnQueueCounterTableSmDel() { ecnQueueCounterTableSm_.del(); }
  EcnQueueCounterTableSm* ecnQueueCounterTableSm() const { return ecnQueueCounterTableSm_.get(); }

  const Qos::Status* qosStatus() const { return qosStatus_.get(); }
  const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus() const { return qosSliceHwStatus_; }
  const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus() const { return qosAclSliceHwStatus_; }
  void qosSliceHwStatusIs(const Kel::Ptr<const Qos::SliceHwStatus>& status) { qosSliceHwStatus_ = status; }
  void qosAclSliceHwStatusIs(const Kel::Ptr<const Qos::AclSliceHwStatus>& status) {
    qosAclSliceHwStatus_ = status;
  }

 private:
  // The control-plane policy map "copp-system-policy" of map type 0, or null.
  Kel::Ptr<const Qos::PolicyMapStatus> coppPolicyMap() const;
  // Calls onStatus(key) for every service policy the status reports as
  // applied to `intf` itself, then onConfig(key) for every one the
  // configuration puts on it.
  template <typename OnStatus, typename OnConfig>
  void forEachServicePolicyOf(const Pellix::IntfId& intf, OnStatus onStatus, OnConfig onConfig) const;
  // Builds or keeps the statistics driver over the current slice statuses.
  void qosStatsTableSmRefresh();

  Kel::Ptr<const Qos::Config> qosConfig_;
  Kel::Watch<KelQosStatus> qosStatus_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Watch<KelQosSliceHwStatusDir> qosSliceHwStatusDir_;
  Kel::Watch<KelQosAclSliceHwStatusDir> qosAclSliceHwStatusDir_;
  Kel::Ptr<const QosMibConfig> qosMibConfig_;
  Kel::Ptr<const Interface::AllIntfStatusDir> allIntfStatusDir_;
  Kel::Ptr<const Qos::HwCounter> qosHwCounter_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable_;
  Kel::Ptr<const Qos::SliceHwStatus> qosSliceHwStatus_;
  Kel::Ptr<const Qos::AclSliceHwStatus> qosAclSliceHwStatus_;
  Kel::ChildMap<Qos::MapType, ClassMapTableSm> classMapTableSm_;
  Kel::ChildMap<Qos::MapType, PolicyMapTablesSm> policyMapTablesSm_;
  Kel::Child<ServicePolicyTableSm> servicePolicyTableSm_;
  Kel::Child<AllIntfStatusDirSm> allIntfStatusDirSm_;
  Kel::Child<CoppStatsTableSm> coppStatsTableSm_;
  Kel::Child<QosStatsTableSm> qosStatsTableSm_;
  Kel::Child<CoppStaticSm> coppStaticSm_;
  Kel::Child<EcnCounterTableSm> ecnCounterTableSm_;
  Kel::Child<EcnQueueCounterTableSm> ecnQueueCounterTableSm_;
};

// Builds the agent's root machine over the ten entities and switches its
// notifications on.
Kel::Ptr<RootSm> rootSmFactory(
    const Kel::Ptr<const Qos::Config>& qosConfig, const Kel::Ptr<const Qos::Status>& qosStatus,
    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus, const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
    const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
    const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
    const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib,
    const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable);

using RootSmFactory = decltype(rootSmFactory);

}  // namespace QosSnmp
