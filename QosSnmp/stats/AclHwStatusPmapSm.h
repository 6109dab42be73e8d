// AclHwStatusPmapSm: follows the applied ACL-based ("dynamic") policy maps of
// one map type on the ACL slice and keeps one AclHwStatusCmapSm per policy
// map. As HwStatusPmapSm except as stated here.
//
// Watches: Qos::PolicyMapTypeHwStatus (of the ACL slice status): pmap (per
//   policy map added or removed: handlePmap(key)). No reactor for a null
//   input.
// Writes: no rows of its own.
// Children: aclHwStatusCmapSm, one AclHwStatusCmapSm per key present in
//   pmap, built from the key's member and handed the ACL slice status besides
//   the ordinary one; doClose() deletes every child, which removes the rows
//   each added.
// Its parent (QosStatsTableSm) keeps it under policyMapType().
//
// Deliberate, keep as it stands: handlePmap() traces its sibling's text,
// "HwStatusPmapSm::handlePmap( <key> )"; only the ring-buffer descriptor
// names this machine.
#pragma once

#include <tuple>

#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "QosSnmp/stats/AclHwStatusCmapSm.h"
#include "kel/ChildMap.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace QosSnmp {

class AclHwStatusPmapSm : public Kel::StateMachine {
 public:
  class KelPolicyMapTypeHwStatus
      : public Kel::Notifiee<KelPolicyMapTypeHwStatus, AclHwStatusPmapSm, const Qos::PolicyMapTypeHwStatus,
                             Qos::PolicyMapTypeHwStatus::Pmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapTypeHwStatus::Pmap /*attr*/, const Qos::PolicyMapHwStatusKey& key) {
      owner().handlePmap(key);
    }
  };

  AclHwStatusPmapSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
                    const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                    const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                    const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                    const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(policyMapTypeHwStatus_.entity(), qosMibConfig_, qosHwStatus_, sliceHwStatus_,
                           qosAclSliceHwStatus_, qosStatus_, qosMib_);
  }

  void handleInitialized();
  void handlePmap(const Qos::PolicyMapHwStatusKey& key);
  void doClose() override;

  AclHwStatusCmapSm* aclHwStatusCmapSmIs(const Qos::PolicyMapHwStatusKey& key,
                                         const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                                         const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                         const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                         const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                         const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                                         const Kel::Ptr<const Qos::Status>& qosStatus,
                                         const Kel::Ptr<QosMib>& qosMib);
  void aclHwStatusCmapSmDel(const Qos::PolicyMapHwStatusKey& key) { aclHwStatusCmapSm_.del(key); }
  AclHwStatusCmapSm* aclHwStatusCmapSm(const Qos::PolicyMapHwStatusKey& key) const {
    return aclHwStatusCmapSm_.find(key);
  }
  const Kel::ChildMap<Qos::PolicyMapHwStatusKey, AclHwStatusCmapSm>& aclHwStatusCmapSm() const {
    return aclHwStatusCmapSm_;
  }

  const Qos::PolicyMapTypeHwStatus* policyMapTypeHwStatus() const { return policyMapTypeHwStatus_.get(); }
  // The watched entity's map type. REQUIRES: the machine watches an entity.
  Qos::MapType policyMapType() const;

 private:
  Kel::Watch<KelPolicyMapTypeHwStatus> policyMapTypeHwStatus_;
  Kel::Ptr<const QosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<const Qos::AclSliceHwStatus> qosAclSliceHwStatus_;
  Kel::Ptr<const Qos::Status> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::ChildMap<Qos::PolicyMapHwStatusKey, AclHwStatusCmapSm> aclHwStatusCmapSm_;
};

}  // namespace QosSnmp
