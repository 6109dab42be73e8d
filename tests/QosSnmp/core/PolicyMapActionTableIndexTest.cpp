#include "QosSnmp/core/PolicyMapActionTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(PolicyMapActionTableIndexTest, FieldsReadBackAsGiven) {
  const PolicyMapActionTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(index.pmapName(), Snmp::String("pm-edge"));
  EXPECT_EQ(index.type(), 1);
  EXPECT_EQ(index.cmapName(), Snmp::String("cm-voice"));
  EXPECT_EQ(index.actionType(), 6);
}

TEST(PolicyMapActionTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const PolicyMapActionTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(index, PolicyMapActionTableIndex("pm-edge", 1, "cm-voice", 6));
  EXPECT_NE(index, PolicyMapActionTableIndex("pm-core", 1, "cm-voice", 6));
  EXPECT_NE(index, PolicyMapActionTableIndex("pm-edge", 0, "cm-voice", 6));
  EXPECT_NE(index, PolicyMapActionTableIndex("pm-edge", 1, "cm-video", 6));
  EXPECT_NE(index, PolicyMapActionTableIndex("pm-edge", 1, "cm-voice", 0));
  // The same two names the other way round.
  EXPECT_NE(index, PolicyMapActionTableIndex("cm-voice", 1, "pm-edge", 6));
}

TEST(PolicyMapActionTableIndexTest, FieldsOrderInDeclarationOrderWithShorterNamesFirst) {
  const std::set<PolicyMapActionTableIndex> ordered{
      {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm", 7},  {"pm-edge", 0, "cm-voice", 6},
      {"pm-edge", 1, "cm-voice", 6}, {"pm", 1, "cm-voice", 6}, {"pm-edge", 1, "cm-voicf", 0},
  };
  const std::vector<PolicyMapActionTableIndex> expected{
      {"pm", 1, "cm-voice", 6},      {"pm-edge", 0, "cm-voice", 6}, {"pm-edge", 1, "cm", 7},
      {"pm-edge", 1, "cm-voice", 0}, {"pm-edge", 1, "cm-voice", 6}, {"pm-edge", 1, "cm-voicf", 0},
  };
  EXPECT_EQ(std::vector<PolicyMapActionTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(PolicyMapActionTableIndexTest, HashFeedsFieldsInDeclarationOrder) {
  // The bytes of FNV-1a("pm-edge"), 01 00 00 00, FNV-1a("cm-voice"), 06 00 00 00.
  EXPECT_EQ(PolicyMapActionTableIndex("pm-edge", 1, "cm-voice", 6).hash(), 4224734590U);
  for (const Kel::S32 type : {0, 1, -1}) {
    for (const Kel::S32 actionType : {0, 6, 0x7fffffff}) {
      EXPECT_EQ(PolicyMapActionTableIndex("pm-edge", type, "cm-voice", actionType).hash(),
                HashReference().text("pm-edge").word(type).text("cm-voice").word(actionType).result())
          << type << " " << actionType;
    }
  }
}

TEST(PolicyMapActionTableIndexTest, StdHashIsTheRecordHash) {
  const PolicyMapActionTableIndex index("pm-edge", 1, "cm-voice", 6);
  EXPECT_EQ(std::hash<PolicyMapActionTableIndex>{}(index), index.hash());
}

TEST(PolicyMapActionTableIndexTest, PrintsFieldsInParentheses) {
  EXPECT_EQ(printed(PolicyMapActionTableIndex("pm-edge", 1, "cm-voice", 6)), "(pm-edge, 1, cm-voice, 6)");
}

}  // namespace
}  // namespace QosSnmp
