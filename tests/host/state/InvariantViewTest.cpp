#include "host/state/InvariantView.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using QosSnmpHost::InvariantView;
using QosSnmpHost::StateTransition;
using Json = nlohmann::json;
using Path = InvariantView::Path;
using Keys = std::vector<std::string>;

const Json kAfter = Json::parse(R"({
  "qosStatus": {"cmapType": {"mapQos": {"cmap": {"c1": {"cpType": "classMapCpStatic"}, "c3": {}}}}},
  "hwStatus": {"coppSupported": true}
})");

// The class maps of map type mapQos before: c1 dynamic, c2, no c3.
const Json kClassMapsBefore = Json::parse(R"({"c1": {"cpType": "classMapCpDynamic"}, "c2": {}})");

StateTransition setAt(const std::string& path, const Json* before) {
  return {StateTransition::Kind::set, Json::json_pointer(path), kAfter, before};
}

TEST(InvariantViewTest, ReadsTheOldValueAtAndBelowTheChangedPath) {
  const StateTransition transition = setAt("/qosStatus/cmapType/mapQos/cmap", &kClassMapsBefore);
  const InvariantView view(transition);
  EXPECT_EQ(*view.before({"qosStatus", "cmapType", "mapQos", "cmap", "c1", "cpType"}), "classMapCpDynamic");
  EXPECT_EQ(*view.after({"qosStatus", "cmapType", "mapQos", "cmap", "c1", "cpType"}), "classMapCpStatic");
  EXPECT_EQ(view.before({"qosStatus", "cmapType", "mapQos", "cmap", "c3"}), nullptr);
  EXPECT_NE(view.before({"qosStatus", "cmapType", "mapQos", "cmap", "c2"}), nullptr);
  EXPECT_EQ(view.after({"qosStatus", "cmapType", "mapQos", "cmap", "c2"}), nullptr);
}

TEST(InvariantViewTest, ReadsUnchangedValuesBesideTheChangedPathAfterIt) {
  const StateTransition transition = setAt("/qosStatus/cmapType/mapQos/cmap", &kClassMapsBefore);
  const InvariantView view(transition);
  EXPECT_TRUE(view.flagBefore({"hwStatus", "coppSupported"}));
  EXPECT_FALSE(view.changed({"hwStatus"}));
  EXPECT_FALSE(view.reaches({"hwStatus", "coppSupported"}));
  // An ancestor exists before as after; its contents changed.
  EXPECT_NE(view.before({"qosStatus"}), nullptr);
  EXPECT_TRUE(view.changed({"qosStatus"}));
}

TEST(InvariantViewTest, ListsTheMembersAChangeAddsRemovesOrChanges) {
  const StateTransition transition = setAt("/qosStatus/cmapType/mapQos/cmap", &kClassMapsBefore);
  const InvariantView view(transition);
  const Path classMaps = {"qosStatus", "cmapType", "mapQos", "cmap"};
  EXPECT_EQ(view.changedMembers(classMaps), (Keys{"c1", "c2", "c3"}));
  EXPECT_EQ(view.addedMembers(classMaps), (Keys{"c3"}));
  EXPECT_EQ(view.changedMembers({"qosStatus", "cmapType"}), (Keys{"mapQos"}));
}

TEST(InvariantViewTest, AChangeInsideOneMemberChangesOnlyIt) {
  const Json before = "classMapCpDynamic";
  const StateTransition transition = setAt("/qosStatus/cmapType/mapQos/cmap/c1/cpType", &before);
  const InvariantView view(transition);
  EXPECT_EQ(view.changedMembers({"qosStatus", "cmapType", "mapQos", "cmap"}), (Keys{"c1"}));
  EXPECT_EQ(view.addedMembers({"qosStatus", "cmapType", "mapQos", "cmap"}), Keys{});
  EXPECT_TRUE(view.within({"qosStatus", "cmapType"}));
  EXPECT_FALSE(view.covers({"qosStatus", "cmapType"}));
}

TEST(InvariantViewTest, AMemberSetToItsOwnValueChangesNothing) {
  const Json before = "classMapCpStatic";
  const StateTransition transition = setAt("/qosStatus/cmapType/mapQos/cmap/c1/cpType", &before);
  const InvariantView view(transition);
  EXPECT_EQ(view.changedMembers({"qosStatus", "cmapType", "mapQos", "cmap"}), Keys{});
}

TEST(InvariantViewTest, ABuildAddsEverythingAndHasNoPast) {
  const StateTransition transition{StateTransition::Kind::build, Json::json_pointer(), kAfter, nullptr};
  const InvariantView view(transition);
  EXPECT_TRUE(view.isBuild());
  EXPECT_EQ(view.before({"hwStatus"}), nullptr);
  EXPECT_EQ(view.addedMembers({"qosStatus", "cmapType", "mapQos", "cmap"}), (Keys{"c1", "c3"}));
  EXPECT_TRUE(view.changed({"hwStatus", "coppSupported"}));
}

TEST(InvariantViewTest, EscapesKeysInPointers) {
  EXPECT_EQ(InvariantView::pointerText({"intfStatus", "Ethernet1/1", "a~b"}),
            "/intfStatus/Ethernet1~11/a~0b");
  const Json before = nullptr;
  const Json after = Json::parse(R"({"intfStatus": {"Ethernet1/1": {}}})");
  const StateTransition transition{StateTransition::Kind::set, Json::json_pointer("/intfStatus/Ethernet1~11"),
                                   after, &before};
  const InvariantView view(transition);
  EXPECT_EQ(view.path(), (Path{"intfStatus", "Ethernet1/1"}));
  EXPECT_EQ(view.addedMembers({"intfStatus"}), (Keys{"Ethernet1/1"}));
}

TEST(InvariantViewTest, ReadsEnumerationsByNameOrNumber) {
  EXPECT_EQ(QosSnmpHost::invariantEnum<Qos::MapType>(Json("mapQos")), Qos::mapQos_);
  EXPECT_EQ(QosSnmpHost::invariantEnum<Qos::ClassMapCpStaticType>(Json("25")),
            static_cast<Qos::ClassMapCpStaticType>(25));
  EXPECT_EQ(QosSnmpHost::invariantEnum<Qos::ClassMapCpType>(Json(7U)), static_cast<Qos::ClassMapCpType>(7));
  EXPECT_EQ(QosSnmpHost::invariantEnum<Qos::MapType>(Json("mapNone")), std::nullopt);
  EXPECT_EQ(QosSnmpHost::invariantEnum<Qos::MapType>(Json()), std::nullopt);
}

}  // namespace
