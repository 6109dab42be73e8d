// Qos::PolicerHwStatus: a class's policer counters on one interface, by the color the policer gave the
// traffic.
//
// Keyed by the interface name (the entity's name), given at construction and never changed.
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

class PolicerHwStatus : public Kel::Entity {
 public:
  struct ConformedPackets : Kel::ScalarAttribute<1> {};
  struct ConformedBytes : Kel::ScalarAttribute<2> {};
  struct ExceededPackets : Kel::ScalarAttribute<3> {};
  struct ExceededBytes : Kel::ScalarAttribute<4> {};
  struct ViolatedPackets : Kel::ScalarAttribute<5> {};
  struct ViolatedBytes : Kel::ScalarAttribute<6> {};

  explicit PolicerHwStatus(Kel::String intfName);

  const Kel::String& intfName() const { return name(); }

  // Packets within the committed rate.
  Kel::U64 conformedPackets() const { return conformedPackets_.get(); }
  void conformedPacketsIs(Kel::U64 conformedPackets) { conformedPackets_.set(*this, conformedPackets); }

  // Bytes within the committed rate.
  Kel::U64 conformedBytes() const { return conformedBytes_.get(); }
  void conformedBytesIs(Kel::U64 conformedBytes) { conformedBytes_.set(*this, conformedBytes); }

  // Packets above the committed rate and within the peak rate.
  Kel::U64 exceededPackets() const { return exceededPackets_.get(); }
  void exceededPacketsIs(Kel::U64 exceededPackets) { exceededPackets_.set(*this, exceededPackets); }

  // Bytes above the committed rate and within the peak rate.
  Kel::U64 exceededBytes() const { return exceededBytes_.get(); }
  void exceededBytesIs(Kel::U64 exceededBytes) { exceededBytes_.set(*this, exceededBytes); }

  // Packets above the peak rate.
  Kel::U64 violatedPackets() const { return violatedPackets_.get(); }
  void violatedPacketsIs(Kel::U64 violatedPackets) { violatedPackets_.set(*this, violatedPackets); }

  // Bytes above the peak rate.
  Kel::U64 violatedBytes() const { return violatedBytes_.get(); }
  void violatedBytesIs(Kel::U64 violatedBytes) { violatedBytes_.set(*this, violatedBytes); }

 private:
  Kel::Scalar<ConformedPackets, Kel::U64> conformedPackets_;
  Kel::Scalar<ConformedBytes, Kel::U64> conformedBytes_;
  Kel::Scalar<ExceededPackets, Kel::U64> exceededPackets_;
  Kel::Scalar<ExceededBytes, Kel::U64> exceededBytes_;
  Kel::Scalar<ViolatedPackets, Kel::U64> violatedPackets_;
  Kel::Scalar<ViolatedBytes, Kel::U64> violatedBytes_;
};

}  // namespace Qos
