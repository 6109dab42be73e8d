// HwStatusPmapSm: follows the applied policy maps of one map type on the
// slice and keeps one HwStatusCmapSm per policy map.
//
// Watches: Qos::PolicyMapTypeHwStatus (of the slice status): pmap (per
//   policy map added or removed: handlePmap(key)). No reactor for a null
//   input.
// Writes: no rows of its own.
// Children: hwStatusCmapSm, one HwStatusCmapSm per key present in pmap,
//   built from the key's member; doClose() deletes every child, which
//   removes the rows each added.
// Its parent (QosStatsTableSm) keeps it under policyMapType().
#pragma once

#include <tuple>

#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "QosSnmp/stats/HwStatusCmapSm.h"
#include "kel/ChildMap.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace QosSnmp {

class HwStatusPmapSm : public Kel::StateMachine {
 public:
  class KelPolicyMapTypeHwStatus
      : public Kel::Notifiee<KelPolicyMapTypeHwStatus, HwStatusPmapSm, const Qos::PolicyMapTypeHwStatus,
                             Qos::PolicyMapTypeHwStatus::Pmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapTypeHwStatus::Pmap /*attr*/, const Qos::PolicyMapHwStatusKey& key) {
      owner().handlePmap(key);
    }
  };

  HwStatusPmapSm(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
                 const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                 const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                 const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                 const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(policyMapTypeHwStatus_.entity(), qosMibConfig_, qosHwStatus_, sliceHwStatus_,
                           qosStatus_, qosMib_);
  }

  void handleInitialized();
  void handlePmap(const Qos::PolicyMapHwStatusKey& key);
  void doClose() override;

  HwStatusCmapSm* hwStatusCmapSmIs(const Qos::PolicyMapHwStatusKey& key,
                                   const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                                   const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                   const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                   const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                   const Kel::Ptr<const Qos::Status>& qosStatus,
                                   const Kel::Ptr<QosMib>& qosMib);
  void hwStatusCmapSmDel(const Qos::PolicyMapHwStatusKey& key) { hwStatusCmapSm_.del(key); }
  HwStatusCmapSm* hwStatusCmapSm(const Qos::PolicyMapHwStatusKey& key) const {
    return hwStatusCmapSm_.find(key);
  }
  const Kel::ChildMap<Qos::PolicyMapHwStatusKey, HwStatusCmapSm>& hwStatusCmapSm() const {
    return hwStatusCmapSm_;
  }

  const Qos::PolicyMapTypeHwStatus* policyMapTypeHwStatus() const { return policyMapTypeHwStatus_.get(); }
  // The watched entity's map type. REQUIRES: the machine watches an entity.
  Qos::MapType policyMapType() const;

 private:
  Kel::Watch<KelPolicyMapTypeHwStatus> policyMapTypeHwStatus_;
  Kel::Ptr<const QosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<const Qos::Status> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::ChildMap<Qos::PolicyMapHwStatusKey, HwStatusCmapSm> hwStatusCmapSm_;
};

}  // namespace QosSnmp
