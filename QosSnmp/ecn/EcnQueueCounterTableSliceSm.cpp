#include "QosSnmp/ecn/EcnQueueCounterTableSliceSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/ecn/EcnQueueCounterTableSm.h"

namespace QosSnmp {

EcnQueueCounterTableSliceSm::EcnQueueCounterTableSliceSm(
    Kel::String sliceName, const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
    EcnQueueCounterTableSm* ecnQueueCounterTableSm)
    : sliceName_(std::move(sliceName)),
      sliceHwStatus_(this, sliceHwStatus),
      ecnQueueCounterTableSm_(ecnQueueCounterTableSm) {
  handleInitialized();
}

void EcnQueueCounterTableSliceSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSliceSm::handleInitialized()", "");
  assert(!initialized());
  initializedIs(true);
  handleEcnIntfCounterHwStatus();
}

void EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus()", "");
  if (!sliceHwStatus_) {
    return;
  }
  sliceHwStatus_->ecnIntfCounterHwStatus().forEachKey(
      [this](const Pellix::IntfId& intf) { handleEcnIntfCounterHwStatus(intf); });
}

void EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus(const Pellix::IntfId& intf) {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus(Pellix::IntfId)",
                   "p", intf);
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSliceSm::handleEcnIntfCounterHwStatus() " << sliceName_ << kSliceIntfSeparator
      << intf;
  }
  const QosMib& qosMib = *ecnQueueCounterTableSm_->qosMib();
  if (!qosMib.hasIntfIdToifIndex(intf)) {
    return;
  }
  const Kel::S32 ifIndex = qosMib.intfIdToifIndex(intf);
  if (sliceHwStatus_ && sliceHwStatus_->ecnIntfCounterHwStatus().contains(intf)) {
    ecnQueueCounterTableSm_->addIntfIndex(intf, ifIndex);
  } else {
    ecnQueueCounterTableSm_->deleteIntfIndex(intf, ifIndex);
  }
}

void EcnQueueCounterTableSliceSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSliceSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSliceSm::doClose() " << sliceName_;
  }
  if (!sliceHwStatus_) {
    return;
  }
  const QosMib& qosMib = *ecnQueueCounterTableSm_->qosMib();
  sliceHwStatus_->ecnIntfCounterHwStatus().forEachKey([this, &qosMib](const Pellix::IntfId& intf) {
    ecnQueueCounterTableSm_->deleteIntfIndex(intf, qosMib.intfIdToifIndex(intf));
  });
}

}  // namespace QosSnmp
