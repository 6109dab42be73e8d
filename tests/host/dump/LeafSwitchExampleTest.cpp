// The example switch of examples/: loaded through the state loader, mirrored
// by the real agent, dumped. The example is meant to show every table of the
// MIB model, and its change stream to be accepted line by line and to touch
// every table.
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/RootSm.h"
#include "host/dump/MibDump.h"
#include "host/state/InvariantGuard.h"
#include "host/state/SwitchState.h"
#include "kel/Make.h"
#include "kel/System.h"

namespace QosSnmpHost {
namespace {

const std::filesystem::path kExamples = std::filesystem::path(QOS_SOURCE_DIR) / "examples";
const std::string kSwitchFile = (kExamples / "leaf-switch.json").lexically_normal().string();
const std::string kChangesFile = (kExamples / "leaf-switch-changes.jsonl").lexically_normal().string();

class LeafSwitchExampleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto loaded = SwitchState::loadFile(kSwitchFile);
    ASSERT_TRUE(loaded) << loaded.error().text();
    state_.emplace(std::move(loaded.value()));
    state_->guardIs(&guard_);
    const auto refused = state_->checkBuild();
    ASSERT_FALSE(refused) << refused->text();
    root_ = QosSnmp::rootSmFactory(state_->qosConfig(), state_->qosStatus(), state_->hwStatus(),
                                   state_->sliceHwStatusDir(), state_->aclSliceHwStatusDir(),
                                   state_->mibConfig(), state_->allIntfStatusDir(), state_->hwCounter(), mib_,
                                   state_->ecnCounterTable());
    state_->buildApplied();
  }

  void TearDown() override {
    root_ = nullptr;
    if (state_) {
      state_->guardIs(nullptr);
    }
  }

  nlohmann::ordered_json dump() const {
    const MibDump mibDump([this](const Kel::Entity& entity) { return state_->pathOf(&entity); });
    return mibDump.json(*mib_);
  }

  // The example's change lines, with their line numbers.
  static std::vector<std::pair<int, std::string>> changeLines() {
    std::ifstream in(kChangesFile);
    EXPECT_TRUE(in) << kChangesFile;
    std::vector<std::pair<int, std::string>> lines;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      lines.emplace_back(number, line);
    }
    return lines;
  }

  Kel::VirtualTime time_;
  const Kel::Ptr<QosSnmp::QosMib> mib_ = Kel::make<QosSnmp::QosMib>();
  InvariantGuard guard_{*mib_, true};
  std::optional<SwitchState> state_;
  Kel::Ptr<QosSnmp::RootSm> root_;
};

TEST_F(LeafSwitchExampleTest, ExampleFillsEveryTableAndBothMaps) {
  const nlohmann::ordered_json mib = dump();
  for (const std::string& table : MibDump::tableNames()) {
    EXPECT_FALSE(mib[table].empty()) << table << " is empty";
  }
  for (const std::string& map : MibDump::mapNames()) {
    EXPECT_FALSE(mib[map].empty()) << map << " is empty";
  }
}

TEST_F(LeafSwitchExampleTest, EveryChangeIsAcceptedAndEveryTableChanges) {
  std::set<std::string> changedTables;
  nlohmann::ordered_json before = dump();
  int applied = 0;
  int advances = 0;
  for (const auto& [number, line] : changeLines()) {
    const auto change = state_->apply(line, {kChangesFile, number});
    ASSERT_TRUE(change) << change.error().text();
    if (change->op == Change::Op::advance) {
      time_.advance(change->seconds);
      ++advances;
    } else if (change->op != Change::Op::none) {
      ++applied;
    }
    const nlohmann::ordered_json after = dump();
    for (const std::string& table : MibDump::tableNames()) {
      if (after[table] != before[table]) {
        changedTables.insert(table);
      }
    }
    before = after;
  }
  EXPECT_GT(applied, 0);
  EXPECT_GT(advances, 0);
  for (const std::string& table : MibDump::tableNames()) {
    EXPECT_TRUE(changedTables.contains(table)) << table << " never changed";
  }
  // The stream ends in a switch that still shows every table.
  for (const std::string& table : MibDump::tableNames()) {
    EXPECT_FALSE(before[table].empty()) << table << " is empty at the end";
  }
}

}  // namespace
}  // namespace QosSnmpHost
