#include "host/state/InvariantClassActions.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/state/InvariantTestSupport.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpHostTest::AgentOverSwitch;
using QosSnmpHostTest::del;
using QosSnmpHostTest::guardedSwitch;
using QosSnmpHostTest::patched;
using QosSnmpHostTest::set;
using Guard = AgentOverSwitch::Guard;
using Json = nlohmann::json;

const std::string kPm1 = "/qosStatus/pmapType/mapQos/pmap/pm1";
const std::string kDefault = kPm1 + "/defaultClassAction";
const Json kClassDefault = {{"name", "class-default"}, {"policyAction", {{"actionSetCos", {{"value", 3}}}}}};

const std::string kEarlierDefaultHeld =
    "policy map /qosStatus/pmapType/mapQos/pmap/pm1: its new default class action cannot take the name "
    "\"class-default\" from an earlier default class action, which the agent still holds (the class machine "
    "keeps "
    "an action machine until the policy map is rebuilt and cannot re-create it for another entity)";

TEST(InvariantClassActionsTest, ADefaultClassActionBackUnderItsOldNameIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kDefault, nullptr)), "");
  EXPECT_EQ(agent.change(set(kDefault, kClassDefault)), kEarlierDefaultHeld);

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kDefault, nullptr)), "");
  EXPECT_THROW(unguarded.change(set(kDefault, kClassDefault)), Kel::MutatorReinstantiatingException);
}

TEST(InvariantClassActionsTest, ADefaultClassActionReplacedUnderAnotherNameCannotComeBack) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kDefault, {{"name", "other-default"}})), "");
  EXPECT_EQ(agent.change(set(kDefault, kClassDefault)), kEarlierDefaultHeld);

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kDefault, {{"name", "other-default"}})), "");
  EXPECT_THROW(unguarded.change(set(kDefault, kClassDefault)), Kel::MutatorReinstantiatingException);
}

TEST(InvariantClassActionsTest, ADefaultClassActionChangedInPlaceIsAccepted) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(
                kDefault, {{"name", "class-default"}, {"policyAction", {{"actionSetCos", {{"value", 5}}}}}})),
            "");
  EXPECT_EQ(agent.change(set(kDefault + "/policyAction/actionSetDscp", {{"value", 1}})), "");
}

TEST(InvariantClassActionsTest, AddingASliceRebuildsTheClassMachines) {
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kDefault, nullptr)), "");
  ASSERT_EQ(agent.change(set("/sliceHwStatus/slice1", Json::object())), "");
  EXPECT_EQ(agent.change(set(kDefault, kClassDefault)), "");
}

TEST(InvariantClassActionsTest, ReAddingThePolicyMapRebuildsItsClassMachine) {
  AgentOverSwitch agent(guardedSwitch());
  const Json policyMap = agent.document().at(nlohmann::json::json_pointer(kPm1));
  ASSERT_EQ(agent.change(set(kDefault, nullptr)), "");
  ASSERT_EQ(agent.change(del(kPm1)), "");
  EXPECT_EQ(agent.change(set(kPm1, policyMap)), "");
}

TEST(InvariantClassActionsTest, AnOwnDefaultClassActionNamedLikeAClassWithAClassMapIsRefused) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(
      agent.change(set(kDefault, {{"name", "c1"}})),
      "policy map /qosStatus/pmapType/mapQos/pmap/pm1: its own default class action \"c1\" and its class "
      "action /qosStatus/pmapType/mapQos/pmap/pm1/classAction/c1 would be two entities under one name (the "
      "class machine keys its action machines by name and cannot re-create one for another entity)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  EXPECT_THROW(unguarded.change(set(kDefault, {{"name", "c1"}})), Kel::MutatorReinstantiatingException);
}

TEST(InvariantClassActionsTest, TheClassMapThatWouldJoinTheTwoIsRefused) {
  // Without class map c3, class action c3 has no action machine, and the
  // default class action c3 may have one.
  const std::string c3 = "/qosStatus/cmapType/mapQos/cmap/c3";
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kPm1 + "/classAction/c3", Json::object())), "");
  EXPECT_EQ(agent.change(set(kDefault, {{"name", "c3"}})), "");
  EXPECT_EQ(
      agent.change(set(c3, Json::object())),
      "policy map /qosStatus/pmapType/mapQos/pmap/pm1: its own default class action \"c3\" and its class "
      "action /qosStatus/pmapType/mapQos/pmap/pm1/classAction/c3 would be two entities under one name (the "
      "class machine keys its action machines by name and cannot re-create one for another entity)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kPm1 + "/classAction/c3", Json::object())), "");
  ASSERT_EQ(unguarded.change(set(kDefault, {{"name", "c3"}})), "");
  EXPECT_THROW(unguarded.change(set(c3, Json::object())), Kel::MutatorReinstantiatingException);
}

TEST(InvariantClassActionsTest, AReferencedClassActionCannotBeReplacedByAnOwnDefault) {
  // Referenced by the default, class action c4 gets an action machine even
  // without a class map.
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kPm1 + "/classAction/c4", Json::object())), "");
  EXPECT_EQ(agent.change(set(kDefault, "c4")), "");
  EXPECT_EQ(
      agent.change(set(kDefault, {{"name", "c4"}})),
      "policy map /qosStatus/pmapType/mapQos/pmap/pm1: its new default class action cannot take the name "
      "\"c4\" from its class action /qosStatus/pmapType/mapQos/pmap/pm1/classAction/c4, which the agent "
      "still "
      "holds (the class machine keeps an action machine until the policy map is rebuilt and cannot re-create "
      "it for another entity)");

  AgentOverSwitch unguarded(guardedSwitch(), Guard::off);
  ASSERT_EQ(unguarded.change(set(kPm1 + "/classAction/c4", Json::object())), "");
  ASSERT_EQ(unguarded.change(set(kDefault, "c4")), "");
  EXPECT_THROW(unguarded.change(set(kDefault, {{"name", "c4"}})), Kel::MutatorReinstantiatingException);
}

TEST(InvariantClassActionsTest, ADeletedClassActionTakesItsActionMachineAlong) {
  // The class action's removal drops the action machine of its name, even
  // the one the earlier default class action made.
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(kPm1 + "/classAction/class-default", Json::object())), "");
  ASSERT_EQ(agent.change(set(kDefault, nullptr)), "");
  ASSERT_EQ(agent.change(del(kPm1 + "/classAction/class-default")), "");
  EXPECT_EQ(agent.change(set(kDefault, kClassDefault)), "");
}

TEST(InvariantClassActionsTest, ADefaultReferencingAClassActionIsTheSameEntity) {
  AgentOverSwitch agent(guardedSwitch());
  EXPECT_EQ(agent.change(set(kDefault, "c1")), "");
  EXPECT_EQ(agent.change(set(kPm1 + "/classDefault", "c1")), "");
}

TEST(InvariantClassActionsTest, ControlPlanePolicyMapsHaveNoActionMachines) {
  const std::string copp = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
  AgentOverSwitch agent(guardedSwitch());
  ASSERT_EQ(agent.change(set(copp + "/classAction/copp-acl", Json::object())), "");
  EXPECT_EQ(agent.change(set(copp + "/defaultClassAction", {{"name", "copp-acl"}})), "");
}

TEST(InvariantClassActionsTest, StartingWithTwoEntitiesUnderOneNameIsRefused) {
  const Json twoEntities = patched(
      guardedSwitch(),
      {{"qosStatus",
        {{"pmapType", {{"mapQos", {{"pmap", {{"pm1", {{"defaultClassAction", {{"name", "c1"}}}}}}}}}}}}}});
  const AgentOverSwitch agent(twoEntities);
  EXPECT_EQ(
      agent.buildRefusal(),
      "policy map /qosStatus/pmapType/mapQos/pmap/pm1: its own default class action \"c1\" and its class "
      "action /qosStatus/pmapType/mapQos/pmap/pm1/classAction/c1 would be two entities under one name (the "
      "class machine keys its action machines by name and cannot re-create one for another entity)");
  EXPECT_THROW(AgentOverSwitch(twoEntities, Guard::off), Kel::MutatorReinstantiatingException);
}

}  // namespace
