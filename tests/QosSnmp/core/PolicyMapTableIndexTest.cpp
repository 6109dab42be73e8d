#include "QosSnmp/core/PolicyMapTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(PolicyMapTableIndexTest, FieldsReadBackAsGiven) {
  const PolicyMapTableIndex index("pm-edge", Qos::mapQos_);
  EXPECT_EQ(index.name(), Snmp::String("pm-edge"));
  EXPECT_EQ(index.type(), Qos::mapQos_);
}

TEST(PolicyMapTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const PolicyMapTableIndex index("pm-edge", Qos::mapQos_);
  EXPECT_EQ(index, PolicyMapTableIndex("pm-edge", Qos::mapQos_));
  EXPECT_NE(index, PolicyMapTableIndex("pm-core", Qos::mapQos_));
  EXPECT_NE(index, PolicyMapTableIndex("pm-edge", Qos::mapControlPlane_));
}

TEST(PolicyMapTableIndexTest, FieldsOrderInDeclarationOrderWithShorterNamesFirst) {
  const std::set<PolicyMapTableIndex> ordered{{"copp-system-policy", Qos::mapControlPlane_},
                                              {"pm-edge", Qos::mapQos_},
                                              {"pm-edge", Qos::mapControlPlane_},
                                              {"zz", Qos::mapQos_}};
  const std::vector<PolicyMapTableIndex> expected{{"zz", Qos::mapQos_},
                                                  {"pm-edge", Qos::mapControlPlane_},
                                                  {"pm-edge", Qos::mapQos_},
                                                  {"copp-system-policy", Qos::mapControlPlane_}};
  EXPECT_EQ(std::vector<PolicyMapTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(PolicyMapTableIndexTest, HashFeedsNameThenType) {
  // The bytes of FNV-1a("pm-edge"), then 01 00 00 00.
  EXPECT_EQ(PolicyMapTableIndex("pm-edge", Qos::mapQos_).hash(), 1448440574U);
  for (const char* name : {"", "copp-system-policy", "pm-edge"}) {
    for (const Qos::MapType type : {Qos::mapControlPlane_, Qos::mapQos_}) {
      EXPECT_EQ(PolicyMapTableIndex(name, type).hash(),
                HashReference().text(name).word(static_cast<Kel::U32>(type)).result())
          << name << " " << type;
    }
  }
}

TEST(PolicyMapTableIndexTest, StdHashIsTheRecordHash) {
  const PolicyMapTableIndex index("pm-edge", Qos::mapQos_);
  EXPECT_EQ(std::hash<PolicyMapTableIndex>{}(index), index.hash());
}

TEST(PolicyMapTableIndexTest, PrintsFieldsInParenthesesWithTheTypeAsANumber) {
  EXPECT_EQ(printed(PolicyMapTableIndex("copp-system-policy", Qos::mapControlPlane_)),
            "(copp-system-policy, 0)");
}

}  // namespace
}  // namespace QosSnmp
