// InvariantCoppStatic: refuses the transitions that would make the agent's
// static control-plane machine (CoppStaticSm) fail one of its assertions.
//
// That machine is built when the agent starts and rebuilt whenever a slice
// is added (the root hands it the newest slice and the control-plane policy
// map "copp-system-policy" of map type 0). It asserts:
// - at every (re)build, that the control-plane policy map exists;
// - for every static class the watched slice reports, when the class is
//   added, changed in place or removed (whatever coppSupported says), and for every present
//   class when coppSupported turns true or the machine is (re)built with
//   coppSupported true: that the class map of its static type exists and is
//   a static control-plane class map (cpType classMapCpStatic). Static type
//   18 (cpStaticDrop) is skipped. Static type 19 (cpStaticDefault) is the
//   classDefault of the policy map the machine holds; every other type is
//   read from the MIB model's cmapByStaticType.
// A class whose hardware status is changed in place (a new hwRank) is
// reported by the slice as a changed member and judged like an added one;
// so is a class whose hwRank is set to the value it has (the slice reports
// any change below a member).
//
// Where cmapByStaticType comes from: the class-map machines file a class map
// under its cpStaticType when they are made or when its map type changes,
// if it is a static control-plane class map (map type 0, cpType static), and
// otherwise remove the entry of its cpStaticType, whatever class map holds
// it; an entry outlives its class map's removal and a cpType changed in
// place. So the current MIB model is exactly what the machine reads, except
// when the agent starts: a change line changes either the QoS status or the
// slices, never both, while the first build files every class map before the
// control-plane machine starts. For a build the map is predicted from the
// document, replaying the filing in the class-map machines' order (map types
// in number order, map type 2 never; class maps by name, "copp-system-drop"
// never); for a change it is read from the MIB model, entities included, so
// a filed class map whose cpType was changed in place is judged with its
// current cpType.
//
// Shadow state: whether the policy map the machine holds is the document's.
// Deleting "copp-system-policy" empties it first (its classDefault resets to
// null), and the machine keeps that deleted entity until the next slice
// rebuilds it: until then static type 19 always fails.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "host/state/InvariantView.h"

namespace QosSnmpHost {

class InvariantCoppStatic {
 public:
  // REQUIRES: `qosMib` is the agent's MIB model and outlives the rule.
  explicit InvariantCoppStatic(const QosSnmp::QosMib& qosMib);

  // `slice` is the slice the agent watched before the transition, `added`
  // the slices it adds (every slice, for a build), in key order.
  std::optional<Refusal> refusal(const InvariantView& view, const std::optional<std::string>& slice,
                                 const std::vector<std::string>& added) const;
  void applied(const InvariantView& view, const std::vector<std::string>& added);

  // The control-plane policy map's location.
  static const InvariantView::Path& coppPolicyMapPath();

 private:
  // A class map filed by static type, as the machine will read it.
  struct FiledClassMap {
    std::string name;
    std::optional<Qos::ClassMapCpType> cpType;
    std::string cpTypeText;
  };
  using FiledClassMaps = std::map<Qos::ClassMapCpStaticType, FiledClassMap>;

  FiledClassMaps filedInMib() const;
  static FiledClassMaps filedByBuild(const InvariantView& view);

  // Why the machine would assert on handling static class `type` reported at
  // `hwPath`; `removing` when the class leaves, `pmapFresh` when the machine
  // holds the document's control-plane policy map.
  static std::optional<Refusal> classRefusal(const InvariantView& view, const InvariantView::Path& hwPath,
                                             const std::string& type, const FiledClassMaps& filed,
                                             bool pmapFresh, bool removing);
  // The same for every class the slice reports (a full scan).
  static std::optional<Refusal> scanRefusal(const InvariantView& view, const std::string& slice,
                                            const FiledClassMaps& filed, bool pmapFresh);

  const QosSnmp::QosMib& qosMib_;
  bool pmapFresh_ = true;
};

}  // namespace QosSnmpHost
