// ChurnStream: change lines (JSON Lines, see docs/state-format.md) for a
// switch generated from the same layout, one kind of change at a time or a
// random mix. Every line is valid against the document as changed by the
// lines before it: the stream follows what it changed (rules added, classes
// added, service policies withdrawn, ifIndexes, the poll period) and only
// ever undoes what it did itself.
//
// Kinds, and the line each emits:
//   counters        a counted class's packet counter moves;
//   match-rule      a class map gains a rule it lacks, or loses the one it
//                   gained (add and remove alternate per class map);
//   class-added     a policy map gains a class (a class action for a class
//                   map it does not use yet), policy maps in turn; once
//                   every policy map uses every class map, they leave in the
//                   same order, then come again;
//   service-policy  an interface's service policy status is withdrawn, then
//                   reported again (alternating on one interface);
//   if-index        an interface with an ifIndex gets a new, unused one;
//   poll-period     the counter poll period changes (10, 20, 30 s in turn);
//   mix             all of the above and the other counters of the switch
//                   (policers, ECN queues and chips, hardware classes),
//                   policer rates, interface states, classes removed again,
//                   the poll period rarely (sometimes to "inf" and back).
// The same layout, kind and seed give the same lines.
//
//   ChurnStream stream(layout, ChurnStream::Kind::mix, 7);
//   for (int i = 0; i < 1000; ++i) { out << stream.next() << '\n'; }
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/gen/SwitchLayout.h"

namespace QosSnmpBench {

class ChurnStream {
 public:
  enum class Kind { counters, matchRule, classAdded, servicePolicy, ifIndex, pollPeriod, mix };

  // Every kind, with its name.
  static const std::vector<std::pair<Kind, std::string>>& kinds();
  static std::optional<Kind> kindOf(std::string_view name);
  static std::string nameOf(Kind kind);

  ChurnStream(const SwitchLayout& layout, Kind kind, std::uint64_t seed);

  // The next change line, without its newline.
  std::string next();

 private:
  std::uint64_t random();
  std::uint32_t below(std::uint64_t bound) { return static_cast<std::uint32_t>(random() % bound); }

  std::string counters();
  std::string policerCounters();
  std::string ecnQueueCounters();
  std::string chipCounters();
  std::string hardwareClassCounters();
  std::string matchRule();
  std::string classAdded();
  std::string classToggled();
  std::string servicePolicy();
  std::string ifIndex();
  std::string pollPeriod(bool mayStop);
  std::string policerRate();
  std::string operStatus();

  std::string policyMapPath(std::uint32_t pmap) const;

  const SwitchLayout& layout_;
  Kind kind_;
  std::uint64_t random_;
  std::uint64_t value_ = 1;
  // Per class map: whether it holds the rule this stream added.
  std::vector<bool> ruleAdded_;
  // Class-added lines so far; for the mix, per policy map, whether the class
  // it toggles is there.
  std::uint64_t classSteps_ = 0;
  std::vector<bool> classPresent_;
  // The withdrawn service policy (interface, input?) the stream must report
  // again next, for the service-policy kind; per (interface, direction)
  // whether withdrawn, for the mix.
  std::optional<std::pair<std::uint32_t, bool>> withdrawn_;
  std::vector<bool> withdrawnInput_;
  std::vector<bool> withdrawnOutput_;
  std::vector<std::int32_t> ifIndex_;
  std::vector<std::uint32_t> indexedInterfaces_;
  std::int32_t nextIfIndex_ = 2000000;
  std::uint32_t pollStep_ = 0;
  bool pollStopped_ = false;
  std::vector<bool> operDown_;
};

}  // namespace QosSnmpBench
