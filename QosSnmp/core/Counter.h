// Qos::Counter: the traffic counters of one class of a policy map, and its policers' counters per interface.
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

#include "QosSnmp/core/PolicerHwStatus.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class Counter : public Kel::Entity {
 public:
  struct Packets : Kel::ScalarAttribute<1> {};
  struct Bytes : Kel::ScalarAttribute<2> {};
  struct DroppedPackets : Kel::ScalarAttribute<3> {};
  struct DroppedBytes : Kel::ScalarAttribute<4> {};
  struct PolicerHwStatus : Kel::CollectionAttribute<5, Kel::String> {};

  explicit Counter(Kel::String name);

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

  // The class's policer counters, by interface name.
  Kel::Ptr<const Qos::PolicerHwStatus> policerHwStatus(const Kel::String& intfName) const {
    return policerHwStatus_.get(intfName);
  }
  const Kel::Collection<PolicerHwStatus, Kel::Ptr<Qos::PolicerHwStatus>>& policerHwStatus() const {
    return policerHwStatus_;
  }
  // REQUIRES: policerHwStatus is not null (else MutatorArgNullPointerException), policerHwStatus->intfName()
  // == intfName.
  void policerHwStatusIs(const Kel::String& intfName, Kel::Ptr<Qos::PolicerHwStatus> policerHwStatus);
  bool policerHwStatusDel(const Kel::String& intfName) { return policerHwStatus_.del(*this, intfName); }
  void policerHwStatusDelAll() { policerHwStatus_.delAll(*this); }

 private:
  Kel::Scalar<Packets, Kel::U64> packets_;
  Kel::Scalar<Bytes, Kel::U64> bytes_;
  Kel::Scalar<DroppedPackets, Kel::U64> droppedPackets_;
  Kel::Scalar<DroppedBytes, Kel::U64> droppedBytes_;
  Kel::Collection<PolicerHwStatus, Kel::Ptr<Qos::PolicerHwStatus>> policerHwStatus_;
};

}  // namespace Qos
