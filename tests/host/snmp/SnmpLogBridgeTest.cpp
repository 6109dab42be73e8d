#include "host/snmp/SnmpLogBridge.h"

#include <syslog.h>

#include <sstream>

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace {

using QosSnmpHost::Logger;
using QosSnmpHost::LogLevel;
using QosSnmpHost::SnmpLogBridge;

class SnmpLogBridgeTest : public ::testing::Test {
 protected:
  SnmpLogBridgeTest() {
    Logger::streamIsForTest(&out_);
    Logger::thresholdIs(LogLevel::debug);
  }
  ~SnmpLogBridgeTest() override {
    Logger::streamIsForTest(nullptr);
    Logger::thresholdIs(LogLevel::info);
  }
  std::ostringstream out_;
};

TEST_F(SnmpLogBridgeTest, LibraryLinesReachTheLoggerWithTheirLevel) {
  SnmpLogBridge::install();
  SnmpLogBridge::install();  // a second install adds no second handler
  snmp_log(LOG_WARNING, "Warning: Failed to connect to the agentx master agent (%s)\n", "/tmp/x");
  snmp_log(LOG_ERR, "Error opening specified endpoint\n");
  const std::string text = out_.str();
  EXPECT_NE(text.find("Z warning net-snmp: Warning: Failed to connect to the agentx master agent (/tmp/x)\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Z error net-snmp: Error opening specified endpoint\n"), std::string::npos) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
}

TEST_F(SnmpLogBridgeTest, PiecesAreJoinedIntoOneLine) {
  SnmpLogBridge::add(LOG_INFO, "first half, ");
  EXPECT_EQ(out_.str(), "");
  SnmpLogBridge::add(LOG_INFO, "second half\nnext line\n");
  const std::string text = out_.str();
  EXPECT_NE(text.find("info net-snmp: first half, second half\n"), std::string::npos) << text;
  EXPECT_NE(text.find("info net-snmp: next line\n"), std::string::npos) << text;
}

TEST_F(SnmpLogBridgeTest, EndlessLineIsCutAtTheLoggerLimit) {
  for (int i = 0; i < 100; ++i) {
    SnmpLogBridge::add(LOG_NOTICE, std::string(1000, 'y'));
  }
  SnmpLogBridge::add(LOG_NOTICE, "\n");
  const std::string text = out_.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), 'y'), static_cast<long>(Logger::kMaxTextBytes));
  EXPECT_NE(text.find("notice net-snmp: yyy"), std::string::npos);
}

TEST_F(SnmpLogBridgeTest, PrioritiesMapToLevels) {
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_DEBUG), LogLevel::debug);
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_INFO), LogLevel::info);
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_NOTICE), LogLevel::notice);
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_WARNING), LogLevel::warning);
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_ERR), LogLevel::error);
  EXPECT_EQ(SnmpLogBridge::levelOf(LOG_CRIT), LogLevel::error);
}

}  // namespace
