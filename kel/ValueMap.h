// ValueMap<Key, Value>: a state machine's local keyed values (match index
// per option, priority per class-map name, ...). Notifies nobody.
//
// get() of a missing key reads as a default Value; del() returns the value
// the member held, or a default Value when there was none.
#pragma once

#include <functional>
#include <map>
#include <utility>

#include "kel/TrackedAllocator.h"

namespace Kel {

template <typename Key, typename Value>
class ValueMap {
 public:
  using Map = std::map<Key, Value, std::less<>, TrackedAllocator<std::pair<const Key, Value>>>;
  using const_iterator = typename Map::const_iterator;

  Value get(const Key& key) const {
    const auto it = values_.find(key);
    return it == values_.end() ? Value{} : it->second;
  }
  bool contains(const Key& key) const { return values_.find(key) != values_.end(); }
  void is(const Key& key, Value value) { values_.insert_or_assign(key, std::move(value)); }
  Value del(const Key& key) {
    auto node = values_.extract(key);
    return node.empty() ? Value{} : std::move(node.mapped());
  }
  void delAll() { values_.clear(); }
  std::size_t size() const { return values_.size(); }
  bool empty() const { return values_.empty(); }
  const_iterator begin() const { return values_.begin(); }
  const_iterator end() const { return values_.end(); }

 private:
  Map values_;
};

}  // namespace Kel
