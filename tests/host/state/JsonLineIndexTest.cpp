#include "host/state/JsonLineIndex.h"

#include <string>

#include <gtest/gtest.h>

namespace QosSnmpHost {
namespace {

using JsonPointer = nlohmann::json::json_pointer;

const std::string kText = R"({
  "hwStatus": {
    "coppSupported": true,
    "numEcnQueues": 256
  },
  "intfStatus": {
    "Ethernet1": {"snmpIfIndex": 1},
    "Ethernet2": {
      "snmpIfIndex": [1, {"x": 2}]
    }
  }
})";

TEST(JsonLineIndexTest, NamesTheLineOfAMember) {
  const JsonLineIndex lines(kText);
  EXPECT_EQ(lines.lineOf(JsonPointer("/hwStatus")), 2);
  EXPECT_EQ(lines.lineOf(JsonPointer("/hwStatus/numEcnQueues")), 4);
  EXPECT_EQ(lines.lineOf(JsonPointer("/intfStatus/Ethernet2/snmpIfIndex")), 9);
}

TEST(JsonLineIndexTest, AnAbsentMemberGetsTheLineOfItsNearestAncestor) {
  const JsonLineIndex lines(kText);
  EXPECT_EQ(lines.lineOf(JsonPointer("/intfStatus/Ethernet3/snmpIfIndex")), 6);
  EXPECT_EQ(lines.lineOf(JsonPointer("/nothing")), 0);
  EXPECT_EQ(lines.lineOf(JsonPointer("")), 0);
}

TEST(JsonLineIndexTest, ASiblingWithTheSameKeyDeeperDownIsNotTakenForTheMember) {
  // "snmpIfIndex" of Ethernet1 is not on the way to Ethernet2's.
  const JsonLineIndex lines(kText);
  EXPECT_EQ(lines.lineOf(JsonPointer("/intfStatus/Ethernet2/snmpIfIndex")), 9);
  // Members inside arrays are never named by a path.
  EXPECT_EQ(lines.lineOf(JsonPointer("/intfStatus/Ethernet2/snmpIfIndex/x")), 9);
}

TEST(JsonLineIndexTest, DeepNestingIsReadInOnePass) {
  // Each lookup keeps no more than the depth; 60,000 levels would take
  // seconds if every key rebuilt its whole path.
  std::string deep;
  constexpr int kDepth = 60000;
  for (int i = 0; i < kDepth; ++i) {
    deep += "{\"a\":\n";
  }
  deep += "1" + std::string(kDepth, '}');
  const JsonLineIndex lines(deep);
  EXPECT_EQ(lines.lineOf(JsonPointer("/a/a/a")), 3);
  EXPECT_EQ(lines.lineOf(JsonPointer("/a/b")), 1);
}

}  // namespace
}  // namespace QosSnmpHost
