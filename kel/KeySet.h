// KeySet<Index>: the MIB rows a state machine added, so that it removes
// exactly those when it closes.
//
//   qosStatsTableKey_.is(index);                 // row added
//   qosStatsTableKey_.del(index);                // row removed
//   qosStatsTableKey_.drain([&](const QosStatsTableIndex& i) { qosMib_->qosStatsTableDel(i); });
//
// Indexes iterate in order.
#pragma once

#include <functional>
#include <set>

#include "kel/TrackedAllocator.h"

namespace Kel {

template <typename Index>
class KeySet {
 public:
  using Set = std::set<Index, std::less<>, TrackedAllocator<Index>>;
  using const_iterator = typename Set::const_iterator;

  void is(const Index& index) { indexes_.insert(index); }
  bool del(const Index& index) { return indexes_.erase(index) != 0; }
  void delAll() { indexes_.clear(); }
  bool contains(const Index& index) const { return indexes_.find(index) != indexes_.end(); }
  std::size_t size() const { return indexes_.size(); }
  bool empty() const { return indexes_.empty(); }
  const_iterator begin() const { return indexes_.begin(); }
  const_iterator end() const { return indexes_.end(); }

  // For every index in order: f(index), then the index leaves the set.
  // f may add or remove other indexes.
  template <typename F>
  void drain(F&& f) {
    while (!indexes_.empty()) {
      const Index index = *indexes_.begin();
      f(index);
      indexes_.erase(index);
    }
  }

 private:
  Set indexes_;
};

}  // namespace Kel
