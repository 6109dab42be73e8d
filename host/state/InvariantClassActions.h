// InvariantClassActions: refuses the transitions that would make the agent's
// class machine of a policy map (ClassActionSm) throw the framework's
// re-instantiation error.
//
// That machine keeps one action machine per class action, keyed by the
// class action's name alone, and asking for a name it holds with another
// class-action entity throws. It asks:
// - for its default class action (its own entity, named by "name", or a
//   reference to one of its class actions) when the machine is made, when
//   defaultClassAction changes, and when classDefault changes to a class map
//   (with the default class action the policy map holds at that moment);
// - for the class action of a class whose class map exists (in the QoS
//   status's class maps of the policy-map type) when the machine is made and
//   when that class action or class map comes; when either goes, or the
//   class action comes without its class map, it drops the action machine
//   of that name, whatever made it.
// None of this happens while the policy map's own type is 0 (control
// plane), nor for the class "copp-system-drop" (a default class action of
// that name is still asked for). An action machine made for a default class
// action outlives the default's removal or replacement. The machine is made
// afresh with its policy map, with its policy-map type (a type added), and
// for every policy map when a slice is added.
//
// The rule replays the machine's reactions to each transition in the order
// the loader delivers them: a policy map's attributes in declaration order
// (type, classAction, classPrio, classDefault, defaultClassAction), a
// collection's members deleted, then added, in key order, and the class maps
// before the policy maps. Each request is checked against the action
// machines the replay holds; the first conflict is refused.
// Besides, it refuses a policy map whose own default class action is named
// like one of its class actions whose class map exists, whatever the order:
// those are two entities under one name, which throws at the latest when the
// machine is next made afresh.
//
// Shadow state: the action machines each class machine holds, by name, with
// the kind of entity each was made for and whether that entity has left the
// document; and the map types whose class machines see no class maps: a
// policy-map machine keeps the class-map type status it was made with, so
// once that is deleted (or if there was none) its class machines find no
// class map and hear of none until the policy-map machine is made afresh,
// even after the state adds the class-map type again.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/state/InvariantView.h"

namespace QosSnmpHost {

class InvariantClassActions {
 public:
  // `sliceAdded` when the transition adds a slice (every policy-map machine
  // is rebuilt).
  std::optional<Refusal> refusal(const InvariantView& view, bool sliceAdded) const;
  void applied(const InvariantView& view, bool sliceAdded);

 private:
  // An action machine a class machine holds.
  struct Held {
    bool ownDefault = false;  // made for the policy map's own default class action
    bool gone = false;        // that entity has left the document
  };
  using HeldByName = std::map<std::string, Held>;

  // What the transition does to the class machines.
  struct Reach {
    std::set<std::string> rebuiltTypes;                      // made afresh
    std::set<std::string> removedTypes;                      // gone
    std::vector<InvariantView::Path> changedPolicyMaps;      // present after
    std::vector<InvariantView::Path> removedPolicyMaps;      // gone
    std::map<std::string, std::set<std::string>> classMaps;  // map type -> names that came or went
  };

  // One class machine's requests during the transition, replayed.
  struct Replay {
    HeldByName held;
    std::optional<Refusal> conflict;
  };
  class Replayer;

  static Reach reachOf(const InvariantView& view, bool sliceAdded);
  // The policy map's class machine acts after the transition: its map type
  // is not 2 and its own type not 0.
  static bool followed(const InvariantView& view, const InvariantView::Path& policyMap);
  // Whether the class machines of a map type see its class maps, before and
  // after the transition.
  struct Sight {
    bool before = true;
    bool after = true;
  };
  Sight sightOf(const InvariantView& view, const Reach& reach, const std::string& type) const;
  // The machine made afresh after the transition (`held` null), or changed
  // in place from `held`, with the class maps of its type in `classMaps`
  // come or gone, seen as `sight` says.
  static Replay replay(const InvariantView& view, const InvariantView::Path& policyMap,
                       const HeldByName* held, const std::set<std::string>& classMaps, Sight sight);
  static std::optional<Refusal> sameNameRefusal(const InvariantView& view,
                                                const InvariantView::Path& policyMap);
  // Every policy map whose class machine the transition reaches, with the
  // class maps of its type that came or went (pointing into `reach`), and
  // whether it is made afresh.
  struct Reached {
    InvariantView::Path policyMap;
    const std::set<std::string>* classMaps;
    bool afresh;
  };
  static std::vector<Reached> reached(const InvariantView& view, const Reach& reach);
  const HeldByName* heldOf(const InvariantView::Path& policyMap) const;
  void forgetType(const std::string& type);

  // By policy-map JSON Pointer.
  std::map<std::string, HeldByName> held_;
  // Map types whose class machines see no class maps.
  std::set<std::string> blind_;
};

}  // namespace QosSnmpHost
