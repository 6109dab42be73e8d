// PolicyActionSm: mirrors the actions of one class of one policy map into
// the MIB model's policy-map action table, one row per action type the
// class action holds. ClassActionSm keeps one per class (and one for the
// default class action), keyed by the class-map name.
//
// Watches: the class action's policyAction collection (per action type
//   added, changed or removed: handlePolicyAction(type)). A reactor exists
//   only for a non-null class action.
// Writes: policyMapActionTable, under
//   (uniqueId(policy-map name), policy-map type, uniqueId(class-map name),
//   action type); every row added is noted in policyMapActionTableKey and
//   doClose() removes exactly those. The policy-map name is empty and the
//   type 0 when the machine has no policy map.
// Rows carry the class action, the action, a null class-map hardware status
//   (hardware rows are written by the statistics machines), the hardware
//   status and the slice hardware status.
// Children: none.
// Deliberate, keep as it stands:
// - a removed action type deletes its row whether or not this machine added
//   it (deleting an absent row is harmless);
// - a re-notified present action rewrites its row in place.
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class PolicyActionSm : public Kel::StateMachine {
 public:
  class KelClassAction : public Kel::Notifiee<KelClassAction, PolicyActionSm, const Qos::ClassAction,
                                              Qos::ClassAction::PolicyAction> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::ClassAction::PolicyAction /*attr*/, const Qos::ActionType& type) {
      owner().handlePolicyAction(type);
    }
  };

  PolicyActionSm(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                 const Kel::Ptr<const Qos::ClassAction>& classAction,
                 const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                 const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(policyMapStatus_, classAction_.entity(), hwStatus_, sliceHwStatus_, qosMib_);
  }

  void handleInitialized();
  void handlePolicyAction(Qos::ActionType type);

  // The class action's class-map name; empty without a class action.
  Kel::String classMapName() const;

  const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus() const { return policyMapStatus_; }
  const Qos::ClassAction* classAction() const { return classAction_.get(); }
  const Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey() const {
    return policyMapActionTableKey_;
  }

 protected:
  void doClose() override;

 private:
  PolicyMapActionTableIndex policyMapActionTableIndex(Qos::ActionType type) const;

  Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus_;
  Kel::Watch<KelClassAction> classAction_;
  Kel::Ptr<const Qos::HwStatus> hwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<PolicyMapActionTableIndex> policyMapActionTableKey_;
};

}  // namespace QosSnmp
