// The churn soak: ten thousand random valid changes over the large switch,
// then the soaked agent against a fresh one over the final state, and the
// teardown of both.
#include "bench/soak/ChurnSoak.h"

#include <string>

#include <gtest/gtest.h>

#include "QosSnmp/core/RootSm.h"
#include "bench/gen/SwitchParams.h"

namespace {

using QosSnmpBench::ChurnSoak;
using QosSnmpBench::SwitchParams;

std::string listed(const std::vector<ChurnSoak::Difference>& differences) {
  std::string text;
  for (std::size_t i = 0; i < differences.size() && i < 20; ++i) {
    text += (differences[i].soakedOnly ? "\n  soaked only: " : "\n  fresh only: ") + differences[i].row;
  }
  return text;
}

TEST(ChurnSoakTest, TenThousandChangesOverLargeLeaveOnlyStatedDifferencesAndNothingAlive) {
  const ChurnSoak soak(*SwitchParams::preset("large"), 10000, 1);

  const ChurnSoak::Result result = soak.run(QosSnmp::rootSmFactory);

  ASSERT_EQ(result.refusal, "");
  EXPECT_EQ(result.applied, 10000U);
  EXPECT_GT(result.freshRows, 90000U);
  EXPECT_TRUE(result.unexplained.empty())
      << result.unexplained.size() << " rows" << listed(result.unexplained);
  // The mix changes ifIndexes, so rows under old ones must have been seen.
  EXPECT_EQ(result.explained.count("service-policy rows kept under an interface's old ifIndex"), 1U);
  EXPECT_GT(result.liveBeforeTeardown, 100000);
  for (const auto& [type, live] : result.aliveAfterTeardown) {
    ADD_FAILURE() << live << " " << type << " alive after teardown";
  }
}

TEST(ChurnSoakTest, ARowNoStatedBehaviourExplainsIsUnexplained) {
  const std::string fresh =
      "# servicePolicyTable: 1 rows\n"
      "servicePolicyTable (1, directionInput) pmapName=pm-0 servicePolicyKey=mapQos/directionInput/pm-0\n"
      "# intfIdToifIndex: 1 entry\n"
      "intfIdToifIndex Ethernet1/1 -> 1\n";
  const std::string soaked =
      "# servicePolicyTable: 1 rows\n"
      "servicePolicyTable (1, directionInput) pmapName=pm-2 servicePolicyKey=mapQos/directionInput/pm-2\n"
      "# intfIdToifIndex: 1 entry\n"
      "intfIdToifIndex Ethernet1/1 -> 1\n";
  ChurnSoak::Result result;

  ChurnSoak::compare(soaked, fresh, nlohmann::json::object(), result);

  EXPECT_TRUE(result.explained.empty());
  ASSERT_EQ(result.unexplained.size(), 2U);
  EXPECT_TRUE(result.unexplained[0].soakedOnly);
  EXPECT_FALSE(result.unexplained[1].soakedOnly);
}

TEST(ChurnSoakTest, ARowUnderAnOldIfIndexIsExplained) {
  const std::string fresh =
      "servicePolicyTable (7, directionInput) pmapName=pm-0 servicePolicyKey=mapQos/directionInput/pm-0\n"
      "intfIdToifIndex Ethernet1/1 -> 7\n";
  const std::string soaked =
      "servicePolicyTable (1, directionInput) pmapName=pm-0 servicePolicyKey=mapQos/directionInput/pm-0\n"
      "servicePolicyTable (7, directionInput) pmapName=pm-0 servicePolicyKey=mapQos/directionInput/pm-0\n"
      "intfIdToifIndex Ethernet1/1 -> 7\n";
  ChurnSoak::Result result;

  ChurnSoak::compare(soaked, fresh, nlohmann::json::object(), result);

  EXPECT_TRUE(result.unexplained.empty());
  EXPECT_EQ(result.explained["service-policy rows kept under an interface's old ifIndex"].size(), 1U);
}

}  // namespace
