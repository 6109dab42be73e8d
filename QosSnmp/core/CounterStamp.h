// CounterStamp: when a row of the MIB model last got different counters,
// as a TimeStamp (hundredths of a second of the host's sysUpTime; 0 for a
// row that got them before the host's clock started, at load).
//
// A row whose columns are counters holds one, written by MibTable::set when
// the row is created or replaced with other counters (see CounterStampedRow
// in MibTable.h) and by QosMib when counters reached through the row restart
// in place. It is not part of the row's identity: two stamps always compare
// equal, so a row's operator== means what it meant without one.
//
// CounterClock is the hook the host installs on the model (QosMib::
// counterClockIs) to read the current TimeStamp; without one, stamps are 0.
#pragma once

#include <cstdint>
#include <functional>

namespace QosSnmp {

struct CounterStamp {
  std::uint32_t at = 0;

  friend bool operator==(const CounterStamp&, const CounterStamp&) noexcept { return true; }
};

using CounterClock = std::function<std::uint32_t()>;

}  // namespace QosSnmp
