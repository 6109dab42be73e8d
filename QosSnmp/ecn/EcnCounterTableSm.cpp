#include "QosSnmp/ecn/EcnCounterTableSm.h"

#include <cassert>

#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"
#include "kel/System.h"

namespace QosSnmp {

namespace {

// When a timer is created: already due, so the first poll does not wait a
// whole period.
constexpr double kFirstPollTime = 0.0;

// The flags of every ECN counter row this machine writes.
constexpr Kel::U32 kEcnCounterRowFlags = 0;

}  // namespace

void EcnCounterTableSm::KelQosHwCounter::on(Qos::HwCounter::SliceHwCounter /*attr*/,
                                            const Kel::String& sliceName) {
  if (const Kel::Ptr<const Qos::SliceHwCounter> slice = notifier()->sliceHwCounter(sliceName)) {
    owner().sliceHwCounterIs(slice);
  } else {
    owner().sliceHwCounterDel(sliceName);
  }
}

EcnCounterTableSm::KelSliceHwCounter::KelSliceHwCounter(
    EcnCounterTableSm* owner, const Kel::Ptr<const Qos::SliceHwCounter>& sliceHwCounter)
    : Notifiee(owner, sliceHwCounter), sliceName_(sliceHwCounter->name()) {}

void EcnCounterTableSm::KelSliceHwCounter::handleRemoval() {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::KelSliceHwCounter::handleRemoval()", "");
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::handleRemoval()" << sliceName_;
  }
  notifier()->perChipCount().forEachKey(
      [this](const Kel::String& chipName) { owner().handleChip(sliceName_, chipName); });
}

void EcnCounterTableSm::KelSliceHwCounter::doClose() {
  // A machine that closes has emptied the whole table; re-evaluating the
  // chips now would write rows back into it.
  if (!owner().closed()) {
    handleRemoval();
  }
}

EcnCounterTableSm::EcnCounterTableSm(const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                                     const Kel::Ptr<const Qos::HwCounter>& qosHwCounter,
                                     const Kel::Ptr<QosMib>& qosMib)
    : qosHwStatus_(qosHwStatus), qosHwCounter_(this, qosHwCounter), qosMib_(qosMib) {
  if (qosHwCounter_) {
    for (const auto& member : qosHwCounter_->sliceHwCounter()) {
      sliceHwCounterIs(member.second);
    }
  }
  handleInitialized();
}

EcnCounterTableSm::KelSliceHwCounter* EcnCounterTableSm::sliceHwCounterIs(
    const Kel::Ptr<const Qos::SliceHwCounter>& sliceHwCounter) {
  Kel::requireArgument(sliceHwCounter, "sliceHwCounter");
  if (KelSliceHwCounter* existing = sliceHwCounter_.find(sliceHwCounter->name())) {
    return existing;
  }
  return sliceHwCounter_.is(sliceHwCounter->name(), this, sliceHwCounter);
}

EcnCounterTableSm::KelTimer* EcnCounterTableSm::timerIs(const Kel::Ptr<const Kel::Clock>& clock) {
  timer_ = Kel::makeReactor<KelTimer>(this, clock);
  if (timer_) {
    timer_->timeMinIs(kFirstPollTime);
  }
  return timer_.get();
}

void EcnCounterTableSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::handleInitialized()";
  }
  assert(!initialized());
  timerIs(Kel::System::clock());
  initializedIs(true);
  handleAllEntries();
}

void EcnCounterTableSm::handleAllEntries() {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::handleAllEntries()", "");
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::handleAllEntries()";
  }
  if (!qosHwCounter_) {
    return;
  }
  qosHwCounter_->sliceHwCounter().forEachKey([this](const Kel::String& sliceName) {
    if (const Kel::Ptr<const Qos::SliceHwCounter> slice = qosHwCounter_->sliceHwCounter(sliceName)) {
      slice->perChipCount().forEachKey([&](const Kel::String& chipName) { handleChip(sliceName, chipName); });
    }
  });
}

void EcnCounterTableSm::handleChip(const Kel::String& sliceName, const Kel::String& chipName) {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::handleChip(Kel::String, Kel::String)", "pp", sliceName,
                   chipName);
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::handleChip()" << sliceName << " " << chipName;
  }
  if (!qosHwStatus_ || !qosHwStatus_->ecnCountersSupported()) {
    if (auto t = trace(0)) {
      t << "ECN counters not supported ";
    }
    return;
  }
  const Snmp::String chipId = uniqueId(chipName);
  const Kel::Ptr<const Qos::SliceHwCounter> slice =
      qosHwCounter_ ? qosHwCounter_->sliceHwCounter(sliceName) : nullptr;
  const Kel::Ptr<const Qos::ChipCounter> chipCounter = slice ? slice->perChipCount(chipName) : nullptr;
  if (chipCounter) {
    qosMib_->ecnCounterTableIs(chipId, chipCounter, kEcnCounterRowFlags);
  } else {
    qosMib_->ecnCounterTableDel(chipId);
  }
}

void EcnCounterTableSm::handleTimer() {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::handleTimer()", "");
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::handleTimer()";
  }
  handleAllEntries();
  if (timer_) {
    timer_->timeMinIs(Kel::System::currentTime() + kPollPeriod);
  }
}

void EcnCounterTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::EcnCounterTableSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "EcnCounterTableSm::doClose()";
  }
  if (qosMib_) {
    qosMib_->ecnCounterTableDelAll();
  }
}

}  // namespace QosSnmp
