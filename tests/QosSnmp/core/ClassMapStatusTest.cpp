#include "QosSnmp/core/ClassMapStatus.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::Recorder;
using QosInputTest::Texts;

class ClassMapStatusReactor
    : public Kel::Notifiee<ClassMapStatusReactor, Recorder, const ClassMapStatus, ClassMapStatus::Type,
                           ClassMapStatus::CpType, ClassMapStatus::CpStaticType,
                           ClassMapStatus::MatchCondition, ClassMapStatus::Match> {
 public:
  using Notifiee::Notifiee;
  void on(ClassMapStatus::Type /*attr*/) { owner().record("type"); }
  void on(ClassMapStatus::CpType /*attr*/) { owner().record("cpType"); }
  void on(ClassMapStatus::CpStaticType /*attr*/) { owner().record("cpStaticType"); }
  void on(ClassMapStatus::MatchCondition /*attr*/) { owner().record("matchCondition"); }
  void on(ClassMapStatus::Match /*attr*/, const ClassMapMatchOption& option) {
    owner().record("match", option);
  }
};

class ClassMapMatchReactor
    : public Kel::Notifiee<ClassMapMatchReactor, Recorder, const ClassMapMatch, ClassMapMatch::Value> {
 public:
  using Notifiee::Notifiee;
  void on(ClassMapMatch::Value /*attr*/) { owner().record("value"); }
};

class ClassMapStatusTest : public ::testing::Test {
 protected:
  Kel::Ptr<ClassMapStatus> cmap_ = Kel::make<ClassMapStatus>("cm-voice");
  Kel::Ptr<Recorder> recorder_ = Kel::make<Recorder>();
  Kel::Ptr<ClassMapStatusReactor> reactor_ = Kel::makeReactor<ClassMapStatusReactor>(recorder_.get(), cmap_);
};

TEST_F(ClassMapStatusTest, NewClassMapHasItsNameAndDefaultAttributes) {
  EXPECT_EQ(cmap_->name(), Kel::String("cm-voice"));
  EXPECT_EQ(cmap_->type(), mapControlPlane_);
  EXPECT_EQ(cmap_->cpType(), classMapCpStatic_);
  EXPECT_EQ(cmap_->cpStaticType(), cpStaticInvalid_);
  EXPECT_EQ(cmap_->matchCondition(), matchConditionAny_);
  EXPECT_TRUE(cmap_->match().empty());
}

TEST_F(ClassMapStatusTest, ScalarChangesAreNotified) {
  cmap_->typeIs(mapQos_);
  cmap_->cpTypeIs(classMapCpDynamic_);
  cmap_->cpStaticTypeIs(cpStaticBgp_);
  cmap_->matchConditionIs(matchConditionAll_);
  EXPECT_EQ(cmap_->type(), mapQos_);
  EXPECT_EQ(cmap_->cpType(), classMapCpDynamic_);
  EXPECT_EQ(cmap_->cpStaticType(), cpStaticBgp_);
  EXPECT_EQ(cmap_->matchCondition(), matchConditionAll_);
  EXPECT_EQ(recorder_->log(), (Texts{"type", "cpType", "cpStaticType", "matchCondition"}));
}

TEST_F(ClassMapStatusTest, UnchangedScalarsAreNotNotified) {
  cmap_->typeIs(mapQos_);
  recorder_->clear();
  cmap_->typeIs(mapQos_);
  cmap_->cpTypeIs(classMapCpStatic_);
  cmap_->cpStaticTypeIs(cpStaticInvalid_);
  cmap_->matchConditionIs(matchConditionAny_);
  EXPECT_TRUE(recorder_->log().empty());
}

TEST_F(ClassMapStatusTest, MatchRulesAreNotifiedWithTheirOption) {
  const auto rule = Kel::make<ClassMapMatch>(matchIpAccessGroup_);
  rule->valueIs("acl-voice");
  cmap_->matchIs(matchIpAccessGroup_, rule);
  cmap_->matchIs(matchDscp_, Kel::make<ClassMapMatch>(matchDscp_));
  cmap_->matchDel(matchDscp_);
  EXPECT_EQ(cmap_->match(matchIpAccessGroup_)->value(), Kel::String("acl-voice"));
  EXPECT_EQ(cmap_->match(matchIpAccessGroup_)->option(), matchIpAccessGroup_);
  EXPECT_FALSE(cmap_->match(matchDscp_));
  EXPECT_EQ(recorder_->log(), (Texts{"match matchIpAccessGroup", "match matchDscp", "match matchDscp"}));
}

TEST_F(ClassMapStatusTest, MatchValueChangeIsNotifiedOnTheRule) {
  const auto rule = Kel::make<ClassMapMatch>(matchVlan_);
  EXPECT_EQ(rule->name(), Kel::String("matchVlan"));
  const auto ruleReactor = Kel::makeReactor<ClassMapMatchReactor>(recorder_.get(), rule);
  rule->valueIs("10,20-30");
  rule->valueIs("10,20-30");
  rule->valueIs("10");
  EXPECT_EQ(rule->value(), Kel::String("10"));
  EXPECT_EQ(recorder_->log(), (Texts{"value", "value"}));
}

TEST(ClassMapTypeStatusTest, ClassMapsIterateInNameOrder) {
  const auto cmaps = Kel::make<ClassMapTypeStatus>(mapQos_);
  EXPECT_EQ(cmaps->type(), mapQos_);
  EXPECT_EQ(cmaps->name(), Kel::String("mapQos"));
  for (const char* name : {"cm-video", "cm-10", "cm-voice", "cm-2", "CM-upper"}) {
    cmaps->cmapIs(name, Kel::make<ClassMapStatus>(name));
  }
  Texts order;
  for (const auto& [name, cmap] : cmaps->cmap()) {
    EXPECT_EQ(cmap->name(), name);
    order.push_back(name.stringValue());
  }
  EXPECT_EQ(order, (Texts{"CM-upper", "cm-10", "cm-2", "cm-video", "cm-voice"}));
  EXPECT_FALSE(cmaps->cmap("cm-missing"));
}

}  // namespace
}  // namespace Qos
