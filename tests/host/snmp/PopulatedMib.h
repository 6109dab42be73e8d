// A MIB model filled directly with many rows in every table, for the MIB
// view's reference test and fuzzer: names of every length the MIB allows
// (0, 1, 29 and 30 bytes) and longer ones it cannot name (31 and more),
// bytes 0 to 255, integers at both ends of their ranges and outside them,
// null entities, and interfaces behind the ifIndexes. The same seed gives
// the same model.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/EcnIntfQueueCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Make.h"
#include "pellix/IntfId.h"

namespace QosSnmpHostTest {

class PopulatedMib {
 public:
  // About `rows` rows in every table.
  PopulatedMib(unsigned seed, int rows) : random_(seed) {
    for (int i = 0; i < rows; ++i) {
      addRow(i);
    }
  }

  const QosSnmp::QosMib& mib() const { return *mib_; }

 private:
  // A name of a length the MIB edges care about, its bytes mostly letters.
  std::string nextName() {
    static constexpr std::size_t kLengths[] = {0, 1, 1, 2, 5, 9, 17, 29, 30, 30, 31, 40};
    std::string text(kLengths[pick(std::size(kLengths))], 'a');
    for (char& c : text) {
      const auto kind = pick(8);
      c = static_cast<char>(kind == 0 ? pick(256) : kind == 1 ? (pick(2) == 0 ? 0 : 255) : 'a' + pick(4));
    }
    return text;
  }
  std::uint32_t pick(std::uint32_t n) {
    return std::uniform_int_distribution<std::uint32_t>(0, n - 1)(random_);
  }
  Kel::S32 anyS32() {
    static constexpr Kel::S32 kEdges[] = {-1, 0, 1, 2, 3, 7, 8, 255, 256, 2147483647};
    return pick(3) == 0 ? static_cast<Kel::S32>(random_()) : kEdges[pick(std::size(kEdges))];
  }
  Kel::U32 anyU32() {
    static constexpr Kel::U32 kEdges[] = {0, 1, 2, 3072, 4294967295U};
    return pick(3) == 0 ? static_cast<Kel::U32>(random_()) : kEdges[pick(std::size(kEdges))];
  }
  Qos::MapType mapType() { return static_cast<Qos::MapType>(pick(3)); }

  void addRow(int i) {
    auto cmap = Kel::make<Qos::ClassMapStatus>(Kel::String("cmap-" + std::to_string(i)));
    auto pmap = Kel::make<Qos::PolicyMapStatus>(Kel::String("pmap-" + std::to_string(i)));
    auto match = Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_);
    match->valueIs(Kel::String(std::to_string(i)));
    auto classAction = Kel::make<Qos::ClassAction>(Kel::String("cmap-" + std::to_string(i)));
    auto action = Kel::make<Qos::Action>(Qos::actionPolice_);
    action->rateIs(static_cast<std::uint64_t>(i) << 33U);
    auto counter = Kel::make<Qos::Counter>(Kel::String("cmap-" + std::to_string(i)));
    counter->packetsIs(static_cast<std::uint64_t>(i));
    auto policer = Kel::make<Qos::PolicerHwStatus>(Kel::String("Ethernet" + std::to_string(i)));
    auto chip = Kel::make<Qos::ChipCounter>(Kel::String("chip" + std::to_string(i)));

    const bool nulls = pick(5) == 0;
    mib_->classMapTableIs({nextName(), mapType()}, nulls ? nullptr : cmap);
    mib_->classMapMatchTableIs({nextName(), mapType(), anyU32()}, cmap, nulls ? nullptr : match);
    mib_->policyMapTableIs({nextName(), mapType()}, nulls ? nullptr : pmap);
    mib_->policyMapClassTableIs({nextName(), mapType(), anyU32()}, pmap, nextName());
    mib_->policyMapActionTableIs({nextName(), static_cast<Kel::S32>(pick(4)), nextName(), anyS32()},
                                 nulls ? nullptr : classAction, nulls ? nullptr : action, nullptr, hw_,
                                 slice_);
    mib_->qosStatsTableIs({nextName(), static_cast<Kel::S32>(pick(4)), nextName(), anyS32()}, nullptr,
                          nulls ? nullptr : counter);
    mib_->qosPolicerStatsTableIs({nextName(), static_cast<Kel::S32>(pick(4)), nextName(), anyS32()},
                                 nulls ? nullptr : policer);
    const Kel::S32 ifIndex = anyS32();
    mib_->servicePolicyTableIs(
        {ifIndex, static_cast<Kel::S32>(pick(4))}, nextName(),
        Qos::ServicePolicyKey(Qos::mapQos_, Qos::directionInput_, Kel::String("pmap")));
    mib_->ecnCounterTableIs(nextName(), nulls ? nullptr : chip, 0);
    const Pellix::IntfId intf(Kel::String("Ethernet" + std::to_string(i)));
    mib_->ecnQueueCounterTableIs({anyS32(), static_cast<Kel::U8>(pick(256))}, intf, slice_, ecn_,
                                 pick(2) == 0);
    if (pick(2) == 0) {
      mib_->intfIdToifIndexIs(intf, ifIndex);
    }
  }

  std::mt19937 random_;
  Kel::Ptr<QosSnmp::QosMib> mib_ = Kel::make<QosSnmp::QosMib>();
  Kel::Ptr<Qos::HwStatus> hw_ = Kel::make<Qos::HwStatus>();
  Kel::Ptr<Qos::SliceHwStatus> slice_ = Kel::make<Qos::SliceHwStatus>("slice0");
  Kel::Ptr<Qos::EcnCounterTable> ecn_ = Kel::make<Qos::EcnCounterTable>();
};

}  // namespace QosSnmpHostTest
