// SwitchGenerator: writes the state document of a generated switch (see
// docs/state-format.md) and says how many rows the agent makes of it.
//
// The document is deterministic: the same parameters (seed included) give
// the same bytes. It is valid for the host's guard: the control-plane policy
// map exists, every class map is counted under one policy map only, and
// every class with hardware status has its counters.
//
//   SwitchGenerator generator(*SwitchParams::preset("large"));
//   std::ofstream out("large.json");
//   generator.writeState(out);
//   std::map<std::string, std::size_t> rows = generator.expectedRows();
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>

#include "bench/gen/SwitchLayout.h"

namespace QosSnmpBench {

class SwitchGenerator {
 public:
  explicit SwitchGenerator(const SwitchLayout& layout) : layout_(layout) {}

  void writeState(std::ostream& out) const;
  std::string stateText() const;

  // Rows per MIB table (the ten table names of MibDump::tableNames()) of an
  // agent built over the document, derived from the parameters and the
  // agent's documented behaviour.
  std::map<std::string, std::size_t> expectedRows() const;

 private:
  class Writer;
  void writeQosConfig(Writer& out) const;
  void writeQosStatus(Writer& out) const;
  void writeClassMaps(Writer& out) const;
  void writePolicyMaps(Writer& out) const;
  void writeCoppPolicyMap(Writer& out) const;
  void writeHwStatus(Writer& out) const;
  void writeSlices(Writer& out) const;
  // The watched slice's control-plane and (when the parameters say so) QoS
  // policy maps' hardware status.
  void writeWatchedSlicePolicyMaps(Writer& out) const;
  // The watched slice's static control-plane classes and ECN interfaces.
  void writeWatchedSliceStaticClassesAndQueues(Writer& out) const;
  void writeAclSlices(Writer& out) const;
  void writeInterfaces(Writer& out) const;
  void writeHwCounter(Writer& out) const;
  void writeEcnCounters(Writer& out) const;

  const SwitchLayout& layout_;
};

}  // namespace QosSnmpBench
