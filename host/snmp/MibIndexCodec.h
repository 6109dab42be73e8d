// MibIndexCodec<Index>: how each table of the MIB model writes its index
// record into an instance identifier (see OidIndexCodec), as QOS-SNMP-MIB
// declares the table's INDEX: the record's fields in declared order, names
// as length-prefixed strings of at most 30 bytes, integers as one
// sub-identifier within the declared range.
//
// Each table below names its field encoders and reads the fields off the
// record; the record is built back from the fields with its constructor,
// which takes them in the same order. The ECN counter table is keyed by the
// chip name alone.
//
//   Oid suffix;
//   MibIndexCodec<ClassMapTableIndex>::encode(index, suffix);
//   std::optional<ClassMapTableIndex> back = MibIndexCodec<ClassMapTableIndex>::decode(suffix);
#pragma once

#include <cstdint>
#include <optional>
#include <tuple>
#include <utility>

#include "QosSnmp/core/ClassMapMatchTableIndex.h"
#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/EcnQueueCounterTableIndex.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapClassTableIndex.h"
#include "QosSnmp/core/PolicyMapTableIndex.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosPolicerStatsTableIndex.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/ServicePolicyTableIndex.h"
#include "QosSnmp/core/UniqueId.h"
#include "host/snmp/OidIndexCodec.h"
#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmpHost {

namespace IndexField {

inline constexpr std::int64_t kMaxInteger32 = 2147483647;
inline constexpr std::int64_t kMaxUnsigned32 = 4294967295;

using Name = OctetStringIndexField<QosSnmp::kUniqueIdMaxLength>;
// QosMapType, as the record's enumeration or as a 32-bit integer.
using MapType = IntegerIndexField<Qos::MapType, Qos::mapControlPlane_, Qos::mapPbr_>;
using MapTypeNumber = IntegerIndexField<Kel::S32, Qos::mapControlPlane_, Qos::mapPbr_>;
using ActionType = IntegerIndexField<Kel::S32, Qos::actionSetShape_, Qos::actionCount_>;
using Direction = IntegerIndexField<Kel::S32, Qos::directionInvalid_, Qos::directionOutput_>;
using MatchIndex = IntegerIndexField<Kel::U32, 1, kMaxUnsigned32>;
using Prio = IntegerIndexField<Kel::U32, 0, kMaxUnsigned32>;
using Qualifier = IntegerIndexField<Kel::S32, 0, kMaxInteger32>;
using IfIndex = IntegerIndexField<Kel::S32, 1, kMaxInteger32>;
using IfIndexOrZero = IntegerIndexField<Kel::S32, 0, kMaxInteger32>;
using Queue = IntegerIndexField<Kel::U8, 0, 255>;

}  // namespace IndexField

// values(record) views the record's fields in place: the names' accessors
// return references into the record.
template <typename Index>
struct MibIndexFields;

template <>
struct MibIndexFields<QosSnmp::ClassMapTableIndex> {
  using Codec = OidIndexCodec<IndexField::Name, IndexField::MapType>;
  static Codec::Refs values(const QosSnmp::ClassMapTableIndex& i) { return {i.name(), i.type()}; }
};

template <>
struct MibIndexFields<QosSnmp::ClassMapMatchTableIndex> {
  using Codec = OidIndexCodec<IndexField::Name, IndexField::MapType, IndexField::MatchIndex>;
  static Codec::Refs values(const QosSnmp::ClassMapMatchTableIndex& i) {
    return {i.name(), i.type(), i.matchIndex()};
  }
};

template <>
struct MibIndexFields<QosSnmp::PolicyMapTableIndex> {
  using Codec = OidIndexCodec<IndexField::Name, IndexField::MapType>;
  static Codec::Refs values(const QosSnmp::PolicyMapTableIndex& i) { return {i.name(), i.type()}; }
};

template <>
struct MibIndexFields<QosSnmp::PolicyMapClassTableIndex> {
  using Codec = OidIndexCodec<IndexField::Name, IndexField::MapType, IndexField::Prio>;
  static Codec::Refs values(const QosSnmp::PolicyMapClassTableIndex& i) {
    return {i.name(), i.type(), i.prio()};
  }
};

template <>
struct MibIndexFields<QosSnmp::PolicyMapActionTableIndex> {
  using Codec =
      OidIndexCodec<IndexField::Name, IndexField::MapTypeNumber, IndexField::Name, IndexField::ActionType>;
  static Codec::Refs values(const QosSnmp::PolicyMapActionTableIndex& i) {
    return {i.pmapName(), i.type(), i.cmapName(), i.actionType()};
  }
};

template <>
struct MibIndexFields<QosSnmp::QosStatsTableIndex> {
  using Codec =
      OidIndexCodec<IndexField::Name, IndexField::MapTypeNumber, IndexField::Name, IndexField::Qualifier>;
  static Codec::Refs values(const QosSnmp::QosStatsTableIndex& i) {
    return {i.pmapName(), i.type(), i.cmapName(), i.qualifier()};
  }
};

template <>
struct MibIndexFields<QosSnmp::QosPolicerStatsTableIndex> {
  using Codec =
      OidIndexCodec<IndexField::Name, IndexField::MapTypeNumber, IndexField::Name, IndexField::IfIndexOrZero>;
  static Codec::Refs values(const QosSnmp::QosPolicerStatsTableIndex& i) {
    return {i.pmapName(), i.type(), i.cmapName(), i.ifIndex()};
  }
};

template <>
struct MibIndexFields<QosSnmp::ServicePolicyTableIndex> {
  using Codec = OidIndexCodec<IndexField::IfIndex, IndexField::Direction>;
  static Codec::Refs values(const QosSnmp::ServicePolicyTableIndex& i) {
    return {i.ifIndex(), i.direction()};
  }
};

template <>
struct MibIndexFields<Snmp::String> {
  using Codec = OidIndexCodec<IndexField::Name>;
  static Codec::Refs values(const Snmp::String& chipName) { return {chipName}; }
};

template <>
struct MibIndexFields<QosSnmp::EcnQueueCounterTableIndex> {
  using Codec = OidIndexCodec<IndexField::IfIndex, IndexField::Queue>;
  static Codec::Refs values(const QosSnmp::EcnQueueCounterTableIndex& i) { return {i.ifIndex(), i.queue()}; }
};

template <typename Index>
struct MibIndexCodec {
  using Fields = MibIndexFields<Index>;
  using Codec = typename Fields::Codec;

  struct Seek {
    Index index;
    SeekBound bound;
  };

  static bool encodable(const Index& index) { return Codec::encodable(Fields::values(index)); }
  // REQUIRES: encodable(index).
  static void encode(const Index& index, Oid& out) { Codec::encode(Fields::values(index), out); }
  // Asks for the cache lines of the index's names ahead of encoding it.
  static void prefetch(const Index& index) { Codec::prefetch(Fields::values(index)); }
  static std::optional<Index> decode(OidSpan suffix) {
    auto values = Codec::decode(suffix);
    if (!values) {
      return std::nullopt;
    }
    return std::make_from_tuple<Index>(std::move(*values));
  }
  static std::optional<Seek> seek(OidSpan suffix) {
    auto seek = Codec::seek(suffix);
    if (!seek) {
      return std::nullopt;
    }
    return Seek{std::make_from_tuple<Index>(std::move(seek->values)), seek->bound};
  }
};

}  // namespace QosSnmpHost
