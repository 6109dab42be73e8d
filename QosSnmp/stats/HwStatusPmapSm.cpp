#include "QosSnmp/stats/HwStatusPmapSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"

namespace QosSnmp {

HwStatusPmapSm::HwStatusPmapSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
                               const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                               const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                               const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                               const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib)
    : policyMapTypeHwStatus_(this, policyMapTypeHwStatus),
      qosMibConfig_(qosMibConfig),
      qosHwStatus_(qosHwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosStatus_(qosStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Qos::MapType HwStatusPmapSm::policyMapType() const {
  assert(policyMapTypeHwStatus());
  return policyMapTypeHwStatus_->type();
}

void HwStatusPmapSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::HwStatusPmapSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "HwStatusPmapSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (!policyMapTypeHwStatus_) {
    return;
  }
  policyMapTypeHwStatus_->pmap().forEachKey(
      [this](const Qos::PolicyMapHwStatusKey& key) { handlePmap(key); });
}

void HwStatusPmapSm::handlePmap(const Qos::PolicyMapHwStatusKey& key) {
  QOS_HANDLER_RING("void QosSnmp::HwStatusPmapSm::handlePmap(Qos::PolicyMapHwStatusKey const&)", "pi",
                   key.pmapName(), key.direction());
  if (auto t = trace(8)) {
    t << "HwStatusPmapSm::handlePmap( " << key << " )";
  }
  assert(initialized());
  const Kel::Ptr<const Qos::PolicyMapHwStatus> policyMapHwStatus =
      policyMapTypeHwStatus_ ? policyMapTypeHwStatus_->pmap(key) : nullptr;
  if (policyMapHwStatus) {
    hwStatusCmapSmIs(key, policyMapHwStatus, qosMibConfig_, qosHwStatus_, sliceHwStatus_, qosStatus_,
                     qosMib_);
  } else {
    hwStatusCmapSmDel(key);
  }
}

void HwStatusPmapSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::HwStatusPmapSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "HwStatusPmapSm::doClose()";
  }
  assert(initialized());
  hwStatusCmapSm_.delAll();
}

HwStatusCmapSm* HwStatusPmapSm::hwStatusCmapSmIs(
    const Qos::PolicyMapHwStatusKey& key, const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
    const Kel::Ptr<const QosMibConfig>& qosMibConfig, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus, const Kel::Ptr<const Qos::Status>& qosStatus,
    const Kel::Ptr<QosMib>& qosMib) {
  return hwStatusCmapSm_.is(key, key, policyMapHwStatus, qosMibConfig, qosHwStatus, sliceHwStatus, qosStatus,
                            qosMib);
}

}  // namespace QosSnmp
