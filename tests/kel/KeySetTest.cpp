#include "kel/KeySet.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(KeySetTest, RemembersIndexesInOrder) {
  Kel::KeySet<int> keys;
  keys.is(3);
  keys.is(1);
  keys.is(3);
  EXPECT_EQ(keys.size(), 2U);
  EXPECT_TRUE(keys.contains(1));
  EXPECT_EQ(std::vector<int>(keys.begin(), keys.end()), (std::vector<int>{1, 3}));
  EXPECT_TRUE(keys.del(1));
  EXPECT_FALSE(keys.del(1));
  keys.delAll();
  EXPECT_TRUE(keys.empty());
}

TEST(KeySetTest, DrainVisitsEveryIndexAndEmptiesTheSet) {
  Kel::KeySet<int> keys;
  for (const int i : {5, 2, 8}) {
    keys.is(i);
  }
  std::vector<int> removed;
  keys.drain([&](int i) { removed.push_back(i); });
  EXPECT_EQ(removed, (std::vector<int>{2, 5, 8}));
  EXPECT_TRUE(keys.empty());
}

TEST(KeySetTest, DrainToleratesTheCallbackRemovingOtherIndexes) {
  Kel::KeySet<int> keys;
  for (int i = 0; i < 6; ++i) {
    keys.is(i);
  }
  std::vector<int> removed;
  keys.drain([&](int i) {
    removed.push_back(i);
    keys.del(i + 1);
  });
  EXPECT_EQ(removed, (std::vector<int>{0, 2, 4}));
}

}  // namespace
