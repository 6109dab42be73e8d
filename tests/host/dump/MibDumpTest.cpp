#include "host/dump/MibDump.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/servicepolicy/ServicePolicyTestSupport.h"
#include "kel/Make.h"

namespace QosSnmpHost {
namespace {

using Qos::mapControlPlane_;
using Qos::mapQos_;
using QosSnmpTest::TestSwitch;

// Paths the test gives its entities; an entity it did not name shows as
// "?<its name>", so that a forgotten one is visible in the expected text.
class Paths {
 public:
  template <typename Entity>
  const Kel::Ptr<Entity>& at(const std::string& path, const Kel::Ptr<Entity>& entity) {
    paths_[entity.get()] = path;
    return entity;
  }
  std::string pathOf(const Kel::Entity& entity) const {
    const auto it = paths_.find(&entity);
    if (it != paths_.end()) {
      return it->second;
    }
    std::string unknown = "?";
    unknown += entity.name().view();
    return unknown;
  }
  MibDump dump() const {
    return MibDump([this](const Kel::Entity& entity) { return pathOf(entity); });
  }

 private:
  std::map<const Kel::Entity*, std::string> paths_;
};

const std::string kEmptyText =
    "# classMapTable: 0 rows\n"
    "# classMapMatchTable: 0 rows\n"
    "# policyMapTable: 0 rows\n"
    "# policyMapClassTable: 0 rows\n"
    "# policyMapActionTable: 0 rows\n"
    "# qosStatsTable: 0 rows\n"
    "# qosPolicerStatsTable: 0 rows\n"
    "# servicePolicyTable: 0 rows\n"
    "# ecnCounterTable: 0 rows\n"
    "# ecnQueueCounterTable: 0 rows\n"
    "# cmapByStaticType: 0 entries\n"
    "# intfIdToifIndex: 0 entries\n";

class MibDumpTest : public ::testing::Test {
 protected:
  // One row in every table and one entry in each map, written directly.
  void fillEveryTable() {
    const auto cmap = paths_.at("/cm", Kel::make<Qos::ClassMapStatus>("cm-voice"));
    const auto match = paths_.at("/cm/match", Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_));
    const auto pmap = paths_.at("/pm", Kel::make<Qos::PolicyMapStatus>("pm-edge"));
    const auto classAction = paths_.at("/pm/ca", Kel::make<Qos::ClassAction>("cm-voice"));
    const auto action = paths_.at("/pm/ca/police", Kel::make<Qos::Action>(Qos::actionPolice_));
    const auto hwCmap = paths_.at("/hw/cm", Kel::make<Qos::ClassMapHwStatus>("cm-voice"));
    const auto hwStatus = paths_.at("/hwStatus", Kel::make<Qos::HwStatus>());
    const auto slice = paths_.at("/slice", Kel::make<Qos::SliceHwStatus>("FixedSystem"));
    const auto counter = paths_.at("/pm/counter", Kel::make<Qos::Counter>("cm-voice"));
    const auto policer = paths_.at("/pm/counter/policer", Kel::make<Qos::PolicerHwStatus>("Ethernet1"));
    const auto chip = paths_.at("/chip", Kel::make<Qos::ChipCounter>("chip0"));
    const auto ecnTable = paths_.at("/ecn", Kel::make<Qos::EcnCounterTable>());
    const Pellix::IntfId ethernet1(Kel::String("Ethernet1"));

    mib_->classMapTableIs({"cm-voice", mapQos_}, cmap);
    mib_->classMapMatchTableIs({"cm-voice", mapQos_, 1}, cmap, match);
    mib_->cmapByStaticTypeIs(Qos::cpStaticBgp_, cmap);
    mib_->policyMapTableIs({"pm-edge", mapQos_}, pmap);
    mib_->policyMapClassTableIs({"pm-edge", mapQos_, 2}, pmap, "cm-voice");
    mib_->policyMapActionTableIs({"pm-edge", 1, "cm-voice", Qos::actionPolice_}, classAction, action, nullptr,
                                 hwStatus, slice);
    mib_->qosStatsTableIs({"pm-edge", 1, "cm-voice", 0}, nullptr, counter);
    mib_->qosPolicerStatsTableIs({"pm-edge", 1, "cm-voice", 1000001}, policer);
    mib_->servicePolicyTableIs({1000001, Qos::directionOutput_}, "pm-edge",
                               Qos::ServicePolicyKey(mapQos_, Qos::directionOutput_, "pm-edge"));
    mib_->ecnCounterTableIs("chip0", chip, 0);
    mib_->ecnQueueCounterTableIs({1000001, 3}, ethernet1, slice, ecnTable, true);
    mib_->intfIdToifIndexIs(ethernet1, 1000001);
  }

  Paths paths_;
  const Kel::Ptr<QosSnmp::QosMib> mib_ = Kel::make<QosSnmp::QosMib>();
};

TEST_F(MibDumpTest, EmptyModelShowsEveryTableAndMapWithNoRows) {
  EXPECT_EQ(paths_.dump().text(*mib_), kEmptyText);
}

TEST_F(MibDumpTest, TextShowsIndexFieldsThenArgumentsByPath) {
  fillEveryTable();
  EXPECT_EQ(paths_.dump().text(*mib_),
            "# classMapTable: 1 row\n"
            "classMapTable (cm-voice, mapQos) classMapStatus=/cm\n"
            "# classMapMatchTable: 1 row\n"
            "classMapMatchTable (cm-voice, mapQos, 1) classMapStatus=/cm classMapMatch=/cm/match\n"
            "# policyMapTable: 1 row\n"
            "policyMapTable (pm-edge, mapQos) policyMapStatus=/pm\n"
            "# policyMapClassTable: 1 row\n"
            "policyMapClassTable (pm-edge, mapQos, 2) policyMapStatus=/pm cmapName=cm-voice\n"
            "# policyMapActionTable: 1 row\n"
            "policyMapActionTable (pm-edge, mapQos, cm-voice, actionPolice) classAction=/pm/ca "
            "action=/pm/ca/police classMapHwStatus=- hwStatus=/hwStatus sliceHwStatus=/slice\n"
            "# qosStatsTable: 1 row\n"
            "qosStatsTable (pm-edge, mapQos, cm-voice, 0) classMapHwStatus=- counter=/pm/counter\n"
            "# qosPolicerStatsTable: 1 row\n"
            "qosPolicerStatsTable (pm-edge, mapQos, cm-voice, 1000001) policerHwStatus=/pm/counter/policer\n"
            "# servicePolicyTable: 1 row\n"
            "servicePolicyTable (1000001, directionOutput) pmapName=pm-edge "
            "servicePolicyKey=mapQos/directionOutput/pm-edge\n"
            "# ecnCounterTable: 1 row\n"
            "ecnCounterTable (chip0) chipCounter=/chip flags=0\n"
            "# ecnQueueCounterTable: 1 row\n"
            "ecnQueueCounterTable (1000001, 3) intfId=Ethernet1 sliceHwStatus=/slice ecnCounterTable=/ecn "
            "ecnQueueCountersFlag=true\n"
            "# cmapByStaticType: 1 entry\n"
            "cmapByStaticType cpStaticBgp -> /cm\n"
            "# intfIdToifIndex: 1 entry\n"
            "intfIdToifIndex Ethernet1 -> 1000001\n");
}

TEST_F(MibDumpTest, RowsFollowSnmpIndexOrderNamesLengthFirst) {
  const auto cmap = paths_.at("/cm", Kel::make<Qos::ClassMapStatus>("cm"));
  for (const char* name : {"bb", "c", "a"}) {
    mib_->classMapTableIs({name, mapQos_}, cmap);
  }
  mib_->classMapTableIs({"c", mapControlPlane_}, cmap);
  const std::string text = paths_.dump().text(*mib_);
  EXPECT_EQ(text.substr(0, text.find("# classMapMatchTable")),
            "# classMapTable: 4 rows\n"
            "classMapTable (a, mapQos) classMapStatus=/cm\n"
            "classMapTable (c, mapControlPlane) classMapStatus=/cm\n"
            "classMapTable (c, mapQos) classMapStatus=/cm\n"
            "classMapTable (bb, mapQos) classMapStatus=/cm\n");
}

TEST_F(MibDumpTest, ValuesWithoutAnEnumeratorNameShowAsNumbers) {
  const auto pmap = paths_.at("/pm", Kel::make<Qos::PolicyMapStatus>("pm"));
  mib_->policyMapTableIs({"pm", static_cast<Qos::MapType>(7)}, pmap);
  mib_->policyMapActionTableIs({"pm", 9, "cm", 42}, nullptr, nullptr, nullptr, nullptr, nullptr);
  mib_->servicePolicyTableIs({5, -1}, "pm", Qos::ServicePolicyKey());
  const std::string text = paths_.dump().text(*mib_);
  EXPECT_NE(text.find("policyMapTable (pm, 7) policyMapStatus=/pm\n"), std::string::npos) << text;
  EXPECT_NE(text.find("policyMapActionTable (pm, 9, cm, 42) classAction=- action=- classMapHwStatus=- "
                      "hwStatus=- sliceHwStatus=-\n"),
            std::string::npos)
      << text;
  EXPECT_NE(
      text.find(
          "servicePolicyTable (5, -1) pmapName=pm servicePolicyKey=mapControlPlane/directionInvalid/\n"),
      std::string::npos)
      << text;
}

TEST_F(MibDumpTest, WithoutPathOfEntitiesShowByName) {
  mib_->classMapTableIs({"cm", mapQos_}, Kel::make<Qos::ClassMapStatus>("cm-long-name"));
  EXPECT_NE(MibDump().text(*mib_).find("classMapTable (cm, mapQos) classMapStatus=cm-long-name\n"),
            std::string::npos);
}

TEST_F(MibDumpTest, JsonHoldsIndexAndArgumentsOfEveryRowInStableOrder) {
  fillEveryTable();
  const nlohmann::ordered_json json = paths_.dump().json(*mib_);
  EXPECT_EQ(
      json["policyMapActionTable"].dump(),
      R"([{"index":{"pmapName":"pm-edge","type":"mapQos","cmapName":"cm-voice","actionType":"actionPolice"},)"
      R"("classAction":"/pm/ca","action":"/pm/ca/police","classMapHwStatus":null,"hwStatus":"/hwStatus",)"
      R"("sliceHwStatus":"/slice"}])");
  EXPECT_EQ(json["servicePolicyTable"].dump(),
            R"([{"index":{"ifIndex":1000001,"direction":"directionOutput"},"pmapName":"pm-edge",)"
            R"("servicePolicyKey":{"type":"mapQos","direction":"directionOutput","pmapName":"pm-edge"}}])");
  EXPECT_EQ(json["ecnQueueCounterTable"].dump(),
            R"([{"index":{"ifIndex":1000001,"queue":3},"intfId":"Ethernet1","sliceHwStatus":"/slice",)"
            R"("ecnCounterTable":"/ecn","ecnQueueCountersFlag":true}])");
  EXPECT_EQ(json["cmapByStaticType"].dump(), R"({"cpStaticBgp":"/cm"})");
  EXPECT_EQ(json["intfIdToifIndex"].dump(), R"({"Ethernet1":1000001})");

  std::vector<std::string> members;
  for (const auto& [name, value] : json.items()) {
    members.push_back(name);
  }
  std::vector<std::string> expected = MibDump::tableNames();
  for (const std::string& name : MibDump::mapNames()) {
    expected.push_back(name);
  }
  EXPECT_EQ(members, expected);
  EXPECT_EQ(MibDump::tableNames().size(), 10U);
}

// The agent builds the model from a small switch; the dump shows what it
// wrote, table by table.
class MibDumpAgentTest : public ::testing::Test {
 protected:
  MibDumpAgentTest() {
    switch_.interface("Ethernet1", 1);
    switch_.interface("Ethernet2", 2);

    auto bgp = QosSnmpTest::staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
    switch_.cmapType(mapControlPlane_)->cmapIs(bgp->name(), bgp);
    paths_.at("/qosStatus/cmapType/mapControlPlane/cmap/copp-system-bgp", bgp);
    auto copp = QosSnmpTest::coppSystemPolicy(switch_);
    paths_.at("/qosStatus/pmapType/mapControlPlane/pmap/copp-system-policy", copp);

    auto web = paths_.at("/qosStatus/cmapType/mapQos/cmap/class-web", switch_.classMap(mapQos_, "class-web"));
    web->matchIs(Qos::matchDscp_, paths_.at("/qosStatus/cmapType/mapQos/cmap/class-web/match/matchDscp",
                                            Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_)));
    web->matchIs(Qos::matchVlan_, paths_.at("/qosStatus/cmapType/mapQos/cmap/class-web/match/matchVlan",
                                            Kel::make<Qos::ClassMapMatch>(Qos::matchVlan_)));

    const std::string pm = "/qosStatus/pmapType/mapQos/pmap/policy-in";
    auto pmap = paths_.at(pm, switch_.policyMap(mapQos_, "policy-in"));
    auto classAction = paths_.at(pm + "/classAction/class-web", Kel::make<Qos::ClassAction>("class-web"));
    classAction->policyActionIs(Qos::actionSetDscp_,
                                paths_.at(pm + "/classAction/class-web/policyAction/actionSetDscp",
                                          Kel::make<Qos::Action>(Qos::actionSetDscp_)));
    pmap->classActionIs("class-web", classAction);
    auto prio = Kel::make<Qos::ClassPriority>(1);
    prio->cmapNameIs("class-web");
    pmap->classPrioIs(1, prio);

    const Qos::ServicePolicyKey in(mapQos_, Qos::directionInput_, "policy-in");
    QosSnmpTest::appliedPolicy(switch_, in)->intfIdsIs(QosSnmpTest::intfPair("Ethernet2"), true);
  }

  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }

  TestSwitch switch_;
  Paths paths_;
};

TEST_F(MibDumpAgentTest, TextShowsWhatTheAgentWrote) {
  const auto root = makeRoot();
  EXPECT_EQ(paths_.dump().text(*switch_.qosMib),
            "# classMapTable: 1 row\n"
            "classMapTable (class-web, mapQos) classMapStatus=/qosStatus/cmapType/mapQos/cmap/class-web\n"
            "# classMapMatchTable: 2 rows\n"
            "classMapMatchTable (class-web, mapQos, 1) "
            "classMapStatus=/qosStatus/cmapType/mapQos/cmap/class-web "
            "classMapMatch=/qosStatus/cmapType/mapQos/cmap/class-web/match/matchVlan\n"
            "classMapMatchTable (class-web, mapQos, 2) "
            "classMapStatus=/qosStatus/cmapType/mapQos/cmap/class-web "
            "classMapMatch=/qosStatus/cmapType/mapQos/cmap/class-web/match/matchDscp\n"
            "# policyMapTable: 0 rows\n"
            "# policyMapClassTable: 0 rows\n"
            "# policyMapActionTable: 0 rows\n"
            "# qosStatsTable: 0 rows\n"
            "# qosPolicerStatsTable: 0 rows\n"
            "# servicePolicyTable: 1 row\n"
            "servicePolicyTable (2, directionInput) pmapName=policy-in "
            "servicePolicyKey=mapQos/directionInput/policy-in\n"
            "# ecnCounterTable: 0 rows\n"
            "# ecnQueueCounterTable: 0 rows\n"
            "# cmapByStaticType: 1 entry\n"
            "cmapByStaticType cpStaticBgp -> /qosStatus/cmapType/mapControlPlane/cmap/copp-system-bgp\n"
            "# intfIdToifIndex: 2 entries\n"
            "intfIdToifIndex Ethernet1 -> 1\n"
            "intfIdToifIndex Ethernet2 -> 2\n");
}

TEST_F(MibDumpAgentTest, JsonParsesBackWithEveryTablesRowCount) {
  const auto root = makeRoot();
  const QosSnmp::QosMib& mib = *switch_.qosMib;
  const auto parsed = nlohmann::json::parse(paths_.dump().json(mib).dump(2));

  const std::map<std::string, std::size_t> sizes{
      {"classMapTable", mib.classMapTable().size()},
      {"classMapMatchTable", mib.classMapMatchTable().size()},
      {"policyMapTable", mib.policyMapTable().size()},
      {"policyMapClassTable", mib.policyMapClassTable().size()},
      {"policyMapActionTable", mib.policyMapActionTable().size()},
      {"qosStatsTable", mib.qosStatsTable().size()},
      {"qosPolicerStatsTable", mib.qosPolicerStatsTable().size()},
      {"servicePolicyTable", mib.servicePolicyTable().size()},
      {"ecnCounterTable", mib.ecnCounterTable().size()},
      {"ecnQueueCounterTable", mib.ecnQueueCounterTable().size()},
      {"cmapByStaticType", mib.cmapByStaticType().size()},
      {"intfIdToifIndex", mib.intfIdToifIndex().size()},
  };
  ASSERT_EQ(parsed.size(), sizes.size());
  std::size_t rows = 0;
  for (const auto& [name, size] : sizes) {
    ASSERT_TRUE(parsed.contains(name)) << name;
    EXPECT_EQ(parsed[name].size(), size) << name;
    if (parsed[name].is_array()) {
      rows += parsed[name].size();
    }
  }
  EXPECT_EQ(rows, mib.rowCount());
  EXPECT_GT(rows, 0U);
  EXPECT_EQ(parsed["classMapMatchTable"][1]["index"],
            nlohmann::json::parse(R"({"name":"class-web","type":"mapQos","matchIndex":2})"));
}

}  // namespace
}  // namespace QosSnmpHost
