#include "QosSnmp/servicepolicy/ServicePolicyTableSm.h"

#include <utility>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"
#include "kel/RingTrace.h"
#include "kel/Types.h"
#include "pellix/PortChannelIntfId.h"
#include "pellix/SubIntfId.h"

namespace QosSnmp {

namespace {

// An interface without an entry in the MIB model's interface map.
constexpr Kel::S32 kNoIfIndex = 0;

}  // namespace

void ServicePolicyTableSm::KelQosConfig::on(Qos::Config::ServicePolicyConfig /*attr*/,
                                            const Qos::ServicePolicyKey& key) {
  if (const Kel::Ptr<const Qos::ServicePolicyConfig> member = notifier()->servicePolicyConfig(key)) {
    owner().servicePolicyConfigIs(member);
  } else {
    owner().servicePolicyConfigDel(key);
  }
}

void ServicePolicyTableSm::KelQosStatus::on(Qos::Status::ServicePolicyStatus /*attr*/,
                                            const Qos::ServicePolicyKey& key) {
  if (const Kel::Ptr<const Qos::ServicePolicyStatus> member = notifier()->servicePolicyStatus(key)) {
    owner().servicePolicyStatusIs(member);
  } else {
    owner().servicePolicyStatusDel(key);
  }
}

ServicePolicyTableSm::KelServicePolicyConfig::KelServicePolicyConfig(
    ServicePolicyTableSm* owner, const Kel::Ptr<const Qos::ServicePolicyConfig>& servicePolicyConfig)
    : Notifiee(owner, servicePolicyConfig), key_(servicePolicyConfig->key()) {
  handleIntfIds();
}

void ServicePolicyTableSm::KelServicePolicyConfig::handleIntfIds() {
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::KelServicePolicyConfig::handleIntfIds()", "");
  if (auto t = trace(8)) {
    t << "ServicePolicyConfigSm::handleIntfIds( " << key_ << " )";
  }
  notifier()->intfIds().forEachKey(
      [this](const Pellix::IntfId& intf) { owner().doMaybeAddOrRemoveEntry(intf, key_); });
}

void ServicePolicyTableSm::KelServicePolicyConfig::doClose() {
  // A machine that closes has removed every row it added; judging the
  // interfaces now would only repeat that.
  if (owner().closed()) {
    return;
  }
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::KelServicePolicyConfig::doClose()", "");
  if (auto t = trace(8)) {
    t << "ServicePolicyConfigSm::doClose( " << key_ << " )";
  }
  notifier()->intfIds().forEachKey(
      [this](const Pellix::IntfId& intf) { owner().doMaybeAddOrRemoveEntry(intf, key_); });
}

ServicePolicyTableSm::KelServicePolicyStatus::KelServicePolicyStatus(
    ServicePolicyTableSm* owner, const Kel::Ptr<const Qos::ServicePolicyStatus>& servicePolicyStatus)
    : Notifiee(owner, servicePolicyStatus), key_(servicePolicyStatus->key()) {
  handleIntfIds();
}

void ServicePolicyTableSm::KelServicePolicyStatus::handleIntfIds(const Qos::IntfPairKey& pair) {
  QOS_HANDLER_RING(
      "void QosSnmp::ServicePolicyTableSm::KelServicePolicyStatus::handleIntfIds(const Qos::IntfPairKey&)",
      "pp", pair.intfId(), pair.subIntfId());
  if (auto t = trace(8)) {
    t << "ServicePolicyStatusSm::handleIntfIds( " << pair << ", " << key_ << " )";
  }
  if (Pellix::SubIntfId::isSubIntfId(pair.subIntfId())) {
    return;
  }
  owner().doAddOrRemoveEntry(pair.intfId(), key_, notifier()->intfIds(pair));
}

void ServicePolicyTableSm::KelServicePolicyStatus::handleIntfIds() {
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::KelServicePolicyStatus::handleIntfIds()", "");
  if (auto t = trace(8)) {
    t << "ServicePolicyStatusSm::handleIntfIds( " << key_ << " )";
  }
  notifier()->intfIds().forEachKey([this](const Qos::IntfPairKey& pair) { handleIntfIds(pair); });
  owner().syncIntfIds(key_);
}

void ServicePolicyTableSm::KelServicePolicyStatus::doClose() {
  // See KelServicePolicyConfig::doClose().
  if (owner().closed()) {
    return;
  }
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::KelServicePolicyStatus::doClose()", "");
  if (auto t = trace(8)) {
    t << "ServicePolicyStatusSm::doClose( " << key_ << " )";
  }
  notifier()->intfIds().forEachKey(
      [this](const Qos::IntfPairKey& pair) { owner().doAddOrRemoveEntry(pair.intfId(), key_, false); });
  // The status member is gone, so this removes the key's port-channel rows.
  owner().syncIntfIds(key_);
}

ServicePolicyTableSm::ServicePolicyTableSm(const Kel::Ptr<const Qos::Config>& qosConfig,
                                           const Kel::Ptr<const Qos::Status>& qosStatus,
                                           Kel::Ptr<QosMib> qosMib)
    : qosConfig_(this, qosConfig), qosStatus_(this, qosStatus), qosMib_(std::move(qosMib)) {
  if (qosConfig_) {
    for (const auto& member : qosConfig_->servicePolicyConfig()) {
      servicePolicyConfigIs(member.second);
    }
  }
  if (qosStatus_) {
    for (const auto& member : qosStatus_->servicePolicyStatus()) {
      servicePolicyStatusIs(member.second);
    }
  }
}

ServicePolicyTableSm::KelServicePolicyConfig* ServicePolicyTableSm::servicePolicyConfigIs(
    const Kel::Ptr<const Qos::ServicePolicyConfig>& servicePolicyConfig) {
  Kel::requireArgument(servicePolicyConfig, "servicePolicyConfig");
  return servicePolicyConfig_.is(servicePolicyConfig->key(), this, servicePolicyConfig);
}

ServicePolicyTableSm::KelServicePolicyStatus* ServicePolicyTableSm::servicePolicyStatusIs(
    const Kel::Ptr<const Qos::ServicePolicyStatus>& servicePolicyStatus) {
  Kel::requireArgument(servicePolicyStatus, "servicePolicyStatus");
  return servicePolicyStatus_.is(servicePolicyStatus->key(), this, servicePolicyStatus);
}

void ServicePolicyTableSm::doAddOrRemoveEntry(const Pellix::IntfId& intf, const Qos::ServicePolicyKey& key,
                                              bool add) {
  QOS_HANDLER_RING(
      "void QosSnmp::ServicePolicyTableSm::doAddOrRemoveEntry(Pellix::IntfId, const Qos::ServicePolicyKey&, "
      "bool)",
      "piipi", intf, key.type(), key.direction(), key.pmapName(), add);
  if (auto t = trace(8)) {
    t << "ServicePolicyTableSm::doAddOrRemoveEntry( " << intf << ", " << key << ", " << add << " )";
  }
  if (key.type() == Qos::mapPbr_) {
    return;
  }
  const Kel::S32 ifIndex = qosMib_->intfIdToifIndex(intf);
  static constinit RingTrace::Site ifIndexSite("ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex:", "i");
  RingTrace::message(ifIndexSite, ifIndex);
  if (auto t = trace(8)) {
    t << "ServicePolicyTableSm::doAddOrRemoveEntry() ifIndex: " << ifIndex;
  }
  if (ifIndex == kNoIfIndex || key.type() == Qos::mapControlPlane_ || key.type() == Qos::mapPbr_) {
    return;
  }
  const ServicePolicyTableIndex index(ifIndex, static_cast<Kel::S32>(key.direction()));
  // Deleting first drops the row of any other policy that held the index.
  qosMib_->servicePolicyTableDel(index);
  if (add) {
    qosMib_->servicePolicyTableIs(index, uniqueId(key.pmapName()), key);
    servicePolicyTableKeyIs(index);
  } else {
    servicePolicyTableKeyDel(index);
  }
}

void ServicePolicyTableSm::doMaybeAddOrRemoveEntry(const Pellix::IntfId& intf,
                                                   const Qos::ServicePolicyKey& key) {
  QOS_HANDLER_RING(
      "void QosSnmp::ServicePolicyTableSm::doMaybeAddOrRemoveEntry(Pellix::IntfId, const "
      "Qos::ServicePolicyKey&)",
      "piip", intf, key.type(), key.direction(), key.pmapName());
  if (auto t = trace(8)) {
    t << "ServicePolicyTableSm::doMaybeAddOrRemoveEntry( " << intf << ", " << key << " )";
  }
  const Kel::Ptr<const Qos::ServicePolicyStatus> spStatus =
      qosStatus_ ? qosStatus_->servicePolicyStatus(key) : nullptr;
  if (!Pellix::PortChannelIntfId::isPortChannelIntfId(intf)) {
    if (auto t = trace(4)) {
      t << "ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): Is not a lagIntf";
    }
    return;
  }
  if (!spStatus) {
    if (auto t = trace(4)) {
      t << "ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): No spStatus";
    }
    doAddOrRemoveEntry(intf, key, false);
    return;
  }
  const Kel::Ptr<const Qos::ServicePolicyConfig> spConfig =
      qosConfig_ ? qosConfig_->servicePolicyConfig(key) : nullptr;
  doAddOrRemoveEntry(intf, key, spConfig && spConfig->intfIds(intf));
}

void ServicePolicyTableSm::syncIntfIds(const Qos::ServicePolicyKey& key) {
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::syncIntfIds(const Qos::ServicePolicyKey&)", "iip",
                   key.type(), key.direction(), key.pmapName());
  if (auto t = trace(8)) {
    t << "ServicePolicyTableSm::syncIntfIds( " << key << " )";
  }
  if (KelServicePolicyConfig* config = servicePolicyConfig(key)) {
    config->handleIntfIds();
  }
}

void ServicePolicyTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::ServicePolicyTableSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "ServicePolicyTableSm::doClose()";
  }
  servicePolicyTableKey_.drain(
      [this](const ServicePolicyTableIndex& index) { qosMib_->servicePolicyTableDel(index); });
}

}  // namespace QosSnmp
