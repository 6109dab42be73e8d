// QosStatsTableIndex: the index of one row of the statistics table, the
// counters of one class of one policy map as one piece of hardware status
// reports them.
//
// Fields, in declaration and SNMP index order: the policy map's shortened
// name (uniqueId), its map type, the class map's shortened name, and the
// qualifier: the integer of the hardware-status key the row comes from, 0
// for control-plane statistics.
//
// Deliberately, the hash feeds the class-map name first, then the
// policy-map name, the map type and the qualifier, unlike
// PolicyMapActionTableIndex of the same shape, which hashes in declaration
// order. Do not "fix" either one.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(pmapName, type, cmapName, qualifier)".
//
//   const QosStatsTableIndex index(uniqueId(pmapName), type, uniqueId(cmapName), qualifier);
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class QosStatsTableIndex {
 public:
  QosStatsTableIndex(Snmp::String pmapName, Kel::S32 type, Snmp::String cmapName,
                     Kel::S32 qualifier) noexcept;

  const Snmp::String& pmapName() const noexcept { return pmapName_; }
  Kel::S32 type() const noexcept { return type_; }
  const Snmp::String& cmapName() const noexcept { return cmapName_; }
  Kel::S32 qualifier() const noexcept { return qualifier_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const QosStatsTableIndex& a, const QosStatsTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const QosStatsTableIndex& a, const QosStatsTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.pmapName_, b.pmapName_); std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    if (const auto c = compareOctetStringIndex(a.cmapName_, b.cmapName_); std::is_neq(c)) {
      return c;
    }
    return a.qualifier_ <=> b.qualifier_;
  }

 private:
  Snmp::String pmapName_;
  Kel::S32 type_;
  Snmp::String cmapName_;
  Kel::S32 qualifier_;
};

std::ostream& operator<<(std::ostream& out, const QosStatsTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::QosStatsTableIndex> {
  std::size_t operator()(const QosSnmp::QosStatsTableIndex& index) const noexcept { return index.hash(); }
};
