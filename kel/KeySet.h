// KeySet<Index>: the MIB rows a state machine added, so that it removes
// exactly those when it closes.
//
//   qosStatsTableKey_.is(index);                 // row added
//   qosStatsTableKey_.del(index);                // row removed
//   qosStatsTableKey_.drain([&](const QosStatsTableIndex& i) { qosMib_->qosStatsTableDel(i); });
//
// Indexes iterate in order. As a member of a machine, it shows the
// machine's MemberList how many rows it holds, labelled with the index type's
// unqualified name ("QosStatsTableIndex").
#pragma once

#include <functional>
#include <set>
#include <string>
#include <typeinfo>

#include "kel/MemberList.h"
#include "kel/TrackedAllocator.h"
#include "kel/TypeName.h"

namespace Kel {

template <typename Index>
class KeySet : private MemberList::Member {
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
  void describe(MemberList::Visitor& visitor) const override {
    static const std::string kLabel = unqualifiedTypeName(typeid(Index));
    visitor.onKeySet(kLabel, indexes_.size());
  }

  Set indexes_;
};

}  // namespace Kel
