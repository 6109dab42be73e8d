#include "host/state/StateSchema.h"

#include <algorithm>
#include <map>
#include <set>
#include <type_traits>
#include <utility>

#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/AllIntfStatusDir.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/CpStaticClassHwStatus.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/EcnIntfCounterStatus.h"
#include "QosSnmp/core/EcnIntfQueueCounter.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/IntfStatus.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "QosSnmp/core/SliceHwCounter.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "host/state/StateCodec.h"
#include "kel/Dir.h"
#include "kel/Make.h"

namespace QosSnmpHost {
namespace {

// ---- Traits of the model's mutators -------------------------------------

template <typename F>
struct Mutator;
// A scalar setter: void E::xIs(T).
template <typename E, typename R, typename A>
struct Mutator<R (E::*)(A)> {
  using Entity = E;
  using Arg = std::decay_t<A>;
};
// A member setter: void E::xIs(K, V).
template <typename E, typename R, typename K, typename V>
struct Mutator<R (E::*)(K, V)> {
  using Entity = E;
  using Key = std::decay_t<K>;
  using Value = std::decay_t<V>;
};

template <typename P>
struct PtrTarget;
template <typename T>
struct PtrTarget<Kel::Ptr<T>> {
  using Type = T;
};

template <typename E>
E& as(Kel::Entity& entity) {
  return static_cast<E&>(entity);
}

// ---- Attribute declarators ----------------------------------------------

// A scalar attribute set through `Setter`; `defaultValue` as written in a
// document (the type's zero when absent).
template <auto Setter>
Attr scalar(std::string name, const Json& defaultValue = nullptr) {
  using E = typename Mutator<decltype(Setter)>::Entity;
  using T = typename Mutator<decltype(Setter)>::Arg;
  Attr attr;
  attr.name = std::move(name);
  attr.kind = Attr::Kind::scalar;
  attr.valueExpected = &ValueCodec<T>::expected;
  attr.valueCanonical = &ValueCodec<T>::canonical;
  attr.defaultValue = defaultValue.is_null() ? ValueCodec<T>::zero()
                                             : detail::present(ValueCodec<T>::canonical(defaultValue));
  attr.setScalar = [](Kel::Entity& holder, const Json& value) {
    (as<E>(holder).*Setter)(ValueCodec<T>::value(value));
  };
  return attr;
}

// A scalar whose default is the key its entity's holder is listed under.
template <auto Setter>
Attr scalarDefaultingToOwnerKey(std::string name) {
  Attr attr = scalar<Setter>(std::move(name));
  attr.defaultIsOwnerKey = true;
  return attr;
}

template <typename KeyForm, typename Key>
void setKeyForm(Attr& attr, std::string keyExpected) {
  attr.keyExpected = keyExpected.empty() ? KeyCodec<KeyForm>::expected() : std::move(keyExpected);
  attr.keyCanonical = &KeyCodec<KeyForm>::canonical;
}

// A collection of values, added through `Is` and deleted through `Del`.
template <auto Is, auto Del>
Attr values(std::string name, std::string keyExpected = {}) {
  using E = typename Mutator<decltype(Is)>::Entity;
  using K = typename Mutator<decltype(Is)>::Key;
  using V = typename Mutator<decltype(Is)>::Value;
  Attr attr;
  attr.name = std::move(name);
  attr.kind = Attr::Kind::values;
  attr.valueExpected = &ValueCodec<V>::expected;
  attr.valueCanonical = &ValueCodec<V>::canonical;
  setKeyForm<K, K>(attr, std::move(keyExpected));
  attr.setValue = [](Kel::Entity& holder, const std::string& key, const Json& value) {
    (as<E>(holder).*Is)(KeyCodec<K>::key(key), ValueCodec<V>::value(value));
  };
  attr.delMember = [](Kel::Entity& holder, const std::string& key) {
    (as<E>(holder).*Del)(KeyCodec<K>::key(key));
  };
  return attr;
}

// A collection of member entities of type M (the setter's pointee unless
// given), each built from its key; KeyForm checks the keys' form when it is
// stricter than the key type (an interface name held as a string).
template <auto Is, auto Del, typename M = void, typename KeyForm = void>
Attr entities(std::string name, const EntityType& member, std::string keyExpected = {}) {
  using E = typename Mutator<decltype(Is)>::Entity;
  using K = typename Mutator<decltype(Is)>::Key;
  using V = typename Mutator<decltype(Is)>::Value;
  using Member = std::conditional_t<std::is_void_v<M>, typename PtrTarget<V>::Type, M>;
  using Form = std::conditional_t<std::is_void_v<KeyForm>, K, KeyForm>;
  Attr attr;
  attr.name = std::move(name);
  attr.kind = Attr::Kind::entities;
  attr.member = &member;
  setKeyForm<Form, K>(attr, std::move(keyExpected));
  attr.makeMember = [](const std::string& key) -> Kel::Ptr<Kel::Entity> {
    return Kel::make<Member>(KeyCodec<K>::key(key));
  };
  attr.addEntity = [](Kel::Entity& holder, const std::string& key, const Kel::Ptr<Kel::Entity>& entity) {
    (as<E>(holder).*Is)(KeyCodec<K>::key(key), Kel::ptrCast<typename PtrTarget<V>::Type>(entity));
  };
  attr.delMember = [](Kel::Entity& holder, const std::string& key) {
    (as<E>(holder).*Del)(KeyCodec<K>::key(key));
  };
  return attr;
}

// Two collections report a member changed in place as a change of its key,
// as the state database does for them: the interface status directory (an
// interface's ifIndex changes while it stays listed) and a slice's static
// control-plane classes (the hardware re-ranks a class in place).
template <typename CollectionAttr>
void notifyMemberChanged(Kel::Entity& holder, const std::string& key) {
  Kel::notifyMemberChanged<CollectionAttr>(holder, KeyCodec<typename CollectionAttr::Key>::key(key));
}

Attr intfStatusMembers(const EntityType& intfStatus) {
  Attr attr =
      entities<&Interface::AllIntfStatusDir::intfStatusIs, &Interface::AllIntfStatusDir::intfStatusDel>(
          "intfStatus", intfStatus);
  attr.memberChanged = &notifyMemberChanged<Interface::AllIntfStatusDir::IntfStatus>;
  return attr;
}

Attr cpStaticClassMembers(const EntityType& cpStaticClassHwStatus) {
  Attr attr =
      entities<&Qos::SliceHwStatus::cpStaticClassHwStatusIs, &Qos::SliceHwStatus::cpStaticClassHwStatusDel>(
          "cpStaticClassHwStatus", cpStaticClassHwStatus);
  attr.memberChanged = &notifyMemberChanged<Qos::SliceHwStatus::CpStaticClassHwStatus>;
  return attr;
}

template <auto Setter>
void setEntityValued(Attr& attr, Attr::Kind kind, std::string referenceNoun,
                     JsonPointer (*referencePath)(const JsonPointer&, const std::string&)) {
  using E = typename Mutator<decltype(Setter)>::Entity;
  using T = typename PtrTarget<typename Mutator<decltype(Setter)>::Arg>::Type;
  attr.kind = kind;
  attr.referenceNoun = std::move(referenceNoun);
  attr.referencePath = referencePath;
  attr.setEntity = [](Kel::Entity& holder, const Kel::Ptr<Kel::Entity>& entity) {
    (as<E>(holder).*Setter)(Kel::ptrCast<T>(entity));
  };
}

// An entity-valued scalar that names an entity held elsewhere.
template <auto Setter>
Attr reference(std::string name, std::string referenceNoun,
               JsonPointer (*referencePath)(const JsonPointer&, const std::string&)) {
  Attr attr;
  attr.name = std::move(name);
  setEntityValued<Setter>(attr, Attr::Kind::reference, std::move(referenceNoun), referencePath);
  return attr;
}

// An entity-valued scalar holding either its own entity (built from its
// name) or a reference.
template <auto Setter>
Attr entityOrReference(std::string name, const EntityType& member, std::string referenceNoun,
                       JsonPointer (*referencePath)(const JsonPointer&, const std::string&)) {
  using T = typename PtrTarget<typename Mutator<decltype(Setter)>::Arg>::Type;
  Attr attr;
  attr.name = std::move(name);
  attr.member = &member;
  attr.makeMember = [](const std::string& name) -> Kel::Ptr<Kel::Entity> {
    return Kel::make<T>(Kel::String(name));
  };
  setEntityValued<Setter>(attr, Attr::Kind::entityOrReference, std::move(referenceNoun), referencePath);
  return attr;
}

EntityType entity(std::string name, std::vector<Attr> attrs) {
  EntityType type;
  type.name = std::move(name);
  type.attrs = std::move(attrs);
  for (const auto& attr : type.attrs) {
    type.holdsReferences = type.holdsReferences || attr.isEntityValued() ||
                           (attr.member != nullptr && attr.member->holdsReferences);
  }
  return type;
}

EntityType flatEntity(std::string name, Attr members) {
  EntityType type = entity(std::move(name), {std::move(members)});
  type.flat = true;
  return type;
}

template <typename E>
EntityType root(EntityType type) {
  type.makeRoot = [](const std::string& name) -> Kel::Ptr<Kel::Entity> {
    return Kel::make<E>(Kel::String(name));
  };
  return type;
}

// A policy map's default class: /qosStatus/cmapType/<its map type>/cmap/<name>.
JsonPointer classMapOfPolicyMap(const JsonPointer& policyMap, const std::string& name) {
  const JsonPointer typeStatus = policyMap.parent_pointer().parent_pointer();
  return JsonPointer("/qosStatus/cmapType") / typeStatus.back() / "cmap" / name;
}

// A policy map's default class action by name: its own classAction member.
JsonPointer classActionOfPolicyMap(const JsonPointer& policyMap, const std::string& name) {
  return policyMap / "classAction" / name;
}

// ---- The tables ---------------------------------------------------------
//
// Members are declared before the types that hold them.
struct Tables {  // NOLINT(bugprone-exception-escape): built once, on first use
  using CMS = Qos::ClassMapStatus;
  using PMS = Qos::PolicyMapStatus;
  using A = Qos::Action;
  using CHS = Qos::ClassMapHwStatus;
  using PHS = Qos::PolicerHwStatus;
  using HS = Qos::HwStatus;
  using CC = Qos::ChipCounter;
  using IQC = Qos::EcnIntfQueueCounter;

  EntityType classMapMatch = entity("ClassMapMatch", {scalar<&Qos::ClassMapMatch::valueIs>("value")});
  EntityType classMapStatus =
      entity("ClassMapStatus", {
                                   scalarDefaultingToOwnerKey<&CMS::typeIs>("type"),
                                   scalar<&CMS::cpTypeIs>("cpType"),
                                   scalar<&CMS::cpStaticTypeIs>("cpStaticType"),
                                   scalar<&CMS::matchConditionIs>("matchCondition"),
                                   entities<&CMS::matchIs, &CMS::matchDel>("match", classMapMatch),
                               });
  EntityType classMapTypeStatus = entity(
      "ClassMapTypeStatus", {entities<&Qos::ClassMapTypeStatus::cmapIs, &Qos::ClassMapTypeStatus::cmapDel>(
                                "cmap", classMapStatus, "a class-map name (a non-empty string)")});
  EntityType action = entity("Action", {
                                           scalar<&A::valueIs>("value"),
                                           scalar<&A::rateIs>("rate"),
                                           scalar<&A::rateUnitIs>("rateUnit"),
                                           scalar<&A::burstSizeIs>("burstSize"),
                                           scalar<&A::peakRateIs>("peakRate"),
                                           scalar<&A::peakBurstSizeIs>("peakBurstSize"),
                                       });
  Attr policyActions() const {
    return entities<&Qos::ClassAction::policyActionIs, &Qos::ClassAction::policyActionDel>("policyAction",
                                                                                           action);
  }
  EntityType classAction = entity("ClassAction", {policyActions()});
  EntityType namedClassAction = [this] {
    EntityType type = entity("ClassAction", {policyActions()});
    type.named = true;
    return type;
  }();
  EntityType classPriority = entity("ClassPriority", {scalar<&Qos::ClassPriority::cmapNameIs>("cmapName")});
  EntityType policerHwStatus =
      entity("PolicerHwStatus", {
                                    scalar<&PHS::conformedPacketsIs>("conformedPackets"),
                                    scalar<&PHS::conformedBytesIs>("conformedBytes"),
                                    scalar<&PHS::exceededPacketsIs>("exceededPackets"),
                                    scalar<&PHS::exceededBytesIs>("exceededBytes"),
                                    scalar<&PHS::violatedPacketsIs>("violatedPackets"),
                                    scalar<&PHS::violatedBytesIs>("violatedBytes"),
                                });
  EntityType counter = entity(
      "Counter",
      {
          scalar<&Qos::Counter::packetsIs>("packets"),
          scalar<&Qos::Counter::bytesIs>("bytes"),
          scalar<&Qos::Counter::droppedPacketsIs>("droppedPackets"),
          scalar<&Qos::Counter::droppedBytesIs>("droppedBytes"),
          entities<&Qos::Counter::policerHwStatusIs, &Qos::Counter::policerHwStatusDel, void, Pellix::IntfId>(
              "policerHwStatus", policerHwStatus),
      });
  EntityType policyMapStatus =
      entity("PolicyMapStatus",
             {
                 scalarDefaultingToOwnerKey<&PMS::typeIs>("type"),
                 entities<&PMS::classActionIs, &PMS::classActionDel>("classAction", classAction,
                                                                     "a class-map name (a non-empty string)"),
                 entities<&PMS::classPrioIs, &PMS::classPrioDel>("classPrio", classPriority,
                                                                 "a priority (unsigned 32-bit decimal)"),
                 reference<&PMS::classDefaultIs>("classDefault", "class map", &classMapOfPolicyMap),
                 entityOrReference<&PMS::defaultClassActionIs>("defaultClassAction", namedClassAction,
                                                               "class action", &classActionOfPolicyMap),
                 entities<&PMS::cmapCountersIs, &PMS::cmapCountersDel>(
                     "cmapCounters", counter, "a class-map name (a non-empty string)"),
             });
  EntityType policyMapTypeStatus = entity(
      "PolicyMapTypeStatus", {entities<&Qos::PolicyMapTypeStatus::pmapIs, &Qos::PolicyMapTypeStatus::pmapDel>(
                                 "pmap", policyMapStatus, "a policy-map name (a non-empty string)")});
  EntityType servicePolicyStatus = entity(
      "ServicePolicyStatus",
      {values<&Qos::ServicePolicyStatus::intfIdsIs, &Qos::ServicePolicyStatus::intfIdsDel>("intfIds")});
  EntityType status = root<Qos::Status>(entity(
      "Status",
      {
          entities<&Qos::Status::cmapTypeIs, &Qos::Status::cmapTypeDel>("cmapType", classMapTypeStatus),
          entities<&Qos::Status::pmapTypeIs, &Qos::Status::pmapTypeDel>("pmapType", policyMapTypeStatus),
          entities<&Qos::Status::servicePolicyStatusIs, &Qos::Status::servicePolicyStatusDel>(
              "servicePolicyStatus", servicePolicyStatus),
      }));
  EntityType servicePolicyConfig = entity(
      "ServicePolicyConfig",
      {values<&Qos::ServicePolicyConfig::intfIdsIs, &Qos::ServicePolicyConfig::intfIdsDel>("intfIds")});
  EntityType config = root<Qos::Config>(
      entity("Config", {entities<&Qos::Config::servicePolicyConfigIs, &Qos::Config::servicePolicyConfigDel>(
                           "servicePolicyConfig", servicePolicyConfig)}));
  EntityType hwStatus =
      root<HS>(entity("HwStatus", {
                                      scalar<&HS::coppSupportedIs>("coppSupported"),
                                      scalar<&HS::coppHwStatsSupportedIs>("coppHwStatsSupported"),
                                      scalar<&HS::ecnCountersSupportedIs>("ecnCountersSupported"),
                                      scalar<&HS::ecnQueueCountersSupportedIs>("ecnQueueCountersSupported"),
                                      scalar<&HS::ecnQueueCountersFlagIs>("ecnQueueCountersFlag"),
                                      scalar<&HS::numEcnQueuesIs>("numEcnQueues"),
                                  }));
  EntityType classMapHwStatus =
      entity("ClassMapHwStatus", {
                                     scalar<&CHS::programmingStatusIs>("programmingStatus"),
                                     scalar<&CHS::packetsIs>("packets"),
                                     scalar<&CHS::bytesIs>("bytes"),
                                     scalar<&CHS::droppedPacketsIs>("droppedPackets"),
                                     scalar<&CHS::droppedBytesIs>("droppedBytes"),
                                     scalar<&CHS::shapeRateIs>("shapeRate"),
                                     scalar<&CHS::bandwidthIs>("bandwidth"),
                                 });
  EntityType policyMapHwStatus = entity(
      "PolicyMapHwStatus", {
                               scalar<&Qos::PolicyMapHwStatus::pmapKindIs>("pmapKind"),
                               entities<&Qos::PolicyMapHwStatus::cmapIs, &Qos::PolicyMapHwStatus::cmapDel>(
                                   "cmap", classMapHwStatus, "a class-map name (a non-empty string)"),
                           });
  EntityType policyMapTypeHwStatus =
      entity("PolicyMapTypeHwStatus",
             {entities<&Qos::PolicyMapTypeHwStatus::pmapIs, &Qos::PolicyMapTypeHwStatus::pmapDel>(
                 "pmap", policyMapHwStatus)});
  EntityType cpStaticClassHwStatus =
      entity("CpStaticClassHwStatus",
             {
                 scalar<&Qos::CpStaticClassHwStatus::hwRankIs>("hwRank"),
                 scalar<&Qos::CpStaticClassHwStatus::programmingStatusIs>("programmingStatus"),
             });
  EntityType ecnIntfCounterStatus = entity(
      "EcnIntfCounterStatus", {scalar<&Qos::EcnIntfCounterStatus::programmingStatusIs>("programmingStatus")});
  EntityType sliceHwStatus =
      entity("SliceHwStatus",
             {
                 entities<&Qos::SliceHwStatus::pmapTypeHwStatusIs, &Qos::SliceHwStatus::pmapTypeHwStatusDel>(
                     "pmapTypeHwStatus", policyMapTypeHwStatus),
                 cpStaticClassMembers(cpStaticClassHwStatus),
                 entities<&Qos::SliceHwStatus::ecnIntfCounterHwStatusIs,
                          &Qos::SliceHwStatus::ecnIntfCounterHwStatusDel>("ecnIntfCounterHwStatus",
                                                                          ecnIntfCounterStatus),
             });
  EntityType aclSliceHwStatus = entity(
      "AclSliceHwStatus",
      {entities<&Qos::AclSliceHwStatus::pmapTypeHwStatusIs, &Qos::AclSliceHwStatus::pmapTypeHwStatusDel>(
          "pmapTypeHwStatus", policyMapTypeHwStatus)});
  EntityType sliceDir = root<Kel::Dir>(
      flatEntity("Dir", entities<&Kel::Dir::entityIs, &Kel::Dir::entityDel, Qos::SliceHwStatus>(
                            "sliceHwStatus", sliceHwStatus, "a slice name (a non-empty string)")));
  EntityType aclSliceDir = root<Kel::Dir>(
      flatEntity("Dir", entities<&Kel::Dir::entityIs, &Kel::Dir::entityDel, Qos::AclSliceHwStatus>(
                            "aclSliceHwStatus", aclSliceHwStatus, "a slice name (a non-empty string)")));
  EntityType mibConfig = root<QosSnmp::QosMibConfig>(
      entity("QosMibConfig", {scalar<&QosSnmp::QosMibConfig::counterPollPeriodIs>(
                                 "counterPollPeriod", QosSnmp::QosMibConfig::kDefaultCounterPollPeriod)}));
  EntityType intfStatus = entity(
      "IntfStatus",
      {
          scalar<&Interface::IntfStatus::snmpIfIndexIs>("snmpIfIndex", Interface::IntfStatus::kIfIndexNone),
          scalar<&Interface::IntfStatus::operStatusIs>("operStatus"),
          scalar<&Interface::IntfStatus::descriptionIs>("description"),
      });
  EntityType allIntfStatusDir =
      root<Interface::AllIntfStatusDir>(flatEntity("AllIntfStatusDir", intfStatusMembers(intfStatus)));
  EntityType chipCounter = entity("ChipCounter", {
                                                     scalar<&CC::ecnMarkedPacketsIs>("ecnMarkedPackets"),
                                                     scalar<&CC::ecnMarkedBytesIs>("ecnMarkedBytes"),
                                                     scalar<&CC::ecnDroppedPacketsIs>("ecnDroppedPackets"),
                                                 });
  EntityType sliceHwCounter =
      entity("SliceHwCounter",
             {entities<&Qos::SliceHwCounter::perChipCountIs, &Qos::SliceHwCounter::perChipCountDel>(
                 "perChipCount", chipCounter, "a chip name (a non-empty string)")});
  EntityType hwCounter = root<Qos::HwCounter>(
      entity("HwCounter", {entities<&Qos::HwCounter::sliceHwCounterIs, &Qos::HwCounter::sliceHwCounterDel>(
                              "sliceHwCounter", sliceHwCounter, "a slice name (a non-empty string)")}));
  EntityType ecnIntfQueueCounter =
      entity("EcnIntfQueueCounter", {
                                        values<&IQC::queueMarkedPacketsIs, &IQC::queueMarkedPacketsDel>(
                                            "queueMarkedPackets", "a queue number (unsigned 8-bit decimal)"),
                                        values<&IQC::queueMarkedBytesIs, &IQC::queueMarkedBytesDel>(
                                            "queueMarkedBytes", "a queue number (unsigned 8-bit decimal)"),
                                    });
  EntityType ecnCounterTable = root<Qos::EcnCounterTable>(
      entity("EcnCounterTable",
             {entities<&Qos::EcnCounterTable::intfQueueCounterIs, &Qos::EcnCounterTable::intfQueueCounterDel>(
                 "intfQueueCounter", ecnIntfQueueCounter)}));

  StateSchema schema{{
      {"qosConfig", &config},
      {"qosStatus", &status},
      {"hwStatus", &hwStatus},
      {"sliceHwStatus", &sliceDir},
      {"aclSliceHwStatus", &aclSliceDir},
      {"mibConfig", &mibConfig},
      {"intfStatus", &allIntfStatusDir},
      {"hwCounter", &hwCounter},
      {"ecnCounterTable", &ecnCounterTable},
  }};
};

std::string quotedList(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    list += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + ("\"" + names[i] + "\"");
  }
  return list;
}

SchemaError mismatch(const JsonPointer& path, const std::string& expected, const Json& got) {
  return SchemaError{path, "expected " + expected + ", got " + detail::shown(got)};
}

}  // namespace

const Attr* EntityType::attr(std::string_view attrName) const {
  for (const auto& attr : attrs) {
    if (attr.name == attrName) {
      return &attr;
    }
  }
  return nullptr;
}

std::string EntityType::attrList() const {
  std::vector<std::string> names;
  if (named) {
    names.emplace_back("name");
  }
  for (const auto& attr : attrs) {
    names.push_back(attr.name);
  }
  return quotedList(names);
}

const StateSchema::Root* StateSchema::root(std::string_view name) const {
  for (const auto& root : roots) {
    if (root.name == name) {
      return &root;
    }
  }
  return nullptr;
}

std::string StateSchema::rootList() const {
  std::vector<std::string> names;
  names.reserve(roots.size());
  for (const auto& root : roots) {
    names.push_back(root.name);
  }
  return quotedList(names);
}

const StateSchema& stateSchema() {
  static const Tables kTables;
  return kTables.schema;
}

std::string pointerAppend(std::string text, std::string_view key) {
  text += '/';
  for (const char c : key) {
    if (c == '~') {
      text += "~0";
    } else if (c == '/') {
      text += "~1";
    } else {
      text += c;
    }
  }
  return text;
}

std::string canonicalKey(const Attr& attr, std::string_view raw, const JsonPointer& path) {
  auto key = attr.keyCanonical(raw);
  if (!key) {
    throw mismatch(path, attr.keyExpected, Json(std::string(raw)));
  }
  return std::move(*key);
}

Json defaultOf(const Attr& attr, const std::string& holderOwnerKey) {
  switch (attr.kind) {
    case Attr::Kind::scalar:
      return attr.defaultIsOwnerKey ? detail::present(attr.valueCanonical(Json(holderOwnerKey)))
                                    : attr.defaultValue;
    case Attr::Kind::values:
    case Attr::Kind::entities:
      return Json::object();
    case Attr::Kind::reference:
    case Attr::Kind::entityOrReference:
      break;
  }
  return nullptr;
}

namespace {

// Where a value being made canonical stands: a chain of segments below a
// known pointer, made into a JSON Pointer only when an error names it, so
// that a document that fits costs no paths.
struct Place {
  const JsonPointer* base = nullptr;
  const Place* parent = nullptr;
  std::string_view segment;
  // Counts the entities read, when not null.
  std::size_t* entities = nullptr;

  Place below(std::string_view child) const { return Place{nullptr, this, child, entities}; }
  JsonPointer pointer() const {
    std::vector<std::string_view> segments;
    const Place* at = this;
    for (; at->parent != nullptr; at = at->parent) {
      segments.push_back(at->segment);
    }
    std::reverse(segments.begin(), segments.end());
    JsonPointer made = *at->base;
    for (const std::string_view segment : segments) {
      made.push_back(std::string(segment));
    }
    return made;
  }
};

// A name is its own canonical form: checked, not changed.
void checkName(const Json& input, const Place& place, const std::string& what) {
  if (!input.is_string() || input.get_ref<const std::string&>().empty()) {
    throw mismatch(place.pointer(), what, input);
  }
}

void entityIn(const EntityType& type, Json& value, const Place& place, const std::string& ownKey,
              const std::string& ownerKey);

void memberIn(const Attr& attr, Json& value, const Place& place, const std::string& key,
              const std::string& holderKey) {
  if (attr.kind == Attr::Kind::values) {
    if (auto canonical = attr.valueCanonical(value)) {
      value = std::move(*canonical);
      return;
    }
    throw mismatch(place.pointer(), attr.valueExpected(), value);
  }
  entityIn(*attr.member, value, place, key, holderKey);
}

// `members` (an object, still as written) in canonical form, in place.
// Members are read in the order of their keys as written; the first one
// that does not fit, or whose canonical key another one already has, is
// the error. Keys written canonically stay where they are; the others are
// moved to their canonical key once every member fits.
void collectionIn(const Attr& attr, Json& members, const Place& place, const std::string& holderKey) {
  if (!members.is_object()) {
    throw mismatch(place.pointer(), "an object of members keyed by " + attr.keyExpected, members);
  }
  // The raw key of each member whose canonical key differs, by that key.
  std::map<std::string, std::string> rawOfRenamed;
  for (auto& [raw, value] : members.items()) {
    const Place memberPlace = place.below(raw);
    std::optional<std::string> canonical = attr.keyCanonical(raw);
    std::string key = canonical ? std::move(*canonical) : canonicalKey(attr, raw, memberPlace.pointer());
    // A member that came before with the same canonical key: one renamed
    // to it, or one written with it.
    std::optional<std::string> earlier;
    if (const auto renamed = rawOfRenamed.find(key); renamed != rawOfRenamed.end()) {
      earlier = renamed->second;
    } else if (key < raw && members.contains(key)) {
      earlier = key;
    }
    if (earlier) {
      std::string message = "duplicate member: \"" + raw;
      message += "\" and \"" + *earlier;
      message += "\" are both \"" + key + "\"";
      throw SchemaError{memberPlace.pointer(), std::move(message)};
    }
    memberIn(attr, value, memberPlace, key, holderKey);
    if (key != raw) {
      rawOfRenamed.emplace(std::move(key), raw);
    }
  }
  auto& object = members.get_ref<Json::object_t&>();
  for (const auto& [key, raw] : rawOfRenamed) {
    auto node = object.extract(raw);
    node.key() = key;
    object.insert(std::move(node));
  }
}

void attrIn(const Attr& attr, Json& value, const Place& place, const std::string& holderKey) {
  switch (attr.kind) {
    case Attr::Kind::scalar:
      if (auto canonical = attr.valueCanonical(value)) {
        value = std::move(*canonical);
        return;
      }
      throw mismatch(place.pointer(), attr.valueExpected(), value);
    case Attr::Kind::values:
    case Attr::Kind::entities:
      collectionIn(attr, value, place, holderKey);
      return;
    case Attr::Kind::reference:
      if (!value.is_null()) {
        checkName(value, place, "null or a " + attr.referenceNoun + " name (a non-empty string)");
      }
      return;
    case Attr::Kind::entityOrReference:
      if (value.is_object()) {
        entityIn(*attr.member, value, place, "", holderKey);
      } else if (!value.is_null()) {
        checkName(value, place,
                  "null, a " + attr.referenceNoun + " name (a non-empty string) or a " + attr.member->name +
                      " object with its \"name\"");
      }
      return;
  }
}

void entityIn(const EntityType& type, Json& value, const Place& place, const std::string& ownKey,
              const std::string& ownerKey) {
  if (place.entities != nullptr) {
    ++*place.entities;
  }
  if (type.flat) {
    collectionIn(type.attrs.front(), value, place, ownKey);
    return;
  }
  if (!value.is_object()) {
    throw mismatch(place.pointer(), "a " + type.name + " (an object with " + type.attrList() + ")", value);
  }
  for (const auto& [name, member] : value.items()) {
    if (type.attr(name) == nullptr && !(type.named && name == "name")) {
      throw SchemaError{place.below(name).pointer(), "unknown attribute \"" + name + "\" of " + type.name +
                                                         " (expected " + type.attrList() + ")"};
    }
  }
  std::string key = ownKey;
  if (type.named) {
    const auto name = value.find("name");
    if (name == value.end()) {
      throw SchemaError{place.pointer(), "a " + type.name + " object needs its \"name\""};
    }
    checkName(*name, place.below("name"), "a name (a non-empty string)");
    key = name->get<std::string>();
  }
  for (const auto& attr : type.attrs) {
    const auto given = value.find(attr.name);
    if (given == value.end()) {
      value.emplace(attr.name, defaultOf(attr, ownerKey));
    } else {
      attrIn(attr, *given, place.below(attr.name), key);
    }
  }
}

}  // namespace

void canonicalizeEntity(const EntityType& type, Json& value, const JsonPointer& path,
                        const std::string& ownKey, const std::string& ownerKey, std::size_t* entities) {
  entityIn(type, value, Place{&path, nullptr, {}, entities}, ownKey, ownerKey);
}

void canonicalizeAttr(const Attr& attr, Json& value, const JsonPointer& path, const std::string& holderKey,
                      const std::string& /*holderOwnerKey*/) {
  attrIn(attr, value, Place{&path, nullptr, {}, nullptr}, holderKey);
}

void canonicalizeMember(const Attr& attr, Json& value, const JsonPointer& path, const std::string& key,
                        const std::string& holderKey) {
  memberIn(attr, value, Place{&path, nullptr, {}, nullptr}, key, holderKey);
}

Json canonicalEntity(const EntityType& type, const Json& input, const JsonPointer& path,
                     const std::string& ownKey, const std::string& ownerKey) {
  Json canonical = input;
  canonicalizeEntity(type, canonical, path, ownKey, ownerKey);
  return canonical;
}

Json canonicalAttr(const Attr& attr, const Json& input, const JsonPointer& path, const std::string& holderKey,
                   const std::string& holderOwnerKey) {
  Json canonical = input;
  canonicalizeAttr(attr, canonical, path, holderKey, holderOwnerKey);
  return canonical;
}

Json canonicalMember(const Attr& attr, const Json& input, const JsonPointer& path, const std::string& key,
                     const std::string& holderKey) {
  Json canonical = input;
  canonicalizeMember(attr, canonical, path, key, holderKey);
  return canonical;
}

void checkEntityReferences(const Json& document, const EntityType& type, const Json& canonical,
                           const JsonPointer& path) {
  for (const auto& attr : type.attrs) {
    const JsonPointer attrPath = type.flat ? path : path / attr.name;
    const Json& value = type.flat ? canonical : canonical.at(attr.name);
    if (attr.isEntityValued() && value.is_string()) {
      const JsonPointer target = attr.referencePath(path, value.get<std::string>());
      if (!document.contains(target)) {
        throw SchemaError{attrPath, attr.referenceNoun + " \"" + value.get<std::string>() +
                                        "\" does not exist (no " + target.to_string() + ")"};
      }
    }
    if (attr.kind == Attr::Kind::entities && attr.member->holdsReferences) {
      for (const auto& [key, member] : value.items()) {
        checkEntityReferences(document, *attr.member, member, attrPath / key);
      }
    }
  }
}

void checkReferences(const Json& document) {
  for (const auto& root : stateSchema().roots) {
    if (root.type->holdsReferences) {
      const JsonPointer path = JsonPointer("/" + root.name);
      checkEntityReferences(document, *root.type, document.at(path), path);
    }
  }
}

namespace {

// The object at `path` of `document`, or null.
const Json* objectAt(const Json& document, const JsonPointer& path) {
  return document.contains(path) && document.at(path).is_object() ? &document.at(path) : nullptr;
}

// The names of the class maps of one map type in the canonical value at
// `path` (a class map, the map type's collection or entity, or the types'
// collection).
void classMapsIn(const Json& value, const std::vector<std::string>& path, std::set<std::string>& names,
                 const std::string& mapType) {
  // /qosStatus/cmapType/<type>/cmap/<name>: a change below a class map
  // removes none.
  const std::size_t depth = path.size();
  if (depth == 5) {
    names.insert(path[4]);
    return;
  }
  const Json* cmap = nullptr;
  if (depth == 4) {
    cmap = &value;
  } else if (depth == 3 && value.contains("cmap")) {
    cmap = &value.at("cmap");
  } else if (depth == 2 && value.contains(mapType) && value.at(mapType).contains("cmap")) {
    cmap = &value.at(mapType).at("cmap");
  }
  if (cmap != nullptr && cmap->is_object()) {
    for (const auto& [name, member] : cmap->items()) {
      names.insert(name);
    }
  }
}

// A change at or below /qosStatus/pmapType (`path`): a change inside a
// policy map is checked over that policy map; one above it, over all it
// replaced.
void checkPolicyMapsChange(const Json& document, const std::vector<std::string>& path,
                           const EntityType& policyMapTypeStatus, const EntityType& policyMap) {
  const JsonPointer root("/qosStatus");
  // Inside a policy map, only its class default, its default class action
  // and the class actions that one may name hold or meet a reference.
  const bool referencing = path.size() < 6 || path[5] == "classDefault" || path[5] == "defaultClassAction" ||
                           path[5] == "classAction";
  if (path.size() >= 5 && path[3] == "pmap" && !referencing) {
    return;
  }
  if (path.size() >= 5 && path[3] == "pmap") {
    const JsonPointer at = root / "pmapType" / path[2] / "pmap" / path[4];
    if (const Json* value = objectAt(document, at)) {
      checkEntityReferences(document, policyMap, *value, at);
    }
  } else if (const Json* types = objectAt(document, root / "pmapType")) {
    for (const auto& [mapType, value] : types->items()) {
      if (path.size() == 2 || path[2] == mapType) {
        checkEntityReferences(document, policyMapTypeStatus, value, root / "pmapType" / mapType);
      }
    }
  }
}

// A change at or below /qosStatus/cmapType (`path`), `before` the value it
// replaced: the class maps it removed, by map type, and the class defaults
// of that map type's policy maps that named one.
void checkClassMapsRemoved(const Json& document, const std::vector<std::string>& path, const Json& before,
                           const EntityType& policyMap) {
  const JsonPointer root("/qosStatus");
  const Json* types = objectAt(document, root / "pmapType");
  if (types == nullptr) {
    return;
  }
  for (const auto& [mapType, typeStatus] : types->items()) {
    if (path.size() >= 3 && path[2] != mapType) {
      continue;
    }
    if (path.size() > 5) {
      break;
    }
    std::set<std::string> gone;
    classMapsIn(before, path, gone, mapType);
    if (gone.empty() || !typeStatus.contains("pmap")) {
      continue;
    }
    const JsonPointer cmaps = root / "cmapType" / mapType / "cmap";
    const Json* present = objectAt(document, cmaps);
    for (const auto& [pmapName, pmap] : typeStatus.at("pmap").items()) {
      const Json& classDefault = pmap.at("classDefault");
      if (classDefault.is_string() && gone.contains(classDefault.get<std::string>()) &&
          (present == nullptr || !present->contains(classDefault.get<std::string>()))) {
        checkEntityReferences(document, policyMap, pmap, root / "pmapType" / mapType / "pmap" / pmapName);
      }
    }
  }
}

}  // namespace

void checkReferencesOfChange(const Json& document, const std::vector<std::string>& path, const Json* before) {
  if (path.empty() || path[0] != "qosStatus") {
    return;
  }
  const StateSchema& schema = stateSchema();
  const EntityType& status = *schema.root("qosStatus")->type;
  const EntityType& policyMapTypeStatus = *status.attr("pmapType")->member;
  const EntityType& policyMap = *policyMapTypeStatus.attr("pmap")->member;

  // References held in the changed value.
  if (path.size() == 1) {
    const JsonPointer root("/qosStatus");
    checkEntityReferences(document, status, document.at(root), root);
    return;
  }
  if (path[1] == "pmapType") {
    checkPolicyMapsChange(document, path, policyMapTypeStatus, policyMap);
    return;
  }
  if (before != nullptr && path[1] == "cmapType") {
    checkClassMapsRemoved(document, path, *before, policyMap);
  }
}

}  // namespace QosSnmpHost
