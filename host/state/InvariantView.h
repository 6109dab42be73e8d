// InvariantView: one transition of the switch state, as the invariant rules
// read it: the canonical document after the change, and any value of the
// document before it, rebuilt from the changed path and its old value.
//
// A location is given as its raw key segments ({"qosStatus", "pmapType",
// "mapQos"}); pointerText() gives its JSON Pointer text for messages.
//
// before(at) is exact for a location at or below the changed path (read in
// the old value) and for one beside it (unchanged, read in the new
// document). An ancestor of the changed path exists both before and after
// (a change below a missing member is refused by the loader), so before()
// answers an ancestor with its new value: callers ask an ancestor only
// whether it exists, and use changed() for its contents, which changed
// exactly when the value at the changed path did.
//
//   const InvariantView view(transition);
//   const Json* period = view.after({"mibConfig", "counterPollPeriod"});
//   for (const std::string& slice : view.addedMembers({"sliceHwStatus"})) { ... }
#pragma once

#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "QosSnmp/core/QosEnums.h"
#include "host/state/StateGuard.h"

namespace QosSnmpHost {

class InvariantView {
 public:
  using Json = nlohmann::json;
  using Path = std::vector<std::string>;

  // REQUIRES: `transition` outlives the view.
  explicit InvariantView(const StateTransition& transition);
  InvariantView(const InvariantView&) = delete;
  InvariantView& operator=(const InvariantView&) = delete;

  bool isBuild() const { return transition_.kind == StateTransition::Kind::build; }
  const Path& path() const { return *path_; }

  // The value at `at` after / before the transition; null when absent (and
  // before a build).
  const Json* after(const Path& at) const;
  const Json* before(const Path& at) const;

  // The changed path lies at or below `at`.
  bool within(const Path& at) const;
  // `at` lies at or below the changed path.
  bool covers(const Path& at) const;
  // Something at or below `at` may differ: the two paths are on one branch.
  bool reaches(const Path& at) const { return within(at) || covers(at); }
  // Something at or below `at` differs between before and after.
  bool changed(const Path& at) const;

  // The keys of the object at `collection` whose member was added, removed
  // or changed by the transition, in key order (every key for a build).
  std::vector<std::string> changedMembers(const Path& collection) const;
  // Of those, the keys present after and absent before.
  std::vector<std::string> addedMembers(const Path& collection) const;

  // The JSON Pointer text of `at` ("/qosStatus/cmapType/mapQos").
  static std::string pointerText(const Path& at);
  // `at` with `keys` appended.
  static Path join(Path at, std::initializer_list<std::string_view> keys);

  // The boolean at `at` after / before; false when absent.
  bool flagAfter(const Path& at) const;
  bool flagBefore(const Path& at) const;

 private:
  static const Json* find(const Json* node, Path::const_iterator from, Path::const_iterator to);

  const StateTransition& transition_;
  // The changed path's segments: the transition's own, or split from its
  // pointer into ownPath_.
  Path ownPath_;
  const Path* path_;
};

// The enumeration value a canonical key or value stands for: a name, a
// decimal string (a key without a name) or a JSON number (a value without a
// name); nullopt for anything else.
template <typename E>
std::optional<E> invariantEnum(const nlohmann::json& canonical) {
  if (canonical.is_number_unsigned()) {
    return static_cast<E>(canonical.get<std::uint32_t>());
  }
  if (!canonical.is_string()) {
    return std::nullopt;
  }
  const auto& text = canonical.get_ref<const std::string&>();
  if (const std::optional<E> named = Qos::enumFromName<E>(text)) {
    return named;
  }
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
    return std::nullopt;
  }
  return static_cast<E>(number);
}

}  // namespace QosSnmpHost
