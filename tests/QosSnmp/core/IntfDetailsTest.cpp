#include "QosSnmp/core/IntfDetails.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "QosSnmp/core/IntfStatus.h"
#include "QosSnmp/core/QosSnmpTraceHandle.h"
#include "kel/Make.h"
#include "kel/Trace.h"

namespace IntfSnmp {
namespace {

// Every test starts from no trace configuration but QosSnmp's levels 0-8,
// whatever KEL_TRACE says, and leaves QosSnmp silent.
class IntfDetailsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    unsetenv("KEL_TRACE");
    Kel::traceConfigurationResetForTest();
    ASSERT_EQ(Kel::traceLevelsIs("QosSnmp/0-8"), std::nullopt);
  }
  void TearDown() override { Kel::traceLevelsIs("QosSnmp/"); }

  static Kel::Ptr<Interface::IntfStatus> status(Kel::S32 ifIndex) {
    auto status = Kel::make<Interface::IntfStatus>(Pellix::IntfId(Kel::String("Ethernet1")));
    status->snmpIfIndexIs(ifIndex);
    return status;
  }

  Kel::CapturingTraceSink sink_;
};

TEST_F(IntfDetailsTest, IfIndexIsTheStatussIndex) {
  EXPECT_EQ(IntfDetails(status(1001)).ifIndex(), 1001);
  EXPECT_EQ(IntfDetails(status(0)).ifIndex(), 0);
}

TEST_F(IntfDetailsTest, NegativeIndexesKeepTheirMeaning) {
  EXPECT_EQ(IntfDetails(status(Interface::IntfStatus::kIfIndexNever)).ifIndex(), -2);
  EXPECT_EQ(IntfDetails(status(-7)).ifIndex(), -7);
  EXPECT_EQ(IntfDetails(Kel::make<Interface::IntfStatus>(Pellix::IntfId(Kel::String("Ethernet2")))).ifIndex(),
            Interface::IntfStatus::kIfIndexNone);
}

TEST_F(IntfDetailsTest, NullStatusReadsAsMinusOne) {
  EXPECT_EQ(IntfDetails(nullptr).ifIndex(), -1);
  EXPECT_EQ(IntfDetails::kNoStatusIfIndex, -1);
}

TEST_F(IntfDetailsTest, IfIndexTracesTheIndexAtLevelEight) {
  IntfDetails(status(1001)).ifIndex();
  IntfDetails(nullptr).ifIndex();
  const Kel::CapturedTraceLine expected{"QosSnmp", 8, "ifIndex: 1001"};
  const Kel::CapturedTraceLine expectedNull{"QosSnmp", 8, "ifIndex: -1"};
  ASSERT_EQ(sink_.lines().size(), 2U);
  EXPECT_EQ(sink_.lines()[0], expected);
  EXPECT_EQ(sink_.lines()[1], expectedNull);
}

TEST_F(IntfDetailsTest, IfIndexTracesNothingWhileLevelEightIsOff) {
  ASSERT_EQ(Kel::traceLevelsIs("QosSnmp/0-7"), std::nullopt);
  EXPECT_EQ(IntfDetails(status(5)).ifIndex(), 5);
  EXPECT_TRUE(sink_.lines().empty());
}

TEST(QosSnmpTraceHandleTest, IsOneHandleForModuleQosSnmp) {
  EXPECT_EQ(&QosSnmp::traceHandle(), &QosSnmp::traceHandle());
  EXPECT_EQ(QosSnmp::traceHandle().module(), "QosSnmp");
}

}  // namespace
}  // namespace IntfSnmp
