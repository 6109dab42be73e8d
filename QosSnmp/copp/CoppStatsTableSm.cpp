#include "QosSnmp/copp/CoppStatsTableSm.h"

#include <limits>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/Toggles.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"
#include "kel/Types.h"

namespace QosSnmp {

namespace {

// The poll period that switches statistics off.
constexpr double kStatisticsOff = std::numeric_limits<double>::infinity();

// The qualifier of every control-plane statistics row.
constexpr Kel::S32 kCoppStatsQualifier = 0;

}  // namespace

void CoppStatsTableSm::KelQosStatus::on(Qos::Status::PmapType /*attr*/, const Qos::MapType& type) {
  if (const Kel::Ptr<const Qos::PolicyMapTypeStatus> status = notifier()->pmapType(type)) {
    owner().pmapTypeIs(status);
  } else {
    owner().pmapTypeDel(type);
  }
}

CoppStatsTableSm::KelPmapType::KelPmap::KelPmap(CoppStatsTableSm* owner,
                                                const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus)
    : Notifiee(owner, policyMapStatus) {
  handleCmaps();
}

void CoppStatsTableSm::KelPmapType::KelPmap::handleCmaps() {
  QOS_HANDLER_RING("void QosSnmp::CoppStatsTableSm::KelPmapType::KelPmap::handleCmaps()", "");
  const Qos::PolicyMapStatus* pmap = notifier();
  if (auto t = trace(0)) {
    t << "CoppStatsTableSm::handleCmaps( " << pmap->name() << ", " << pmap->type() << " )";
  }
  pmap->cmapCounters().forEachKey([this, pmap](const Kel::String& cmapName) {
    owner().handleClassMap(cmapName, pmap->name(), pmap->type());
  });
}

CoppStatsTableSm::KelPmapType::KelPmapType(
    CoppStatsTableSm* owner, const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus)
    : Notifiee(owner, policyMapTypeStatus) {
  for (const auto& member : policyMapTypeStatus->pmap()) {
    pmapIs(member.second);
  }
}

void CoppStatsTableSm::KelPmapType::on(Qos::PolicyMapTypeStatus::Pmap /*attr*/, const Kel::String& name) {
  if (const Kel::Ptr<const Qos::PolicyMapStatus> pmap = notifier()->pmap(name)) {
    pmapIs(pmap);
  } else {
    pmapDel(name);
  }
}

CoppStatsTableSm::KelPmapType::KelPmap* CoppStatsTableSm::KelPmapType::pmapIs(
    const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus) {
  Kel::requireArgument(policyMapStatus, "policyMapStatus");
  return pmap_.is(policyMapStatus->name(), &owner(), policyMapStatus);
}

CoppStatsTableSm::CoppStatsTableSm(const Kel::Ptr<const Qos::Status>& qosStatus,
                                   const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                   Kel::Ptr<const Qos::HwStatus> qosHwStatus, Kel::Ptr<QosMib> qosMib)
    : qosStatus_(this, qosStatus),
      qosMibConfig_(this, qosMibConfig),
      qosHwStatus_(std::move(qosHwStatus)),
      qosMib_(std::move(qosMib)) {
  if (qosStatus_) {
    for (const auto& member : qosStatus_->pmapType()) {
      pmapTypeIs(member.second);
    }
  }
  handleAllEntries();
}

CoppStatsTableSm::KelPmapType* CoppStatsTableSm::pmapTypeIs(
    const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus) {
  Kel::requireArgument(policyMapTypeStatus, "policyMapTypeStatus");
  return pmapType_.is(policyMapTypeStatus->type(), this, policyMapTypeStatus);
}

QosStatusCmapPolicerStatsTableSm* CoppStatsTableSm::qosStatusCmapPolicerStatsTableSmIs(
    const Kel::String& cmapName, Qos::MapType type, const Kel::String& pmapName,
    const Kel::Ptr<const Qos::Counter>& counter, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
    const Kel::Ptr<QosMib>& qosMib) {
  return qosStatusCmapPolicerStatsTableSm_.is(cmapName, cmapName, type, pmapName, counter, qosMibConfig,
                                              qosMib);
}

double CoppStatsTableSm::interval() const {
  return qosMibConfig_ ? qosMibConfig_->counterPollPeriod() : QosMibConfig::kDefaultCounterPollPeriod;
}

bool CoppStatsTableSm::handedToHwStats(const Kel::String& pmapName, Qos::MapType type) const {
  return qosHwStatus_ && qosHwStatus_->coppHwStatsSupported() && type == Qos::mapControlPlane_ &&
         pmapName.view() == kCoppPolicyMapName;
}

void CoppStatsTableSm::handleClassMap(const Kel::String& cmapName, const Kel::String& pmapName,
                                      Qos::MapType type) {
  QOS_HANDLER_RING("void QosSnmp::CoppStatsTableSm::handleClassMap(Kel::String, Kel::String, Qos::MapType)",
                   "ppi", cmapName, pmapName, type);
  if (auto t = trace(8)) {
    t << "CoppStatsTableSm::handleClassMap( " << cmapName << ", " << pmapName << ", " << type << " )";
  }
  if (type == Qos::mapPbr_ || handedToHwStats(pmapName, type) || isCoppDropClassMap(cmapName) ||
      interval() == kStatisticsOff) {
    return;
  }
  const Kel::Ptr<const Qos::ClassMapTypeStatus> cmapType = qosStatus_ ? qosStatus_->cmapType(type) : nullptr;
  if (isStaticCoppClassMap(type, cmapType ? cmapType->cmap(cmapName) : nullptr)) {
    return;
  }
  const QosStatsTableIndex index(uniqueId(pmapName), static_cast<Kel::S32>(type), uniqueId(cmapName),
                                 kCoppStatsQualifier);
  const Kel::Ptr<const Qos::PolicyMapTypeStatus> pmapType = qosStatus_ ? qosStatus_->pmapType(type) : nullptr;
  const Kel::Ptr<const Qos::PolicyMapStatus> pmap = pmapType ? pmapType->pmap(pmapName) : nullptr;
  const Kel::Ptr<const Qos::Counter> counter = pmap ? pmap->cmapCounters(cmapName) : nullptr;
  if (counter) {
    qosMib_->qosStatsTableIs(index, nullptr, counter);
    qosStatsTableKeyIs(index);
    // Keyed by the class-map name alone: the same class map counted under
    // another policy map asks for the child with other arguments, which the
    // framework refuses (the host keeps such input out).
    if (toggleQosSnmpPolicerStatsTableEnabled()) {
      qosStatusCmapPolicerStatsTableSmIs(cmapName, type, pmapName, counter, qosMibConfig_.entity(), qosMib_);
    }
  } else {
    qosMib_->qosStatsTableDel(index);
    qosStatsTableKeyDel(index);
    if (toggleQosSnmpPolicerStatsTableEnabled()) {
      qosStatusCmapPolicerStatsTableSmDel(cmapName);
    }
  }
}

void CoppStatsTableSm::handleAllEntries() {
  QOS_HANDLER_RING("void QosSnmp::CoppStatsTableSm::handleAllEntries()", "");
  if (auto t = trace(8)) {
    t << "CoppStatsTableSm::handleAllEntries()";
  }
  if (!qosStatus_) {
    return;
  }
  for (const auto& typeMember : qosStatus_->pmapType()) {
    for (const auto& pmapMember : typeMember.second->pmap()) {
      const Qos::PolicyMapStatus* pmap = pmapMember.second.get();
      if (handedToHwStats(pmap->name(), pmap->type())) {
        continue;
      }
      pmap->cmapCounters().forEachKey([this, pmap](const Kel::String& cmapName) {
        handleClassMap(cmapName, pmap->name(), pmap->type());
      });
    }
  }
}

void CoppStatsTableSm::handleInterval() {
  QOS_HANDLER_RING("void QosSnmp::CoppStatsTableSm::handleInterval()", "");
  if (auto t = trace(8)) {
    t << "CoppStatsTableSm::handleInterval()";
  }
  if (qosMibConfig_ && qosMibConfig_->counterPollPeriod() == kStatisticsOff) {
    doClose();
    return;
  }
  handleAllEntries();
}

void CoppStatsTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::CoppStatsTableSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "CoppStatsTableSm::doClose()";
  }
  qosStatsTableKey_.drain([this](const QosStatsTableIndex& index) { qosMib_->qosStatsTableDel(index); });
}

}  // namespace QosSnmp
