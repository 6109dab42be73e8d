// EcnQueueCounterTableSm: keeps the MIB model's ECN queue counter table, one
// row per interface and queue, for the interfaces whose ECN counters a
// hardware slice reports.
//
// Watches: the slice hardware-status directory (KelQosSliceHwStatusDir):
//   handleSlice(name) for every entry added or removed.
// Reads, not watched: Qos::HwStatus's ecnQueueCountersSupported,
//   numEcnQueues and ecnQueueCountersFlag (handed to every row unchanged);
//   each slice's ecnIntfCounterHwStatus.
// Writes: QosMib's ECN queue counter table, rows (ifIndex, queue) for queue
//   0 up to numEcnQueues - 1, each referring to the interface, the first
//   slice in directory order that reports it, and the ECN counter table.
//   No key set: doClose() drops every slice machine and then empties the
//   whole table, rows it did not add included.
// Children: one EcnQueueCounterTableSliceSm per directory entry that is a
//   Qos::SliceHwStatus (sliceSm, keyed by slice name).
// Called by: the slice machines, and the root when an interface gains or
//   loses its ifIndex (addIntfIndex / deleteIntfIndex).
//
// Deliberate, keep as it stands:
// - addIntfIndex adds a row only when the index has none: an interface that
//   two slices report gets its rows once, and an existing row is never
//   replaced;
// - deleteIntfIndex removes every queue row of the ifIndex below
//   numEcnQueues without consulting the slices (or ecnQueueCountersSupported):
//   an interface removed from one slice loses its rows even when another
//   slice still reports it, until the next add for that interface;
// - with numEcnQueues 0 no row is ever added or deleted;
// - a directory entry replaced by another slice status under the same name
//   throws the framework's re-instantiation error (sliceSmIs never rebuilds);
//   an entry of another type drops the slice's machine.
// Choice where the requirements are silent: a null qosHwStatus reads as
// queue counters unsupported and zero queues.
#pragma once

#include <tuple>

#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/ecn/EcnQueueCounterTableSliceSm.h"
#include "kel/ChildMap.h"
#include "kel/Dir.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

class EcnQueueCounterTableSm : public Kel::StateMachine {
 public:
  class KelQosSliceHwStatusDir : public Kel::Notifiee<KelQosSliceHwStatusDir, EcnQueueCounterTableSm,
                                                      const Kel::Dir, Kel::Dir::Entry> {
   public:
    using Notifiee::Notifiee;
    void on(Kel::Dir::Entry /*attr*/, const Kel::String& name) { owner().handleSlice(name); }
  };

  EcnQueueCounterTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                         const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir, const Kel::Ptr<QosMib>& qosMib,
                         const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable);

  auto arguments() const {
    return std::make_tuple(qosHwStatus_, qosSliceHwStatusDir_.entity(), qosMib_, ecnCounterTable_);
  }

  void handleInitialized();
  void handleSlice();
  void handleSlice(const Kel::String& name);

  // The rows of every ECN queue of `intf`, whose ifIndex is `ifIndex`.
  void addIntfIndex(const Pellix::IntfId& intf, Kel::S32 ifIndex);
  void deleteIntfIndex(const Pellix::IntfId& intf, Kel::S32 ifIndex);

  // Creates the slice's machine unless one exists under `name`; throws
  // MutatorReinstantiatingException when that one was built from other
  // arguments.
  EcnQueueCounterTableSliceSm* sliceSmIs(const Kel::String& name,
                                         const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                         EcnQueueCounterTableSm* ecnQueueCounterTableSm);
  void sliceSmDel(const Kel::String& name) { sliceSm_.del(name); }
  void sliceSmDelAll() { sliceSm_.delAll(); }
  EcnQueueCounterTableSliceSm* sliceSm(const Kel::String& name) const { return sliceSm_.find(name); }
  const Kel::ChildMap<Kel::String, EcnQueueCounterTableSliceSm>& sliceSm() const { return sliceSm_; }

  const Kel::Ptr<QosMib>& qosMib() const { return qosMib_; }

 protected:
  void doClose() override;

 private:
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Watch<KelQosSliceHwStatusDir> qosSliceHwStatusDir_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable_;
  // Last, so that the slice machines, which call back into this one, go
  // first when it is destroyed.
  Kel::ChildMap<Kel::String, EcnQueueCounterTableSliceSm> sliceSm_;
};

}  // namespace QosSnmp
