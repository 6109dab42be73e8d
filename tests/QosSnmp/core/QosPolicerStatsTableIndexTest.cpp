#include "QosSnmp/core/QosPolicerStatsTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(QosPolicerStatsTableIndexTest, FieldsReadBackAsGiven) {
  const QosPolicerStatsTableIndex index("pm-edge", 1, "cm-voice", 1000001);
  EXPECT_EQ(index.pmapName(), Snmp::String("pm-edge"));
  EXPECT_EQ(index.type(), 1);
  EXPECT_EQ(index.cmapName(), Snmp::String("cm-voice"));
  EXPECT_EQ(index.ifIndex(), 1000001);
}

TEST(QosPolicerStatsTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const QosPolicerStatsTableIndex index("pm-edge", 1, "cm-voice", 1000001);
  EXPECT_EQ(index, QosPolicerStatsTableIndex("pm-edge", 1, "cm-voice", 1000001));
  EXPECT_NE(index, QosPolicerStatsTableIndex("pm-core", 1, "cm-voice", 1000001));
  EXPECT_NE(index, QosPolicerStatsTableIndex("pm-edge", 0, "cm-voice", 1000001));
  EXPECT_NE(index, QosPolicerStatsTableIndex("pm-edge", 1, "cm-video", 1000001));
  EXPECT_NE(index, QosPolicerStatsTableIndex("pm-edge", 1, "cm-voice", 0));
}

TEST(QosPolicerStatsTableIndexTest, FieldsOrderInDeclarationOrderWithShorterNamesFirst) {
  const std::set<QosPolicerStatsTableIndex> ordered{
      {"pm-edge", 1, "cm-voice", 2}, {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm", 7},
      {"pm-edge", 0, "cm-voice", 9}, {"pm", 1, "cm-voice", 6},
  };
  const std::vector<QosPolicerStatsTableIndex> expected{
      {"pm", 1, "cm-voice", 6},      {"pm-edge", 0, "cm-voice", 9}, {"pm-edge", 1, "cm", 7},
      {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm-voice", 2},
  };
  EXPECT_EQ(std::vector<QosPolicerStatsTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(QosPolicerStatsTableIndexTest, HashFeedsFieldsInDeclarationOrder) {
  // The bytes of FNV-1a("pm-edge"), 01 00 00 00, FNV-1a("cm-voice"), 41 42 0f 00.
  EXPECT_EQ(QosPolicerStatsTableIndex("pm-edge", 1, "cm-voice", 1000001).hash(), 1495063017U);
  for (const Kel::S32 ifIndex : {0, 1, 1000001, -2}) {
    EXPECT_EQ(QosPolicerStatsTableIndex("pm-edge", 1, "cm-voice", ifIndex).hash(),
              HashReference().text("pm-edge").word(1).text("cm-voice").word(ifIndex).result())
        << ifIndex;
  }
}

TEST(QosPolicerStatsTableIndexTest, StdHashIsTheRecordHash) {
  const QosPolicerStatsTableIndex index("pm-edge", 1, "cm-voice", 1000001);
  EXPECT_EQ(std::hash<QosPolicerStatsTableIndex>{}(index), index.hash());
}

TEST(QosPolicerStatsTableIndexTest, PrintsFieldsInParentheses) {
  EXPECT_EQ(printed(QosPolicerStatsTableIndex("pm-edge", 1, "cm-voice", 1000001)),
            "(pm-edge, 1, cm-voice, 1000001)");
}

}  // namespace
}  // namespace QosSnmp
