// An independent restatement of how QOS-SNMP-MIB names the instances of a
// MIB model, for the MIB view's tests and fuzzer: the index encodings (a
// name as its length and bytes, at most 30 of them; an integer as itself,
// within its declared range) and the sorted list of every instance the view
// must serve. Written from the MIB module, not from the view's code.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "QosSnmp/core/QosMib.h"
#include "host/snmp/MibView.h"

namespace QosSnmpHostTest {

using QosSnmp::QosMib;
using QosSnmpHost::MibColumnInfo;
using QosSnmpHost::MibView;
using QosSnmpHost::Oid;

constexpr std::uint32_t kClassMapTable = 1;
constexpr std::uint32_t kClassMapMatchTable = 2;
constexpr std::uint32_t kPolicyMapTable = 3;
constexpr std::uint32_t kPolicyMapClassTable = 4;
constexpr std::uint32_t kPolicyMapActionTable = 5;
constexpr std::uint32_t kQosStatsTable = 6;
constexpr std::uint32_t kQosPolicerStatsTable = 7;
constexpr std::uint32_t kServicePolicyTable = 8;
constexpr std::uint32_t kEcnCounterTable = 9;
constexpr std::uint32_t kEcnQueueCounterTable = 10;

constexpr std::uint32_t kAgentGroup = 11;

inline const Oid kObjects = {1, 3, 6, 1, 4, 1, 32473, 1, 1};

// The MIB's index encodings, restated independently of the view: a name
// as its length and bytes, an integer as itself; nullopt when the value is
// outside what the MIB declares.
inline std::optional<Oid> name(std::string_view s) {
  if (s.size() > 30) {
    return std::nullopt;
  }
  Oid out{static_cast<std::uint32_t>(s.size())};
  for (const char c : s) {
    out.push_back(static_cast<unsigned char>(c));
  }
  return out;
}
inline std::optional<Oid> number(std::int64_t v, std::int64_t min, std::int64_t max) {
  if (v < min || v > max) {
    return std::nullopt;
  }
  return Oid{static_cast<std::uint32_t>(v)};
}
inline std::optional<Oid> join(std::initializer_list<std::optional<Oid>> parts) {
  Oid out;
  for (const auto& part : parts) {
    if (!part) {
      return std::nullopt;
    }
    out.insert(out.end(), part->begin(), part->end());
  }
  return out;
}
constexpr std::int64_t kMax32 = 2147483647;
constexpr std::int64_t kMaxU32 = 4294967295;

inline Oid instance(std::uint32_t table, std::uint32_t column, const Oid& index) {
  Oid oid = kObjects;
  oid.insert(oid.end(), {table, 1, column});
  oid.insert(oid.end(), index.begin(), index.end());
  return oid;
}

// The OID of a name the MIB knows; throws std::invalid_argument for any
// other name.
inline Oid nameOid(std::string_view s) {
  std::optional<Oid> oid = name(s);
  if (!oid) {
    throw std::invalid_argument("not a name of the MIB: " + std::string(s));
  }
  return *oid;
}

inline Oid cat(std::initializer_list<Oid> parts) {
  Oid out;
  for (const Oid& part : parts) {
    out.insert(out.end(), part.begin(), part.end());
  }
  return out;
}

// Every instance the MIB model should show, in OID order, built from the
// model's rows with the encodings above and the columns the view declares.
inline std::vector<Oid> expectedInstances(const QosMib& mib) {
  std::vector<Oid> out;
  auto add = [&out](std::uint32_t table, const std::optional<Oid>& index) {
    if (!index) {
      return;
    }
    for (const MibColumnInfo& column : MibView::tables()[table - 1].columns) {
      if (column.accessible) {
        out.push_back(instance(table, column.subId, *index));
      }
    }
  };
  for (const auto& [i, row] : mib.classMapTable()) {
    add(kClassMapTable, join({name(i.name().view()), number(i.type(), 0, 2)}));
  }
  for (const auto& [i, row] : mib.classMapMatchTable()) {
    add(kClassMapMatchTable,
        join({name(i.name().view()), number(i.type(), 0, 2), number(i.matchIndex(), 1, kMaxU32)}));
  }
  for (const auto& [i, row] : mib.policyMapTable()) {
    add(kPolicyMapTable, join({name(i.name().view()), number(i.type(), 0, 2)}));
  }
  for (const auto& [i, row] : mib.policyMapClassTable()) {
    add(kPolicyMapClassTable,
        join({name(i.name().view()), number(i.type(), 0, 2), number(i.prio(), 0, kMaxU32)}));
  }
  for (const auto& [i, row] : mib.policyMapActionTable()) {
    add(kPolicyMapActionTable, join({name(i.pmapName().view()), number(i.type(), 0, 2),
                                     name(i.cmapName().view()), number(i.actionType(), 0, 7)}));
  }
  for (const auto& [i, row] : mib.qosStatsTable()) {
    add(kQosStatsTable, join({name(i.pmapName().view()), number(i.type(), 0, 2), name(i.cmapName().view()),
                              number(i.qualifier(), 0, kMax32)}));
  }
  for (const auto& [i, row] : mib.qosPolicerStatsTable()) {
    add(kQosPolicerStatsTable, join({name(i.pmapName().view()), number(i.type(), 0, 2),
                                     name(i.cmapName().view()), number(i.ifIndex(), 0, kMax32)}));
  }
  for (const auto& [i, row] : mib.servicePolicyTable()) {
    add(kServicePolicyTable, join({number(i.ifIndex(), 1, kMax32), number(i.direction(), 0, 2)}));
  }
  for (const auto& [chip, row] : mib.ecnCounterTable()) {
    add(kEcnCounterTable, name(chip.view()));
  }
  for (const auto& [i, row] : mib.ecnQueueCounterTable()) {
    add(kEcnQueueCounterTable, join({number(i.ifIndex(), 1, kMax32), number(i.queue(), 0, 255)}));
  }
  // The agent group's four scalars, after the tables.
  for (std::uint32_t scalar = 1; scalar <= 4; ++scalar) {
    out.push_back(cat({kObjects, {kAgentGroup, scalar, 0}}));
  }
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace QosSnmpHostTest
