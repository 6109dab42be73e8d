#include "QosSnmp/core/ClassMapMatchTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(ClassMapMatchTableIndexTest, FieldsReadBackAsGiven) {
  const ClassMapMatchTableIndex index("cm-voice", Qos::mapQos_, 2);
  EXPECT_EQ(index.name(), Snmp::String("cm-voice"));
  EXPECT_EQ(index.type(), Qos::mapQos_);
  EXPECT_EQ(index.matchIndex(), 2U);
}

TEST(ClassMapMatchTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const ClassMapMatchTableIndex index("cm-voice", Qos::mapQos_, 2);
  EXPECT_EQ(index, ClassMapMatchTableIndex("cm-voice", Qos::mapQos_, 2));
  EXPECT_NE(index, ClassMapMatchTableIndex("cm-video", Qos::mapQos_, 2));
  EXPECT_NE(index, ClassMapMatchTableIndex("cm-voice", Qos::mapControlPlane_, 2));
  EXPECT_NE(index, ClassMapMatchTableIndex("cm-voice", Qos::mapQos_, 1));
}

TEST(ClassMapMatchTableIndexTest, ShorterNameSortsFirstWhateverItsCharacters) {
  EXPECT_LT(ClassMapMatchTableIndex("zz", Qos::mapQos_, 9),
            ClassMapMatchTableIndex("aaaaaaaaaa", Qos::mapQos_, 1));
}

TEST(ClassMapMatchTableIndexTest, FieldsOrderInDeclarationOrder) {
  const std::set<ClassMapMatchTableIndex> ordered{{"aa", Qos::mapQos_, 1},
                                                  {"aa", Qos::mapControlPlane_, 10},
                                                  {"aa", Qos::mapControlPlane_, 2},
                                                  {"ab", Qos::mapControlPlane_, 1}};
  const std::vector<ClassMapMatchTableIndex> expected{{"aa", Qos::mapControlPlane_, 2},
                                                      {"aa", Qos::mapControlPlane_, 10},
                                                      {"aa", Qos::mapQos_, 1},
                                                      {"ab", Qos::mapControlPlane_, 1}};
  EXPECT_EQ(std::vector<ClassMapMatchTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(ClassMapMatchTableIndexTest, HashFeedsNameTypeAndMatchIndex) {
  // The bytes of FNV-1a("cm-voice"), then 01 00 00 00, then 02 00 00 00.
  EXPECT_EQ(ClassMapMatchTableIndex("cm-voice", Qos::mapQos_, 2).hash(), 3776918092U);
  for (const char* name : {"", "cm-voice"}) {
    for (const Kel::U32 matchIndex : {1U, 2U, 0x01020304U, 0xffffffffU}) {
      EXPECT_EQ(
          ClassMapMatchTableIndex(name, Qos::mapQos_, matchIndex).hash(),
          HashReference().text(name).word(static_cast<Kel::U32>(Qos::mapQos_)).word(matchIndex).result())
          << name << " " << matchIndex;
    }
  }
}

TEST(ClassMapMatchTableIndexTest, StdHashIsTheRecordHash) {
  const ClassMapMatchTableIndex index("cm-voice", Qos::mapQos_, 2);
  EXPECT_EQ(std::hash<ClassMapMatchTableIndex>{}(index), index.hash());
}

TEST(ClassMapMatchTableIndexTest, PrintsFieldsInParenthesesWithTheTypeAsANumber) {
  EXPECT_EQ(printed(ClassMapMatchTableIndex("cm-voice", Qos::mapQos_, 2)), "(cm-voice, 1, 2)");
}

}  // namespace
}  // namespace QosSnmp
