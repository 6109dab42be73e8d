#include "QosSnmp/core/PolicyMapStatus.h"

#include <string>

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapTypeStatus.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::Recorder;
using QosInputTest::Texts;

class PolicyMapStatusReactor
    : public Kel::Notifiee<PolicyMapStatusReactor, Recorder, const PolicyMapStatus, PolicyMapStatus::Type,
                           PolicyMapStatus::ClassAction, PolicyMapStatus::ClassPrio,
                           PolicyMapStatus::ClassDefault, PolicyMapStatus::DefaultClassAction,
                           PolicyMapStatus::CmapCounters> {
 public:
  using Notifiee::Notifiee;
  void on(PolicyMapStatus::Type /*attr*/) { owner().record("type"); }
  void on(PolicyMapStatus::ClassAction /*attr*/, const Kel::String& name) {
    owner().record("classAction", name);
  }
  void on(PolicyMapStatus::ClassPrio /*attr*/, const Kel::U32& prio) { owner().record("classPrio", prio); }
  void on(PolicyMapStatus::ClassDefault /*attr*/) { owner().record("classDefault"); }
  void on(PolicyMapStatus::DefaultClassAction /*attr*/) { owner().record("defaultClassAction"); }
  void on(PolicyMapStatus::CmapCounters /*attr*/, const Kel::String& name) {
    owner().record("cmapCounters", name);
  }
};

class ActionReactor
    : public Kel::Notifiee<ActionReactor, Recorder, const Action, Action::Value, Action::Rate,
                           Action::RateUnit, Action::BurstSize, Action::PeakRate, Action::PeakBurstSize> {
 public:
  using Notifiee::Notifiee;
  void on(Action::Value /*attr*/) { owner().record("value"); }
  void on(Action::Rate /*attr*/) { owner().record("rate"); }
  void on(Action::RateUnit /*attr*/) { owner().record("rateUnit"); }
  void on(Action::BurstSize /*attr*/) { owner().record("burstSize"); }
  void on(Action::PeakRate /*attr*/) { owner().record("peakRate"); }
  void on(Action::PeakBurstSize /*attr*/) { owner().record("peakBurstSize"); }
};

Kel::Ptr<ClassPriority> classPriority(Kel::U32 prio, const char* cmapName) {
  auto priority = Kel::make<ClassPriority>(prio);
  priority->cmapNameIs(cmapName);
  return priority;
}

class PolicyMapStatusTest : public ::testing::Test {
 protected:
  Kel::Ptr<PolicyMapStatus> pmap_ = Kel::make<PolicyMapStatus>("policy-in");
  Kel::Ptr<Recorder> recorder_ = Kel::make<Recorder>();
  Kel::Ptr<PolicyMapStatusReactor> reactor_ =
      Kel::makeReactor<PolicyMapStatusReactor>(recorder_.get(), pmap_);
};

TEST_F(PolicyMapStatusTest, WithoutDefaultClassBothDefaultsReadAsNull) {
  EXPECT_EQ(pmap_->name(), Kel::String("policy-in"));
  EXPECT_FALSE(pmap_->classDefault());
  EXPECT_FALSE(pmap_->defaultClassAction());
}

TEST_F(PolicyMapStatusTest, DefaultClassChangesAreNotifiedAndTheSameOneIsNot) {
  const auto classDefault = Kel::make<ClassMapStatus>("class-default");
  const auto action = Kel::make<ClassAction>("class-default");
  pmap_->classDefaultIs(classDefault);
  pmap_->classDefaultIs(classDefault);
  pmap_->defaultClassActionIs(action);
  EXPECT_EQ(pmap_->classDefault(), classDefault);
  EXPECT_EQ(pmap_->defaultClassAction(), action);
  pmap_->classDefaultIs(nullptr);
  pmap_->defaultClassActionIs(nullptr);
  EXPECT_FALSE(pmap_->classDefault());
  EXPECT_FALSE(pmap_->defaultClassAction());
  EXPECT_EQ(recorder_->log(),
            (Texts{"classDefault", "defaultClassAction", "classDefault", "defaultClassAction"}));
}

TEST_F(PolicyMapStatusTest, ClassPrioritiesIterateByNumber) {
  for (const Kel::U32 prio : {10U, 2U, 1U, 100U}) {
    pmap_->classPrioIs(prio, classPriority(prio, "cm"));
  }
  Texts order;
  for (const auto& [prio, priority] : pmap_->classPrio()) {
    EXPECT_EQ(priority->prio(), prio);
    order.push_back(std::to_string(prio));
  }
  EXPECT_EQ(order, (Texts{"1", "2", "10", "100"}));
  EXPECT_EQ(recorder_->log(), (Texts{"classPrio 10", "classPrio 2", "classPrio 1", "classPrio 100"}));
  EXPECT_FALSE(pmap_->classPrio(3));
}

TEST_F(PolicyMapStatusTest, ClassActionsAndCountersAreNotifiedWithTheClassName) {
  pmap_->typeIs(mapQos_);
  pmap_->classActionIs("cm-voice", Kel::make<ClassAction>("cm-voice"));
  pmap_->cmapCountersIs("cm-voice", Kel::make<Counter>("cm-voice"));
  pmap_->classActionDel("cm-voice");
  EXPECT_FALSE(pmap_->classAction("cm-voice"));
  EXPECT_TRUE(pmap_->cmapCounters("cm-voice"));
  EXPECT_EQ(recorder_->log(),
            (Texts{"type", "classAction cm-voice", "cmapCounters cm-voice", "classAction cm-voice"}));
}

TEST_F(PolicyMapStatusTest, ClassPriorityNamesItsClass) {
  const auto priority = classPriority(5, "cm-voice");
  EXPECT_EQ(priority->prio(), 5U);
  EXPECT_EQ(priority->name(), Kel::String("5"));
  EXPECT_EQ(priority->cmapName(), Kel::String("cm-voice"));
}

TEST(ActionTest, PolicerParametersAreNotifiedWhenTheyChange) {
  const auto recorder = Kel::make<Recorder>();
  const auto action = Kel::make<Action>(actionPolice_);
  EXPECT_EQ(action->actionType(), actionPolice_);
  EXPECT_EQ(action->name(), Kel::String("actionPolice"));
  const auto reactor = Kel::makeReactor<ActionReactor>(recorder.get(), action);
  action->rateIs(1000);
  action->rateUnitIs(rateUnitKbps_);
  action->burstSizeIs(15000);
  action->peakRateIs(2000);
  action->peakBurstSizeIs(30000);
  action->valueIs(0);
  action->rateIs(1000);
  EXPECT_EQ(action->rate(), 1000U);
  EXPECT_EQ(action->rateUnit(), rateUnitKbps_);
  EXPECT_EQ(action->burstSize(), 15000U);
  EXPECT_EQ(action->peakRate(), 2000U);
  EXPECT_EQ(action->peakBurstSize(), 30000U);
  EXPECT_EQ(recorder->log(), (Texts{"rate", "rateUnit", "burstSize", "peakRate", "peakBurstSize"}));
}

TEST(ClassActionTest, ActionsAreReadByKind) {
  const auto classAction = Kel::make<ClassAction>("cm-voice");
  const auto setDscp = Kel::make<Action>(actionSetDscp_);
  setDscp->valueIs(46);
  classAction->policyActionIs(actionSetDscp_, setDscp);
  EXPECT_EQ(classAction->policyAction(actionSetDscp_)->value(), 46U);
  EXPECT_FALSE(classAction->policyAction(actionPolice_));
}

TEST(CounterTest, PolicerCountersAreKeptPerInterface) {
  const auto counter = Kel::make<Counter>("cm-voice");
  counter->packetsIs(10);
  counter->droppedBytesIs(64);
  const auto policer = Kel::make<PolicerHwStatus>("Ethernet1");
  EXPECT_EQ(policer->intfName(), Kel::String("Ethernet1"));
  policer->violatedPacketsIs(3);
  counter->policerHwStatusIs("Ethernet1", policer);
  EXPECT_EQ(counter->packets(), 10U);
  EXPECT_EQ(counter->droppedBytes(), 64U);
  EXPECT_EQ(counter->policerHwStatus("Ethernet1")->violatedPackets(), 3U);
  EXPECT_FALSE(counter->policerHwStatus("Ethernet2"));
}

TEST(PolicyMapTypeStatusTest, PolicyMapsIterateInNameOrder) {
  const auto pmaps = Kel::make<PolicyMapTypeStatus>(mapControlPlane_);
  EXPECT_EQ(pmaps->type(), mapControlPlane_);
  for (const char* name : {"policy-b", "copp-system-policy", "policy-a"}) {
    pmaps->pmapIs(name, Kel::make<PolicyMapStatus>(name));
  }
  Texts order;
  pmaps->pmap().forEachKey([&order](const Kel::String& name) { order.push_back(name.stringValue()); });
  EXPECT_EQ(order, (Texts{"copp-system-policy", "policy-a", "policy-b"}));
}

}  // namespace
}  // namespace Qos
