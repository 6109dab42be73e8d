// The MIB view's GETNEXT and GET against a reference: over a populated
// model (PopulatedMib), one million OIDs, random and at every edge, each
// answered by MibView::next() and compared with its successor in the sorted
// list of every instance (MibReference.h), and by MibView::get(), which
// must answer exactly the OIDs of that list.
#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "host/snmp/MibReference.h"
#include "host/snmp/MibView.h"
#include "host/snmp/PopulatedMib.h"

namespace QosSnmpHost {
namespace {

using namespace QosSnmpHostTest;  // NOLINT(google-build-using-namespace): the reference's vocabulary

constexpr std::size_t kProbes = 1'000'000;

// Probes of every kind, in turn, until there are `count`.
class ProbeMaker {
 public:
  ProbeMaker(const std::vector<Oid>& instances, unsigned seed) : instances_(instances), random_(seed) {}

  Oid next() {
    switch (turn_++ % 8) {
      case 0:
        return nearInstance();
      case 1:
        return lyingLength();
      case 2:
        return aroundTables();
      case 3:
        return randomTail(pick(14));
      case 4:
        return randomTail(128 - kObjects.size());  // 128 sub-identifiers in all
      case 5:
        return truncated();
      case 6:
        return anywhere();
      default:
        return instance();
    }
  }

 private:
  std::uint32_t pick(std::uint32_t n) {
    return std::uniform_int_distribution<std::uint32_t>(0, n - 1)(random_);
  }
  std::uint32_t subId() {
    static constexpr std::uint32_t kEdges[] = {0, 1, 2, 3, 10, 11, 12, 29, 30, 31, 255, 256, 4294967295U};
    switch (pick(4)) {
      case 0:
        return static_cast<std::uint32_t>(random_());
      case 1:
        return 'a' + pick(4);
      default:
        return kEdges[pick(std::size(kEdges))];
    }
  }
  const Oid& anyInstance() { return instances_[pick(static_cast<std::uint32_t>(instances_.size()))]; }

  Oid instance() { return anyInstance(); }

  // An instance with one sub-identifier moved by a little or a lot, or
  // replaced by an edge value, and maybe cut or extended there.
  Oid nearInstance() {
    Oid oid = anyInstance();
    const std::size_t at = kObjects.size() + pick(static_cast<std::uint32_t>(oid.size() - kObjects.size()));
    static constexpr std::uint32_t kDeltas[] = {1, 0xFFFFFFFFU, 2, 0xFFFFFFFEU};
    oid[at] = pick(2) == 0 ? oid[at] + kDeltas[pick(std::size(kDeltas))] : subId();
    switch (pick(3)) {
      case 0:
        oid.resize(at + 1);
        break;
      case 1:
        oid.push_back(subId());
        break;
      default:
        break;
    }
    return oid;
  }

  // An instance of a string-indexed table whose length prefix does not
  // match the bytes after it.
  Oid lyingLength() {
    Oid oid = anyInstance();
    const std::uint32_t table = oid[kObjects.size()];
    if (table == kServicePolicyTable || table == kEcnQueueCounterTable || table == kAgentGroup) {
      return oid;
    }
    const std::size_t length = kObjects.size() + 3;  // the first index field is a name
    static constexpr std::uint32_t kLies[] = {0, 1, 29, 30, 31, 128, 4294967295U};
    oid[length] =
        pick(2) == 0 ? oid[length] + (pick(2) == 0 ? 1 : 0xFFFFFFFFU) : kLies[pick(std::size(kLies))];
    return oid;
  }

  // Before, between and after the tables, entries and columns.
  Oid aroundTables() {
    Oid oid = kObjects;
    oid.push_back(pick(14));
    if (pick(4) != 0) {
      oid.push_back(pick(3));
      if (pick(4) != 0) {
        oid.push_back(pick(18));
        for (std::uint32_t n = pick(3); n > 0; --n) {
          oid.push_back(subId());
        }
      }
    }
    return oid;
  }

  Oid randomTail(std::size_t extra) {
    Oid oid = kObjects;
    oid.push_back(pick(13));
    for (std::size_t i = 1; i < extra; ++i) {
      oid.push_back(pick(3) == 0 ? pick(4) : subId());
    }
    return oid;
  }

  Oid truncated() {
    const Oid& whole = anyInstance();
    return {whole.begin(), whole.begin() + pick(static_cast<std::uint32_t>(whole.size())) + 1};
  }

  // Anywhere in or around the module.
  Oid anywhere() {
    static const std::vector<Oid> kPlaces = {{},
                                             {0},
                                             {1, 3, 6, 1, 4, 1, 32473},
                                             {1, 3, 6, 1, 4, 1, 32473, 1},
                                             {1, 3, 6, 1, 4, 1, 32473, 1, 0},
                                             {1, 3, 6, 1, 4, 1, 32473, 1, 2},
                                             {1, 3, 6, 1, 4, 1, 32473, 2},
                                             {2},
                                             {4294967295U, 4294967295U}};
    Oid oid = kPlaces[pick(static_cast<std::uint32_t>(kPlaces.size()))];
    for (std::uint32_t n = pick(3); n > 0; --n) {
      oid.push_back(subId());
    }
    return oid;
  }

  const std::vector<Oid>& instances_;
  std::mt19937 random_;
  std::size_t turn_ = 0;
};

TEST(MibViewReferenceTest, NextAndGetAgreeWithTheSortedInstancesOverAMillionOids) {
  const PopulatedMib populated(2026, 400);
  const MibView view(populated.mib());
  const std::vector<Oid> all = expectedInstances(populated.mib());
  ASSERT_GT(all.size(), 10'000U);
  const std::set<Oid> tables = [&all] {
    std::set<Oid> seen;
    for (const Oid& oid : all) {
      seen.insert(Oid(oid.begin(), oid.begin() + static_cast<std::ptrdiff_t>(kObjects.size() + 1)));
    }
    return seen;
  }();
  ASSERT_EQ(tables.size(), 11U) << "every table and the agent group hold instances";

  ProbeMaker probes(all, 7);
  std::size_t mismatches = 0;
  std::size_t ends = 0;
  std::size_t answeredByGet = 0;
  for (std::size_t i = 0; i < kProbes; ++i) {
    const Oid probe = probes.next();
    const auto expected = std::upper_bound(all.begin(), all.end(), probe);
    const VarBind next = view.next(probe);
    const bool nextRight = expected == all.end()
                               ? next.exception == SnmpException::endOfMibView
                               : next.exception == SnmpException::none && next.oid == *expected;
    const bool isInstance = std::binary_search(all.begin(), all.end(), probe);
    const VarBind got = view.get(probe);
    const bool getRight = (got.exception == SnmpException::none) == isInstance && got.oid == probe;
    if (!nextRight || !getRight) {
      if (++mismatches <= 10) {
        ADD_FAILURE() << "probe " << MibView::oidName(probe) << ": next " << MibView::render(next)
                      << ", expected "
                      << (expected == all.end() ? std::string("endOfMibView") : MibView::oidName(*expected))
                      << "; get " << MibView::render(got) << (isInstance ? " (an instance)" : "");
      }
    }
    ends += expected == all.end() ? 1 : 0;
    answeredByGet += isInstance ? 1 : 0;
  }
  EXPECT_EQ(mismatches, 0U);
  // The probes reached both ends and hit instances exactly.
  EXPECT_GT(ends, 1000U);
  EXPECT_GT(answeredByGet, kProbes / 10);
}

}  // namespace
}  // namespace QosSnmpHost
