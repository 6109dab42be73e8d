// InvariantPolicerStats: refuses the transitions that would make the agent's
// control-plane statistics table (CoppStatsTableSm) throw the framework's
// re-instantiation error for one of its policer statistics machines.
//
// While the policer statistics table is switched on, that table asks for a
// policer statistics machine keyed by the class-map name alone, made from
// the policy map's type and name and the class's counters, for every class
// it counts: a class of a policy map whose type (its own "type") is not 2,
// not "copp-system-drop", not a static control-plane class map (map type 0,
// cpType static), not a class of "copp-system-policy" while
// coppHwStatsSupported, whose counters exist under that type and policy map.
// It asks when such counters come, when their policy map or its map type
// comes, and for every counted class when the poll period changes to a
// finite value. Asked with other arguments than the machine's, it throws; a
// machine goes only when the table looks at a counted class of its name
// whose counters are not where it looks them up (they left, or the policy
// map's own type differs from the map type it is listed under), and never
// with the table.
// So, with the table on, two things are refused:
// - one class-map name counted under two policy maps (whatever the poll
//   period: an infinite one only delays the failure to its next change);
// - counters of a name whose machine the agent still holds for other
//   counters: counted under another policy map, or counters that left while
//   the class was not counted (the poll period infinite, for instance) and
//   come back as a new entity.
//
// The rule replays the table's requests for each transition in the order
// the loader delivers them (members deleted, emptied first, then added or
// updated, in key order, at every level), refusing the first conflict, then
// replays the table's next full scan (the poll period changing to a finite
// value) over the classes the transition touches, refusing its conflicts
// too: an infinite poll period, or a class not counted for a while, only
// delays them.
//
// Shadow state: the policer statistics machines the agent holds, by
// class-map name, with the counters each was made from and whether those
// have left the document.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/state/InvariantView.h"

namespace QosSnmpHost {

class InvariantPolicerStats {
 public:
  // `enabled`: the policer statistics table's feature toggle, as the agent
  // reads it.
  explicit InvariantPolicerStats(bool enabled);

  // Not const: the replay runs on the shadow state and is rolled back.
  std::optional<Refusal> refusal(const InvariantView& view);
  void applied(const InvariantView& view);

 private:
  // A policer statistics machine, or one the table would ask for. Its
  // counters' path names its other arguments too: the policy map's own type
  // and name.
  struct Machine {
    InvariantView::Path counters;
    bool gone = false;  // those counters have left the document
  };

  // The machines by class-map name, indexed by their counters too, with an
  // undo journal: a refusal replays a transition on them and rolls it back
  // instead of copying them all, and the counters a change can remove are
  // found by their path, so both cost what the change reaches.
  class Machines {
   public:
    const Machine* find(const std::string& name) const;
    void put(const std::string& name, Machine machine);
    void erase(const std::string& name);
    // Marks gone the machines whose counters lie at or below `at` and are
    // absent after the transition.
    void leaveUnder(const InvariantView& view, const InvariantView::Path& at);
    void clear();
    // Undoes every change since the last commit().
    void rollback();
    void commit() { undo_.clear(); }

   private:
    void remember(const std::string& name);
    void set(const std::string& name, const std::optional<Machine>& machine);

    std::map<std::string, Machine> held_;
    std::map<InvariantView::Path, std::string> byCounters_;
    std::vector<std::pair<std::string, std::optional<Machine>>> undo_;
  };

  // The policy maps, as (listed map type, name), whose counters hold each
  // class-map name, as the document stands after the last applied
  // transition: the scan for the names a change touches reads these, not
  // the whole document.
  using CountedBy = std::map<std::string, std::set<std::pair<std::string, std::string>>>;

  // The table looking at class `cmapName` of policy map `pmapName` whose
  // own type is `ownType`, statistics on: the class's machine asked for
  // when its counters are where the table looks them up (under the policy
  // map's own type), dropped when not; `conflict` set on the first
  // conflicting request.
  static void look(const InvariantView& view, Machines& machines, const std::string& pmapName,
                   const InvariantView::Json* ownType, const std::string& cmapName,
                   std::optional<Refusal>& conflict);
  // The table's full scan of the document after the transition, for the
  // classes in `names` (all when null); the first conflict, if any.
  static std::optional<Refusal> scan(const InvariantView& view, Machines& machines,
                                     const std::set<std::string>* names);
  // The same scan for `names` only, through countedBy_.
  std::optional<Refusal> scanNamed(const InvariantView& view, Machines& machines,
                                   const std::set<std::string>& names) const;
  // The policy maps at or below the changed path, before or after it, as
  // (listed map type, name); every one for a change above the map types.
  static std::set<std::pair<std::string, std::string>> policyMapsAt(const InvariantView& view, bool after);
  // Brings countedBy_ to the document after the transition.
  void recount(const InvariantView& view);
  // The class-map names whose counting the transition may change; nullopt
  // for all of them.
  static std::optional<std::set<std::string>> touched(const InvariantView& view);
  static bool statisticsOn(const InvariantView& view);
  // Replays the table's requests during the transition, in the order the
  // loader delivers the changes, on `machines`; the first conflict, if any.
  static std::optional<Refusal> replay(const InvariantView& view, Machines& machines);
  // The same for one policy map the transition adds, changes or deletes.
  static void replayPolicyMap(const InvariantView& view, Machines& machines,
                              const InvariantView::Path& policyMap, bool deleting,
                              std::optional<Refusal>& conflict);

  bool enabled_;
  Machines machines_;
  CountedBy countedBy_;
};

}  // namespace QosSnmpHost
