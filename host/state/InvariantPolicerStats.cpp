#include "host/state/InvariantPolicerStats.h"

#include <algorithm>
#include <ranges>
#include <tuple>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/QosEnums.h"

namespace QosSnmpHost {
namespace {

using Json = InvariantView::Json;
using Path = InvariantView::Path;

const Path kPolicyMapTypes = {"qosStatus", "pmapType"};
const Path kPollPeriod = {"mibConfig", "counterPollPeriod"};
const Path kCoppHwStats = {"hwStatus", "coppHwStatsSupported"};
const Path kControlPlaneClassMaps = {"qosStatus", "cmapType", Qos::enumName(Qos::mapControlPlane_), "cmap"};

const char* const kKeyedByName =
    " (the policer statistics machine is keyed by the class-map name alone and cannot be re-created with "
    "other "
    "arguments)";

// A policy map's own type as the key it would be listed under: the name, or
// the number of a type without one.
std::string typeKeyOf(const Json* type) {
  if (type == nullptr) {
    return {};
  }
  return type->is_string() ? type->get<std::string>() : type->dump();
}

// The keys of the object `object` (none when it is not one).
std::vector<std::string> keysOf(const Json* object) {
  std::vector<std::string> keys;
  if (object != nullptr && object->is_object()) {
    for (const auto& member : object->items()) {
      keys.push_back(member.key());
    }
  }
  return keys;
}

// The map types present after the transition, in the table's order (by
// number).
std::vector<std::string> typesInOrder(const InvariantView& view) {
  std::vector<std::string> types = keysOf(view.after(kPolicyMapTypes));
  const auto number = [](const std::string& key) {
    const auto type = invariantEnum<Qos::MapType>(Json(key));
    return type ? static_cast<unsigned long long>(*type) : ~0ULL;
  };
  std::stable_sort(types.begin(), types.end(), [&](const std::string& left, const std::string& right) {
    return number(left) < number(right);
  });
  return types;
}

Path countersPath(const std::string& type, const std::string& pmapName, const std::string& cmapName) {
  return InvariantView::join(kPolicyMapTypes, {type, "pmap", pmapName, "cmapCounters", cmapName});
}

// Whether the table counts class `cmapName` of policy map `pmapName` of
// (own) type `type`, its counters aside.
bool counted(const InvariantView& view, const std::string& pmapName, const std::string& type,
             const std::string& cmapName) {
  const auto mapType = invariantEnum<Qos::MapType>(Json(type));
  if (mapType == Qos::mapPbr_ || cmapName == QosSnmp::kCoppDropClassMapName) {
    return false;
  }
  if (mapType != Qos::mapControlPlane_) {
    return true;
  }
  if (pmapName == QosSnmp::kCoppPolicyMapName && view.flagAfter(kCoppHwStats)) {
    return false;
  }
  const Json* cpType = view.after(InvariantView::join(kControlPlaneClassMaps, {cmapName, "cpType"}));
  return cpType == nullptr || invariantEnum<Qos::ClassMapCpType>(*cpType) != Qos::classMapCpStatic_;
}

// Why asking for the machine of `cmapName` with the counters at `asked`
// fails while the agent holds one made from `held` (gone: those counters
// have left the document).
Refusal conflictRefusal(const InvariantView& view, const std::string& cmapName, const Path& asked,
                        const Path& held, bool gone) {
  // held = /qosStatus/pmapType/<type>/pmap/<name>/cmapCounters/<class>
  if (!gone && counted(view, held[4], held[2], cmapName)) {
    return {InvariantView::pointerText(asked), "counters " + InvariantView::pointerText(held) + " and " +
                                                   InvariantView::pointerText(asked) + " count class map \"" +
                                                   cmapName + "\" under two policy maps" + kKeyedByName};
  }
  return {InvariantView::pointerText(asked),
          "counters " + InvariantView::pointerText(asked) +
              " would re-create the policer statistics machine of class map \"" + cmapName +
              "\", which the agent still holds for the " + (gone ? "removed " : "") + "counters " +
              InvariantView::pointerText(held) + kKeyedByName};
}

// The members of `collection` a change adds, changes or deletes, each with
// whether it is deleted, in the order the loader delivers them: the deleted
// ones first (each emptied before it leaves), then the others, in key order.
std::vector<std::pair<std::string, bool>> deletedFirst(const InvariantView& view, const Path& collection) {
  std::vector<std::pair<std::string, bool>> deleted;
  std::vector<std::pair<std::string, bool>> others;
  for (const std::string& name : view.changedMembers(collection)) {
    const Path member = InvariantView::join(collection, {name});
    const bool gone = view.before(member) != nullptr && view.after(member) == nullptr;
    (gone ? deleted : others).emplace_back(name, gone);
  }
  deleted.insert(deleted.end(), others.begin(), others.end());
  return deleted;
}

// The policy maps a change adds, changes or deletes, each with whether it
// is deleted, in the order the loader delivers them.
std::vector<std::pair<Path, bool>> policyMapsReached(const InvariantView& view) {
  std::vector<std::pair<Path, bool>> policyMaps;
  for (const auto& [type, typeGone] : deletedFirst(view, kPolicyMapTypes)) {
    const Path inType = InvariantView::join(kPolicyMapTypes, {type, "pmap"});
    for (const auto& [pmapName, gone] : deletedFirst(view, inType)) {
      policyMaps.emplace_back(InvariantView::join(inType, {pmapName}), gone);
    }
  }
  return policyMaps;
}

}  // namespace

InvariantPolicerStats::InvariantPolicerStats(bool enabled) : enabled_(enabled) {}

bool InvariantPolicerStats::statisticsOn(const InvariantView& view) {
  const Json* period = view.after(kPollPeriod);
  return period == nullptr || !period->is_string();
}

void InvariantPolicerStats::look(const InvariantView& view, Machines& machines, const std::string& pmapName,
                                 const Json* ownTypeValue, const std::string& cmapName,
                                 std::optional<Refusal>& conflict) {
  const std::string ownType = typeKeyOf(ownTypeValue);
  if (conflict || !counted(view, pmapName, ownType, cmapName)) {
    return;
  }
  Path looked = countersPath(ownType, pmapName, cmapName);
  if (view.after(looked) == nullptr) {
    machines.erase(cmapName);
    return;
  }
  const Machine* held = machines.find(cmapName);
  if (held == nullptr) {
    machines.put(cmapName, Machine{looked, false});
  } else if (held->gone || held->counters != looked) {
    conflict = conflictRefusal(view, cmapName, looked, held->counters, held->gone);
  }
}

std::optional<Refusal> InvariantPolicerStats::scan(const InvariantView& view, Machines& machines,
                                                   const std::set<std::string>* names) {
  std::optional<Refusal> conflict;
  for (const std::string& key : typesInOrder(view)) {
    const Path policyMaps = InvariantView::join(kPolicyMapTypes, {key, "pmap"});
    for (const std::string& pmapName : keysOf(view.after(policyMaps))) {
      const Path policyMap = InvariantView::join(policyMaps, {pmapName});
      const Json* ownType = view.after(InvariantView::join(policyMap, {"type"}));
      for (const std::string& cmapName :
           keysOf(view.after(InvariantView::join(policyMap, {"cmapCounters"})))) {
        if (names == nullptr || names->count(cmapName) != 0) {
          look(view, machines, pmapName, ownType, cmapName, conflict);
        }
      }
    }
  }
  return conflict;
}

std::optional<std::set<std::string>> InvariantPolicerStats::touched(const InvariantView& view) {
  if (view.isBuild() || view.reaches(kPollPeriod) || view.reaches(kCoppHwStats) ||
      view.covers(kPolicyMapTypes) || view.covers({"qosStatus", "cmapType"})) {
    return std::nullopt;
  }
  std::set<std::string> names;
  for (const std::string& type : view.changedMembers(kPolicyMapTypes)) {
    const Path policyMaps = InvariantView::join(kPolicyMapTypes, {type, "pmap"});
    for (const std::string& pmapName : view.changedMembers(policyMaps)) {
      const Path policyMap = InvariantView::join(policyMaps, {pmapName});
      const Path counters = InvariantView::join(policyMap, {"cmapCounters"});
      if (view.before(policyMap) == nullptr || view.after(policyMap) == nullptr ||
          view.changed(InvariantView::join(policyMap, {"type"}))) {
        for (std::string& name : keysOf(view.before(counters))) {
          names.insert(std::move(name));
        }
        for (std::string& name : keysOf(view.after(counters))) {
          names.insert(std::move(name));
        }
        continue;
      }
      for (const std::string& name : view.changedMembers(counters)) {
        const Path member = InvariantView::join(counters, {name});
        if ((view.before(member) == nullptr) != (view.after(member) == nullptr)) {
          names.insert(name);
        }
      }
    }
  }
  for (const std::string& name : view.changedMembers(kControlPlaneClassMaps)) {
    names.insert(name);
  }
  return names;
}

void InvariantPolicerStats::replayPolicyMap(const InvariantView& view, Machines& machines,
                                            const Path& policyMap, bool deleting,
                                            std::optional<Refusal>& conflict) {
  const Path counters = InvariantView::join(policyMap, {"cmapCounters"});
  const Path type = InvariantView::join(policyMap, {"type"});
  if (deleting || view.before(policyMap) == nullptr) {
    // Every class, as it leaves (emptied first) or comes with its policy map.
    for (const std::string& cmapName : keysOf(deleting ? view.before(counters) : view.after(counters))) {
      look(view, machines, policyMap.back(), deleting ? view.before(type) : view.after(type), cmapName,
           conflict);
    }
    return;
  }
  // The classes whose counters left, then those whose counters came.
  for (const auto& [cmapName, left] : deletedFirst(view, counters)) {
    if (left || view.before(InvariantView::join(counters, {cmapName})) == nullptr) {
      look(view, machines, policyMap.back(), view.after(type), cmapName, conflict);
    }
  }
}

std::optional<Refusal> InvariantPolicerStats::replay(const InvariantView& view, Machines& machines) {
  std::optional<Refusal> conflict;
  if (!statisticsOn(view)) {
    // Nothing is looked at; counters that leave leave their machine behind.
  } else if (view.isBuild() || view.changed(kPollPeriod)) {
    // The full scan (a build scans twice, alike).
    conflict = scan(view, machines, nullptr);
  } else if (view.reaches(kPolicyMapTypes)) {
    for (const auto& [policyMap, deleting] : policyMapsReached(view)) {
      replayPolicyMap(view, machines, policyMap, deleting, conflict);
    }
  }
  // Counters leave only with a change at or above their own level: a
  // policy map or above, its cmapCounters, or the counters themselves.
  const std::size_t countersLevel = 7;  // /qosStatus/pmapType/<type>/pmap/<name>/cmapCounters/<class>
  const std::size_t policyMapLevel = 5;
  const Path& path = view.path();
  const bool countersMayLeave = path.size() <= policyMapLevel || path[policyMapLevel] == "cmapCounters";
  if (view.reaches(kPolicyMapTypes) && path.size() <= countersLevel && countersMayLeave) {
    machines.leaveUnder(view, path);
  }
  return conflict;
}

std::optional<Refusal> InvariantPolicerStats::refusal(const InvariantView& view) {
  if (!enabled_) {
    return std::nullopt;
  }
  const std::optional<std::set<std::string>> names = touched(view);
  if (names && names->empty()) {
    return std::nullopt;
  }
  std::optional<Refusal> conflict = replay(view, machines_);
  // The next full scan (the poll period changing to a finite value) must
  // not conflict either: an infinite period, or a class no longer counted,
  // only delays the failure to it.
  if (!conflict) {
    conflict = names ? scanNamed(view, machines_, *names) : scan(view, machines_, nullptr);
  }
  machines_.rollback();
  return conflict;
}

void InvariantPolicerStats::applied(const InvariantView& view) {
  if (!enabled_) {
    return;
  }
  if (view.isBuild()) {
    machines_.clear();
  }
  if (view.isBuild() || view.reaches(kPollPeriod) || view.reaches(kPolicyMapTypes)) {
    replay(view, machines_);
  }
  machines_.commit();
  recount(view);
}

const InvariantPolicerStats::Machine* InvariantPolicerStats::Machines::find(const std::string& name) const {
  const auto it = held_.find(name);
  return it == held_.end() ? nullptr : &it->second;
}

void InvariantPolicerStats::Machines::remember(const std::string& name) {
  const Machine* machine = find(name);
  undo_.emplace_back(name, machine == nullptr ? std::nullopt : std::optional<Machine>(*machine));
}

void InvariantPolicerStats::Machines::set(const std::string& name, const std::optional<Machine>& machine) {
  if (const auto it = held_.find(name); it != held_.end()) {
    byCounters_.erase(it->second.counters);
    held_.erase(it);
  }
  if (machine) {
    held_.emplace(name, *machine);
    byCounters_.emplace(machine->counters, name);
  }
}

void InvariantPolicerStats::Machines::put(const std::string& name, Machine machine) {
  remember(name);
  set(name, std::move(machine));
}

void InvariantPolicerStats::Machines::erase(const std::string& name) {
  if (find(name) != nullptr) {
    remember(name);
    set(name, std::nullopt);
  }
}

void InvariantPolicerStats::Machines::leaveUnder(const InvariantView& view, const Path& at) {
  std::vector<std::string> leaving;
  for (auto it = byCounters_.lower_bound(at); it != byCounters_.end() && it->first.size() >= at.size() &&
                                              std::equal(at.begin(), at.end(), it->first.begin());
       ++it) {
    const Machine& machine = held_.at(it->second);
    if (!machine.gone && view.after(machine.counters) == nullptr) {
      leaving.push_back(it->second);
    }
  }
  for (const std::string& name : leaving) {
    Machine machine = *find(name);
    machine.gone = true;
    put(name, std::move(machine));
  }
}

void InvariantPolicerStats::Machines::clear() {
  held_.clear();
  byCounters_.clear();
  undo_.clear();
}

void InvariantPolicerStats::Machines::rollback() {
  for (const auto& [name, machine] : std::views::reverse(undo_)) {
    set(name, machine);
  }
  undo_.clear();
}

std::set<std::pair<std::string, std::string>> InvariantPolicerStats::policyMapsAt(const InvariantView& view,
                                                                                  bool after) {
  std::set<std::pair<std::string, std::string>> policyMaps;
  const Path& path = view.path();
  const auto read = [&](const Path& at) { return after ? view.after(at) : view.before(at); };
  if (!view.isBuild() && path.size() >= 5 && path[0] == "qosStatus" && path[1] == "pmapType" &&
      path[3] == "pmap") {
    if (read(InvariantView::join(kPolicyMapTypes, {path[2], "pmap", path[4]})) != nullptr) {
      policyMaps.emplace(path[2], path[4]);
    }
    return policyMaps;
  }
  const bool onPolicyMaps = view.isBuild() || path.empty() ||
                            (path[0] == "qosStatus" && (path.size() == 1 || path[1] == "pmapType"));
  if (!onPolicyMaps) {
    return policyMaps;
  }
  for (const std::string& type : keysOf(read(kPolicyMapTypes))) {
    if (view.isBuild() || path.size() < 3 || path[2] == type) {
      for (const std::string& name : keysOf(read(InvariantView::join(kPolicyMapTypes, {type, "pmap"})))) {
        policyMaps.emplace(type, name);
      }
    }
  }
  return policyMaps;
}

void InvariantPolicerStats::recount(const InvariantView& view) {
  if (view.isBuild()) {
    countedBy_.clear();
  } else if (!view.reaches(kPolicyMapTypes)) {
    return;
  }
  const auto countersOf = [&](const std::pair<std::string, std::string>& policyMap, bool after) {
    const Path counters =
        InvariantView::join(kPolicyMapTypes, {policyMap.first, "pmap", policyMap.second, "cmapCounters"});
    return keysOf(after ? view.after(counters) : view.before(counters));
  };
  if (!view.isBuild()) {
    for (const auto& policyMap : policyMapsAt(view, false)) {
      for (const std::string& name : countersOf(policyMap, false)) {
        const auto it = countedBy_.find(name);
        if (it != countedBy_.end() && it->second.erase(policyMap) != 0 && it->second.empty()) {
          countedBy_.erase(it);
        }
      }
    }
  }
  for (const auto& policyMap : policyMapsAt(view, true)) {
    for (const std::string& name : countersOf(policyMap, true)) {
      countedBy_[name].insert(policyMap);
    }
  }
}

std::optional<Refusal> InvariantPolicerStats::scanNamed(const InvariantView& view, Machines& machines,
                                                        const std::set<std::string>& names) const {
  // The classes the full scan would look at among `names`, in its order:
  // map types by number, then policy maps, then classes, by name.
  const std::set<std::pair<std::string, std::string>> reached = policyMapsAt(view, true);
  std::set<std::tuple<unsigned long long, std::string, std::string, std::string>> looked;
  const auto typeNumber = [](const std::string& key) {
    const auto type = invariantEnum<Qos::MapType>(Json(key));
    return type ? static_cast<unsigned long long>(*type) : ~0ULL;
  };
  const auto consider = [&](const std::pair<std::string, std::string>& policyMap, const std::string& name) {
    if (view.after(countersPath(policyMap.first, policyMap.second, name)) != nullptr) {
      looked.emplace(typeNumber(policyMap.first), policyMap.first, policyMap.second, name);
    }
  };
  for (const std::string& name : names) {
    if (const auto it = countedBy_.find(name); it != countedBy_.end()) {
      for (const auto& policyMap : it->second) {
        if (reached.count(policyMap) == 0) {
          consider(policyMap, name);
        }
      }
    }
    for (const auto& policyMap : reached) {
      consider(policyMap, name);
    }
  }
  std::optional<Refusal> conflict;
  for (const auto& [number, type, pmapName, cmapName] : looked) {
    const Json* ownType = view.after(InvariantView::join(kPolicyMapTypes, {type, "pmap", pmapName, "type"}));
    look(view, machines, pmapName, ownType, cmapName, conflict);
  }
  return conflict;
}

}  // namespace QosSnmpHost
