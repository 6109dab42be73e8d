#include "QosSnmp/core/SliceHwStatus.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/CpStaticClassHwStatus.h"
#include "QosSnmp/core/EcnIntfCounterStatus.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "kel/Dir.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::printed;
using QosInputTest::Recorder;
using QosInputTest::Texts;

class SliceHwStatusReactor
    : public Kel::Notifiee<SliceHwStatusReactor, Recorder, const SliceHwStatus,
                           SliceHwStatus::PmapTypeHwStatus, SliceHwStatus::CpStaticClassHwStatus,
                           SliceHwStatus::EcnIntfCounterHwStatus> {
 public:
  using Notifiee::Notifiee;
  void on(SliceHwStatus::PmapTypeHwStatus /*attr*/, const MapType& type) {
    owner().record("pmapTypeHwStatus", type);
  }
  void on(SliceHwStatus::CpStaticClassHwStatus /*attr*/, const ClassMapCpStaticType& type) {
    owner().record("cpStaticClassHwStatus", type);
  }
  void on(SliceHwStatus::EcnIntfCounterHwStatus /*attr*/, const Pellix::IntfId& intf) {
    owner().record("ecnIntfCounterHwStatus", intf);
  }
};

Pellix::IntfId intf(const char* name) { return Pellix::IntfId(Kel::String(name)); }

TEST(SliceHwStatusTest, MembersAreNotifiedWithTheirTypedKeys) {
  const auto recorder = Kel::make<Recorder>();
  const auto slice = Kel::make<SliceHwStatus>("Slice0");
  const auto reactor = Kel::makeReactor<SliceHwStatusReactor>(recorder.get(), slice);
  slice->pmapTypeHwStatusIs(mapControlPlane_, Kel::make<PolicyMapTypeHwStatus>(mapControlPlane_));
  slice->cpStaticClassHwStatusIs(cpStaticBgp_, Kel::make<CpStaticClassHwStatus>(cpStaticBgp_));
  slice->ecnIntfCounterHwStatusIs(intf("Ethernet1"), Kel::make<EcnIntfCounterStatus>(intf("Ethernet1")));
  EXPECT_EQ(recorder->log(), (Texts{"pmapTypeHwStatus mapControlPlane", "cpStaticClassHwStatus cpStaticBgp",
                                    "ecnIntfCounterHwStatus Ethernet1"}));
}

TEST(SliceHwStatusTest, SliceIsFoundInItsDirectoryByName) {
  const auto dir = Kel::make<Kel::Dir>("sliceHwStatus");
  dir->entityIs("Slice0", Kel::make<SliceHwStatus>("Slice0"));
  const auto slice = Kel::ptrCast<const SliceHwStatus>(dir->entityPtr("Slice0"));
  ASSERT_TRUE(slice);
  EXPECT_EQ(slice->name(), Kel::String("Slice0"));
  EXPECT_FALSE(Kel::ptrCast<const AclSliceHwStatus>(dir->entityPtr("Slice0")));
}

TEST(SliceHwStatusTest, StaticClassesIterateByNumberAndReadTheirStatus) {
  const auto slice = Kel::make<SliceHwStatus>("Slice0");
  for (const ClassMapCpStaticType type : {cpStaticDefault_, cpStaticBpdu_, cpStaticBgp_}) {
    auto status = Kel::make<CpStaticClassHwStatus>(type);
    status->hwRankIs(static_cast<Kel::U8>(type));
    status->programmingStatusIs(hwStatusProgrammed_);
    slice->cpStaticClassHwStatusIs(type, status);
  }
  Texts order;
  for (const auto& [type, status] : slice->cpStaticClassHwStatus()) {
    order.push_back(printed(type));
  }
  EXPECT_EQ(order, (Texts{"cpStaticBpdu", "cpStaticBgp", "cpStaticDefault"}));
  EXPECT_EQ(slice->cpStaticClassHwStatus(cpStaticBgp_)->hwRank(), 10U);
  EXPECT_EQ(slice->cpStaticClassHwStatus(cpStaticBgp_)->programmingStatus(), hwStatusProgrammed_);
  EXPECT_EQ(slice->cpStaticClassHwStatus(cpStaticBgp_)->name(), Kel::String("cpStaticBgp"));
  EXPECT_FALSE(slice->cpStaticClassHwStatus(cpStaticArp_));
}

TEST(SliceHwStatusTest, EcnCounterStatusIteratesInNaturalInterfaceOrder) {
  const auto slice = Kel::make<SliceHwStatus>("Slice0");
  for (const char* name : {"Ethernet10", "Ethernet9"}) {
    slice->ecnIntfCounterHwStatusIs(intf(name), Kel::make<EcnIntfCounterStatus>(intf(name)));
  }
  Texts order;
  slice->ecnIntfCounterHwStatus().forEachKey(
      [&order](const Pellix::IntfId& id) { order.push_back(printed(id)); });
  EXPECT_EQ(order, (Texts{"Ethernet9", "Ethernet10"}));
  EXPECT_EQ(slice->ecnIntfCounterHwStatus(intf("Ethernet9"))->programmingStatus(), hwStatusUnknown_);
}

TEST(PolicyMapHwStatusTest, ClassesCarryTheirHardwareCountersAndRates) {
  const PolicyMapHwStatusKey key(directionInput_, "copp-system-policy");
  const auto pmap = Kel::make<PolicyMapHwStatus>(key);
  EXPECT_EQ(pmap->key(), key);
  EXPECT_EQ(pmap->name(), Kel::String("1/copp-system-policy"));
  pmap->pmapKindIs(1);
  const auto cmap = Kel::make<ClassMapHwStatus>("copp-system-bgp");
  cmap->programmingStatusIs(hwStatusProgrammed_);
  cmap->packetsIs(100);
  cmap->shapeRateIs(2000);
  cmap->bandwidthIs(1000);
  pmap->cmapIs("copp-system-bgp", cmap);
  EXPECT_EQ(pmap->pmapKind(), 1);
  EXPECT_EQ(pmap->cmap("copp-system-bgp")->packets(), 100U);
  EXPECT_EQ(pmap->cmap("copp-system-bgp")->shapeRate(), 2000U);
  EXPECT_EQ(pmap->cmap("copp-system-bgp")->bandwidth(), 1000U);
  EXPECT_FALSE(pmap->cmap("copp-system-arp"));
}

}  // namespace
}  // namespace Qos
