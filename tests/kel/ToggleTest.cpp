#include "kel/Toggle.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "toggles/JsonToggleStore.h"

namespace Kel {
namespace {

// A store answering from a fixed table, to test the lookup apart from files.
class FixedToggleStore : public ToggleStore {
 public:
  explicit FixedToggleStore(std::map<std::pair<std::string, std::string>, bool> states)
      : states_(std::move(states)) {}

  std::optional<bool> toggleState(const std::string& name, const std::string& file) override {
    const auto found = states_.find({name, file});
    return found == states_.end() ? std::nullopt : std::optional<bool>(found->second);
  }

 private:
  std::map<std::pair<std::string, std::string>, bool> states_;
};

class ToggleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/ToggleTest.XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    directory_ = pattern;
    toggleStoreIs(nullptr);
  }

  void TearDown() override {
    toggleStoreIs(nullptr);
    unsetenv(JsonToggleStore::kDirectoryVariable);
    std::filesystem::remove_all(directory_);
  }

  void writeFile(const std::string& file, const std::string& contents) const {
    std::ofstream(directory_ + "/" + file) << contents;
  }

  void installJsonStore() const { toggleStoreIs(std::make_shared<JsonToggleStore>(directory_)); }

  std::string directory_;
};

TEST_F(ToggleTest, DefaultWithoutStore) {
  EXPECT_EQ(toggleStore(), nullptr);
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
}

TEST_F(ToggleTest, StoreAnswerOverridesDefault) {
  toggleStoreIs(std::make_shared<FixedToggleStore>(
      std::map<std::pair<std::string, std::string>, bool>{{{"On", "qos"}, true}, {{"Off", "qos"}, false}}));
  EXPECT_TRUE(getToggleState("On", "qos", false));
  EXPECT_FALSE(getToggleState("Off", "qos", true));
  EXPECT_TRUE(getToggleState("On", "other", true));
  EXPECT_FALSE(getToggleState("On", "other", false));
  EXPECT_TRUE(getToggleState("Unknown", "qos", true));
}

TEST_F(ToggleTest, NullStoreRemovesTheStore) {
  toggleStoreIs(std::make_shared<FixedToggleStore>(
      std::map<std::pair<std::string, std::string>, bool>{{{"Off", "qos"}, false}}));
  EXPECT_FALSE(getToggleState("Off", "qos", true));
  toggleStoreIs(nullptr);
  EXPECT_EQ(toggleStore(), nullptr);
  EXPECT_TRUE(getToggleState("Off", "qos", true));
}

TEST_F(ToggleTest, DefaultWhenFileMissing) {
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ToggleTest, DefaultWhenToggleNotInFile) {
  writeFile("qos", R"({"OtherToggle": false})");
  installJsonStore();
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
}

TEST_F(ToggleTest, FileOverridesDefault) {
  writeFile("qos", R"({"QosEcnStats": false, "QosCoppPolicer": true})");
  installJsonStore();
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
  EXPECT_TRUE(getToggleState("QosCoppPolicer", "qos", false));
  EXPECT_TRUE(getToggleState("QosCoppPolicer", "qos", true));
}

TEST_F(ToggleTest, TogglesAreLookedUpInTheirOwnFile) {
  writeFile("qos", R"({"Shared": true})");
  writeFile("snmp", R"({"Shared": false})");
  installJsonStore();
  EXPECT_TRUE(getToggleState("Shared", "qos", false));
  EXPECT_FALSE(getToggleState("Shared", "snmp", true));
}

TEST_F(ToggleTest, FileEditsTakeEffectOnNextQuery) {
  writeFile("qos", R"({"QosEcnStats": false})");
  installJsonStore();
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", true));
  writeFile("qos", R"({"QosEcnStats": true})");
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", false));
}

TEST_F(ToggleTest, MalformedFileGivesDefaultAndNamesTheFile) {
  writeFile("qos", R"({"QosEcnStats": false)");
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  const std::string logged = testing::internal::GetCapturedStderr();
  EXPECT_EQ(logged, "toggles: ignoring " + directory_ + "/qos: not valid JSON\n");
}

TEST_F(ToggleTest, FileThatIsNotAnObjectGivesDefault) {
  writeFile("qos", R"(["QosEcnStats"])");
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
  const std::string logged = testing::internal::GetCapturedStderr();
  EXPECT_THAT(logged, testing::HasSubstr(directory_ + "/qos: not a JSON object"));
}

TEST_F(ToggleTest, EmptyFileGivesDefault) {
  writeFile("qos", "");
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(directory_ + "/qos"));
}

TEST_F(ToggleTest, NonBooleanValueGivesDefaultAndNamesFileAndToggle) {
  writeFile("qos", R"({"AsString": "false", "AsNumber": 0, "AsObject": {"enabled": false}, "Good": false})");
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("AsString", "qos", true));
  EXPECT_TRUE(getToggleState("AsNumber", "qos", true));
  EXPECT_TRUE(getToggleState("AsObject", "qos", true));
  EXPECT_FALSE(getToggleState("Good", "qos", true));
  const std::string logged = testing::internal::GetCapturedStderr();
  EXPECT_EQ(logged, "toggles: ignoring " + directory_ + "/qos: toggle 'AsString' is not a boolean\n" +
                        "toggles: ignoring " + directory_ + "/qos: toggle 'AsNumber' is not a boolean\n" +
                        "toggles: ignoring " + directory_ + "/qos: toggle 'AsObject' is not a boolean\n");
}

TEST_F(ToggleTest, EmptyFileNameGivesDefault) {
  installJsonStore();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(getToggleState("QosEcnStats", "", true));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ToggleTest, EmptyDirectoryMeansEnvironmentVariable) {
  writeFile("qos", R"({"QosEcnStats": false})");
  ASSERT_EQ(setenv(JsonToggleStore::kDirectoryVariable, directory_.c_str(), 1), 0);
  const auto store = std::make_shared<JsonToggleStore>("");
  EXPECT_EQ(store->directory(), directory_);
  toggleStoreIs(store);
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", true));
}

TEST_F(ToggleTest, GivenDirectoryWinsOverEnvironmentVariable) {
  ASSERT_EQ(setenv(JsonToggleStore::kDirectoryVariable, "/nonexistent", 1), 0);
  EXPECT_EQ(JsonToggleStore(directory_).directory(), directory_);
}

TEST_F(ToggleTest, NoDirectoryAnywhereGivesDefault) {
  unsetenv(JsonToggleStore::kDirectoryVariable);
  const auto store = std::make_shared<JsonToggleStore>("");
  EXPECT_EQ(store->directory(), "");
  toggleStoreIs(store);
  EXPECT_TRUE(getToggleState("QosEcnStats", "qos", true));
  EXPECT_FALSE(getToggleState("QosEcnStats", "qos", false));
}

}  // namespace
}  // namespace Kel
