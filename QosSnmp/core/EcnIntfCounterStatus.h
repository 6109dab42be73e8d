// Qos::EcnIntfCounterStatus: whether an interface's ECN counters are programmed in the hardware.
//
// Keyed by the interface, given at construction and never changed; the entity's name is the interface name.
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
#include "pellix/IntfId.h"

namespace Qos {

class EcnIntfCounterStatus : public Kel::Entity {
 public:
  struct ProgrammingStatus : Kel::ScalarAttribute<1> {};

  explicit EcnIntfCounterStatus(Pellix::IntfId intfId);

  const Pellix::IntfId& intfId() const { return intfId_; }

  // Whether the counters are programmed.
  HwProgrammingStatus programmingStatus() const { return programmingStatus_.get(); }
  void programmingStatusIs(HwProgrammingStatus programmingStatus) {
    programmingStatus_.set(*this, programmingStatus);
  }

 private:
  const Pellix::IntfId intfId_;
  Kel::Scalar<ProgrammingStatus, HwProgrammingStatus> programmingStatus_;
};

}  // namespace Qos
