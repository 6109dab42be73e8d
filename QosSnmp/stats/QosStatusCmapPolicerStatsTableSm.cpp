#include "QosSnmp/stats/QosStatusCmapPolicerStatsTableSm.h"

#include <limits>
#include <utility>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

namespace {

// The poll period that switches statistics off.
constexpr double kStatisticsOff = std::numeric_limits<double>::infinity();

}  // namespace

QosStatusCmapPolicerStatsTableSm::QosStatusCmapPolicerStatsTableSm(
    Kel::String classMapName, Qos::MapType mapType, Kel::String policyMapName,
    const Kel::Ptr<const Qos::Counter>& cmapCounter, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
    Kel::Ptr<QosMib> qosMib)
    : classMapName_(std::move(classMapName)),
      mapType_(mapType),
      policyMapName_(std::move(policyMapName)),
      cmapCounter_(this, cmapCounter),
      qosMibConfig_(this, qosMibConfig),
      qosMib_(std::move(qosMib)) {
  handleAllEntries();
}

double QosStatusCmapPolicerStatsTableSm::interval() const {
  return qosMibConfig_ ? qosMibConfig_->counterPollPeriod() : QosMibConfig::kDefaultCounterPollPeriod;
}

void QosStatusCmapPolicerStatsTableSm::handleClassMapPolicer(const Kel::String& intfName) {
  QOS_HANDLER_RING("void QosSnmp::QosStatusCmapPolicerStatsTableSm::handleClassMapPolicer(Kel::String)", "p",
                   intfName);
  if (auto t = trace(8)) {
    t << "QosStatusCmapPolicerStatsTableSm::handleClassMapPolicer( " << classMapName_ << ", " << mapType_
      << ", " << policyMapName_ << ", " << intfName << " )";
  }
  if (interval() == kStatisticsOff) {
    return;
  }
  Pellix::IntfId intf;
  intf.handleInitialized(intfName);
  const QosPolicerStatsTableIndex index(uniqueId(policyMapName_), static_cast<Kel::S32>(mapType_),
                                        uniqueId(classMapName_), qosMib_->intfIdToifIndex(intf));
  const Kel::Ptr<const Qos::PolicerHwStatus> policerHwStatus =
      cmapCounter_ ? cmapCounter_->policerHwStatus(intfName) : nullptr;
  if (policerHwStatus) {
    qosMib_->qosPolicerStatsTableIs(index, policerHwStatus);
    qosPolicerStatsTableKeyIs(index);
  } else {
    qosMib_->qosPolicerStatsTableDel(index);
    qosPolicerStatsTableKeyDel(index);
  }
}

void QosStatusCmapPolicerStatsTableSm::handleAllEntries() {
  QOS_HANDLER_RING("void QosSnmp::QosStatusCmapPolicerStatsTableSm::handleAllEntries()", "");
  if (auto t = trace(8)) {
    t << "QosStatusCmapPolicerStatsTableSm::handleAllEntries()";
  }
  if (!cmapCounter_) {
    return;
  }
  cmapCounter_->policerHwStatus().forEachKey(
      [this](const Kel::String& intfName) { handleClassMapPolicer(intfName); });
}

void QosStatusCmapPolicerStatsTableSm::handleInterval() {
  QOS_HANDLER_RING("void QosSnmp::QosStatusCmapPolicerStatsTableSm::handleInterval()", "");
  if (auto t = trace(8)) {
    t << "QosStatusCmapPolicerStatsTableSm::handleInterval()";
  }
  if (interval() == kStatisticsOff) {
    doClose();
  } else {
    handleAllEntries();
  }
}

void QosStatusCmapPolicerStatsTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::QosStatusCmapPolicerStatsTableSm::doClose()", "");
  if (auto t = trace(0)) {
    t << "QosStatusCmapPolicerStatsTableSm::doClose()";
  }
  qosPolicerStatsTableKey_.drain(
      [this](const QosPolicerStatsTableIndex& index) { qosMib_->qosPolicerStatsTableDel(index); });
}

}  // namespace QosSnmp
