#include "host/state/InvariantHwCounters.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/state/InvariantTestSupport.h"

namespace {

using QosSnmpHostTest::AgentOverSwitch;
using QosSnmpHostTest::del;
using QosSnmpHostTest::guardedSwitch;
using QosSnmpHostTest::patched;
using QosSnmpHostTest::set;
using Guard = AgentOverSwitch::Guard;
using Json = nlohmann::json;

const std::string kHwClasses =
    "/sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput copp-system-policy/cmap";
const std::string kCoppPmap = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
const std::string kCounters = kCoppPmap + "/cmapCounters";
const char* const kCountersAssertion = "qosStatus must be populated before qosHwStatus";

const std::string kC1NeedsCounters =
    "hardware status /sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput "
    "copp-system-policy/cmap/c1 needs counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/"
    "cmapCounters/c1 first (the statistics machine asserts them)";

TEST(InvariantHwCountersTest, HardwareStatusBeforeItsCountersIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", Json::object())), kC1NeedsCounters);

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_DEATH(unguarded.change(set(kHwClasses + "/c1", Json::object())), kCountersAssertion);
}

TEST(InvariantHwCountersTest, HardwareStatusAfterItsCountersIsAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kCounters + "/c1", {{"packets", 3}})), "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", {{"packets", 3}})), "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1/packets", 4)), "");
}

TEST(InvariantHwCountersTest, CountersRemovedBeforeTheirHardwareStatusAreRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(del(kCounters + "/copp-acl")),
      "counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/copp-acl are still "
      "needed by hardware status /sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput "
      "copp-system-policy/cmap/copp-acl: remove the hardware status first (the statistics machine asserts "
      "the counters)");

  // The agent fails on the next look at the class: here the poll period
  // turning finite again.
  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(del(kCounters + "/copp-acl")), "");
  ASSERT_EQ(unguarded.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  EXPECT_DEATH(unguarded.change(set("/mibConfig/counterPollPeriod", 10)), kCountersAssertion);
}

TEST(InvariantHwCountersTest, CountersRemovedAfterTheirHardwareStatusAreAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(del(kHwClasses + "/copp-acl")), "");
  EXPECT_EQ(agent.change(del(kCounters + "/copp-acl")), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", 10)), "");
}

TEST(InvariantHwCountersTest, RemovingThePolicyMapBeforeItsHardwareStatusIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(del(kCoppPmap)),
      "counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/cmapCounters/copp-acl are still "
      "needed by hardware status /sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput "
      "copp-system-policy/cmap/copp-acl: remove the hardware status first (the statistics machine asserts "
      "the counters)");
  ASSERT_EQ(agent.change(del("/sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane")), "");
  EXPECT_EQ(agent.change(del(kCoppPmap)), "");
}

TEST(InvariantHwCountersTest, WithStatisticsOffHardwareStatusNeedsNoCounters) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", Json::object())), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", 10)), kC1NeedsCounters);
  ASSERT_EQ(agent.change(set(kCounters + "/c1", Json::object())), "");
  EXPECT_EQ(agent.change(set("/mibConfig/counterPollPeriod", 10)), "");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set("/mibConfig/counterPollPeriod", "inf")), "");
  ASSERT_EQ(unguarded.change(set(kHwClasses + "/c1", Json::object())), "");
  EXPECT_DEATH(unguarded.change(set("/mibConfig/counterPollPeriod", 10)), kCountersAssertion);
}

TEST(InvariantHwCountersTest, ThePolicyIsExemptOnlyWhileTheHardwareCountsControlPlanePolicing) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/hwStatus/coppHwStatsSupported", true)), "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", Json::object())), "");
  EXPECT_EQ(agent.change(set("/hwStatus/coppHwStatsSupported", false)), kC1NeedsCounters);
}

TEST(InvariantHwCountersTest, QosHardwareStatusNeedsCountersUnderTheControlPlanePolicyMapOfItsName) {
  const std::string qosHw = "/sliceHwStatus/slice0/pmapTypeHwStatus/mapQos";
  const auto appliedPm1 = [](int kind) {
    return Json{{"pmap", {{"directionInput pm1", {{"pmapKind", kind}, {"cmap", {{"c1", Json::object()}}}}}}}};
  };
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(set(qosHw, appliedPm1(0))),
      "hardware status /sliceHwStatus/slice0/pmapTypeHwStatus/mapQos/pmap/directionInput pm1/cmap/c1 needs "
      "counters /qosStatus/pmapType/mapControlPlane/pmap/pm1/cmapCounters/c1 first (the statistics machine "
      "asserts them)");
  // Policy maps of kinds 1 and 2 get no statistics.
  EXPECT_EQ(agent.change(set(qosHw, appliedPm1(2))), "");
  EXPECT_EQ(agent.change(set(qosHw, appliedPm1(1))), "");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_DEATH(unguarded.change(set(qosHw, appliedPm1(0))), kCountersAssertion);
}

TEST(InvariantHwCountersTest, PolicyBasedRoutingAndTheDropClassAreNotFollowed) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set("/sliceHwStatus/slice0/pmapTypeHwStatus/mapPbr",
                             {{"pmap", {{"directionInput pbr1", {{"cmap", {{"c1", Json::object()}}}}}}}})),
            "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/copp-system-drop", Json::object())), "");
}

TEST(InvariantHwCountersTest, WithoutControlPlaneClassMapsNothingIsChecked) {
  const Json noControlPlaneClassMaps = patched(guardedSwitch(), Json::parse(R"({
    "qosStatus": {
      "cmapType": {"mapControlPlane": null},
      "pmapType": {"mapControlPlane": {"pmap": {"copp-system-policy": {"classDefault": null}}}}
    },
    "sliceHwStatus": {"slice0": {"cpStaticClassHwStatus": null}}})"));
  AgentOverSwitch agent(noControlPlaneClassMaps);
  ASSERT_EQ(agent.buildRefusal(), "");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", Json::object())), "");
  EXPECT_EQ(agent.change(set("/qosStatus/cmapType/mapControlPlane", Json::object())), kC1NeedsCounters);
}

TEST(InvariantHwCountersTest, OnlyTheWatchedSliceIsJudged) {
  // The agent watches the last slice by name when it starts.
  const Json twoSlices = patched(guardedSwitch(), {{"sliceHwStatus", {{"slice1", Json::object()}}}});
  AgentOverSwitch agent(twoSlices);
  ASSERT_EQ(agent.buildRefusal(), "");
  EXPECT_EQ(agent.guard().watchedSlice(), "slice1");
  EXPECT_EQ(agent.change(set(kHwClasses + "/c1", Json::object())), "");
}

TEST(InvariantHwCountersTest, AnAddedSliceIsJudgedWhole) {
  const Json slice = {
      {"pmapTypeHwStatus",
       {{"mapControlPlane",
         {{"pmap", {{"directionInput copp-system-policy", {{"cmap", {{"c1", Json::object()}}}}}}}}}}}};
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(set("/sliceHwStatus/slice1", slice)),
      "hardware status /sliceHwStatus/slice1/pmapTypeHwStatus/mapControlPlane/pmap/directionInput "
      "copp-system-policy/cmap/c1 needs counters /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy/"
      "cmapCounters/c1 first (the statistics machine asserts them)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_DEATH(unguarded.change(set("/sliceHwStatus/slice1", slice)), kCountersAssertion);
}

TEST(InvariantHwCountersTest, StartingWithHardwareStatusWithoutCountersIsRefused) {
  const Json early = patched(
      guardedSwitch(),
      {{"sliceHwStatus",
        {{"slice0",
          {{"pmapTypeHwStatus",
            {{"mapControlPlane",
              {{"pmap",
                {{"directionInput copp-system-policy", {{"cmap", {{"c1", Json::object()}}}}}}}}}}}}}}}});
  const AgentOverSwitch agent(early);
  EXPECT_EQ(agent.buildRefusal(), kC1NeedsCounters);
  EXPECT_DEATH(AgentOverSwitch(early, Guard::off), kCountersAssertion);
}

}  // namespace
