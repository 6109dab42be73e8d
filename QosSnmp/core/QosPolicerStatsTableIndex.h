// QosPolicerStatsTableIndex: the index of one row of the policer statistics
// table, the policer counters of one class of one policy map on one
// interface.
//
// Fields, in declaration and SNMP index order: the policy map's shortened
// name (uniqueId), its map type, the class map's shortened name, and the
// interface's ifIndex (0 when the interface has no ifIndex in the MIB
// model's interface map: the row is still written). The hash feeds the
// fields in declaration order.
//
// Ordering is SNMP index order: fields compared in declaration order, names
// length first (compareOctetStringIndex), integers by value. The printer
// writes "(pmapName, type, cmapName, ifIndex)".
//
//   const QosPolicerStatsTableIndex index(uniqueId(pmapName), type, uniqueId(cmapName), ifIndex);
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "QosSnmp/core/IndexHash.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class QosPolicerStatsTableIndex {
 public:
  QosPolicerStatsTableIndex(Snmp::String pmapName, Kel::S32 type, Snmp::String cmapName,
                            Kel::S32 ifIndex) noexcept;

  const Snmp::String& pmapName() const noexcept { return pmapName_; }
  Kel::S32 type() const noexcept { return type_; }
  const Snmp::String& cmapName() const noexcept { return cmapName_; }
  Kel::S32 ifIndex() const noexcept { return ifIndex_; }

  Kel::U32 hash() const noexcept;

  friend bool operator==(const QosPolicerStatsTableIndex& a,
                         const QosPolicerStatsTableIndex& b) noexcept = default;
  friend std::strong_ordering operator<=>(const QosPolicerStatsTableIndex& a,
                                          const QosPolicerStatsTableIndex& b) noexcept {
    if (const auto c = compareOctetStringIndex(a.pmapName_, b.pmapName_); std::is_neq(c)) {
      return c;
    }
    if (const auto c = a.type_ <=> b.type_; std::is_neq(c)) {
      return c;
    }
    if (const auto c = compareOctetStringIndex(a.cmapName_, b.cmapName_); std::is_neq(c)) {
      return c;
    }
    return a.ifIndex_ <=> b.ifIndex_;
  }

 private:
  Snmp::String pmapName_;
  Kel::S32 type_;
  Snmp::String cmapName_;
  Kel::S32 ifIndex_;
};

std::ostream& operator<<(std::ostream& out, const QosPolicerStatsTableIndex& index);

}  // namespace QosSnmp

template <>
struct std::hash<QosSnmp::QosPolicerStatsTableIndex> {
  std::size_t operator()(const QosSnmp::QosPolicerStatsTableIndex& index) const noexcept {
    return index.hash();
  }
};
