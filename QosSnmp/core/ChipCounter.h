// Qos::ChipCounter: the ECN counters of one chip.
//
// Keyed by the chip name (the entity's name), given at construction and never changed.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class ChipCounter : public Kel::Entity {
 public:
  struct EcnMarkedPackets : Kel::ScalarAttribute<1> {};
  struct EcnMarkedBytes : Kel::ScalarAttribute<2> {};
  struct EcnDroppedPackets : Kel::ScalarAttribute<3> {};

  explicit ChipCounter(Kel::String name);

  // Packets marked congestion-experienced.
  Kel::U64 ecnMarkedPackets() const { return ecnMarkedPackets_.get(); }
  void ecnMarkedPacketsIs(Kel::U64 ecnMarkedPackets) { ecnMarkedPackets_.set(*this, ecnMarkedPackets); }

  // Bytes marked congestion-experienced.
  Kel::U64 ecnMarkedBytes() const { return ecnMarkedBytes_.get(); }
  void ecnMarkedBytesIs(Kel::U64 ecnMarkedBytes) { ecnMarkedBytes_.set(*this, ecnMarkedBytes); }

  // ECN-capable packets dropped.
  Kel::U64 ecnDroppedPackets() const { return ecnDroppedPackets_.get(); }
  void ecnDroppedPacketsIs(Kel::U64 ecnDroppedPackets) { ecnDroppedPackets_.set(*this, ecnDroppedPackets); }

 private:
  Kel::Scalar<EcnMarkedPackets, Kel::U64> ecnMarkedPackets_;
  Kel::Scalar<EcnMarkedBytes, Kel::U64> ecnMarkedBytes_;
  Kel::Scalar<EcnDroppedPackets, Kel::U64> ecnDroppedPackets_;
};

}  // namespace Qos
