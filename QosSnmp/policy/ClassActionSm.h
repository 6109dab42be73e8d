// ClassActionSm: mirrors the classes of one policy map. Per class with a
// class action whose class map exists it keeps a PolicyActionSm (the
// class's action rows), per class priority a ClassPrioSm (the class's row
// in the policy-map class table), and it writes the default class's row
// itself. PolicyMapTablesSm keeps one per policy map, keyed by its name.
//
// Watches:
// - the policy map: classAction members (handleClassAction(name)),
//   classPrio members (handleClassPrio(prio)), defaultClassAction
//   (handleDefaultClassAction()) and classDefault
//   (handleDefaultClassPriority());
// - the class-map type status of the same map type: cmap members
//   (handleCmap(name)), so that a class map coming or going reaches the
//   class's actions and, through cmapNameToPrio, the priority showing it.
// A reactor exists only for a non-null input.
// Writes: the default class's policyMapClassTable row at priority
//   kDefaultClassPriority, noted in policyMapClassTableKey and removed by
//   doClose(). The children write and remove the other rows.
// Children: policyActionSm (PolicyActionSm, keyed by class-map name; the
//   default class action's child is keyed by its own name) and classPrioSm
//   (ClassPrioSm, keyed by priority, given this machine as parent).
// Name maps: cmapNameToPrio and prioToCmapName, kept by the ClassPrioSm
//   children.
// doClose() order: the default-class row, then every PolicyActionSm, then
//   every ClassPrioSm.
// Deliberate, keep as it stands:
// - a control-plane policy map (Qos::mapControlPlane_) gets no action
//   children and no default-class row, but its priorities still get rows;
// - the control-plane drop class never gets action rows, whatever the
//   map type;
// - a default class action that disappears leaves its child in place until
//   close, and a classDefault that disappears leaves the default-class row;
// - handleDefaultClassPriority() deletes and re-adds the default-class row
//   and then runs handleDefaultClassAction() again;
// - handleCmap() asserts nothing itself: only the handlers it calls do;
// - a class action or class priority replaced by another entity under the
//   same key raises the framework's re-instantiation error, as does a
//   default class action that takes the name of an existing child.
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapClassTableIndex.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/policy/ClassPrioSm.h"
#include "QosSnmp/policy/PolicyActionSm.h"
#include "kel/ChildMap.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "kel/ValueMap.h"

namespace QosSnmp {

class ClassActionSm : public Kel::StateMachine {
 public:
  class KelPolicyMapStatus
      : public Kel::Notifiee<KelPolicyMapStatus, ClassActionSm, const Qos::PolicyMapStatus,
                             Qos::PolicyMapStatus::ClassAction, Qos::PolicyMapStatus::ClassPrio,
                             Qos::PolicyMapStatus::DefaultClassAction, Qos::PolicyMapStatus::ClassDefault> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapStatus::ClassAction /*attr*/, const Kel::String& name) {
      owner().handleClassAction(name);
    }
    void on(Qos::PolicyMapStatus::ClassPrio /*attr*/, const Kel::U32& prio) { owner().handleClassPrio(prio); }
    void on(Qos::PolicyMapStatus::DefaultClassAction /*attr*/) { owner().handleDefaultClassAction(); }
    void on(Qos::PolicyMapStatus::ClassDefault /*attr*/) { owner().handleDefaultClassPriority(); }
  };

  class KelClassMapTypeStatus
      : public Kel::Notifiee<KelClassMapTypeStatus, ClassActionSm, const Qos::ClassMapTypeStatus,
                             Qos::ClassMapTypeStatus::Cmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::ClassMapTypeStatus::Cmap /*attr*/, const Kel::String& name) { owner().handleCmap(name); }
  };

  ClassActionSm(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(policyMapStatus_.entity(), classMapTypeStatus_.entity(), hwStatus_, sliceHwStatus_,
                           qosMib_);
  }

  void handleInitialized();
  void handleClassAction(const Kel::String& name);
  void handleCmap(const Kel::String& name);
  void handleClassPrio(Kel::U32 prio);
  void handleDefaultClassAction();
  void handleDefaultClassPriority();

  // The policy map's name; empty without a policy map.
  Kel::String pmapName() const;
  // The policy map's type; the zero map type without a policy map.
  Qos::MapType pmapType() const;

  const Qos::PolicyMapStatus* policyMapStatus() const { return policyMapStatus_.get(); }
  const Qos::ClassMapTypeStatus* classMapTypeStatus() const { return classMapTypeStatus_.get(); }

  // REQUIRES: classAction and qosMib are not null (MutatorArgNullPointerException).
  PolicyActionSm* policyActionSmIs(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                                   const Kel::Ptr<const Qos::ClassAction>& classAction,
                                   const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                                   const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                   const Kel::Ptr<QosMib>& qosMib);
  void policyActionSmDel(const Kel::String& name) { policyActionSm_.del(name); }
  void policyActionSmDelAll() { policyActionSm_.delAll(); }
  PolicyActionSm* policyActionSm(const Kel::String& name) const { return policyActionSm_.find(name); }
  const Kel::ChildMap<Kel::String, PolicyActionSm>& policyActionSm() const { return policyActionSm_; }

  // REQUIRES: classPrio and qosMib are not null (MutatorArgNullPointerException).
  ClassPrioSm* classPrioSmIs(const Kel::Ptr<const Qos::ClassPriority>& classPrio,
                             const PolicyMapClassTableIndex& index,
                             const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                             const Kel::Ptr<QosMib>& qosMib);
  void classPrioSmDel(Kel::U32 prio) { classPrioSm_.del(prio); }
  void classPrioSmDelAll() { classPrioSm_.delAll(); }
  ClassPrioSm* classPrioSm(Kel::U32 prio) const { return classPrioSm_.find(prio); }
  const Kel::ChildMap<Kel::U32, ClassPrioSm>& classPrioSm() const { return classPrioSm_; }

  Kel::U32 cmapNameToPrio(const Kel::String& name) const { return cmapNameToPrio_.get(name); }
  const Kel::ValueMap<Kel::String, Kel::U32>& cmapNameToPrio() const { return cmapNameToPrio_; }
  void cmapNameToPrioIs(const Kel::String& name, Kel::U32 prio) { cmapNameToPrio_.is(name, prio); }
  Kel::U32 cmapNameToPrioDel(const Kel::String& name) { return cmapNameToPrio_.del(name); }
  void cmapNameToPrioDelAll() { cmapNameToPrio_.delAll(); }

  Kel::String prioToCmapName(Kel::U32 prio) const { return prioToCmapName_.get(prio); }
  const Kel::ValueMap<Kel::U32, Kel::String>& prioToCmapName() const { return prioToCmapName_; }
  void prioToCmapNameIs(Kel::U32 prio, const Kel::String& name) { prioToCmapName_.is(prio, name); }
  // Returns the name the priority was linked to (empty when none).
  Kel::String prioToCmapNameDel(Kel::U32 prio) { return prioToCmapName_.del(prio); }
  void prioToCmapNameDelAll() { prioToCmapName_.delAll(); }

  const Kel::KeySet<PolicyMapClassTableIndex>& policyMapClassTableKey() const {
    return policyMapClassTableKey_;
  }

 protected:
  void doClose() override;

 private:
  PolicyMapClassTableIndex policyMapClassTableIndex(Kel::U32 prio) const;

  Kel::Watch<KelPolicyMapStatus> policyMapStatus_;
  Kel::Watch<KelClassMapTypeStatus> classMapTypeStatus_;
  Kel::Ptr<const Qos::HwStatus> hwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<PolicyMapClassTableIndex> policyMapClassTableKey_;
  Kel::ValueMap<Kel::String, Kel::U32> cmapNameToPrio_;
  Kel::ValueMap<Kel::U32, Kel::String> prioToCmapName_;
  // Declared last, so that they go first: a ClassPrioSm's close reaches the
  // name maps above.
  Kel::ChildMap<Kel::String, PolicyActionSm> policyActionSm_;
  Kel::ChildMap<Kel::U32, ClassPrioSm> classPrioSm_;
};

}  // namespace QosSnmp
