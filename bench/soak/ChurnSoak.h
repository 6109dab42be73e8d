// ChurnSoak: applies K random valid changes (ChurnStream's mix) to an agent
// built over a generated switch, then builds a fresh agent over the final
// state (the soaked host's canonical document) and compares the two MIB
// models table by table, as MibDump prints them.
//
// Rows that differ are sorted into the agent's stated behaviours that make a
// soaked agent hold rows a fresh one does not (or the other way round), see
// kExplanations in ChurnSoak.cpp, each naming the header that states it;
// anything else is unexplained, a bug. docs/reliability.md lists them.
// Then both agents are torn down and destroyed, and the framework's
// allocation tracking must find nothing of theirs alive.
//
//   ChurnSoak soak(*SwitchParams::preset("large"), 10000, 1);
//   ChurnSoak::Result result = soak.run(factory);
//   EXPECT_TRUE(result.unexplained.empty());
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "QosSnmp/core/RootSm.h"
#include "bench/gen/SwitchParams.h"

namespace QosSnmpBench {

class ChurnSoak {
 public:
  // A row one agent holds and the other does not.
  struct Difference {
    std::string table;
    std::string row;  // as MibDump's text prints it
    bool soakedOnly;  // held by the soaked agent only (else by the fresh one only)
  };

  struct Result {
    // Empty when every change was accepted; else the refused line and why.
    std::string refusal;
    std::size_t applied = 0;
    std::size_t soakedRows = 0;
    std::size_t freshRows = 0;
    // By explanation name, the differences it covers.
    std::map<std::string, std::vector<Difference>> explained;
    std::vector<Difference> unexplained;
    // Objects the framework's allocation tracking counts (state machines,
    // reactors, rows, collection nodes, entities) alive while both agents
    // stand, and the types with any alive once both are torn down and
    // destroyed, with how many.
    std::int64_t liveBeforeTeardown = 0;
    std::vector<std::pair<std::string, std::int64_t>> aliveAfterTeardown;
  };

  ChurnSoak(SwitchParams params, std::size_t changes, std::uint64_t seed)
      : params_(params), changes_(changes), seed_(seed) {}

  // Runs the soak with the agent's factory; `progress` (if any) hears every
  // 10% of the changes. Both agents are released and destroyed before it
  // returns.
  Result run(QosSnmp::RootSmFactory& factory, std::ostream* progress = nullptr) const;

  // The behaviours that explain differences: name and where it is stated.
  static std::vector<std::pair<std::string, std::string>> explanations();

  // Sorts the differences between two MibDump texts, the fresh agent's
  // built over `document`.
  static void compare(const std::string& soaked, const std::string& fresh, const nlohmann::json& document,
                      Result& result);

 private:
  SwitchParams params_;
  std::size_t changes_;
  std::uint64_t seed_;
};

}  // namespace QosSnmpBench
