#include "host/log/Logger.h"

#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using QosSnmpHost::LogDestination;
using QosSnmpHost::Logger;
using QosSnmpHost::LogLevel;

class LoggerTest : public ::testing::Test {
 protected:
  LoggerTest() {
    Logger::streamIsForTest(&out_);
    Logger::destinationIs(LogDestination::standardError);
    Logger::thresholdIs(LogLevel::info);
  }
  ~LoggerTest() override {
    Logger::streamIsForTest(nullptr);
    Logger::thresholdIs(LogLevel::info);
  }
  std::ostringstream out_;
};

TEST_F(LoggerTest, LineHasUtcTimeStampWithMillisecondsLevelAndComponent) {
  // 2026-11-25T00:41:07.123Z
  const auto when = std::chrono::system_clock::time_point(std::chrono::milliseconds(1795567267123));
  EXPECT_EQ(Logger::line(when, LogLevel::warning, "snmp", "lost the master"),
            "2026-11-25T00:41:07.123Z warning snmp: lost the master");
  const auto whole = std::chrono::system_clock::time_point(std::chrono::seconds(1795567267));
  EXPECT_EQ(Logger::line(whole, LogLevel::info, "main", "x"), "2026-11-25T00:41:07.000Z info main: x");
}

TEST_F(LoggerTest, LogWritesOneStampedLinePerMessage) {
  Logger::info("main", "starting");
  Logger::error("config", "bad key");
  // Each line: an ISO time stamp with milliseconds ("2026-11-25T00:41:07.123Z",
  // 24 characters), a space, the level, the component and the text.
  const std::string out = out_.str();
  const auto stamped = [](std::string_view line, std::string_view rest) {
    constexpr std::string_view kShape = "dddd-dd-ddTdd:dd:dd.dddZ ";
    if (line.size() != kShape.size() + rest.size() || line.substr(kShape.size()) != rest) {
      return false;
    }
    for (std::size_t i = 0; i < kShape.size(); ++i) {
      const bool digit = line[i] >= '0' && line[i] <= '9';
      if (kShape[i] == 'd' ? !digit : line[i] != kShape[i]) {
        return false;
      }
    }
    return true;
  };
  const std::size_t newline = out.find('\n');
  ASSERT_NE(newline, std::string::npos) << out;
  ASSERT_TRUE(out.ends_with('\n')) << out;
  EXPECT_TRUE(stamped(std::string_view(out).substr(0, newline), "info main: starting")) << out;
  EXPECT_TRUE(
      stamped(std::string_view(out).substr(newline + 1, out.size() - newline - 2), "error config: bad key"))
      << out;
}

TEST_F(LoggerTest, MessagesBelowTheThresholdAreDropped) {
  Logger::thresholdIs(LogLevel::warning);
  Logger::info("main", "quiet");
  Logger::debug("main", "quieter");
  EXPECT_EQ(out_.str(), "");
  Logger::warning("main", "loud");
  EXPECT_NE(out_.str().find("warning main: loud\n"), std::string::npos);
  Logger::thresholdIs(LogLevel::debug);
  Logger::debug("main", "detail");
  EXPECT_NE(out_.str().find("debug main: detail\n"), std::string::npos);
}

TEST_F(LoggerTest, LineBreaksAndControlCharactersCannotForgeLines) {
  Logger::info("changes", "line one\n2026-01-01T00:00:00.000Z error main: forged\x01\n");
  const std::string text = out_.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
  EXPECT_NE(text.find("line one 2026-01-01T00:00:00.000Z error main: forged?"), std::string::npos) << text;
}

TEST_F(LoggerTest, OverlongTextIsCut) {
  Logger::info("main", std::string(3 * Logger::kMaxTextBytes, 'x'));
  const std::string text = out_.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), 'x'), static_cast<long>(Logger::kMaxTextBytes));
}

TEST_F(LoggerTest, LevelAndDestinationNamesAreParsed) {
  EXPECT_EQ(Logger::levelNamed("debug"), LogLevel::debug);
  EXPECT_EQ(Logger::levelNamed("notice"), LogLevel::notice);
  EXPECT_EQ(Logger::levelNamed("error"), LogLevel::error);
  EXPECT_EQ(Logger::levelNamed("verbose"), std::nullopt);
  EXPECT_EQ(Logger::nameOf(LogLevel::warning), "warning");
  EXPECT_EQ(Logger::destinationNamed("stderr"), LogDestination::standardError);
  EXPECT_EQ(Logger::destinationNamed("syslog"), LogDestination::syslog);
  EXPECT_EQ(Logger::destinationNamed("file"), std::nullopt);
}

TEST_F(LoggerTest, SyslogDestinationWritesNothingToStandardError) {
  Logger::destinationIs(LogDestination::syslog);
  Logger::error("main", "to syslog only");
  Logger::destinationIs(LogDestination::standardError);
  EXPECT_EQ(Logger::destination(), LogDestination::standardError);
  EXPECT_EQ(out_.str(), "");
}

}  // namespace
