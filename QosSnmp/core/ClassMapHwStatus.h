// Qos::ClassMapHwStatus: the hardware status and counters of one class of a policy map.
//
// Keyed by the class-map name (the entity's name), given at construction and never changed.
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

class ClassMapHwStatus : public Kel::Entity {
 public:
  struct ProgrammingStatus : Kel::ScalarAttribute<1> {};
  struct Packets : Kel::ScalarAttribute<2> {};
  struct Bytes : Kel::ScalarAttribute<3> {};
  struct DroppedPackets : Kel::ScalarAttribute<4> {};
  struct DroppedBytes : Kel::ScalarAttribute<5> {};
  struct ShapeRate : Kel::ScalarAttribute<6> {};
  struct Bandwidth : Kel::ScalarAttribute<7> {};

  explicit ClassMapHwStatus(Kel::String name);

  // Whether the class is programmed.
  HwProgrammingStatus programmingStatus() const { return programmingStatus_.get(); }
  void programmingStatusIs(HwProgrammingStatus programmingStatus) {
    programmingStatus_.set(*this, programmingStatus);
  }

  // Packets that matched the class.
  Kel::U64 packets() const { return packets_.get(); }
  void packetsIs(Kel::U64 packets) { packets_.set(*this, packets); }

  // Bytes that matched the class.
  Kel::U64 bytes() const { return bytes_.get(); }
  void bytesIs(Kel::U64 bytes) { bytes_.set(*this, bytes); }

  // Packets of the class that were dropped.
  Kel::U64 droppedPackets() const { return droppedPackets_.get(); }
  void droppedPacketsIs(Kel::U64 droppedPackets) { droppedPackets_.set(*this, droppedPackets); }

  // Bytes of the class that were dropped.
  Kel::U64 droppedBytes() const { return droppedBytes_.get(); }
  void droppedBytesIs(Kel::U64 droppedBytes) { droppedBytes_.set(*this, droppedBytes); }

  // The rate the hardware shapes the class to, in kbps.
  Kel::U64 shapeRate() const { return shapeRate_.get(); }
  void shapeRateIs(Kel::U64 shapeRate) { shapeRate_.set(*this, shapeRate); }

  // The bandwidth the hardware guarantees the class, in kbps.
  Kel::U64 bandwidth() const { return bandwidth_.get(); }
  void bandwidthIs(Kel::U64 bandwidth) { bandwidth_.set(*this, bandwidth); }

 private:
  Kel::Scalar<ProgrammingStatus, HwProgrammingStatus> programmingStatus_;
  Kel::Scalar<Packets, Kel::U64> packets_;
  Kel::Scalar<Bytes, Kel::U64> bytes_;
  Kel::Scalar<DroppedPackets, Kel::U64> droppedPackets_;
  Kel::Scalar<DroppedBytes, Kel::U64> droppedBytes_;
  Kel::Scalar<ShapeRate, Kel::U64> shapeRate_;
  Kel::Scalar<Bandwidth, Kel::U64> bandwidth_;
};

}  // namespace Qos
