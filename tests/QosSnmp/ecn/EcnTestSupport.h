// What the ECN machines' tests share: builders for the hardware's ECN
// counter entities (slices and chips of Qos::HwCounter, interfaces reported
// by a slice's hardware status) on top of QosSnmpTest::TestSwitch.
#pragma once

#include <string>

#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/EcnIntfCounterStatus.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/SliceHwCounter.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Make.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "pellix/IntfId.h"

namespace EcnTest {

inline Pellix::IntfId intfId(const std::string& name) { return Pellix::IntfId(Kel::String(name)); }

// A slice's ECN counters, added to the hardware counters.
inline Kel::Ptr<Qos::SliceHwCounter> sliceCounter(Qos::HwCounter& hwCounter, const Kel::String& name) {
  auto slice = Kel::make<Qos::SliceHwCounter>(name);
  hwCounter.sliceHwCounterIs(name, slice);
  return slice;
}

// A chip's ECN counters, added to its slice.
inline Kel::Ptr<Qos::ChipCounter> chip(Qos::SliceHwCounter& slice, const Kel::String& name) {
  auto counter = Kel::make<Qos::ChipCounter>(name);
  slice.perChipCountIs(name, counter);
  return counter;
}

// The slice reports the ECN counters of interface `name`.
inline Kel::Ptr<Qos::EcnIntfCounterStatus> ecnIntf(Qos::SliceHwStatus& slice, const std::string& name) {
  auto status = Kel::make<Qos::EcnIntfCounterStatus>(intfId(name));
  slice.ecnIntfCounterHwStatusIs(intfId(name), status);
  return status;
}

}  // namespace EcnTest
