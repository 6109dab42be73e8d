#include "host/state/InvariantCoppStatic.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"

namespace QosSnmpHost {
namespace {

using Json = InvariantView::Json;
using Path = InvariantView::Path;

const std::string kControlPlane = Qos::enumName(Qos::mapControlPlane_);

template <typename E>
std::string enumText(E value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// The canonical value as message text ("classMapCpDynamic", "7").
std::string valueText(const Json* value) {
  if (value == nullptr) {
    return "none";
  }
  return value->is_string() ? value->get<std::string>() : value->dump();
}

// What the machine asserts, for the message's close.
std::string assertsClause(bool removing, const char* what) {
  return std::string(" (the static control-plane machine asserts ") + what +
         (removing ? ", also on removal)" : ")");
}

// "hardware status <path> needs <need> first" / "removing hardware status
// <path> needs <need>".
std::string needs(const Path& hwPath, bool removing, const std::string& need) {
  return std::string(removing ? "removing hardware status " : "hardware status ") +
         InvariantView::pointerText(hwPath) + " needs " + need + (removing ? "" : " first");
}

}  // namespace

InvariantCoppStatic::InvariantCoppStatic(const QosSnmp::QosMib& qosMib) : qosMib_(qosMib) {}

const InvariantView::Path& InvariantCoppStatic::coppPolicyMapPath() {
  static const Path kPath = {"qosStatus", "pmapType", kControlPlane, "pmap", QosSnmp::kCoppPolicyMapName};
  return kPath;
}

InvariantCoppStatic::FiledClassMaps InvariantCoppStatic::filedInMib() const {
  FiledClassMaps filed;
  for (const auto& [type, cmap] : qosMib_.cmapByStaticType()) {
    if (cmap) {
      filed[type] = {cmap->name().stringValue(), cmap->cpType(), enumText(cmap->cpType())};
    }
  }
  return filed;
}

InvariantCoppStatic::FiledClassMaps InvariantCoppStatic::filedByBuild(const InvariantView& view) {
  FiledClassMaps filed;
  const Json* cmapTypes = view.after({"qosStatus", "cmapType"});
  if (cmapTypes == nullptr || !cmapTypes->is_object()) {
    return filed;
  }
  // The root makes the class-map machines in map-type order.
  std::vector<std::pair<Qos::MapType, const Json*>> types;
  for (const auto& member : cmapTypes->items()) {
    const std::optional<Qos::MapType> type = invariantEnum<Qos::MapType>(Json(member.key()));
    if (type && *type != Qos::mapPbr_) {
      types.emplace_back(*type, &member.value());
    }
  }
  std::sort(types.begin(), types.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  for (const auto& [type, typeStatus] : types) {
    const auto cmaps = typeStatus->find("cmap");
    if (cmaps == typeStatus->end()) {
      continue;
    }
    for (const auto& cmap : cmaps->items()) {
      if (cmap.key() == QosSnmp::kCoppDropClassMapName) {
        continue;
      }
      const Json& value = cmap.value();
      const auto cmapType = invariantEnum<Qos::MapType>(value.value("type", Json()));
      const auto cpType = invariantEnum<Qos::ClassMapCpType>(value.value("cpType", Json()));
      const auto cpStaticType = invariantEnum<Qos::ClassMapCpStaticType>(value.value("cpStaticType", Json()));
      if (!cpStaticType) {
        continue;
      }
      if (cmapType == Qos::mapControlPlane_ && cpType == Qos::classMapCpStatic_) {
        filed[*cpStaticType] = {cmap.key(), cpType, enumText(*cpType)};
      } else {
        filed.erase(*cpStaticType);
      }
    }
  }
  return filed;
}

std::optional<Refusal> InvariantCoppStatic::classRefusal(const InvariantView& view, const Path& hwPath,
                                                         const std::string& type, const FiledClassMaps& filed,
                                                         bool pmapFresh, bool removing) {
  const auto staticType = invariantEnum<Qos::ClassMapCpStaticType>(Json(type));
  if (!staticType || *staticType == Qos::cpStaticDrop_) {
    return std::nullopt;
  }
  if (*staticType == Qos::cpStaticDefault_) {
    const std::string pmapText = InvariantView::pointerText(coppPolicyMapPath());
    if (!pmapFresh) {
      return Refusal{InvariantView::pointerText(hwPath),
                     needs(hwPath, removing,
                           "a default class, but the machine still holds the deleted " + pmapText +
                               ", which has none until a slice is added") +
                         assertsClause(removing, "one")};
    }
    const Json* classDefault = view.after(InvariantView::join(coppPolicyMapPath(), {"classDefault"}));
    if (classDefault == nullptr || !classDefault->is_string()) {
      return Refusal{InvariantView::pointerText(hwPath),
                     needs(hwPath, removing, "a default class (classDefault) of " + pmapText) +
                         assertsClause(removing, "one")};
    }
    const Path cmapPath = {"qosStatus", "cmapType", kControlPlane, "cmap", classDefault->get<std::string>()};
    const Json* cpType = view.after(InvariantView::join(cmapPath, {"cpType"}));
    if (cpType == nullptr || invariantEnum<Qos::ClassMapCpType>(*cpType) != Qos::classMapCpStatic_) {
      return Refusal{InvariantView::pointerText(hwPath),
                     needs(hwPath, removing,
                           "the default class " + InvariantView::pointerText(cmapPath) +
                               " of copp-system-policy to be a static control-plane class map, not " +
                               valueText(cpType)) +
                         assertsClause(removing, "it")};
    }
    return std::nullopt;
  }
  const auto entry = filed.find(*staticType);
  if (entry == filed.end()) {
    return Refusal{InvariantView::pointerText(hwPath),
                   needs(hwPath, removing, "a static control-plane class map of cpStaticType " + type) +
                       assertsClause(removing, "one")};
  }
  if (entry->second.cpType != Qos::classMapCpStatic_) {
    return Refusal{InvariantView::pointerText(hwPath),
                   needs(hwPath, removing,
                         "its class map \"" + entry->second.name +
                             "\" to be a static control-plane class map, not " + entry->second.cpTypeText) +
                       assertsClause(removing, "it")};
  }
  return std::nullopt;
}

std::optional<Refusal> InvariantCoppStatic::scanRefusal(const InvariantView& view, const std::string& slice,
                                                        const FiledClassMaps& filed, bool pmapFresh) {
  const Path classes = {"sliceHwStatus", slice, "cpStaticClassHwStatus"};
  const Json* present = view.after(classes);
  if (present == nullptr || !present->is_object()) {
    return std::nullopt;
  }
  for (const auto& member : present->items()) {
    if (auto refused = classRefusal(view, InvariantView::join(classes, {member.key()}), member.key(), filed,
                                    pmapFresh, false)) {
      return refused;
    }
  }
  return std::nullopt;
}

std::optional<Refusal> InvariantCoppStatic::refusal(const InvariantView& view,
                                                    const std::optional<std::string>& slice,
                                                    const std::vector<std::string>& added) const {
  const bool pmapPresent = view.after(coppPolicyMapPath()) != nullptr;
  const std::string pmapText = InvariantView::pointerText(coppPolicyMapPath());
  const bool coppSupported = view.flagAfter({"hwStatus", "coppSupported"});
  if (view.isBuild()) {
    if (!pmapPresent) {
      return Refusal{pmapText, "no control-plane policy map " + pmapText +
                                   " (the static control-plane machine asserts it when the agent starts)"};
    }
    return coppSupported && !added.empty() ? scanRefusal(view, added.back(), filedByBuild(view), true)
                                           : std::nullopt;
  }
  // What the MIB files is read only when a rule below needs it: most
  // changes reach no static class.
  std::optional<FiledClassMaps> filedNow;
  const auto filed = [&]() -> const FiledClassMaps& {
    if (!filedNow) {
      filedNow = filedInMib();
    }
    return *filedNow;
  };
  for (const std::string& name : added) {
    if (!pmapPresent) {
      return Refusal{
          InvariantView::pointerText({"sliceHwStatus", name}),
          "slice " + InvariantView::pointerText({"sliceHwStatus", name}) +
              " would rebuild the static control-plane machine without the control-plane policy map " +
              pmapText + " (the machine asserts it)"};
    }
    if (coppSupported) {
      if (auto refused = scanRefusal(view, name, filed(), true)) {
        return refused;
      }
    }
  }
  if (!slice) {
    return std::nullopt;
  }
  const Path classes = {"sliceHwStatus", *slice, "cpStaticClassHwStatus"};
  std::vector<std::string> notified = view.changedMembers(classes);
  // A change inside one class (its hwRank) notifies that class even when it
  // sets the value the class has.
  if (notified.empty() && view.within(classes) && view.path().size() > classes.size() + 1) {
    notified.push_back(view.path()[classes.size()]);
  }
  for (const std::string& type : notified) {
    const Path hwPath = InvariantView::join(classes, {type});
    const bool wasPresent = view.before(hwPath) != nullptr;
    const bool isPresent = view.after(hwPath) != nullptr;
    // A class changed in place (re-ranked) is notified like an added one.
    if (wasPresent || isPresent) {
      if (auto refused = classRefusal(view, hwPath, type, filed(), pmapFresh_, wasPresent && !isPresent)) {
        return refused;
      }
    }
  }
  const Path coppSupportedPath = {"hwStatus", "coppSupported"};
  if (coppSupported && view.reaches(coppSupportedPath) && !view.flagBefore(coppSupportedPath)) {
    return scanRefusal(view, *slice, filed(), pmapFresh_);
  }
  return std::nullopt;
}

void InvariantCoppStatic::applied(const InvariantView& view, const std::vector<std::string>& added) {
  if (view.isBuild() || !added.empty()) {
    pmapFresh_ = true;
  } else if (view.before(coppPolicyMapPath()) != nullptr && view.after(coppPolicyMapPath()) == nullptr) {
    pmapFresh_ = false;
  }
}

}  // namespace QosSnmpHost
