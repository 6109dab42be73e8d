#include "QosSnmp/copp/CoppStaticSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"

namespace QosSnmp {

namespace {

// A static class's policy-map class row goes under kBasePriority - hwRank:
// the higher the hardware ranks the class, the smaller its priority number.
constexpr Kel::U32 kBasePriority = 6146;

}  // namespace

CoppStaticSm::CoppStaticSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                           const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus,
                           Kel::Ptr<QosMib> qosMib, Kel::Ptr<const Qos::PolicyMapStatus> coppPmap)
    : qosHwStatus_(this, qosHwStatus),
      qosSliceHwStatus_(this, qosSliceHwStatus),
      qosMib_(std::move(qosMib)),
      coppPmap_(std::move(coppPmap)) {
  handleInitialized();
}

void CoppStaticSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::CoppStaticSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "CoppStaticSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  assert(coppPmap() && "PolicyMapStatus must exist for copp-system-policy");
  coppPmapIdIs(uniqueId(coppPmap_->name()));
  handleCmap();
}

void CoppStaticSm::handleCmap() {
  QOS_HANDLER_RING("void QosSnmp::CoppStaticSm::handleCmap()", "");
  if (auto t = trace(0)) {
    t << "CoppStaticSm:handleCmap()";
  }
  assert(initialized());
  if (!qosSliceHwStatus_ || !qosHwStatus_) {
    return;
  }
  if (!qosHwStatus_->coppSupported()) {
    doClose();
    return;
  }
  qosSliceHwStatus_->cpStaticClassHwStatus().forEachKey(
      [this](Qos::ClassMapCpStaticType cpStaticType) { handleCmap(cpStaticType); });
}

void CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType cpStaticType) {
  QOS_HANDLER_RING("void QosSnmp::CoppStaticSm::handleCmap(Qos::ClassMapCpStaticType)", "i", cpStaticType);
  if (auto t = trace(8)) {
    t << "CoppStaticSm::handleCmap( " << cpStaticType << " )";
  }
  assert(initialized());
  if (!qosSliceHwStatus_ || cpStaticType == Qos::cpStaticDrop_) {
    return;
  }
  const bool isDefaultClass = cpStaticType == Qos::cpStaticDefault_;
  const Kel::Ptr<const Qos::ClassMapStatus> cmap =
      isDefaultClass ? coppPmap_->classDefault() : qosMib_->cmapByStaticType(cpStaticType);
  assert(cmap && "ClassMapStatus entity must exist for static copp ClassMaps");
  // clang-format off
  // The failure report quotes the expression with this spacing.
  assert(isStaticCoppClassMap( Qos::mapControlPlane_, cmap ));
  // clang-format on
  const Snmp::String cmapId = uniqueId(cmap->name());
  const ClassMapTableIndex cmapIndex(cmapId, cmap->type());

  if (const auto hwStatus = qosSliceHwStatus_->cpStaticClassHwStatus(cpStaticType)) {
    if (!isDefaultClass) {
      qosMib_->classMapTableIs(cmapIndex, cmap);
      classMapTableKey_.is(cmapIndex);
    }
    const Kel::U32 priority = kBasePriority - Kel::U32{hwStatus->hwRank()};
    const PolicyMapClassTableIndex pmapClassIndex = policyMapClassTableIndex(priority);
    qosMib_->policyMapClassTableIs(pmapClassIndex, coppPmap_, cmapId);
    policyMapClassTablePriority_.is(cpStaticType, priority);
    policyMapClassTableKey_.is(pmapClassIndex);
    return;
  }

  if (!isDefaultClass) {
    qosMib_->classMapTableDel(cmapIndex);
    classMapTableKey_.del(cmapIndex);
  }
  // No record: the class never got a policy-map class row from this machine.
  if (const Kel::U32 oldPriority = policyMapClassTablePriority_.del(cpStaticType); oldPriority != 0) {
    const PolicyMapClassTableIndex pmapClassIndex = policyMapClassTableIndex(oldPriority);
    qosMib_->policyMapClassTableDel(pmapClassIndex);
    policyMapClassTableKey_.del(pmapClassIndex);
  }
}

void CoppStaticSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::CoppStaticSm::doClose()", "");
  if (auto t = trace(0)) {
    t << "CoppStaticSm:doClose()";
  }
  assert(initialized());
  classMapTableKey_.drain([this](const ClassMapTableIndex& index) { qosMib_->classMapTableDel(index); });
  policyMapClassTableKey_.drain(
      [this](const PolicyMapClassTableIndex& index) { qosMib_->policyMapClassTableDel(index); });
}

PolicyMapClassTableIndex CoppStaticSm::policyMapClassTableIndex(Kel::U32 priority) const {
  return {coppPmapId_, coppPmap_->type(), priority};
}

}  // namespace QosSnmp
