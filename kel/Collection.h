// Collection<Attr, Value>: a keyed collection attribute of an entity.
//
// Members iterate in key order. Every change notifies the owning entity's
// reactors with the attribute id and the member's key: adding a member,
// giving it another value, and deleting it (delAll deletes member by member,
// in key order, each with its notification). Setting a member to the value
// it has changes nothing and notifies nobody.
//
// Lookup of a missing key reads as a default Value (a null pointer, false,
// 0). A member may be deleted during an iteration once the iterator has
// moved past it; forEachKey() does that for the current member.
//
//   class ClassMapTypeStatus : public Kel::Entity {
//    public:
//     struct Cmap : Kel::CollectionAttribute<1, Kel::String> {};
//     Kel::Ptr<const ClassMapStatus> cmap(const Kel::String& n) const { return cmap_.get(n); }
//     const auto& cmap() const { return cmap_; }
//     void cmapIs(const Kel::String& n, Kel::Ptr<ClassMapStatus> c) { cmap_.set(*this, n, std::move(c)); }
//    private:
//     Kel::Collection<Cmap, Kel::Ptr<ClassMapStatus>> cmap_;
//   };
#pragma once

#include <functional>
#include <map>
#include <utility>

#include "kel/Entity.h"
#include "kel/TrackedAllocator.h"

namespace Kel {

template <typename Attr, typename Value>
class Collection {
 public:
  using Key = typename Attr::Key;
  using Map = std::map<Key, Value, std::less<>, TrackedAllocator<std::pair<const Key, Value>>>;
  using const_iterator = typename Map::const_iterator;

  Value get(const Key& key) const {
    const auto it = members_.find(key);
    return it == members_.end() ? Value{} : it->second;
  }
  const Value* find(const Key& key) const {
    const auto it = members_.find(key);
    return it == members_.end() ? nullptr : &it->second;
  }
  bool contains(const Key& key) const { return members_.find(key) != members_.end(); }
  std::size_t size() const { return members_.size(); }
  bool empty() const { return members_.empty(); }
  const_iterator begin() const { return members_.begin(); }
  const_iterator end() const { return members_.end(); }
  const_iterator lowerBound(const Key& key) const { return members_.lower_bound(key); }

  // Calls f(key) for every member in key order; f may delete that member.
  template <typename F>
  void forEachKey(F&& f) const {
    for (auto it = members_.begin(); it != members_.end();) {
      const Key key = it->first;
      ++it;
      f(key);
    }
  }

  void set(const Entity& owner, const Key& key, Value value) {
    auto [it, added] = members_.try_emplace(key, value);
    if (!added) {
      if (it->second == value) {
        return;
      }
      it->second = std::move(value);
    }
    const Key notified = key;
    owner.notify(Attr::id, &notified);
  }

  bool del(const Entity& owner, const Key& key) {
    const auto it = members_.find(key);
    if (it == members_.end()) {
      return false;
    }
    const Key notified = it->first;
    // The value is released after the notification, so a reactor on a
    // removed child entity is still attached while the parent's reactors
    // hear of the removal.
    [[maybe_unused]] const Value removed = std::move(it->second);
    members_.erase(it);
    owner.notify(Attr::id, &notified);
    return true;
  }

  void delAll(const Entity& owner) {
    while (!members_.empty()) {
      del(owner, members_.begin()->first);
    }
  }

 private:
  Map members_;
};

// Tells the reactors of `owner` that the member `key` of collection Attr
// changed in place: what a state database reports when an attribute of a
// member entity changes, so that reactors on the collection hear of it as a
// change of that key.
template <typename Attr>
void notifyMemberChanged(const Entity& owner, const typename Attr::Key& key) {
  owner.notify(Attr::id, &key);
}

// Scalar<Attr, T>: a scalar attribute of an entity; set() notifies the
// owner's reactors (with a null key) when the value changes.
template <typename Attr, typename T>
class Scalar {
 public:
  Scalar() = default;
  explicit Scalar(T value) : value_(std::move(value)) {}

  const T& get() const { return value_; }

  void set(const Entity& owner, T value) {
    if (value_ == value) {
      return;
    }
    value_ = std::move(value);
    owner.notify(Attr::id);
  }

 private:
  T value_{};
};

}  // namespace Kel
