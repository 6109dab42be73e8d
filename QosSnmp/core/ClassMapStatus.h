// Qos::ClassMapStatus: one class map — how it classifies traffic, rule by rule.
//
// Keyed by its name (the entity's name), given at construction and never changed. Its map type is an
// attribute: a publisher may change it.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
//
// Entity members are stored under their own key: setting a null member throws
// Kel::MutatorArgNullPointerException, and a member whose key is not the key it is set under is a broken
// invariant (asserted). Readers get members as Kel::Ptr<const T>; the writer keeps the Kel::Ptr<T> it set
// and changes the member in place.
#pragma once

#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ClassMapStatus : public Kel::Entity {
 public:
  struct Type : Kel::ScalarAttribute<1> {};
  struct CpType : Kel::ScalarAttribute<2> {};
  struct CpStaticType : Kel::ScalarAttribute<3> {};
  struct MatchCondition : Kel::ScalarAttribute<4> {};
  struct Match : Kel::CollectionAttribute<5, ClassMapMatchOption> {};

  explicit ClassMapStatus(Kel::String name);

  // The kind of class map.
  MapType type() const { return type_.get(); }
  void typeIs(MapType type) { type_.set(*this, type); }

  // For a control-plane class map: static (built in) or dynamic (configured).
  ClassMapCpType cpType() const { return cpType_.get(); }
  void cpTypeIs(ClassMapCpType cpType) { cpType_.set(*this, cpType); }

  // For a static control-plane class map: which of the hardware's classes it is.
  ClassMapCpStaticType cpStaticType() const { return cpStaticType_.get(); }
  void cpStaticTypeIs(ClassMapCpStaticType cpStaticType) { cpStaticType_.set(*this, cpStaticType); }

  // How the rules combine, for display.
  Qos::MatchCondition matchCondition() const { return matchCondition_.get(); }
  void matchConditionIs(Qos::MatchCondition matchCondition) { matchCondition_.set(*this, matchCondition); }

  // The match rules, one per kind of rule.
  Kel::Ptr<const ClassMapMatch> match(ClassMapMatchOption option) const { return match_.get(option); }
  const Kel::Collection<Match, Kel::Ptr<ClassMapMatch>>& match() const { return match_; }
  // REQUIRES: classMapMatch is not null (else MutatorArgNullPointerException), classMapMatch->option() ==
  // option.
  void matchIs(ClassMapMatchOption option, Kel::Ptr<ClassMapMatch> classMapMatch);
  bool matchDel(ClassMapMatchOption option) { return match_.del(*this, option); }
  void matchDelAll() { match_.delAll(*this); }

 private:
  Kel::Scalar<Type, MapType> type_;
  Kel::Scalar<CpType, ClassMapCpType> cpType_;
  Kel::Scalar<CpStaticType, ClassMapCpStaticType> cpStaticType_;
  Kel::Scalar<MatchCondition, Qos::MatchCondition> matchCondition_;
  Kel::Collection<Match, Kel::Ptr<ClassMapMatch>> match_;
};

}  // namespace Qos
