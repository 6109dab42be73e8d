// ClassPrioSm: mirrors one class priority of one policy map into the MIB
// model's policy-map class table: the row at that priority, named after the
// class map the priority points at, present while that class map exists in
// the class-map type status of the policy map's type. ClassActionSm keeps
// one per priority and is given as the (uncounted) parent.
//
// Watches: the class priority's cmapName (handleCmapName()). A reactor
//   exists only for a non-null class priority.
// Writes: the one policyMapClassTable row under the index the parent built
//   (uniqueId(policy-map name), policy-map type, priority); it has no key
//   set: doClose() deletes that index whether or not the row is there.
// Keeps the parent's name maps in step: prioToCmapName (priority -> class-
//   map name) and cmapNameToPrio (class-map name -> priority), through which
//   the parent's handleCmap reaches this machine when the class map changes.
// Children: none.
// Deliberate, keep as it stands:
// - an empty cmapName changes nothing: neither the row nor the name maps;
// - a rename first unlinks the name the maps held for this priority, so the
//   old class map's later changes no longer reach this machine; the row is
//   deleted and re-added only when the new class map exists;
// - doClose() unlinks cmapNameToPrio under the class priority's current
//   cmapName, which is the name the maps hold except after a rename to an
//   empty name (then the old name's entry stays).
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/PolicyMapClassTableIndex.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmp {

class ClassActionSm;

class ClassPrioSm : public Kel::StateMachine {
 public:
  class KelClassPrio : public Kel::Notifiee<KelClassPrio, ClassPrioSm, const Qos::ClassPriority,
                                            Qos::ClassPriority::CmapName> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::ClassPriority::CmapName /*attr*/) { owner().handleCmapName(); }
  };

  ClassPrioSm(const Kel::Ptr<const Qos::ClassPriority>& classPrio, PolicyMapClassTableIndex index,
              const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus, const Kel::Ptr<QosMib>& qosMib,
              ClassActionSm* parent);

  auto arguments() const {
    return std::make_tuple(classPrio_.entity(), index_, policyMapStatus_, qosMib_, parent_);
  }

  void handleInitialized();
  void handleCmapName();

  // The priority this machine shows (the index's priority).
  Kel::U32 prio() const { return index_.prio(); }
  // The class priority's current class-map name; empty without one.
  Kel::String cmapName() const;

  const Qos::ClassPriority* classPrio() const { return classPrio_.get(); }
  const PolicyMapClassTableIndex& index() const { return index_; }

 protected:
  void doClose() override;

 private:
  Kel::Watch<KelClassPrio> classPrio_;
  PolicyMapClassTableIndex index_;
  Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus_;
  Kel::Ptr<QosMib> qosMib_;
  ClassActionSm* parent_;  // the owner; not counted
};

}  // namespace QosSnmp
