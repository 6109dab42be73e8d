#include "host/snmp/MibView.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/UniqueId.h"
#include "host/snmp/CachePrefetch.h"
#include "host/snmp/MibAgentStatus.h"
#include "host/snmp/MibIndexCodec.h"

namespace QosSnmpHost {

SnmpValue SnmpValue::integer32Is(std::int32_t value) {
  SnmpValue v;
  v.type = Type::integer32;
  v.integer = value;
  return v;
}

SnmpValue SnmpValue::unsigned32Is(std::uint32_t value) {
  SnmpValue v;
  v.type = Type::unsigned32;
  v.number = value;
  return v;
}

SnmpValue SnmpValue::counter64Is(std::uint64_t value) {
  SnmpValue v;
  v.type = Type::counter64;
  v.number = value;
  return v;
}

SnmpValue SnmpValue::counter32Is(std::uint32_t value) {
  SnmpValue v;
  v.type = Type::counter32;
  v.number = value;
  return v;
}

SnmpValue SnmpValue::timeTicksIs(std::uint32_t value) {
  SnmpValue v;
  v.type = Type::timeTicks;
  v.number = value;
  return v;
}

SnmpValue SnmpValue::octetStringIs(std::string value) {
  SnmpValue v;
  v.type = Type::octetString;
  v.octets = std::move(value);
  return v;
}

std::ostream& operator<<(std::ostream& out, const SnmpValue& value) {
  switch (value.type) {
    case SnmpValue::Type::integer32:
      return out << value.integer;
    case SnmpValue::Type::unsigned32:
    case SnmpValue::Type::counter64:
    case SnmpValue::Type::counter32:
    case SnmpValue::Type::timeTicks:
      return out << value.number;
    case SnmpValue::Type::octetString:
      break;
  }
  out << '"';
  for (const char c : value.octets) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out << '\\' << c;
    } else if (byte < 0x20 || byte >= 0x7F) {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02x", byte);
      out << hex;
    } else {
      out << c;
    }
  }
  return out << '"';
}

namespace {

using QosSnmp::QosMib;
using Type = SnmpValue::Type;

constexpr std::array<std::uint32_t, 8> kModuleOid = {1, 3, 6, 1, 4, 1, 32473, 1};
constexpr std::array<std::uint32_t, 9> kObjectsOid = {1, 3, 6, 1, 4, 1, 32473, 1, 1};
constexpr std::array<std::uint32_t, 9> kAgentObjectId = {1, 3, 6, 1, 4, 1, 32473, 1, 3};
// Under a table: <table>.1 is the entry, <table>.1.<column> a column.
constexpr std::uint32_t kEntrySubId = 1;

// Writers of the values read from the entities a row references, into a
// value whose text storage is reused. A null entity reads as 0 or as the
// empty string. Every field is written, so that a reused value compares
// equal to a fresh one with the same answer.
void numberIs(SnmpValue& into, Type type, std::int32_t integer, std::uint64_t number) {
  into.type = type;
  into.integer = integer;
  into.number = number;
  into.octets.clear();
}
void integer32(SnmpValue& into, std::int32_t value) { numberIs(into, Type::integer32, value, 0); }
template <typename E>
void enumValue(SnmpValue& into, E value) {
  integer32(into, static_cast<std::int32_t>(value));
}
void counter(SnmpValue& into, std::uint64_t value) { numberIs(into, Type::counter64, 0, value); }
void gauge64(SnmpValue& into, std::uint64_t value) { numberIs(into, Type::counter64, 0, value); }
void unsigned32(SnmpValue& into, std::uint64_t value) {
  numberIs(into, Type::unsigned32, 0, static_cast<std::uint32_t>(value));
}
void timeTicks(SnmpValue& into, std::uint32_t value) { numberIs(into, Type::timeTicks, 0, value); }
void counter32(SnmpValue& into, std::uint32_t value) { numberIs(into, Type::counter32, 0, value); }
void text(SnmpValue& into, std::string_view value) {
  into.type = Type::octetString;
  into.integer = 0;
  into.number = 0;
  into.octets.assign(value);
}
// TruthValue: true(1), false(2).
void truth(SnmpValue& into, bool value) { integer32(into, value ? 1 : 2); }

template <typename P, typename F>
auto readOr(const P& entity, F&& read) -> decltype(read(*entity)) {
  using R = decltype(read(*entity));
  return entity ? read(*entity) : R{};
}

// Names served in full are DisplayStrings: at most 255 bytes.
constexpr std::size_t kMaxFullName = 255;

void fullName(SnmpValue& into, std::string_view name) {
  text(into, name.substr(0, std::min(name.size(), kMaxFullName)));
}

}  // namespace

// One lookup of an interface's entity in another entity, and its answer.
template <typename Owner, typename Value>
struct InterfaceLookup {
  const Owner* owner = nullptr;
  const char* name = nullptr;  // the interface name's buffer
  Value value;
};

// What the view derives from the model and keeps between queries.
struct MibView::State {
  State(const QosMib& model, const MibAgentStatus* given) : mib(model), status(given ? given : &noStatus) {}

  // The name of the interface with this ifIndex, or empty; valid until the
  // next call.
  std::string_view intfName(Kel::S32 ifIndex) {
    auto lookUp = [&]() -> std::optional<std::string_view> {
      const auto it = intfByIfIndex.find(ifIndex);
      if (it != intfByIfIndex.end() && mib.hasIntfIdToifIndex(it->second) &&
          mib.intfIdToifIndex(it->second) == ifIndex) {
        return it->second.name().view();
      }
      return std::nullopt;
    };
    if (auto name = lookUp()) {
      return *name;
    }
    // Rebuilt when the model may have changed since: always without a
    // status, after a load or applied change with one.
    if (status == &noStatus || !intfNamesBuilt || intfNamesGeneration != status->generation()) {
      intfByIfIndex.clear();
      for (const auto& [intf, index] : mib.intfIdToifIndex()) {
        intfByIfIndex.try_emplace(index, intf);
      }
      intfNamesBuilt = true;
      intfNamesGeneration = status->generation();
      if (auto name = lookUp()) {
        return *name;
      }
    }
    return {};
  }

  // What `owner` answers for an interface (lookUp(*owner)), or null when
  // there is no owner. While the model is held unchanged (ModelUnchanged),
  // the last answer is reused for the same owner and interface: the rows of
  // an interface's queues follow one another.
  template <typename Owner, typename Value, typename LookUp>
  Value reused(InterfaceLookup<Owner, Value>& last, const Owner* owner, const Pellix::IntfId& intf,
               LookUp&& lookUp) {
    if (owner == nullptr) {
      return Value{};
    }
    if (unchangedHolds == 0) {
      return lookUp(*owner);
    }
    // Interface ids sharing one name buffer are equal.
    const char* name = intf.name().data();
    if (last.owner != owner || last.name != name) {
      last = {owner, name, lookUp(*owner)};
    }
    return last.value;
  }
  void forgetLookups() {
    queueCounter = {};
    intfCounterStatus = {};
  }

  const QosMib& mib;
  MibAgentStatus noStatus;
  const MibAgentStatus* status;
  int unchangedHolds = 0;
  InterfaceLookup<Qos::EcnCounterTable, Kel::Ptr<const Qos::EcnIntfQueueCounter>> queueCounter;
  InterfaceLookup<Qos::SliceHwStatus, Kel::Ptr<const Qos::EcnIntfCounterStatus>> intfCounterStatus;
  std::unordered_map<Kel::S32, Pellix::IntfId> intfByIfIndex;
  bool intfNamesBuilt = false;
  std::uint64_t intfNamesGeneration = 0;
};

namespace {

// What a column's reader may consult besides its row.
struct Context {
  const QosMib& mib;
  MibView::State& state;
};

// The full name of the policy map or class map indexed by a shortened name,
// looked up in the policy-map or class-map table. Absent there, a name
// shorter than the shortened names' length was never shortened and is its
// own full name; a longer one is unknown (empty).
// The views are into the model: valid while it does not change.
std::string_view unshortened(const Snmp::String& name) {
  return name.view().size() < QosSnmp::kUniqueIdMaxLength ? name.view() : std::string_view();
}
std::string_view pmapFullName(const QosMib& mib, const Snmp::String& name, Kel::S32 type) {
  const auto* row =
      mib.policyMapTable().find(QosSnmp::PolicyMapTableIndex(name, static_cast<Qos::MapType>(type)));
  return row != nullptr && row->policyMapStatus ? row->policyMapStatus->name().view() : unshortened(name);
}
std::string_view cmapFullName(const QosMib& mib, const Snmp::String& name, Kel::S32 type) {
  const auto* row =
      mib.classMapTable().find(QosSnmp::ClassMapTableIndex(name, static_cast<Qos::MapType>(type)));
  return row != nullptr && row->classMapStatus ? row->classMapStatus->name().view() : unshortened(name);
}

// One table per struct: its rows in the MIB model, its columns as QOS-SNMP-MIB
// declares them (index columns first, not accessible), and read(), the value
// of an accessible column of one row.

struct ClassMapTable {
  using Index = QosSnmp::ClassMapTableIndex;
  using Row = QosSnmp::ClassMapTableRow;
  static constexpr std::string_view kName = "qosClassMapTable";
  static constexpr std::string_view kEntryName = "qosClassMapEntry";
  static constexpr std::uint32_t kSubId = 1;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosClassMapName", 1, Type::octetString, false},
      {"qosClassMapType", 2, Type::integer32, false},
      {"qosClassMapCpType", 3, Type::integer32, true},
      {"qosClassMapCpStaticType", 4, Type::integer32, true},
      {"qosClassMapMatchCondition", 5, Type::integer32, true},
      {"qosClassMapMatchRules", 6, Type::unsigned32, true},
      {"qosClassMapFullName", 7, Type::octetString, true},
  };
  static const QosMib::ClassMapTableRows& rows(const QosMib& mib) { return mib.classMapTable(); }
  static void read(std::uint32_t column, const Index&, const Row& row, Context&, SnmpValue& into) {
    const auto& cmap = row.classMapStatus;
    switch (column) {
      case 3:
        return enumValue(into, readOr(cmap, [](const auto& c) { return c.cpType(); }));
      case 4:
        return enumValue(into, readOr(cmap, [](const auto& c) { return c.cpStaticType(); }));
      case 5:
        return enumValue(into, readOr(cmap, [](const auto& c) { return c.matchCondition(); }));
      case 7:
        return fullName(into, readOr(cmap, [](const auto& c) { return c.name().view(); }));
      default:
        return unsigned32(into, readOr(cmap, [](const auto& c) { return c.match().size(); }));
    }
  }
};

struct ClassMapMatchTable {
  using Index = QosSnmp::ClassMapMatchTableIndex;
  using Row = QosSnmp::ClassMapMatchTableRow;
  static constexpr std::string_view kName = "qosClassMapMatchTable";
  static constexpr std::string_view kEntryName = "qosClassMapMatchEntry";
  static constexpr std::uint32_t kSubId = 2;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosClassMapMatchCmapName", 1, Type::octetString, false},
      {"qosClassMapMatchCmapType", 2, Type::integer32, false},
      {"qosClassMapMatchIndex", 3, Type::unsigned32, false},
      {"qosClassMapMatchOption", 4, Type::integer32, true},
      {"qosClassMapMatchValue", 5, Type::octetString, true},
      {"qosClassMapMatchCmapFullName", 6, Type::octetString, true},
  };
  static const QosMib::ClassMapMatchTableRows& rows(const QosMib& mib) { return mib.classMapMatchTable(); }
  static void read(std::uint32_t column, const Index&, const Row& row, Context&, SnmpValue& into) {
    const auto& match = row.classMapMatch;
    switch (column) {
      case 4:
        return enumValue(into, readOr(match, [](const auto& m) { return m.option(); }));
      case 6:
        return fullName(into, readOr(row.classMapStatus, [](const auto& c) { return c.name().view(); }));
      default:
        return text(into, readOr(match, [](const auto& m) { return m.value().view(); }));
    }
  }
};

struct PolicyMapTable {
  using Index = QosSnmp::PolicyMapTableIndex;
  using Row = QosSnmp::PolicyMapTableRow;
  static constexpr std::string_view kName = "qosPolicyMapTable";
  static constexpr std::string_view kEntryName = "qosPolicyMapEntry";
  static constexpr std::uint32_t kSubId = 3;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosPolicyMapName", 1, Type::octetString, false},
      {"qosPolicyMapType", 2, Type::integer32, false},
      {"qosPolicyMapClasses", 3, Type::unsigned32, true},
      {"qosPolicyMapDefaultClass", 4, Type::octetString, true},
      {"qosPolicyMapFullName", 5, Type::octetString, true},
  };
  static const QosMib::PolicyMapTableRows& rows(const QosMib& mib) { return mib.policyMapTable(); }
  static void read(std::uint32_t column, const Index&, const Row& row, Context&, SnmpValue& into) {
    const auto& pmap = row.policyMapStatus;
    switch (column) {
      case 3:
        return unsigned32(into, readOr(pmap, [](const auto& p) { return p.classPrio().size(); }));
      case 5:
        return fullName(into, readOr(pmap, [](const auto& p) { return p.name().view(); }));
      default:
        return text(into, readOr(pmap, [](const auto& p) {
                      const auto classDefault = p.classDefault();
                      return classDefault ? QosSnmp::uniqueId(classDefault->name()).stringValue()
                                          : std::string();
                    }));
    }
  }
};

struct PolicyMapClassTable {
  using Index = QosSnmp::PolicyMapClassTableIndex;
  using Row = QosSnmp::PolicyMapClassTableRow;
  static constexpr std::string_view kName = "qosPolicyMapClassTable";
  static constexpr std::string_view kEntryName = "qosPolicyMapClassEntry";
  static constexpr std::uint32_t kSubId = 4;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosPolicyMapClassPmapName", 1, Type::octetString, false},
      {"qosPolicyMapClassPmapType", 2, Type::integer32, false},
      {"qosPolicyMapClassPrio", 3, Type::unsigned32, false},
      {"qosPolicyMapClassCmapName", 4, Type::octetString, true},
      {"qosPolicyMapClassPmapFullName", 5, Type::octetString, true},
      {"qosPolicyMapClassCmapFullName", 6, Type::octetString, true},
  };
  static const QosMib::PolicyMapClassTableRows& rows(const QosMib& mib) { return mib.policyMapClassTable(); }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    switch (column) {
      case 4:
        return text(into, row.cmapName.view());
      case 5:
        return fullName(into, readOr(row.policyMapStatus, [](const auto& p) { return p.name().view(); }));
      default: {
        const auto prio = row.policyMapStatus ? row.policyMapStatus->classPrio(index.prio()) : nullptr;
        if (prio) {
          return fullName(into, prio->cmapName().view());
        }
        return fullName(into, cmapFullName(ctx.mib, row.cmapName, static_cast<Kel::S32>(index.type())));
      }
    }
  }
};

struct PolicyMapActionTable {
  using Index = QosSnmp::PolicyMapActionTableIndex;
  using Row = QosSnmp::PolicyMapActionTableRow;
  static constexpr std::string_view kName = "qosPolicyMapActionTable";
  static constexpr std::string_view kEntryName = "qosPolicyMapActionEntry";
  static constexpr std::uint32_t kSubId = 5;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosPolicyMapActionPmapName", 1, Type::octetString, false},
      {"qosPolicyMapActionPmapType", 2, Type::integer32, false},
      {"qosPolicyMapActionCmapName", 3, Type::octetString, false},
      {"qosPolicyMapActionType", 4, Type::integer32, false},
      {"qosPolicyMapActionValue", 5, Type::unsigned32, true},
      {"qosPolicyMapActionRate", 6, Type::counter64, true},
      {"qosPolicyMapActionRateUnit", 7, Type::integer32, true},
      {"qosPolicyMapActionBurstSize", 8, Type::counter64, true},
      {"qosPolicyMapActionPeakRate", 9, Type::counter64, true},
      {"qosPolicyMapActionPeakBurstSize", 10, Type::counter64, true},
      {"qosPolicyMapActionHwStatus", 11, Type::integer32, true},
      {"qosPolicyMapActionHwShapeRate", 12, Type::counter64, true},
      {"qosPolicyMapActionHwBandwidth", 13, Type::counter64, true},
      {"qosPolicyMapActionPmapFullName", 14, Type::octetString, true},
      {"qosPolicyMapActionCmapFullName", 15, Type::octetString, true},
  };
  static const QosMib::PolicyMapActionTableRows& rows(const QosMib& mib) {
    return mib.policyMapActionTable();
  }
  // The entity read() reads for the column, asked for ahead of a walk's
  // step to this row.
  static void prefetch(std::uint32_t column, const Row& row) {
    if (column >= 11 && column <= 13) {
      prefetchObject(row.classMapHwStatus.get());
    } else if (column == 15) {
      prefetchObject(row.classAction.get());
    } else if (column != 14) {
      prefetchObject(row.action.get());
    }
  }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    const auto& action = row.action;
    const auto& hw = row.classMapHwStatus;
    switch (column) {
      case 5:
        return unsigned32(into, readOr(action, [](const auto& a) { return a.value(); }));
      case 6:
        return gauge64(into, readOr(action, [](const auto& a) { return a.rate(); }));
      case 7:
        return enumValue(into, readOr(action, [](const auto& a) { return a.rateUnit(); }));
      case 8:
        return gauge64(into, readOr(action, [](const auto& a) { return a.burstSize(); }));
      case 9:
        return gauge64(into, readOr(action, [](const auto& a) { return a.peakRate(); }));
      case 10:
        return gauge64(into, readOr(action, [](const auto& a) { return a.peakBurstSize(); }));
      case 11:
        return enumValue(into, readOr(hw, [](const auto& h) { return h.programmingStatus(); }));
      case 12:
        return gauge64(into, readOr(hw, [](const auto& h) { return h.shapeRate(); }));
      case 14:
        return fullName(into, pmapFullName(ctx.mib, index.pmapName(), index.type()));
      case 15:
        return fullName(into, row.classAction ? row.classAction->name().view()
                                              : cmapFullName(ctx.mib, index.cmapName(), index.type()));
      default:
        return gauge64(into, readOr(hw, [](const auto& h) { return h.bandwidth(); }));
    }
  }
};

struct QosStatsTable {
  using Index = QosSnmp::QosStatsTableIndex;
  using Row = QosSnmp::QosStatsTableRow;
  static constexpr std::string_view kName = "qosStatsTable";
  static constexpr std::string_view kEntryName = "qosStatsEntry";
  static constexpr std::uint32_t kSubId = 6;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosStatsPmapName", 1, Type::octetString, false},
      {"qosStatsPmapType", 2, Type::integer32, false},
      {"qosStatsCmapName", 3, Type::octetString, false},
      {"qosStatsQualifier", 4, Type::integer32, false},
      {"qosStatsPackets", 5, Type::counter64, true},
      {"qosStatsBytes", 6, Type::counter64, true},
      {"qosStatsDroppedPackets", 7, Type::counter64, true},
      {"qosStatsDroppedBytes", 8, Type::counter64, true},
      {"qosStatsHwStatus", 9, Type::integer32, true},
      {"qosStatsPmapFullName", 10, Type::octetString, true},
      {"qosStatsCmapFullName", 11, Type::octetString, true},
      {"qosStatsDiscontinuityTime", 12, Type::timeTicks, true},
  };
  static const QosMib::QosStatsTableRows& rows(const QosMib& mib) { return mib.qosStatsTable(); }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    const auto& c = row.counter;
    switch (column) {
      case 5:
        return counter(into, readOr(c, [](const auto& k) { return k.packets(); }));
      case 6:
        return counter(into, readOr(c, [](const auto& k) { return k.bytes(); }));
      case 7:
        return counter(into, readOr(c, [](const auto& k) { return k.droppedPackets(); }));
      case 8:
        return counter(into, readOr(c, [](const auto& k) { return k.droppedBytes(); }));
      case 10:
        return fullName(into, pmapFullName(ctx.mib, index.pmapName(), index.type()));
      case 11:
        return fullName(into, c ? c->name().view() : cmapFullName(ctx.mib, index.cmapName(), index.type()));
      case 12:
        return timeTicks(into, row.counterStamp.at);
      default:
        return enumValue(into,
                         readOr(row.classMapHwStatus, [](const auto& h) { return h.programmingStatus(); }));
    }
  }
};

struct QosPolicerStatsTable {
  using Index = QosSnmp::QosPolicerStatsTableIndex;
  using Row = QosSnmp::QosPolicerStatsTableRow;
  static constexpr std::string_view kName = "qosPolicerStatsTable";
  static constexpr std::string_view kEntryName = "qosPolicerStatsEntry";
  static constexpr std::uint32_t kSubId = 7;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosPolicerStatsPmapName", 1, Type::octetString, false},
      {"qosPolicerStatsPmapType", 2, Type::integer32, false},
      {"qosPolicerStatsCmapName", 3, Type::octetString, false},
      {"qosPolicerStatsIfIndex", 4, Type::integer32, false},
      {"qosPolicerStatsConformedPackets", 5, Type::counter64, true},
      {"qosPolicerStatsConformedBytes", 6, Type::counter64, true},
      {"qosPolicerStatsExceededPackets", 7, Type::counter64, true},
      {"qosPolicerStatsExceededBytes", 8, Type::counter64, true},
      {"qosPolicerStatsViolatedPackets", 9, Type::counter64, true},
      {"qosPolicerStatsViolatedBytes", 10, Type::counter64, true},
      {"qosPolicerStatsPmapFullName", 11, Type::octetString, true},
      {"qosPolicerStatsCmapFullName", 12, Type::octetString, true},
      {"qosPolicerStatsIntfName", 13, Type::octetString, true},
      {"qosPolicerStatsDiscontinuityTime", 14, Type::timeTicks, true},
  };
  static const QosMib::QosPolicerStatsTableRows& rows(const QosMib& mib) {
    return mib.qosPolicerStatsTable();
  }
  static void prefetch(std::uint32_t /*column*/, const Row& row) {
    prefetchObject(row.policerHwStatus.get());
  }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    const auto& p = row.policerHwStatus;
    switch (column) {
      case 5:
        return counter(into, readOr(p, [](const auto& s) { return s.conformedPackets(); }));
      case 6:
        return counter(into, readOr(p, [](const auto& s) { return s.conformedBytes(); }));
      case 7:
        return counter(into, readOr(p, [](const auto& s) { return s.exceededPackets(); }));
      case 8:
        return counter(into, readOr(p, [](const auto& s) { return s.exceededBytes(); }));
      case 9:
        return counter(into, readOr(p, [](const auto& s) { return s.violatedPackets(); }));
      case 11:
        return fullName(into, pmapFullName(ctx.mib, index.pmapName(), index.type()));
      case 12:
        return fullName(into, cmapFullName(ctx.mib, index.cmapName(), index.type()));
      case 13:
        return text(into, p ? p->intfName().view() : std::string_view(ctx.state.intfName(index.ifIndex())));
      case 14:
        return timeTicks(into, row.counterStamp.at);
      default:
        return counter(into, readOr(p, [](const auto& s) { return s.violatedBytes(); }));
    }
  }
};

struct ServicePolicyTable {
  using Index = QosSnmp::ServicePolicyTableIndex;
  using Row = QosSnmp::ServicePolicyTableRow;
  static constexpr std::string_view kName = "qosServicePolicyTable";
  static constexpr std::string_view kEntryName = "qosServicePolicyEntry";
  static constexpr std::uint32_t kSubId = 8;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosServicePolicyIfIndex", 1, Type::integer32, false},
      {"qosServicePolicyDirection", 2, Type::integer32, false},
      {"qosServicePolicyPmapName", 3, Type::octetString, true},
      {"qosServicePolicyPmapType", 4, Type::integer32, true},
      {"qosServicePolicyPmapFullName", 5, Type::octetString, true},
      {"qosServicePolicyIntfName", 6, Type::octetString, true},
  };
  static const QosMib::ServicePolicyTableRows& rows(const QosMib& mib) { return mib.servicePolicyTable(); }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    switch (column) {
      case 3:
        return text(into, row.pmapName.view());
      case 5:
        return fullName(into, row.servicePolicyKey.pmapName().view());
      case 6:
        return text(into, ctx.state.intfName(index.ifIndex()));
      default:
        return enumValue(into, row.servicePolicyKey.type());
    }
  }
};

struct EcnCounterTable {
  using Index = Snmp::String;
  using Row = QosSnmp::EcnCounterTableRow;
  static constexpr std::string_view kName = "qosEcnCounterTable";
  static constexpr std::string_view kEntryName = "qosEcnCounterEntry";
  static constexpr std::uint32_t kSubId = 9;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosEcnCounterChipName", 1, Type::octetString, false},
      {"qosEcnCounterMarkedPackets", 2, Type::counter64, true},
      {"qosEcnCounterMarkedBytes", 3, Type::counter64, true},
      {"qosEcnCounterDroppedPackets", 4, Type::counter64, true},
      {"qosEcnCounterChipFullName", 5, Type::octetString, true},
      {"qosEcnCounterDiscontinuityTime", 6, Type::timeTicks, true},
  };
  static const QosMib::EcnCounterTableRows& rows(const QosMib& mib) { return mib.ecnCounterTable(); }
  static void read(std::uint32_t column, const Index&, const Row& row, Context&, SnmpValue& into) {
    const auto& chip = row.chipCounter;
    switch (column) {
      case 2:
        return counter(into, readOr(chip, [](const auto& c) { return c.ecnMarkedPackets(); }));
      case 3:
        return counter(into, readOr(chip, [](const auto& c) { return c.ecnMarkedBytes(); }));
      case 5:
        return fullName(into, readOr(chip, [](const auto& c) { return c.name().view(); }));
      case 6:
        return timeTicks(into, row.counterStamp.at);
      default:
        return counter(into, readOr(chip, [](const auto& c) { return c.ecnDroppedPackets(); }));
    }
  }
};

struct EcnQueueCounterTable {
  using Index = QosSnmp::EcnQueueCounterTableIndex;
  using Row = QosSnmp::EcnQueueCounterTableRow;
  static constexpr std::string_view kName = "qosEcnQueueCounterTable";
  static constexpr std::string_view kEntryName = "qosEcnQueueCounterEntry";
  static constexpr std::uint32_t kSubId = 10;
  static constexpr MibColumnInfo kColumns[] = {
      {"qosEcnQueueCounterIfIndex", 1, Type::integer32, false},
      {"qosEcnQueueCounterQueue", 2, Type::unsigned32, false},
      {"qosEcnQueueCounterIntfName", 3, Type::octetString, true},
      {"qosEcnQueueCounterMarkedPackets", 4, Type::counter64, true},
      {"qosEcnQueueCounterMarkedBytes", 5, Type::counter64, true},
      {"qosEcnQueueCounterHwStatus", 6, Type::integer32, true},
      {"qosEcnQueueCounterEnabled", 7, Type::integer32, true},
      {"qosEcnQueueCounterDiscontinuityTime", 8, Type::timeTicks, true},
  };
  static const QosMib::EcnQueueCounterTableRows& rows(const QosMib& mib) {
    return mib.ecnQueueCounterTable();
  }
  static void read(std::uint32_t column, const Index& index, const Row& row, Context& ctx, SnmpValue& into) {
    // Looked up only for the columns that read it: a walk reads every column.
    const auto queueCounter = [&] {
      return ctx.state.reused(ctx.state.queueCounter, row.ecnCounterTable.get(), row.intfId,
                              [&](const auto& table) { return table.intfQueueCounter(row.intfId); });
    };
    switch (column) {
      case 3:
        return text(into, row.intfId.name().view());
      case 4:
        return counter(
            into, readOr(queueCounter(), [&](const auto& q) { return q.queueMarkedPackets(index.queue()); }));
      case 5:
        return counter(
            into, readOr(queueCounter(), [&](const auto& q) { return q.queueMarkedBytes(index.queue()); }));
      case 6: {
        const auto intfStatus =
            ctx.state.reused(ctx.state.intfCounterStatus, row.sliceHwStatus.get(), row.intfId,
                             [&](const auto& slice) { return slice.ecnIntfCounterHwStatus(row.intfId); });
        return enumValue(into, readOr(intfStatus, [](const auto& s) { return s.programmingStatus(); }));
      }
      case 8:
        return timeTicks(into, row.counterStamp.at);
      default:
        return truth(into, row.ecnQueueCountersFlag);
    }
  }
};

// Room for any row suffix an OID can carry (128 sub-identifiers at most).
constexpr std::size_t kMaxSuffixLength = 128;

}  // namespace

// Where a walk stands in one table, kept between GETNEXTs: the row next()
// answered last (its suffix is the cursor's), and the table's rows in order
// as walks met them. A GETNEXT for exactly the kept suffix, the next step of
// every walk, needs no decoding of the OID and no comparison of indexes: it
// steps to the row after the kept one while no row has been deleted from
// the table since (rows added meanwhile are found by the step), and
// otherwise seeks the suffix like any other OID.
//
// The order: a walk goes through a table once per column, so the first
// column's pass records an iterator per row, and the following columns step
// through that array instead of through the tree, and touch the next row
// ahead of time (a prefetch). The array is in use only while it holds every
// row of the table: recorded in one pass from the first row without a
// deletion and not outdated since (the table's size and deletion count are
// those it was recorded with). Otherwise the steps go through the tree and
// the next pass from the first row records it anew. It holds at most one
// iterator per row of the table.
template <typename Rows>
struct TableWalk {
  using Iterator = typename Rows::const_iterator;
  static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

  // A row and its place in `order` (kUnknown when not known).
  struct Place {
    Iterator row;
    std::size_t position;
  };

  // The table's first row, where a pass starts: recording the order then
  // begins unless the recorded one is in use.
  Place first(const Rows& rows) {
    if (!ordered(rows)) {
      order.clear();
      orderComplete = rows.empty();
      orderErasures = rows.erasures();
      if (!rows.empty()) {
        order.push_back(rows.begin());
      }
      // Places in the order it replaces mean nothing in this one.
      kept.position = kUnknown;
    }
    return {rows.begin(), 0};
  }

  // The row after `from`.
  Place after(const Rows& rows, const Place& from) {
    if (from.position == kUnknown) {
      return {std::next(from.row), kUnknown};
    }
    const std::size_t position = from.position + 1;
    if (ordered(rows)) {
      return {position < order.size() ? order[position] : rows.end(), position};
    }
    const auto row = std::next(from.row);
    if (!orderComplete && orderErasures == rows.erasures() && position == order.size()) {
      if (row != rows.end()) {
        order.push_back(row);
      } else {
        // Rows added behind the pass are missing: then it is not complete.
        orderComplete = order.size() == rows.size();
      }
    }
    return {row, position};
  }

  // Brings the next rows into the cache while the answer goes out, in two
  // stages: the row two ahead, and what the row after `at` points to
  // (touchRow(row) prefetches that; the row itself came in one step ago).
  template <typename TouchRow>
  void prefetchAfter(const Rows& rows, const Place& at, TouchRow&& touchRow) const {
    if (at.position == kUnknown || !ordered(rows)) {
      return;
    }
    if (at.position + 2 < order.size()) {
      prefetchLine(&*order[at.position + 2]);
    }
    if (at.position + 1 < order.size()) {
      touchRow(*order[at.position + 1]);
    }
  }

  bool ordered(const Rows& rows) const {
    return orderComplete && order.size() == rows.size() && orderErasures == rows.erasures();
  }

  const Rows* rows = nullptr;  // null: no row kept
  Place kept{};
  std::size_t keptErasures = 0;  // the table's deletions when `kept` was answered
  std::vector<Iterator> order;
  bool orderComplete = false;
  std::size_t orderErasures = 0;
};

struct MibWalkCursor {
  std::uint32_t table = 0;  // the table of the suffix; 0: none
  Oid suffix;
  std::tuple<TableWalk<QosMib::ClassMapTableRows>, TableWalk<QosMib::ClassMapMatchTableRows>,
             TableWalk<QosMib::PolicyMapTableRows>, TableWalk<QosMib::PolicyMapClassTableRows>,
             TableWalk<QosMib::PolicyMapActionTableRows>, TableWalk<QosMib::QosStatsTableRows>,
             TableWalk<QosMib::QosPolicerStatsTableRows>, TableWalk<QosMib::ServicePolicyTableRows>,
             TableWalk<QosMib::EcnCounterTableRows>, TableWalk<QosMib::EcnQueueCounterTableRows>>
      walks;

  template <typename Rows>
  TableWalk<Rows>& walkIn() {
    return std::get<TableWalk<Rows>>(walks);
  }
};

namespace {

// The operations of one table, written once for every table.
template <typename Table>
struct TableOps {
  using Codec = MibIndexCodec<typename Table::Index>;

  // The column's value in the row at `suffix` into `into`; false when
  // there is no such row.
  static bool get(Context& ctx, std::uint32_t column, OidSpan suffix, SnmpValue& into) {
    const auto index = Codec::decode(suffix);
    if (!index) {
      return false;
    }
    const auto* row = Table::rows(ctx.mib).find(*index);
    if (row == nullptr) {
      return false;
    }
    Table::read(column, *index, *row, ctx, into);
    return true;
  }

  // What reading the column in `row` will touch: the index's names, and
  // the entity the column reads when the table names it.
  template <typename Entry>
  static void prefetchRow([[maybe_unused]] std::uint32_t column, const Entry& row) {
    Codec::prefetch(row.first);
    if constexpr (requires { Table::prefetch(column, row.second); }) {
      Table::prefetch(column, row.second);
    }
  }

  // The column's value in the first row whose suffix is strictly greater
  // than `after`, or in the column's first row when `after` is absent, into
  // `into`; that row is left in `cursor` (its suffix) and in the table's
  // walk. False when there is no such row.
  static bool next(Context& ctx, std::uint32_t column, std::optional<OidSpan> after, MibWalkCursor& cursor,
                   SnmpValue& into) {
    const auto& rows = Table::rows(ctx.mib);
    using Rows = std::remove_cvref_t<decltype(rows)>;
    using Walk = TableWalk<Rows>;
    Walk& walk = cursor.walkIn<Rows>();
    typename Walk::Place place{};
    if (!after) {
      place = walk.first(rows);
    } else if (cursor.table == Table::kSubId && walk.rows == &rows && walk.keptErasures == rows.erasures() &&
               std::ranges::equal(*after, cursor.suffix)) {
      place = walk.after(rows, walk.kept);
    } else {
      const auto seek = Codec::seek(*after);
      if (!seek) {
        return false;
      }
      place = {seek->bound == SeekBound::after ? rows.upperBound(seek->index) : rows.lowerBound(seek->index),
               Walk::kUnknown};
    }
    // Rows the MIB cannot name are not served.
    while (place.row != rows.end() && !Codec::encodable(place.row->first)) {
      place = walk.after(rows, place);
    }
    if (place.row == rows.end()) {
      return false;
    }
    // The suffix goes into the cursor's storage, reserved once.
    cursor.table = Table::kSubId;
    cursor.suffix.clear();
    Codec::encode(place.row->first, cursor.suffix);
    walk.rows = &rows;
    walk.kept = place;
    walk.keptErasures = rows.erasures();
    walk.prefetchAfter(rows, place, [column](const auto& row) { prefetchRow(column, row); });
    Table::read(column, place.row->first, place.row->second, ctx, into);
    return true;
  }
};

struct TableEntry {
  MibTableInfo info;
  bool (*get)(Context&, std::uint32_t, OidSpan, SnmpValue&);
  bool (*next)(Context&, std::uint32_t, std::optional<OidSpan>, MibWalkCursor&, SnmpValue&);
};

template <typename Table>
constexpr TableEntry entryOf() {
  return {{Table::kName, Table::kEntryName, Table::kSubId, Table::kColumns},
          &TableOps<Table>::get,
          &TableOps<Table>::next};
}

// In OID order; a table's position is its sub-identifier minus one.
constexpr std::array<TableEntry, 10> kTables = {
    entryOf<ClassMapTable>(),        entryOf<ClassMapMatchTable>(),   entryOf<PolicyMapTable>(),
    entryOf<PolicyMapClassTable>(),  entryOf<PolicyMapActionTable>(), entryOf<QosStatsTable>(),
    entryOf<QosPolicerStatsTable>(), entryOf<ServicePolicyTable>(),   entryOf<EcnCounterTable>(),
    entryOf<EcnQueueCounterTable>(),
};

constexpr std::array<MibTableInfo, kTables.size()> tableInfos() {
  std::array<MibTableInfo, kTables.size()> infos{};
  for (std::size_t i = 0; i < kTables.size(); ++i) {
    infos[i] = kTables[i].info;
  }
  return infos;
}
constexpr auto kTableInfos = tableInfos();

consteval bool tablesAreNumberedInOrder() {
  for (std::size_t i = 0; i < kTables.size(); ++i) {
    if (kTables[i].info.subId != i + 1) {
      return false;
    }
    const auto& columns = kTables[i].info.columns;
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (columns[c].subId != c + 1) {
        return false;
      }
    }
  }
  return true;
}
static_assert(tablesAreNumberedInOrder(), "tables and columns are numbered 1, 2, ... in order");

// The agent group, after the tables.
constexpr std::uint32_t kAgentGroupSubId = kTables.size() + 1;
constexpr std::array<std::uint32_t, 10> kAgentGroupOid = {1, 3, 6, 1, 4, 1, 32473, 1, 1, kAgentGroupSubId};
constexpr MibScalarInfo kAgentScalars[] = {
    {"qosAgentStateLoadedTime", 1, Type::timeTicks},
    {"qosAgentLastChangeTime", 2, Type::timeTicks},
    {"qosAgentChangesApplied", 3, Type::counter32},
    {"qosAgentChangesRefused", 4, Type::counter32},
};

void scalarValue(std::uint32_t subId, const MibAgentStatus& status, SnmpValue& into) {
  switch (subId) {
    case 1:
      return timeTicks(into, status.timeStamp(status.stateLoaded));
    case 2:
      return timeTicks(into, status.timeStamp(status.lastChangeApplied));
    case 3:
      return counter32(into, static_cast<std::uint32_t>(status.changesApplied));
    default:
      return counter32(into, static_cast<std::uint32_t>(status.changesRefused));
  }
}

// A scalar's instance: <qosAgent>.<subId>.0.
using ScalarOid = std::array<std::uint32_t, kAgentGroupOid.size() + 2>;
ScalarOid scalarOid(const MibScalarInfo& scalar) {
  ScalarOid oid{};
  std::copy(kAgentGroupOid.begin(), kAgentGroupOid.end(), oid.begin());
  oid[kAgentGroupOid.size()] = scalar.subId;
  return oid;
}

const TableEntry* tableAt(std::uint32_t subId) {
  return subId >= 1 && subId <= kTables.size() ? &kTables[subId - 1] : nullptr;
}

const MibColumnInfo* columnAt(const TableEntry& table, std::uint32_t subId) {
  const auto& columns = table.info.columns;
  return subId >= 1 && subId <= columns.size() ? &columns[subId - 1] : nullptr;
}

bool startsWith(OidSpan oid, OidSpan prefix) {
  return oid.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), oid.begin());
}

// to = from, where from may view to's own elements (a walk passes the OID
// it answered last back in).
void assignOid(Oid& to, OidSpan from) {
  const bool inside = !to.empty() && from.data() >= to.data() && from.data() < to.data() + to.size();
  if (!inside) {
    to.assign(from.begin(), from.end());
    return;
  }
  // from starts at or after to's first element: copying forward is safe.
  std::copy(from.begin(), from.end(), to.begin());
  to.resize(from.size());
}

// The instance of `column` at the row suffix, its value already written.
void instanceOidIs(VarBind& into, const TableEntry& table, const MibColumnInfo& column, const Oid& suffix) {
  into.oid.resize(kObjectsOid.size() + 3 + suffix.size());
  auto out = std::copy(kObjectsOid.begin(), kObjectsOid.end(), into.oid.begin());
  *out++ = table.info.subId;
  *out++ = kEntrySubId;
  *out++ = column.subId;
  std::copy(suffix.begin(), suffix.end(), out);
  into.exception = SnmpException::none;
}

void exceptionIs(VarBind& into, OidSpan oid, SnmpException e) {
  assignOid(into.oid, oid);
  into.exception = e;
  numberIs(into.value, Type::integer32, 0, 0);
}

}  // namespace

MibView::MibView(const QosMib& mib, const MibAgentStatus* status)
    : mib_(mib), state_(std::make_unique<State>(mib, status)) {}

MibView::~MibView() = default;

MibView::ModelUnchanged::ModelUnchanged(const MibView& view) noexcept : state_(*view.state_) {
  if (state_.unchangedHolds++ == 0) {
    state_.forgetLookups();
  }
}

MibView::ModelUnchanged::~ModelUnchanged() {
  if (--state_.unchangedHolds == 0) {
    state_.forgetLookups();
  }
}

OidSpan MibView::agentGroupOid() noexcept { return kAgentGroupOid; }

std::span<const MibScalarInfo> MibView::agentScalars() noexcept { return kAgentScalars; }

OidSpan MibView::moduleOid() noexcept { return kModuleOid; }

OidSpan MibView::objectsOid() noexcept { return kObjectsOid; }

OidSpan MibView::agentObjectId() noexcept { return kAgentObjectId; }

std::span<const MibTableInfo> MibView::tables() noexcept { return kTableInfos; }

VarBind MibView::get(OidSpan oid) const {
  VarBind vb;
  get(oid, vb);
  return vb;
}

VarBind MibView::next(OidSpan oid) const {
  VarBind vb;
  next(oid, vb);
  return vb;
}

void MibView::get(OidSpan oid, VarBind& into) const {
  const std::size_t at = kObjectsOid.size();
  if (startsWith(oid, kAgentGroupOid) && oid.size() > kAgentGroupOid.size()) {
    const std::uint32_t subId = oid[kAgentGroupOid.size()];
    if (subId < 1 || subId > std::size(kAgentScalars)) {
      return exceptionIs(into, oid, SnmpException::noSuchObject);
    }
    if (oid.size() != kAgentGroupOid.size() + 2 || oid.back() != 0) {
      return exceptionIs(into, oid, SnmpException::noSuchInstance);
    }
    scalarValue(subId, *state_->status, into.value);
    into.exception = SnmpException::none;
    return assignOid(into.oid, oid);
  }
  if (!startsWith(oid, kObjectsOid) || oid.size() < at + 3 || oid[at + 1] != kEntrySubId) {
    return exceptionIs(into, oid, SnmpException::noSuchObject);
  }
  const TableEntry* table = tableAt(oid[at]);
  const MibColumnInfo* column = table ? columnAt(*table, oid[at + 2]) : nullptr;
  if (column == nullptr || !column->accessible) {
    return exceptionIs(into, oid, SnmpException::noSuchObject);
  }
  Context ctx{mib_, *state_};
  if (!table->get(ctx, column->subId, oid.subspan(at + 3), into.value)) {
    return exceptionIs(into, oid, SnmpException::noSuchInstance);
  }
  into.exception = SnmpException::none;
  assignOid(into.oid, oid);
}

MibWalkCursor& MibView::cursor() const {
  if (!cursor_) {
    cursor_ = std::make_shared<MibWalkCursor>();
    cursor_->suffix.reserve(kMaxSuffixLength);
  }
  return *cursor_;
}

void MibView::next(OidSpan oid, VarBind& into) const {
  // Where the walk starts: the first table, column and row at or after
  // which an instance may follow oid. `after` is the row suffix to pass in
  // that column; absent, the column's first row is the answer.
  std::uint64_t tableSubId = 1;  // wide: one past 4294967295 must not wrap to 0
  std::uint32_t columnSubId = 1;
  std::optional<OidSpan> after;

  const std::size_t at = kObjectsOid.size();
  if (startsWith(oid, kObjectsOid)) {
    if (oid.size() > at) {
      tableSubId = oid[at];
      if (tableSubId == 0) {
        tableSubId = 1;
      } else if (oid.size() > at + 1) {
        const std::uint32_t entry = oid[at + 1];
        if (entry > kEntrySubId) {
          ++tableSubId;
        } else if (entry == kEntrySubId && oid.size() > at + 2) {
          columnSubId = oid[at + 2];
          after = oid.subspan(at + 3);
        }
      }
    }
  } else if (!std::lexicographical_compare(oid.begin(), oid.end(), kObjectsOid.begin(), kObjectsOid.end())) {
    // Past the module's objects.
    return exceptionIs(into, oid, SnmpException::endOfMibView);
  }

  Context ctx{mib_, *state_};
  MibWalkCursor& walk = cursor();
  for (; tableSubId <= kTables.size(); ++tableSubId, columnSubId = 1, after.reset()) {
    const TableEntry& table = kTables[tableSubId - 1];
    for (const MibColumnInfo& column : table.info.columns) {
      if (!column.accessible || column.subId < columnSubId) {
        continue;
      }
      // Past the requested column, the walk restarts at each column's first row.
      const std::optional<OidSpan> from = column.subId == columnSubId ? after : std::nullopt;
      if (table.next(ctx, column.subId, from, walk, into.value)) {
        return instanceOidIs(into, table, column, walk.suffix);
      }
    }
  }
  // Then the agent group's scalars, in OID order.
  for (const MibScalarInfo& scalar : kAgentScalars) {
    const ScalarOid candidate = scalarOid(scalar);
    if (std::lexicographical_compare(oid.begin(), oid.end(), candidate.begin(), candidate.end())) {
      scalarValue(scalar.subId, *state_->status, into.value);
      into.exception = SnmpException::none;
      return assignOid(into.oid, candidate);
    }
  }
  exceptionIs(into, oid, SnmpException::endOfMibView);
}

std::string MibView::oidName(OidSpan oid) {
  std::ostringstream out;
  const std::size_t at = kObjectsOid.size();
  std::size_t rest = 0;
  const TableEntry* table = startsWith(oid, kObjectsOid) && oid.size() > at ? tableAt(oid[at]) : nullptr;
  const MibColumnInfo* column = nullptr;
  if (table != nullptr && oid.size() > at + 2 && oid[at + 1] == kEntrySubId) {
    column = columnAt(*table, oid[at + 2]);
  }
  const bool scalar = startsWith(oid, kAgentGroupOid) && oid.size() > kAgentGroupOid.size() &&
                      oid[kAgentGroupOid.size()] >= 1 &&
                      oid[kAgentGroupOid.size()] <= std::size(kAgentScalars);
  if (scalar) {
    out << kAgentScalars[oid[kAgentGroupOid.size()] - 1].name;
    rest = kAgentGroupOid.size() + 1;
  } else if (column != nullptr) {
    out << column->name;
    rest = at + 3;
  } else if (table != nullptr && oid.size() > at + 1 && oid[at + 1] == kEntrySubId) {
    out << table->info.entryName;
    rest = at + 2;
  } else if (table != nullptr) {
    out << table->info.name;
    rest = at + 1;
  } else {
    const char* separator = "";
    for (const std::uint32_t subId : oid) {
      out << separator << subId;
      separator = ".";
    }
    return out.str();
  }
  for (std::size_t i = rest; i < oid.size(); ++i) {
    out << '.' << oid[i];
  }
  return out.str();
}

std::string MibView::render(const VarBind& varBind) {
  std::ostringstream out;
  out << oidName(varBind.oid) << " = ";
  switch (varBind.exception) {
    case SnmpException::none:
      out << varBind.value;
      break;
    case SnmpException::noSuchObject:
      out << "noSuchObject";
      break;
    case SnmpException::noSuchInstance:
      out << "noSuchInstance";
      break;
    case SnmpException::endOfMibView:
      out << "endOfMibView";
      break;
  }
  return out.str();
}

}  // namespace QosSnmpHost
