#include "host/state/InvariantCoppStatic.h"

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

const std::string kClasses = "/sliceHwStatus/slice0/cpStaticClassHwStatus";
const std::string kCoppPmap = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
const std::string kCoppCmaps = "/qosStatus/cmapType/mapControlPlane/cmap";

// The agent's own failure reports.
const char* const kPmapAssertion = "PolicyMapStatus must exist for copp-system-policy";
const char* const kClassMapAssertion = "ClassMapStatus entity must exist for static copp ClassMaps";
const char* const kStaticAssertion =
    "Assertion `isStaticCoppClassMap\\( Qos::mapControlPlane_, cmap \\)' failed";

// The switch without hardware status of policy maps, so that the
// control-plane policy map can come and go without its counters' rule.
Json switchWithoutHwPolicyMaps() {
  return patched(guardedSwitch(),
                 Json::parse(R"({"sliceHwStatus": {"slice0": {"pmapTypeHwStatus": null}}})"));
}

// The switch without the control-plane policy map.
Json switchWithoutCoppPolicy() {
  return patched(switchWithoutHwPolicyMaps(),
                 Json::parse(R"({"qosStatus": {"pmapType": {"mapControlPlane": {"pmap": {
                                   "copp-system-policy": null}}}}})"));
}

// The switch with the hardware reporting the LACP class, whose class map
// does not exist.
Json switchReportingLacp(bool coppSupported) {
  return patched(
      guardedSwitch(),
      {{"hwStatus", {{"coppSupported", coppSupported}}},
       {"sliceHwStatus", {{"slice0", {{"cpStaticClassHwStatus", {{"cpStaticLacp", {{"hwRank", 2}}}}}}}}}});
}

TEST(InvariantCoppStaticTest, TheSwitchWithItsControlPlanePolicyMapStarts) {
  const AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.buildRefusal(), "");
  EXPECT_TRUE(agent.built());
}

TEST(InvariantCoppStaticTest, StartingWithoutTheControlPlanePolicyMapIsRefused) {
  const AgentOverSwitch agent(switchWithoutCoppPolicy());
  EXPECT_EQ(
      agent.buildRefusal(),
      "no control-plane policy map /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy (the static "
      "control-plane machine asserts it when the agent starts)");
  EXPECT_FALSE(agent.built());
  EXPECT_DEATH(AgentOverSwitch(switchWithoutCoppPolicy(), Guard::off), kPmapAssertion);
}

TEST(InvariantCoppStaticTest, DeletingTheControlPlanePolicyMapAloneIsAccepted) {
  AgentOverSwitch agent(switchWithoutHwPolicyMaps());
  EXPECT_EQ(agent.change(del(kCoppPmap)), "");
}

TEST(InvariantCoppStaticTest, AddingASliceWithoutTheControlPlanePolicyMapIsRefused) {
  AgentOverSwitch agent(switchWithoutHwPolicyMaps());
  ASSERT_EQ(agent.change(del(kCoppPmap)), "");
  EXPECT_EQ(
      agent.change(set("/sliceHwStatus/slice1", Json::object())),
      "slice /sliceHwStatus/slice1 would rebuild the static control-plane machine without the control-plane "
      "policy map /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy (the machine asserts it)");

  AgentOverSwitch unguarded(switchWithoutHwPolicyMaps(), Guard::off);
  ASSERT_EQ(unguarded.change(del(kCoppPmap)), "");
  EXPECT_DEATH(unguarded.change(set("/sliceHwStatus/slice1", Json::object())), kPmapAssertion);
}

TEST(InvariantCoppStaticTest, AddingASliceOnceTheControlPlanePolicyMapIsBackIsAccepted) {
  AgentOverSwitch agent(switchWithoutHwPolicyMaps());
  ASSERT_EQ(agent.change(del(kCoppPmap)), "");
  ASSERT_EQ(agent.change(set(kCoppPmap, Json::object())), "");
  EXPECT_EQ(agent.change(set("/sliceHwStatus/slice1", Json::object())), "");
}

TEST(InvariantCoppStaticTest, AStaticClassWithoutItsClassMapIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(set(kClasses + "/cpStaticLacp", {{"hwRank", 2}})),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticLacp needs a static control-plane "
      "class map of cpStaticType cpStaticLacp first (the static control-plane machine asserts one)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_DEATH(unguarded.change(set(kClasses + "/cpStaticLacp", {{"hwRank", 2}})), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, AStaticClassAfterItsClassMapIsAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kCoppCmaps + "/copp-system-lacp", {{"cpStaticType", "cpStaticLacp"}})), "");
  EXPECT_EQ(agent.change(set(kClasses + "/cpStaticLacp", {{"hwRank", 2}})), "");
  EXPECT_EQ(agent.change(del(kClasses + "/cpStaticLacp")), "");
}

TEST(InvariantCoppStaticTest, AStaticClassIsJudgedWhateverCoppSupportedSays) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/hwStatus/coppSupported", false)), "");
  EXPECT_NE(agent.change(set(kClasses + "/cpStaticLacp", {{"hwRank", 2}})), "");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set("/hwStatus/coppSupported", false)), "");
  EXPECT_DEATH(unguarded.change(set(kClasses + "/cpStaticLacp", {{"hwRank", 2}})), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, StartingWithAStaticClassWithoutItsClassMapIsRefused) {
  const AgentOverSwitch agent(switchReportingLacp(true));
  EXPECT_EQ(
      agent.buildRefusal(),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticLacp needs a static control-plane "
      "class map of cpStaticType cpStaticLacp first (the static control-plane machine asserts one)");
  EXPECT_DEATH(AgentOverSwitch(switchReportingLacp(true), Guard::off), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, TurningCoppSupportedOnScansEveryReportedClass) {
  AgentOverSwitch agent(switchReportingLacp(false));
  ASSERT_EQ(agent.buildRefusal(), "");
  EXPECT_EQ(
      agent.change(set("/hwStatus/coppSupported", true)),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticLacp needs a static control-plane "
      "class map of cpStaticType cpStaticLacp first (the static control-plane machine asserts one)");
  EXPECT_EQ(agent.change(set("/hwStatus/coppSupported", false)), "");

  AgentOverSwitch unguarded(switchReportingLacp(false), Guard::off);
  EXPECT_DEATH(unguarded.change(set("/hwStatus/coppSupported", true)), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, StartingFilesTheClassMapsOfTheSameDocument) {
  const Json lacp = patched(
      switchReportingLacp(true),
      {{"qosStatus",
        {{"cmapType",
          {{"mapControlPlane", {{"cmap", {{"copp-system-lacp", {{"cpStaticType", "cpStaticLacp"}}}}}}}}}}}});
  const AgentOverSwitch agent(lacp);
  EXPECT_EQ(agent.buildRefusal(), "");
  EXPECT_TRUE(agent.built());
}

TEST(InvariantCoppStaticTest, StartingReplaysHowLaterClassMapsUnfileAStaticType) {
  // A QoS class map of the same static type is filed after the control-plane
  // one and removes its entry.
  const Json unfiled = patched(
      guardedSwitch(),
      {{"qosStatus", {{"cmapType", {{"mapQos", {{"cmap", {{"c3", {{"cpStaticType", "cpStaticBgp"}}}}}}}}}}}});
  const AgentOverSwitch agent(unfiled);
  EXPECT_EQ(
      agent.buildRefusal(),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp needs a static control-plane "
      "class map of cpStaticType cpStaticBgp first (the static control-plane machine asserts one)");
  EXPECT_DEATH(AgentOverSwitch(unfiled, Guard::off), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, ReRankingOrRemovingAClassWhoseClassMapTurnedDynamicInPlaceIsRefused) {
  const Json dynamic = {{"cpStaticType", "cpStaticBgp"}, {"cpType", "classMapCpDynamic"}};
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kCoppCmaps + "/copp-system-bgp", dynamic)), "");
  // A new rank is an in-place change the slice reports as a changed member.
  EXPECT_EQ(
      agent.change(set(kClasses + "/cpStaticBgp", {{"hwRank", 5}})),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp needs its class map "
      "\"copp-system-bgp\" to be a static control-plane class map, not classMapCpDynamic first (the static "
      "control-plane machine asserts it)");
  EXPECT_EQ(
      agent.change(del(kClasses + "/cpStaticBgp")),
      "removing hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp needs its class map "
      "\"copp-system-bgp\" to be a static control-plane class map, not classMapCpDynamic (the static "
      "control-plane machine asserts it, also on removal)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kCoppCmaps + "/copp-system-bgp", dynamic)), "");
  EXPECT_DEATH(unguarded.change(set(kClasses + "/cpStaticBgp", {{"hwRank", 5}})), kStaticAssertion);
  EXPECT_DEATH(unguarded.change(del(kClasses + "/cpStaticBgp")), kStaticAssertion);
}

TEST(InvariantCoppStaticTest, SettingARankToTheValueItHasStillReachesTheMachine) {
  const Json dynamic = {{"cpStaticType", "cpStaticBgp"}, {"cpType", "classMapCpDynamic"}};
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kCoppCmaps + "/copp-system-bgp", dynamic)), "");
  EXPECT_EQ(
      agent.change(set(kClasses + "/cpStaticBgp/hwRank", 3)),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp needs its class map "
      "\"copp-system-bgp\" to be a static control-plane class map, not classMapCpDynamic first (the static "
      "control-plane machine asserts it)");
  // Setting the whole class to what it is changes nothing and reports nothing.
  EXPECT_EQ(agent.change(set(kClasses + "/cpStaticBgp", {{"hwRank", 3}})), "");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kCoppCmaps + "/copp-system-bgp", dynamic)), "");
  ASSERT_EQ(unguarded.change(set(kClasses + "/cpStaticBgp", {{"hwRank", 3}})), "");
  EXPECT_DEATH(unguarded.change(set(kClasses + "/cpStaticBgp/hwRank", 3)), kStaticAssertion);
}

TEST(InvariantCoppStaticTest, RemovingAClassWithItsStaticClassMapIsAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(del(kClasses + "/cpStaticBgp")), "");
  EXPECT_EQ(agent.change(del(kCoppCmaps + "/copp-system-bgp")), "");
}

TEST(InvariantCoppStaticTest, ANonStaticClassMapOfTheSameStaticTypeUnfilesTheClass) {
  const std::string qosCmap = "/qosStatus/cmapType/mapQos/cmap/c3";
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(qosCmap, {{"cpStaticType", "cpStaticBgp"}})), "");
  EXPECT_EQ(
      agent.change(del(kClasses + "/cpStaticBgp")),
      "removing hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp needs a static "
      "control-plane class map of cpStaticType cpStaticBgp (the static control-plane machine asserts one, "
      "also on removal)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(qosCmap, {{"cpStaticType", "cpStaticBgp"}})), "");
  EXPECT_DEATH(unguarded.change(del(kClasses + "/cpStaticBgp")), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, TheDropClassNeedsNoClassMap) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kClasses + "/cpStaticDrop", Json::object())), "");
  EXPECT_EQ(agent.change(del(kClasses + "/cpStaticDrop")), "");
}

TEST(InvariantCoppStaticTest, TheDefaultClassNeedsTheControlPlanePolicyMapsDefaultClass) {
  const Json withoutDefault = patched(guardedSwitch(), Json::parse(R"({
        "qosStatus": {"pmapType": {"mapControlPlane": {"pmap": {"copp-system-policy": {"classDefault": null}}}}},
        "sliceHwStatus": {"slice0": {"cpStaticClassHwStatus": {"cpStaticDefault": null}}}})"));
  AgentOverSwitch agent(withoutDefault);
  ASSERT_EQ(agent.buildRefusal(), "");
  EXPECT_EQ(
      agent.change(set(kClasses + "/cpStaticDefault", Json::object())),
      "hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticDefault needs a default class "
      "(classDefault) of /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy first (the static "
      "control-plane machine asserts one)");
  ASSERT_EQ(agent.change(set(kCoppPmap + "/classDefault", "copp-system-default")), "");
  EXPECT_EQ(agent.change(set(kClasses + "/cpStaticDefault", Json::object())), "");

  AgentOverSwitch unguarded(withoutDefault, Guard::off);
  EXPECT_DEATH(unguarded.change(set(kClasses + "/cpStaticDefault", Json::object())), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, TheDefaultClassMustBeAStaticClassMap) {
  const Json dynamic = {{"cpStaticType", "cpStaticDefault"}, {"cpType", "classMapCpDynamic"}};
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kCoppCmaps + "/copp-system-default", dynamic)), "");
  EXPECT_EQ(
      agent.change(del(kClasses + "/cpStaticDefault")),
      "removing hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticDefault needs the "
      "default "
      "class /qosStatus/cmapType/mapControlPlane/cmap/copp-system-default of copp-system-policy to be a "
      "static control-plane class map, not classMapCpDynamic (the static control-plane machine asserts it, "
      "also on removal)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kCoppCmaps + "/copp-system-default", dynamic)), "");
  EXPECT_DEATH(unguarded.change(del(kClasses + "/cpStaticDefault")), kStaticAssertion);
}

TEST(InvariantCoppStaticTest, TheMachineKeepsADeletedControlPlanePolicyMapUntilASliceIsAdded) {
  const Json coppPolicy = {{"classDefault", "copp-system-default"}};
  AgentOverSwitch agent(switchWithoutHwPolicyMaps());
  ASSERT_EQ(agent.change(del(kCoppPmap)), "");
  ASSERT_EQ(agent.change(set(kCoppPmap, coppPolicy)), "");
  EXPECT_EQ(
      agent.change(del(kClasses + "/cpStaticDefault")),
      "removing hardware status /sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticDefault needs a default "
      "class, but the machine still holds the deleted "
      "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy, which has none until a slice is added "
      "(the static control-plane machine asserts one, also on removal)");
  // The new slice rebuilds the machine over the policy map now present.
  ASSERT_EQ(agent.change(set("/sliceHwStatus/slice1",
                             {{"cpStaticClassHwStatus", {{"cpStaticDefault", Json::object()}}}})),
            "");
  EXPECT_EQ(agent.change(del("/sliceHwStatus/slice1/cpStaticClassHwStatus/cpStaticDefault")), "");

  AgentOverSwitch unguarded(switchWithoutHwPolicyMaps(), Guard::off);
  ASSERT_EQ(unguarded.change(del(kCoppPmap)), "");
  ASSERT_EQ(unguarded.change(set(kCoppPmap, coppPolicy)), "");
  EXPECT_DEATH(unguarded.change(del(kClasses + "/cpStaticDefault")), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, AnAddedSliceIsScannedWhenCoppIsSupported) {
  const Json lacpSlice = {{"cpStaticClassHwStatus", {{"cpStaticLacp", Json::object()}}}};
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(set("/sliceHwStatus/slice1", lacpSlice)),
      "hardware status /sliceHwStatus/slice1/cpStaticClassHwStatus/cpStaticLacp needs a static control-plane "
      "class map of cpStaticType cpStaticLacp first (the static control-plane machine asserts one)");
  ASSERT_EQ(agent.change(set("/hwStatus/coppSupported", false)), "");
  EXPECT_EQ(agent.change(set("/sliceHwStatus/slice1", lacpSlice)), "");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_DEATH(unguarded.change(set("/sliceHwStatus/slice1", lacpSlice)), kClassMapAssertion);
}

TEST(InvariantCoppStaticTest, OnlyTheWatchedSliceIsJudged) {
  // The agent watches the newest slice: slice1 from here on.
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set("/sliceHwStatus/slice1", Json::object())), "");
  EXPECT_EQ(agent.change(set(kClasses + "/cpStaticLacp", Json::object())), "");
  EXPECT_NE(agent.change(set("/sliceHwStatus/slice1/cpStaticClassHwStatus/cpStaticLacp", Json::object())),
            "");
}

}  // namespace
