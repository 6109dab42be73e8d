#include "kel/Trace.h"

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kel/String.h"

namespace Kel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

U32 levelMask(std::initializer_list<int> levels) {
  U32 mask = 0;
  for (const int level : levels) {
    mask |= U32{1} << level;
  }
  return mask;
}

// Every test starts and ends with no configuration and no KEL_TRACE, so
// handles start with every level disabled.
class TraceTest : public ::testing::Test {
 protected:
  void SetUp() override { forgetConfiguration(); }
  void TearDown() override { forgetConfiguration(); }

  static void forgetConfiguration() {
    unsetenv("KEL_TRACE");
    traceConfigurationResetForTest();
  }

  CapturingTraceSink sink_;
};

TEST_F(TraceTest, NewHandleWithoutConfigurationIsSilent) {
  const TraceHandle handle("QosSnmp");
  EXPECT_EQ(handle.module(), "QosSnmp");
  EXPECT_EQ(handle.levels(), 0U);
  for (int level = 0; level < TraceHandle::kLevelCount; ++level) {
    EXPECT_FALSE(handle.enabled(level)) << level;
  }
}

TEST_F(TraceTest, EnabledTestsOneLevelBit) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({0, 8, 31}));
  EXPECT_EQ(handle.levels(), levelMask({0, 8, 31}));
  EXPECT_TRUE(handle.enabled(0));
  EXPECT_TRUE(handle.enabled(8));
  EXPECT_TRUE(handle.enabled(31));
  EXPECT_FALSE(handle.enabled(1));
  EXPECT_FALSE(handle.enabled(9));
  EXPECT_FALSE(handle.enabled(30));
}

TEST_F(TraceTest, DisabledLevelBuildsNothing) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({7}));
  int evaluations = 0;
  const auto operand = [&evaluations] { return ++evaluations; };

  if (auto t = handle.line(8)) {
    t << "operand " << operand();
  }

  EXPECT_EQ(evaluations, 0);
  EXPECT_TRUE(sink_.lines().empty());
}

TEST_F(TraceTest, EnabledLevelWritesModuleLevelAndText) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({8}));
  int evaluations = 0;
  const auto operand = [&evaluations] { return ++evaluations; };
  const String type("cmap-match-any");

  if (auto t = handle.line(8)) {
    t << "RootSm::handleCmapType( " << type << " ) " << operand();
  }

  EXPECT_EQ(evaluations, 1);
  EXPECT_THAT(sink_.lines(),
              ElementsAre(CapturedTraceLine{"QosSnmp", 8, "RootSm::handleCmapType( cmap-match-any ) 1"}));
}

TEST_F(TraceTest, HelperReportsWhetherItIsEnabled) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({2}));
  EXPECT_TRUE(handle.line(2));
  EXPECT_FALSE(handle.line(3));
  EXPECT_TRUE(TraceHelper(handle, 2, __FILE__, __LINE__, __func__));
  EXPECT_FALSE(TraceHelper(handle, 3, __FILE__, __LINE__, __func__));
}

TEST_F(TraceTest, TemporaryHelperWritesAtEndOfStatement) {
  TraceHandle handle("Kel");
  handle.levelsIs(levelMask({1}));

  handle.line(1) << "one " << 1;
  handle.line(2) << "two " << 2;

  EXPECT_THAT(sink_.lines(), ElementsAre(CapturedTraceLine{"Kel", 1, "one 1"}));
}

TEST_F(TraceTest, ValuesPrintAsOnAPlainStream) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({0}));
  const std::string name = "policy";
  const std::string_view view = "view";
  const char* missing = nullptr;

  if (auto t = handle.line(0)) {
    t << U8{200} << ' ' << S8{-5} << ' ' << U16{65535} << ' ' << S64{-1} << ' ' << 'c' << ' ' << true << ' '
      << false << ' ' << 1.5 << ' ' << 0.1 + 0.2 << ' ' << std::numeric_limits<double>::infinity() << ' '
      << name << ' ' << view << ' ' << missing;
  }

  EXPECT_THAT(sink_.texts(), ElementsAre("200 -5 65535 -1 c 1 0 1.5 0.3 inf policy view (null)"));
}

TEST_F(TraceTest, ManipulatorLastsForTheLine) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({0}));

  handle.line(0) << std::hex << 255 << ' ' << 16;
  handle.line(0) << 255;

  EXPECT_THAT(sink_.texts(), ElementsAre("ff 10", "255"));
}

TEST_F(TraceTest, MovedFromHelperWritesNothing) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({4}));
  {
    TraceHelper first = handle.line(4);
    first << "moved ";
    TraceHelper second(std::move(first));
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): a moved-from helper is disabled
    EXPECT_TRUE(second);
    first << "lost";
    second << "kept";
  }
  EXPECT_THAT(sink_.texts(), ElementsAre("moved kept"));
}

TEST_F(TraceTest, ConfigurationSetsRangesAndLists) {
  TraceHandle handle("QosSnmp");
  EXPECT_EQ(traceLevelsIs("QosSnmp/0-3,8, 12 - 13 ,31"), std::nullopt);
  EXPECT_EQ(handle.levels(), levelMask({0, 1, 2, 3, 8, 12, 13, 31}));
}

TEST_F(TraceTest, StarEnablesEveryLevel) {
  TraceHandle handle("QosSnmp");
  EXPECT_EQ(traceLevelsIs("QosSnmp/*"), std::nullopt);
  EXPECT_EQ(handle.levels(), 0xffffffffU);
}

TEST_F(TraceTest, StarModuleConfiguresEveryHandle) {
  TraceHandle qosSnmp("QosSnmp");
  TraceHandle kel("Kel");
  EXPECT_EQ(traceLevelsIs("*/1"), std::nullopt);
  EXPECT_EQ(qosSnmp.levels(), levelMask({1}));
  EXPECT_EQ(kel.levels(), levelMask({1}));
}

TEST_F(TraceTest, ConfigurationLeavesUnnamedModulesAlone) {
  TraceHandle qosSnmp("QosSnmp");
  TraceHandle kel("Kel");
  kel.levelsIs(levelMask({5}));
  EXPECT_EQ(traceLevelsIs("QosSnmp/1"), std::nullopt);
  EXPECT_EQ(qosSnmp.levels(), levelMask({1}));
  EXPECT_EQ(kel.levels(), levelMask({5}));
}

TEST_F(TraceTest, LaterEntryOverridesEarlier) {
  TraceHandle qosSnmp("QosSnmp");
  TraceHandle kel("Kel");
  EXPECT_EQ(traceLevelsIs("*/0-2;QosSnmp/8"), std::nullopt);
  EXPECT_EQ(qosSnmp.levels(), levelMask({8}));
  EXPECT_EQ(kel.levels(), levelMask({0, 1, 2}));

  EXPECT_EQ(traceLevelsIs("QosSnmp/3;*/4"), std::nullopt);
  EXPECT_EQ(qosSnmp.levels(), levelMask({4}));
  EXPECT_EQ(kel.levels(), levelMask({4}));
}

TEST_F(TraceTest, EmptyLevelListDisablesModule) {
  TraceHandle qosSnmp("QosSnmp");
  TraceHandle kel("Kel");
  EXPECT_EQ(traceLevelsIs("*/*;QosSnmp/"), std::nullopt);
  EXPECT_EQ(qosSnmp.levels(), 0U);
  EXPECT_EQ(kel.levels(), 0xffffffffU);
}

TEST_F(TraceTest, EmptyEntriesAreSkipped) {
  TraceHandle handle("QosSnmp");
  EXPECT_EQ(traceLevelsIs(""), std::nullopt);
  EXPECT_EQ(traceLevelsIs(" ; QosSnmp/2 ;;"), std::nullopt);
  EXPECT_EQ(handle.levels(), levelMask({2}));
}

TEST_F(TraceTest, MalformedConfigurationIsRejectedAndChangesNothing) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({6}));
  for (const char* text :
       {"QosSnmp", "/1", "QosSnmp/32", "QosSnmp/-1", "QosSnmp/3-1", "QosSnmp/1,,2", "QosSnmp/1,", "QosSnmp/x",
        "QosSnmp/1-", "QosSnmp/1-2-3", "QosSnmp/0,Kel/1", "Qos Snmp/1", "QosSnmp/1;Kel"}) {
    const std::optional<std::string> error = traceLevelsIs(text);
    ASSERT_TRUE(error.has_value()) << text;
    EXPECT_THAT(*error, HasSubstr("trace entry")) << text;
    EXPECT_EQ(handle.levels(), levelMask({6})) << text;
  }

  // Nothing was recorded for handles registered later either.
  const TraceHandle later("QosSnmp");
  EXPECT_EQ(later.levels(), 0U);
}

TEST_F(TraceTest, MalformedConfigurationNamesTheEntry) {
  EXPECT_EQ(traceLevelsIs("Kel/1;QosSnmp/40"),
            std::optional<std::string>(
                "trace entry \"QosSnmp/40\": \"40\" is not a level 0-31, a range of them or *"));
}

TEST_F(TraceTest, HandleRegisteredLaterTakesConfiguredLevels) {
  EXPECT_EQ(traceLevelsIs("*/1;QosSnmp/2-3"), std::nullopt);
  const TraceHandle qosSnmp("QosSnmp");
  const TraceHandle kel("Kel");
  EXPECT_EQ(qosSnmp.levels(), levelMask({2, 3}));
  EXPECT_EQ(kel.levels(), levelMask({1}));
}

TEST_F(TraceTest, DestroyedHandleIsNoLongerConfigured) {
  auto handle = std::make_unique<TraceHandle>("QosSnmp");
  handle.reset();
  // Would touch freed memory if the handle were still registered.
  EXPECT_EQ(traceLevelsIs("QosSnmp/1"), std::nullopt);
}

TEST_F(TraceTest, EnvironmentConfiguresFirstHandle) {
  setenv("KEL_TRACE", "QosSnmp/3-4;Kel/0", 1);
  const TraceHandle qosSnmp("QosSnmp");
  const TraceHandle kel("Kel");
  EXPECT_EQ(qosSnmp.levels(), levelMask({3, 4}));
  EXPECT_EQ(kel.levels(), levelMask({0}));
}

TEST_F(TraceTest, EnvironmentIsReadOnlyOnce) {
  setenv("KEL_TRACE", "QosSnmp/3", 1);
  const TraceHandle first("QosSnmp");
  setenv("KEL_TRACE", "QosSnmp/5", 1);
  const TraceHandle second("QosSnmp");
  EXPECT_EQ(first.levels(), levelMask({3}));
  EXPECT_EQ(second.levels(), levelMask({3}));
}

TEST_F(TraceTest, AppliedConfigurationComesOnTopOfEnvironment) {
  setenv("KEL_TRACE", "QosSnmp/3;Kel/4", 1);
  EXPECT_EQ(traceLevelsIs("QosSnmp/5"), std::nullopt);
  const TraceHandle qosSnmp("QosSnmp");
  const TraceHandle kel("Kel");
  EXPECT_EQ(qosSnmp.levels(), levelMask({5}));
  EXPECT_EQ(kel.levels(), levelMask({4}));
}

TEST_F(TraceTest, MalformedEnvironmentIsReportedAndIgnored) {
  setenv("KEL_TRACE", "QosSnmp/99", 1);
  ::testing::internal::CaptureStderr();
  const TraceHandle handle("QosSnmp");
  const std::string report = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(handle.levels(), 0U);
  EXPECT_THAT(report, HasSubstr("KEL_TRACE ignored: trace entry \"QosSnmp/99\""));
}

TEST_F(TraceTest, CapturingSinkRestoresPreviousSink) {
  TraceSink* const outer = traceSink();
  EXPECT_EQ(outer, &sink_);
  {
    CapturingTraceSink inner;
    EXPECT_EQ(traceSink(), &inner);
  }
  EXPECT_EQ(traceSink(), outer);
}

TEST_F(TraceTest, CapturingSinkClearForgetsLines) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({0}));
  handle.line(0) << "before";
  sink_.clear();
  handle.line(0) << "after";
  EXPECT_THAT(sink_.texts(), ElementsAre("after"));
}

TEST_F(TraceTest, NullSinkRestoresDefault) {
  traceSinkIs(nullptr);
  TraceSink* const standard = traceSink();
  EXPECT_NE(standard, &sink_);
  traceSinkIs(&sink_);
  EXPECT_EQ(traceSink(), &sink_);
  traceSinkIs(nullptr);
  EXPECT_EQ(traceSink(), standard);
  traceSinkIs(&sink_);
}

TEST_F(TraceTest, DefaultSinkWritesOneLineToStderr) {
  TraceHandle handle("QosSnmp");
  handle.levelsIs(levelMask({8}));
  traceSinkIs(nullptr);
  ::testing::internal::CaptureStderr();
  TraceHelper(handle, 8, "/src/QosSnmp/core/RootSm.cpp", 42, "handleCmapType") << "cmap " << U8{7};
  TraceHelper(handle, 8, "Bare.cpp", 7, "f") << "no directory";
  const std::string written = ::testing::internal::GetCapturedStderr();
  traceSinkIs(&sink_);
  EXPECT_EQ(written, "QosSnmp/8 RootSm.cpp:42 cmap 7\nQosSnmp/8 Bare.cpp:7 no directory\n");
  EXPECT_TRUE(sink_.lines().empty());
}

TEST(TraceDeathTest, LevelOutsideRangeAborts) {
  const TraceHandle handle("QosSnmp");
  EXPECT_DEATH(static_cast<void>(handle.enabled(32)), "level");
  EXPECT_DEATH(static_cast<void>(handle.enabled(-1)), "level");
}

}  // namespace
}  // namespace Kel
