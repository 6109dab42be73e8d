// EcnQueueCounterTableSliceSm: follows the interfaces whose ECN counters one
// hardware slice reports, and asks its parent, the ECN queue counter table
// machine, to add or delete the rows of each such interface.
//
// Watches: Qos::SliceHwStatus's ecnIntfCounterHwStatus (KelSliceHwStatus):
//   handleEcnIntfCounterHwStatus(intf) for the interface added, changed or
//   removed.
// Reads: the MIB model's intfIdToifIndex (through the parent's qosMib), for
//   the interface's ifIndex.
// Writes: no rows itself; the parent's addIntfIndex / deleteIntfIndex write
//   them. doClose() asks the parent to delete the rows of every interface the
//   slice still lists.
// Children: none.
//
// Deliberate, keep as it stands:
// - an interface without an entry in intfIdToifIndex is ignored on add and
//   on removal alike (its rows come when the root adds its ifIndex);
// - doClose() does not skip such interfaces: an absent interface reads as
//   ifIndex 0, so closing deletes the rows (0, q) of every queue q;
// - removing an interface from this slice deletes all its queue rows even
//   when another slice still reports it (the parent does not consult the
//   slices on delete).
// Trace lines of handleEcnIntfCounterHwStatus(intf) print the slice name,
// kSliceIntfSeparator and the interface. No framework trace line is written
// by handleInitialized() and handleEcnIntfCounterHwStatus(): only their
// ring-buffer messages.
#pragma once

#include <string_view>
#include <tuple>

#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

class EcnQueueCounterTableSm;

class EcnQueueCounterTableSliceSm : public Kel::StateMachine {
 public:
  // Printed between the slice name and the interface in trace lines: one
  // blank, as between the slice and chip names of the ECN chip counter
  // table's lines ("/" would blur into interface names like Ethernet3/1).
  static constexpr std::string_view kSliceIntfSeparator = " ";

  class KelSliceHwStatus
      : public Kel::Notifiee<KelSliceHwStatus, EcnQueueCounterTableSliceSm, const Qos::SliceHwStatus,
                             Qos::SliceHwStatus::EcnIntfCounterHwStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::SliceHwStatus::EcnIntfCounterHwStatus /*attr*/, const Pellix::IntfId& intf) {
      owner().handleEcnIntfCounterHwStatus(intf);
    }
  };

  // REQUIRES: ecnQueueCounterTableSm (the parent) is not null and outlives
  // this machine.
  EcnQueueCounterTableSliceSm(Kel::String sliceName, const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                              EcnQueueCounterTableSm* ecnQueueCounterTableSm);

  auto arguments() const {
    return std::make_tuple(sliceName_, sliceHwStatus_.entity(), ecnQueueCounterTableSm_);
  }

  void handleInitialized();
  void handleEcnIntfCounterHwStatus();
  void handleEcnIntfCounterHwStatus(const Pellix::IntfId& intf);

  const Kel::String& sliceName() const { return sliceName_; }
  const Qos::SliceHwStatus* sliceHwStatus() const { return sliceHwStatus_.get(); }

 protected:
  void doClose() override;

 private:
  const Kel::String sliceName_;
  Kel::Watch<KelSliceHwStatus> sliceHwStatus_;
  EcnQueueCounterTableSm* ecnQueueCounterTableSm_;  // the parent; not counted
};

}  // namespace QosSnmp
