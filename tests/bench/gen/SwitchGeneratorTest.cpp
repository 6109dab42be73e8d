// The generated switch as the host sees it: accepted by the loader and the
// guard, and the agent built over it holds exactly the rows the generator
// derives from its parameters.
#include "bench/gen/SwitchGenerator.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "QosSnmp/core/RootSm.h"
#include "bench/gen/SwitchLayout.h"
#include "bench/gen/SwitchParams.h"
#include "host/app/AgentHost.h"
#include "host/dump/MibDump.h"
#include "host/state/SwitchState.h"
#include "kel/System.h"

namespace {

using QosSnmpBench::SwitchGenerator;
using QosSnmpBench::SwitchLayout;
using QosSnmpBench::SwitchParams;
using QosSnmpHost::AgentHost;
using QosSnmpHost::MibDump;
using QosSnmpHost::SwitchState;

// Rows per table of an agent built over the document.
std::map<std::string, std::size_t> rowsOf(const std::string& document) {
  const Kel::VirtualTime time;
  auto loaded = SwitchState::loadText(document, "generated.json");
  EXPECT_TRUE(loaded) << loaded.error().text();
  if (!loaded) {
    return {};
  }
  AgentHost host(std::move(loaded.value()), true);
  const auto refused = host.build(QosSnmp::rootSmFactory);
  EXPECT_FALSE(refused) << refused->text();
  const auto dump = MibDump(host.pathOf()).json(host.mib());
  std::map<std::string, std::size_t> rows;
  for (const std::string& table : MibDump::tableNames()) {
    rows[table] = dump[table].size();
  }
  host.release();
  return rows;
}

std::size_t total(const std::map<std::string, std::size_t>& rows) {
  std::size_t sum = 0;
  for (const auto& [table, count] : rows) {
    sum += count;
  }
  return sum;
}

TEST(SwitchGeneratorTest, SmallSwitchIsAcceptedWithTheRowsItsParametersGive) {
  const SwitchLayout layout(*SwitchParams::preset("small"));
  const SwitchGenerator generator(layout);

  const auto expected = generator.expectedRows();

  EXPECT_EQ(rowsOf(generator.stateText()), expected);
  EXPECT_GT(total(expected), 800U);
  EXPECT_LT(total(expected), 1500U);
}

TEST(SwitchGeneratorTest, OtherShapesGiveTheRowsTheirParametersGive) {
  SwitchParams bare;
  bare.ethernetPorts = 10;
  bare.subInterfaces = 0;
  bare.portChannels = 0;
  bare.noIfIndexEvery = 0;
  bare.classMaps = 5;
  bare.matchRules = 0;
  bare.policyMaps = 2;
  bare.classesPerPolicyMap = 4;
  bare.actionsPerClass = 1;
  bare.policedInterfaces = 0;
  bare.coppStaticClasses = 0;
  bare.coppDynamicClasses = 0;
  bare.slices = 1;
  bare.chipsPerSlice = 0;
  bare.ecnQueues = 0;
  bare.qosHardwareStatus = false;

  SwitchParams crowded;
  crowded.ethernetPorts = 70;
  crowded.subInterfaces = 75;
  crowded.portChannels = 3;
  crowded.noIfIndexEvery = 3;
  crowded.classMaps = 20;
  crowded.matchRules = 7;
  crowded.policyMaps = 6;
  crowded.classesPerPolicyMap = 7;
  crowded.actionsPerClass = 7;
  crowded.policedInterfaces = 30;
  crowded.coppStaticClasses = 17;
  crowded.coppDynamicClasses = 11;
  crowded.slices = 12;
  crowded.chipsPerSlice = 3;
  crowded.ecnQueues = 2;

  for (const SwitchParams& params : {bare, crowded}) {
    ASSERT_FALSE(params.invalid()) << *params.invalid();
    const SwitchLayout layout(params);
    const SwitchGenerator generator(layout);
    EXPECT_EQ(rowsOf(generator.stateText()), generator.expectedRows());
  }
}

TEST(SwitchGeneratorTest, SameSeedGivesTheSameDocumentAndAnotherSeedOtherCounters) {
  SwitchParams params = *SwitchParams::preset("small");
  const SwitchLayout layout(params);
  params.seed = 2;
  const SwitchLayout reseeded(params);

  const std::string once = SwitchGenerator(layout).stateText();

  EXPECT_EQ(SwitchGenerator(layout).stateText(), once);
  EXPECT_NE(SwitchGenerator(reseeded).stateText(), once);
  EXPECT_EQ(SwitchGenerator(reseeded).expectedRows(), SwitchGenerator(layout).expectedRows());
}

TEST(SwitchGeneratorTest, PresetsGrowTenfoldFromLargeToHuge) {
  const auto large = SwitchGenerator(SwitchLayout(*SwitchParams::preset("large"))).expectedRows();
  const auto huge = SwitchGenerator(SwitchLayout(*SwitchParams::preset("huge"))).expectedRows();

  EXPECT_GT(total(large), 90000U);
  EXPECT_LT(total(large), 130000U);
  EXPECT_GT(total(huge), 9 * total(large));
  EXPECT_LT(total(huge), 11 * total(large));
}

TEST(SwitchGeneratorTest, ParametersThatCannotMakeAValidSwitchAreNamed) {
  SwitchParams params;
  params.policyMaps = 3;
  EXPECT_TRUE(params.invalid());
  params = SwitchParams{};
  params.classesPerPolicyMap = params.classMaps;
  EXPECT_TRUE(params.invalid());
  params = SwitchParams{};
  params.matchRules = 8;
  EXPECT_TRUE(params.invalid());
  EXPECT_FALSE(SwitchParams::preset("medium"));
}

}  // namespace
