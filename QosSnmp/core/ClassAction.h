// Qos::ClassAction: what a policy map does with one class's traffic: its actions, one per kind.
//
// Keyed by the class-map name (the entity's name), given at construction and never changed.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ClassAction : public Kel::Entity {
 public:
  struct PolicyAction : Kel::CollectionAttribute<1, ActionType> {};

  explicit ClassAction(Kel::String name);

  // The actions, one per kind.
  Kel::Ptr<const Action> policyAction(ActionType actionType) const { return policyAction_.get(actionType); }
  const Kel::Collection<PolicyAction, Kel::Ptr<Action>>& policyAction() const { return policyAction_; }
  // REQUIRES: action is not null (else MutatorArgNullPointerException), action->actionType() == actionType.
  void policyActionIs(ActionType actionType, Kel::Ptr<Action> action);
  bool policyActionDel(ActionType actionType) { return policyAction_.del(*this, actionType); }
  void policyActionDelAll() { policyAction_.delAll(*this); }

 private:
  Kel::Collection<PolicyAction, Kel::Ptr<Action>> policyAction_;
};

}  // namespace Qos
