#include "host/state/InvariantClassActions.h"

#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/QosEnums.h"

namespace QosSnmpHost {
namespace {

using Json = InvariantView::Json;
using Path = InvariantView::Path;

const Path kPolicyMapTypes = {"qosStatus", "pmapType"};
const Path kClassMapTypes = {"qosStatus", "cmapType"};

// Map type 2 has no policy-map machines.
bool isMirroredType(const std::string& type) {
  return invariantEnum<Qos::MapType>(Json(type)) != Qos::mapPbr_;
}

const std::string& typeOf(const Path& policyMap) { return policyMap[2]; }

Path policyMapPath(const std::string& type, const std::string& name) {
  return InvariantView::join(kPolicyMapTypes, {type, "pmap", name});
}

Path classActionPath(const Path& policyMap, const std::string& name) {
  return InvariantView::join(policyMap, {"classAction", name});
}

bool classMapExistsAfter(const InvariantView& view, const Path& policyMap, const std::string& name) {
  return view.after(InvariantView::join(kClassMapTypes, {typeOf(policyMap), "cmap", name})) != nullptr;
}

bool isDropClass(const std::string& name) { return name == QosSnmp::kCoppDropClassMapName; }

// The object members' keys at `at` after the transition.
std::vector<std::string> keysAfter(const InvariantView& view, const Path& at) {
  std::vector<std::string> keys;
  const Json* object = view.after(at);
  if (object != nullptr && object->is_object()) {
    for (const auto& member : object->items()) {
      keys.push_back(member.key());
    }
  }
  return keys;
}

// The name of an own default class action (an object); nullopt otherwise.
std::optional<std::string> ownDefaultName(const Json* defaultClassAction) {
  if (defaultClassAction == nullptr || !defaultClassAction->is_object()) {
    return std::nullopt;
  }
  return defaultClassAction->value("name", std::string());
}

}  // namespace

bool InvariantClassActions::followed(const InvariantView& view, const Path& policyMap) {
  if (!isMirroredType(typeOf(policyMap))) {
    return false;
  }
  const Json* type = view.after(InvariantView::join(policyMap, {"type"}));
  return type != nullptr && invariantEnum<Qos::MapType>(*type) != Qos::mapControlPlane_;
}

InvariantClassActions::Reach InvariantClassActions::reachOf(const InvariantView& view, bool sliceAdded) {
  Reach reach;
  if (view.isBuild() || sliceAdded) {
    for (const std::string& type : keysAfter(view, kPolicyMapTypes)) {
      if (isMirroredType(type)) {
        reach.rebuiltTypes.insert(type);
      }
    }
    return reach;
  }
  for (const std::string& type : view.changedMembers(kPolicyMapTypes)) {
    if (!isMirroredType(type)) {
      continue;
    }
    const Path typeStatus = InvariantView::join(kPolicyMapTypes, {type});
    if (view.after(typeStatus) == nullptr) {
      reach.removedTypes.insert(type);
    } else if (view.before(typeStatus) == nullptr) {
      reach.rebuiltTypes.insert(type);
    } else {
      for (const std::string& name : view.changedMembers(InvariantView::join(typeStatus, {"pmap"}))) {
        const Path policyMap = policyMapPath(type, name);
        if (view.within(InvariantView::join(policyMap, {"cmapCounters"}))) {
          // The class machine does not watch counters.
          continue;
        }
        (view.after(policyMap) == nullptr ? reach.removedPolicyMaps : reach.changedPolicyMaps)
            .push_back(policyMap);
      }
    }
  }
  for (const std::string& type : view.changedMembers(kClassMapTypes)) {
    const Path classMaps = InvariantView::join(kClassMapTypes, {type, "cmap"});
    for (const std::string& name : view.changedMembers(classMaps)) {
      const Path classMap = InvariantView::join(classMaps, {name});
      if ((view.before(classMap) == nullptr) != (view.after(classMap) == nullptr)) {
        reach.classMaps[type].insert(name);
      }
    }
  }
  return reach;
}

std::optional<Refusal> InvariantClassActions::sameNameRefusal(const InvariantView& view,
                                                              const Path& policyMap) {
  const auto own = ownDefaultName(view.after(InvariantView::join(policyMap, {"defaultClassAction"})));
  if (!own || isDropClass(*own) || view.after(classActionPath(policyMap, *own)) == nullptr ||
      !classMapExistsAfter(view, policyMap, *own)) {
    return std::nullopt;
  }
  return Refusal{
      InvariantView::pointerText(InvariantView::join(policyMap, {"defaultClassAction"})),
      "policy map " + InvariantView::pointerText(policyMap) + ": its own default class action \"" + *own +
          "\" and its class action " + InvariantView::pointerText(classActionPath(policyMap, *own)) +
          " would be two entities under one name (the class machine keys its action machines by name and "
          "cannot re-create one for another entity)"};
}

// One class machine's requests during one transition, replayed against the
// action machines it holds. Each class-action entity has an id: "m/<name>"
// a class action, "d/<name>" an own default class action, with a trailing
// "+" when the transition makes it; "gone" for one that left the document
// before the transition.
class InvariantClassActions::Replayer {
 public:
  Replayer(const InvariantView& view, const Path& policyMap, const HeldByName* held, Sight sight)
      : view_(view),
        policyMap_(policyMap),
        held_(held),
        sight_(sight),
        defaultPath_(InvariantView::join(policyMap, {"defaultClassAction"})),
        oldOwn_(ownDefaultName(view.before(defaultPath_))),
        newOwn_(ownDefaultName(view.after(defaultPath_))) {
    if (held != nullptr) {
      for (const auto& [name, machine] : *held) {
        ids_[name] = machine.gone ? "gone" : (machine.ownDefault ? "d/" : "m/") + name;
      }
    }
  }

  // The machine made afresh over the document after the transition: its
  // default class action first, then its class actions.
  void made() {
    if (!followed(view_, policyMap_)) {
      return;
    }
    ask(defaultAt(view_.after(defaultPath_), false));
    for (const std::string& name : keysAfter(view_, InvariantView::join(policyMap_, {"classAction"}))) {
      consider(name, memberId(name));
    }
  }

  // The machine changed in place: the class maps that came or went first,
  // while the policy map is as it was; then the policy map's class actions
  // (deleted, then added), its classDefault (which asks for the default
  // class action the policy map still holds) and its default class action.
  void changed(const std::set<std::string>& classMaps) {
    const Json* typeBefore = view_.before(InvariantView::join(policyMap_, {"type"}));
    if (sight_.before && typeBefore != nullptr &&
        invariantEnum<Qos::MapType>(*typeBefore) != Qos::mapControlPlane_) {
      for (const std::string& name : classMaps) {
        if (view_.before(classActionPath(policyMap_, name)) != nullptr) {
          consider(name, "m/" + name);
        }
      }
    }
    if (!followed(view_, policyMap_)) {
      return;
    }
    const std::vector<std::string> actions =
        view_.changedMembers(InvariantView::join(policyMap_, {"classAction"}));
    for (const std::string& name : actions) {
      if (view_.after(classActionPath(policyMap_, name)) == nullptr && !isDropClass(name)) {
        drop(name);
      }
    }
    for (const std::string& name : actions) {
      if (view_.before(classActionPath(policyMap_, name)) == nullptr) {
        consider(name, memberId(name));
      }
    }
    const Path classDefault = InvariantView::join(policyMap_, {"classDefault"});
    const Json* newClassDefault = view_.after(classDefault);
    if (view_.changed(classDefault) && newClassDefault != nullptr && newClassDefault->is_string()) {
      ask(defaultAt(view_.before(defaultPath_), true));
    }
    const bool defaultReplaced = oldOwn_ || newOwn_ ? oldOwn_ != newOwn_ : view_.changed(defaultPath_);
    if (defaultReplaced) {
      ask(defaultAt(view_.after(defaultPath_), false));
    }
  }

  // The action machines held after the transition, and the first conflict.
  Replay result() const {
    Replay result;
    result.conflict = conflict_;
    for (const auto& [name, id] : ids_) {
      Held& machine = result.held[name];
      if (id == "gone") {
        machine = {held_->at(name).ownDefault, true};
      } else if (id.starts_with("d/")) {
        machine = {true, !id.ends_with("+") && !(oldOwn_ == name && newOwn_ == name)};
      } else {
        machine = {false, !id.ends_with("+") && view_.after(classActionPath(policyMap_, name)) == nullptr};
      }
    }
    return result;
  }

 private:
  // A request for an action machine: its name and the id of its entity.
  using Request = std::optional<std::pair<std::string, std::string>>;

  std::string memberId(const std::string& name) const {
    return "m/" + name + (view_.before(classActionPath(policyMap_, name)) != nullptr ? "" : "+");
  }

  // The request the default class action `value` makes, as it is before or
  // after the transition.
  Request defaultAt(const Json* value, bool before) const {
    if (const auto own = ownDefaultName(value)) {
      return std::make_pair(*own, "d/" + *own + (before || oldOwn_ == own ? "" : "+"));
    }
    if (value != nullptr && value->is_string()) {
      const auto& name = value->get_ref<const std::string&>();
      return std::make_pair(name, before ? "m/" + name : memberId(name));
    }
    return std::nullopt;
  }

  std::string describe(const std::string& name, const std::string& id) const {
    if (id == "gone") {
      return held_->at(name).ownDefault ? "an earlier default class action" : "a deleted class action";
    }
    if (id.starts_with("d/")) {
      if (id.ends_with("+")) {
        return "its new default class action";
      }
      return oldOwn_ == newOwn_ ? "its default class action" : "an earlier default class action";
    }
    if (!id.ends_with("+") && view_.after(classActionPath(policyMap_, name)) == nullptr) {
      return "a deleted class action";
    }
    return "its class action " + InvariantView::pointerText(classActionPath(policyMap_, name));
  }

  void ask(const Request& request) {
    if (!request || conflict_) {
      return;
    }
    const auto& [name, id] = *request;
    const auto [machine, made] = ids_.try_emplace(name, id);
    if (!made && machine->second != id) {
      conflict_ = Refusal{
          InvariantView::pointerText(policyMap_),
          "policy map " + InvariantView::pointerText(policyMap_) + ": " + describe(name, id) +
              " cannot take the name \"" + name + "\" from " + describe(name, machine->second) +
              ", which the agent still holds (the class machine keeps an action machine until the policy "
              "map is rebuilt and cannot re-create it for another entity)"};
    }
  }

  void drop(const std::string& name) {
    if (!conflict_) {
      ids_.erase(name);
    }
  }

  // A class action (re)considered: asked for when its class map exists, its
  // name's action machine dropped otherwise.
  void consider(const std::string& name, const std::string& id) {
    if (isDropClass(name)) {
      return;
    }
    if (sight_.after && classMapExistsAfter(view_, policyMap_, name)) {
      ask(std::make_pair(name, id));
    } else {
      drop(name);
    }
  }

  const InvariantView& view_;
  const Path& policyMap_;
  const HeldByName* held_;
  Sight sight_;
  Path defaultPath_;
  std::optional<std::string> oldOwn_;
  std::optional<std::string> newOwn_;
  std::map<std::string, std::string> ids_;
  std::optional<Refusal> conflict_;
};

InvariantClassActions::Replay InvariantClassActions::replay(const InvariantView& view, const Path& policyMap,
                                                            const HeldByName* held,
                                                            const std::set<std::string>& classMaps,
                                                            Sight sight) {
  Replayer replayer(view, policyMap, held, sight);
  if (held == nullptr) {
    replayer.made();
  } else {
    replayer.changed(classMaps);
  }
  return replayer.result();
}

std::vector<InvariantClassActions::Reached> InvariantClassActions::reached(const InvariantView& view,
                                                                           const Reach& reach) {
  static const std::set<std::string> kNone;
  std::vector<Reached> result;
  std::set<std::string> listed;
  const auto add = [&](const Path& policyMap, const std::set<std::string>* classMaps, bool afresh) {
    if (isMirroredType(typeOf(policyMap)) && listed.insert(InvariantView::pointerText(policyMap)).second) {
      result.push_back({policyMap, classMaps, afresh});
    }
  };
  for (const std::string& type : reach.rebuiltTypes) {
    for (const std::string& name : keysAfter(view, InvariantView::join(kPolicyMapTypes, {type, "pmap"}))) {
      add(policyMapPath(type, name), &kNone, true);
    }
  }
  for (const Path& policyMap : reach.changedPolicyMaps) {
    const auto classMaps = reach.classMaps.find(typeOf(policyMap));
    add(policyMap, classMaps == reach.classMaps.end() ? &kNone : &classMaps->second,
        view.before(policyMap) == nullptr);
  }
  for (const auto& [type, names] : reach.classMaps) {
    if (reach.rebuiltTypes.count(type) != 0) {
      continue;
    }
    for (const std::string& name : keysAfter(view, InvariantView::join(kPolicyMapTypes, {type, "pmap"}))) {
      const Path policyMap = policyMapPath(type, name);
      for (const std::string& cmap : names) {
        if (view.before(classActionPath(policyMap, cmap)) != nullptr) {
          add(policyMap, &names, false);
          break;
        }
      }
    }
  }
  return result;
}

InvariantClassActions::Sight InvariantClassActions::sightOf(const InvariantView& view, const Reach& reach,
                                                            const std::string& type) const {
  const Path classMaps = InvariantView::join(kClassMapTypes, {type});
  if (reach.rebuiltTypes.count(type) != 0) {
    // Made afresh over the class-map type status present now.
    return {true, view.after(classMaps) != nullptr};
  }
  // A class-map type status deleted stays the one watched, empty.
  const bool before = blind_.count(type) == 0;
  return {before, before && view.after(classMaps) != nullptr && view.before(classMaps) != nullptr};
}

const InvariantClassActions::HeldByName* InvariantClassActions::heldOf(const Path& policyMap) const {
  static const HeldByName kNone;
  const auto held = held_.find(InvariantView::pointerText(policyMap));
  return held == held_.end() ? &kNone : &held->second;
}

std::optional<Refusal> InvariantClassActions::refusal(const InvariantView& view, bool sliceAdded) const {
  // Reached points into the reach: both stay alive for the loop.
  const Reach reach = reachOf(view, sliceAdded);
  for (const Reached& machine : reached(view, reach)) {
    if (followed(view, machine.policyMap)) {
      if (auto refused = sameNameRefusal(view, machine.policyMap)) {
        return refused;
      }
    }
    Replay replayed = replay(view, machine.policyMap, machine.afresh ? nullptr : heldOf(machine.policyMap),
                             *machine.classMaps, sightOf(view, reach, typeOf(machine.policyMap)));
    if (replayed.conflict) {
      return std::move(replayed.conflict);
    }
  }
  return std::nullopt;
}

void InvariantClassActions::forgetType(const std::string& type) {
  const std::string prefix =
      InvariantView::pointerText(InvariantView::join(kPolicyMapTypes, {type, "pmap"})) + "/";
  for (auto it = held_.lower_bound(prefix); it != held_.end() && it->first.starts_with(prefix);) {
    it = held_.erase(it);
  }
}

void InvariantClassActions::applied(const InvariantView& view, bool sliceAdded) {
  const Reach reach = reachOf(view, sliceAdded);
  if (view.isBuild()) {
    held_.clear();
  }
  for (const std::string& type : reach.removedTypes) {
    forgetType(type);
  }
  for (const std::string& type : reach.rebuiltTypes) {
    forgetType(type);
  }
  for (const Path& policyMap : reach.removedPolicyMaps) {
    held_.erase(InvariantView::pointerText(policyMap));
  }
  for (const Reached& machine : reached(view, reach)) {
    Replay replayed = replay(view, machine.policyMap, machine.afresh ? nullptr : heldOf(machine.policyMap),
                             *machine.classMaps, sightOf(view, reach, typeOf(machine.policyMap)));
    const std::string key = InvariantView::pointerText(machine.policyMap);
    if (replayed.held.empty()) {
      held_.erase(key);
    } else {
      held_[key] = std::move(replayed.held);
    }
  }
  // Which map types' class machines see class maps from now on.
  if (view.isBuild()) {
    blind_.clear();
  }
  std::set<std::string> types = reach.rebuiltTypes;
  for (const std::string& type : view.changedMembers(kClassMapTypes)) {
    types.insert(type);
  }
  for (const std::string& type : types) {
    if (sightOf(view, reach, type).after) {
      blind_.erase(type);
    } else {
      blind_.insert(type);
    }
  }
}

}  // namespace QosSnmpHost
