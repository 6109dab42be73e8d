#include "QosSnmp/policy/ClassPrioSm.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/policy/ClassActionSm.h"
#include "QosSnmp/policy/PolicyMapTestSupport.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpTest::addClassPrio;
using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

// Class priorities live in a ClassActionSm, their parent: the tests build
// the parent over pm1 and look its ClassPrioSm children up.
class ClassPrioSmTest : public ::testing::Test {
 protected:
  Kel::Ptr<QosSnmp::ClassActionSm> makeParent() {
    return Kel::make<QosSnmp::ClassActionSm>(pmap_, switch_.cmapType(Qos::mapQos_), switch_.qosHwStatus,
                                             nullptr, switch_.qosMib);
  }
  Texts rows() const { return QosSnmpTest::mibRows(*switch_.qosMib); }

  TestSwitch switch_;
  Kel::Ptr<Qos::PolicyMapStatus> pmap_ = switch_.policyMap(Qos::mapQos_, "pm1");
};

TEST_F(ClassPrioSmTest, ExistingClassMapGetsItsRowAndLinksBothMaps) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  QosSnmp::ClassPrioSm* sm = parent->classPrioSm(10);
  ASSERT_NE(sm, nullptr);
  EXPECT_EQ(sm->prio(), 10U);
  EXPECT_EQ(sm->cmapName(), Kel::String("cm1"));
  EXPECT_EQ(sm->classPrio(), classPrio.get());
  EXPECT_EQ(sm->index(), QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapQos_, 10));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm1"});
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 10U);
  EXPECT_EQ(parent->prioToCmapName(10), Kel::String("cm1"));
  const QosSnmp::PolicyMapClassTableRow* row =
      switch_.qosMib->policyMapClassTable(QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapQos_, 10));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->policyMapStatus, pmap_);
}

TEST_F(ClassPrioSmTest, MissingClassMapLinksTheMapsButWritesNoRow) {
  addClassPrio(pmap_, 10, "cm1");
  const AgentTrace trace;
  const auto parent = makeParent();
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleInitialized()",
                               "8 ClassActionSm::handleDefaultClassAction()",
                               "8 ClassActionSm::handleDefaultClassPriority()",
                               "9 ClassActionSm::handleDefaultClassPriority() No cmapConfig exists",
                               "8 ClassActionSm::handleClassPrio( 10 )",
                               "8 ClassPrioSm::handleInitialized()",
                               "8 ClassPrioSm::handleCmapName()",
                           }));
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 10U);
  EXPECT_EQ(parent->prioToCmapName(10), Kel::String("cm1"));
}

TEST_F(ClassPrioSmTest, LongClassMapNameIsShortenedInTheRowAndTheTrace) {
  const Kel::String name("a-class-map-name-much-longer-than-thirty-characters");
  switch_.classMap(Qos::mapQos_, name);
  addClassPrio(pmap_, 10, name);
  const AgentTrace trace;
  const auto parent = makeParent();
  const Snmp::String shortName = QosSnmp::uniqueId(name);
  const Texts lines = trace.lines();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "8 Adding entry for " + shortName.stringValue());
  const QosSnmp::PolicyMapClassTableRow* row =
      switch_.qosMib->policyMapClassTable(QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapQos_, 10));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->cmapName, shortName);
  // The name maps keep the full name.
  EXPECT_EQ(parent->cmapNameToPrio(name), 10U);
}

TEST_F(ClassPrioSmTest, EmptyClassMapNameChangesNothing) {
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassPrio(pmap_, 10, "");
  const auto parent = makeParent();
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(parent->cmapNameToPrio().empty());
  EXPECT_TRUE(parent->prioToCmapName().empty());
}

TEST_F(ClassPrioSmTest, NameTurningEmptyLeavesTheRowAndTheMapsAsTheyWere) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  const AgentTrace trace;
  classPrio->cmapNameIs("");
  EXPECT_EQ(trace.lines(), Texts{"8 ClassPrioSm::handleCmapName()"});
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm1"});
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 10U);
  EXPECT_EQ(parent->prioToCmapName(10), Kel::String("cm1"));
}

TEST_F(ClassPrioSmTest, RenamingUnlinksTheOldNameSoItsClassMapNoLongerReachesThePriority) {
  switch_.classMap(Qos::mapQos_, "cm1");
  switch_.classMap(Qos::mapQos_, "cm2");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  AgentTrace trace;
  classPrio->cmapNameIs("cm2");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm2",
                           }));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm2"});
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 0U);
  EXPECT_FALSE(parent->cmapNameToPrio().contains("cm1"));
  EXPECT_EQ(parent->cmapNameToPrio("cm2"), 10U);
  EXPECT_EQ(parent->prioToCmapName(10), Kel::String("cm2"));
  EXPECT_EQ(parent->prioToCmapName().size(), 1U);

  trace.clear();
  switch_.cmapType(Qos::mapQos_)->cmapDel("cm1");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleCmap( cm1 )",
                               "8 cmapNameToPrio is: 0",
                           }));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm2"});
}

TEST_F(ClassPrioSmTest, RenamingToAMissingClassMapRemovesTheRowUntilItIsAdded) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  classPrio->cmapNameIs("cm2");
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(parent->cmapNameToPrio("cm2"), 10U);
  const AgentTrace trace;
  switch_.classMap(Qos::mapQos_, "cm2");
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassActionSm::handleCmap( cm2 )",
                               "8 cmapNameToPrio is: 10",
                               "8 ClassPrioSm::handleCmapName()",
                               "8 Adding entry for cm2",
                           }));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 10) pm1 cm2"});
}

TEST_F(ClassPrioSmTest, ClassMapSharedByTwoPrioritiesReachesOnlyTheOneLinkedLast) {
  addClassPrio(pmap_, 10, "cm1");
  addClassPrio(pmap_, 20, "cm1");
  const auto parent = makeParent();
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 20U);
  EXPECT_EQ(parent->prioToCmapName(10), Kel::String("cm1"));
  EXPECT_EQ(parent->prioToCmapName(20), Kel::String("cm1"));
  switch_.classMap(Qos::mapQos_, "cm1");
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 20) pm1 cm1"});
}

TEST_F(ClassPrioSmTest, CloseUnlinksBothMapsAndRemovesTheRow) {
  switch_.classMap(Qos::mapQos_, "cm1");
  switch_.classMap(Qos::mapQos_, "cm2");
  addClassPrio(pmap_, 10, "cm1");
  addClassPrio(pmap_, 20, "cm2");
  const auto parent = makeParent();
  const AgentTrace trace;
  parent->classPrioSmDel(10);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassPrioSm::doClose()",
                               "8 Deleting entry in cmapNameToPrio: cm1",
                           }));
  EXPECT_EQ(rows(), Texts{"policyMapClassTable (pm1, 1, 20) pm1 cm2"});
  EXPECT_FALSE(parent->cmapNameToPrio().contains("cm1"));
  EXPECT_FALSE(parent->prioToCmapName().contains(10));
  EXPECT_EQ(parent->cmapNameToPrio("cm2"), 20U);
  EXPECT_EQ(parent->prioToCmapName(20), Kel::String("cm2"));
}

TEST_F(ClassPrioSmTest, CloseAfterTheNameTurnedEmptyUnlinksTheEmptyName) {
  switch_.classMap(Qos::mapQos_, "cm1");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  classPrio->cmapNameIs("");
  const AgentTrace trace;
  parent->classPrioSmDel(10);
  EXPECT_EQ(trace.lines(), (Texts{
                               "8 ClassPrioSm::doClose()",
                               "8 Deleting entry in cmapNameToPrio: ",
                           }));
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(parent->prioToCmapName().empty());
  EXPECT_EQ(parent->cmapNameToPrio("cm1"), 10U);
}

TEST_F(ClassPrioSmTest, ClosingRemovesOnlyItsOwnRow) {
  // Another policy map's row at the same priority, and another priority of
  // this policy map written by someone else.
  switch_.qosMib->policyMapClassTableIs(QosSnmp::PolicyMapClassTableIndex("pm2", Qos::mapQos_, 10), nullptr,
                                        "x");
  switch_.qosMib->policyMapClassTableIs(QosSnmp::PolicyMapClassTableIndex("pm1", Qos::mapQos_, 11), nullptr,
                                        "y");
  const Texts before = rows();
  switch_.classMap(Qos::mapQos_, "cm1");
  addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  EXPECT_EQ(rows().size(), before.size() + 1);
  parent->classPrioSmDel(10);
  EXPECT_EQ(rows(), before);
}

TEST_F(ClassPrioSmTest, ClassPrioSmIsKeepsAChildBuiltFromTheSameArguments) {
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  QosSnmp::ClassPrioSm* child = parent->classPrioSm(10);
  ASSERT_NE(child, nullptr);
  const QosSnmp::PolicyMapClassTableIndex index("pm1", Qos::mapQos_, 10);
  EXPECT_EQ(child->arguments(),
            std::make_tuple(Kel::Ptr<const Qos::ClassPriority>(classPrio), index,
                            Kel::Ptr<const Qos::PolicyMapStatus>(pmap_), switch_.qosMib, parent.get()));
  EXPECT_EQ(parent->classPrioSmIs(classPrio, index, pmap_, switch_.qosMib), child);
  EXPECT_THROW(parent->classPrioSmIs(classPrio, QosSnmp::PolicyMapClassTableIndex("pm9", Qos::mapQos_, 10),
                                     pmap_, switch_.qosMib),
               Kel::MutatorReinstantiatingException);
}

TEST_F(ClassPrioSmTest, ClassPriorityReplacedUnderItsPriorityRaisesReinstantiation) {
  addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  auto replacement = Kel::make<Qos::ClassPriority>(10);
  replacement->cmapNameIs("cm1");
  EXPECT_THROW(pmap_->classPrioIs(10, replacement), Kel::MutatorReinstantiatingException);
}

TEST_F(ClassPrioSmTest, ClassPrioSmIsNamesANullArgument) {
  const auto parent = makeParent();
  const QosSnmp::PolicyMapClassTableIndex index("pm1", Qos::mapQos_, 10);
  try {
    parent->classPrioSmIs(nullptr, index, pmap_, switch_.qosMib);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "classPrio");
  }
  try {
    parent->classPrioSmIs(Kel::make<Qos::ClassPriority>(10), index, pmap_, nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "qosMib");
  }
  EXPECT_TRUE(parent->classPrioSm().empty());
}

TEST_F(ClassPrioSmTest, ClosedPriorityIgnoresItsClassPriority) {
  switch_.classMap(Qos::mapQos_, "cm2");
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  QosSnmp::ClassPrioSm* sm = parent->classPrioSm(10);
  ASSERT_NE(sm, nullptr);
  sm->close();
  const AgentTrace trace;
  classPrio->cmapNameIs("cm2");
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_TRUE(rows().empty());
}

TEST_F(ClassPrioSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  const auto classPrio = addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  const RingCapture ring;
  classPrio->cmapNameIs("cm2");
  parent->classPrioSmDel(10);
  EXPECT_EQ(ring.entries(), (Texts{
                                "void QosSnmp::ClassPrioSm::handleCmapName() []",
                                "void QosSnmp::ClassPrioSm::doClose() []",
                            }));
}

class ClassPrioSmDeathTest : public ClassPrioSmTest {};

TEST_F(ClassPrioSmDeathTest, SecondInitializationAborts) {
  addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  QosSnmp::ClassPrioSm* sm = parent->classPrioSm(10);
  ASSERT_NE(sm, nullptr);
  EXPECT_DEATH(sm->handleInitialized(),
               "ClassPrioSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST_F(ClassPrioSmDeathTest, HandlersBeforeInitializationAbort) {
  addClassPrio(pmap_, 10, "cm1");
  const auto parent = makeParent();
  QosSnmp::ClassPrioSm* sm = parent->classPrioSm(10);
  ASSERT_NE(sm, nullptr);
  sm->initializedIs(false);
  EXPECT_DEATH(sm->handleCmapName(),
               "ClassPrioSm.cpp:[0-9]+: .*handleCmapName.*: Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(sm->close(), "ClassPrioSm.cpp:[0-9]+: .*doClose.*: Assertion `initialized\\(\\)' failed");
  sm->initializedIs(true);
}

}  // namespace
