// CoppStaticSm: mirrors the static control-plane classes that the hardware
// currently reports into the class-map table and, under the control-plane
// policy map ("copp-system-policy"), into the policy-map class table, with a
// priority derived from the hardware's rank of each class.
//
// Watches:
// - Qos::HwStatus: coppSupported (handleCmap(), the full scan; false removes
//   every row this machine added);
// - Qos::SliceHwStatus: cpStaticClassHwStatus (per static class added,
//   changed or removed: handleCmap(cpStaticType)).
// A reactor exists only for a non-null input.
// Reads: QosMib's cmapByStaticType (filled by MatchSm) for the class map of
//   each static class; the control-plane policy map's classDefault for the
//   default class (static type 19).
// Writes: classMapTable, one row per static class except the default class,
//   under (uniqueId(class-map name), class-map type); policyMapClassTable,
//   one row per static class under (uniqueId(policy-map name), policy-map
//   type, 6146 - hwRank). Both kept in key sets; doClose() removes exactly
//   those rows. No children.
// REQUIRES: the control-plane policy map is given (asserted at start); the
//   class map of every static class handled is present and is a static
//   control-plane class map (asserted, also when the class is removed).
// Deliberate, keep as it stands:
// - static type 18 is never mirrored;
// - the priority is 6146 - hwRank in unsigned 32-bit arithmetic; the
//   constant is fixed;
// - the priority record of each static class (policyMapClassTablePriority)
//   outlives doClose(): after coppSupported goes false and true again, a
//   removal deletes the row under the recorded priority even when that row
//   is gone already;
// - a rank that changes while the class stays present adds a row under the
//   new priority and leaves the row under the old one until doClose();
// - a class removed that never got a priority record loses its class-map
//   row only;
// - the full scan visits present classes only: rows of a class that left
//   the hardware collection go only with that class's own notification;
// - a class's own notification is handled without asking coppSupported or
//   whether the hardware status exists: only the full scan asks;
// - the full scan and doClose() trace at level 0 with a single colon
//   ("CoppStaticSm:handleCmap()", "CoppStaticSm:doClose()").
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapClassTableIndex.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/Types.h"
#include "kel/ValueMap.h"
#include "snmp/String.h"

namespace QosSnmp {

class CoppStaticSm : public Kel::StateMachine {
 public:
  class KelQosHwStatus : public Kel::Notifiee<KelQosHwStatus, CoppStaticSm, const Qos::HwStatus,
                                              Qos::HwStatus::CoppSupported> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::HwStatus::CoppSupported /*attr*/) { owner().handleCmap(); }
  };

  class KelQosSliceHwStatus
      : public Kel::Notifiee<KelQosSliceHwStatus, CoppStaticSm, const Qos::SliceHwStatus,
                             Qos::SliceHwStatus::CpStaticClassHwStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::SliceHwStatus::CpStaticClassHwStatus /*attr*/,
            const Qos::ClassMapCpStaticType& cpStaticType) {
      owner().handleCmap(cpStaticType);
    }
  };

  CoppStaticSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
               const Kel::Ptr<const Qos::SliceHwStatus>& qosSliceHwStatus, Kel::Ptr<QosMib> qosMib,
               Kel::Ptr<const Qos::PolicyMapStatus> coppPmap);

  // The four inputs, in constructor order (for the watched ones, the
  // watched entity).
  auto arguments() const {
    return std::make_tuple(qosHwStatus_.entity(), qosSliceHwStatus_.entity(), qosMib_, coppPmap_);
  }

  void handleInitialized();
  // The full scan.
  void handleCmap();
  void handleCmap(Qos::ClassMapCpStaticType cpStaticType);
  // Removes every row this machine added; the priority records stay.
  void doClose() override;

  Kel::Ptr<const Qos::HwStatus> qosHwStatus() const { return qosHwStatus_.entity(); }
  Kel::Ptr<const Qos::SliceHwStatus> qosSliceHwStatus() const { return qosSliceHwStatus_.entity(); }
  // Drop an input together with its reactor.
  void qosHwStatusDel() { qosHwStatus_.reset(); }
  void qosSliceHwStatusDel() { qosSliceHwStatus_.reset(); }

  const Kel::Ptr<QosMib>& qosMib() const { return qosMib_; }
  const Kel::Ptr<const Qos::PolicyMapStatus>& coppPmap() const { return coppPmap_; }

  const Snmp::String& coppPmapId() const { return coppPmapId_; }
  void coppPmapIdIs(const Snmp::String& coppPmapId) { coppPmapId_ = coppPmapId; }

  const Kel::KeySet<ClassMapTableIndex>& classMapTableKey() const { return classMapTableKey_; }
  const Kel::KeySet<PolicyMapClassTableIndex>& policyMapClassTableKey() const {
    return policyMapClassTableKey_;
  }
  const Kel::ValueMap<Qos::ClassMapCpStaticType, Kel::U32>& policyMapClassTablePriority() const {
    return policyMapClassTablePriority_;
  }

 private:
  PolicyMapClassTableIndex policyMapClassTableIndex(Kel::U32 priority) const;

  Kel::Watch<KelQosHwStatus> qosHwStatus_;
  Kel::Watch<KelQosSliceHwStatus> qosSliceHwStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::Ptr<const Qos::PolicyMapStatus> coppPmap_;
  Snmp::String coppPmapId_;
  Kel::KeySet<ClassMapTableIndex> classMapTableKey_;
  Kel::KeySet<PolicyMapClassTableIndex> policyMapClassTableKey_;
  Kel::ValueMap<Qos::ClassMapCpStaticType, Kel::U32> policyMapClassTablePriority_;
};

}  // namespace QosSnmp
