#include "QosSnmp/policy/PolicyActionSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/policy/PolicyMapTestSupport.h"
#include "kel/AllocTrackTypeInfo.h"

namespace {

using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

class PolicyActionSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<QosSnmp::PolicyActionSm> makeSm() {
    return Kel::make<QosSnmp::PolicyActionSm>(pmap_, classAction_, switch_.qosHwStatus, slice_,
                                              switch_.qosMib);
  }
  Kel::Ptr<QosSnmp::PolicyActionSm> makeSmWithoutClassAction() {
    return Kel::make<QosSnmp::PolicyActionSm>(pmap_, nullptr, switch_.qosHwStatus, slice_, switch_.qosMib);
  }
  Texts actionRows() const { return QosSnmpTest::tableRows(*switch_.qosMib, "policyMapActionTable"); }
  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::PolicyMapStatus> pmap_ = switch_.policyMap(Qos::mapQos_, "pm1");
  Kel::Ptr<Qos::ClassAction> classAction_ = Kel::make<Qos::ClassAction>("cm1");
  Kel::Ptr<Qos::SliceHwStatus> slice_ = switch_.slice("FixedSystem");
};

TEST_F(PolicyActionSmTest, InitialScanAddsOneRowPerActionInOrder) {
  classAction_->policyActionIs(Qos::actionPolice_, Kel::make<Qos::Action>(Qos::actionPolice_));
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetDscp )",
                               "8 PolicyActionSm::handlePolicyAction( actionPolice )",
                           }));
  EXPECT_EQ(rows(), (Texts{
                        "policyMapActionTable (pm1, 1, cm1, 3) cm1 actionSetDscp - hw FixedSystem",
                        "policyMapActionTable (pm1, 1, cm1, 6) cm1 actionPolice - hw FixedSystem",
                    }));
  EXPECT_EQ(sm->policyMapActionTableKey().size(), 2U);
}

TEST_F(PolicyActionSmTest, RowHoldsTheEntitiesAndNoClassMapHwStatus) {
  const auto action = Kel::make<Qos::Action>(Qos::actionSetCos_);
  classAction_->policyActionIs(Qos::actionSetCos_, action);
  const auto sm = makeSm();
  const QosSnmp::PolicyMapActionTableRow* row =
      switch_.qosMib->policyMapActionTable(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 2));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->classAction, classAction_);
  EXPECT_EQ(row->action, action);
  EXPECT_EQ(row->classMapHwStatus, nullptr);
  EXPECT_EQ(row->hwStatus, switch_.qosHwStatus);
  EXPECT_EQ(row->sliceHwStatus, slice_);
}

TEST_F(PolicyActionSmTest, ClassActionWithoutActionsYieldsNoRows) {
  const auto sm = makeSm();
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(sm->policyMapActionTableKey().empty());
}

TEST_F(PolicyActionSmTest, AddedActionAddsItsRow) {
  const auto sm = makeSm();
  const AgentTrace trace;
  classAction_->policyActionIs(Qos::actionSetTc_, Kel::make<Qos::Action>(Qos::actionSetTc_));
  EXPECT_EQ(trace.lines(), Texts{"8 PolicyActionSm::handlePolicyAction( actionSetTc )"});
  EXPECT_EQ(actionRows(), Texts{"policyMapActionTable (pm1, 1, cm1, 4) cm1 actionSetTc - hw FixedSystem"});
}

TEST_F(PolicyActionSmTest, RemovingOneActionTypeRemovesExactlyThatRow) {
  classAction_->policyActionIs(Qos::actionSetShape_, Kel::make<Qos::Action>(Qos::actionSetShape_));
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  classAction_->policyActionIs(Qos::actionPolice_, Kel::make<Qos::Action>(Qos::actionPolice_));
  const auto sm = makeSm();
  classAction_->policyActionDel(Qos::actionSetDscp_);
  EXPECT_EQ(actionRows(), (Texts{
                              "policyMapActionTable (pm1, 1, cm1, 0) cm1 actionSetShape - hw FixedSystem",
                              "policyMapActionTable (pm1, 1, cm1, 6) cm1 actionPolice - hw FixedSystem",
                          }));
  EXPECT_FALSE(
      sm->policyMapActionTableKey().contains(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 3)));
  EXPECT_EQ(sm->policyMapActionTableKey().size(), 2U);
}

TEST_F(PolicyActionSmTest, ChangedActionRewritesItsRow) {
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  const auto sm = makeSm();
  const auto replacement = Kel::make<Qos::Action>(Qos::actionSetDscp_);
  classAction_->policyActionIs(Qos::actionSetDscp_, replacement);
  const QosSnmp::PolicyMapActionTableRow* row =
      switch_.qosMib->policyMapActionTable(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 3));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->action, replacement);
  EXPECT_EQ(actionRows().size(), 1U);
  EXPECT_EQ(sm->policyMapActionTableKey().size(), 1U);
}

TEST_F(PolicyActionSmTest, RemovedActionDeletesItsIndexEvenWhenAnotherWriterAddedTheRow) {
  const auto sm = makeSm();
  const QosSnmp::PolicyMapActionTableIndex index("pm1", 1, "cm1", Qos::actionSetTc_);
  switch_.qosMib->policyMapActionTableIs(index, classAction_, nullptr, nullptr, nullptr, nullptr);
  sm->handlePolicyAction(Qos::actionSetTc_);
  EXPECT_TRUE(actionRows().empty());
}

TEST_F(PolicyActionSmTest, LongNamesAreShortenedInTheIndex) {
  const Kel::String pmapName("a-policy-map-name-much-longer-than-thirty-characters");
  const Kel::String cmapName("a-class-map-name-also-much-longer-than-thirty-characters");
  const auto pmap = switch_.policyMap(Qos::mapQos_, pmapName);
  const auto classAction = QosSnmpTest::classActionOf(cmapName, {Qos::actionSetDscp_});
  const auto sm =
      Kel::make<QosSnmp::PolicyActionSm>(pmap, classAction, switch_.qosHwStatus, slice_, switch_.qosMib);
  const QosSnmp::PolicyMapActionTableIndex index(QosSnmp::uniqueId(pmapName), 1, QosSnmp::uniqueId(cmapName),
                                                 3);
  EXPECT_LE(index.pmapName().size(), QosSnmp::kUniqueIdMaxLength);
  EXPECT_LE(index.cmapName().size(), QosSnmp::kUniqueIdMaxLength);
  EXPECT_NE(switch_.qosMib->policyMapActionTable(index), nullptr);
  EXPECT_EQ(actionRows().size(), 1U);
}

TEST_F(PolicyActionSmTest, ControlPlaneTypeGoesIntoTheIndexAsItsNumber) {
  const auto pmap = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  const auto classAction = QosSnmpTest::classActionOf("cm1", {Qos::actionPolice_});
  const auto sm =
      Kel::make<QosSnmp::PolicyActionSm>(pmap, classAction, switch_.qosHwStatus, slice_, switch_.qosMib);
  EXPECT_EQ(actionRows(),
            Texts{"policyMapActionTable (copp-system-policy, 0, cm1, 6) cm1 actionPolice - hw FixedSystem"});
}

TEST_F(PolicyActionSmTest, WithoutPolicyMapTheIndexHasAnEmptyNameAndTypeZero) {
  classAction_->policyActionIs(Qos::actionSetCos_, Kel::make<Qos::Action>(Qos::actionSetCos_));
  const auto sm = Kel::make<QosSnmp::PolicyActionSm>(nullptr, classAction_, nullptr, nullptr, switch_.qosMib);
  EXPECT_EQ(actionRows(), Texts{"policyMapActionTable (, 0, cm1, 2) cm1 actionSetCos - - -"});
  sm->close();
  EXPECT_TRUE(rows().empty());
}

TEST_F(PolicyActionSmTest, WithoutClassActionThereIsNoReactorAndNoRow) {
  const AgentTrace trace;
  const auto sm = makeSmWithoutClassAction();
  EXPECT_EQ(sm->classAction(), nullptr);
  EXPECT_EQ(sm->classMapName(), Kel::String());
  sm->handlePolicyAction(Qos::actionSetDscp_);
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetDscp )",
                           }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyActionSm::KelClassAction"), 0);
}

TEST_F(PolicyActionSmTest, ClassMapNameIsTheClassActionsName) {
  const auto sm = makeSm();
  EXPECT_EQ(sm->classMapName(), Kel::String("cm1"));
  EXPECT_EQ(sm->arguments(), std::make_tuple(Kel::Ptr<const Qos::PolicyMapStatus>(pmap_),
                                             Kel::Ptr<const Qos::ClassAction>(classAction_),
                                             Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                                             Kel::Ptr<const Qos::SliceHwStatus>(slice_), switch_.qosMib));
}

TEST_F(PolicyActionSmTest, ClosingRemovesExactlyTheRowsItAdded) {
  // Rows of other writers: another class of the same policy map, and a
  // hardware row of this class under an action type the class does not hold.
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm2", 3), nullptr,
                                         nullptr, nullptr, nullptr, nullptr);
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 1), nullptr,
                                         nullptr, nullptr, nullptr, nullptr);
  const Texts before = rows();
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  classAction_->policyActionIs(Qos::actionPolice_, Kel::make<Qos::Action>(Qos::actionPolice_));
  const auto sm = makeSm();
  classAction_->policyActionIs(Qos::actionSetTc_, Kel::make<Qos::Action>(Qos::actionSetTc_));
  EXPECT_EQ(rows().size(), before.size() + 3);
  const AgentTrace trace;
  sm->close();
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(sm->policyMapActionTableKey().empty());
  EXPECT_EQ(trace.lines(), Texts{"8 PolicyActionSm::doClose()"});
}

TEST_F(PolicyActionSmTest, ClosedMachineIgnoresNotifications) {
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(PolicyActionSmTest, ReleasingTheLastReferenceClosesAndFreesTheMachine) {
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  makeSm();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyActionSm"), 0);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyActionSm::KelClassAction"), 0);
}

TEST_F(PolicyActionSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  classAction_->policyActionIs(Qos::actionSetDscp_, Kel::make<Qos::Action>(Qos::actionSetDscp_));
  const RingCapture ring;
  const auto sm = makeSm();
  classAction_->policyActionDel(Qos::actionSetDscp_);
  sm->close();
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::PolicyActionSm::handleInitialized() []",
                                "void QosSnmp::PolicyActionSm::handlePolicyAction(Qos::ActionType) [i] 3",
                                "void QosSnmp::PolicyActionSm::handlePolicyAction(Qos::ActionType) [i] 3",
                                "void QosSnmp::PolicyActionSm::doClose() []",
                            }));
}

TEST(PolicyActionSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::PolicyActionSm>(nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  EXPECT_DEATH(sm->handleInitialized(),
               "PolicyActionSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST(PolicyActionSmDeathTest, HandlerBeforeInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::PolicyActionSm>(nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handlePolicyAction(Qos::actionSetDscp_),
               "PolicyActionSm.cpp:[0-9]+: .*handlePolicyAction.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

TEST(PolicyActionSmDeathTest, CloseBeforeInitializationAborts) {
  TestSwitch testSwitch;
  const auto sm = Kel::make<QosSnmp::PolicyActionSm>(nullptr, nullptr, nullptr, nullptr, testSwitch.qosMib);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->close(), "PolicyActionSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
