// Qos::CpStaticClassHwStatus: how one static control-plane class is programmed in the hardware.
//
// Keyed by the class, given at construction and never changed; the entity's name is the class's printed
// form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class CpStaticClassHwStatus : public Kel::Entity {
 public:
  struct HwRank : Kel::ScalarAttribute<1> {};
  struct ProgrammingStatus : Kel::ScalarAttribute<2> {};

  explicit CpStaticClassHwStatus(ClassMapCpStaticType cpStaticType);

  ClassMapCpStaticType cpStaticType() const { return cpStaticType_; }

  // The class's rank in the hardware's lookup order.
  Kel::U8 hwRank() const { return hwRank_.get(); }
  void hwRankIs(Kel::U8 hwRank) { hwRank_.set(*this, hwRank); }

  // Whether the class is programmed.
  HwProgrammingStatus programmingStatus() const { return programmingStatus_.get(); }
  void programmingStatusIs(HwProgrammingStatus programmingStatus) {
    programmingStatus_.set(*this, programmingStatus);
  }

 private:
  const ClassMapCpStaticType cpStaticType_;
  Kel::Scalar<HwRank, Kel::U8> hwRank_;
  Kel::Scalar<ProgrammingStatus, HwProgrammingStatus> programmingStatus_;
};

}  // namespace Qos
