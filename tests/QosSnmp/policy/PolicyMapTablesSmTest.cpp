#include "QosSnmp/policy/PolicyMapTablesSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
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

class PolicyMapTablesSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<QosSnmp::PolicyMapTablesSm> makeSm(Qos::MapType type = Qos::mapQos_) {
    return Kel::make<QosSnmp::PolicyMapTablesSm>(switch_.pmapType(type), switch_.cmapType(type),
                                                 switch_.qosHwStatus, slice_, switch_.qosMib);
  }

  // A policy map of mapQos with class cm1 (class map present) at priority
  // 10 setting the CoS; not yet in its type status.
  static Kel::Ptr<Qos::PolicyMapStatus> policyMapWithClass(const Kel::String& name) {
    auto pmap = Kel::make<Qos::PolicyMapStatus>(name);
    pmap->typeIs(Qos::mapQos_);
    addClassAction(pmap, "cm1", {Qos::actionSetCos_});
    addClassPrio(pmap, 10, "cm1");
    return pmap;
  }
  void publish(const Kel::Ptr<Qos::PolicyMapStatus>& pmap) {
    switch_.pmapType(pmap->type())->pmapIs(pmap->name(), pmap);
  }

  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_ = switch_.slice("FixedSystem");
  Kel::Ptr<Qos::ClassMapStatus> cm1_ = switch_.classMap(Qos::mapQos_, "cm1");
};

TEST_F(PolicyMapTablesSmTest, InitialScanMirrorsEveryPolicyMapWithItsClasses) {
  publish(policyMapWithClass("pm2"));
  publish(policyMapWithClass("pm1"));
  const AgentTrace trace;
  const auto sm = makeSm();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 PolicyMapTablesSm::handleInitialized()",
                               "8 PolicyMapTablesSm::handlePmap( pm1 )",
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "9 ClassActionSm::handleDefaultClassPriority() No cmapConfig exists",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetCos )",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                               "8 PolicyMapTablesSm::handlePmap( pm2 )",
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "9 ClassActionSm::handleDefaultClassPriority() No cmapConfig exists",
                               "8 ClassActionSm::handleClassAction( cm1 )",
                               "8 PolicyActionSm::handleInitialized()",
                               "8 PolicyActionSm::handlePolicyAction( actionSetCos )",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm1",
                           }));
  EXPECT_EQ(rows(), (Texts{
                        "policyMapTable (pm1, 1) pm1",
                        "policyMapTable (pm2, 1) pm2",
                        "policyMapClassTable (pm1, 1, 10) pm1 cm1",
                        "policyMapClassTable (pm2, 1, 10) pm2 cm1",
                        "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
                        "policyMapActionTable (pm2, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
                    }));
  EXPECT_EQ(sm->classActionSm().size(), 2U);
  EXPECT_EQ(sm->policyMapTableKey().size(), 2U);
  EXPECT_EQ(sm->type(), Qos::mapQos_);
}

TEST_F(PolicyMapTablesSmTest, AddedPolicyMapGetsItsClassAndActionRowsBeforeItsOwnRow) {
  switch_.classMap(Qos::mapQos_, "cm2");
  auto pmap = policyMapWithClass("pm1");
  pmap->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-default"));
  addClassPrio(pmap, 20, "cm2");
  const auto sm = makeSm();
  const MibTimeline timeline(*switch_.qosMib);
  publish(pmap);
  // While the child is being built its class and action rows appear, and
  // the policy-map row is not there yet.
  EXPECT_EQ(timeline.rowsAt("8 ClassPrioSm::handleInitialized()", 2),
            (Texts{
                "policyMapClassTable (pm1, 1, 10) pm1 cm1",
                "policyMapClassTable (pm1, 1, 3072) pm1 class-default",
                "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
            }));
  EXPECT_EQ(timeline.lines().back(), "8 Adding entry for cm2");
  EXPECT_EQ(rows(), (Texts{
                        "policyMapTable (pm1, 1) pm1",
                        "policyMapClassTable (pm1, 1, 10) pm1 cm1",
                        "policyMapClassTable (pm1, 1, 20) pm1 cm2",
                        "policyMapClassTable (pm1, 1, 3072) pm1 class-default",
                        "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
                    }));
  const QosSnmp::PolicyMapTableIndex index("pm1", Qos::mapQos_);
  EXPECT_TRUE(sm->policyMapTableKey().contains(index));
  ASSERT_NE(switch_.qosMib->policyMapTable(index), nullptr);
  EXPECT_EQ(switch_.qosMib->policyMapTable(index)->policyMapStatus, pmap);
}

TEST_F(PolicyMapTablesSmTest, DeletedPolicyMapLosesItsClassAndActionRowsBeforeItsOwnRow) {
  switch_.classMap(Qos::mapQos_, "cm2");
  auto pmap = policyMapWithClass("pm1");
  addClassPrio(pmap, 20, "cm2");
  publish(pmap);
  const auto sm = makeSm();
  const MibTimeline timeline(*switch_.qosMib);
  switch_.pmapType(Qos::mapQos_)->pmapDel("pm1");
  EXPECT_EQ(timeline.lines(), (Texts{
                                  "8 PolicyMapTablesSm::handlePmap( pm1 )",
                                  "8 ClassActionSm::doClose()",
                                  "8 PolicyActionSm::doClose()",
                                  "8 ClassPrioSm::doClose()",
                                  "8 Deleting entry in cmapNameToPrio: cm1",
                                  "8 ClassPrioSm::doClose()",
                                  "8 Deleting entry in cmapNameToPrio: cm2",
                              }));
  // The action rows and the first class row are gone while the policy-map
  // row is still there.
  EXPECT_EQ(timeline.rowsAt("8 ClassPrioSm::doClose()", 2), (Texts{
                                                                "policyMapTable (pm1, 1) pm1",
                                                                "policyMapClassTable (pm1, 1, 20) pm1 cm2",
                                                            }));
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(sm->classActionSm("pm1"), nullptr);
  EXPECT_TRUE(sm->policyMapTableKey().empty());
}

TEST_F(PolicyMapTablesSmTest, ChangeOfAPresentPolicyMapRewritesItsRowAndKeepsItsChild) {
  publish(policyMapWithClass("pm1"));
  const auto sm = makeSm();
  QosSnmp::ClassActionSm* child = sm->classActionSm("pm1");
  ASSERT_NE(child, nullptr);
  const Texts before = rows();
  // Taken away behind the machine's back, so that the re-write shows.
  switch_.qosMib->policyMapTableDel(QosSnmp::PolicyMapTableIndex("pm1", Qos::mapQos_));
  const AgentTrace trace;
  sm->handlePmap("pm1");
  EXPECT_EQ(trace.lines(), Texts{"8 PolicyMapTablesSm::handlePmap( pm1 )"});
  EXPECT_EQ(sm->classActionSm("pm1"), child);
  EXPECT_EQ(rows(), before);
}

TEST_F(PolicyMapTablesSmTest, PolicyMapReplacedUnderItsNameRaisesReinstantiation) {
  publish(policyMapWithClass("pm1"));
  const auto sm = makeSm();
  EXPECT_THROW(publish(policyMapWithClass("pm1")), Kel::MutatorReinstantiatingException);
}

TEST_F(PolicyMapTablesSmTest, NoPolicyMapIsSkippedByName) {
  publish(policyMapWithClass("copp-system-drop"));
  const auto sm = makeSm();
  EXPECT_NE(switch_.qosMib->policyMapTable(QosSnmp::PolicyMapTableIndex("copp-system-drop", Qos::mapQos_)),
            nullptr);
  EXPECT_NE(sm->classActionSm("copp-system-drop"), nullptr);
}

TEST_F(PolicyMapTablesSmTest, LongNameIsShortenedInTheIndexWhileTheChildKeepsTheFullName) {
  const Kel::String name("a-policy-map-name-much-longer-than-thirty-characters");
  publish(policyMapWithClass(name));
  const auto sm = makeSm();
  const QosSnmp::PolicyMapTableIndex index(QosSnmp::uniqueId(name), Qos::mapQos_);
  EXPECT_LE(index.name().size(), QosSnmp::kUniqueIdMaxLength);
  EXPECT_NE(switch_.qosMib->policyMapTable(index), nullptr);
  EXPECT_NE(sm->classActionSm(name), nullptr);
  switch_.pmapType(Qos::mapQos_)->pmapDel(name);
  EXPECT_TRUE(rows().empty());
}

TEST_F(PolicyMapTablesSmTest, IndexTakesTheTypeOfTheTypeStatus) {
  auto pmap = policyMapWithClass("copp-system-policy");
  pmap->typeIs(Qos::mapControlPlane_);
  switch_.pmapType(Qos::mapControlPlane_)->pmapIs("copp-system-policy", pmap);
  switch_.classMap(Qos::mapControlPlane_, "cm1");
  const auto sm = makeSm(Qos::mapControlPlane_);
  EXPECT_EQ(sm->type(), Qos::mapControlPlane_);
  EXPECT_EQ(rows(), (Texts{
                        "policyMapTable (copp-system-policy, 0) copp-system-policy",
                        "policyMapClassTable (copp-system-policy, 0, 10) copp-system-policy cm1",
                    }));
}

TEST_F(PolicyMapTablesSmTest, ClassMapsOfTheTypeReachTheChildren) {
  auto pmap = policyMapWithClass("pm1");
  addClassAction(pmap, "cm2", {Qos::actionPolice_});
  addClassPrio(pmap, 20, "cm2");
  publish(pmap);
  const auto sm = makeSm();
  EXPECT_EQ(QosSnmpTest::tableRows(*switch_.qosMib, "policyMapClassTable"),
            Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm1"});
  switch_.classMap(Qos::mapQos_, "cm2");
  EXPECT_EQ(rows(), (Texts{
                        "policyMapTable (pm1, 1) pm1",
                        "policyMapClassTable (pm1, 1, 10) pm1 cm1",
                        "policyMapClassTable (pm1, 1, 20) pm1 cm2",
                        "policyMapActionTable (pm1, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
                        "policyMapActionTable (pm1, 1, cm2, 6) cm2 actionPolice - hw FixedSystem",
                    }));
}

TEST_F(PolicyMapTablesSmTest, ChildIsBuiltFromThePolicyMapAndTheMachinesInputs) {
  publish(policyMapWithClass("pm1"));
  const auto sm = makeSm();
  QosSnmp::ClassActionSm* child = sm->classActionSm("pm1");
  ASSERT_NE(child, nullptr);
  const Kel::Ptr<const Qos::PolicyMapStatus> pmap = switch_.pmapType(Qos::mapQos_)->pmap("pm1");
  EXPECT_EQ(child->arguments(),
            std::make_tuple(pmap, Kel::Ptr<const Qos::ClassMapTypeStatus>(switch_.cmapType(Qos::mapQos_)),
                            Kel::Ptr<const Qos::HwStatus>(switch_.qosHwStatus),
                            Kel::Ptr<const Qos::SliceHwStatus>(slice_), switch_.qosMib));
  EXPECT_EQ(
      sm->classActionSmIs(pmap, switch_.cmapType(Qos::mapQos_), switch_.qosHwStatus, slice_, switch_.qosMib),
      child);
  EXPECT_THROW(
      sm->classActionSmIs(pmap, switch_.cmapType(Qos::mapQos_), switch_.qosHwStatus, nullptr, switch_.qosMib),
      Kel::MutatorReinstantiatingException);
}

TEST_F(PolicyMapTablesSmTest, ClassActionSmIsNamesANullArgument) {
  const auto sm = makeSm();
  try {
    sm->classActionSmIs(nullptr, switch_.cmapType(Qos::mapQos_), switch_.qosHwStatus, slice_, switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "pmap");
  }
  try {
    sm->classActionSmIs(policyMapWithClass("pm1"), switch_.cmapType(Qos::mapQos_), switch_.qosHwStatus,
                        slice_, nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "qosMib");
  }
  EXPECT_TRUE(sm->classActionSm().empty());
}

TEST_F(PolicyMapTablesSmTest, WithoutTypeStatusThereIsNoReactorAndTypeIsZero) {
  const AgentTrace trace;
  const auto sm = Kel::make<QosSnmp::PolicyMapTablesSm>(nullptr, switch_.cmapType(Qos::mapQos_),
                                                        switch_.qosHwStatus, slice_, switch_.qosMib);
  EXPECT_EQ(sm->type(), Qos::MapType{});
  EXPECT_EQ(sm->policyMapTypeStatus(), nullptr);
  switch_.qosMib->policyMapTableIs(QosSnmp::PolicyMapTableIndex("pm1", Qos::mapControlPlane_), nullptr);
  sm->handlePmap("pm1");
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 PolicyMapTablesSm::handleInitialized()",
                               "8 PolicyMapTablesSm::handlePmap( pm1 )",
                           }));
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::PolicyMapTablesSm::KelPolicyMapTypeStatus"), 0);
}

TEST_F(PolicyMapTablesSmTest, DoCloseDropsEveryChildBeforeAnyPolicyMapRow) {
  publish(policyMapWithClass("pm1"));
  publish(policyMapWithClass("pm2"));
  const auto sm = makeSm();
  const MibTimeline timeline(*switch_.qosMib);
  sm->close();
  EXPECT_EQ(timeline.lines(), (Texts{
                                  "8 PolicyMapTablesSm::doClose()",
                                  "8 ClassActionSm::doClose()",
                                  "8 PolicyActionSm::doClose()",
                                  "8 ClassPrioSm::doClose()",
                                  "8 Deleting entry in cmapNameToPrio: cm1",
                                  "8 ClassActionSm::doClose()",
                                  "8 PolicyActionSm::doClose()",
                                  "8 ClassPrioSm::doClose()",
                                  "8 Deleting entry in cmapNameToPrio: cm1",
                              }));
  // pm1's child is gone with all its rows, while both policy-map rows stay.
  EXPECT_EQ(timeline.rowsAt("8 ClassActionSm::doClose()", 2),
            (Texts{
                "policyMapTable (pm1, 1) pm1",
                "policyMapTable (pm2, 1) pm2",
                "policyMapClassTable (pm2, 1, 10) pm2 cm1",
                "policyMapActionTable (pm2, 1, cm1, 2) cm1 actionSetCos - hw FixedSystem",
            }));
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(sm->classActionSm().empty());
  EXPECT_TRUE(sm->policyMapTableKey().empty());
}

TEST_F(PolicyMapTablesSmTest, ClosingRemovesExactlyTheRowsItAndItsChildrenAdded) {
  // Rows of other writers: another type's policy map, and the static
  // control-plane class rows.
  switch_.qosMib->policyMapTableIs(QosSnmp::PolicyMapTableIndex("pm1", Qos::mapControlPlane_), nullptr);
  switch_.qosMib->policyMapClassTableIs(QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapControlPlane_, 6146),
                                        nullptr, "cp");
  switch_.qosMib->policyMapActionTableIs(QosSnmp::PolicyMapActionTableIndex("pm1", 1, "cm1", 1), nullptr,
                                         nullptr, nullptr, nullptr, nullptr);
  const Texts before = rows();
  publish(policyMapWithClass("pm1"));
  const auto sm = makeSm();
  auto pmap = policyMapWithClass("pm2");
  pmap->classDefaultIs(Kel::make<Qos::ClassMapStatus>("class-default"));
  pmap->defaultClassActionIs(QosSnmpTest::classActionOf("class-default", {Qos::actionSetDscp_}));
  publish(pmap);
  EXPECT_EQ(rows().size(), before.size() + 8);
  sm->close();
  EXPECT_EQ(rows(), before);
}

TEST_F(PolicyMapTablesSmTest, ClosedMachineIgnoresNotifications) {
  const auto sm = makeSm();
  sm->close();
  const AgentTrace trace;
  publish(policyMapWithClass("pm1"));
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(PolicyMapTablesSmTest, ReleasingTheLastReferenceFreesTheWholeTree) {
  publish(policyMapWithClass("pm1"));
  makeSm();
  EXPECT_TRUE(rows().empty());
  for (const char* type : {"QosSnmp::PolicyMapTablesSm", "QosSnmp::PolicyMapTablesSm::KelPolicyMapTypeStatus",
                           "QosSnmp::ClassActionSm", "QosSnmp::PolicyActionSm", "QosSnmp::ClassPrioSm"}) {
    EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf(type), 0) << type;
  }
}

TEST_F(PolicyMapTablesSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  auto pmap = Kel::make<Qos::PolicyMapStatus>("pm1");
  pmap->typeIs(Qos::mapQos_);
  publish(pmap);
  const RingCapture ring;
  const auto sm = makeSm();
  switch_.pmapType(Qos::mapQos_)->pmapDel("pm1");
  sm->close();
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::PolicyMapTablesSm::handleInitialized() []",
                                "void QosSnmp::PolicyMapTablesSm::handlePmap(Kel::String) [p] pm1",
                                "void QosSnmp::ClassActionSm::handleInitialized() []",
                                "void QosSnmp::ClassActionSm::handleDefaultClassAction() []",
                                "void QosSnmp::ClassActionSm::handleDefaultClassPriority() []",
                                "void QosSnmp::PolicyMapTablesSm::handlePmap(Kel::String) [p] pm1",
                                "void QosSnmp::ClassActionSm::doClose() []",
                                "void QosSnmp::PolicyMapTablesSm::doClose() []",
                            }));
}

class PolicyMapTablesSmDeathTest : public PolicyMapTablesSmTest {};

TEST_F(PolicyMapTablesSmDeathTest, SecondInitializationAborts) {
  const auto sm = makeSm();
  EXPECT_DEATH(sm->handleInitialized(),
               "PolicyMapTablesSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST_F(PolicyMapTablesSmDeathTest, HandlersBeforeInitializationAbort) {
  const auto sm = makeSm();
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handlePmap("pm1"),
               "PolicyMapTablesSm.cpp:[0-9]+: .*handlePmap.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->close(),
               "PolicyMapTablesSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
