// MibTable<Index, Row, Less>: the rows of one MIB table, kept in SNMP index
// order so that the SNMP layer answers without scanning:
//
//   GET      find(index)          the row, or null
//   GETNEXT  upperBound(index)    the first row after index
//   walk     begin(), lowerBound  the first row at or after an index
//
// Less must be SNMP index order for Index: the index records' operator<
// is, and OctetStringIndexLess is for a bare Snmp::String key. Nodes count
// against the allocation tracker (Kel::TrackedAllocator).
//
// set() creates the row or replaces the row already under the index; del()
// of an absent index does nothing. Pointers and references to a row stay
// valid until that row is replaced or deleted; iterators until that row is
// deleted, which erasures() counts, so that a reader can keep an iterator
// across changes and know when it may no longer use it.
//
// A row type that carries a CounterStamp (CounterStampedRow: a
// `counterStamp` member and a sameCounters(a, b) function found by argument
// lookup) is stamped by set() with the clock's time when it is created or
// replaces a row with other counters, and keeps the replaced row's stamp
// when the counters are the same.
//
//   for (auto it = table.upperBound(requested); it != table.end(); ++it) {
//     answer(it->first, it->second);
//   }
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <map>
#include <utility>

#include "QosSnmp/core/CounterStamp.h"
#include "kel/TrackedAllocator.h"

namespace QosSnmp {

// A row whose columns are counters: it records when it got them, and tells
// whether another row of its table has the same counters.
template <typename Row>
concept CounterStampedRow = requires(Row& row, const Row& other) {
  { row.counterStamp } -> std::same_as<CounterStamp&>;
  { sameCounters(other, other) } -> std::same_as<bool>;
};

template <typename Index, typename Row, typename Less = std::less<>>
class MibTable {
 public:
  using Map = std::map<Index, Row, Less, Kel::TrackedAllocator<std::pair<const Index, Row>>>;
  using value_type = typename Map::value_type;
  using const_iterator = typename Map::const_iterator;

  const Row* find(const Index& index) const {
    const auto it = rows_.find(index);
    return it == rows_.end() ? nullptr : &it->second;
  }
  bool contains(const Index& index) const { return rows_.find(index) != rows_.end(); }
  std::size_t size() const { return rows_.size(); }
  bool empty() const { return rows_.empty(); }
  const_iterator begin() const { return rows_.begin(); }
  const_iterator end() const { return rows_.end(); }
  const_iterator lowerBound(const Index& index) const { return rows_.lower_bound(index); }
  const_iterator upperBound(const Index& index) const { return rows_.upper_bound(index); }

  // `clock` reads the time of a stamp (CounterStampedRow only); without one
  // a stamp is 0.
  void set(const Index& index, Row row, const CounterClock& clock = {}) {
    const auto it = rows_.lower_bound(index);
    const bool replaces = it != rows_.end() && !rows_.key_comp()(index, it->first);
    if constexpr (CounterStampedRow<Row>) {
      row.counterStamp = replaces && sameCounters(it->second, row) ? it->second.counterStamp
                                                                   : CounterStamp{clock ? clock() : 0};
    }
    if (replaces) {
      it->second = std::move(row);
    } else {
      rows_.emplace_hint(it, index, std::move(row));
    }
  }
  // Stamps the row under index anew: counters it reaches through another
  // entity restarted. False when there is no row.
  bool counterStampIs(const Index& index, CounterStamp stamp) requires CounterStampedRow<Row> {
    const auto it = rows_.find(index);
    if (it == rows_.end()) {
      return false;
    }
    it->second.counterStamp = stamp;
    return true;
  }
  // True when there was a row to delete.
  bool del(const Index& index) {
    if (rows_.erase(index) == 0) {
      return false;
    }
    ++erasures_;
    return true;
  }
  void delAll() {
    erasures_ += rows_.size();
    rows_.clear();
  }
  // Rows deleted since the table was created.
  std::size_t erasures() const { return erasures_; }

 private:
  Map rows_;
  std::size_t erasures_ = 0;
};

}  // namespace QosSnmp
