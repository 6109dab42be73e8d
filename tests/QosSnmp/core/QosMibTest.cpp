#include "QosSnmp/core/QosMib.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/core/UniqueId.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Make.h"

namespace QosSnmp {
namespace {

using Qos::mapControlPlane_;
using Qos::mapQos_;

// The names of a table's rows, in iteration order.
template <typename Rows>
std::vector<std::string> namesOf(const Rows& rows) {
  std::vector<std::string> names;
  for (const auto& [index, row] : rows) {
    names.push_back(index.name().stringValue());
  }
  return names;
}

class QosMibTest : public ::testing::Test {
 protected:
  // A model with one row in every table and an entry in both maps.
  void fillEveryTable() {
    mib_->classMapTableIs(cmapIndex_, cmap_);
    mib_->classMapMatchTableIs({"cm-voice", mapQos_, 1}, cmap_, match_);
    mib_->cmapByStaticTypeIs(Qos::cpStaticBgp_, cmap_);
    mib_->policyMapTableIs({"pm-edge", mapQos_}, pmap_);
    mib_->policyMapClassTableIs({"pm-edge", mapQos_, 1}, pmap_, "cm-voice");
    mib_->policyMapActionTableIs(actionIndex_, classAction_, action_, classMapHwStatus_, hwStatus_, slice_);
    mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
    mib_->qosPolicerStatsTableIs({"pm-edge", 1, "cm-voice", 1000001}, policer_);
    mib_->servicePolicyTableIs({1000001, 1}, "pm-edge", servicePolicyKey_);
    mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
    mib_->ecnQueueCounterTableIs({1000001, 0}, ethernet1_, slice_, ecnCounterTable_, true);
    mib_->intfIdToifIndexIs(ethernet1_, 1000001);
  }

  const Kel::Ptr<QosMib> mib_ = Kel::make<QosMib>();
  const Kel::Ptr<Qos::ClassMapStatus> cmap_ = Kel::make<Qos::ClassMapStatus>("cm-voice");
  const Kel::Ptr<Qos::ClassMapMatch> match_ = Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_);
  const Kel::Ptr<Qos::PolicyMapStatus> pmap_ = Kel::make<Qos::PolicyMapStatus>("pm-edge");
  const Kel::Ptr<Qos::ClassAction> classAction_ = Kel::make<Qos::ClassAction>("cm-voice");
  const Kel::Ptr<Qos::Action> action_ = Kel::make<Qos::Action>(Qos::actionPolice_);
  const Kel::Ptr<Qos::ClassMapHwStatus> classMapHwStatus_ = Kel::make<Qos::ClassMapHwStatus>("cm-voice");
  const Kel::Ptr<Qos::HwStatus> hwStatus_ = Kel::make<Qos::HwStatus>();
  const Kel::Ptr<Qos::SliceHwStatus> slice_ = Kel::make<Qos::SliceHwStatus>("FixedSystem");
  const Kel::Ptr<Qos::Counter> counter_ = Kel::make<Qos::Counter>("cm-voice");
  const Kel::Ptr<Qos::PolicerHwStatus> policer_ = Kel::make<Qos::PolicerHwStatus>("Ethernet1");
  const Kel::Ptr<Qos::ChipCounter> chipCounter_ = Kel::make<Qos::ChipCounter>("chip0");
  const Kel::Ptr<Qos::EcnCounterTable> ecnCounterTable_ = Kel::make<Qos::EcnCounterTable>();
  const Qos::ServicePolicyKey servicePolicyKey_{mapQos_, Qos::directionInput_, "pm-edge"};
  const Pellix::IntfId ethernet1_{Kel::String("Ethernet1")};

  const ClassMapTableIndex cmapIndex_{"cm-voice", mapQos_};
  const PolicyMapActionTableIndex actionIndex_{"pm-edge", 1, "cm-voice", 6};
  const QosStatsTableIndex statsIndex_{"pm-edge", 1, "cm-voice", 6};
};

TEST_F(QosMibTest, NewModelIsEmpty) {
  EXPECT_EQ(mib_->rowCount(), 0U);
  EXPECT_TRUE(mib_->classMapTable().empty());
  EXPECT_TRUE(mib_->ecnCounterTable().empty());
  EXPECT_TRUE(mib_->cmapByStaticType().empty());
  EXPECT_TRUE(mib_->intfIdToifIndex().empty());
  EXPECT_EQ(mib_->name(), Kel::String("qosMib"));
}

TEST_F(QosMibTest, ClassMapRowIsFoundUnderItsIndexAndDeleted) {
  mib_->classMapTableIs(cmapIndex_, cmap_);
  ASSERT_NE(mib_->classMapTable(cmapIndex_), nullptr);
  EXPECT_EQ(mib_->classMapTable(cmapIndex_)->classMapStatus, cmap_);
  EXPECT_EQ(mib_->classMapTable({"cm-voice", mapControlPlane_}), nullptr);
  mib_->classMapTableDel(cmapIndex_);
  EXPECT_EQ(mib_->classMapTable(cmapIndex_), nullptr);
  EXPECT_EQ(mib_->rowCount(), 0U);
}

TEST_F(QosMibTest, TableCountsDeletedRowsButNotAddedOrReplacedOnes) {
  mib_->classMapTableIs(cmapIndex_, cmap_);
  mib_->classMapTableIs(cmapIndex_, cmap_);
  EXPECT_EQ(mib_->classMapTable().erasures(), 0U);
  mib_->classMapTableDel({"cm-voice", mapControlPlane_});
  EXPECT_EQ(mib_->classMapTable().erasures(), 0U);
  mib_->classMapTableDel(cmapIndex_);
  EXPECT_EQ(mib_->classMapTable().erasures(), 1U);
}

TEST_F(QosMibTest, ClassMapMatchRowHoldsTheClassMapAndTheRule) {
  const ClassMapMatchTableIndex index("cm-voice", mapQos_, 1);
  mib_->classMapMatchTableIs(index, cmap_, match_);
  ASSERT_NE(mib_->classMapMatchTable(index), nullptr);
  EXPECT_EQ(*mib_->classMapMatchTable(index), (ClassMapMatchTableRow{cmap_, match_}));
  EXPECT_EQ(mib_->classMapMatchTable({"cm-voice", mapQos_, 2}), nullptr);
  mib_->classMapMatchTableDel(index);
  EXPECT_TRUE(mib_->classMapMatchTable().empty());
}

TEST_F(QosMibTest, PolicyMapRowIsFoundUnderItsIndexAndDeleted) {
  const PolicyMapTableIndex index("pm-edge", mapQos_);
  mib_->policyMapTableIs(index, pmap_);
  ASSERT_NE(mib_->policyMapTable(index), nullptr);
  EXPECT_EQ(mib_->policyMapTable(index)->policyMapStatus, pmap_);
  mib_->policyMapTableDel(index);
  EXPECT_EQ(mib_->policyMapTable(index), nullptr);
}

TEST_F(QosMibTest, PolicyMapClassRowHoldsThePolicyMapAndTheShortenedClassName) {
  const PolicyMapClassTableIndex index("pm-edge", mapQos_, 3072);
  mib_->policyMapClassTableIs(index, pmap_, "cm-voice");
  ASSERT_NE(mib_->policyMapClassTable(index), nullptr);
  EXPECT_EQ(*mib_->policyMapClassTable(index), (PolicyMapClassTableRow{pmap_, "cm-voice"}));
  mib_->policyMapClassTableDel(index);
  EXPECT_EQ(mib_->policyMapClassTable(index), nullptr);
}

TEST_F(QosMibTest, PolicyMapActionRowHoldsItsFiveReferences) {
  mib_->policyMapActionTableIs(actionIndex_, classAction_, action_, classMapHwStatus_, hwStatus_, slice_);
  ASSERT_NE(mib_->policyMapActionTable(actionIndex_), nullptr);
  EXPECT_EQ(*mib_->policyMapActionTable(actionIndex_),
            (PolicyMapActionTableRow{classAction_, action_, classMapHwStatus_, hwStatus_, slice_}));
  mib_->policyMapActionTableDel(actionIndex_);
  EXPECT_EQ(mib_->policyMapActionTable(actionIndex_), nullptr);
}

TEST_F(QosMibTest, PolicyMapActionRowMayHoldNullReferences) {
  mib_->policyMapActionTableIs(actionIndex_, classAction_, action_, nullptr, nullptr, nullptr);
  ASSERT_NE(mib_->policyMapActionTable(actionIndex_), nullptr);
  EXPECT_EQ(*mib_->policyMapActionTable(actionIndex_),
            (PolicyMapActionTableRow{classAction_, action_, nullptr, nullptr, nullptr}));
}

TEST_F(QosMibTest, StatisticsRowHoldsHardwareStatusAndCounter) {
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  ASSERT_NE(mib_->qosStatsTable(statsIndex_), nullptr);
  EXPECT_EQ(*mib_->qosStatsTable(statsIndex_), (QosStatsTableRow{classMapHwStatus_, counter_, {}}));
  mib_->qosStatsTableDel(statsIndex_);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_), nullptr);
}

TEST_F(QosMibTest, ControlPlaneStatisticsRowHasNoHardwareStatus) {
  const QosStatsTableIndex index("copp-system-policy", 0, "copp-system-bgp", 0);
  mib_->qosStatsTableIs(index, nullptr, counter_);
  ASSERT_NE(mib_->qosStatsTable(index), nullptr);
  EXPECT_EQ(mib_->qosStatsTable(index)->classMapHwStatus, nullptr);
  EXPECT_EQ(mib_->qosStatsTable(index)->counter, counter_);
}

TEST_F(QosMibTest, StatisticsAndActionTablesAreSeparateUnderEqualFieldValues) {
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  EXPECT_EQ(mib_->policyMapActionTable(actionIndex_), nullptr);
  mib_->policyMapActionTableDel(actionIndex_);
  EXPECT_NE(mib_->qosStatsTable(statsIndex_), nullptr);
}

TEST_F(QosMibTest, RowsReferenceTheLiveEntityRatherThanACopy) {
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  counter_->packetsIs(42);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counter.get(), counter_.get());
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counter->packets(), 42U);
}

TEST_F(QosMibTest, RowKeepsItsEntityAliveUntilTheRowIsDeleted) {
  Kel::Ptr<Qos::Counter> counter = Kel::make<Qos::Counter>("cm-video");
  const Qos::Counter* const raw = counter.get();
  mib_->qosStatsTableIs(statsIndex_, nullptr, counter);
  EXPECT_EQ(raw->references(), 2);
  counter.reset();
  EXPECT_EQ(raw->references(), 1);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counter->name(), Kel::String("cm-video"));
  const auto liveBefore = Kel::AllocTrackTypeInfo::liveObjectsOf("Qos::Counter");
  mib_->qosStatsTableDel(statsIndex_);
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("Qos::Counter"), liveBefore - 1);
}

TEST_F(QosMibTest, PolicerStatisticsRowIsFoundUnderItsIndexAndDeleted) {
  const QosPolicerStatsTableIndex index("pm-edge", 1, "cm-voice", 0);
  mib_->qosPolicerStatsTableIs(index, policer_);
  ASSERT_NE(mib_->qosPolicerStatsTable(index), nullptr);
  EXPECT_EQ(mib_->qosPolicerStatsTable(index)->policerHwStatus, policer_);
  mib_->qosPolicerStatsTableDel(index);
  EXPECT_EQ(mib_->qosPolicerStatsTable(index), nullptr);
}

TEST_F(QosMibTest, ServicePolicyRowHoldsTheShortenedNameAndTheKey) {
  const ServicePolicyTableIndex index(1000001, 1);
  mib_->servicePolicyTableIs(index, "pm-edge", servicePolicyKey_);
  ASSERT_NE(mib_->servicePolicyTable(index), nullptr);
  EXPECT_EQ(*mib_->servicePolicyTable(index), (ServicePolicyTableRow{"pm-edge", servicePolicyKey_}));
  mib_->servicePolicyTableDel(index);
  EXPECT_EQ(mib_->servicePolicyTable(index), nullptr);
}

TEST_F(QosMibTest, EcnCounterRowIsKeyedByChipName) {
  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  ASSERT_NE(mib_->ecnCounterTable("chip0"), nullptr);
  EXPECT_EQ(*mib_->ecnCounterTable("chip0"), (EcnCounterTableRow{chipCounter_, 0, {}}));
  EXPECT_EQ(mib_->ecnCounterTable("chip1"), nullptr);
  mib_->ecnCounterTableDel("chip0");
  EXPECT_EQ(mib_->ecnCounterTable("chip0"), nullptr);
}

TEST_F(QosMibTest, EcnCounterDelAllEmptiesOnlyThatTable) {
  fillEveryTable();
  mib_->ecnCounterTableIs("chip1", chipCounter_, 0);
  const std::size_t before = mib_->rowCount();
  mib_->ecnCounterTableDelAll();
  EXPECT_TRUE(mib_->ecnCounterTable().empty());
  EXPECT_EQ(mib_->rowCount(), before - 2);
}

TEST_F(QosMibTest, EcnQueueCounterRowHoldsInterfaceSliceTableAndFlag) {
  const EcnQueueCounterTableIndex index(1000001, 3);
  EXPECT_EQ(mib_->ecnQueueCounterTable(index), nullptr);
  mib_->ecnQueueCounterTableIs(index, ethernet1_, slice_, ecnCounterTable_, true);
  ASSERT_NE(mib_->ecnQueueCounterTable(index), nullptr);
  EXPECT_EQ(*mib_->ecnQueueCounterTable(index),
            (EcnQueueCounterTableRow{ethernet1_, slice_, ecnCounterTable_, true, {}}));
  mib_->ecnQueueCounterTableDel(index);
  EXPECT_EQ(mib_->ecnQueueCounterTable(index), nullptr);
}

TEST_F(QosMibTest, EcnQueueCounterDelAllEmptiesOnlyThatTable) {
  fillEveryTable();
  mib_->ecnQueueCounterTableIs({1000001, 1}, ethernet1_, slice_, ecnCounterTable_, false);
  const std::size_t before = mib_->rowCount();
  mib_->ecnQueueCounterTableDelAll();
  EXPECT_TRUE(mib_->ecnQueueCounterTable().empty());
  EXPECT_EQ(mib_->rowCount(), before - 2);
}

TEST_F(QosMibTest, RowCountCountsEveryTableButNotTheMaps) {
  fillEveryTable();
  EXPECT_EQ(mib_->rowCount(), 10U);
  EXPECT_EQ(mib_->cmapByStaticType().size(), 1U);
  EXPECT_EQ(mib_->intfIdToifIndex().size(), 1U);
}

TEST_F(QosMibTest, DeletingAnAbsentRowLeavesTheModelUnchanged) {
  fillEveryTable();
  mib_->classMapTableDel({"cm-video", mapQos_});
  mib_->classMapMatchTableDel({"cm-voice", mapQos_, 2});
  mib_->cmapByStaticTypeDel(Qos::cpStaticArp_);
  mib_->policyMapTableDel({"pm-edge", mapControlPlane_});
  mib_->policyMapClassTableDel({"pm-edge", mapQos_, 2});
  mib_->policyMapActionTableDel({"pm-edge", 1, "cm-voice", 7});
  mib_->qosStatsTableDel({"pm-edge", 1, "cm-voice", 7});
  mib_->qosPolicerStatsTableDel({"pm-edge", 1, "cm-voice", 0});
  mib_->servicePolicyTableDel({1000001, 2});
  mib_->ecnCounterTableDel("chip1");
  mib_->ecnQueueCounterTableDel({1000001, 1});
  mib_->intfIdToifIndexDel(Pellix::IntfId(Kel::String("Ethernet2")));
  EXPECT_EQ(mib_->rowCount(), 10U);
  EXPECT_EQ(mib_->classMapTable(cmapIndex_)->classMapStatus, cmap_);
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticBgp_), cmap_);
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 1000001);
}

TEST_F(QosMibTest, DeletingFromAnEmptyModelIsHarmless) {
  mib_->classMapTableDel(cmapIndex_);
  mib_->ecnCounterTableDelAll();
  mib_->ecnQueueCounterTableDelAll();
  mib_->cmapByStaticTypeDel(Qos::cpStaticBgp_);
  mib_->intfIdToifIndexDel(ethernet1_);
  EXPECT_EQ(mib_->rowCount(), 0U);
}

TEST_F(QosMibTest, AddingOnAnExistingIndexReplacesTheRow) {
  const Kel::Ptr<Qos::ClassMapStatus> other = Kel::make<Qos::ClassMapStatus>("cm-voice");
  mib_->classMapTableIs(cmapIndex_, cmap_);
  mib_->classMapTableIs(cmapIndex_, other);
  EXPECT_EQ(mib_->classMapTable().size(), 1U);
  EXPECT_EQ(mib_->classMapTable(cmapIndex_)->classMapStatus, other);

  mib_->policyMapActionTableIs(actionIndex_, classAction_, action_, classMapHwStatus_, hwStatus_, slice_);
  mib_->policyMapActionTableIs(actionIndex_, classAction_, action_, nullptr, nullptr, nullptr);
  EXPECT_EQ(*mib_->policyMapActionTable(actionIndex_),
            (PolicyMapActionTableRow{classAction_, action_, nullptr, nullptr, nullptr}));

  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  mib_->ecnCounterTableIs("chip0", nullptr, 1);
  EXPECT_EQ(*mib_->ecnCounterTable("chip0"), (EcnCounterTableRow{nullptr, 1, {}}));
  EXPECT_EQ(mib_->rowCount(), 3U);
}

TEST_F(QosMibTest, RowsIterateInSnmpIndexOrderWithShorterNamesFirst) {
  for (const char* name : {"cm-voice-long", "zz", "aa", "cm-video", "b"}) {
    mib_->classMapTableIs({name, mapQos_}, cmap_);
  }
  EXPECT_EQ(namesOf(mib_->classMapTable()),
            (std::vector<std::string>{"b", "aa", "zz", "cm-video", "cm-voice-long"}));
}

TEST_F(QosMibTest, MapTypeOrdersAfterTheName) {
  mib_->policyMapTableIs({"pm-edge", mapQos_}, pmap_);
  mib_->policyMapTableIs({"pm-core", mapQos_}, pmap_);
  mib_->policyMapTableIs({"pm-edge", mapControlPlane_}, pmap_);
  std::vector<PolicyMapTableIndex> indexes;
  for (const auto& [index, row] : mib_->policyMapTable()) {
    indexes.push_back(index);
  }
  EXPECT_EQ(indexes, (std::vector<PolicyMapTableIndex>{
                         {"pm-core", mapQos_}, {"pm-edge", mapControlPlane_}, {"pm-edge", mapQos_}}));
}

TEST_F(QosMibTest, LowerBoundFindsTheNextRow) {
  for (const char* name : {"aa", "zz", "cm-video"}) {
    mib_->classMapTableIs({name, mapQos_}, cmap_);
  }
  const auto& table = mib_->classMapTable();
  // An index between rows: the next row.
  auto it = table.lowerBound({"bb", mapControlPlane_});
  ASSERT_NE(it, table.end());
  EXPECT_EQ(it->first, ClassMapTableIndex("zz", mapQos_));
  // An index of a row: that row; its upper bound (GETNEXT) the one after.
  EXPECT_EQ(table.lowerBound({"zz", mapQos_})->first, ClassMapTableIndex("zz", mapQos_));
  EXPECT_EQ(table.upperBound({"zz", mapQos_})->first, ClassMapTableIndex("cm-video", mapQos_));
  // A short name sorts before every row with a longer one.
  EXPECT_EQ(table.lowerBound({"z", mapQos_})->first, ClassMapTableIndex("aa", mapQos_));
  // Past the last row: the end.
  EXPECT_EQ(table.upperBound({"cm-video", mapQos_}), table.end());
  EXPECT_EQ(table.lowerBound({"a-much-longer-name", mapControlPlane_}), table.end());
}

TEST_F(QosMibTest, EcnCounterRowsIterateInSnmpOrderOfChipNames) {
  for (const char* chip : {"Jericho10", "Jericho2", "chip", "Jericho1"}) {
    mib_->ecnCounterTableIs(chip, chipCounter_, 0);
  }
  std::vector<std::string> chips;
  for (const auto& [chip, row] : mib_->ecnCounterTable()) {
    chips.push_back(chip.stringValue());
  }
  EXPECT_EQ(chips, (std::vector<std::string>{"chip", "Jericho1", "Jericho2", "Jericho10"}));
  EXPECT_EQ(mib_->ecnCounterTable().upperBound("Jericho2")->first, Snmp::String("Jericho10"));
}

TEST_F(QosMibTest, EcnQueueRowsIterateByIfIndexThenQueue) {
  for (const EcnQueueCounterTableIndex index :
       {EcnQueueCounterTableIndex(2, 0), EcnQueueCounterTableIndex(1, 7), EcnQueueCounterTableIndex(1, 0)}) {
    mib_->ecnQueueCounterTableIs(index, ethernet1_, slice_, ecnCounterTable_, false);
  }
  std::vector<EcnQueueCounterTableIndex> indexes;
  for (const auto& [index, row] : mib_->ecnQueueCounterTable()) {
    indexes.push_back(index);
  }
  EXPECT_EQ(indexes, (std::vector<EcnQueueCounterTableIndex>{{1, 0}, {1, 7}, {2, 0}}));
}

TEST_F(QosMibTest, CmapByStaticTypeReadsNullWhenAbsent) {
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticBgp_), nullptr);
  mib_->cmapByStaticTypeIs(Qos::cpStaticBgp_, cmap_);
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticBgp_), cmap_);
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticArp_), nullptr);
  const Kel::Ptr<Qos::ClassMapStatus> other = Kel::make<Qos::ClassMapStatus>("copp-system-bgp");
  mib_->cmapByStaticTypeIs(Qos::cpStaticBgp_, other);
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticBgp_), other);
  mib_->cmapByStaticTypeDel(Qos::cpStaticBgp_);
  EXPECT_EQ(mib_->cmapByStaticType(Qos::cpStaticBgp_), nullptr);
  EXPECT_EQ(mib_->rowCount(), 0U);
}

TEST_F(QosMibTest, IntfIdToifIndexReadsZeroWhenAbsent) {
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 0);
  EXPECT_FALSE(mib_->hasIntfIdToifIndex(ethernet1_));
  mib_->intfIdToifIndexIs(ethernet1_, 1000001);
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 1000001);
  EXPECT_TRUE(mib_->hasIntfIdToifIndex(ethernet1_));
  mib_->intfIdToifIndexIs(ethernet1_, 1000002);
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 1000002);
  mib_->intfIdToifIndexDel(ethernet1_);
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 0);
  EXPECT_FALSE(mib_->hasIntfIdToifIndex(ethernet1_));
}

TEST_F(QosMibTest, RegisteredIfIndexZeroIsToldFromAnAbsentInterface) {
  mib_->intfIdToifIndexIs(ethernet1_, 0);
  EXPECT_TRUE(mib_->hasIntfIdToifIndex(ethernet1_));
  EXPECT_EQ(mib_->intfIdToifIndex(ethernet1_), 0);
  EXPECT_FALSE(mib_->hasIntfIdToifIndex(Pellix::IntfId(Kel::String("Ethernet2"))));
}

TEST_F(QosMibTest, RowAddedUnderAShortenedNameIsDeletedUnderTheSameName) {
  const Kel::String longName("policy-map-for-the-ingress-edge-of-ethernet-1-1");
  mib_->policyMapTableIs({uniqueId(longName), mapQos_}, pmap_);
  ASSERT_EQ(mib_->policyMapTable().size(), 1U);
  EXPECT_EQ(mib_->policyMapTable().begin()->first.name().size(), 30U);
  mib_->policyMapTableDel({uniqueId(Kel::String(longName.stringValue())), mapQos_});
  EXPECT_TRUE(mib_->policyMapTable().empty());
}

TEST_F(QosMibTest, RowNodesCountInTheAllocationTracker) {
  const auto liveRowsOf = [](const std::string& rowType) {
    Kel::S64 live = 0;
    for (const Kel::AllocTrackTypeInfo* info : Kel::AllocTrackTypeInfo::all()) {
      if (info->name().find(rowType) != std::string::npos) {
        live += info->live();
      }
    }
    return live;
  };
  const Kel::S64 before = liveRowsOf("QosSnmp::QosStatsTableRow");
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  mib_->qosStatsTableIs({"pm-edge", 1, "cm-video", 6}, classMapHwStatus_, counter_);
  EXPECT_EQ(liveRowsOf("QosSnmp::QosStatsTableRow"), before + 2);
  mib_->qosStatsTableDel(statsIndex_);
  EXPECT_EQ(liveRowsOf("QosSnmp::QosStatsTableRow"), before + 1);
}

TEST_F(QosMibTest, CounterStampIsTheTimeOfTheChangeNotOfALaterRead) {
  std::uint32_t now = 100;
  mib_->counterClockIs([&now] { return now; });
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counterStamp.at, 100U);
  // The same counters written again, with another hardware status: the stamp stays.
  now = 200;
  mib_->qosStatsTableIs(statsIndex_, nullptr, counter_);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counterStamp.at, 100U);
  // New counters at 300, read at 900.
  now = 300;
  mib_->qosStatsTableIs(statsIndex_, nullptr, Kel::make<Qos::Counter>("cm-voice"));
  now = 900;
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counterStamp.at, 300U);
}

TEST_F(QosMibTest, EveryCounterTableStampsNewCountersAndKeepsTheStampOfTheSame) {
  std::uint32_t now = 10;
  mib_->counterClockIs([&now] { return now; });
  mib_->intfIdToifIndexIs(ethernet1_, 1000001);
  const QosPolicerStatsTableIndex policerIndex{"pm-edge", 1, "cm-voice", 1000001};
  const EcnQueueCounterTableIndex queueIndex{1000001, 0};
  mib_->qosPolicerStatsTableIs(policerIndex, policer_);
  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  mib_->ecnQueueCounterTableIs(queueIndex, ethernet1_, slice_, ecnCounterTable_, true);
  now = 20;
  mib_->qosPolicerStatsTableIs(policerIndex, policer_);
  mib_->ecnCounterTableIs("chip0", chipCounter_, 1);
  mib_->ecnQueueCounterTableIs(queueIndex, ethernet1_, nullptr, ecnCounterTable_, false);
  EXPECT_EQ(mib_->qosPolicerStatsTable(policerIndex)->counterStamp.at, 10U);
  EXPECT_EQ(mib_->ecnCounterTable("chip0")->counterStamp.at, 10U);
  EXPECT_EQ(mib_->ecnQueueCounterTable(queueIndex)->counterStamp.at, 10U);
  now = 30;
  mib_->qosPolicerStatsTableIs(policerIndex, Kel::make<Qos::PolicerHwStatus>("Ethernet1"));
  mib_->ecnCounterTableIs("chip0", Kel::make<Qos::ChipCounter>("chip0"), 1);
  mib_->ecnQueueCounterTableIs(queueIndex, ethernet1_, slice_, Kel::make<Qos::EcnCounterTable>(), true);
  now = 40;
  EXPECT_EQ(mib_->qosPolicerStatsTable(policerIndex)->counterStamp.at, 30U);
  EXPECT_EQ(mib_->ecnCounterTable("chip0")->counterStamp.at, 30U);
  EXPECT_EQ(mib_->ecnQueueCounterTable(queueIndex)->counterStamp.at, 30U);
}

TEST_F(QosMibTest, RowDeletedAndAddedAgainGetsANewStamp) {
  std::uint32_t now = 5;
  mib_->counterClockIs([&now] { return now; });
  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  now = 7;
  mib_->ecnCounterTableDel("chip0");
  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  EXPECT_EQ(mib_->ecnCounterTable("chip0")->counterStamp.at, 7U);
  now = 8;
  mib_->ecnCounterTableDelAll();
  mib_->ecnCounterTableIs("chip0", chipCounter_, 0);
  EXPECT_EQ(mib_->ecnCounterTable("chip0")->counterStamp.at, 8U);
}

TEST_F(QosMibTest, CounterStampsAreZeroWithoutAClockAndNoPartOfARow) {
  mib_->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  EXPECT_EQ(mib_->qosStatsTable(statsIndex_)->counterStamp.at, 0U);
  mib_->counterClockIs([] { return 4000U; });
  mib_->qosStatsTableIs({"pm-edge", 1, "cm-video", 6}, classMapHwStatus_, counter_);
  const QosStatsTableRow& stamped = *mib_->qosStatsTable({"pm-edge", 1, "cm-video", 6});
  EXPECT_EQ(stamped.counterStamp.at, 4000U);
  EXPECT_EQ(stamped, *mib_->qosStatsTable(statsIndex_));
  EXPECT_EQ(stamped, (QosStatsTableRow{classMapHwStatus_, counter_, {1}}));
}

TEST_F(QosMibTest, EcnQueueCountersRestartedStampsTheRowsOfThatInterfaceAndTable) {
  std::uint32_t now = 1;
  mib_->counterClockIs([&now] { return now; });
  const Pellix::IntfId ethernet2{Kel::String("Ethernet2")};
  const Pellix::IntfId ethernet3{Kel::String("Ethernet3")};
  mib_->intfIdToifIndexIs(ethernet1_, 1000001);
  mib_->intfIdToifIndexIs(ethernet2, 1000002);
  for (Kel::U8 queue = 0; queue < 3; ++queue) {
    mib_->ecnQueueCounterTableIs({1000001, queue}, ethernet1_, slice_, ecnCounterTable_, true);
    mib_->ecnQueueCounterTableIs({1000002, queue}, ethernet2, slice_, ecnCounterTable_, true);
  }
  auto stampOf = [this](Kel::S32 ifIndex, Kel::U8 queue) {
    return mib_->ecnQueueCounterTable({ifIndex, queue})->counterStamp.at;
  };
  now = 50;
  mib_->ecnQueueCountersRestarted(*ecnCounterTable_, ethernet1_);
  for (Kel::U8 queue = 0; queue < 3; ++queue) {
    EXPECT_EQ(stampOf(1000001, queue), 50U);
    EXPECT_EQ(stampOf(1000002, queue), 1U);
  }
  // Another table, an interface without rows or without an ifIndex: nothing moves.
  now = 60;
  const auto other = Kel::make<Qos::EcnCounterTable>();
  mib_->ecnQueueCountersRestarted(*other, ethernet2);
  mib_->ecnQueueCountersRestarted(*ecnCounterTable_, ethernet3);
  mib_->intfIdToifIndexIs(ethernet3, 1000003);
  mib_->ecnQueueCountersRestarted(*ecnCounterTable_, ethernet3);
  EXPECT_EQ(stampOf(1000001, 2), 50U);
  EXPECT_EQ(stampOf(1000002, 0), 1U);
  EXPECT_EQ(mib_->ecnQueueCounterTable().size(), 6U);
}

TEST_F(QosMibTest, ReleasingTheModelReleasesEveryReferencedEntity) {
  Kel::Ptr<QosMib> mib = Kel::make<QosMib>();
  mib->qosStatsTableIs(statsIndex_, classMapHwStatus_, counter_);
  mib->policyMapActionTableIs(actionIndex_, classAction_, action_, classMapHwStatus_, hwStatus_, slice_);
  mib->cmapByStaticTypeIs(Qos::cpStaticBgp_, cmap_);
  EXPECT_EQ(classMapHwStatus_->references(), 3);
  EXPECT_EQ(cmap_->references(), 2);
  mib.reset();
  EXPECT_EQ(classMapHwStatus_->references(), 1);
  EXPECT_EQ(counter_->references(), 1);
  EXPECT_EQ(cmap_->references(), 1);
}

}  // namespace
}  // namespace QosSnmp
