#include "QosSnmp/core/AllIntfStatusDirSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/IntfDetails.h"
#include "QosSnmp/core/RootSm.h"

namespace QosSnmp {

AllIntfStatusDirSm::AllIntfStatusDirSm(const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
                                       const Kel::Ptr<QosMib>& qosMib, RootSm* rootSm)
    : allIntfStatusDir_(this, allIntfStatusDir), qosMib_(qosMib), rootSm_(rootSm) {
  handleInitialized();
}

void AllIntfStatusDirSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::AllIntfStatusDirSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "AllIntfStatusDirSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (allIntfStatusDir_) {
    allIntfStatusDir_->intfStatus().forEachKey(
        [this](const Pellix::IntfId& intf) { handleIntfStatus(intf); });
  }
}

void AllIntfStatusDirSm::handleIntfStatus(const Pellix::IntfId& intf) {
  QOS_HANDLER_RING("void QosSnmp::AllIntfStatusDirSm::handleIntfStatus(Pellix::IntfId)", "p", intf);
  if (auto t = trace(8)) {
    t << "AllIntfStatusDirSm::handleIntfStatus( " << intf << " )";
  }
  assert(initialized());
  const Kel::Ptr<const Interface::IntfStatus> status =
      allIntfStatusDir_ ? allIntfStatusDir_->intfStatus(intf) : nullptr;
  if (!status) {
    rootSm_->deleteServicePolicyEntries(intf);
    const Kel::S32 ifIndex = qosMib_->intfIdToifIndex(intf);
    rootSm_->deleteEcnQueueCounterEntries(intf, ifIndex);
    qosMib_->intfIdToifIndexDel(intf);
    return;
  }
  const Kel::S32 ifIndex = IntfSnmp::IntfDetails(status).ifIndex();
  if (ifIndex == Interface::IntfStatus::kIfIndexNever) {
    if (auto t = trace(8)) {
      t << "AllIntfStatusDirSm::handleIntfStatus : skipping " << intf << " because intfIndex is ignored";
    }
    return;
  }
  if (ifIndex < 0) {
    if (auto t = trace(8)) {
      t << "AllIntfStatusDirSm::handleIntfStatus : skipping " << intf << " because intfIndex is " << ifIndex;
    }
    return;
  }
  qosMib_->intfIdToifIndexIs(intf, ifIndex);
  rootSm_->addServicePolicyEntries(intf);
  rootSm_->addEcnQueueCounterEntries(intf, ifIndex);
}

}  // namespace QosSnmp
