// Qos::PolicyMapStatus: one policy map — its classes in priority order, what each does, and their counters.
//
// Keyed by its name (the entity's name), given at construction and never changed.
//
// The default class and its actions are scalars that may be null: a policy map without a default class reads
// as null there.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include <utility>

#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class PolicyMapStatus : public Kel::Entity {
 public:
  struct Type : Kel::ScalarAttribute<1> {};
  struct ClassAction : Kel::CollectionAttribute<2, Kel::String> {};
  struct ClassPrio : Kel::CollectionAttribute<3, Kel::U32> {};
  struct ClassDefault : Kel::ScalarAttribute<4> {};
  struct DefaultClassAction : Kel::ScalarAttribute<5> {};
  struct CmapCounters : Kel::CollectionAttribute<6, Kel::String> {};

  explicit PolicyMapStatus(Kel::String name);

  // The kind of policy map.
  MapType type() const { return type_.get(); }
  void typeIs(MapType type) { type_.set(*this, type); }

  // The actions of each class, by class-map name.
  Kel::Ptr<const Qos::ClassAction> classAction(const Kel::String& cmapName) const {
    return classAction_.get(cmapName);
  }
  const Kel::Collection<ClassAction, Kel::Ptr<Qos::ClassAction>>& classAction() const { return classAction_; }
  // REQUIRES: classAction is not null (else MutatorArgNullPointerException), classAction->name() == cmapName.
  void classActionIs(const Kel::String& cmapName, Kel::Ptr<Qos::ClassAction> classAction);
  bool classActionDel(const Kel::String& cmapName) { return classAction_.del(*this, cmapName); }
  void classActionDelAll() { classAction_.delAll(*this); }

  // The classes in the order they apply: by priority number, lowest first.
  Kel::Ptr<const ClassPriority> classPrio(Kel::U32 prio) const { return classPrio_.get(prio); }
  const Kel::Collection<ClassPrio, Kel::Ptr<ClassPriority>>& classPrio() const { return classPrio_; }
  // REQUIRES: classPriority is not null (else MutatorArgNullPointerException), classPriority->prio() == prio.
  void classPrioIs(Kel::U32 prio, Kel::Ptr<ClassPriority> classPriority);
  bool classPrioDel(Kel::U32 prio) { return classPrio_.del(*this, prio); }
  void classPrioDelAll() { classPrio_.delAll(*this); }

  // The default class; null when the policy map has none.
  Kel::Ptr<const ClassMapStatus> classDefault() const { return classDefault_.get(); }
  void classDefaultIs(Kel::Ptr<ClassMapStatus> classDefault) {
    classDefault_.set(*this, std::move(classDefault));
  }

  // The default class's actions; null when there are none.
  Kel::Ptr<const Qos::ClassAction> defaultClassAction() const { return defaultClassAction_.get(); }
  void defaultClassActionIs(Kel::Ptr<Qos::ClassAction> defaultClassAction) {
    defaultClassAction_.set(*this, std::move(defaultClassAction));
  }

  // The counters of each class, by class-map name.
  Kel::Ptr<const Counter> cmapCounters(const Kel::String& cmapName) const {
    return cmapCounters_.get(cmapName);
  }
  const Kel::Collection<CmapCounters, Kel::Ptr<Counter>>& cmapCounters() const { return cmapCounters_; }
  // REQUIRES: counter is not null (else MutatorArgNullPointerException), counter->name() == cmapName.
  void cmapCountersIs(const Kel::String& cmapName, Kel::Ptr<Counter> counter);
  bool cmapCountersDel(const Kel::String& cmapName) { return cmapCounters_.del(*this, cmapName); }
  void cmapCountersDelAll() { cmapCounters_.delAll(*this); }

 private:
  Kel::Scalar<Type, MapType> type_;
  Kel::Collection<ClassAction, Kel::Ptr<Qos::ClassAction>> classAction_;
  Kel::Collection<ClassPrio, Kel::Ptr<ClassPriority>> classPrio_;
  Kel::Scalar<ClassDefault, Kel::Ptr<ClassMapStatus>> classDefault_;
  Kel::Scalar<DefaultClassAction, Kel::Ptr<Qos::ClassAction>> defaultClassAction_;
  Kel::Collection<CmapCounters, Kel::Ptr<Counter>> cmapCounters_;
};

}  // namespace Qos
