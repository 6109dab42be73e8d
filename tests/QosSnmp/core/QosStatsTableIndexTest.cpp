#include "QosSnmp/core/QosStatsTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(QosStatsTableIndexTest, FieldsReadBackAsGiven) {
  const QosStatsTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(index.pmapName(), Snmp::String("pm-edge"));
  EXPECT_EQ(index.type(), 1);
  EXPECT_EQ(index.cmapName(), Snmp::String("cm-voice"));
  EXPECT_EQ(index.qualifier(), 6);
}

TEST(QosStatsTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const QosStatsTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(index, QosStatsTableIndex("pm-edge", 1, "cm-voice", 6));
  EXPECT_NE(index, QosStatsTableIndex("pm-core", 1, "cm-voice", 6));
  EXPECT_NE(index, QosStatsTableIndex("pm-edge", 0, "cm-voice", 6));
  EXPECT_NE(index, QosStatsTableIndex("pm-edge", 1, "cm-video", 6));
  EXPECT_NE(index, QosStatsTableIndex("pm-edge", 1, "cm-voice", 0));
  EXPECT_NE(index, QosStatsTableIndex("cm-voice", 1, "pm-edge", 6));
}

TEST(QosStatsTableIndexTest, FieldsOrderInDeclarationOrderWithShorterNamesFirst) {
  // The hash order does not touch the ordering: the policy-map name leads.
  const std::set<QosStatsTableIndex> ordered{
      {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm", 7},  {"pm-edge", 0, "cm-voice", 6},
      {"pm-edge", 1, "cm-voice", 6}, {"pm", 1, "cm-voice", 6}, {"pm-edgf", 0, "a", 0},
  };
  const std::vector<QosStatsTableIndex> expected{
      {"pm", 1, "cm-voice", 6},      {"pm-edge", 0, "cm-voice", 6}, {"pm-edge", 1, "cm", 7},
      {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm-voice", 6}, {"pm-edgf", 0, "a", 0},
  };
  EXPECT_EQ(std::vector<QosStatsTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(QosStatsTableIndexTest, HashFeedsClassMapNameFirst) {
  // The bytes of FNV-1a("cm-voice"), FNV-1a("pm-edge"), 01 00 00 00, 06 00 00 00.
  EXPECT_EQ(QosStatsTableIndex("pm-edge", 1, "cm-voice", 6).hash(), 1534552385U);
  for (const Kel::S32 type : {0, 1, -1}) {
    for (const Kel::S32 qualifier : {0, 6, 0x7fffffff}) {
      EXPECT_EQ(QosStatsTableIndex("pm-edge", type, "cm-voice", qualifier).hash(),
                HashReference().text("cm-voice").text("pm-edge").word(type).word(qualifier).result())
          << type << " " << qualifier;
    }
  }
}

// The statistics index and the action index have the same shape, but only
// the action index hashes in declaration order. The difference is
// deliberate: this pins both sides of it.
TEST(QosStatsTableIndexTest, HashesUnlikeAnActionIndexWithTheSameFieldValues) {
  const QosStatsTableIndex stats("pm-edge", 1, "cm-voice", 6);
  const PolicyMapActionTableIndex action("pm-edge", 1, "cm-voice", 6);
  EXPECT_NE(stats.hash(), action.hash());
  EXPECT_EQ(stats.hash(), 1534552385U);
  EXPECT_EQ(action.hash(), 4224734590U);
  EXPECT_EQ(stats.hash(), HashReference().text("cm-voice").text("pm-edge").word(1).word(6).result());
  EXPECT_EQ(action.hash(), HashReference().text("pm-edge").word(1).text("cm-voice").word(6).result());
}

TEST(QosStatsTableIndexTest, StdHashIsTheRecordHash) {
  const QosStatsTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(std::hash<QosStatsTableIndex>{}(index), index.hash());
}

TEST(QosStatsTableIndexTest, PrintsFieldsInDeclarationOrder) {
  EXPECT_EQ(printed(QosStatsTableIndex("pm-edge", 1, "cm-voice", 6)), "(pm-edge, 1, cm-voice, 6)");
}

}  // namespace
}  // namespace QosSnmp
