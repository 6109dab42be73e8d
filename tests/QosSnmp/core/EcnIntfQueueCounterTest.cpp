#include "QosSnmp/core/EcnIntfQueueCounter.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/ChipCounter.h"
#include "QosSnmp/core/EcnCounterTable.h"
#include "QosSnmp/core/HwCounter.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/SliceHwCounter.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::Recorder;
using QosInputTest::Texts;

class EcnIntfQueueCounterReactor
    : public Kel::Notifiee<EcnIntfQueueCounterReactor, Recorder, const EcnIntfQueueCounter,
                           EcnIntfQueueCounter::QueueMarkedPackets, EcnIntfQueueCounter::QueueMarkedBytes> {
 public:
  using Notifiee::Notifiee;
  void on(EcnIntfQueueCounter::QueueMarkedPackets /*attr*/, const Kel::U8& queue) {
    owner().record("queueMarkedPackets", static_cast<int>(queue));
  }
  void on(EcnIntfQueueCounter::QueueMarkedBytes /*attr*/, const Kel::U8& queue) {
    owner().record("queueMarkedBytes", static_cast<int>(queue));
  }
};

class HwStatusReactor
    : public Kel::Notifiee<HwStatusReactor, Recorder, const HwStatus, HwStatus::CoppSupported,
                           HwStatus::EcnQueueCountersFlag, HwStatus::NumEcnQueues> {
 public:
  using Notifiee::Notifiee;
  void on(HwStatus::CoppSupported /*attr*/) { owner().record("coppSupported"); }
  void on(HwStatus::EcnQueueCountersFlag /*attr*/) { owner().record("ecnQueueCountersFlag"); }
  void on(HwStatus::NumEcnQueues /*attr*/) { owner().record("numEcnQueues"); }
};

Pellix::IntfId intf(const char* name) { return Pellix::IntfId(Kel::String(name)); }

TEST(EcnIntfQueueCounterTest, QueueCountsAreNotifiedWithTheQueueNumber) {
  const auto recorder = Kel::make<Recorder>();
  const auto counter = Kel::make<EcnIntfQueueCounter>(intf("Ethernet1"));
  const auto reactor = Kel::makeReactor<EcnIntfQueueCounterReactor>(recorder.get(), counter);
  counter->queueMarkedPacketsIs(3, 10);
  counter->queueMarkedPacketsIs(3, 10);
  counter->queueMarkedBytesIs(7, 1500);
  counter->queueMarkedPacketsDel(3);
  EXPECT_EQ(recorder->log(), (Texts{"queueMarkedPackets 3", "queueMarkedBytes 7", "queueMarkedPackets 3"}));
}

TEST(EcnIntfQueueCounterTest, QueueWithoutCountReadsAsZero) {
  const auto counter = Kel::make<EcnIntfQueueCounter>(intf("Ethernet1"));
  EXPECT_EQ(counter->intfId(), intf("Ethernet1"));
  counter->queueMarkedBytesIs(7, 1500);
  EXPECT_EQ(counter->queueMarkedBytes(7), 1500U);
  EXPECT_EQ(counter->queueMarkedBytes(6), 0U);
  EXPECT_EQ(counter->queueMarkedPackets(7), 0U);
}

TEST(EcnIntfQueueCounterTest, TableListsInterfacesInNaturalOrder) {
  const auto table = Kel::make<EcnCounterTable>();
  for (const char* name : {"Ethernet10", "Ethernet1", "Ethernet2"}) {
    table->intfQueueCounterIs(intf(name), Kel::make<EcnIntfQueueCounter>(intf(name)));
  }
  Texts order;
  table->intfQueueCounter().forEachKey(
      [&order](const Pellix::IntfId& id) { order.push_back(id.stringValue()); });
  EXPECT_EQ(order, (Texts{"Ethernet1", "Ethernet2", "Ethernet10"}));
}

TEST(HwCounterTest, ChipCountersAreReadPerSliceAndChip) {
  const auto hwCounter = Kel::make<HwCounter>();
  const auto slice = Kel::make<SliceHwCounter>("Slice0");
  const auto chip = Kel::make<ChipCounter>("Chip0");
  chip->ecnMarkedPacketsIs(5);
  chip->ecnMarkedBytesIs(640);
  chip->ecnDroppedPacketsIs(2);
  slice->perChipCountIs("Chip0", chip);
  hwCounter->sliceHwCounterIs("Slice0", slice);
  const Kel::Ptr<const ChipCounter> read = hwCounter->sliceHwCounter("Slice0")->perChipCount("Chip0");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->ecnMarkedPackets(), 5U);
  EXPECT_EQ(read->ecnMarkedBytes(), 640U);
  EXPECT_EQ(read->ecnDroppedPackets(), 2U);
  EXPECT_FALSE(hwCounter->sliceHwCounter("Slice9"));
}

TEST(HwStatusTest, CapabilityChangesAreNotifiedAndUnchangedOnesAreNot) {
  const auto recorder = Kel::make<Recorder>();
  const auto hwStatus = Kel::make<HwStatus>();
  const auto reactor = Kel::makeReactor<HwStatusReactor>(recorder.get(), hwStatus);
  hwStatus->coppSupportedIs(true);
  hwStatus->coppSupportedIs(true);
  hwStatus->ecnQueueCountersFlagIs(false);
  hwStatus->numEcnQueuesIs(8);
  EXPECT_TRUE(hwStatus->coppSupported());
  EXPECT_FALSE(hwStatus->coppHwStatsSupported());
  EXPECT_EQ(hwStatus->numEcnQueues(), 8U);
  EXPECT_EQ(recorder->log(), (Texts{"coppSupported", "numEcnQueues"}));
}

}  // namespace
}  // namespace Qos
