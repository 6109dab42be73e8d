// PolicyMapTablesSm: mirrors the policy maps of one map type into the MIB
// model's policy-map table and, through one ClassActionSm per policy map,
// into the policy-map class and action tables. The root keeps one per
// policy-map type, keyed by that type.
//
// Watches: the policy-map type status's pmap collection (per policy map
//   added, changed or removed: handlePmap(name)). A reactor exists only for
//   a non-null type status. The class-map type status of the same type is
//   not watched here: it is handed to every child, which watches it.
// Writes: policyMapTable, under (uniqueId(policy-map name), type of the
//   policy-map type status); every row added is noted in policyMapTableKey
//   and doClose() removes exactly those.
// Children: classActionSm (ClassActionSm, keyed by the full policy-map
//   name), built from the policy map, the class-map type status, the
//   hardware status, the slice hardware status and the MIB model.
// Order, kept so that the SNMP layer never shows a policy map whose classes
//   are missing: a policy map's class and action rows are written (by its
//   child's construction) before its policy-map row, and removed (by the
//   child's close) before it; doClose() drops every child before it removes
//   any policy-map row.
// Deliberate, keep as it stands:
// - every policy map is mirrored, none is skipped by name;
// - a change of a present policy map re-writes its row and keeps its child;
// - a policy map replaced by another entity under the same name raises the
//   framework's re-instantiation error.
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTableIndex.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/policy/ClassActionSm.h"
#include "kel/ChildMap.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class PolicyMapTablesSm : public Kel::StateMachine {
 public:
  class KelPolicyMapTypeStatus
      : public Kel::Notifiee<KelPolicyMapTypeStatus, PolicyMapTablesSm, const Qos::PolicyMapTypeStatus,
                             Qos::PolicyMapTypeStatus::Pmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapTypeStatus::Pmap /*attr*/, const Kel::String& name) { owner().handlePmap(name); }
  };

  PolicyMapTablesSm(const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus,
                    const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                    const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(policyMapTypeStatus_.entity(), classMapTypeStatus_, hwStatus_, sliceHwStatus_,
                           qosMib_);
  }

  void handleInitialized();
  void handlePmap(const Kel::String& name);

  // The type of the policy-map type status; the zero map type without one.
  Qos::MapType type() const;

  const Qos::PolicyMapTypeStatus* policyMapTypeStatus() const { return policyMapTypeStatus_.get(); }

  // REQUIRES: pmap and qosMib are not null (MutatorArgNullPointerException).
  ClassActionSm* classActionSmIs(const Kel::Ptr<const Qos::PolicyMapStatus>& pmap,
                                 const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                 const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                                 const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                 const Kel::Ptr<QosMib>& qosMib);
  void classActionSmDel(const Kel::String& name) { classActionSm_.del(name); }
  void classActionSmDelAll() { classActionSm_.delAll(); }
  ClassActionSm* classActionSm(const Kel::String& name) const { return classActionSm_.find(name); }
  const Kel::ChildMap<Kel::String, ClassActionSm>& classActionSm() const { return classActionSm_; }

  const Kel::KeySet<PolicyMapTableIndex>& policyMapTableKey() const { return policyMapTableKey_; }

 protected:
  void doClose() override;

 private:
  Kel::Watch<KelPolicyMapTypeStatus> policyMapTypeStatus_;
  Kel::Ptr<const Qos::ClassMapTypeStatus> classMapTypeStatus_;
  Kel::Ptr<const Qos::HwStatus> hwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<PolicyMapTableIndex> policyMapTableKey_;
  Kel::ChildMap<Kel::String, ClassActionSm> classActionSm_;
};

}  // namespace QosSnmp
