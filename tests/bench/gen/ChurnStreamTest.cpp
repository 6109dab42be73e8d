// Every kind of generated change stream stays valid, line after line, over
// the generated switch it was made for.
#include "bench/gen/ChurnStream.h"

#include <string>

#include <gtest/gtest.h>

#include "QosSnmp/core/RootSm.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"
#include "host/app/AgentHost.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"

namespace {

using QosSnmpBench::ChurnStream;
using QosSnmpBench::SwitchGenerator;
using QosSnmpBench::SwitchLayout;
using QosSnmpBench::SwitchParams;
using QosSnmpHost::AgentHost;
using QosSnmpHost::Change;
using QosSnmpHost::SwitchState;

class ChurnStreamTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ChurnStreamTest, EveryLineIsAcceptedAndChangesTheState) {
  const SwitchLayout layout(*SwitchParams::preset("small"));
  auto loaded = SwitchState::loadText(SwitchGenerator(layout).stateText(), "small.json");
  ASSERT_TRUE(loaded) << loaded.error().text();
  Kel::VirtualTime time;
  AgentHost host(std::move(loaded.value()), true);
  ASSERT_FALSE(host.build(QosSnmp::rootSmFactory));
  ChurnStream stream(layout, *ChurnStream::kindOf(GetParam()), 7);

  for (int number = 1; number <= 2000; ++number) {
    const std::string line = stream.next();
    const nlohmann::json before = host.state().document();
    const auto change = host.apply(line, {GetParam() + ".jsonl", number});
    ASSERT_TRUE(change) << change.error().text();
    EXPECT_NE(change->op, Change::Op::none) << line;
    EXPECT_NE(host.state().document(), before) << line;
  }
  host.release();
}

INSTANTIATE_TEST_SUITE_P(Kinds, ChurnStreamTest,
                         ::testing::Values("counters", "match-rule", "class-added", "service-policy",
                                           "if-index", "poll-period", "mix"),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           std::string name;
                           for (const char c : info.param) {
                             if (c != '-') {
                               name += c;
                             }
                           }
                           return name;
                         });

TEST(ChurnStreamKindsTest, EveryKindHasAName) {
  for (const auto& [kind, name] : ChurnStream::kinds()) {
    EXPECT_EQ(ChurnStream::kindOf(name), kind);
    EXPECT_EQ(ChurnStream::nameOf(kind), name);
  }
  EXPECT_FALSE(ChurnStream::kindOf("everything"));
}

TEST(ChurnStreamKindsTest, SameSeedGivesTheSameLines) {
  const SwitchLayout layout(*SwitchParams::preset("small"));
  ChurnStream one(layout, ChurnStream::Kind::mix, 3);
  ChurnStream two(layout, ChurnStream::Kind::mix, 3);
  ChurnStream other(layout, ChurnStream::Kind::mix, 4);
  int differing = 0;
  for (int i = 0; i < 100; ++i) {
    const std::string line = one.next();
    EXPECT_EQ(two.next(), line);
    differing += other.next() != line ? 1 : 0;
  }
  EXPECT_GT(differing, 50);
}

}  // namespace
