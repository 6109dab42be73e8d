#include "QosSnmp/policy/ClassActionSm.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/QosSnmpAgent.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/policy/PolicyMapTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpTest::addClassAction;
using QosSnmpTest::addClassPrio;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::MibTimeline;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class ClassActionSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<QosSnmp::ClassActionSm> makeSm(const Kel::Ptr<Qos::PolicyMapStatus>& pmap) {
    return Kel::make<QosSnmp::ClassActionSm>(pmap, switch_.cmapType(pmap->type()), switch_.qosHwStatus,
                                             slice_, switch_.qosMib);
  }
  Kel::Ptr<QosSnmp::ClassActionSm> makeSm() { return makeSm(pmap_); }

  // pm1's default class "class-default", which sets the DSCP.
  void giveDefaultClass() {
    pmap_->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-default"));
    pmap_->defaultClassActionIs(QosSnmpTest::classActionOf("class-default", {Qos::actionSetDscp_}));
  }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }
  Texts actionRows() const { return QosSnmpTest::tableRows(*switch_.qosMib, "policyMapActionTable"); }
  Texts classRows() const { return QosSnmpTest::tableRows(*switch_.qosMib, "policyMapClassTable"); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_ = switch_.slice("FixedSystem");
  Kel::Ptr<Qos::PolicyMapStatus> pmap_ = switch_.policyMap(Qos::mapQos_, "pm1");
};

TEST_F(ClassActionSmTest, InitialScanRunsTheDefaultClassThenClassesThenPriorities) {
  giveDefaultClass();
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassAction(pmap_, "cm2", {Qos::actionSetTc_});
  addClassPrio(pmap_, 10, "cm1");
  addClassPrio(pmap_, 20, "cm2");
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetDscp )",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetCos )",
                               "8 ClassActionSm::handleClassAction( cm2 )",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                               "8 ClassActionSm::handleClassPrio( 20 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                           }));
  EXPECT_EQ(
      rows(),
      (Texts{
          "policyMapClassTable (pm1, 1, 10) pm1 cm1",
          "policyMapClassTable (pm1, 1, 3072) pm1 class-default",
          "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
          "policyMapActionTable (pm1, 1, class-default, 3) class-default actionSetDscp - hw FixedSystem",
      }));
  EXPECT_EQ(sm->policyActionSm().size(), 2U);
  EXPECT_NE(sm->policyActionSm("class-default"), nullptr);
  EXPECT_NE(sm->policyActionSm("cm1"), nullptr);
  EXPECT_EQ(sm->classPrioSm().size(), 2U);
}

TEST_F(ClassActionSmTest, DefaultClassRowSitsAtTheDefaultClassPriority) {
  giveDefaultClass();
  const auto sm = makeSm();
  EXPECT_EQ(QosSnmp::kDefaultClassPriority, 3072U);
  const QosSnmp::PolicyMapClassTableIndex index("pm1", Qos::mapQos_, QosSnmp::kDefaultClassPriority);
  const QosSnmp::PolicyMapClassTableRow* row = switch_.qosMib->policyMapClassTable(index);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->policyMapStatus, pmap_);
  EXPECT_EQ(row->cmapName, Snmp::String("class-default"));
  EXPECT_TRUE(sm->policyMapClassTableKey().contains(index));
  EXPECT_EQ(sm->policyMapClassTableKey().size(), 1U);
}

TEST_F(ClassActionSmTest, DefaultClassNameIsShortenedInItsRow) {
  const Kel::String name("a-default-class-name-longer-than-thirty-characters");
  pmap_->classDefaultIs(Kel::make<Qos::ClassMapStatus>(name));
  const auto sm = makeSm();
  const QosSnmp::PolicyMapClassTableRow* row =
      switch_.qosMib->policyMapClassTable(QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapQos_, 3072));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->cmapName, QosSnmp::uniqueId(name));
}

TEST_F(ClassActionSmTest, PolicyMapWithoutDefaultClassHasNoDefaultRowAndSaysSoAtLevel9) {
  pmap_->defaultClassActionIs(QosSnmpTest::classActionOf("class-default", {Qos::actionSetDscp_}));
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetDscp )",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "9 ClassActionSm::handleDefaultClassPriority() No cmapConfig exists",
                           }));
  EXPECT_TRUE(classRows().empty());
  EXPECT_TRUE(sm->policyMapClassTableKey().empty());
  EXPECT_EQ(actionRows().size(), 1U);
}

TEST_F(ClassActionSmTest, DefaultClassAddedLaterAddsItsRowAndRunsTheDefaultActionAgain) {
  const auto sm = makeSm();
  const AgentTrace trace;
  pmap_->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-default"));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                           }));
  EXPECT_EQ(classRows(), Texts{"policyMapClassTable (pm1, 1, 3072) pm1 class-default"});
}

TEST_F(ClassActionSmTest, DefaultClassRemovedLeavesItsRowUntilClose) {
  giveDefaultClass();
  const auto sm = makeSm();
  const AgentTrace trace;
  pmap_->classDefaultIs(nullptr);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "9 ClassActionSm::handleDefaultClassPriority() No cmapConfig exists",
                           }));
  EXPECT_EQ(classRows(), Texts{"policyMapClassTable (pm1, 1, 3072) pm1 class-default"});
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(ClassActionSmTest, DefaultClassReplacedRewritesItsRowUnderTheNewName) {
  giveDefaultClass();
  const auto sm = makeSm();
  pmap_->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-other"));
  EXPECT_EQ(classRows(), Texts{"policyMapClassTable (pm1, 1, 3072) pm1 class-other"});
  EXPECT_EQ(sm->policyMapClassTableKey().size(), 1U);
}

TEST_F(ClassActionSmTest, DefaultClassActionAddedLaterGetsItsChild) {
  const auto sm = makeSm();
  const AgentTrace trace;
  pmap_->defaultClassActionIs(QosSnmpTest::classActionOf("class-default", {Qos::actionPolice_}));
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionPolice )",
                           }));
  EXPECT_EQ(
      actionRows(),
      Texts{"policyMapActionTable (pm1, 1, class-default, 6) class-default actionPolice - hw FixedSystem"});
}

TEST_F(ClassActionSmTest, DefaultClassActionThatDisappearsKeepsItsChildUntilClose) {
  giveDefaultClass();
  const auto sm = makeSm();
  const AgentTrace trace;
  pmap_->defaultClassActionIs(nullptr);
  EXPECT_EQ(trace.lines(), Texts{"8 ClassActionSm::handleDefaultClassAction()"});
  EXPECT_NE(sm->policyActionSm("class-default"), nullptr);
  EXPECT_EQ(actionRows().size(), 1U);
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(ClassActionSmTest, ClassWithoutItsClassMapHasNoRowsUntilTheClassMapIsAdded) {
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_, Qos::actionPolice_});
  addClassPrio(pmap_, 10, "cm1");
  const auto sm = makeSm();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->policyActionSm("cm1"), nullptr);
  EXPECT_EQ(sm->cmapNameToPrio("cm1"), 10U);
  const AgentTrace trace;
  switch_.classMap(Qos::mapQos_, "cm1");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleCmap( cm1 )",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetCos )",
                               "8 PolicyActionSm::handlePolicyAction( actionPolice )",
                               "8 cmapNameToPrio is: 10",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                           }));
  EXPECT_EQ(rows(), (Texts{
                        "policyMapClassTable (pm1, 1, 10) pm1 cm1",
                        "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
                        "policyMapActionTable (pm1, 1, cm1, 6) cm1 actionPolice - hw FixedSystem",
                    }));
}

TEST_F(ClassActionSmTest, ClassMapRemovedTakesTheClassActionAndClassRowsAway) {
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.cmapType(Qos::mapQos_)->cmapDel("cm1");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleCmap( cm1 )",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::doClose()",
                               "8 cmapNameToPrio is: 10",
                               "8 ClassPrioSm::handleCmapName()",
                           }));
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->policyActionSm("cm1"), nullptr);
  ASSERT_NE(sm->classPrioSm(10), nullptr);
  EXPECT_EQ(sm->cmapNameToPrio("cm1"), 10U);
  EXPECT_EQ(sm->prioToCmapName(10), Kel::String("cm1"));
}

TEST_F(ClassActionSmTest, ClassMapWithoutClassOrPriorityOnlyTracesItsLookup) {
  const auto sm = makeSm();
  const AgentTrace trace;
  switch_.classMap(Qos::mapQos_, "unused");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleCmap( unused )",
                               "8 cmapNameToPrio is: 0",
                           }));
  EXPECT_TRUE(rows().empty());
}

TEST_F(ClassActionSmTest, ClassActionsFollowTheirCollection) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto sm = makeSm();
  const AgentTrace trace;
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  EXPECT_EQ(actionRows(), Texts{"policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem"});
  pmap_->classActionDel("cm1");
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetCos )",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::doClose()",
                           }));
}

TEST_F(ClassActionSmTest, ControlPlaneDropClassNeverGetsActionRows) {
  switch_.classMap(Qos::mapQos_, "copp-system-drop");
  addClassAction(pmap_, "copp-system-drop", {Qos::actionPolice_});
  addClassPrio(pmap_, 10, "copp-system-drop");
  const auto sm = makeSm();
  EXPECT_TRUE(actionRows().empty());
  EXPECT_EQ(sm->policyActionSm("copp-system-drop"), nullptr);
  // Its priority still shows it.
  EXPECT_EQ(classRows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 copp-system-drop"});
  switch_.cmapType(Qos::mapQos_)->cmapDel("copp-system-drop");
  EXPECT_EQ(sm->policyActionSm("copp-system-drop"), nullptr);
}

TEST_F(ClassActionSmTest, ControlPlanePolicyMapGetsOnlyItsPriorityRows) {
  const auto copp = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  copp->classDefaultIs(Kel::make<Qos::ClassMapStatus>("copp-system-default"));
  copp->defaultClassActionIs(QosSnmpTest::classActionOf("copp-system-default", {Qos::actionPolice_}));
  switch_.classMap(Qos::mapControlPlane_, "cm1");
  addClassAction(copp, "cm1", {Qos::actionPolice_});
  addClassPrio(copp, 10, "cm1");
  addClassPrio(copp, 20, "cm2");
  const AgentTrace trace;
  const auto sm = makeSm(copp);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                               "8 ClassActionSm::handleClassPrio( 20 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                           }));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (copp-system-policy, 0, 10) copp-system-policy cm1"});
  EXPECT_TRUE(sm->policyActionSm().empty());

  // Later changes keep to the same rules.
  switch_.classMap(Qos::mapControlPlane_, "cm2");
  copp->defaultClassActionIs(QosSnmpTest::classActionOf("copp-system-default", {Qos::actionSetShape_}));
  copp->classDefaultIs(Kel::make<Qos::ClassMapStatus>("copp-system-other"));
  EXPECT_EQ(rows(), (Texts{
                        "policyMapClassTable (copp-system-policy, 0, 10) copp-system-policy cm1",
                        "policyMapClassTable (copp-system-policy, 0, 20) copp-system-policy cm2",
                    }));
  EXPECT_TRUE(sm->policyActionSm().empty());
}

TEST_F(ClassActionSmTest, ClassPrioritiesFollowTheirCollection) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto sm = makeSm();
  const AgentTrace trace;
  addClassPrio(pmap_, 10, "cm1");
  EXPECT_EQ(classRows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm1"});
  pmap_->classPrioDel(10);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->classPrioSm(10), nullptr);
  EXPECT_TRUE(sm->cmapNameToPrio().empty());
  EXPECT_TRUE(sm->prioToCmapName().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::doClose()",
                               "8 Deleting entry in cmapNameToPrio: cm1",
                           }));
}

TEST_F(ClassActionSmTest, ClassActionReplacedUnderItsNameRaisesReinstantiation) {
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  const auto sm = makeSm();
  EXPECT_THROW(pmap_->classActionIs("cm1", QosSnmpTest::classActionOf("cm1", {Qos::actionSetTc_})),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ClassActionSmTest, DefaultClassActionTakingAClassesNameRaisesReinstantiation) {
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  const auto sm = makeSm();
  EXPECT_THROW(pmap_->defaultClassActionIs(QosSnmpTest::classActionOf("cm1", {Qos::actionSetTc_})),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ClassActionSmTest, PolicyActionSmIsKeepsAChildBuiltFromTheSameArguments) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto classAction = addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  const auto sm = makeSm();
  QosSnmp::PolicyActionSm* child = sm->policyActionSm("cm1");
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(sm->policyActionSmIs(pmap_, classAction, switch_.qosHwStatus, slice_, switch_.qosMib), child);
  EXPECT_THROW(sm->policyActionSmIs(pmap_, classAction, nullptr, slice_, switch_.qosMib),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ClassActionSmTest, PolicyActionSmIsNamesANullArgument) {
  const auto sm = makeSm();
  try {
    sm->policyActionSmIs(pmap_, nullptr, switch_.qosHwStatus, slice_, switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "classAction");
  }
  try {
    sm->policyActionSmIs(pmap_, QosSnmpTest::classActionOf("cm1", {}), switch_.qosHwStatus, slice_, nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "qosMib");
  }
  EXPECT_TRUE(sm->policyActionSm().empty());
}

TEST_F(ClassActionSmTest, WithoutPolicyMapOnlyTheHandlersRun) {
  const AgentTrace trace;
  const auto sm = Kel::make<QosSnmp::ClassActionSm>(nullptr, switch_.cmapType(Qos::mapQos_),
                                                    switch_.qosHwStatus, slice_, switch_.qosMib);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                           }));
  EXPECT_EQ(sm->pmapName(), Kel::String());
  EXPECT_EQ(sm->policyMapStatus(), nullptr);
  sm->handleClassAction("cm1");
  sm->handleClassPrio(10);
  sm->handleCmap("cm1");
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ClassActionSm::KelPolicyMapStatus"), 0);
}

TEST_F(ClassActionSmTest, WithoutClassMapTypeStatusNoClassMapExists) {
  giveDefaultClass();
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  const auto sm =
      Kel::make<QosSnmp::ClassActionSm>(pmap_, nullptr, switch_.qosHwStatus, slice_, switch_.qosMib);
  EXPECT_EQ(sm->classMapTypeStatus(), nullptr);
  EXPECT_EQ(
      rows(),
      (Texts{
          "policyMapClassTable (pm1, 1, 3072) pm1 class-default",
          "policyMapActionTable (pm1, 1, class-default, 3) class-default actionSetDscp - hw FixedSystem",
      }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::ClassActionSm::KelClassMapTypeStatus"), 0);
}

TEST_F(ClassActionSmTest, DoCloseRemovesTheDefaultRowThenActionsThenPriorities) {
  giveDefaultClass();
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  const auto sm = makeSm();
  const MibTimeline timeline(*switch_.qosMib);
  sm->close();
  EXPECT_EQ(timeline.lines(), (Texts{
                                  "8 ClassActionSm::doClose()",
                                  "8 PolicyActionSm::doClose()",
                                  "8 PolicyActionSm::doClose()",
                                  "8 ClassPrioSm::doClose()",
                                  "8 Deleting entry in cmapNameToPrio: cm1",
                              }));
  EXPECT_EQ(
      timeline.rowsAt("8 PolicyActionSm::doClose()"),
      (Texts{
          "policyMapClassTable (pm1, 1, 10) pm1 cm1",
          "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
          "policyMapActionTable (pm1, 1, class-default, 3) class-default actionSetDscp - hw FixedSystem",
      }));
  EXPECT_EQ(timeline.rowsAt("8 ClassPrioSm::doClose()"), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm1"});
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(sm->policyActionSm().empty());
  EXPECT_TRUE(sm->classPrioSm().empty());
  EXPECT_TRUE(sm->policyMapClassTableKey().empty());
}

TEST_F(ClassActionSmTest, ClosingRemovesExactlyTheRowsItAndItsChildrenAdded) {
  // Rows of other writers: another policy map's class and action rows, and
  // a hardware action row of this policy map's class.
  switch_.qosMib->policyMapClassTableIs(QosSnmp::PolicyMapClassTableIndex("pm2", Qos::mapQos_, 10), nullptr,
                                        "cm1");
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("pm2", 1, "cm1", 2), nullptr,
                                         nullptr, nullptr, nullptr, nullptr);
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 0), nullptr,
                                         nullptr, nullptr, nullptr, nullptr);
  const Texts before = rows();
  giveDefaultClass();
  switch_.classMap(Qos::mapQos_, "cm1");
  switch_.classMap(Qos::mapQos_, "cm2");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  const auto sm = makeSm();
  addClassAction(pmap_, "cm2", {Qos::actionSetTc_, Qos::actionPolice_});
  addClassPrio(pmap_, 20, "cm2");
  EXPECT_EQ(rows().size(), before.size() + 7);
  sm->close();
  EXPECT_EQ(rows(), before);
}

TEST_F(ClassActionSmTest, ClosedMachineIgnoresNotifications) {
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  giveDefaultClass();
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(ClassActionSmTest, ReleasingTheLastReferenceFreesTheMachineAndItsChildren) {
  giveDefaultClass();
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {Qos::actionSetCos_});
  addClassPrio(pmap_, 10, "cm1");
  makeSm();
  EXPECT_TRUE(rows().empty());
  for (const char* type : {"QosSnmp::ClassActionSm", "QosSnmp::ClassActionSm::KelPolicyMapStatus",
                           "QosSnmp::ClassActionSm::KelClassMapTypeStatus", "QosSnmp::PolicyActionSm",
                           "QosSnmp::ClassPrioSm", "QosSnmp::ClassPrioSm::KelClassPrio"}) {
    EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }
}

TEST_F(ClassActionSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassAction(pmap_, "cm1", {});
  addClassPrio(pmap_, 10, "other");
  const RingCapture ring;
  const auto sm = makeSm();
  switch_.classMap(Qos::mapQos_, "cm9");
  sm->close();
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::ClassActionSm::handleInitialized() []",
                                "void QosSnmp::ClassActionSm::handleDefaultClassAction() []",
                                "void QosSnmp::ClassActionSm::handleDefaultClassPriority() []",
                                "void QosSnmp::ClassActionSm::handleClassAction(Kel::String) [p] cm1",
                                "void QosSnmp::PolicyActionSm::handleInitialized() []",
                                "void QosSnmp::ClassActionSm::handleClassPrio(U32) [i] 10",
                                "void QosSnmp::ClassPrioSm::handleInitialized() []",
                                "void QosSnmp::ClassPrioSm::handleCmapName() []",
                                "void QosSnmp::ClassActionSm::handleCmap(Kel::String) [p] cm9",
                                "void QosSnmp::ClassActionSm::doClose() []",
                                "void QosSnmp::PolicyActionSm::doClose() []",
                                "void QosSnmp::ClassPrioSm::doClose() []",
                            }));
}

TEST_F(ClassActionSmTest, HandleCmapBeforeInitializationAssertsOnlyThroughTheHandlersItCalls) {
  const auto sm = makeSm();
  sm->initializedIs(false);
  sm->handleCmap("unknown");
  sm->initializedIs(true);
  EXPECT_TRUE(rows().empty());
}

class ClassActionSmDeathTest : public ClassActionSmTest {};

TEST_F(ClassActionSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm();
  EXPECT_DEATH(sm->handleInitialized(),
               "ClassActionSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST_F(ClassActionSmDeathTest, HandlersBeforeInitializationAbort) {
  addClassAction(pmap_, "cm1", {});
  const auto sm = makeSm();
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleClassAction("cm1"), "handleClassAction.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleClassPrio(10), "handleClassPrio.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleDefaultClassAction(),
               "handleDefaultClassAction.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleDefaultClassPriority(),
               "handleDefaultClassPriority.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->handleCmap("cm1"), "handleClassAction.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->close(), "ClassActionSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
