#include "QosSnmp/stats/AclHwStatusCmapSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/stats/HwStatusClassRows.h"

namespace QosSnmp {

AclHwStatusCmapSm::AclHwStatusCmapSm(Qos::PolicyMapHwStatusKey key,
                                     const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                                     const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                     const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                     const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                     const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                                     const Kel::Ptr<const Qos::Status>& qosStatus,
                                     const Kel::Ptr<QosMib>& qosMib)
    : key_(std::move(key)),
      policyMapHwStatus_(this, policyMapHwStatus),
      qosMibConfig_(qosMibConfig),
      qosHwStatus_(qosHwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosAclSliceHwStatus_(qosAclSliceHwStatus),
      qosStatus_(qosStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Kel::S32 AclHwStatusCmapSm::pmapKind() const { return pmapKindOf(policyMapHwStatus()); }

void AclHwStatusCmapSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusCmapSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (policyMapHwStatus_) {
    policyMapHwStatus_->cmap().forEachKey([this](const Kel::String& name) { handleCmap(name); });
  }
}

void AclHwStatusCmapSm::handleCmap(const Kel::String& classMapName) {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusCmapSm::handleCmap(Kel::String)", "p", classMapName);
  if (auto t = trace(8)) {
    t << "AclHwStatusCmapSm::handleCmap( " << classMapName << " )";
  }
  assert(initialized());
  if (isCoppDropClassMap(classMapName)) {
    return;
  }
  const Kel::Ptr<const Qos::ClassMapTypeStatus> coppCmaps = controlPlaneCmapType(qosStatus_);
  if (!coppCmaps) {
    return;
  }
  if (pmapKind() == kPmapKindWithoutRows) {
    return;
  }
  if (isStaticCoppClassMap(Qos::mapControlPlane_, coppCmaps->cmap(classMapName))) {
    return;
  }
  hwActionRowsIs(*qosMib_, policyMapActionTableKey_, key_.pmapName(), policyMapHwStatus(), classMapName,
                 qosHwStatus_, sliceHwStatus_);
}

void AclHwStatusCmapSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::AclHwStatusCmapSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "AclHwStatusCmapSm::doClose()";
  }
  assert(initialized());
  hwActionRowsDelAll(*qosMib_, policyMapActionTableKey_);
}

}  // namespace QosSnmp
