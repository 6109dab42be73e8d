#include "QosSnmp/core/ClassMapTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(ClassMapTableIndexTest, FieldsReadBackAsGiven) {
  const ClassMapTableIndex index("cm-voice", Qos::mapQos_);
  EXPECT_EQ(index.name(), Snmp::String("cm-voice"));
  EXPECT_EQ(index.type(), Qos::mapQos_);
}

TEST(ClassMapTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const ClassMapTableIndex index("cm-voice", Qos::mapQos_);
  EXPECT_EQ(index, ClassMapTableIndex("cm-voice", Qos::mapQos_));
  EXPECT_NE(index, ClassMapTableIndex("cm-video", Qos::mapQos_));
  EXPECT_NE(index, ClassMapTableIndex("cm-voice", Qos::mapControlPlane_));
}

TEST(ClassMapTableIndexTest, ShorterNameSortsFirstWhateverItsCharacters) {
  EXPECT_LT(ClassMapTableIndex("zz", Qos::mapQos_), ClassMapTableIndex("aaaaaaaaaa", Qos::mapQos_));
  EXPECT_LT(ClassMapTableIndex("ab", Qos::mapQos_), ClassMapTableIndex("ac", Qos::mapControlPlane_));
}

TEST(ClassMapTableIndexTest, NameOrdersBeforeType) {
  const std::set<ClassMapTableIndex> ordered{{"bb", Qos::mapControlPlane_},
                                             {"aa", Qos::mapQos_},
                                             {"aa", Qos::mapControlPlane_},
                                             {"c", Qos::mapQos_}};
  const std::vector<ClassMapTableIndex> expected{{"c", Qos::mapQos_},
                                                 {"aa", Qos::mapControlPlane_},
                                                 {"aa", Qos::mapQos_},
                                                 {"bb", Qos::mapControlPlane_}};
  EXPECT_EQ(std::vector<ClassMapTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(ClassMapTableIndexTest, HashFeedsNameThenType) {
  // The bytes of FNV-1a("cm-voice"), then 01 00 00 00.
  EXPECT_EQ(ClassMapTableIndex("cm-voice", Qos::mapQos_).hash(), 1940139531U);
  for (const char* name : {"", "a", "cm-voice", "copp-system-policy-with-a-lo-0c422663"}) {
    for (const Qos::MapType type : {Qos::mapControlPlane_, Qos::mapQos_, Qos::mapPbr_}) {
      EXPECT_EQ(ClassMapTableIndex(name, type).hash(),
                HashReference().text(name).word(static_cast<Kel::U32>(type)).result())
          << name << " " << type;
    }
  }
}

TEST(ClassMapTableIndexTest, StdHashIsTheRecordHash) {
  const ClassMapTableIndex index("cm-voice", Qos::mapQos_);
  EXPECT_EQ(std::hash<ClassMapTableIndex>{}(index), index.hash());
}

TEST(ClassMapTableIndexTest, PrintsFieldsInParenthesesWithTheTypeAsANumber) {
  EXPECT_EQ(printed(ClassMapTableIndex("cm-voice", Qos::mapQos_)), "(cm-voice, 1)");
  EXPECT_EQ(printed(ClassMapTableIndex("", Qos::mapControlPlane_)), "(, 0)");
}

}  // namespace
}  // namespace QosSnmp
