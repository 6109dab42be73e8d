#include "host/app/ConfigFile.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using QosSnmpHost::ConfigFile;

// A program shaped like qos-snmp-agent: --config on the program, options
// on the subcommands.
class ConfigFileTest : public ::testing::Test {
 protected:
  ConfigFileTest() {
    app_.fallthrough();
    config_ = app_.set_config("--config", "", "configuration file");
    app_.config_formatter(std::make_shared<ConfigFile>(app_, *config_));
    run_ = app_.add_subcommand("run");
    run_->add_option("--state", state_)->required();
    run_->add_option("--community", community_);
    run_->add_option("--agentx-ping-interval", interval_);
    check_ = app_.add_subcommand("check");
    check_->add_option("--state", state_);
  }
  ~ConfigFileTest() override { std::filesystem::remove_all(dir_); }

  std::string write(const std::string& text) {
    std::filesystem::create_directories(dir_);
    std::string path = (dir_ / "agent.conf").string();
    std::ofstream(path) << text;
    return path;
  }
  // The parse error's text, or "" when the command line parses.
  std::string parse(std::vector<std::string> args) {
    std::vector<char*> argv = {program_.data()};
    for (std::string& arg : args) {
      argv.push_back(arg.data());
    }
    try {
      app_.parse(static_cast<int>(argv.size()), argv.data());
    } catch (const CLI::ParseError& error) {
      return error.what();
    }
    return "";
  }

  std::filesystem::path dir_ =
      std::filesystem::path(::testing::TempDir()) / ("config-file-" + std::to_string(::getpid()));
  std::string program_ = "qos-snmp-agent";
  CLI::App app_;
  CLI::Option* config_ = nullptr;
  CLI::App* run_ = nullptr;
  CLI::App* check_ = nullptr;
  std::string state_;
  std::string community_ = "public";
  int interval_ = 15;
};

TEST_F(ConfigFileTest, KeysFillTheSubcommandsOptions) {
  const std::string path =
      write("# comment\nstate = /var/state.json\n\ncommunity = \"c1\"\nagentx-ping-interval = 3\n");
  ASSERT_EQ(parse({"run", "--config", path}), "");
  EXPECT_EQ(state_, "/var/state.json");
  EXPECT_EQ(community_, "c1");
  EXPECT_EQ(interval_, 3);
}

TEST_F(ConfigFileTest, CommandLineOverridesTheFile) {
  const std::string path = write("state = /var/state.json\ncommunity = c1\n");
  ASSERT_EQ(parse({"run", "--community", "c2", "--config", path}), "");
  EXPECT_EQ(community_, "c2");
  EXPECT_EQ(state_, "/var/state.json");
}

TEST_F(ConfigFileTest, UnknownKeyNamesTheFileAndTheLine) {
  const std::string path = write("state = /var/state.json\n# comment\n\nlisten-on = x\n");
  EXPECT_EQ(parse({"run", "--config", path}), path + ":4: unknown key 'listen-on' (not an option of run)");
}

TEST_F(ConfigFileTest, KeyOfAnotherSubcommandIsUnknown) {
  const std::string path = write("state = /var/state.json\ncommunity = c1\n");
  EXPECT_EQ(parse({"check", "--config", path}),
            path + ":2: unknown key 'community' (not an option of check)");
}

TEST_F(ConfigFileTest, SectionsAreRefusedWithTheirLine) {
  const std::string path = write("[run]\nstate = x\n");
  EXPECT_EQ(parse({"run", "--config", path}),
            path + ":1: sections are not used; write the keys of one subcommand: [run]");
}

TEST_F(ConfigFileTest, OversizedFileIsRefused) {
  const std::string path = write("# " + std::string(ConfigFile::kMaxBytes, 'x') + "\nstate = x\n");
  EXPECT_EQ(parse({"run", "--config", path}), path + ": larger than 65536 bytes");
}

TEST_F(ConfigFileTest, MissingGivenFileIsAnError) {
  EXPECT_NE(parse({"run", "--config", (dir_ / "absent.conf").string(), "--state", "x"}), "");
}

}  // namespace
