#include "QosSnmp/core/Root.h"

#include <tuple>
#include <utility>

#include "kel/Make.h"

namespace QosSnmp {

Kel::Ptr<RootSm> Root::rootSmIs(
    const Kel::Ptr<const Qos::Config>& qosConfig, const Kel::Ptr<const Qos::Status>& qosStatus,
    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus, const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
    const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir, const Kel::Ptr<const QosMibConfig>& qosMibConfig,
    const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
    const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib,
    const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable) {
  if (rootSm_ && rootSm_->arguments() == std::tie(qosConfig, qosStatus, qosHwStatus, qosSliceHwStatusDir,
                                                  qosAclSliceHwStatusDir, qosMibConfig, allIntfStatusDir,
                                                  qosHwCounter, qosMib, ecnCounterTable)) {
    return rootSm_;
  }
  Kel::Ptr<RootSm> fresh =
      Kel::make<RootSm>(qosConfig, qosStatus, qosHwStatus, qosSliceHwStatusDir, qosAclSliceHwStatusDir,
                        qosMibConfig, allIntfStatusDir, qosHwCounter, qosMib, ecnCounterTable);
  rootSm_ = fresh;
  notify(RootSmAttr::id);
  fresh->hasNotificationActiveIs(true);
  return fresh;
}

Kel::Ptr<RootSm> Root::rootSmDel() {
  Kel::Ptr<RootSm> removed = std::exchange(rootSm_, nullptr);
  notify(RootSmAttr::id);
  if (removed) {
    removed->hasNotificationActiveIs(false);
  }
  return removed;
}

}  // namespace QosSnmp
