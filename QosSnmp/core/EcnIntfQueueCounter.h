// Qos::EcnIntfQueueCounter: the ECN counters of one interface, per queue.
//
// Keyed by the interface, given at construction and never changed; the entity's name is the interface name.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Qos {

class EcnIntfQueueCounter : public Kel::Entity {
 public:
  struct QueueMarkedPackets : Kel::CollectionAttribute<1, Kel::U8> {};
  struct QueueMarkedBytes : Kel::CollectionAttribute<2, Kel::U8> {};

  explicit EcnIntfQueueCounter(Pellix::IntfId intfId);

  const Pellix::IntfId& intfId() const { return intfId_; }

  // Packets marked congestion-experienced, by queue number; a queue without a count reads as 0.
  Kel::U64 queueMarkedPackets(Kel::U8 queue) const { return queueMarkedPackets_.get(queue); }
  const Kel::Collection<QueueMarkedPackets, Kel::U64>& queueMarkedPackets() const {
    return queueMarkedPackets_;
  }
  void queueMarkedPacketsIs(Kel::U8 queue, Kel::U64 packets) {
    queueMarkedPackets_.set(*this, queue, packets);
  }
  bool queueMarkedPacketsDel(Kel::U8 queue) { return queueMarkedPackets_.del(*this, queue); }
  void queueMarkedPacketsDelAll() { queueMarkedPackets_.delAll(*this); }

  // Bytes marked congestion-experienced, by queue number; a queue without a count reads as 0.
  Kel::U64 queueMarkedBytes(Kel::U8 queue) const { return queueMarkedBytes_.get(queue); }
  const Kel::Collection<QueueMarkedBytes, Kel::U64>& queueMarkedBytes() const { return queueMarkedBytes_; }
  void queueMarkedBytesIs(Kel::U8 queue, Kel::U64 bytes) { queueMarkedBytes_.set(*this, queue, bytes); }
  bool queueMarkedBytesDel(Kel::U8 queue) { return queueMarkedBytes_.del(*this, queue); }
  void queueMarkedBytesDelAll() { queueMarkedBytes_.delAll(*this); }

 private:
  const Pellix::IntfId intfId_;
  Kel::Collection<QueueMarkedPackets, Kel::U64> queueMarkedPackets_;
  Kel::Collection<QueueMarkedBytes, Kel::U64> queueMarkedBytes_;
};

}  // namespace Qos
