#include "host/state/SwitchState.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "host/state/ChangeLine.h"
#include "host/state/EntityStore.h"
#include "host/state/JsonInput.h"
#include "host/state/JsonLineIndex.h"
#include "host/state/PrintableText.h"
#include "host/state/StateCodec.h"
#include "host/state/StateSchema.h"
#include "host/state/StateTarget.h"

namespace QosSnmpHost {
namespace {

// An error about a change as a whole, not about one value of the document.
using LineError = std::invalid_argument;

}  // namespace

std::string LoadError::text() const {
  std::string out = PrintableText::of(file, InputLimits::kMaxPathBytes);
  if (line > 0) {
    out += ':' + std::to_string(line);
  }
  out += ": ";
  if (path) {
    out +=
        (path->empty() ? std::string("(document)") : PrintableText::of(*path, InputLimits::kMaxPathBytes)) +
        ": ";
  }
  return out + PrintableText::of(message, InputLimits::kMaxMessageBytes);
}

class SwitchState::Impl {  // NOLINT(bugprone-exception-escape): nlohmann::json moves do not throw
 public:
  Json document_;
  EntityStore store_;
  std::vector<Kel::Ptr<Kel::Entity>> roots_;
  StateGuard* guard_ = nullptr;
  std::string file_;
  // Loaded by loadFile(): build refusals read the file again for a line.
  bool fromFile_ = false;
  InputLimits limits_;

  // A document in canonical form, and how many entities it holds.
  // NOLINTNEXTLINE(bugprone-exception-escape): nlohmann::json member; its moves do not throw
  struct Canonical {
    Json document;
    std::size_t entities = 0;
  };
  // The canonical form of a parsed document into `canonical`; the error
  // (without a line) if it does not fit.
  static std::optional<LoadError> canonicalize(Json document, const std::string& file, Canonical& canonical);
  // The same from the document's text, the error with its line.
  static std::optional<LoadError> canonicalizeText(std::string_view text, const std::string& file,
                                                   const InputLimits& limits, Canonical& canonical);
  // The state over a canonical document that fits the schema.
  static SwitchState build(Canonical canonical, const std::string& file, const InputLimits& limits);

  Change applyEdit(const StateChange& change);
  std::optional<Json> afterOf(const StateTarget& target, const Json* value, const Json& place) const;
  Json& placeOf(const StateTarget& target);
  static std::optional<Json> swapIn(const StateTarget& target, Json& place, std::optional<Json> value);
  void notifyEnclosingMember(const StateTarget& target);
  void applyToEntities(const StateTarget& target, const Json& place, const std::optional<Json>& before);

  template <typename T>
  Kel::Ptr<const T> root(std::size_t index) const {
    return Kel::ptrCast<const T>(roots_[index]);
  }
};

SwitchState::SwitchState(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
SwitchState::SwitchState(SwitchState&&) noexcept = default;
SwitchState& SwitchState::operator=(SwitchState&&) noexcept = default;
SwitchState::~SwitchState() = default;

std::optional<LoadError> SwitchState::Impl::canonicalize(Json document, const std::string& file,
                                                         Canonical& canonical) {
  const StateSchema& schema = stateSchema();
  try {
    if (!document.is_object()) {
      throw SchemaError{JsonPointer(), "expected an object with the roots " + schema.rootList() + ", got " +
                                           detail::shown(document)};
    }
    for (const auto& [name, value] : document.items()) {
      if (schema.root(name) == nullptr) {
        throw SchemaError{JsonPointer() / name,
                          "unknown root \"" + name + "\" (expected " + schema.rootList() + ")"};
      }
    }
    // In place: the document becomes its canonical form without a second
    // tree beside it.
    for (const auto& root : schema.roots) {
      Json& value = document.emplace(root.name, Json::object()).first.value();
      canonicalizeEntity(*root.type, value, JsonPointer() / root.name, "", "", &canonical.entities);
    }
    checkReferences(document);
  } catch (const SchemaError& error) {
    return LoadError{file, 0, error.path.to_string(), error.message};
  } catch (const nlohmann::json::exception& error) {
    // Every value is checked before it is read; this is the boundary's last
    // line of defence, so that no document can end the program.
    return LoadError{file, 0, std::nullopt, std::string("malformed document: ") + error.what()};
  }
  canonical.document = std::move(document);
  return std::nullopt;
}

std::optional<LoadError> SwitchState::Impl::canonicalizeText(std::string_view text, const std::string& file,
                                                             const InputLimits& limits,
                                                             Canonical& canonical) {
  std::optional<LoadError> error;
  {
    // The parsed document is gone once its canonical form is made.
    JsonInput::Parsed parsed = JsonInput::parse(text, limits);
    if (!parsed.value) {
      return LoadError{file, parsed.line, std::nullopt, parsed.error};
    }
    error = canonicalize(std::move(*parsed.value), file, canonical);
  }
  if (error && error->path) {
    error->line = JsonLineIndex(text).lineOf(JsonPointer(detail::present(error->path)));
  }
  return error;
}

SwitchState SwitchState::Impl::build(Canonical canonical, const std::string& file,
                                     const InputLimits& limits) {
  auto impl = std::make_unique<Impl>();
  impl->file_ = file;
  impl->limits_ = limits;
  impl->document_ = std::move(canonical.document);
  impl->store_.reserve(canonical.entities);
  for (const auto& root : stateSchema().roots) {
    impl->roots_.push_back(impl->store_.buildRoot(*root.type, root.name, impl->document_.at(root.name)));
  }
  return SwitchState(std::move(impl));
}

Result<SwitchState> SwitchState::load(const nlohmann::json& document, const std::string& file) {
  Impl::Canonical canonical;
  if (auto error = Impl::canonicalize(document, file, canonical)) {
    return std::move(*error);
  }
  return Impl::build(std::move(canonical), file, {});
}

Result<SwitchState> SwitchState::loadText(std::string_view text, const std::string& file,
                                          const InputLimits& limits) {
  Impl::Canonical canonical;
  if (auto error = Impl::canonicalizeText(text, file, limits, canonical)) {
    return std::move(*error);
  }
  return Impl::build(std::move(canonical), file, limits);
}

Result<SwitchState> SwitchState::loadFile(const std::string& path, const InputLimits& limits) {
  Impl::Canonical canonical;
  {
    // The text is gone before the entities are built: at switch scale it
    // and the parsed document would otherwise be most of the peak.
    std::ifstream in(path, std::ios::binary);
    if (!in) {
      return LoadError{path, 0, std::nullopt, std::string("cannot read the file: ") + std::strerror(errno)};
    }
    std::string text;
    std::error_code sizeUnknown;
    if (const auto size = std::filesystem::file_size(path, sizeUnknown); !sizeUnknown) {
      text.reserve(size);
    }
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (auto error = Impl::canonicalizeText(text, path, limits, canonical)) {
      return std::move(*error);
    }
  }
  SwitchState loaded = Impl::build(std::move(canonical), path, limits);
  loaded.impl_->fromFile_ = true;
  return loaded;
}

void SwitchState::guardIs(StateGuard* guard) { impl_->guard_ = guard; }

std::optional<LoadError> SwitchState::checkBuild() const {
  if (impl_->guard_ == nullptr) {
    return std::nullopt;
  }
  const StateTransition transition{StateTransition::Kind::build, JsonPointer(), impl_->document_, nullptr};
  if (auto refusal = impl_->guard_->refusal(transition)) {
    // The document's line of the value refused: read again from the file,
    // since the text is not kept once loaded.
    int line = 0;
    if (impl_->fromFile_) {
      std::ifstream in(impl_->file_, std::ios::binary);
      std::ostringstream text;
      text << in.rdbuf();
      // A value the document lacks altogether is found at its start.
      line = std::max(1, JsonLineIndex(text.str()).lineOf(JsonPointer(refusal->path)));
    }
    return LoadError{impl_->file_, line, refusal->path, "refused: " + refusal->message};
  }
  return std::nullopt;
}

void SwitchState::buildApplied() const {
  if (impl_->guard_ != nullptr) {
    impl_->guard_->applied(
        StateTransition{StateTransition::Kind::build, JsonPointer(), impl_->document_, nullptr});
  }
}

Result<Change> SwitchState::apply(std::string_view line, const Source& where) {
  Result<ChangeLine> read = ChangeLine::read(line, where, impl_->limits_);
  if (!read) {
    return read.error();
  }
  switch (read->kind) {
    case ChangeLine::Kind::none:
      return Change{};
    case ChangeLine::Kind::advance: {
      Change change;
      change.op = Change::Op::advance;
      change.seconds = read->seconds;
      return change;
    }
    case ChangeLine::Kind::change:
      break;
  }
  return apply(read->change, where);
}

Result<Change> SwitchState::apply(const StateChange& change, const Source& where) {
  // A line's value passed this bound as text; a typed change's is held to
  // it here, before anything recurses over it.
  if (JsonInput::nestedDeeperThan(change.value, impl_->limits_.maxDepth)) {
    return LoadError{
        where.file, where.line, std::nullopt,
        "the value is nested deeper than " + std::to_string(impl_->limits_.maxDepth) + " levels"};
  }
  try {
    return impl_->applyEdit(change);
  } catch (const LineError& error) {
    return LoadError{where.file, where.line, std::nullopt, error.what()};
  } catch (const SchemaError& error) {
    return LoadError{where.file, where.line, error.path.to_string(), error.message};
  } catch (const nlohmann::json::exception& error) {
    // Every value was checked before it is read; this is the boundary's
    // last line of defence, so that no input can end the program.
    return LoadError{where.file, where.line, std::nullopt, std::string("malformed change: ") + error.what()};
  }
}

// The canonical value the target will have; nullopt when a member goes.
std::optional<Json> SwitchState::Impl::afterOf(const StateTarget& target, const Json* value,
                                               const Json& place) const {
  const Attr* attr = target.attr;
  if (value != nullptr) {
    if (target.isRoot()) {
      return canonicalEntity(*target.holderType, *value, target.path, "", "");
    }
    if (target.isMember()) {
      return canonicalMember(*attr, *value, target.path, detail::present(target.key), target.holderKey);
    }
    return canonicalAttr(*attr, *value, target.path, target.holderKey, target.holderOwnerKey);
  }
  if (target.isRoot()) {
    throw SchemaError{target.path, "a root cannot be deleted (set it to {} to empty it)"};
  }
  if (target.isMember()) {
    if (!place.contains(detail::present(target.key))) {
      throw SchemaError{target.path, "nothing to delete: no such member"};
    }
    return std::nullopt;
  }
  return defaultOf(*attr, target.holderOwnerKey);
}

// Where the target's value lives in the mirror: the collection for a member
// (which the change may add it to or remove it from), else the value itself.
// The target was resolved in this mirror, which this object owns.
Json& SwitchState::Impl::placeOf(const StateTarget& target) {
  return const_cast<Json&>(*target.place);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

std::optional<Json> SwitchState::Impl::swapIn(const StateTarget& target, Json& place,
                                              std::optional<Json> value) {
  std::optional<Json> old;
  if (!target.isMember()) {
    old = std::move(place);
    place = detail::present(std::move(value));
    return old;
  }
  const auto it = place.find(detail::present(target.key));
  if (it == place.end()) {
    if (value) {
      place.emplace(detail::present(target.key), std::move(*value));
    }
    return old;
  }
  old = std::move(*it);
  if (value) {
    *it = std::move(*value);
  } else {
    place.erase(it);
  }
  return old;
}

void SwitchState::Impl::applyToEntities(const StateTarget& target, const Json& place,
                                        const std::optional<Json>& before) {
  const Json* now = &place;
  if (target.isMember()) {
    const auto it = place.find(detail::present(target.key));
    now = it == place.end() ? nullptr : &*it;
  }
  if (target.isRoot()) {
    store_.update(*store_.at(target.pathText), *target.holderType, detail::present(before), *now,
                  target.pathText);
    return;
  }
  Kel::Entity& holder = *store_.at(target.holderPathText);
  if (!target.isMember()) {
    store_.updateAttr(holder, *target.attr, detail::present(before), *now, target.holderPathText,
                      target.attrPathText);
    notifyEnclosingMember(target);
  } else if (now != nullptr) {
    store_.setMember(holder, *target.attr, detail::present(target.key), before ? &*before : nullptr, *now,
                     target.pathText);
  } else {
    store_.deleteMember(holder, *target.attr, detail::present(target.key), detail::present(before),
                        target.pathText);
  }
}

void SwitchState::Impl::notifyEnclosingMember(const StateTarget& target) {
  // The nearest collection member the changed entity is, or is inside, is
  // reported changed when its collection reports members changed in place.
  if (target.enclosing && target.enclosing->attr->memberChanged != nullptr) {
    target.enclosing->attr->memberChanged(*store_.at(target.enclosing->holderPathText),
                                          target.enclosing->key);
  }
}

Change SwitchState::Impl::applyEdit(const StateChange& change) {
  const StateTarget target = StateTarget::resolve(change.path, document_);
  const bool set = change.op == StateChange::Op::set;
  Json& place = placeOf(target);
  std::optional<Json> after = afterOf(target, set ? &change.value : nullptr, place);

  // The mirror first, so that references and the guard see the document as
  // it will be; undone when either refuses.
  std::optional<Json> before = swapIn(target, place, std::move(after));
  const StateTransition transition{set ? StateTransition::Kind::set : StateTransition::Kind::del, target.path,
                                   document_, before ? &*before : nullptr, &target.segments};
  try {
    if (target.root->type->holdsReferences) {
      checkReferencesOfChange(document_, target.segments, before ? &*before : nullptr);
    }
    if (guard_ != nullptr) {
      if (auto refusal = guard_->refusal(transition)) {
        throw SchemaError{target.path, "refused: " + refusal->message};
      }
    }
  } catch (const SchemaError&) {
    swapIn(target, place, std::move(before));
    throw;
  }
  applyToEntities(target, place, before);
  if (guard_ != nullptr) {
    guard_->applied(transition);
  }
  Change applied;
  applied.op = set ? Change::Op::set : Change::Op::del;
  applied.path = target.pathText;
  return applied;
}

const nlohmann::json& SwitchState::document() const { return impl_->document_; }

std::string SwitchState::pathOf(const Kel::Entity* entity) const {
  const std::string* path = impl_->store_.pathOf(entity);
  return path == nullptr ? "(deleted)" : *path;
}

Kel::Ptr<const Kel::Entity> SwitchState::entityAt(const std::string& path) const {
  return impl_->store_.at(path);
}

std::vector<std::string> SwitchState::entityPaths() const { return impl_->store_.paths(); }

Kel::Ptr<const Qos::Config> SwitchState::qosConfig() const { return impl_->root<Qos::Config>(0); }
Kel::Ptr<const Qos::Status> SwitchState::qosStatus() const { return impl_->root<Qos::Status>(1); }
Kel::Ptr<const Qos::HwStatus> SwitchState::hwStatus() const { return impl_->root<Qos::HwStatus>(2); }
Kel::Ptr<const Kel::Dir> SwitchState::sliceHwStatusDir() const { return impl_->root<Kel::Dir>(3); }
Kel::Ptr<const Kel::Dir> SwitchState::aclSliceHwStatusDir() const { return impl_->root<Kel::Dir>(4); }
Kel::Ptr<const QosSnmp::QosMibConfig> SwitchState::mibConfig() const {
  return impl_->root<QosSnmp::QosMibConfig>(5);
}
Kel::Ptr<const Interface::AllIntfStatusDir> SwitchState::allIntfStatusDir() const {
  return impl_->root<Interface::AllIntfStatusDir>(6);
}
Kel::Ptr<const Qos::HwCounter> SwitchState::hwCounter() const { return impl_->root<Qos::HwCounter>(7); }
Kel::Ptr<const Qos::EcnCounterTable> SwitchState::ecnCounterTable() const {
  return impl_->root<Qos::EcnCounterTable>(8);
}

}  // namespace QosSnmpHost
