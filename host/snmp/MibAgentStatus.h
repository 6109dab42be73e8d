// QosSnmpHost::MibAgentStatus: what the host tells pollers about how fresh
// the MIB model is, served by MibView as the agent group of QOS-SNMP-MIB
// (qosAgent: the time the state was loaded, the time of the last applied
// change, the numbers of change lines applied and refused).
//
// Times are points of the steady clock; the view serves them as TimeStamp
// values, hundredths of a second since upTimeOrigin (which the host sets to
// the moment the SNMP agent starts, so that they compare with sysUpTime). A
// time that was never set, or lies before the origin, reads as 0.
//
// generation() changes whenever the host loaded the state or applied a
// change line: the view caches what it derives from the model's maps and
// rebuilds it only when the generation moved.
//
// The host writes it and the view reads it on the reactor thread; it must
// outlive the view.
//
//   MibAgentStatus status;
//   status.stateLoadedIs(MibAgentStatus::Clock::now());
//   MibView view(mib, &status);
//   status.changeAppliedIs(MibAgentStatus::Clock::now());   // after each applied line
//   status.changeRefused();                                  // after each refused line
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace QosSnmpHost {

struct MibAgentStatus {
  using Clock = std::chrono::steady_clock;

  Clock::time_point upTimeOrigin = Clock::now();
  std::optional<Clock::time_point> stateLoaded;
  std::optional<Clock::time_point> lastChangeApplied;
  std::uint64_t changesApplied = 0;
  std::uint64_t changesRefused = 0;
  std::uint64_t loads = 0;

  void stateLoadedIs(Clock::time_point at) {
    stateLoaded = at;
    ++loads;
  }
  void changeAppliedIs(Clock::time_point at) {
    lastChangeApplied = at;
    ++changesApplied;
  }
  void changeRefused() { ++changesRefused; }

  std::uint64_t generation() const { return loads + changesApplied; }

  // The TimeStamp of `at`: hundredths of a second since upTimeOrigin,
  // modulo 2^32 as sysUpTime wraps; 0 when absent or before the origin.
  std::uint32_t timeStamp(std::optional<Clock::time_point> at) const {
    if (!at || *at < upTimeOrigin) {
      return 0;
    }
    const auto hundredths =
        std::chrono::duration_cast<std::chrono::milliseconds>(*at - upTimeOrigin).count() / 10;
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(hundredths));
  }
};

}  // namespace QosSnmpHost
