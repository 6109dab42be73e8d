#include "QosSnmp/stats/HwStatusCmapSm.h"

#include <cassert>
#include <limits>
#include <string_view>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/stats/HwStatusClassRows.h"

namespace QosSnmp {

namespace {

// The control-plane policy's default class: not static, yet it keeps its
// hardware action rows like the static classes.
constexpr std::string_view kCoppDefaultClassMapName = "copp-system-default";

}  // namespace

HwStatusCmapSm::HwStatusCmapSm(Qos::PolicyMapHwStatusKey key,
                               const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                               const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                               const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                               const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                               const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib)
    : key_(std::move(key)),
      policyMapHwStatus_(this, policyMapHwStatus),
      qosMibConfig_(this, qosMibConfig),
      qosHwStatus_(qosHwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosStatus_(qosStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

double HwStatusCmapSm::interval() const { return qosMibConfig_ ? qosMibConfig_->counterPollPeriod() : 0.0; }

bool HwStatusCmapSm::statisticsEnabled() const {
  return interval() != std::numeric_limits<double>::infinity();
}

Kel::S32 HwStatusCmapSm::pmapKind() const { return pmapKindOf(policyMapHwStatus()); }

void HwStatusCmapSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::HwStatusCmapSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (policyMapHwStatus_) {
    policyMapHwStatus_->cmap().forEachKey([this](const Kel::String& name) { handleCmap(name); });
  }
}

void HwStatusCmapSm::handleCmap(const Kel::String& classMapName) {
  QOS_HANDLER_RING("void QosSnmp::HwStatusCmapSm::handleCmap(Kel::String)", "p", classMapName);
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::handleCmap( " << classMapName << " )";
  }
  assert(initialized());
  if (isCoppDropClassMap(classMapName)) {
    return;
  }
  doMaybeAddOrRemoveStatsEntry(classMapName);
  const Kel::Ptr<const Qos::ClassMapTypeStatus> coppCmaps = controlPlaneCmapType(qosStatus_);
  if (!coppCmaps) {
    return;
  }
  if (pmapKind() == kPmapKindWithoutRows) {
    return;
  }
  const Kel::Ptr<const Qos::ClassMapStatus> classMapStatus = coppCmaps->cmap(classMapName);
  if (!isStaticCoppClassMap(Qos::mapControlPlane_, classMapStatus) &&
      classMapName.view() != kCoppDefaultClassMapName) {
    return;
  }
  hwActionRowsIs(*qosMib_, policyMapActionTableKey_, key_.pmapName(), policyMapHwStatus(), classMapName,
                 qosHwStatus_, sliceHwStatus_);
}

void HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry(const Kel::String& classMapName) {
  QOS_HANDLER_RING("void QosSnmp::HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry(Kel::String)", "p",
                   classMapName);
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::doMaybeAddOrRemoveStatsEntry( " << classMapName << " )";
  }
  assert(initialized());
  if (pmapKind() == kPmapKindWithoutStats) {
    return;
  }
  if (!statisticsEnabled()) {
    return;
  }
  if (pmapKind() == kPmapKindWithoutRows) {
    return;
  }
  if (isCoppDropClassMap(classMapName)) {
    return;
  }
  if (key_.pmapName().view() == kCoppPolicyMapName && qosHwStatus_ && qosHwStatus_->coppHwStatsSupported()) {
    return;
  }
  if (!controlPlaneCmapType(qosStatus_)) {
    return;
  }
  const QosStatsTableIndex index(uniqueId(key_.pmapName()), pmapKind(), uniqueId(classMapName),
                                 static_cast<Kel::S32>(key_.direction()));
  const Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus =
      classMapHwStatusOf(policyMapHwStatus(), classMapName);
  if (!classMapHwStatus) {
    qosMib_->qosStatsTableDel(index);
    qosStatsTableKey_.del(index);
    return;
  }
  const Kel::Ptr<const Qos::PolicyMapTypeStatus> coppPmaps = qosStatus_->pmapType(Qos::mapControlPlane_);
  const Kel::Ptr<const Qos::PolicyMapStatus> pmapStatus =
      coppPmaps ? coppPmaps->pmap(key_.pmapName()) : nullptr;
  // clang-format off
  assert(pmapStatus && pmapStatus->cmapCounters( classMapName ) && "qosStatus must be populated before qosHwStatus");
  // clang-format on
  qosMib_->qosStatsTableIs(index, classMapHwStatus, pmapStatus->cmapCounters(classMapName));
  qosStatsTableKey_.is(index);
}

void HwStatusCmapSm::handleUpdateInterval() {
  QOS_HANDLER_RING("void QosSnmp::HwStatusCmapSm::handleUpdateInterval()", "");
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::handleUpdateInterval()";
  }
  assert(initialized());
  if (statisticsEnabled() && qosStatsTableKey_.empty()) {
    if (auto t = trace(8)) {
      t << "HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable enabled";
    }
    if (policyMapHwStatus_) {
      policyMapHwStatus_->cmap().forEachKey(
          [this](const Kel::String& name) { doMaybeAddOrRemoveStatsEntry(name); });
    }
  } else if (!statisticsEnabled() && !qosStatsTableKey_.empty()) {
    if (auto t = trace(8)) {
      t << "HwStatusCmapSm::handleUpdateInterval velmorQosStatsTable disabled";
    }
    qosStatsTableKey_.drain([this](const QosStatsTableIndex& index) { qosMib_->qosStatsTableDel(index); });
  }
}

void HwStatusCmapSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::HwStatusCmapSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "HwStatusCmapSm::doClose()";
  }
  assert(initialized());
  qosStatsTableKey_.drain([this](const QosStatsTableIndex& index) { qosMib_->qosStatsTableDel(index); });
  hwActionRowsDelAll(*qosMib_, policyMapActionTableKey_);
}

}  // namespace QosSnmp
