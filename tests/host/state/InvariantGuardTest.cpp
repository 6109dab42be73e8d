#include "host/state/InvariantGuard.h"

#include <random>
#include <string>
#include <vector>

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

const std::string kCoppPmap = "/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy";
const std::string kPm1 = "/qosStatus/pmapType/mapQos/pmap/pm1";

TEST(InvariantGuardTest, FollowsTheSliceTheAgentWatches) {
  const Json twoSlices = patched(guardedSwitch(), {{"sliceHwStatus", {{"slice1", Json::object()}}}});
  AgentOverSwitch agent(twoSlices);
  EXPECT_EQ(agent.guard().watchedSlice(), "slice1");
  ASSERT_EQ(agent.change(set("/sliceHwStatus/slice00", Json::object())), "");
  EXPECT_EQ(agent.guard().watchedSlice(), "slice00");
  // A removed slice stays watched, empty, until another is added.
  ASSERT_EQ(agent.change(del("/sliceHwStatus/slice00")), "");
  EXPECT_EQ(agent.guard().watchedSlice(), "slice00");
  ASSERT_EQ(agent.change(
                set("/sliceHwStatus", {{"slice0", agent.document().at("/sliceHwStatus/slice0"_json_pointer)},
                                       {"slice1", Json::object()},
                                       {"slice2", Json::object()},
                                       {"slice3", Json::object()}})),
            "");
  EXPECT_EQ(agent.guard().watchedSlice(), "slice3");
}

TEST(InvariantGuardTest, AStartWithoutSlicesWatchesNone) {
  const Json noSlices = patched(guardedSwitch(), {{"sliceHwStatus", nullptr}});
  const AgentOverSwitch agent(noSlices);
  EXPECT_EQ(agent.buildRefusal(), "");
  EXPECT_EQ(agent.guard().watchedSlice(), std::nullopt);
}

TEST(InvariantGuardTest, APublisherOrderingItsChangesRightIsNeverRefused) {
  AgentOverSwitch agent(guardedSwitch());
  const std::string hwClasses =
      "/sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput copp-system-policy/cmap";
  for (const std::string& line : {
           // A new control-plane class: class map, counters, then hardware status.
           set("/qosStatus/cmapType/mapControlPlane/cmap/copp-system-lacp",
               {{"cpStaticType", "cpStaticLacp"}}),
           set(kCoppPmap + "/cmapCounters/copp-system-lacp", {{"packets", 1}}),
           set("/sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticLacp", {{"hwRank", 4}}),
           set(hwClasses + "/copp-system-lacp", {{"packets", 1}}),
           set(hwClasses + "/copp-system-lacp/packets", 2),
           // A QoS class and a new default class action.
           set("/qosStatus/cmapType/mapQos/cmap/c3", Json::object()),
           set(kPm1 + "/classAction/c3", {{"policyAction", {{"actionPolice", {{"rate", 100}}}}}}),
           set(kPm1 + "/classPrio/2", {{"cmapName", "c3"}}),
           set(kPm1 + "/defaultClassAction", {{"name", "class-default-2"}}),
           set("/mibConfig/counterPollPeriod", "inf"),
           set("/mibConfig/counterPollPeriod", 5),
           // And all of it gone again, the hardware status first.
           del(hwClasses + "/copp-system-lacp"),
           del("/sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticLacp"),
           del(kCoppPmap + "/cmapCounters/copp-system-lacp"),
           del("/qosStatus/cmapType/mapControlPlane/cmap/copp-system-lacp"),
           del(kPm1 + "/classPrio/2"),
           del(kPm1 + "/classAction/c3"),
           del("/qosStatus/cmapType/mapQos/cmap/c3"),
           del("/sliceHwStatus/slice0"),
       }) {
    EXPECT_EQ(agent.change(line), "") << line;
  }
}

TEST(InvariantGuardTest, ChangesWhereNoRuleReadsPassAndLeaveItsLaterDecisionsAsTheyWere) {
  // Counter values, match rules, service policies, interfaces: the guard
  // lets them through without its rules.
  const std::vector<std::string> unread = {
      set(kCoppPmap + "/cmapCounters/copp-acl/packets", 99),
      set("/qosStatus/cmapType/mapControlPlane/cmap/copp-acl/match/matchIpAccessGroup",
          {{"value", "acl-ssh"}}),
      set("/qosStatus/servicePolicyStatus/mapQos directionInput pm1", {{"intfIds", {{"Ethernet1", true}}}}),
      set("/intfStatus/Ethernet1", {{"snmpIfIndex", 1}}),
  };
  // Changes the rules judge, each refused or not: the same answer with and
  // without the changes above before them.
  const std::vector<std::string> judged = {
      set(kPm1 + "/cmapCounters/copp-acl", {{"packets", 1}}),
      del(kCoppPmap + "/cmapCounters/copp-acl"),
      set("/sliceHwStatus/slice0/pmapTypeHwStatus/mapControlPlane/pmap/directionInput "
          "copp-system-policy/cmap/c1",
          Json::object()),
      set("/qosStatus/cmapType/mapControlPlane/cmap/copp-acl", {{"cpType", "classMapCpStatic"}}),
      del(kCoppPmap),
  };
  int refused = 0;
  for (const std::string& probe : judged) {
    AgentOverSwitch plain(guardedSwitch());
    AgentOverSwitch busy(guardedSwitch());
    for (const std::string& line : unread) {
      ASSERT_EQ(busy.change(line), "") << line;
    }
    const std::string answer = plain.change(probe);
    EXPECT_EQ(busy.change(probe), answer) << probe;
    refused += !answer.empty() && answer.rfind("changes.jsonl:", 0) != 0 ? 1 : 0;
  }
  // The probes mean something: the rules refuse all but the class map
  // turning static.
  EXPECT_EQ(refused, 4);
}

// A publisher that makes random changes, right or wrong, to the few names
// that matter: class maps of both map types with random kinds and static
// types, policy maps with random classes, defaults and counters, slices with
// random static classes and hardware status, the flags and the poll period.
class RandomPublisher {
 public:
  explicit RandomPublisher(unsigned seed) : random_(seed) {}

  std::string change() {
    const std::vector<std::string> policyMaps = {kCoppPmap, kPm1, "/qosStatus/pmapType/mapQos/pmap/pm2"};
    const std::string policyMap = pick(policyMaps);
    const std::string slice = "/sliceHwStatus/" + pick({"slice0", "slice1", "slice2"});
    switch (random_() % 14) {
      case 0:
        return setOrDelete("/qosStatus/cmapType/mapControlPlane/cmap/" + pick(kControlPlaneClasses),
                           classMap());
      case 1:
        if (chance(30)) {
          return set("/qosStatus/cmapType/mapControlPlane/cmap/" + pick(kControlPlaneClasses) + "/cpType",
                     pick({"classMapCpStatic", "classMapCpDynamic"}));
        }
        return setOrDelete("/qosStatus/cmapType/mapQos/cmap/" + pick(kClasses), classMap());
      case 2:
        return setOrDelete(policyMap, this->policyMap(policyMap == kCoppPmap));
      case 3:
        return setOrDelete(policyMap + "/classAction/" + pick(kClasses), Json::object());
      case 4:
        return set(policyMap + "/defaultClassAction", defaultClassAction());
      case 5:
        if (chance(30)) {
          // A counter value: changed in place, unseen by every rule.
          return set(policyMap + "/cmapCounters/" + pick(kClasses) + "/packets", random_() % 1000);
        }
        return setOrDelete(policyMap + "/cmapCounters/" + pick(kClasses), {{"packets", 1}});
      case 6:
        return set(policyMap + "/type", pick({"mapControlPlane", "mapQos", "mapPbr"}));
      case 7:
        return setOrDelete(slice, Json::object());
      case 8:
        if (chance(30)) {
          // Inside a class: the slice reports the class even for its own value.
          return set(slice + "/cpStaticClassHwStatus/" + pick(kStaticTypes) + "/hwRank", random_() % 2);
        }
        return setOrDelete(slice + "/cpStaticClassHwStatus/" + pick(kStaticTypes),
                           {{"hwRank", random_() % 2}});
      case 9:
        return setOrDelete(
            slice + "/pmapTypeHwStatus/" + pick({"mapControlPlane", "mapQos"}),
            {{"pmap",
              {{pick({"directionInput copp-system-policy", "directionInput pm1", "directionOutput pm2"}),
                {{"pmapKind", random_() % 3}, {"cmap", {{pick(kClasses), Json::object()}}}}}}}});
      case 10:
        return set("/hwStatus/" + pick({"coppSupported", "coppHwStatsSupported"}), random_() % 2 == 0);
      case 11:
        return set("/mibConfig/counterPollPeriod",
                   random_() % 3 == 0 ? Json("inf") : Json(random_() % 3 * 5));
      case 12:
        return setOrDelete("/qosStatus/pmapType/mapQos", {{"pmap", {{"pm1", this->policyMap(false)}}}});
      default:
        return setOrDelete("/qosStatus/cmapType/mapQos",
                           {{"cmap", {{"c1", classMap()}, {"c2", classMap()}}}});
    }
  }

 private:
  static inline const std::vector<std::string> kControlPlaneClasses = {
      "copp-system-bgp", "copp-system-lacp", "copp-system-default", "copp-acl", "c1"};
  static inline const std::vector<std::string> kClasses = {"c1",       "c2", "c3", "class-default",
                                                           "copp-acl", "c9"};
  static inline const std::vector<std::string> kStaticTypes = {
      "cpStaticBgp", "cpStaticLacp", "cpStaticDefault", "cpStaticInvalid", "cpStaticDrop"};

  std::string pick(const std::vector<std::string>& choices) { return choices[random_() % choices.size()]; }
  bool chance(unsigned percent) { return random_() % 100 < percent; }

  std::string setOrDelete(const std::string& path, const Json& value) {
    return chance(70) ? set(path, value) : del(path);
  }
  Json classMap() {
    Json value = Json::object();
    if (chance(30)) {
      value["cpType"] = pick({"classMapCpStatic", "classMapCpDynamic"});
    }
    if (chance(60)) {
      value["cpStaticType"] = pick(kStaticTypes);
    }
    if (chance(10)) {
      value["type"] = pick({"mapControlPlane", "mapQos"});
    }
    return value;
  }
  Json defaultClassAction() {
    switch (random_() % 3) {
      case 0:
        return nullptr;
      case 1:
        return {{"name", pick(kClasses)}};
      default:
        return pick(kClasses);
    }
  }
  Json policyMap(bool controlPlane) {
    Json value = {{"classAction", Json::object()}, {"cmapCounters", Json::object()}};
    for (const std::string& name : kClasses) {
      if (chance(30)) {
        value["classAction"][name] = Json::object();
      }
      if (chance(30)) {
        value["cmapCounters"][name] = {{"packets", random_() % 5}};
      }
    }
    if (chance(50)) {
      value["classDefault"] = controlPlane ? pick(kControlPlaneClasses) : pick(kClasses);
    }
    if (chance(50)) {
      value["defaultClassAction"] = defaultClassAction();
    }
    return value;
  }

  std::mt19937 random_;
};

TEST(InvariantGuardTest, ARandomPublisherNeverEndsTheGuardedAgent) {
  int accepted = 0;
  int refused = 0;
  for (unsigned seed = 1; seed <= 100; ++seed) {
    RandomPublisher publisher(seed);
    AgentOverSwitch agent(guardedSwitch());
    for (int step = 0; step < 300; ++step) {
      const std::string line = publisher.change();
      std::string result;
      // An abort would end the test program; a mutator exception lands here.
      ASSERT_NO_THROW(result = agent.change(line)) << "seed " << seed << ", step " << step << ": " << line;
      if (result.empty()) {
        ++accepted;
      } else if (result.rfind("changes.jsonl:", 0) != 0) {
        ++refused;
      }
    }
  }
  // Both kinds happen often enough for the run to mean something.
  EXPECT_GT(accepted, 10000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
