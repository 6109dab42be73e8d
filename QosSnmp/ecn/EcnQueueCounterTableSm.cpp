#include "QosSnmp/ecn/EcnQueueCounterTableSm.h"

#include <cassert>

#include "QosSnmp/core/EcnQueueCounterTableIndex.h"
#include "QosSnmp/core/HandlerTrace.h"

namespace QosSnmp {

EcnQueueCounterTableSm::EcnQueueCounterTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                               const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
                                               const Kel::Ptr<QosMib>& qosMib,
                                               const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable)
    : qosHwStatus_(qosHwStatus),
      qosSliceHwStatusDir_(this, qosSliceHwStatusDir),
      qosMib_(qosMib),
      ecnCounterTable_(ecnCounterTable) {
  handleInitialized();
}

void EcnQueueCounterTableSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  handleSlice();
}

void EcnQueueCounterTableSm::handleSlice() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::handleSlice()", "");
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::handleSlice()";
  }
  if (!qosSliceHwStatusDir_) {
    return;
  }
  qosSliceHwStatusDir_->entityPtrIteratorConst().forEachKey(
      [this](const Kel::String& name) { handleSlice(name); });
}

void EcnQueueCounterTableSm::handleSlice(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::handleSlice(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::handleSlice() " << name;
  }
  const Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus =
      qosSliceHwStatusDir_ ? Kel::ptrCast<const Qos::SliceHwStatus>(qosSliceHwStatusDir_->entityPtr(name))
                           : nullptr;
  if (sliceHwStatus) {
    sliceSmIs(name, sliceHwStatus, this);
  } else {
    sliceSmDel(name);
  }
}

EcnQueueCounterTableSliceSm* EcnQueueCounterTableSm::sliceSmIs(
    const Kel::String& name, const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
    EcnQueueCounterTableSm* ecnQueueCounterTableSm) {
  return sliceSm_.is(name, name, sliceHwStatus, ecnQueueCounterTableSm);
}

void EcnQueueCounterTableSm::addIntfIndex(const Pellix::IntfId& intf, Kel::S32 ifIndex) {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::addIntfIndex(Pellix::IntfId, S32)", "pi", intf,
                   ifIndex);
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::addIntfIndex() " << intf << " ifIndex:" << ifIndex;
  }
  if (!qosSliceHwStatusDir_ || !qosHwStatus_ || !qosHwStatus_->ecnQueueCountersSupported()) {
    return;
  }
  const Kel::U32 numEcnQueues = qosHwStatus_->numEcnQueues();
  const bool ecnQueueCountersFlag = qosHwStatus_->ecnQueueCountersFlag();
  for (const auto& entry : qosSliceHwStatusDir_->entityPtrIteratorConst()) {
    const auto sliceHwStatus = Kel::ptrCast<const Qos::SliceHwStatus>(entry.second);
    if (!sliceHwStatus || !sliceHwStatus->ecnIntfCounterHwStatus().contains(intf)) {
      continue;
    }
    for (Kel::U32 queue = 0; queue < numEcnQueues; ++queue) {
      const EcnQueueCounterTableIndex index(ifIndex, static_cast<Kel::U8>(queue));
      if (qosMib_->ecnQueueCounterTable(index) == nullptr) {
        qosMib_->ecnQueueCounterTableIs(index, intf, sliceHwStatus, ecnCounterTable_, ecnQueueCountersFlag);
      }
    }
  }
}

void EcnQueueCounterTableSm::deleteIntfIndex(const Pellix::IntfId& intf, Kel::S32 ifIndex) {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::deleteIntfIndex(Pellix::IntfId, S32)", "pi", intf,
                   ifIndex);
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::deleteIntfIndex() " << intf << " ifIndex:" << ifIndex;
  }
  const Kel::U32 numEcnQueues = qosHwStatus_ ? qosHwStatus_->numEcnQueues() : 0;
  for (Kel::U32 queue = 0; queue < numEcnQueues; ++queue) {
    const EcnQueueCounterTableIndex index(ifIndex, static_cast<Kel::U8>(queue));
    if (qosMib_->ecnQueueCounterTable(index) != nullptr) {
      qosMib_->ecnQueueCounterTableDel(index);
    }
  }
}

void EcnQueueCounterTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::EcnQueueCounterTableSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "EcnQueueCounterTableSm::doClose";
  }
  sliceSmDelAll();
  if (qosMib_) {
    qosMib_->ecnQueueCounterTableDelAll();
  }
}

}  // namespace QosSnmp
