// AclHwStatusCmapSm: the hardware-backed action rows of the classes of one
// ACL-based ("dynamic") policy map, from its hardware status on the ACL
// slice. As HwStatusCmapSm except as stated here.
//
// Watches: Qos::PolicyMapHwStatus: cmap (per class added, changed or removed:
//   handleCmap(name)); no reactor for a null input. The MIB configuration
//   and the ACL slice status are kept without a reactor: the poll period
//   changes nothing here.
// Writes: policyMapActionTable, two rows per qualifying class (action numbers
//   0 and 1) with only the hardware side filled in and the ordinary slice
//   status, not the ACL one; recorded in policyMapActionTableKey. It writes
//   no statistics rows (qosStatsTableKey stays empty). doClose() removes the
//   action rows it recorded.
// Children: none.
//
// Deliberate, keep as it stands:
// - the class filter is the reverse of HwStatusCmapSm's: action rows for
//   every class that is not a static control-plane class map (looked up
//   among the control-plane class maps, map type 0), and
//   "copp-system-default" is treated like any other class;
// - "copp-system-drop" and policy maps of kind 1 get no rows;
// - handleInitialized() traces its sibling's text,
//   "HwStatusCmapSm::handleInitialized()".
#pragma once

#include <tuple>

#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmp {

class AclHwStatusCmapSm : public Kel::StateMachine {
 public:
  class KelPolicyMapHwStatus
      : public Kel::Notifiee<KelPolicyMapHwStatus, AclHwStatusCmapSm, const Qos::PolicyMapHwStatus,
                             Qos::PolicyMapHwStatus::Cmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapHwStatus::Cmap /*attr*/, const Kel::String& name) { owner().handleCmap(name); }
  };

  AclHwStatusCmapSm(Qos::PolicyMapHwStatusKey key,
                    const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                    const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                    const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                    const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(key_, policyMapHwStatus_.entity(), qosMibConfig_, qosHwStatus_, sliceHwStatus_,
                           qosAclSliceHwStatus_, qosStatus_, qosMib_);
  }

  void handleInitialized();
  void handleCmap(const Kel::String& classMapName);
  void doClose() override;

  const Qos::PolicyMapHwStatusKey& key() const { return key_; }
  const Qos::PolicyMapHwStatus* policyMapHwStatus() const { return policyMapHwStatus_.get(); }
  const Kel::KeySet<QosStatsTableIndex>& qosStatsTableKey() const { return qosStatsTableKey_; }
  const Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey() const {
    return policyMapActionTableKey_;
  }

 private:
  // The watched policy map's kind; 0 without hardware status.
  Kel::S32 pmapKind() const;

  Qos::PolicyMapHwStatusKey key_;
  Kel::Watch<KelPolicyMapHwStatus> policyMapHwStatus_;
  Kel::Ptr<const QosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<const Qos::AclSliceHwStatus> qosAclSliceHwStatus_;
  Kel::Ptr<const Qos::Status> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  // Declared as in HwStatusCmapSm; nothing here adds statistics rows.
  Kel::KeySet<QosStatsTableIndex> qosStatsTableKey_;
  Kel::KeySet<PolicyMapActionTableIndex> policyMapActionTableKey_;
};

}  // namespace QosSnmp
