#include "kel/ValueMap.h"

#include <gtest/gtest.h>

namespace {

TEST(ValueMapTest, DelReturnsTheHeldValueOrDefault) {
  Kel::ValueMap<int, unsigned> priorities;
  priorities.is(7, 6100);
  priorities.is(7, 6090);
  EXPECT_EQ(priorities.get(7), 6090U);
  EXPECT_EQ(priorities.get(8), 0U);
  EXPECT_EQ(priorities.del(7), 6090U);
  EXPECT_EQ(priorities.del(7), 0U);
  EXPECT_TRUE(priorities.empty());
}

}  // namespace
