#include "QosSnmp/core/RootSm.h"

#include <cassert>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/IntfPairKey.h"
#include "QosSnmp/core/QosSnmpAgent.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "kel/Make.h"
#include "kel/MutatorException.h"

namespace QosSnmp {

RootSm::RootSm(const Kel::Ptr<const Qos::Config>& qosConfig, const Kel::Ptr<const Qos::Status>& qosStatus,
               const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
               const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
               const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir,
               const Kel::Ptr<const QosMibConfig>& qosMibConfig,
               const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
               const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib,
               const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable)
    : qosConfig_(qosConfig),
      qosStatus_(this, qosStatus),
      qosHwStatus_(qosHwStatus),
      qosSliceHwStatusDir_(this, qosSliceHwStatusDir),
      qosAclSliceHwStatusDir_(this, qosAclSliceHwStatusDir),
      qosMibConfig_(qosMibConfig),
      allIntfStatusDir_(allIntfStatusDir),
      qosHwCounter_(qosHwCounter),
      qosMib_(qosMib),
      ecnCounterTable_(ecnCounterTable) {
  handleInitialized();
}

void RootSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::RootSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "RootSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (qosStatus_) {
    qosStatus_->cmapType().forEachKey([this](Qos::MapType type) { handleCmapType(type); });
  }
  if (qosSliceHwStatusDir_) {
    qosSliceHwStatusDir_->entityPtrIteratorConst().forEachKey(
        [this](const Kel::String& name) { handleSlice(name); });
  }
  if (qosAclSliceHwStatusDir_) {
    qosAclSliceHwStatusDir_->entityPtrIteratorConst().forEachKey(
        [this](const Kel::String& name) { handleAclSlice(name); });
  }
  allIntfStatusDirSmIs(allIntfStatusDir_, qosMib_);
  servicePolicyTableSmIs(qosConfig_, qosStatus_.entity(), qosMib_);
  coppStatsTableSmIs(qosStatus_.entity(), qosMibConfig_, qosHwStatus_, qosMib_);
  qosStatsTableSmRefresh();
  coppStaticSmIs(qosHwStatus_, qosSliceHwStatus_, qosMib_, coppPolicyMap());
  ecnCounterTableSmIs(qosHwStatus_, qosHwCounter_, qosMib_);
  ecnQueueCounterTableSmIs(qosHwStatus_, qosSliceHwStatusDir_.entity(), qosMib_, ecnCounterTable_);
}

void RootSm::handleCmapType(Qos::MapType type) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::handleCmapType(Qos::MapType)", "i", type);
  if (auto t = trace(8)) {
    t << "RootSm::handleCmapType( " << type << " )";
  }
  assert(initialized());
  if (type == Qos::mapPbr_) {
    return;
  }
  const Kel::Ptr<const Qos::ClassMapTypeStatus> status = qosStatus_ ? qosStatus_->cmapType(type) : nullptr;
  if (status) {
    classMapTableSmIs(status, qosMib_);
  } else {
    classMapTableSmDel(type);
  }
}

void RootSm::handlePmapType(Qos::MapType type) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::handlePmapType(Qos::MapType)", "i", type);
  if (auto t = trace(8)) {
    t << "RootSm::handlePmapType( " << type << " )";
  }
  assert(initialized());
  if (type == Qos::mapPbr_) {
    return;
  }
  const Kel::Ptr<const Qos::PolicyMapTypeStatus> status = qosStatus_ ? qosStatus_->pmapType(type) : nullptr;
  // Rebuilt on every notification of a present type, never kept.
  policyMapTablesSmDel(type);
  if (status) {
    policyMapTablesSmIs(status, qosStatus_->cmapType(type), qosHwStatus_, qosSliceHwStatus_, qosMib_);
  }
}

void RootSm::handlePmapType() {
  if (qosStatus_) {
    qosStatus_->pmapType().forEachKey([this](Qos::MapType type) { handlePmapType(type); });
  }
}

void RootSm::handleSlice(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::handleSlice(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "RootSm::handleSlice( " << name << " ) ";
  }
  const Kel::Dir* dir = qosSliceHwStatusDir_.get();
  if (dir == nullptr || !dir->contains(name)) {
    return;
  }
  qosSliceHwStatusIs(Kel::ptrCast<const Qos::SliceHwStatus>(dir->entityPtr(name)));
  handlePmapType();
  if (qosStatsTableSm_) {
    qosStatsTableSmRefresh();
  }
  if (coppStaticSm_) {
    coppStaticSmIs(qosHwStatus_, qosSliceHwStatus_, qosMib_, coppPolicyMap());
  }
}

void RootSm::handleAclSlice(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::handleAclSlice(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "RootSm::handleAclSlice( " << name << " ) ";
  }
  const Kel::Dir* dir = qosAclSliceHwStatusDir_.get();
  qosAclSliceHwStatusIs(dir != nullptr ? Kel::ptrCast<const Qos::AclSliceHwStatus>(dir->entityPtr(name))
                                       : nullptr);
  if (qosStatsTableSm_) {
    qosStatsTableSmRefresh();
  }
}

void RootSm::addServicePolicyEntries(const Pellix::IntfId& intf) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::addServicePolicyEntries(Pellix::IntfId)", "p", intf);
  if (auto t = trace(8)) {
    t << "RootSm::addServicePolicyEntries( " << intf << " )";
  }
  ServicePolicyTableSm* table = servicePolicyTableSm_.get();
  if (table == nullptr) {
    return;
  }
  forEachServicePolicyOf(
      intf, [&](const Qos::ServicePolicyKey& key) { table->doAddOrRemoveEntry(intf, key, true); },
      [&](const Qos::ServicePolicyKey& key) { table->doMaybeAddOrRemoveEntry(intf, key); });
}

void RootSm::deleteServicePolicyEntries(const Pellix::IntfId& intf) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::deleteServicePolicyEntries(Pellix::IntfId)", "p", intf);
  if (auto t = trace(8)) {
    t << "RootSm::deleteServicePolicyEntries( " << intf << " )";
  }
  ServicePolicyTableSm* table = servicePolicyTableSm_.get();
  if (table == nullptr) {
    return;
  }
  // Unlike the add, configured policies are removed directly, without the
  // port-channel rule.
  const auto remove = [&](const Qos::ServicePolicyKey& key) { table->doAddOrRemoveEntry(intf, key, false); };
  forEachServicePolicyOf(intf, remove, remove);
}

template <typename OnStatus, typename OnConfig>
void RootSm::forEachServicePolicyOf(const Pellix::IntfId& intf, OnStatus onStatus, OnConfig onConfig) const {
  if (qosStatus_) {
    const Qos::IntfPairKey pair(intf, kDefaultIntfId);
    qosStatus_->servicePolicyStatus().forEachKey([&](const Qos::ServicePolicyKey& key) {
      if (qosStatus_->servicePolicyStatus(key)->intfIds(pair)) {
        onStatus(key);
      }
    });
  }
  if (qosConfig_) {
    qosConfig_->servicePolicyConfig().forEachKey([&](const Qos::ServicePolicyKey& key) {
      if (qosConfig_->servicePolicyConfig(key)->intfIds(intf)) {
        onConfig(key);
      }
    });
  }
}

void RootSm::addEcnQueueCounterEntries(const Pellix::IntfId& intf, Kel::S32 ifIndex) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::addEcnQueueCounterEntries(Pellix::IntfId, S32)", "pi", intf,
                   ifIndex);
  if (auto t = trace(8)) {
    t << "RootSm::addEcnQueueCounterEntries() " << intf;
  }
  if (ecnQueueCounterTableSm_) {
    ecnQueueCounterTableSm_->addIntfIndex(intf, ifIndex);
  }
}

void RootSm::deleteEcnQueueCounterEntries(const Pellix::IntfId& intf, Kel::S32 ifIndex) {
  QOS_HANDLER_RING("void QosSnmp::RootSm::deleteEcnQueueCounterEntries(Pellix::IntfId, S32)", "pi", intf,
                   ifIndex);
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::deleteEcnQueueCounterEntries() " << intf;
  }
  if (ecnQueueCounterTableSm_) {
    ecnQueueCounterTableSm_->deleteIntfIndex(intf, ifIndex);
  }
}

ClassMapTableSm* RootSm::classMapTableSmIs(const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                           const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(classMapTypeStatus, "classMapTypeStatus");
  return classMapTableSm_.is(classMapTypeStatus->type(), classMapTypeStatus, qosMib);
}

PolicyMapTablesSm* RootSm::policyMapTablesSmIs(
    const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus,
    const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
    const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus, const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(policyMapTypeStatus, "policyMapTypeStatus");
  return policyMapTablesSm_.is(policyMapTypeStatus->type(), policyMapTypeStatus, classMapTypeStatus,
                               qosHwStatus, qosSliceHwStatus, qosMib);
}

Kel::Ptr<const Qos::PolicyMapStatus> RootSm::coppPolicyMap() const {
  const Kel::Ptr<const Qos::PolicyMapTypeStatus> controlPlane =
      qosStatus_ ? qosStatus_->pmapType(Qos::mapControlPlane_) : nullptr;
  return controlPlane ? controlPlane->pmap(kCoppPolicyMapName) : nullptr;
}

void RootSm::qosStatsTableSmRefresh() {
  qosStatsTableSmIs(qosHwStatus_, qosSliceHwStatus_, qosAclSliceHwStatus_, qosMibConfig_, qosStatus_.entity(),
                    qosMib_);
}

Kel::Ptr<RootSm> rootSmFactory(
    const Kel::Ptr<const Qos::Config>& qosConfig, const Kel::Ptr<const Qos::Status>& qosStatus,
    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus, const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
    const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
    const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
    const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib,
    const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable) {
  Kel::Ptr<RootSm> rootSm =
      Kel::make<RootSm>(qosConfig, qosStatus, qosHwStatus, qosSliceHwStatusDir, qosAclSliceHwStatusDir,
                        qosMibConfig, allIntfStatusDir, qosHwCounter, qosMib, ecnCounterTable);
  rootSm->hasNotificationActiveIs(true);
  return rootSm;
}

}  // namespace QosSnmp
