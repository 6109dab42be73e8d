#include "QosSnmp/core/ServicePolicyTableIndex.h"

#include <functional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/IndexRecordTestSupport.h"

namespace QosSnmp {
namespace {

using QosSnmpTest::HashReference;
using QosSnmpTest::printed;

TEST(ServicePolicyTableIndexTest, FieldsReadBackAsGiven) {
  const ServicePolicyTableIndex index(1000001, 1);
  EXPECT_EQ(index.ifIndex(), 1000001);
  EXPECT_EQ(index.direction(), 1);
}

TEST(ServicePolicyTableIndexTest, EqualExactlyWhenEveryFieldIsEqual) {
  const ServicePolicyTableIndex index(1000001, 1);
  EXPECT_EQ(index, ServicePolicyTableIndex(1000001, 1));
  EXPECT_NE(index, ServicePolicyTableIndex(1000002, 1));
  EXPECT_NE(index, ServicePolicyTableIndex(1000001, 2));
  EXPECT_NE(ServicePolicyTableIndex(1, 2), ServicePolicyTableIndex(2, 1));
}

TEST(ServicePolicyTableIndexTest, OrdersByIfIndexThenDirection) {
  const std::set<ServicePolicyTableIndex> ordered{{2, 1}, {1, 2}, {10, 0}, {1, 1}};
  const std::vector<ServicePolicyTableIndex> expected{{1, 1}, {1, 2}, {2, 1}, {10, 0}};
  EXPECT_EQ(std::vector<ServicePolicyTableIndex>(ordered.begin(), ordered.end()), expected);
}

TEST(ServicePolicyTableIndexTest, HashFeedsIfIndexThenDirection) {
  // Eight zero bytes leave every step at 0.
  EXPECT_EQ(ServicePolicyTableIndex(0, 0).hash(), 0U);
  // 41 42 0f 00, then 01 00 00 00.
  EXPECT_EQ(ServicePolicyTableIndex(1000001, 1).hash(), 3919317940U);
  // A negative field feeds its two's-complement bytes: ff ff ff ff, then 02 00 00 00.
  EXPECT_EQ(ServicePolicyTableIndex(-1, 2).hash(), 895358065U);
  for (const Kel::S32 ifIndex : {1, 1000001, 0x7fffffff}) {
    for (const Kel::S32 direction : {0, 1, 2}) {
      EXPECT_EQ(ServicePolicyTableIndex(ifIndex, direction).hash(),
                HashReference().word(ifIndex).word(direction).result())
          << ifIndex << " " << direction;
    }
  }
}

TEST(ServicePolicyTableIndexTest, StdHashIsTheRecordHash) {
  const ServicePolicyTableIndex index(1000001, 1);
  EXPECT_EQ(std::hash<ServicePolicyTableIndex>{}(index), index.hash());
}

TEST(ServicePolicyTableIndexTest, PrintsFieldsInParentheses) {
  EXPECT_EQ(printed(ServicePolicyTableIndex(1000001, 1)), "(1000001, 1)");
}

}  // namespace
}  // namespace QosSnmp
