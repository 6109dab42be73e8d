// What Kel::Child and Kel::ChildMap share for introspection (see
// MemberList): making a child so that its own members are listed, and
// showing a child to a MemberList::Visitor.
//
// A state machine child lists its members itself. Any other child (a
// reactor that keeps per-member state) is made with a MemberList built
// before it, in the same object, so that its key sets and children are
// listed too.
#pragma once

#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"
#include "kel/MemberList.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"

namespace Kel::detail {

template <typename T>
inline constexpr bool kIsMachine = std::is_base_of_v<StateMachine, T>;

// The object Child and ChildMap make for a T.
template <typename T>
using ChildObject = std::conditional_t<kIsMachine<T>, Tracked<T>, Tracked<T, MemberList>>;

template <typename T, typename... Args>
Ptr<T> makeChild(Args&&... args) {
  return makeTracked<ChildObject<T>, T>(std::forward<Args>(args)...);
}

// `child` (made by makeChild<T>()) as its owner shows it.
template <typename T>
MemberList::ChildView childView(const T& child, std::optional<std::string> key) {
  const std::string* type = &allocTrackTypeInfo<T>().name();
  if constexpr (kIsMachine<T>) {
    const StateMachine& machine = child;
    return {std::move(key), type, &machine, &machine.members()};
  } else {
    const MemberList& members = static_cast<const ChildObject<T>&>(child);
    return {std::move(key), type, nullptr, &members};
  }
}

// A ChildMap key as its operator<< prints it (integers as numbers); a key
// type without one shows as "#<position in key order>".
template <typename Key>
std::string keyText(const Key& key, std::size_t position) {
  std::ostringstream out;
  if constexpr (std::is_integral_v<Key>) {
    out << +key;
  } else if constexpr (requires { out << key; }) {
    out << key;
  } else {
    out << '#' << position;
  }
  return out.str();
}

}  // namespace Kel::detail
