#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "host/state/StateChange.h"
#include "host/state/StateGuard.h"
#include "host/state/SwitchState.h"
#include "host/state/SwitchStateTestSupport.h"

namespace {

using nlohmann::json;
using QosSnmpHost::Change;
using QosSnmpHost::StateTransition;
using QosSnmpHost::SwitchState;
using QosSnmpHostTest::note;
using QosSnmpHostTest::StateWatch;

const std::string kPm1 = "/qosStatus/pmapType/mapQos/pmap/pm1";

class ChangeStreamTest : public ::testing::Test {
 protected:
  // Applies one line that must succeed.
  Change apply(const std::string& line) {
    auto change = state_.apply(line, {"changes.jsonl", ++line_});
    EXPECT_TRUE(change) << change.error().text();
    return change ? change.value() : Change{};
  }

  Kel::Ptr<const Qos::PolicyMapStatus> pm1() const {
    return state_.qosStatus()->pmapType(Qos::mapQos_)->pmap("pm1");
  }
  Kel::Ptr<const Qos::ClassAction> c1Action() const { return pm1()->classAction("c1"); }

  SwitchState state_ = QosSnmpHostTest::loadExample();
  StateWatch watch_{state_};
  int line_ = 0;
};

TEST_F(ChangeStreamTest, SetOfAScalarNotifiesItOnce) {
  const auto hwStatus = state_.hwStatus();
  const Change change = apply(R"({"op": "set", "path": "/hwStatus/coppSupported", "value": false})");
  EXPECT_EQ(change.op, Change::Op::set);
  EXPECT_EQ(change.path, "/hwStatus/coppSupported");
  EXPECT_FALSE(state_.hwStatus()->coppSupported());
  EXPECT_EQ(state_.hwStatus().get(), hwStatus.get());
  EXPECT_EQ(watch_.log(), std::vector<std::string>{note("/hwStatus", Qos::HwStatus::CoppSupported::id)});
  EXPECT_EQ(state_.document()["hwStatus"]["coppSupported"], false);
}

TEST_F(ChangeStreamTest, SettingTheValueAnAttributeHasNotifiesNobody) {
  apply(R"({"op": "set", "path": "/hwStatus/coppSupported", "value": true})");
  apply(
      R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/c1", "value": {"match": {"6": {"value": "46"}}}})");
  EXPECT_TRUE(watch_.log().empty());
}

TEST_F(ChangeStreamTest, SetOfAnExistingEntityUpdatesItInPlaceMemberByMember) {
  const auto action = c1Action();
  const auto dscp = action->policyAction(Qos::actionSetDscp_);
  apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/classAction/c1",
            "value": {"policyAction": {"actionSetDscp": {"value": 20}, "actionSetCos": {"value": 1}}}})");
  EXPECT_EQ(c1Action().get(), action.get());
  EXPECT_EQ(c1Action()->policyAction(Qos::actionSetDscp_).get(), dscp.get());
  EXPECT_EQ(dscp->value(), 20U);
  EXPECT_FALSE(c1Action()->policyAction(Qos::actionPolice_));
  EXPECT_EQ(c1Action()->policyAction(Qos::actionSetCos_)->value(), 1U);
  const std::string c1 = kPm1 + "/classAction/c1";
  EXPECT_EQ(watch_.log(), (std::vector<std::string>{
                              note(c1, Qos::ClassAction::PolicyAction::id),  // actionPolice deleted
                              note(c1, Qos::ClassAction::PolicyAction::id),  // actionSetCos added
                              note(c1 + "/policyAction/actionSetDscp", Qos::Action::Value::id),
                          }));
  EXPECT_EQ(state_.pathOf(c1Action()->policyAction(Qos::actionSetCos_).get()),
            c1 + "/policyAction/actionSetCos");
}

TEST_F(ChangeStreamTest, SetOfAnAbsentMemberAddsItCompleteWithOneNotification) {
  apply(R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/c3",
            "value": {"match": {"matchCos": {"value": "5"}}}})");
  const auto c3 = state_.qosStatus()->cmapType(Qos::mapQos_)->cmap("c3");
  ASSERT_TRUE(c3);
  EXPECT_EQ(c3->type(), Qos::mapQos_);
  EXPECT_EQ(c3->match(Qos::matchCos_)->value(), Kel::String("5"));
  EXPECT_EQ(watch_.log(),
            std::vector<std::string>{note("/qosStatus/cmapType/mapQos", Qos::ClassMapTypeStatus::Cmap::id)});
  EXPECT_EQ(state_.pathOf(c3->match(Qos::matchCos_).get()),
            "/qosStatus/cmapType/mapQos/cmap/c3/match/matchCos");
}

TEST_F(ChangeStreamTest, DeleteEmptiesTheEntityDeepestFirstBeforeItLeaves) {
  const auto pmap = pm1();
  const auto defaultAction = pmap->defaultClassAction();
  const Change change = apply(R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm1"})");
  EXPECT_EQ(change.op, Change::Op::del);
  EXPECT_FALSE(pm1());
  using P = Qos::PolicyMapStatus;
  EXPECT_EQ(watch_.log(), (std::vector<std::string>{
                              note(kPm1, P::ClassDefault::id),
                              note(kPm1 + "/defaultClassAction", Qos::ClassAction::PolicyAction::id),
                              note(kPm1, P::DefaultClassAction::id),
                              note(kPm1 + "/classAction/c1", Qos::ClassAction::PolicyAction::id),
                              note(kPm1 + "/classAction/c1", Qos::ClassAction::PolicyAction::id),
                              note(kPm1, P::ClassAction::id),
                              note(kPm1, P::ClassPrio::id),
                              note(kPm1 + "/cmapCounters/c1", Qos::Counter::PolicerHwStatus::id),
                              note(kPm1, P::CmapCounters::id),
                              note("/qosStatus/pmapType/mapQos", Qos::PolicyMapTypeStatus::Pmap::id),
                          }));
  EXPECT_TRUE(pmap->classAction().empty());
  EXPECT_FALSE(pmap->classDefault());
  EXPECT_FALSE(pmap->defaultClassAction());
  EXPECT_TRUE(defaultAction->policyAction().empty());
  EXPECT_EQ(state_.pathOf(pmap.get()), "(deleted)");
  EXPECT_EQ(state_.pathOf(defaultAction.get()), "(deleted)");
  EXPECT_FALSE(state_.document().contains(json::json_pointer(kPm1)));
}

TEST_F(ChangeStreamTest, DeleteOfAScalarResetsItToItsDefault) {
  apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/type", "value": "mapPbr"})");
  EXPECT_EQ(pm1()->type(), Qos::mapPbr_);
  apply(R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/type"})");
  EXPECT_EQ(pm1()->type(), Qos::mapQos_);
  apply(R"({"op": "delete", "path": "/intfStatus/Ethernet1/snmpIfIndex"})");
  EXPECT_EQ(state_.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1")))->snmpIfIndex(),
            -1);
  EXPECT_EQ(state_.document()["intfStatus"]["Ethernet1"]["snmpIfIndex"], -1);
}

TEST_F(ChangeStreamTest, DeleteOfACollectionEmptiesItMemberByMember) {
  apply(R"({"op": "delete", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1/queueMarkedPackets"})");
  const auto queues = state_.ecnCounterTable()->intfQueueCounter(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_TRUE(queues->queueMarkedPackets().empty());
  EXPECT_EQ(queues->queueMarkedBytes(0), 500U);
  EXPECT_EQ(watch_.log(), std::vector<std::string>{note("/ecnCounterTable/intfQueueCounter/Ethernet1",
                                                        Qos::EcnIntfQueueCounter::QueueMarkedPackets::id)});
}

TEST_F(ChangeStreamTest, SetOfACollectionReplacesItsMembersOneByOne) {
  apply(R"({"op": "set", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1/queueMarkedBytes",
            "value": {"1": 7, "00": 500}})");
  const auto queues = state_.ecnCounterTable()->intfQueueCounter(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_EQ(queues->queueMarkedBytes(0), 500U);
  EXPECT_EQ(queues->queueMarkedBytes(1), 7U);
  EXPECT_EQ(state_.document()["ecnCounterTable"]["intfQueueCounter"]["Ethernet1"]["queueMarkedBytes"],
            json::parse(R"({"0": 500, "1": 7})"));
  EXPECT_EQ(watch_.log(), std::vector<std::string>{note("/ecnCounterTable/intfQueueCounter/Ethernet1",
                                                        Qos::EcnIntfQueueCounter::QueueMarkedBytes::id)});
}

TEST_F(ChangeStreamTest, DefaultClassActionMovesFromItsOwnEntityToAReferenceByDeleteThenSet) {
  const auto owned = pm1()->defaultClassAction();
  apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/defaultClassAction", "value": "c1"})");
  EXPECT_EQ(pm1()->defaultClassAction().get(), c1Action().get());
  EXPECT_TRUE(owned->policyAction().empty());
  EXPECT_EQ(state_.pathOf(owned.get()), "(deleted)");
  using P = Qos::PolicyMapStatus;
  EXPECT_EQ(watch_.log(), (std::vector<std::string>{
                              note(kPm1 + "/defaultClassAction", Qos::ClassAction::PolicyAction::id),
                              note(kPm1, P::DefaultClassAction::id),
                              note(kPm1, P::DefaultClassAction::id),
                          }));
}

TEST_F(ChangeStreamTest, DefaultClassActionWithTheSameNameIsUpdatedInPlace) {
  const auto owned = pm1()->defaultClassAction();
  apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/defaultClassAction",
            "value": {"name": "class-default", "policyAction": {"actionSetCos": {"value": 4}}}})");
  EXPECT_EQ(pm1()->defaultClassAction().get(), owned.get());
  EXPECT_EQ(owned->policyAction(Qos::actionSetCos_)->value(), 4U);
  apply(
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/defaultClassAction/policyAction/actionSetCos/value",
            "value": 5})");
  EXPECT_EQ(owned->policyAction(Qos::actionSetCos_)->value(), 5U);
  EXPECT_EQ(watch_.log(),
            (std::vector<std::string>{
                note(kPm1 + "/defaultClassAction/policyAction/actionSetCos", Qos::Action::Value::id),
                note(kPm1 + "/defaultClassAction/policyAction/actionSetCos", Qos::Action::Value::id),
            }));
}

TEST_F(ChangeStreamTest, ClassDefaultFollowsTheNamedClassMap) {
  apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/classDefault", "value": "c1"})");
  EXPECT_EQ(pm1()->classDefault().get(), state_.qosStatus()->cmapType(Qos::mapQos_)->cmap("c1").get());
  apply(R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/classDefault"})");
  EXPECT_FALSE(pm1()->classDefault());
  // c2 is no longer referenced, so it may go.
  apply(R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap/c2"})");
  EXPECT_FALSE(state_.qosStatus()->cmapType(Qos::mapQos_)->cmap("c2"));
}

TEST_F(ChangeStreamTest, SetOfARootUpdatesItInPlace) {
  const auto hwStatus = state_.hwStatus();
  apply(
      R"({"op": "set", "path": "/hwStatus", "value": {"coppSupported": true, "ecnCountersSupported": true}})");
  EXPECT_EQ(state_.hwStatus().get(), hwStatus.get());
  EXPECT_TRUE(hwStatus->ecnCountersSupported());
  EXPECT_EQ(hwStatus->numEcnQueues(), 0U);
  EXPECT_EQ(watch_.log(),
            (std::vector<std::string>{note("/hwStatus", Qos::HwStatus::EcnCountersSupported::id),
                                      note("/hwStatus", Qos::HwStatus::NumEcnQueues::id)}));
}

TEST_F(ChangeStreamTest, PathsMayBeArraysOfSegmentsAndNamesMayHoldSlashes) {
  apply(R"({"op": "set", "path": ["qosStatus", "cmapType", "1", "cmap", "a/b"], "value": {}})");
  const auto cmap = state_.qosStatus()->cmapType(Qos::mapQos_)->cmap("a/b");
  ASSERT_TRUE(cmap);
  EXPECT_EQ(state_.pathOf(cmap.get()), "/qosStatus/cmapType/mapQos/cmap/a~1b");
  apply(R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap/a~1b"})");
  EXPECT_FALSE(state_.qosStatus()->cmapType(Qos::mapQos_)->cmap("a/b"));
}

TEST_F(ChangeStreamTest, SliceAndInterfaceDirectoriesTakeMembersDirectly) {
  apply(R"({"op": "set", "path": "/sliceHwStatus/Linecard2", "value": {}})");
  EXPECT_TRUE(state_.sliceHwStatusDir()->entityPtr("Linecard2"));
  apply(R"({"op": "set", "path": "/intfStatus/Ethernet1/snmpIfIndex", "value": 5})");
  EXPECT_EQ(state_.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1")))->snmpIfIndex(),
            5);
  apply(R"({"op": "delete", "path": "/intfStatus/Ethernet1.100"})");
  EXPECT_FALSE(state_.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1.100"))));
  EXPECT_EQ(watch_.log(), (std::vector<std::string>{
                              note("/sliceHwStatus", Kel::Dir::Entry::id),
                              note("/intfStatus/Ethernet1", Interface::IntfStatus::SnmpIfIndex::id),
                              // The directory reports its member changed in place.
                              note("/intfStatus", Interface::AllIntfStatusDir::IntfStatus::id),
                              note("/intfStatus", Interface::AllIntfStatusDir::IntfStatus::id),
                          }));
}

TEST_F(ChangeStreamTest, InterfaceChangedInPlaceIsReportedByTheInterfaceDirectoryToo) {
  const auto ethernet1 = state_.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1")));
  apply(
      R"({"op": "set", "path": "/intfStatus/Ethernet1", "value": {"snmpIfIndex": 7, "description": "uplink"}})");
  EXPECT_EQ(state_.allIntfStatusDir()->intfStatus(Pellix::IntfId(Kel::String("Ethernet1"))).get(),
            ethernet1.get());
  EXPECT_EQ(ethernet1->snmpIfIndex(), 7);
  EXPECT_EQ(watch_.log(), (std::vector<std::string>{
                              note("/intfStatus/Ethernet1", Interface::IntfStatus::SnmpIfIndex::id),
                              // operStatus, not given, goes back to its default
                              note("/intfStatus/Ethernet1", Interface::IntfStatus::OperStatus::id),
                              note("/intfStatus/Ethernet1", Interface::IntfStatus::Description::id),
                              note("/intfStatus", Interface::AllIntfStatusDir::IntfStatus::id),
                          }));
  // Setting what is there changes nothing and reports nothing.
  apply(
      R"({"op": "set", "path": "/intfStatus/Ethernet1", "value": {"snmpIfIndex": 7, "description": "uplink"}})");
  EXPECT_EQ(watch_.log().size(), 4U);
}

TEST_F(ChangeStreamTest, AdvanceIsHandedBackAndCommentsAndBlankLinesDoNothing) {
  const Change advance = apply(R"({"op": "advance", "seconds": 10})");
  EXPECT_EQ(advance.op, Change::Op::advance);
  EXPECT_EQ(advance.seconds, 10.0);
  EXPECT_EQ(apply("# a comment").op, Change::Op::none);
  EXPECT_EQ(apply("   ").op, Change::Op::none);
  EXPECT_EQ(apply("").op, Change::Op::none);
  EXPECT_TRUE(watch_.log().empty());
}

class RecordingGuard : public QosSnmpHost::StateGuard {
 public:
  explicit RecordingGuard(const SwitchState* state) : state_(state) {}

  std::optional<QosSnmpHost::Refusal> refusal(const StateTransition& transition) override {
    seen.push_back(transition.path.to_string() +
                   " before=" + (transition.before ? transition.before->dump() : "none") +
                   " after=" + transition.after.at(transition.path).dump());
    return refuse ? std::optional<QosSnmpHost::Refusal>({"/elsewhere", "copp-system-policy must stay"})
                  : std::nullopt;
  }
  void applied(const StateTransition& /*transition*/) override {
    appliedSawCopp = state_->hwStatus()->coppSupported();
  }

  const SwitchState* state_;
  bool refuse = false;
  std::vector<std::string> seen;
  std::optional<bool> appliedSawCopp;
};

TEST_F(ChangeStreamTest, ATypedChangeFromAnotherSourceAppliesAsItsLineDoes) {
  SwitchState byLines = QosSnmpHostTest::loadExample();
  const std::vector<std::pair<std::string, QosSnmpHost::StateChange>> changes = {
      {R"({"op": "set", "path": "/qosStatus/pmapType/1/pmap/pm1/cmapCounters/c1/packets", "value": 42})",
       {QosSnmpHost::StateChange::Op::set,
        {"qosStatus", "pmapType", "1", "pmap", "pm1", "cmapCounters", "c1", "packets"},
        42}},
      {R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm1/classAction/c1"})",
       {QosSnmpHost::StateChange::Op::del,
        {"qosStatus", "pmapType", "mapQos", "pmap", "pm1", "classAction", "c1"},
        nullptr}},
      {R"({"op": "set", "path": "/mibConfig/counterPollPeriod", "value": "inf"})",
       {QosSnmpHost::StateChange::Op::set, {"mibConfig", "counterPollPeriod"}, "inf"}},
  };
  int number = 0;
  for (const auto& [line, typed] : changes) {
    const auto fromLine = byLines.apply(line, {"changes.jsonl", ++number});
    const auto fromFeed = state_.apply(typed, {"feed", number});
    ASSERT_TRUE(fromLine) << fromLine.error().text();
    ASSERT_TRUE(fromFeed) << fromFeed.error().text();
    EXPECT_EQ(fromFeed->path, fromLine->path);
    EXPECT_EQ(state_.document(), byLines.document()) << line;
    EXPECT_EQ(state_.entityPaths(), byLines.entityPaths()) << line;
  }
  EXPECT_EQ(pm1()->cmapCounters("c1")->packets(), 42U);
  EXPECT_EQ(c1Action(), nullptr);

  // A typed change is held to the same checks as a line, and refused alike.
  const QosSnmpHost::StateChange badKey{
      QosSnmpHost::StateChange::Op::set, {"qosStatus", "pmapType", "mapNone"}, json::object()};
  const auto refused = state_.apply(badKey, {"feed", 9});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().text(),
            byLines.apply(R"({"op": "set", "path": "/qosStatus/pmapType/mapNone", "value": {}})", {"feed", 9})
                .error()
                .text());
  EXPECT_EQ(state_.document(), byLines.document());
}

TEST_F(ChangeStreamTest, ATypedChangeNestedDeeperThanTheLimitIsRefusedBeforeAnythingReadsIt) {
  const json before = state_.document();
  QosSnmpHost::StateChange deep{QosSnmpHost::StateChange::Op::set, {"hwStatus"}, json::object()};
  json* innermost = &deep.value;
  for (int level = 0; level < 100000; ++level) {
    innermost = &((*innermost)["coppSupported"] = json::object());
  }
  const auto refused = state_.apply(deep, {"feed", 3});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().text(), "feed:3: the value is nested deeper than 64 levels");
  EXPECT_EQ(state_.document(), before);
  EXPECT_TRUE(watch_.log().empty());
}

TEST_F(ChangeStreamTest, GuardRefusalLeavesEverythingAsItWas) {
  RecordingGuard guard(&state_);
  guard.refuse = true;
  state_.guardIs(&guard);
  const json before = state_.document();
  const auto change =
      state_.apply(R"({"op": "set", "path": "/hwStatus/coppSupported", "value": false})", {"c", 3});
  ASSERT_FALSE(change);
  EXPECT_EQ(change.error().text(), "c:3: /hwStatus/coppSupported: refused: copp-system-policy must stay");
  EXPECT_EQ(guard.seen, std::vector<std::string>{"/hwStatus/coppSupported before=true after=false"});
  EXPECT_EQ(state_.document(), before);
  EXPECT_TRUE(state_.hwStatus()->coppSupported());
  EXPECT_TRUE(watch_.log().empty());
  EXPECT_FALSE(guard.appliedSawCopp);
}

TEST_F(ChangeStreamTest, GuardHearsOfAnAppliedChangeAfterTheEntitiesChanged) {
  RecordingGuard guard(&state_);
  state_.guardIs(&guard);
  apply(R"({"op": "set", "path": "/hwStatus/coppSupported", "value": false})");
  ASSERT_TRUE(guard.appliedSawCopp);
  EXPECT_FALSE(*guard.appliedSawCopp);
  apply(R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/c9", "value": {}})");
  EXPECT_EQ(guard.seen.back(),
            "/qosStatus/cmapType/mapQos/cmap/c9 before=none after={\"cpStaticType\":\"cpStaticInvalid\","
            "\"cpType\":\"classMapCpStatic\",\"match\":{},\"matchCondition\":\"matchConditionAny\",\"type\":"
            "\"mapQos\"}");
}

struct BadLine {
  const char* line;
  const char* error;
};

class ChangeStreamBadLineTest : public ::testing::TestWithParam<BadLine> {};

TEST_P(ChangeStreamBadLineTest, IsRefusedWithItsMessageAndChangesNothing) {
  SwitchState state = QosSnmpHostTest::loadExample();
  StateWatch watch(state);
  const json before = state.document();
  const auto change = state.apply(GetParam().line, {"changes.jsonl", 7});
  ASSERT_FALSE(change);
  EXPECT_EQ(change.error().text(), GetParam().error);
  EXPECT_EQ(state.document(), before);
  EXPECT_TRUE(watch.log().empty());
}

#define KPM1 "/qosStatus/pmapType/mapQos/pmap/pm1"

INSTANTIATE_TEST_SUITE_P(
    Lines, ChangeStreamBadLineTest,
    ::testing::Values(
        BadLine{
            R"({"op": "set", "path": "/hwStatus/coppSupported", "value": tru})",
            "changes.jsonl:7: invalid JSON: syntax error while parsing value - invalid literal; last read: "
            "'\"value\": tru}'"},
        BadLine{"[1]", "changes.jsonl:7: a change is an object with \"op\", got [1]"},
        BadLine{R"({"path": "/hwStatus"})", "changes.jsonl:7: a change needs \"op\""},
        BadLine{R"({"op": "frob", "path": "/hwStatus"})",
                "changes.jsonl:7: \"op\": expected \"set\", \"delete\" or \"advance\", got \"frob\""},
        BadLine{R"({"op": "set", "path": "/hwStatus/coppSupported"})",
                "changes.jsonl:7: a change needs \"value\""},
        BadLine{
            R"({"op": "set", "path": "/hwStatus/coppSupported", "value": true, "extra": 1})",
            "changes.jsonl:7: unknown key \"extra\" in a set change (expected \"op\", \"path\", \"value\")"},
        BadLine{R"({"op": "delete", "path": "/hwStatus/coppSupported", "value": true})",
                "changes.jsonl:7: unknown key \"value\" in a delete change (expected \"op\", \"path\")"},
        BadLine{R"({"op": "advance", "seconds": -1})",
                "changes.jsonl:7: \"seconds\": expected a number of seconds from 0 to 86400, got -1"},
        BadLine{R"({"op": "set", "path": "hwStatus/coppSupported", "value": true})",
                "changes.jsonl:7: \"path\": a JSON Pointer starts with '/', got \"hwStatus/coppSupported\""},
        BadLine{R"({"op": "set", "path": "/hwStatus/a~2b", "value": true})",
                "changes.jsonl:7: \"path\": '~' must be followed by '0' or '1' in \"/hwStatus/a~2b\""},
        BadLine{
            R"({"op": "set", "path": ["hwStatus", 1], "value": true})",
            "changes.jsonl:7: \"path\": expected a JSON Pointer (\"/qosStatus/cmapType/mapQos\") or an array "
            "of segments, got [\"hwStatus\",1]"},
        BadLine{
            R"({"op": "set", "path": "", "value": {}})",
            "changes.jsonl:7: \"path\": the whole document cannot be changed; name a root (\"qosConfig\", "
            "\"qosStatus\", \"hwStatus\", \"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", "
            "\"intfStatus\", \"hwCounter\" or \"ecnCounterTable\") or something below one"},
        BadLine{
            R"({"op": "set", "path": "/qosStatuz", "value": {}})",
            "changes.jsonl:7: /qosStatuz: unknown root \"qosStatuz\" (expected \"qosConfig\", \"qosStatus\", "
            "\"hwStatus\", \"sliceHwStatus\", \"aclSliceHwStatus\", \"mibConfig\", \"intfStatus\", "
            "\"hwCounter\" or \"ecnCounterTable\")"},
        BadLine{
            R"({"op": "set", "path": "/hwStatus/coppSupport", "value": true})",
            "changes.jsonl:7: /hwStatus/coppSupport: unknown attribute \"coppSupport\" of HwStatus (expected "
            "\"coppSupported\", \"coppHwStatsSupported\", \"ecnCountersSupported\", "
            "\"ecnQueueCountersSupported\", \"ecnQueueCountersFlag\" or \"numEcnQueues\")"},
        BadLine{R"({"op": "set", "path": "/hwStatus/coppSupported", "value": "yes"})",
                "changes.jsonl:7: /hwStatus/coppSupported: expected true or false, got \"yes\""},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/cmapCounters/c1/packets", "value": -5})",
                "changes.jsonl:7: " KPM1
                "/cmapCounters/c1/packets: expected an unsigned 64-bit integer, got -5"},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/cmapCounters/c1/bytes", "value": 1.5})",
                "changes.jsonl:7: " KPM1
                "/cmapCounters/c1/bytes: expected an unsigned 64-bit integer, got 1.5"},
        BadLine{
            R"({"op": "set", "path": ")" KPM1
            R"(/classAction/c1/policyAction/actionPolice/rateUnit", "value": "rateUnitFurlongs"})",
            "changes.jsonl:7: " KPM1
            "/classAction/c1/policyAction/actionPolice/rateUnit: expected a rate unit (\"rateUnitBps\", "
            "\"rateUnitKbps\", \"rateUnitMbps\", \"rateUnitGbps\", \"rateUnitPps\", \"rateUnitPercent\" or a "
            "number), got \"rateUnitFurlongs\""},
        BadLine{R"({"op": "set", "path": "/qosStatus/pmapType/mapPbr/pmap/p2", "value": {}})",
                "changes.jsonl:7: /qosStatus/pmapType/mapPbr: does not exist (so nothing below it can be "
                "changed)"},
        BadLine{R"({"op": "delete", "path": "/qosStatus"})",
                "changes.jsonl:7: /qosStatus: a root cannot be deleted (set it to {} to empty it)"},
        BadLine{R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap/c9"})",
                "changes.jsonl:7: /qosStatus/cmapType/mapQos/cmap/c9: nothing to delete: no such member"},
        BadLine{R"({"op": "set", "path": "/intfStatus/Eth 1", "value": {}})",
                "changes.jsonl:7: /intfStatus/Eth 1: expected an interface name (\"Ethernet1/1\", "
                "\"Port-Channel10\", \"Ethernet2/1.100\"), got \"Eth 1\""},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/classDefault", "value": "c9"})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c9\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c9)"},
        BadLine{R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap/c2"})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c2\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c2)"},
        // A class map named by a class default leaves with everything above it.
        BadLine{R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap"})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c2\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c2)"},
        BadLine{R"({"op": "set", "path": "/qosStatus/cmapType/mapQos", "value": {"cmap": {"c1": {}}}})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c2\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c2)"},
        BadLine{R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos"})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c2\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c2)"},
        BadLine{R"({"op": "set", "path": "/qosStatus/cmapType", "value": {}})",
                "changes.jsonl:7: " KPM1 "/classDefault: class map \"c2\" does not exist (no "
                "/qosStatus/cmapType/mapQos/cmap/c2)"},
        BadLine{R"({"op": "set", "path": "/qosStatus/pmapType", "value": {"mapQos": {"pmap": {"p9": )"
                R"({"classDefault": "c8"}}}}})",
                "changes.jsonl:7: /qosStatus/pmapType/mapQos/pmap/p9/classDefault: class map \"c8\" does not "
                "exist (no /qosStatus/cmapType/mapQos/cmap/c8)"},
        BadLine{
            R"({"op": "set", "path": "/mibConfig/counterPollPeriod", "value": "foo"})",
            "changes.jsonl:7: /mibConfig/counterPollPeriod: expected a period in seconds (a number >= 0, or "
            "\"inf\"), got \"foo\""},
        BadLine{
            R"({"op": "set", "path": "/mibConfig", "value": {"counterPollPeriod": -0.5}})",
            "changes.jsonl:7: /mibConfig/counterPollPeriod: expected a period in seconds (a number >= 0, or "
            "\"inf\"), got -0.5"},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/classPrio/x", "value": {"cmapName": "c1"}})",
                "changes.jsonl:7: " KPM1
                "/classPrio/x: expected a priority (unsigned 32-bit decimal), got \"x\""},
        BadLine{R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/c1", "value": {"matchh": {}}})",
                "changes.jsonl:7: /qosStatus/cmapType/mapQos/cmap/c1/matchh: unknown attribute \"matchh\" of "
                "ClassMapStatus (expected \"type\", \"cpType\", \"cpStaticType\", \"matchCondition\" or "
                "\"match\")"},
        BadLine{
            R"({"op": "set", "path": "/hwStatus/coppSupported/x", "value": true})",
            "changes.jsonl:7: /hwStatus/coppSupported/x: \"coppSupported\" is a scalar attribute: nothing is "
            "below it"},
        BadLine{R"({"op": "set", "path": "/intfStatus/Ethernet1/snmpIfIndex", "value": 2147483648})",
                "changes.jsonl:7: /intfStatus/Ethernet1/snmpIfIndex: expected a signed 32-bit integer, got "
                "2147483648"},
        BadLine{
            R"({"op": "set", "path": "/qosConfig/servicePolicyConfig/mapQos pm1", "value": {}})",
            "changes.jsonl:7: /qosConfig/servicePolicyConfig/mapQos pm1: expected a service policy key "
            "(\"<map type> <direction> <policy-map name>\", for example \"mapQos directionInput pm-in\"), "
            "got \"mapQos pm1\""},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/defaultClassAction", "value": 5})",
                "changes.jsonl:7: " KPM1
                "/defaultClassAction: expected null, a class action name (a non-empty "
                "string) or a ClassAction object with its \"name\", got 5"},
        BadLine{
            R"({"op": "set", "path": "/qosStatus/cmapType", "value": {"mapQos": {}, "1": {}}})",
            "changes.jsonl:7: /qosStatus/cmapType/mapQos: duplicate member: \"mapQos\" and \"1\" are both "
            "\"mapQos\""},
        BadLine{
            R"({"op": "set", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1/queueMarkedPackets/256",
                    "value": 1})",
            "changes.jsonl:7: /ecnCounterTable/intfQueueCounter/Ethernet1/queueMarkedPackets/256: expected a "
            "queue number (unsigned 8-bit decimal), got \"256\""},
        BadLine{R"({"op": "set", "path": ")" KPM1 R"(/classDefault/x", "value": 1})",
                "changes.jsonl:7: " KPM1
                "/classDefault/x: \"classDefault\" is a scalar attribute: nothing is below "
                "it"},
        BadLine{
            R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/c1/match/matchDscp/value/x", "value": 1})",
            "changes.jsonl:7: /qosStatus/cmapType/mapQos/cmap/c1/match/matchDscp/value/x: \"value\" is a "
            "scalar attribute: nothing is below it"},
        BadLine{R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/", "value": {}})",
                "changes.jsonl:7: /qosStatus/cmapType/mapQos/cmap/: expected a class-map name (a non-empty "
                "string), got \"\""}));

#undef KPM1

}  // namespace
