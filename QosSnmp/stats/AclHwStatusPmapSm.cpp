#include "QosSnmp/stats/AclHwStatusPmapSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"

namespace QosSnmp {

AclHwStatusPmapSm::AclHwStatusPmapSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
                                     const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                     const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                     const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                     const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                                     const Kel::Ptr<const Qos::Status>& qosStatus,
                                     const Kel::Ptr<QosMib>& qosMib)
    : policyMapTypeHwStatus_(this, policyMapTypeHwStatus),
      qosMibConfig_(qosMibConfig),
      qosHwStatus_(qosHwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosAclSliceHwStatus_(qosAclSliceHwStatus),
      qosStatus_(qosStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Qos::MapType AclHwStatusPmapSm::policyMapType() const {
  assert(policyMapTypeHwStatus());
  return policyMapTypeHwStatus_->type();
}

void AclHwStatusPmapSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusPmapSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "AclHwStatusPmapSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (!policyMapTypeHwStatus_) {
    return;
  }
  policyMapTypeHwStatus_->pmap().forEachKey(
      [this](const Qos::PolicyMapHwStatusKey& key) { handlePmap(key); });
}

void AclHwStatusPmapSm::handlePmap(const Qos::PolicyMapHwStatusKey& key) {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&)", "pi",
                   key.pmapName(), key.direction());
  if (auto t = trace(8)) {
    t << "HwStatusPmapSm::handlePmap( " << key << " )";
  }
  assert(initialized());
  const Kel::Ptr<const Qos::PolicyMapHwStatus> policyMapHwStatus =
      policyMapTypeHwStatus_ ? policyMapTypeHwStatus_->pmap(key) : nullptr;
  if (policyMapHwStatus) {
    aclHwStatusCmapSmIs(key, policyMapHwStatus, qosMibConfig_, qosHwStatus_, sliceHwStatus_,
                        qosAclSliceHwStatus_, qosStatus_, qosMib_);
  } else {
    aclHwStatusCmapSmDel(key);
  }
}

void AclHwStatusPmapSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusPmapSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "AclHwStatusPmapSm::doClose()";
  }
  assert(initialized());
  aclHwStatusCmapSm_.delAll();
}

AclHwStatusCmapSm* AclHwStatusPmapSm::aclHwStatusCmapSmIs(
    const Qos::PolicyMapHwStatusKey& key, const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
    const Kel::Ptr<const QosMibConfig>& qosMibConfig, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
    const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
    const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib) {
  return aclHwStatusCmapSm_.is(key, key, policyMapHwStatus, qosMibConfig, qosHwStatus, sliceHwStatus,
                               qosAclSliceHwStatus, qosStatus, qosMib);
}

}  // namespace QosSnmp
