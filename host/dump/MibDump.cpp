#include "host/dump/MibDump.h"

#include <concepts>
#include <cstddef>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/Ptr.h"
#include "pellix/IntfId.h"
#include "snmp/String.h"

namespace QosSnmpHost {
namespace {

using Json = nlohmann::ordered_json;
using PathOf = MibDump::PathOf;
using QosSnmp::QosMib;

// One value of an index or a row, as each format shows it.
struct Value {
  std::string text;
  Json json;
};

// The renderings of the types that rows and indexes hold. Entities are
// shown by path, never by their contents: a row refers to them.

Value render(const Snmp::String& name, const PathOf& /*pathOf*/) {
  return {name.stringValue(), name.stringValue()};
}

Value render(const Pellix::IntfId& intf, const PathOf& /*pathOf*/) {
  return {intf.stringValue(), intf.stringValue()};
}

Value render(bool flag, const PathOf& /*pathOf*/) { return {flag ? "true" : "false", flag}; }

template <std::integral Number>
Value render(Number number, const PathOf& /*pathOf*/) {
  return {std::to_string(number), number};
}

template <typename T>
concept Enumeration = std::is_enum_v<T>;

template <Enumeration Enum>
Value render(Enum value, const PathOf& pathOf) {
  if (const char* name = Qos::enumName(value)) {
    return {name, name};
  }
  return render(static_cast<std::underlying_type_t<Enum>>(value), pathOf);
}

template <typename Entity>
Value render(const Kel::Ptr<const Entity>& entity, const PathOf& pathOf) {
  if (!entity) {
    return {"-", nullptr};
  }
  std::string path = pathOf(*entity);
  return {path, path};
}

Value render(const Qos::ServicePolicyKey& key, const PathOf& pathOf) {
  std::ostringstream text;
  text << key;
  Json json = Json::object();
  json["type"] = render(key.type(), pathOf).json;
  json["direction"] = render(key.direction(), pathOf).json;
  json["pmapName"] = key.pmapName().stringValue();
  return {text.str(), std::move(json)};
}

// An index field that holds an enumeration's number as a plain integer.
template <typename Enum>
Value renderAs(Kel::S32 number, const PathOf& pathOf) {
  return number < 0 ? render(number, pathOf) : render(static_cast<Enum>(number), pathOf);
}

// One named field of an index or a row, and how to show it.
template <typename Record>
struct Field {
  const char* name;
  Value (*render)(const Record& record, const PathOf& pathOf);
};

template <typename Member>
struct MemberOf;
template <typename Type, typename Class>
struct MemberOf<Type Class::*> {
  using Record = Class;
};

// The field read by Member (an accessor or a data member), shown as its
// type is, or as the enumeration Shown when given.
template <auto Member, typename Shown = void>
Field<typename MemberOf<decltype(Member)>::Record> field(const char* name) {
  using Record = typename MemberOf<decltype(Member)>::Record;
  return {name, [](const Record& record, const PathOf& pathOf) {
            if constexpr (std::is_void_v<Shown>) {
              return render(std::invoke(Member, record), pathOf);
            } else {
              return renderAs<Shown>(std::invoke(Member, record), pathOf);
            }
          }};
}

// A field that is the whole record (an index that is a bare name).
template <typename Record>
Field<Record> whole(const char* name) {
  return {name, [](const Record& record, const PathOf& pathOf) { return render(record, pathOf); }};
}

// What the dump shows of one table: its rows, its index fields in SNMP
// index order, and the arguments each row was written with.
template <typename Table>
struct TableDescription {
  using Index = std::remove_const_t<typename Table::value_type::first_type>;
  using Row = typename Table::value_type::second_type;

  const char* name;
  const Table& (QosMib::*rows)() const;
  std::vector<Field<Index>> index;
  std::vector<Field<Row>> row;
};

template <typename Map>
struct MapDescription {
  const char* name;
  const Map& (QosMib::*entries)() const;
};

// The policy configuration's tables.
auto configurationTableDescriptions() {
  using namespace QosSnmp;  // the descriptions name nothing but the model's index and row types
  return std::make_tuple(
      TableDescription<QosMib::ClassMapTableRows>{
          "classMapTable",
          &QosMib::classMapTable,
          {field<&ClassMapTableIndex::name>("name"), field<&ClassMapTableIndex::type>("type")},
          {field<&ClassMapTableRow::classMapStatus>("classMapStatus")}},
      TableDescription<QosMib::ClassMapMatchTableRows>{
          "classMapMatchTable",
          &QosMib::classMapMatchTable,
          {field<&ClassMapMatchTableIndex::name>("name"), field<&ClassMapMatchTableIndex::type>("type"),
           field<&ClassMapMatchTableIndex::matchIndex>("matchIndex")},
          {field<&ClassMapMatchTableRow::classMapStatus>("classMapStatus"),
           field<&ClassMapMatchTableRow::classMapMatch>("classMapMatch")}},
      TableDescription<QosMib::PolicyMapTableRows>{
          "policyMapTable",
          &QosMib::policyMapTable,
          {field<&PolicyMapTableIndex::name>("name"), field<&PolicyMapTableIndex::type>("type")},
          {field<&PolicyMapTableRow::policyMapStatus>("policyMapStatus")}},
      TableDescription<QosMib::PolicyMapClassTableRows>{
          "policyMapClassTable",
          &QosMib::policyMapClassTable,
          {field<&PolicyMapClassTableIndex::name>("name"), field<&PolicyMapClassTableIndex::type>("type"),
           field<&PolicyMapClassTableIndex::prio>("prio")},
          {field<&PolicyMapClassTableRow::policyMapStatus>("policyMapStatus"),
           field<&PolicyMapClassTableRow::cmapName>("cmapName")}},
      TableDescription<QosMib::PolicyMapActionTableRows>{
          "policyMapActionTable",
          &QosMib::policyMapActionTable,
          {field<&PolicyMapActionTableIndex::pmapName>("pmapName"),
           field<&PolicyMapActionTableIndex::type, Qos::MapType>("type"),
           field<&PolicyMapActionTableIndex::cmapName>("cmapName"),
           field<&PolicyMapActionTableIndex::actionType, Qos::ActionType>("actionType")},
          {field<&PolicyMapActionTableRow::classAction>("classAction"),
           field<&PolicyMapActionTableRow::action>("action"),
           field<&PolicyMapActionTableRow::classMapHwStatus>("classMapHwStatus"),
           field<&PolicyMapActionTableRow::hwStatus>("hwStatus"),
           field<&PolicyMapActionTableRow::sliceHwStatus>("sliceHwStatus")}});
}

// The tables of applied policies and counters.
auto statusTableDescriptions() {
  using namespace QosSnmp;  // the descriptions name nothing but the model's index and row types
  return std::make_tuple(
      TableDescription<QosMib::QosStatsTableRows>{
          "qosStatsTable",
          &QosMib::qosStatsTable,
          {field<&QosStatsTableIndex::pmapName>("pmapName"),
           field<&QosStatsTableIndex::type, Qos::MapType>("type"),
           field<&QosStatsTableIndex::cmapName>("cmapName"),
           field<&QosStatsTableIndex::qualifier>("qualifier")},
          {field<&QosStatsTableRow::classMapHwStatus>("classMapHwStatus"),
           field<&QosStatsTableRow::counter>("counter")}},
      TableDescription<QosMib::QosPolicerStatsTableRows>{
          "qosPolicerStatsTable",
          &QosMib::qosPolicerStatsTable,
          {field<&QosPolicerStatsTableIndex::pmapName>("pmapName"),
           field<&QosPolicerStatsTableIndex::type, Qos::MapType>("type"),
           field<&QosPolicerStatsTableIndex::cmapName>("cmapName"),
           field<&QosPolicerStatsTableIndex::ifIndex>("ifIndex")},
          {field<&QosPolicerStatsTableRow::policerHwStatus>("policerHwStatus")}},
      TableDescription<QosMib::ServicePolicyTableRows>{
          "servicePolicyTable",
          &QosMib::servicePolicyTable,
          {field<&ServicePolicyTableIndex::ifIndex>("ifIndex"),
           field<&ServicePolicyTableIndex::direction, Qos::PolicyMapDirection>("direction")},
          {field<&ServicePolicyTableRow::pmapName>("pmapName"),
           field<&ServicePolicyTableRow::servicePolicyKey>("servicePolicyKey")}},
      TableDescription<QosMib::EcnCounterTableRows>{"ecnCounterTable",
                                                    &QosMib::ecnCounterTable,
                                                    {whole<Snmp::String>("chipName")},
                                                    {field<&EcnCounterTableRow::chipCounter>("chipCounter"),
                                                     field<&EcnCounterTableRow::flags>("flags")}},
      TableDescription<QosMib::EcnQueueCounterTableRows>{
          "ecnQueueCounterTable",
          &QosMib::ecnQueueCounterTable,
          {field<&EcnQueueCounterTableIndex::ifIndex>("ifIndex"),
           field<&EcnQueueCounterTableIndex::queue>("queue")},
          {field<&EcnQueueCounterTableRow::intfId>("intfId"),
           field<&EcnQueueCounterTableRow::sliceHwStatus>("sliceHwStatus"),
           field<&EcnQueueCounterTableRow::ecnCounterTable>("ecnCounterTable"),
           field<&EcnQueueCounterTableRow::ecnQueueCountersFlag>("ecnQueueCountersFlag")}});
}

// Every table, in dump order.
auto tableDescriptions() {
  return std::tuple_cat(configurationTableDescriptions(), statusTableDescriptions());
}

auto mapDescriptions() {
  return std::make_tuple(
      MapDescription<QosMib::CmapByStaticTypeMap>{"cmapByStaticType", &QosMib::cmapByStaticType},
      MapDescription<QosMib::IntfIdToifIndexMap>{"intfIdToifIndex", &QosMib::intfIdToifIndex});
}

// Calls visit on every description of `descriptions`, in order.
template <typename Descriptions, typename Visit>
void forEach(const Descriptions& descriptions, const Visit& visit) {
  std::apply([&visit](const auto&... description) { (visit(description), ...); }, descriptions);
}

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

template <typename Table>
void writeTable(std::ostream& out, const TableDescription<Table>& table, const QosMib& mib,
                const PathOf& pathOf) {
  const Table& rows = (mib.*table.rows)();
  out << "# " << table.name << ": " << counted(rows.size(), "row", "rows") << '\n';
  for (const auto& [index, row] : rows) {
    out << table.name << " (";
    const char* separator = "";
    for (const auto& field : table.index) {
      out << separator << field.render(index, pathOf).text;
      separator = ", ";
    }
    out << ')';
    for (const auto& field : table.row) {
      out << ' ' << field.name << '=' << field.render(row, pathOf).text;
    }
    out << '\n';
  }
}

template <typename Map>
void writeMap(std::ostream& out, const MapDescription<Map>& map, const QosMib& mib, const PathOf& pathOf) {
  const Map& entries = (mib.*map.entries)();
  out << "# " << map.name << ": " << counted(entries.size(), "entry", "entries") << '\n';
  for (const auto& [key, value] : entries) {
    out << map.name << ' ' << render(key, pathOf).text << " -> " << render(value, pathOf).text << '\n';
  }
}

template <typename Table>
Json tableJson(const TableDescription<Table>& table, const QosMib& mib, const PathOf& pathOf) {
  Json rows = Json::array();
  for (const auto& [index, row] : (mib.*table.rows)()) {
    Json indexJson = Json::object();
    for (const auto& field : table.index) {
      indexJson[field.name] = field.render(index, pathOf).json;
    }
    Json rowJson = Json::object();
    rowJson["index"] = std::move(indexJson);
    for (const auto& field : table.row) {
      rowJson[field.name] = field.render(row, pathOf).json;
    }
    rows.push_back(std::move(rowJson));
  }
  return rows;
}

template <typename Map>
Json mapJson(const MapDescription<Map>& map, const QosMib& mib, const PathOf& pathOf) {
  Json entries = Json::object();
  for (const auto& [key, value] : (mib.*map.entries)()) {
    entries[render(key, pathOf).text] = render(value, pathOf).json;
  }
  return entries;
}

}  // namespace

MibDump::MibDump(PathOf pathOf) : pathOf_(std::move(pathOf)) {
  if (!pathOf_) {
    pathOf_ = [](const Kel::Entity& entity) { return entity.name().stringValue(); };
  }
}

void MibDump::writeText(std::ostream& out, const QosMib& mib) const {
  forEach(tableDescriptions(), [&](const auto& table) { writeTable(out, table, mib, pathOf_); });
  forEach(mapDescriptions(), [&](const auto& map) { writeMap(out, map, mib, pathOf_); });
}

std::string MibDump::text(const QosMib& mib) const {
  std::ostringstream out;
  writeText(out, mib);
  return out.str();
}

nlohmann::ordered_json MibDump::json(const QosMib& mib) const {
  Json dump = Json::object();
  forEach(tableDescriptions(), [&](const auto& table) { dump[table.name] = tableJson(table, mib, pathOf_); });
  forEach(mapDescriptions(), [&](const auto& map) { dump[map.name] = mapJson(map, mib, pathOf_); });
  return dump;
}

std::vector<std::string> MibDump::tableNames() {
  std::vector<std::string> names;
  forEach(tableDescriptions(), [&names](const auto& table) { names.emplace_back(table.name); });
  return names;
}

std::vector<std::string> MibDump::mapNames() {
  std::vector<std::string> names;
  forEach(mapDescriptions(), [&names](const auto& map) { names.emplace_back(map.name); });
  return names;
}

}  // namespace QosSnmpHost
