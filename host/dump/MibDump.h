// QosSnmpHost::MibDump: the whole MIB model, as text or as JSON, the same
// way every time: the ten tables in a fixed order, each in its SNMP index
// order (the order its MibTable iterates), then the two maps in key order.
//
// A row shows its index fields, then the arguments it was written with. An
// entity a row refers to is shown by the caller's pathOf (its place in the
// state document), a null reference as "-" (JSON null). Enumerations show
// by name (a value without a name as its number); map types, action types
// and directions held as plain integers in an index are shown by name too.
//
// Text: per table a header line with its row count, so that an empty table
// is visible, then one line per row; per map a header and one line per
// entry:
//
//   # classMapTable: 2 rows
//   classMapTable (class-web, mapQos) classMapStatus=/qosStatus/cmapType/mapQos/cmap/class-web
//   ...
//   # cmapByStaticType: 1 entry
//   cmapByStaticType cpStaticBgp -> /qosStatus/cmapType/mapControlPlane/cmap/copp-system-bgp
//   # intfIdToifIndex: 1 entry
//   intfIdToifIndex Ethernet1/1 -> 1
//
// JSON: an object with one member per table, in the same order, each an
// array of rows {"index": {<field>: value, ...}, <argument>: value, ...};
// then "cmapByStaticType" and "intfIdToifIndex", objects from key to
// value. Members keep the order above (ordered_json), so dump() is stable.
//
//   const MibDump dump([&](const Kel::Entity& entity) { return paths.pathOf(entity); });
//   std::cout << dump.text(*mib);
//   std::cout << dump.json(*mib).dump(2) << '\n';
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "QosSnmp/core/QosMib.h"
#include "kel/Entity.h"

namespace QosSnmpHost {

class MibDump {
 public:
  using PathOf = std::function<std::string(const Kel::Entity&)>;

  // An empty pathOf shows each entity by its own name.
  explicit MibDump(PathOf pathOf = {});

  void writeText(std::ostream& out, const QosSnmp::QosMib& mib) const;
  std::string text(const QosSnmp::QosMib& mib) const;
  nlohmann::ordered_json json(const QosSnmp::QosMib& mib) const;

  // The ten tables' names, in dump order (the JSON members of the tables).
  static std::vector<std::string> tableNames();
  // The two maps' names, in dump order, after the tables.
  static std::vector<std::string> mapNames();

 private:
  PathOf pathOf_;
};

}  // namespace QosSnmpHost
