#include "QosSnmp/core/EcnQueueCounterTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(EcnQueueCounterTableIndexTest, FieldsReadBackAsGiven) {
  const EcnQueueCounterTableIndex index(1000001, 7);
  EXPECT_EQ(index.ifIndex(), 1000001);
  EXPECT_EQ(index.queue(), 7U);
}

TEST(EcnQueueCounterTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const EcnQueueCounterTableIndex index(1000001, 7);
  EXPECT_EQ(index, EcnQueueCounterTableIndex(1000001, 7));
  EXPECT_NE(index, EcnQueueCounterTableIndex(1000002, 7));
  EXPECT_NE(index, EcnQueueCounterTableIndex(1000001, 6));
}

TEST(EcnQueueCounterTableIndexTest, OrdersByIfIndexThenQueue) {
  const std::set<EcnQueueCounterTableIndex> ordered{{2, 0}, {1, 7}, {1, 0}, {1, 200}};
  const std::vector<EcnQueueCounterTableIndex> expected{{1, 0}, {1, 7}, {1, 200}, {2, 0}};
  EXPECT_EQ(std::vector<EcnQueueCounterTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(EcnQueueCounterTableIndexTest, QueueFeedsOneByteToTheHash) {
  // Worked by hand for ifIndex 0, queue 1. The four zero bytes of the
  // ifIndex leave h at 0. The queue's byte 01: h = 0 + 1 = 1;
  // h = 1 + (1 << 10) = 1025; h = 1025 ^ (1025 >> 6) = 1025 ^ 16 = 1041.
  // Closing: h = 1041 + (1041 << 3) = 9369; h = 9369 ^ (9369 >> 11) =
  // 9369 ^ 4 = 9373; h = 9373 + (9373 << 15) = 9373 + 307134464 = 307143837.
  EXPECT_EQ(EcnQueueCounterTableIndex(0, 1).hash(), 307143837U);
  // 41 42 0f 00, then 07.
  EXPECT_EQ(EcnQueueCounterTableIndex(1000001, 7).hash(), 980898934U);
  for (const Kel::S32 ifIndex : {0, 1, 1000001}) {
    for (const Kel::U8 queue : {0, 1, 7, 255}) {
      EXPECT_EQ(EcnQueueCounterTableIndex(ifIndex, queue).hash(),
                HashReference().word(ifIndex).byte(queue).result())
          << ifIndex << " " << unsigned{queue};
    }
  }
  // Four bytes for the queue would give another value.
  EXPECT_NE(EcnQueueCounterTableIndex(1000001, 7).hash(), HashReference().word(1000001).word(7).result());
}

TEST(EcnQueueCounterTableIndexTest, StdHashIsTheRecordHash) {
  const EcnQueueCounterTableIndex index(1000001, 7);
  EXPECT_EQ(std::hash<EcnQueueCounterTableIndex>{}(index), index.hash());
}

TEST(EcnQueueCounterTableIndexTest, PrintsTheQueueAsANumber) {
  EXPECT_EQ(printed(EcnQueueCounterTableIndex(1000001, 7)), "(1000001, 7)");
  EXPECT_EQ(printed(EcnQueueCounterTableIndex(3, 65)), "(3, 65)");
}

}  // namespace
}  // namespace QosSnmp
