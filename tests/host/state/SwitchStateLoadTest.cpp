#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "host/state/StateGuard.h"
#include "host/state/SwitchState.h"
#include "host/state/SwitchStateTestSupport.h"

namespace {

using nlohmann::json;
using QosSnmpHost::SwitchState;
using QosSnmpHostTest::exampleDocument;
using QosSnmpHostTest::loadExample;

Kel::Ptr<const Qos::PolicyMapStatus> pm1(const SwitchState& state) {
  return state.qosStatus()->pmapType(Qos::mapQos_)->pmap("pm1");
}

TEST(SwitchStateLoadTest, EmptyDocumentGivesNineEmptyRoots) {
  auto loaded = SwitchState::load(json::object());
  ASSERT_TRUE(loaded) << loaded.error().text();
  const SwitchState& state = loaded.value();
  EXPECT_TRUE(state.qosConfig()->servicePolicyConfig().empty());
  EXPECT_TRUE(state.qosStatus()->cmapType().empty());
  EXPECT_FALSE(state.hwStatus()->coppSupported());
  EXPECT_EQ(state.sliceHwStatusDir()->size(), 0U);
  EXPECT_EQ(state.aclSliceHwStatusDir()->size(), 0U);
  EXPECT_EQ(state.mibConfig()->counterPollPeriod(), 0.0);
  EXPECT_TRUE(state.allIntfStatusDir()->intfStatus().empty());
  EXPECT_TRUE(state.hwCounter()->sliceHwCounter().empty());
  EXPECT_TRUE(state.ecnCounterTable()->intfQueueCounter().empty());
  EXPECT_EQ(state.document(), json::parse(R"({
    "qosConfig": {"servicePolicyConfig": {}},
    "qosStatus": {"cmapType": {}, "pmapType": {}, "servicePolicyStatus": {}},
    "hwStatus": {"coppSupported": false, "coppHwStatsSupported": false, "ecnCountersSupported": false,
                 "ecnQueueCountersSupported": false, "ecnQueueCountersFlag": false, "numEcnQueues": 0},
    "sliceHwStatus": {}, "aclSliceHwStatus": {}, "mibConfig": {"counterPollPeriod": 0.0},
    "intfStatus": {}, "hwCounter": {"sliceHwCounter": {}}, "ecnCounterTable": {"intfQueueCounter": {}}
  })"));
}

TEST(SwitchStateLoadTest, BuildsEveryRootFromTheDocument) {
  const SwitchState state = loadExample();
  const auto spKey = Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionInput_, "pm1");
  EXPECT_TRUE(
      state.qosConfig()->servicePolicyConfig(spKey)->intfIds(Pellix::IntfId(Kel::String("Ethernet1"))));
  const auto c1 = state.qosStatus()->cmapType(Qos::mapQos_)->cmap("c1");
  ASSERT_TRUE(c1);
  EXPECT_EQ(c1->match(Qos::matchDscp_)->value(), Kel::String("46"));
  const auto copp = state.qosStatus()->cmapType(Qos::mapControlPlane_)->cmap("copp-bgp");
  ASSERT_TRUE(copp);
  EXPECT_EQ(copp->cpStaticType(), Qos::cpStaticBgp_);
  const auto pmap = pm1(state);
  ASSERT_TRUE(pmap);
  const auto police = pmap->classAction("c1")->policyAction(Qos::actionPolice_);
  EXPECT_EQ(police->rate(), 1000U);
  EXPECT_EQ(police->rateUnit(), Qos::rateUnitKbps_);
  EXPECT_EQ(police->burstSize(), 64000U);
  EXPECT_EQ(pmap->classPrio(1)->cmapName(), Kel::String("c1"));
  EXPECT_EQ(pmap->cmapCounters("c1")->packets(), 5U);
  EXPECT_EQ(pmap->cmapCounters("c1")->policerHwStatus("Ethernet1")->conformedPackets(), 4U);
  const Qos::IntfPairKey sub(Pellix::IntfId(Kel::String("Ethernet1")),
                             Pellix::IntfId(Kel::String("Ethernet1.100")));
  EXPECT_TRUE(state.qosStatus()->servicePolicyStatus(spKey)->intfIds(sub));
  EXPECT_TRUE(state.hwStatus()->coppSupported());
  EXPECT_EQ(state.hwStatus()->numEcnQueues(), 8U);
  const auto slice = Kel::ptrCast<const Qos::SliceHwStatus>(state.sliceHwStatusDir()->entityPtr("Linecard1"));
  ASSERT_TRUE(slice);
  const auto hw =
      slice->pmapTypeHwStatus(Qos::mapQos_)->pmap(Qos::PolicyMapHwStatusKey(Qos::directionInput_, "pm1"));
  EXPECT_EQ(hw->pmapKind(), 1);
  EXPECT_EQ(hw->cmap("c1")->programmingStatus(), Qos::hwStatusProgrammed_);
  EXPECT_EQ(slice->cpStaticClassHwStatus(Qos::cpStaticBgp_)->hwRank(), 3U);
  EXPECT_TRUE(state.aclSliceHwStatusDir()->entityPtr("Acl1"));
  EXPECT_EQ(state.mibConfig()->counterPollPeriod(), 10.0);
  const auto eth1 = state.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_EQ(eth1->snmpIfIndex(), 1);
  EXPECT_EQ(eth1->operStatus(), Interface::intfOperUp_);
  const auto sub100 = state.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1.100")));
  EXPECT_EQ(sub100->snmpIfIndex(), Interface::IntfStatus::kIfIndexNone);
  EXPECT_EQ(state.hwCounter()->sliceHwCounter("Linecard1")->perChipCount("chip0")->ecnMarkedPackets(), 2U);
  const auto queues = state.ecnCounterTable()->intfQueueCounter(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_EQ(queues->queueMarkedPackets(0), 5U);
  EXPECT_EQ(queues->queueMarkedBytes(0), 500U);
}

TEST(SwitchStateLoadTest, CanonicalFormFillsDefaultsAndNamesKeysAndEnums) {
  const SwitchState state = loadExample();
  const json& doc = state.document();
  // "0" became the map type's name; a class map's type defaults to the map type it is listed under.
  EXPECT_EQ(doc["qosStatus"]["cmapType"]["mapControlPlane"]["cmap"]["copp-bgp"], json::parse(R"({
    "type": "mapControlPlane", "cpType": "classMapCpStatic", "cpStaticType": "cpStaticBgp",
    "matchCondition": "matchConditionAny", "match": {}})"));
  EXPECT_EQ(doc["qosStatus"]["pmapType"]["mapQos"]["pmap"]["pm1"]["type"], "mapQos");
  EXPECT_EQ(doc["qosStatus"]["pmapType"]["mapQos"]["pmap"]["pm1"]["classAction"]["c1"]["policyAction"]
               ["actionSetDscp"],
            json::parse(R"({"value": 10, "rate": 0, "rateUnit": "rateUnitBps", "burstSize": 0, "peakRate": 0,
                            "peakBurstSize": 0})"));
  EXPECT_EQ(doc["intfStatus"]["Ethernet1.100"],
            json::parse(R"({"snmpIfIndex": -1, "operStatus": "intfOperUnknown", "description": ""})"));
  EXPECT_EQ(doc["aclSliceHwStatus"]["Acl1"], json::parse(R"({"pmapTypeHwStatus": {}})"));
}

TEST(SwitchStateLoadTest, CanonicalDocumentLoadsToItself) {
  const SwitchState state = loadExample();
  auto again = SwitchState::load(state.document());
  ASSERT_TRUE(again) << again.error().text();
  EXPECT_EQ(again->document(), state.document());
}

TEST(SwitchStateLoadTest, NumbersWithoutANameStayNumbers) {
  auto loaded = SwitchState::load(json::parse(R"({"qosStatus": {"cmapType": {"7": {"cmap": {"x": {}}}}}})"));
  ASSERT_TRUE(loaded) << loaded.error().text();
  EXPECT_EQ(loaded->document()["qosStatus"]["cmapType"]["7"]["cmap"]["x"]["type"], 7);
  EXPECT_EQ(loaded->qosStatus()->cmapType(static_cast<Qos::MapType>(7))->cmap("x")->type(), 7U);
}

TEST(SwitchStateLoadTest, InfiniteCounterPollPeriodIsWrittenInf) {
  auto loaded = SwitchState::load(json::parse(R"({"mibConfig": {"counterPollPeriod": "inf"}})"));
  ASSERT_TRUE(loaded) << loaded.error().text();
  EXPECT_EQ(loaded->mibConfig()->counterPollPeriod(), std::numeric_limits<double>::infinity());
  EXPECT_FALSE(loaded->mibConfig()->statisticsEnabled());
}

TEST(SwitchStateLoadTest, ClassDefaultIsTheClassMapEntityItself) {
  const SwitchState state = loadExample();
  EXPECT_EQ(pm1(state)->classDefault().get(), state.qosStatus()->cmapType(Qos::mapQos_)->cmap("c2").get());
}

TEST(SwitchStateLoadTest, DefaultClassActionByNameIsTheClassActionMember) {
  json doc = exampleDocument();
  doc["qosStatus"]["pmapType"]["mapQos"]["pmap"]["pm1"]["defaultClassAction"] = "c1";
  auto loaded = SwitchState::load(doc);
  ASSERT_TRUE(loaded) << loaded.error().text();
  EXPECT_EQ(pm1(loaded.value())->defaultClassAction().get(), pm1(loaded.value())->classAction("c1").get());
}

TEST(SwitchStateLoadTest, DefaultClassActionObjectIsItsOwnEntity) {
  const SwitchState state = loadExample();
  const auto action = pm1(state)->defaultClassAction();
  ASSERT_TRUE(action);
  EXPECT_EQ(action->name(), Kel::String("class-default"));
  EXPECT_EQ(action->policyAction(Qos::actionSetCos_)->value(), 3U);
  EXPECT_EQ(state.pathOf(action.get()), "/qosStatus/pmapType/mapQos/pmap/pm1/defaultClassAction");
}

TEST(SwitchStateLoadTest, PathOfNamesEveryEntityByItsCanonicalPointer) {
  const SwitchState state = loadExample();
  EXPECT_EQ(state.pathOf(state.qosStatus().get()), "/qosStatus");
  EXPECT_EQ(state.pathOf(state.qosStatus()->cmapType(Qos::mapControlPlane_)->cmap("copp-bgp").get()),
            "/qosStatus/cmapType/mapControlPlane/cmap/copp-bgp");
  EXPECT_EQ(state.pathOf(state.sliceHwStatusDir()->entityPtr("Linecard1").get()), "/sliceHwStatus/Linecard1");
  EXPECT_EQ(
      state.pathOf(state.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1"))).get()),
      "/intfStatus/Ethernet1");
  EXPECT_EQ(state.entityAt("/qosStatus/pmapType/mapQos/pmap/pm1").get(), pm1(state).get());
  const auto stranger = Kel::make<Qos::ClassMapStatus>("stranger");
  EXPECT_EQ(state.pathOf(stranger.get()), "(deleted)");
}

TEST(SwitchStateLoadTest, KeysWithSlashesAreEscapedInPaths) {
  auto loaded =
      SwitchState::load(json::parse(R"({"qosStatus": {"cmapType": {"mapQos": {"cmap": {"a/b~c": {}}}}}})"));
  ASSERT_TRUE(loaded) << loaded.error().text();
  const auto cmap = loaded->qosStatus()->cmapType(Qos::mapQos_)->cmap("a/b~c");
  EXPECT_EQ(loaded->pathOf(cmap.get()), "/qosStatus/cmapType/mapQos/cmap/a~1b~0c");
}

TEST(SwitchStateLoadTest, SyntaxErrorNamesTheLine) {
  const auto loaded =
      SwitchState::loadText("{\n  \"hwStatus\": {\n    \"coppSupported\": tru\n  }\n}\n", "s.json");
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.error().text(),
            "s.json:3: invalid JSON: syntax error while parsing value - invalid literal; last read: "
            "'\"coppSupported\": tru<U+000A>'");
}

TEST(SwitchStateLoadTest, SchemaErrorNamesTheLineOfTheOffendingMember) {
  const auto loaded = SwitchState::loadText(
      "{\n  \"hwStatus\": {\n    \"coppSupported\": true,\n    \"numEcnQueues\": -1\n  },\n"
      "  \"intfStatus\": {\"Ethernet1\": {}, \"eth\": {}}\n}\n",
      "s.json");
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.error().text(),
            "s.json:4: /hwStatus/numEcnQueues: expected an unsigned 8-bit integer, got -1");
  const auto badKey =
      SwitchState::loadText("{\n\n  \"intfStatus\": {\"Ethernet1\": {},\n  \"eth\": {}}\n}\n", "s.json");
  ASSERT_FALSE(badKey);
  EXPECT_EQ(badKey.error().text(),
            "s.json:4: /intfStatus/eth: expected an interface name (\"Ethernet1/1\", \"Port-Channel10\", "
            "\"Ethernet2/1.100\"), got \"eth\"");
}

TEST(SwitchStateLoadTest, MissingFileIsALoadError) {
  const auto loaded = SwitchState::loadFile("/nonexistent/switch.json");
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.error().text(),
            "/nonexistent/switch.json: cannot read the file: No such file or directory");
}

TEST(SwitchStateLoadTest, LoadsAFile) {
  const std::string path = ::testing::TempDir() + "SwitchStateLoadTest.json";
  std::ofstream(path) << exampleDocument().dump(2);
  const auto loaded = SwitchState::loadFile(path);
  std::remove(path.c_str());
  ASSERT_TRUE(loaded) << loaded.error().text();
  EXPECT_EQ(loaded->document(), loadExample().document());
}

struct BadDocument {
  const char* text;
  const char* error;
};

class SwitchStateBadDocumentTest : public ::testing::TestWithParam<BadDocument> {};

TEST_P(SwitchStateBadDocumentTest, IsRefusedWithItsMessage) {
  const auto loaded = SwitchState::loadText(GetParam().text, "s.json");
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.error().text(), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, SwitchStateBadDocumentTest,
    ::testing::Values(
        BadDocument{"[]",
                    "s.json: (document): expected an object with the roots \"qosConfig\", \"qosStatus\", "
                    "\"hwStatus\", \"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", \"intfStatus\", "
                    "\"hwCounter\" or \"ecnCounterTable\", got []"},
        BadDocument{
            R"({"qosStatuss": {}})",
            "s.json:1: /qosStatuss: unknown root \"qosStatuss\" (expected \"qosConfig\", \"qosStatus\", "
            "\"hwStatus\", \"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", \"intfStatus\", "
            "\"hwCounter\" or \"ecnCounterTable\")"},
        BadDocument{R"({"hwStatus": {"coppSupported": 1}})",
                    "s.json:1: /hwStatus/coppSupported: expected true or false, got 1"},
        BadDocument{R"({"hwStatus": {"numEcnQueues": 256}})",
                    "s.json:1: /hwStatus/numEcnQueues: expected an unsigned 8-bit integer, got 256"},
        BadDocument{
            R"({"qosStatus": {"cmapType": {"mapFoo": {}}}})",
            "s.json:1: /qosStatus/cmapType/mapFoo: expected a map type (\"mapControlPlane\", \"mapQos\", "
            "\"mapPbr\" or a number), got \"mapFoo\""},
        BadDocument{R"({"mibConfig": {"counterPollPeriod": -1}})",
                    "s.json:1: /mibConfig/counterPollPeriod: expected a period in seconds (a number >= 0, or "
                    "\"inf\"), got -1"},
        BadDocument{
            R"({"intfStatus": {"eth 1": {}}})",
            "s.json:1: /intfStatus/eth 1: expected an interface name (\"Ethernet1/1\", \"Port-Channel10\", "
            "\"Ethernet2/1.100\"), got \"eth 1\""},
        BadDocument{R"({"qosStatus": {"cmapType": {"mapQos": {"cmap": {}}, "1": {"cmap": {}}}}})",
                    "s.json:1: /qosStatus/cmapType/mapQos: duplicate member: \"mapQos\" and \"1\" are both "
                    "\"mapQos\""},
        BadDocument{
            R"({"qosStatus": {"pmapType": {"mapQos": {"pmap": {"p": {"classDefault": "nope"}}}}}})",
            "s.json:1: /qosStatus/pmapType/mapQos/pmap/p/classDefault: class map \"nope\" does not exist "
            "(no /qosStatus/cmapType/mapQos/cmap/nope)"},
        BadDocument{
            R"({"qosStatus": {"pmapType": {"mapQos": {"pmap": {"p": {"defaultClassAction": "c9"}}}}}})",
            "s.json:1: /qosStatus/pmapType/mapQos/pmap/p/defaultClassAction: class action \"c9\" does not "
            "exist (no /qosStatus/pmapType/mapQos/pmap/p/classAction/c9)"},
        BadDocument{
            R"({"qosStatus": {"pmapType": {"mapQos": {"pmap": {"p": {"defaultClassAction": {}}}}}}})",
            "s.json:1: /qosStatus/pmapType/mapQos/pmap/p/defaultClassAction: a ClassAction object needs "
            "its \"name\""}));

class RefusingGuard : public QosSnmpHost::StateGuard {
 public:
  std::optional<QosSnmpHost::Refusal> refusal(const QosSnmpHost::StateTransition& transition) override {
    ++asked;
    sawBuild = transition.kind == QosSnmpHost::StateTransition::Kind::build && transition.before == nullptr &&
               transition.path.empty() && transition.after.contains("qosStatus");
    return refuse ? std::optional<QosSnmpHost::Refusal>(
                        {"/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy",
                         "no control-plane policy map"})
                  : std::nullopt;
  }
  void applied(const QosSnmpHost::StateTransition& /*transition*/) override { ++appliedCount; }

  bool refuse = true;
  int asked = 0;
  int appliedCount = 0;
  bool sawBuild = false;
};

TEST(SwitchStateLoadTest, CheckBuildReportsTheGuardsRefusal) {
  SwitchState state = loadExample();
  RefusingGuard guard;
  state.guardIs(&guard);
  const auto refused = state.checkBuild();
  ASSERT_TRUE(refused);
  // The refusal names the value it is about; a document loaded from text
  // has no file to find its line in.
  EXPECT_EQ(
      refused->text(),
      "switch.json: /qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy: refused: no control-plane "
      "policy map");
  EXPECT_TRUE(guard.sawBuild);
}

TEST(SwitchStateLoadTest, CheckBuildPassesWhenTheGuardAgreesAndBuildAppliedTellsIt) {
  SwitchState state = loadExample();
  RefusingGuard guard;
  guard.refuse = false;
  state.guardIs(&guard);
  EXPECT_FALSE(state.checkBuild());
  state.buildApplied();
  EXPECT_EQ(guard.asked, 1);
  EXPECT_EQ(guard.appliedCount, 1);
}

}  // namespace
