#include "host/state/InvariantPolicerStats.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/state/InvariantTestSupport.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpHost::InvariantPolicerStats;
using QosSnmpHost::InvariantView;
using QosSnmpHost::StateTransition;
using QosSnmpHostTest::AgentOverSwitch;
using QosSnmpHostTest::del;
using QosSnmpHostTest::guardedSwitch;
using QosSnmpHostTest::patched;
using QosSnmpHostTest::set;
using Guard = AgentOverSwitch::Guard;
using Json = nlohmann::json;

const std::string kCoppCounters = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters";
const std::string kPm2 = "/qosStatus/pmapType/mapQos/pmap/pm2";
const Json kCountingCoppAcl = {{"cmapCounters", {{"copp-acl", {{"packets", 1}}}}}};

const std::string kCoppAclTwice =
    "counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/copp-acl and "
    "/qosStatus/pmapType/mapQos/pmap/pm2/cmapCounters/copp-acl count class map \"copp-acl\" under two policy "
    "maps "
    "(the policer statistics machine is keyed by the class-map name alone and cannot be re-created with "
    "other "
    "arguments)";

TEST(InvariantPolicerStatsTest, AClassCountedUnderTwoPolicyMapsIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kPm2, kCountingCoppAcl)), kCoppAclTwice);

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_THROW(unguarded.change(set(kPm2, kCountingCoppAcl)), Kel::MutatorReinstantiatingException);
}

TEST(InvariantPolicerStatsTest, ClassesCountedOnceAreAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kPm2, {{"cmapCounters", {{"c1", {{"packets", 1}}}}}})), "");
  // A policy-based routing map is not counted.
  EXPECT_EQ(agent.change(set("/qosStatus/pmapType/mapPbr", {{"pmap", {{"pbr1", kCountingCoppAcl}}}})), "");
  // Nor is a static control-plane class of a control-plane policy map.
  EXPECT_EQ(agent.change(set(kCoppCounters + "/copp-system-bgp", Json::object())), "");
  EXPECT_EQ(agent.change(set(kPm2 + "/cmapCounters/copp-system-bgp", Json::object())), "");
}

TEST(InvariantPolicerStatsTest, StatisticsOffOnlyDelayTheFailure) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  EXPECT_EQ(agent.change(set(kPm2, kCountingCoppAcl)), kCoppAclTwice);

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  ASSERT_EQ(unguarded.change(set(kPm2, kCountingCoppAcl)), "");
  EXPECT_THROW(unguarded.change(set("/mibConfig/counterPollPeriod", 10)),
               Kel::MutatorReinstantiatingException);
}

TEST(InvariantPolicerStatsTest, CountersBackAfterLeavingWhileStatisticsWereOffAreRefused) {
  const std::string c9 = kCoppCounters + "/c9";
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(c9, {{"packets", 1}})), "");
  ASSERT_EQ(agent.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  ASSERT_EQ(agent.change(del(c9)), "");
  EXPECT_EQ(
      agent.change(set(c9, {{"packets", 2}})),
      "counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/c9 would re-create "
      "the policer statistics machine of class map \"c9\", which the agent still holds for the removed "
      "counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/c9 (the policer "
      "statistics machine is keyed by the class-map name alone and cannot be re-created with other "
      "arguments)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(c9, {{"packets", 1}})), "");
  ASSERT_EQ(unguarded.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  ASSERT_EQ(unguarded.change(del(c9)), "");
  ASSERT_EQ(unguarded.change(set(c9, {{"packets", 2}})), "");
  EXPECT_THROW(unguarded.change(set("/mibConfig/counterPollPeriod", 10)),
               Kel::MutatorReinstantiatingException);
}

TEST(InvariantPolicerStatsTest, CountersBackAfterLeavingWhileStatisticsWereOnAreAccepted) {
  const std::string c9 = kCoppCounters + "/c9";
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(c9, {{"packets", 1}})), "");
  ASSERT_EQ(agent.change(del(c9)), "");
  EXPECT_EQ(agent.change(set(c9, {{"packets", 2}})), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", 10)), "");
}

TEST(InvariantPolicerStatsTest, AMachineHeldForAnUncountedClassStillHoldsItsName) {
  // With the hardware counting control-plane policing, the control-plane
  // policy's classes are no longer counted, but their machines stay.
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/hwStatus/coppHwStatsSupported", true)), "");
  EXPECT_EQ(agent.change(set(kPm2, kCountingCoppAcl)),
            "counters /qosStatus/pmapType/mapQos/pmap/pm2/cmapCounters/copp-acl would re-create the policer "
            "statistics machine of class map \"copp-acl\", which the agent still holds for the counters "
            "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/copp-acl (the policer "
            "statistics machine is keyed by the class-map name alone and cannot be re-created with other "
            "arguments)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set("/hwStatus/coppHwStatsSupported", true)), "");
  EXPECT_THROW(unguarded.change(set(kPm2, kCountingCoppAcl)), Kel::MutatorReinstantiatingException);
}

TEST(InvariantPolicerStatsTest, StartingWithAClassCountedTwiceIsRefused) {
  const Json twice =
      patched(guardedSwitch(),
              {{"qosStatus", {{"pmapType", {{"mapQos", {{"pmap", {{"pm2", kCountingCoppAcl}}}}}}}}}});
  const AgentOverSwitch agent(twice);
  EXPECT_EQ(agent.buildRefusal(), kCoppAclTwice);
  EXPECT_THROW(AgentOverSwitch(twice, Guard::off), Kel::MutatorReinstantiatingException);
}

TEST(InvariantPolicerStatsTest, WithThePolicerTableOffNothingIsRefused) {
  const Json twice =
      patched(guardedSwitch(),
              {{"qosStatus", {{"pmapType", {{"mapQos", {{"pmap", {{"pm2", kCountingCoppAcl}}}}}}}}}});
  const auto loaded = QosSnmpHost::SwitchState::load(twice);
  ASSERT_TRUE(loaded);
  const StateTransition build{StateTransition::Kind::build, Json::json_pointer(), loaded->document(),
                              nullptr};
  const InvariantView view(build);
  EXPECT_EQ(InvariantPolicerStats(false).refusal(view), std::nullopt);
  const auto refused = InvariantPolicerStats(true).refusal(view);
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->message, kCoppAclTwice);
  // A build is reported at the counters that would re-create the machine.
  EXPECT_EQ(refused->path, "/qosStatus/pmapType/mapQos/pmap/pm2/cmapCounters/copp-acl");
}

}  // namespace
