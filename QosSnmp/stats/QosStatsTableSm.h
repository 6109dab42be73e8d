// QosStatsTableSm: the top of the class-map statistics subtree. Keeps one
// child per policy-map type that has hardware status: a HwStatusPmapSm for
// each map type of the slice status, an AclHwStatusPmapSm for each map type
// of the ACL slice status.
//
// Watches:
// - Qos::SliceHwStatus: pmapTypeHwStatus (per map type added, changed or
//   removed: handlePmapType(type));
// - Qos::AclSliceHwStatus: pmapTypeHwStatus (handleDynamicPmapType(type)).
// A reactor exists only for a non-null input; a missing input reads as an
// empty collection.
// Writes: no rows of its own; it has no doClose(). Its children remove
//   their rows when they are dropped.
// Children: hwStatusPmapSm and aclHwStatusPmapSm, keyed by map type; one per
//   present map type other than 2 (policy-based routing, never mirrored).
//   Each ACL child is handed the ordinary slice status (possibly null)
//   besides the ACL one.
//
// Deliberate, keep as it stands:
// - without a slice status handleInitialized() stops before the ACL scan, so
//   the initial scan makes no ACL child even when the ACL slice status has
//   map types; a later ACL notification does make one;
// - handleDynamicPmapType() traces its sibling's text,
//   "QosStatsTableSm::handlePmapType( <type> )"; only the ring-buffer
//   descriptor tells them apart.
#pragma once

#include <tuple>

#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "QosSnmp/stats/AclHwStatusPmapSm.h"
#include "QosSnmp/stats/HwStatusPmapSm.h"
#include "kel/ChildMap.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace QosSnmp {

class QosStatsTableSm : public Kel::StateMachine {
 public:
  class KelQosSliceHwStatus
      : public Kel::Notifiee<KelQosSliceHwStatus, QosStatsTableSm, const Qos::SliceHwStatus,
                             Qos::SliceHwStatus::PmapTypeHwStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::SliceHwStatus::PmapTypeHwStatus /*attr*/, const Qos::MapType& type) {
      owner().handlePmapType(type);
    }
  };

  class KelQosAclSliceHwStatus
      : public Kel::Notifiee<KelQosAclSliceHwStatus, QosStatsTableSm, const Qos::AclSliceHwStatus,
                             Qos::AclSliceHwStatus::PmapTypeHwStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::AclSliceHwStatus::PmapTypeHwStatus /*attr*/, const Qos::MapType& type) {
      owner().handleDynamicPmapType(type);
    }
  };

  QosStatsTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                  const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                  const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
                  const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                  const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);

  // The six inputs, in constructor order (for the reactor inputs, the
  // watched entity).
  auto arguments() const {
    return std::make_tuple(qosHwStatus_, qosSliceHwStatus_.entity(), qosAclSliceHwStatus_.entity(),
                           qosMibConfig_, qosStatus_, qosMib_);
  }

  void handleInitialized();
  void handlePmapType(Qos::MapType type);
  void handleDynamicPmapType(Qos::MapType type);

  // REQUIRES: policyMapTypeHwStatus is not null (MutatorArgNullPointerException); the child is kept under its
  // map type.
  HwStatusPmapSm* hwStatusPmapSmIs(const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
                                   const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                                   const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                   const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                   const Kel::Ptr<const Qos::Status>& qosStatus,
                                   const Kel::Ptr<QosMib>& qosMib);
  void hwStatusPmapSmDel(Qos::MapType type) { hwStatusPmapSm_.del(type); }
  void hwStatusPmapSmDelAll() { hwStatusPmapSm_.delAll(); }
  HwStatusPmapSm* hwStatusPmapSm(Qos::MapType type) const { return hwStatusPmapSm_.find(type); }
  const Kel::ChildMap<Qos::MapType, HwStatusPmapSm>& hwStatusPmapSm() const { return hwStatusPmapSm_; }

  // REQUIRES: policyMapTypeHwStatus is not null (MutatorArgNullPointerException); the child is kept under its
  // map type.
  AclHwStatusPmapSm* aclHwStatusPmapSmIs(
      const Kel::Ptr<const Qos::PolicyMapTypeHwStatus>& policyMapTypeHwStatus,
      const Kel::Ptr<const QosMibConfig>& qosMibConfig, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
      const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
      const Kel::Ptr<const Qos::AclSliceHwStatus>& qosAclSliceHwStatus,
      const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);
  void aclHwStatusPmapSmDel(Qos::MapType type) { aclHwStatusPmapSm_.del(type); }
  void aclHwStatusPmapSmDelAll() { aclHwStatusPmapSm_.delAll(); }
  AclHwStatusPmapSm* aclHwStatusPmapSm(Qos::MapType type) const { return aclHwStatusPmapSm_.find(type); }
  const Kel::ChildMap<Qos::MapType, AclHwStatusPmapSm>& aclHwStatusPmapSm() const {
    return aclHwStatusPmapSm_;
  }

  Kel::Ptr<const Qos::SliceHwStatus> qosSliceHwStatus() const { return qosSliceHwStatus_.entity(); }
  Kel::Ptr<const Qos::AclSliceHwStatus> qosAclSliceHwStatus() const { return qosAclSliceHwStatus_.entity(); }

 private:
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Watch<KelQosSliceHwStatus> qosSliceHwStatus_;
  Kel::Watch<KelQosAclSliceHwStatus> qosAclSliceHwStatus_;
  Kel::Ptr<const QosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::Status> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::ChildMap<Qos::MapType, HwStatusPmapSm> hwStatusPmapSm_;
  Kel::ChildMap<Qos::MapType, AclHwStatusPmapSm> aclHwStatusPmapSm_;
};

}  // namespace QosSnmp
