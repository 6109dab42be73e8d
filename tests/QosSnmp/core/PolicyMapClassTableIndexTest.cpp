#include "QosSnmp/core/PolicyMapClassTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(PolicyMapClassTableIndexTest, FieldsReadBackAsGiven) {
  const PolicyMapClassTableIndex index("pm-edge", Qos::mapQos_, 3072);
  EXPECT_EQ(index.name(), Snmp::String("pm-edge"));
  EXPECT_EQ(index.type(), Qos::mapQos_);
  EXPECT_EQ(index.prio(), 3072U);
}

TEST(PolicyMapClassTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const PolicyMapClassTableIndex index("pm-edge", Qos::mapQos_, 3072);
  EXPECT_EQ(index, PolicyMapClassTableIndex("pm-edge", Qos::mapQos_, 3072));
  EXPECT_NE(index, PolicyMapClassTableIndex("pm-core", Qos::mapQos_, 3072));
  EXPECT_NE(index, PolicyMapClassTableIndex("pm-edge", Qos::mapControlPlane_, 3072));
  EXPECT_NE(index, PolicyMapClassTableIndex("pm-edge", Qos::mapQos_, 1));
}

TEST(PolicyMapClassTableIndexTest, FieldsOrderInDeclarationOrderWithShorterNamesFirst) {
  const std::set<PolicyMapClassTableIndex> ordered{{"pm-edge", Qos::mapQos_, 1},
                                                   {"pm-edge", Qos::mapControlPlane_, 3072},
                                                   {"pm-edge", Qos::mapControlPlane_, 20},
                                                   {"zz", Qos::mapQos_, 3072}};
  const std::vector<PolicyMapClassTableIndex> expected{{"zz", Qos::mapQos_, 3072},
                                                       {"pm-edge", Qos::mapControlPlane_, 20},
                                                       {"pm-edge", Qos::mapControlPlane_, 3072},
                                                       {"pm-edge", Qos::mapQos_, 1}};
  EXPECT_EQ(std::vector<PolicyMapClassTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(PolicyMapClassTableIndexTest, HashFeedsNameTypeAndPriority) {
  // The bytes of FNV-1a("pm-edge"), then 01 00 00 00, then 00 0c 00 00.
  EXPECT_EQ(PolicyMapClassTableIndex("pm-edge", Qos::mapQos_, 3072).hash(), 116130587U);
  for (const Kel::U32 prio : {0U, 1U, 3072U, 0x80000000U}) {
    EXPECT_EQ(PolicyMapClassTableIndex("pm-edge", Qos::mapControlPlane_, prio).hash(),
              HashReference()
                  .text("pm-edge")
                  .word(static_cast<Kel::U32>(Qos::mapControlPlane_))
                  .word(prio)
                  .result())
        << prio;
  }
}

TEST(PolicyMapClassTableIndexTest, StdHashIsTheRecordHash) {
  const PolicyMapClassTableIndex index("pm-edge", Qos::mapQos_, 3072);
  EXPECT_EQ(std::hash<PolicyMapClassTableIndex>{}(index), index.hash());
}

TEST(PolicyMapClassTableIndexTest, PrintsFieldsInParenthesesWithTheTypeAsANumber) {
  EXPECT_EQ(printed(PolicyMapClassTableIndex("pm-edge", Qos::mapQos_, 3072)), "(pm-edge, 1, 3072)");
}

}  // namespace
}  // namespace QosSnmp
