// EcnCounterTableSm: keeps the MIB model's ECN counter table, one row per
// forwarding chip, in step with the per-chip ECN counters the hardware
// reports (Qos::HwCounter -> per slice Qos::SliceHwCounter -> per chip
// Qos::ChipCounter), and re-walks every chip every 10 seconds.
//
// Watches:
// - Qos::HwCounter's sliceHwCounter (KelQosHwCounter): a slice added or
//   changed gets a KelSliceHwCounter unless it has one; a slice removed
//   loses it;
// - each slice's perChipCount (KelSliceHwCounter, one per slice, keyed by
//   slice name): handleChip(sliceName, chipName) for the chip added,
//   changed or removed;
// - the framework clock (KelTimer): handleTimer() walks every chip of every
//   slice and re-arms the timer 10.0 seconds later.
// Reads, not watched: Qos::HwStatus's ecnCountersSupported.
// Writes: QosMib's ECN counter table, keyed by uniqueId(chip name) alone, the
//   chip counter as the row's reference and 0 as its flags. No key set: this
//   machine is the table's only writer, and doClose() empties the whole
//   table, rows it did not add included.
// Children: none (the slice reactors are its only members with state).
//
// Deliberate, keep as it stands:
// - the slice takes no part in a row's key, so slices reporting a chip of
//   the same name share one row: removing the chip from one slice deletes
//   the row, and the next poll adds it back from the other slice;
// - while ecnCountersSupported is false nothing is added or removed (each
//   evaluated chip traces "ECN counters not supported " at level 0); the
//   flag is not watched, a change takes effect at the next poll;
// - a slice that appears in qosHwCounter only gets its reactor: the rows of
//   the chips it already holds come with the next poll (or a chip change);
// - a slice removed from qosHwCounter re-evaluates, through its reactor's
//   handleRemoval(), every chip it still lists, which deletes their rows;
// - sliceHwCounterIs() for a slice name that has a reactor keeps that
//   reactor, even when it watches another entity of the same name;
// - the poll period is the fixed 10.0 seconds, not the MIB configuration's
//   counterPollPeriod; the timer is created due at time 0, so the first poll
//   runs at the first turn of the event loop;
// - the trace lines of handleChip() and handleRemoval() print the slice
//   name right after "()", without a blank.
// Choices where the requirements are silent: a null qosHwStatus reads as
// ECN counters unsupported; slice reactors dropped because this machine
// closes do not re-evaluate their chips (the table was just emptied and must
// stay empty).
#pragma once

#include <tuple>

#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwCounter.h"
#include "kel/ChildMap.h"
#include "kel/Clock.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class EcnCounterTableSm : public Kel::StateMachine {
 public:
  // Seconds between two walks of every chip.
  static constexpr double kPollPeriod = 10.0;

  class KelQosHwCounter : public Kel::Notifiee<KelQosHwCounter, EcnCounterTableSm, const Qos::HwCounter,
                                               Qos::HwCounter::SliceHwCounter> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::HwCounter::SliceHwCounter /*attr*/, const Kel::String& sliceName);
  };

  // Watches one slice's chips; a member of sliceHwCounter, keyed by the
  // slice's name.
  class KelSliceHwCounter
      : public Kel::Notifiee<KelSliceHwCounter, EcnCounterTableSm, const Qos::SliceHwCounter,
                             Qos::SliceHwCounter::PerChipCount> {
   public:
    KelSliceHwCounter(EcnCounterTableSm* owner, const Kel::Ptr<const Qos::SliceHwCounter>& sliceHwCounter);

    auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
    const Kel::String& sliceName() const { return sliceName_; }

    void on(Qos::SliceHwCounter::PerChipCount /*attr*/, const Kel::String& chipName) {
      owner().handleChip(sliceName_, chipName);
    }
    // Re-evaluates every chip the slice lists.
    void handleRemoval();

   protected:
    void doClose() override;

   private:
    const Kel::String sliceName_;
  };

  class KelTimer : public Kel::ClockNotifiee<EcnCounterTableSm> {
   public:
    using ClockNotifiee::ClockNotifiee;
    void onTimeMin() override { owner().handleTimer(); }
  };

  EcnCounterTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                    const Kel::Ptr<const Qos::HwCounter>& qosHwCounter, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const { return std::make_tuple(qosHwStatus_, qosHwCounter_.entity(), qosMib_); }

  void handleInitialized();
  void handleAllEntries();
  void handleChip(const Kel::String& sliceName, const Kel::String& chipName);
  void handleTimer();

  // The slice reactors. REQUIRES: sliceHwCounter is not null
  // (MutatorArgNullPointerException).
  KelSliceHwCounter* sliceHwCounterIs(const Kel::Ptr<const Qos::SliceHwCounter>& sliceHwCounter);
  void sliceHwCounterDel(const Kel::String& sliceName) { sliceHwCounter_.del(sliceName); }
  void sliceHwCounterDelAll() { sliceHwCounter_.delAll(); }
  const Kel::ChildMap<Kel::String, KelSliceHwCounter>& sliceHwCounter() const { return sliceHwCounter_; }

  // The poll timer; null until handleInitialized(). timerIs() creates it due
  // at time 0.
  KelTimer* timerIs(const Kel::Ptr<const Kel::Clock>& clock);
  void timerDel() { timer_.reset(); }
  KelTimer* timer() const { return timer_.get(); }

  const Qos::HwCounter* qosHwCounter() const { return qosHwCounter_.get(); }
  void qosHwCounterDel() { qosHwCounter_.reset(); }

 protected:
  void doClose() override;

 private:
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Watch<KelQosHwCounter> qosHwCounter_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::Ptr<KelTimer> timer_;
  // Last, so that its reactors go first when the machine is destroyed.
  Kel::ChildMap<Kel::String, KelSliceHwCounter> sliceHwCounter_;
};

}  // namespace QosSnmp
