// Framework costs that every row of every table pays: notification dispatch
// to reactors and collection insert and delete.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/KeySet.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace {

class Table : public Kel::Entity {
 public:
  struct Row : Kel::CollectionAttribute<1, int> {};
  using Entity::Entity;
  void rowIs(int key, int value) { row_.set(*this, key, value); }
  bool rowDel(int key) { return row_.del(*this, key); }

 private:
  Kel::Collection<Row, int> row_;
};

class CounterSm : public Kel::StateMachine {
 public:
  long handled = 0;
};

class KelTable : public Kel::Notifiee<KelTable, CounterSm, const Table, Table::Row> {
 public:
  using Notifiee::Notifiee;
  void on(Table::Row /*attr*/, const int& key) { owner().handled += key & 1; }
};

// One change of a collection member delivered to N reactors.
void BM_NotificationDispatch(benchmark::State& state) {
  const auto table = Kel::make<Table>("t");
  const auto owner = Kel::make<CounterSm>();
  std::vector<Kel::Ptr<KelTable>> reactors;
  reactors.reserve(static_cast<std::size_t>(state.range(0)));
  for (int i = 0; i < state.range(0); ++i) {
    reactors.push_back(Kel::makeReactor<KelTable>(owner.get(), table));
  }
  int value = 0;
  for (auto _ : state) {
    table->rowIs(1, ++value);
  }
  benchmark::DoNotOptimize(owner->handled);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_NotificationDispatch)->Range(1, 1024);

// Inserting then deleting N members of a watched collection.
void BM_CollectionInsertDelete(benchmark::State& state) {
  const auto table = Kel::make<Table>("t");
  const auto owner = Kel::make<CounterSm>();
  const auto reactor = Kel::makeReactor<KelTable>(owner.get(), table);
  const int rows = static_cast<int>(state.range(0));
  for (auto _ : state) {
    for (int i = 0; i < rows; ++i) {
      table->rowIs(i * 7919 % rows, i);
    }
    for (int i = 0; i < rows; ++i) {
      table->rowDel(i);
    }
  }
  benchmark::DoNotOptimize(owner->handled);
  state.SetItemsProcessed(state.iterations() * rows * 2);
}
BENCHMARK(BM_CollectionInsertDelete)->Range(1 << 10, 1 << 17);

// Adding and draining a state machine's key set of N indexes.
void BM_KeySetInsertDrain(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Kel::KeySet<int> keys;
    for (int i = 0; i < rows; ++i) {
      keys.is(i * 7919 % rows);
    }
    long drained = 0;
    keys.drain([&](int key) { drained += key; });
    benchmark::DoNotOptimize(drained);
  }
  state.SetItemsProcessed(state.iterations() * rows * 2);
}
BENCHMARK(BM_KeySetInsertDrain)->Range(1 << 10, 1 << 17);

// Creating and releasing a reactor on an entity that many reactors watch.
void BM_ReactorAttachDetach(benchmark::State& state) {
  const auto table = Kel::make<Table>("t");
  const auto owner = Kel::make<CounterSm>();
  std::vector<Kel::Ptr<KelTable>> reactors;
  reactors.reserve(static_cast<std::size_t>(state.range(0)));
  for (int i = 0; i < state.range(0); ++i) {
    reactors.push_back(Kel::makeReactor<KelTable>(owner.get(), table));
  }
  for (auto _ : state) {
    auto reactor = Kel::makeReactor<KelTable>(owner.get(), table);
    benchmark::DoNotOptimize(reactor.get());
  }
}
BENCHMARK(BM_ReactorAttachDetach)->Range(1, 1 << 16);

}  // namespace
