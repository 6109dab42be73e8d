// Qos::ClassPriority: one place in a policy map's class order: the class that applies at that priority.
//
// Keyed by its priority number, given at construction and never changed; the entity's name is the number.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include <utility>

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ClassPriority : public Kel::Entity {
 public:
  struct CmapName : Kel::ScalarAttribute<1> {};

  explicit ClassPriority(Kel::U32 prio);

  Kel::U32 prio() const { return prio_; }

  // The class map at this priority.
  const Kel::String& cmapName() const { return cmapName_.get(); }
  void cmapNameIs(Kel::String cmapName) { cmapName_.set(*this, std::move(cmapName)); }

 private:
  const Kel::U32 prio_;
  Kel::Scalar<CmapName, Kel::String> cmapName_;
};

}  // namespace Qos
