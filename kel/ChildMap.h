// ChildMap<Key, T>: a state machine's keyed children, as an attribute.
// T is a state machine, or a reactor that keeps per-member state.
//
//   Kel::ChildMap<Kel::String, MatchSm> matchSm_;
//   matchSm_.is(cmap->name(), cmap, index, qosMib);   // key, then arguments
//   matchSm_.del(name);
//
// is(key, args...) builds and switches on a child for a new key; for an
// existing key it returns the child when it was built from the same
// arguments (T::arguments()) and otherwise throws
// MutatorReinstantiatingException: an owner that means to rebuild deletes
// first. del(key) and delAll() close and release children, in key order.
// Children iterate in key order. As a member of a machine, it shows its
// children to the machine's MemberList, each with its key as printed.
#pragma once

#include <functional>
#include <map>
#include <tuple>
#include <utility>

#include "kel/AllocTrackTypeInfo.h"
#include "kel/Assert.h"
#include "kel/ChildMember.h"
#include "kel/MemberList.h"
#include "kel/MutatorException.h"
#include "kel/Ptr.h"
#include "kel/TrackedAllocator.h"

namespace Kel {

template <typename Key, typename T>
class ChildMap : private MemberList::Member {
 public:
  using Map = std::map<Key, Ptr<T>, std::less<>, TrackedAllocator<std::pair<const Key, Ptr<T>>>>;
  using const_iterator = typename Map::const_iterator;

  ChildMap() = default;
  ChildMap(const ChildMap&) = delete;
  ChildMap& operator=(const ChildMap&) = delete;
  ~ChildMap() override { delAll(); }

  template <typename... Args>
  T* is(const Key& key, Args&&... args) {
    const auto it = members_.find(key);
    if (it != members_.end()) {
      if (it->second->arguments() == std::tie(args...)) {
        return it->second.get();
      }
      throwMutatorReinstantiating(allocTrackTypeInfo<T>().name());
    }
    Ptr<T> child = detail::makeChild<T>(std::forward<Args>(args)...);
    child->hasNotificationActiveIs(true);
    T* raw = child.get();
    const bool added = members_.try_emplace(key, std::move(child)).second;
    KEL_ASSERT(added);
    return raw;
  }

  T* find(const Key& key) const {
    const auto it = members_.find(key);
    return it == members_.end() ? nullptr : it->second.get();
  }
  bool contains(const Key& key) const { return members_.find(key) != members_.end(); }
  std::size_t size() const { return members_.size(); }
  bool empty() const { return members_.empty(); }
  const_iterator begin() const { return members_.begin(); }
  const_iterator end() const { return members_.end(); }

  bool del(const Key& key) {
    auto node = members_.extract(key);
    if (node.empty()) {
      return false;
    }
    node.mapped()->close();
    return true;
  }

  void delAll() {
    while (!members_.empty()) {
      auto node = members_.extract(members_.begin());
      node.mapped()->close();
    }
  }

 private:
  void describe(MemberList::Visitor& visitor) const override {
    std::size_t position = 0;
    for (const auto& [key, child] : members_) {
      visitor.onChild(detail::childView(*child, detail::keyText(key, position++)));
    }
  }

  Map members_;
};

}  // namespace Kel
