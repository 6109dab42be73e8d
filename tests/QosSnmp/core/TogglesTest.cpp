#include "QosSnmp/core/Toggles.h"

#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "kel/Toggle.h"
#include "kel/ToggleStore.h"

namespace {

// A store that answers one toggle and counts the questions.
class CountingStore : public Kel::ToggleStore {
 public:
  std::optional<bool> toggleState(const std::string& name, const std::string& file) override {
    ++questions;
    lastName = name;
    lastFile = file;
    return answer;
  }
  std::optional<bool> answer;
  int questions = 0;
  std::string lastName;
  std::string lastFile;
};

// The toggle's value is kept for the life of the process, so each case runs
// in a process of its own (a death-test child that exits 0 on success).
void expectToggle(std::optional<bool> answer, bool expected) {
  auto store = std::make_shared<CountingStore>();
  store->answer = answer;
  Kel::toggleStoreIs(store);
  const bool first = QosSnmp::toggleQosSnmpPolicerStatsTableEnabled();
  store->answer = !expected;
  const bool second = QosSnmp::toggleQosSnmpPolicerStatsTableEnabled();
  const bool asked = store->questions == 1 && store->lastName == "QosSnmpPolicerStatsTable" &&
                     store->lastFile == "QosSnmp.json";
  std::exit(first == expected && second == expected && asked ? 0 : 1);
}

TEST(TogglesTest, PolicerStatsTableIsOnByDefault) {
  EXPECT_EXIT(expectToggle(std::nullopt, true), ::testing::ExitedWithCode(0), "");
}

TEST(TogglesTest, PolicerStatsTableFollowsTheStoreAndIsReadOnce) {
  EXPECT_EXIT(expectToggle(false, false), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(expectToggle(true, true), ::testing::ExitedWithCode(0), "");
}

}  // namespace
