// Qos::ClassMapMatch: one match rule of a class map: its kind and what it matches.
//
// Keyed by its kind, given at construction and never changed; the entity's name is the kind's printed form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include <utility>

#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ClassMapMatch : public Kel::Entity {
 public:
  struct Value : Kel::ScalarAttribute<1> {};

  explicit ClassMapMatch(ClassMapMatchOption option);

  ClassMapMatchOption option() const { return option_; }

  // What the rule matches, as configured: an access-list name ("acl-voice"), a VLAN list ("10,20-30"), a
  // DSCP list ("46").
  const Kel::String& value() const { return value_.get(); }
  void valueIs(Kel::String value) { value_.set(*this, std::move(value)); }

 private:
  const ClassMapMatchOption option_;
  Kel::Scalar<Value, Kel::String> value_;
};

}  // namespace Qos
