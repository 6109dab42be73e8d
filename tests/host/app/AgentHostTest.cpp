// The host's counter stamps over the example leaf switch: the model is
// stamped with the host's clock when counters change, and an ECN queue row
// is stamped when its interface's ECN counters are deleted or published
// again, though the row itself is not rewritten.
#include "host/app/AgentHost.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "QosSnmp/core/RootSm.h"
#include "kel/System.h"

namespace {

using QosSnmpHost::AgentHost;
using QosSnmpHost::SwitchState;

const std::string kExample = QOS_EXAMPLES_DIR "/leaf-switch.json";

class AgentHostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto loaded = SwitchState::loadFile(kExample);
    ASSERT_TRUE(loaded) << loaded.error().text();
    host_ = std::make_unique<AgentHost>(std::move(loaded.value()), true);
    ASSERT_FALSE(host_->build(QosSnmp::rootSmFactory));
    host_->counterClockIs([this] { return now_; });
  }

  void apply(const std::string& line) {
    const auto applied = host_->apply(line, {"changes.jsonl", ++lines_});
    ASSERT_TRUE(applied) << applied.error().text();
  }

  // The stamps of the ECN queue rows of `intf`, by queue.
  std::map<unsigned, std::uint32_t> queueStamps(const std::string& intf) const {
    std::map<unsigned, std::uint32_t> stamps;
    for (const auto& [index, row] : host_->mib().ecnQueueCounterTable()) {
      if (row.intfId.stringValue() == intf) {
        stamps[index.queue()] = row.counterStamp.at;
      }
    }
    return stamps;
  }

  Kel::VirtualTime time_;
  std::unique_ptr<AgentHost> host_;
  std::uint32_t now_ = 0;
  int lines_ = 0;
};

TEST_F(AgentHostTest, EcnQueueRowsAreStampedWhenTheirInterfacesCountersArePublishedAgain) {
  const auto loaded = queueStamps("Ethernet1/1");
  ASSERT_FALSE(loaded.empty());
  for (const auto& [queue, stamp] : loaded) {
    EXPECT_EQ(stamp, 0U) << "queue " << queue;
  }
  // Counters updated in place: no restart.
  now_ = 300;
  apply(R"({"op": "set", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1~11/queueMarkedPackets/3", )"
        R"("value": 41000})");
  EXPECT_EQ(queueStamps("Ethernet1/1"), loaded);
  // Deleted at 400, published again at 500; read at 900.
  now_ = 400;
  apply(R"({"op": "delete", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1~11"})");
  for (const auto& [queue, stamp] : queueStamps("Ethernet1/1")) {
    EXPECT_EQ(stamp, 400U) << "queue " << queue;
  }
  now_ = 500;
  apply(R"({"op": "set", "path": "/ecnCounterTable/intfQueueCounter/Ethernet1~11", )"
        R"("value": {"queueMarkedPackets": {"3": 5}, "queueMarkedBytes": {"3": 600}}})");
  now_ = 900;
  const auto restarted = queueStamps("Ethernet1/1");
  EXPECT_EQ(restarted.size(), loaded.size());
  for (const auto& [queue, stamp] : restarted) {
    EXPECT_EQ(stamp, 500U) << "queue " << queue;
  }
  // Other interfaces keep theirs.
  const auto other = queueStamps("Ethernet1/2");
  ASSERT_FALSE(other.empty());
  for (const auto& [queue, stamp] : other) {
    EXPECT_EQ(stamp, 0U) << "queue " << queue;
  }
}

TEST_F(AgentHostTest, StatisticsRowsAreStampedWhenAClassCountersArePublishedAgain) {
  for (const auto& [index, row] : host_->mib().qosStatsTable()) {
    EXPECT_EQ(row.counterStamp.at, 0U);
  }
  now_ = 250;
  apply(R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-voice"})");
  apply(
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-voice", "value": {}})");
  now_ = 800;
  int restamped = 0;
  for (const auto& [index, row] : host_->mib().qosStatsTable()) {
    if (index.pmapName().view() == "policy-in" && index.cmapName().view() == "class-voice") {
      EXPECT_EQ(row.counterStamp.at, 250U);
      ++restamped;
    } else {
      EXPECT_EQ(row.counterStamp.at, 0U);
    }
  }
  EXPECT_GT(restamped, 0);
}

}  // namespace
