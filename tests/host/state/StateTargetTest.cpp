#include "host/state/StateTarget.h"

#include <gtest/gtest.h>

#include "host/state/ChangeLine.h"

namespace QosSnmpHost {
namespace {

const Json kDocument = Json::parse(R"({
  "qosStatus": {"pmapType": {"mapQos": {"pmap": {"pm/1": {"cmapCounters": {"c~1": {"packets": 1}}}}}}},
  "hwStatus": {"coppSupported": true},
  "intfStatus": {"Ethernet1/1": {"snmpIfIndex": 1}},
  "sliceHwStatus": {"slice0": {"cpStaticClassHwStatus": {"cpStaticBgp": {"hwRank": 0}}}}
})");

StateTarget resolve(const Json& path, const Json& document) {
  return StateTarget::resolve(ChangeLine::pathSegments(path), document);
}

TEST(StateTargetTest, HolderPathTextIsTheHoldersEscapedPointer) {
  const StateTarget target =
      resolve(Json("/qosStatus/pmapType/mapQos/pmap/pm~11/cmapCounters/c~01/packets"), kDocument);
  EXPECT_EQ(target.holderPathText, "/qosStatus/pmapType/mapQos/pmap/pm~11/cmapCounters/c~01");
  EXPECT_EQ(target.holderPathText, target.holderPath.to_string());
  EXPECT_EQ(target.attr->name, "packets");
}

TEST(StateTargetTest, AnAttributeOfADirectoryMemberNamesThatMemberAsEnclosing) {
  const StateTarget target = resolve(Json("/intfStatus/Ethernet1~11/snmpIfIndex"), kDocument);
  ASSERT_TRUE(target.enclosing.has_value());
  EXPECT_EQ(target.enclosing->key, "Ethernet1/1");
  EXPECT_EQ(target.enclosing->holderPathText, "/intfStatus");
  EXPECT_NE(target.enclosing->attr->memberChanged, nullptr);
  EXPECT_EQ(target.holderPathText, "/intfStatus/Ethernet1~11");
}

TEST(StateTargetTest, TheNearestEnclosingMemberIsTheDeepestOnTheWay) {
  const StateTarget target =
      resolve(Json("/sliceHwStatus/slice0/cpStaticClassHwStatus/cpStaticBgp/hwRank"), kDocument);
  ASSERT_TRUE(target.enclosing.has_value());
  EXPECT_EQ(target.enclosing->key, "cpStaticBgp");
  EXPECT_EQ(target.enclosing->holderPathText, "/sliceHwStatus/slice0");
}

TEST(StateTargetTest, AnAttributeOfARootHasNoEnclosingMember) {
  const StateTarget target = resolve(Json("/hwStatus/coppSupported"), kDocument);
  EXPECT_FALSE(target.enclosing.has_value());
  EXPECT_EQ(target.holderPathText, "/hwStatus");
}

TEST(StateTargetTest, APathThroughAnAbsentMemberIsRefusedAtThatMember) {
  try {
    resolve(Json("/intfStatus/Ethernet9/snmpIfIndex"), kDocument);
    FAIL() << "resolved a path through an absent interface";
  } catch (const SchemaError& error) {
    EXPECT_EQ(error.path.to_string(), "/intfStatus/Ethernet9");
    EXPECT_EQ(error.message, "does not exist (so nothing below it can be changed)");
  }
}

TEST(StateTargetTest, TargetCarriesItsCanonicalSegmentsAndPointerText) {
  const StateTarget target =
      resolve(Json("/qosStatus/pmapType/1/pmap/pm~11/cmapCounters/c~01/packets"), kDocument);
  EXPECT_EQ(target.segments, (std::vector<std::string>{"qosStatus", "pmapType", "mapQos", "pmap", "pm/1",
                                                       "cmapCounters", "c~1", "packets"}));
  EXPECT_EQ(target.pathText, "/qosStatus/pmapType/mapQos/pmap/pm~11/cmapCounters/c~01/packets");
  EXPECT_EQ(target.pathText, target.path.to_string());
  EXPECT_EQ(target.root->name, "qosStatus");
}

TEST(StateTargetTest, PlaceIsTheCollectionForAMemberAndTheValueItselfOtherwise) {
  EXPECT_EQ(resolve(Json("/intfStatus/Ethernet9"), kDocument).place, &kDocument.at("intfStatus"));
  EXPECT_EQ(resolve(Json("/hwStatus/coppSupported"), kDocument).place,
            &kDocument.at("hwStatus").at("coppSupported"));
  EXPECT_EQ(resolve(Json("/hwStatus"), kDocument).place, &kDocument.at("hwStatus"));
}

TEST(StateTargetTest, AKeyThatDoesNotFitIsRefusedAtItsRawSegment) {
  try {
    resolve(Json("/qosStatus/pmapType/mapNone/pmap"), kDocument);
    FAIL() << "resolved an unknown map type";
  } catch (const SchemaError& error) {
    EXPECT_EQ(error.path.to_string(), "/qosStatus/pmapType/mapNone");
    EXPECT_EQ(error.message.rfind("expected a map type", 0), 0U) << error.message;
  }
}

}  // namespace
}  // namespace QosSnmpHost
