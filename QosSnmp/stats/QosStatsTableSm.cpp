#include "QosSnmp/stats/QosStatsTableSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"
#include "kel/MutatorException.h"

namespace QosSnmp {

QosStatsTableSm::QosStatsTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                 const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                 const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                                 const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                 const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib)
    : qosHwStatus_(qosHwStatus),
      qosSliceHwStatus_(this, sliceHwStatus),
      qosAclSliceHwStatus_(this, qosAclSliceHwStatus),
      qosMibConfig_(qosMibConfig),
      qosStatus_(qosStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

void QosStatsTableSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::QosStatsTableSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "QosStatsTableSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  // Without a slice status the ACL scan is skipped as well.
  if (!qosSliceHwStatus_) {
    return;
  }
  qosSliceHwStatus_->pmapTypeHwStatus().forEachKey([this](Qos::MapType type) { handlePmapType(type); });
  if (!qosAclSliceHwStatus_) {
    return;
  }
  qosAclSliceHwStatus_->pmapTypeHwStatus().forEachKey(
      [this](Qos::MapType type) { handleDynamicPmapType(type); });
}

void QosStatsTableSm::handlePmapType(Qos::MapType type) {
  QOS_HANDLER_RING("void QosSnmp::QosStatsTableSm::handlePmapType(Qos::MapType)", "i", type);
  if (auto t = trace(8)) {
    t << "QosStatsTableSm::handlePmapType( " << type << " )";
  }
  assert(initialized());
  if (type == Qos::mapPbr_) {
    return;
  }
  const Kel::Ptr<const Qos::PolicyMapTypeHwStatus> policyMapTypeHwStatus =
      qosSliceHwStatus_ ? qosSliceHwStatus_->pmapTypeHwStatus(type) : nullptr;
  if (policyMapTypeHwStatus) {
    hwStatusPmapSmIs(policyMapTypeHwStatus, qosMibConfig_, qosHwStatus_, qosSliceHwStatus(), qosStatus_,
                     qosMib_);
  } else {
    hwStatusPmapSmDel(type);
  }
}

void QosStatsTableSm::handleDynamicPmapType(Qos::MapType type) {
  QOS_HANDLER_RING("void QosSnmp::QosStatsTableSm::handleDynamicPmapType(Qos::MapType)", "i", type);
  if (auto t = trace(8)) {
    t << "QosStatsTableSm::handlePmapType( " << type << " )";
  }
  assert(initialized());
  if (type == Qos::mapPbr_) {
    return;
  }
  const Kel::Ptr<const Qos::PolicyMapTypeHwStatus> policyMapTypeHwStatus =
      qosAclSliceHwStatus_ ? qosAclSliceHwStatus_->pmapTypeHwStatus(type) : nullptr;
  if (policyMapTypeHwStatus) {
    aclHwStatusPmapSmIs(policyMapTypeHwStatus, qosMibConfig_, qosHwStatus_, qosSliceHwStatus(),
                        qosAclSliceHwStatus(), qosStatus_, qosMib_);
  } else {
    aclHwStatusPmapSmDel(type);
  }
}

HwStatusPmapSm* QosStatsTableSm::hwStatusPmapSmIs(
    const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
    const Kel::Ptr<const QosMibConfig>& qosMibConfig, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus, const Kel::Ptr<const Qos::Status>& qosStatus,
    const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(policyMapTypeHwStatus, "policyMapTypeHwStatus");
  return hwStatusPmapSm_.is(policyMapTypeHwStatus->type(), policyMapTypeHwStatus, qosMibConfig, qosHwStatus,
                            sliceHwStatus, qosStatus, qosMib);
}

AclHwStatusPmapSm* QosStatsTableSm::aclHwStatusPmapSmIs(
    const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
    const Kel::Ptr<const QosMibConfig>& qosMibConfig, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
    const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
    const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(policyMapTypeHwStatus, "policyMapTypeHwStatus");
  return aclHwStatusPmapSm_.is(policyMapTypeHwStatus->type(), policyMapTypeHwStatus, qosMibConfig,
                               qosHwStatus, sliceHwStatus, qosAclSliceHwStatus, qosStatus, qosMib);
}

}  // namespace QosSnmp
