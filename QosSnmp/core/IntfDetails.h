// IntfSnmp::IntfDetails: what SNMP needs to know of one interface, read from
// its Interface::IntfStatus.
//
// A small view, not an entity: it holds the status it was built over (which
// may be null, for an interface without status) and reads it on demand.
//
//   const Kel::S32 ifIndex = IntfSnmp::IntfDetails(dir->intfStatus(intf)).ifIndex();
#pragma once

#include <utility>

#include "QosSnmp/core/IntfStatus.h"
#include "kel/Ptr.h"
#include "kel/Types.h"

namespace IntfSnmp {

class IntfDetails {
 public:
  // What ifIndex() reads for a null status.
  static constexpr Kel::S32 kNoStatusIfIndex = -1;

  explicit IntfDetails(Kel::Ptr<const Interface::IntfStatus> status) : status_(std::move(status)) {}

  // The status's SNMP ifIndex (its negative values keep their meaning, see
  // Interface::IntfStatus), or kNoStatusIfIndex for a null status. Traces
  // "ifIndex: <n>" at level 8 on the agent's trace handle.
  Kel::S32 ifIndex() const;

 private:
  Kel::Ptr<const Interface::IntfStatus> status_;
};

}  // namespace IntfSnmp
