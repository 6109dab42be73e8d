#include "kel/RingTrace.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "kel/RingTraceCommand.h"
#include "kel/RingTraceLayout.h"
#include "kel/RingTraceReader.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace {

using Kel::S64;
using Kel::U32;
using Kel::U64;
using RingTrace::Value;

// 2023-11-14T22:13:20Z.
constexpr U64 kRealtimeAtCreation = 1'700'000'000'000'000'000U;
constexpr U64 kSteadyAtCreation = 1'000;

class FakeTimeSource : public RingTrace::TimeSource {
 public:
  U64 steadyNs() noexcept override { return steadyNs_; }
  U64 realtimeNs() noexcept override { return kRealtimeAtCreation; }

  void advance(U64 ns) { steadyNs_ += ns; }
  U64 now() const { return steadyNs_; }

 private:
  U64 steadyNs_ = kSteadyAtCreation;
};

enum class MapType { kQos = 1, kPbr = 3 };

// An interface id: a name only through stringValue().
struct IntfId {
  std::string stringValue() const { return "Ethernet" + std::to_string(port); }
  int port;
};

constinit RingTrace::Site cmapTypeSite("void QosSnmp::RootSm::handleCmapType(Qos::MapType)", "i");
constexpr U32 kCmapTypeSiteLine = __LINE__ - 1;
constinit RingTrace::Site servicePolicySite("void QosSnmp::ServicePolicySm::handlePolicy()", "ipp");
constexpr U32 kServicePolicySiteLine = __LINE__ - 1;
constinit RingTrace::Site counterSite("counter", "i");

// An agent handler, with its site where handlers keep it. Returns the line
// of the site's declaration.
U32 handleCmapType(MapType type) {
  static constinit RingTrace::Site site("void QosSnmp::RootSm::handleCmapType(Qos::MapType)", "i");
  constexpr U32 kSiteLine = __LINE__ - 1;
  RingTrace::BlockTimer timer(site, type);
  return kSiteLine;
}

class RingTraceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RingTrace::closeDefaultRingTraceFile();
    std::string pattern = (std::filesystem::temp_directory_path() / "RingTraceTest-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    directory_ = pattern;
  }

  void TearDown() override {
    RingTrace::closeDefaultRingTraceFile();
    std::filesystem::remove_all(directory_);
  }

  std::string pathOf(const std::string& name) const { return (directory_ / name).string(); }

  RingTrace::File& openDefault(const std::string& name = "agent.ring",
                               U64 capacity = RingTrace::File::kMinCapacity) {
    RingTrace::defaultRingTraceFileIs(RingTrace::File::create(pathOf(name), capacity, time_));
    return *RingTrace::defaultRingTraceFile();
  }

  RingTrace::Reader read(const std::string& name = "agent.ring") const {
    return RingTrace::Reader(pathOf(name));
  }

  // The command's output and exit status for `arguments`.
  struct CommandResult {
    int status;
    std::string out;
    std::string err;
  };
  static CommandResult runCommand(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = RingTrace::runRingTraceCommand(arguments, out, err);
    return {status, out.str(), err.str()};
  }

  static std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  FakeTimeSource time_;
  std::filesystem::path directory_;
};

TEST_F(RingTraceTest, EntryIsReadBackWithItsDescriptorAndArguments) {
  openDefault();
  time_.advance(500);
  RingTrace::message(servicePolicySite, MapType::kPbr, std::string("Ethernet1/1"),
                     Kel::String("copp-system-policy"));

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.descriptors().size(), 1U);
  const RingTrace::Descriptor& descriptor = reader.descriptors()[0];
  EXPECT_EQ(descriptor.messageId, 0U);
  EXPECT_EQ(descriptor.text, "void QosSnmp::ServicePolicySm::handlePolicy()");
  EXPECT_EQ(descriptor.format, "ipp");
  EXPECT_EQ(descriptor.file, __FILE__);
  EXPECT_EQ(descriptor.line, kServicePolicySiteLine);

  ASSERT_EQ(reader.entries().size(), 1U);
  const RingTrace::Entry& entry = reader.entries()[0];
  EXPECT_EQ(entry.sequence, 0U);
  EXPECT_EQ(entry.messageId, 0U);
  EXPECT_EQ(&reader.descriptorOf(entry), &descriptor);
  EXPECT_EQ(entry.timestampNs, kSteadyAtCreation + 500);
  EXPECT_FALSE(entry.isBlock);
  EXPECT_FALSE(entry.durationNs.has_value());
  EXPECT_EQ(entry.arguments,
            (std::vector<Value>{S64{3}, std::string("Ethernet1/1"), std::string("copp-system-policy")}));
}

TEST_F(RingTraceTest, FirstUseOfASiteRegistersItsDescriptorAndLaterUsesDoNot) {
  RingTrace::File& file = openDefault();
  RingTrace::message(cmapTypeSite, MapType::kQos);
  EXPECT_EQ(file.descriptorCount(), 1U);
  RingTrace::message(cmapTypeSite, MapType::kPbr);
  RingTrace::message(cmapTypeSite, 7);
  EXPECT_EQ(file.descriptorCount(), 1U);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.descriptors().size(), 1U);
  EXPECT_EQ(reader.descriptors()[0].line, kCmapTypeSiteLine);
  ASSERT_EQ(reader.entries().size(), 3U);
  for (const RingTrace::Entry& entry : reader.entries()) {
    EXPECT_EQ(entry.messageId, 0U);
  }
  EXPECT_EQ(reader.entries()[2].arguments, (std::vector<Value>{S64{7}}));
}

TEST_F(RingTraceTest, EachSiteGetsItsOwnMessageId) {
  openDefault();
  RingTrace::message(cmapTypeSite, 1);
  RingTrace::message(servicePolicySite, 2, "a", "b");
  RingTrace::message(cmapTypeSite, 3);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.descriptors().size(), 2U);
  ASSERT_EQ(reader.entries().size(), 3U);
  EXPECT_EQ(reader.descriptorOf(reader.entries()[0]).text, cmapTypeSite.text());
  EXPECT_EQ(reader.descriptorOf(reader.entries()[1]).text, servicePolicySite.text());
  EXPECT_EQ(reader.entries()[2].messageId, reader.entries()[0].messageId);
}

TEST_F(RingTraceTest, FunctionLocalSiteRecordsTheLineOfItsDeclaration) {
  openDefault();
  const U32 siteLine = handleCmapType(MapType::kQos);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.descriptors().size(), 1U);
  EXPECT_EQ(reader.descriptors()[0].text, "void QosSnmp::RootSm::handleCmapType(Qos::MapType)");
  EXPECT_EQ(reader.descriptors()[0].file, __FILE__);
  EXPECT_EQ(reader.descriptors()[0].line, siteLine);
}

TEST_F(RingTraceTest, IntegersOfEveryWidthAndSignAreStoredAsSixtyFourBits) {
  static constinit RingTrace::Site site("integers", "iiiiiii");
  openDefault();
  RingTrace::message(site, Kel::S8{-5}, Kel::U16{65535}, std::numeric_limits<S64>::min(),
                     std::numeric_limits<U64>::max(), true, 'A', MapType::kPbr);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 1U);
  EXPECT_EQ(reader.entries()[0].arguments,
            (std::vector<Value>{S64{-5}, S64{65535}, std::numeric_limits<S64>::min(), S64{-1}, S64{1},
                                S64{65}, S64{3}}));
}

TEST_F(RingTraceTest, StringArgumentsComeFromViewsStringsAndStringValues) {
  static constinit RingTrace::Site site("strings", "ppppppp");
  openDefault();
  const char* const nothing = nullptr;
  const char array[8] = "abc";
  RingTrace::message(site, "literal", nothing, std::string_view("view"), std::string("string"), array,
                     Kel::String("copp-system-policy"), IntfId{12});

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 1U);
  EXPECT_EQ(
      reader.entries()[0].arguments,
      (std::vector<Value>{std::string("literal"), std::string(), std::string("view"), std::string("string"),
                          std::string("abc"), std::string("copp-system-policy"), std::string("Ethernet12")}));
}

TEST_F(RingTraceTest, LongStringArgumentsAreCutToTheMaximumLength) {
  static constinit RingTrace::Site site("long name", "pi");
  openDefault();
  std::string name;
  for (int i = 0; name.size() < 100; ++i) {
    name += std::to_string(i % 10);
  }
  RingTrace::message(site, name, 42);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 1U);
  EXPECT_EQ(reader.entries()[0].arguments,
            (std::vector<Value>{name.substr(0, RingTrace::Layout::kMaxStringBytes), S64{42}}));
}

TEST_F(RingTraceTest, BlockTimerRecordsTheTimeUntilItsScopeEnds) {
  openDefault();
  {
    RingTrace::BlockTimer timer(cmapTypeSite, MapType::kQos);
    time_.advance(750);

    const RingTrace::Reader inside = read();
    ASSERT_EQ(inside.entries().size(), 1U);
    EXPECT_TRUE(inside.entries()[0].isBlock);
    EXPECT_FALSE(inside.entries()[0].durationNs.has_value());
  }

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 1U);
  const RingTrace::Entry& entry = reader.entries()[0];
  EXPECT_TRUE(entry.isBlock);
  EXPECT_EQ(entry.timestampNs, kSteadyAtCreation);
  EXPECT_EQ(entry.durationNs, U64{750});
  EXPECT_EQ(entry.arguments, (std::vector<Value>{S64{1}}));
}

TEST_F(RingTraceTest, BlockTimerWithTheSystemClockRecordsADurationAndOrderedTimestamps) {
  RingTrace::defaultRingTraceFileIs(
      RingTrace::File::create(pathOf("agent.ring"), RingTrace::File::kMinCapacity));
  {
    RingTrace::BlockTimer timer(cmapTypeSite, MapType::kQos);
    volatile U64 sum = 0;
    for (U64 i = 0; i < 10'000; ++i) {
      sum = sum + i;
    }
    RingTrace::message(counterSite, sum);
  }

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 2U);
  const RingTrace::Entry& block = reader.entries()[0];
  const RingTrace::Entry& inner = reader.entries()[1];
  ASSERT_TRUE(block.durationNs.has_value());
  EXPECT_GE(inner.timestampNs, block.timestampNs);
  EXPECT_GE(block.timestampNs + *block.durationNs, inner.timestampNs);
}

TEST_F(RingTraceTest, NestedBlockTimersEachRecordTheirOwnDuration) {
  static constinit RingTrace::Site inner("inner", "");
  openDefault();
  {
    RingTrace::BlockTimer outer(cmapTypeSite, 1);
    time_.advance(100);
    {
      RingTrace::BlockTimer timer(inner);
      time_.advance(20);
    }
    time_.advance(3);
  }

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 2U);
  EXPECT_EQ(reader.entries()[0].durationNs, U64{123});
  EXPECT_EQ(reader.entries()[1].durationNs, U64{20});
  EXPECT_EQ(reader.entries()[1].timestampNs, kSteadyAtCreation + 100);
}

TEST_F(RingTraceTest, WrapAroundKeepsTheNewestEntriesInOrder) {
  RingTrace::File& file = openDefault();
  constexpr S64 kWritten = 5'000;
  for (S64 i = 0; i < kWritten; ++i) {
    RingTrace::message(counterSite, i);
    time_.advance(1);
  }
  EXPECT_EQ(file.entriesWritten(), U64{kWritten});

  const RingTrace::Reader reader = read();
  const std::vector<RingTrace::Entry>& entries = reader.entries();
  ASSERT_GT(entries.size(), 100U);
  ASSERT_LT(entries.size(), U64{kWritten});
  EXPECT_EQ(entries.back().arguments, (std::vector<Value>{kWritten - 1}));
  EXPECT_EQ(entries.back().sequence, U64{kWritten - 1});
  for (std::size_t i = 1; i < entries.size(); ++i) {
    ASSERT_EQ(entries[i].sequence, entries[i - 1].sequence + 1);
    ASSERT_EQ(std::get<S64>(entries[i].arguments[0]), std::get<S64>(entries[i - 1].arguments[0]) + 1);
    ASSERT_EQ(entries[i].timestampNs, entries[i - 1].timestampNs + 1);
  }
}

TEST_F(RingTraceTest, WrapAroundWithEntriesOfMixedLengthsKeepsWholeEntries) {
  static constinit RingTrace::Site site("mixed", "ip");
  openDefault();
  constexpr S64 kWritten = 3'000;
  for (S64 i = 0; i < kWritten; ++i) {
    RingTrace::message(site, i, std::string(static_cast<std::size_t>(i % 70), 'x'));
  }

  const RingTrace::Reader reader = read();
  ASSERT_FALSE(reader.entries().empty());
  S64 expected = std::get<S64>(reader.entries().front().arguments[0]);
  for (const RingTrace::Entry& entry : reader.entries()) {
    ASSERT_EQ(entry.arguments,
              (std::vector<Value>{expected, std::string(std::min<std::size_t>(expected % 70, 64), 'x')}));
    ++expected;
  }
  EXPECT_EQ(expected, kWritten);
}

TEST_F(RingTraceTest, BlockTimerWhoseEntryWasOverwrittenLeavesNewerEntriesAlone) {
  openDefault();
  {
    RingTrace::BlockTimer timer(cmapTypeSite, MapType::kQos);
    for (S64 i = 0; i < 2'000; ++i) {
      RingTrace::message(counterSite, i);
    }
    time_.advance(5);
  }

  const RingTrace::Reader reader = read();
  ASSERT_FALSE(reader.entries().empty());
  for (const RingTrace::Entry& entry : reader.entries()) {
    EXPECT_FALSE(entry.isBlock);
    EXPECT_EQ(reader.descriptorOf(entry).text, "counter");
  }
  EXPECT_EQ(reader.entries().back().arguments, (std::vector<Value>{S64{1'999}}));
}

TEST_F(RingTraceTest, NothingIsWrittenWhenRingTracingIsOff) {
  const std::unique_ptr<RingTrace::File> file = RingTrace::File::create(pathOf("idle.ring"));
  ASSERT_EQ(RingTrace::defaultRingTraceFile(), nullptr);

  RingTrace::message(servicePolicySite, 1, "Ethernet1", Kel::String("policy"));
  {
    RingTrace::BlockTimer timer(cmapTypeSite, MapType::kQos);
    handleCmapType(MapType::kPbr);
  }

  EXPECT_EQ(file->descriptorCount(), 0U);
  EXPECT_EQ(file->entriesWritten(), 0U);
  const RingTrace::Reader reader = read("idle.ring");
  EXPECT_TRUE(reader.descriptors().empty());
  EXPECT_TRUE(reader.entries().empty());
}

TEST_F(RingTraceTest, ANewDefaultFileGetsTheDescriptorsRegisteredAgain) {
  openDefault("first.ring");
  RingTrace::message(cmapTypeSite, 1);
  RingTrace::message(cmapTypeSite, 2);
  RingTrace::File& second = openDefault("second.ring");
  RingTrace::message(cmapTypeSite, 3);
  EXPECT_EQ(second.descriptorCount(), 1U);

  const RingTrace::Reader first = read("first.ring");
  EXPECT_EQ(first.descriptors().size(), 1U);
  EXPECT_EQ(first.entries().size(), 2U);
  const RingTrace::Reader reader = read("second.ring");
  ASSERT_EQ(reader.descriptors().size(), 1U);
  EXPECT_EQ(reader.descriptors()[0].text, cmapTypeSite.text());
  ASSERT_EQ(reader.entries().size(), 1U);
  EXPECT_EQ(reader.entries()[0].sequence, 0U);
  EXPECT_EQ(reader.entries()[0].arguments, (std::vector<Value>{S64{3}}));
}

TEST_F(RingTraceTest, ClosingTheDefaultFileKeepsItsEntriesAndStopsTracing) {
  openDefault();
  RingTrace::message(cmapTypeSite, 1);
  RingTrace::closeDefaultRingTraceFile();
  EXPECT_EQ(RingTrace::defaultRingTraceFile(), nullptr);
  RingTrace::message(cmapTypeSite, 2);

  const RingTrace::Reader reader = read();
  ASSERT_EQ(reader.entries().size(), 1U);
  EXPECT_EQ(reader.entries()[0].arguments, (std::vector<Value>{S64{1}}));
}

TEST_F(RingTraceTest, BlockTimerEndingAfterTheDefaultFileChangedLeavesBothFilesAlone) {
  openDefault("first.ring");
  {
    RingTrace::BlockTimer timer(cmapTypeSite, 1);
    openDefault("second.ring");
    time_.advance(10);
  }

  const RingTrace::Reader first = read("first.ring");
  ASSERT_EQ(first.entries().size(), 1U);
  EXPECT_TRUE(first.entries()[0].isBlock);
  EXPECT_FALSE(first.entries()[0].durationNs.has_value());
  EXPECT_TRUE(read("second.ring").entries().empty());
}

TEST_F(RingTraceTest, FullDescriptorAreaDropsEntriesOfSitesItCannotHoldAndCountsThem) {
  RingTrace::File& file = openDefault();
  const std::string text(800, 't');
  std::vector<std::unique_ptr<RingTrace::Site>> sites;
  sites.reserve(4);
  for (int i = 0; i < 4; ++i) {
    sites.push_back(std::make_unique<RingTrace::Site>(text.c_str(), "i"));
  }
  for (int round = 0; round < 2; ++round) {
    for (const std::unique_ptr<RingTrace::Site>& site : sites) {
      RingTrace::message(*site, round);
    }
  }

  // The smallest file's 2 KiB descriptor area holds two such descriptors,
  // as long as this file's path is shorter than 200 bytes.
  EXPECT_EQ(file.descriptorCount(), 2U);
  EXPECT_EQ(file.droppedEntries(), 4U);
  const RingTrace::Reader reader = read();
  EXPECT_EQ(reader.descriptors().size(), 2U);
  EXPECT_EQ(reader.entries().size(), 4U);
  EXPECT_EQ(reader.droppedEntries(), 4U);
}

TEST_F(RingTraceTest, ArgumentsThatDoNotMatchTheFormatAbort) {
  openDefault();
  EXPECT_DEATH(RingTrace::message(cmapTypeSite, 1, 2), "has format \"i\" but was given arguments \"ii\"");
  EXPECT_DEATH(RingTrace::message(cmapTypeSite), "has format \"i\" but was given arguments \"\"");
  EXPECT_DEATH(RingTrace::BlockTimer(cmapTypeSite, "Ethernet1"),
               "has format \"i\" but was given arguments \"p\"");
}

TEST_F(RingTraceTest, EnvironmentVariableOpensTheDefaultFile) {
  ASSERT_EQ(setenv("KEL_RING_TRACE", pathOf("environment.ring").c_str(), 1), 0);
  const RingTrace::File* file = RingTrace::openDefaultRingTraceFileFromEnvironment();
  unsetenv("KEL_RING_TRACE");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(RingTrace::defaultRingTraceFile(), file);
  EXPECT_EQ(file->path(), pathOf("environment.ring"));
  EXPECT_EQ(file->capacity(), RingTrace::File::kDefaultCapacity);
}

TEST_F(RingTraceTest, EnvironmentVariableNamingAnUnusablePathLeavesTracingOff) {
  ASSERT_EQ(setenv("KEL_RING_TRACE", pathOf("missing/environment.ring").c_str(), 1), 0);
  testing::internal::CaptureStderr();
  const RingTrace::File* file = RingTrace::openDefaultRingTraceFileFromEnvironment();
  const std::string err = testing::internal::GetCapturedStderr();
  unsetenv("KEL_RING_TRACE");
  EXPECT_EQ(file, nullptr);
  EXPECT_EQ(RingTrace::defaultRingTraceFile(), nullptr);
  EXPECT_NE(err.find("cannot create"), std::string::npos) << err;
}

TEST_F(RingTraceTest, CreatingAFileKeepsThePreviousRingBesideIt) {
  openDefault();
  RingTrace::message(cmapTypeSite, 1);
  openDefault();
  RingTrace::message(cmapTypeSite, 2);

  const RingTrace::Reader previous = read(std::string("agent.ring") + RingTrace::File::kPreviousSuffix);
  ASSERT_EQ(previous.entries().size(), 1U);
  EXPECT_EQ(previous.entries()[0].arguments, (std::vector<Value>{S64{1}}));
  const RingTrace::Reader current = read();
  ASSERT_EQ(current.entries().size(), 1U);
  EXPECT_EQ(current.entries()[0].arguments, (std::vector<Value>{S64{2}}));
}

// The permission bits of `path`.
mode_t permissionsOf(const std::string& path) {
  struct stat info {};
  EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
  return info.st_mode & 0777;
}

TEST_F(RingTraceTest, CreatedFileIsOwnerOnlyWhateverTheUmask) {
  const mode_t saved = ::umask(0);
  const std::unique_ptr<RingTrace::File> file = RingTrace::File::create(pathOf("agent.ring"));
  ::umask(saved);
  EXPECT_EQ(permissionsOf(pathOf("agent.ring")), 0600U);
}

TEST_F(RingTraceTest, WorldReadableFileOfAnOlderRunBecomesAnOwnerOnlyPreviousRing) {
  const std::string path = pathOf("agent.ring");
  std::ofstream(path) << "an older ring";
  ASSERT_EQ(::chmod(path.c_str(), 0644), 0);

  const std::unique_ptr<RingTrace::File> file = RingTrace::File::create(path);

  EXPECT_EQ(permissionsOf(path), 0600U);
  EXPECT_EQ(permissionsOf(path + RingTrace::File::kPreviousSuffix), 0600U);
}

TEST_F(RingTraceTest, CreatingAFileThatCannotBeMadeThrows) {
  EXPECT_THROW(RingTrace::File::create(pathOf("missing/agent.ring")), RingTrace::Error);
  EXPECT_THROW(RingTrace::File::create(pathOf("small.ring"), RingTrace::File::kMinCapacity - 8),
               RingTrace::Error);
  EXPECT_THROW(RingTrace::openDefaultRingTraceFile(pathOf("missing/agent.ring")), RingTrace::Error);
  EXPECT_EQ(RingTrace::defaultRingTraceFile(), nullptr);
}

TEST_F(RingTraceTest, CommandPrintsEveryEntryOldestFirst) {
  openDefault();
  time_.advance(500);
  RingTrace::message(servicePolicySite, MapType::kPbr, "Ethernet1/1", "say \"hi\"\n");
  time_.advance(1'000'000'000);
  {
    RingTrace::BlockTimer timer(cmapTypeSite, -4);
    time_.advance(1'500);
  }
  RingTrace::BlockTimer open(cmapTypeSite, 5);

  const CommandResult result = runCommand({pathOf("agent.ring")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::string cmapSource = std::string(" (") + __FILE__ + ":" + std::to_string(kCmapTypeSiteLine) + ")";
  EXPECT_EQ(
      linesOf(result.out),
      (std::vector<std::string>{
          "0 2023-11-14T22:13:20.000000500Z - void QosSnmp::ServicePolicySm::handlePolicy() 3 "
          "\"Ethernet1/1\" \"say \\\"hi\\\"\\x0a\" (" +
              std::string(__FILE__) + ":" + std::to_string(kServicePolicySiteLine) + ")",
          "1 2023-11-14T22:13:21.000000500Z 1500 void QosSnmp::RootSm::handleCmapType(Qos::MapType) -4" +
              cmapSource,
          "2 2023-11-14T22:13:21.000002000Z open void QosSnmp::RootSm::handleCmapType(Qos::MapType) 5" +
              cmapSource,
      }));
}

TEST_F(RingTraceTest, CommandPrintsTheDescriptorTable) {
  static constinit RingTrace::Site bare("bare", "");
  openDefault();
  RingTrace::message(cmapTypeSite, 1);
  RingTrace::message(bare);

  const CommandResult result = runCommand({"--descriptors", pathOf("agent.ring")});
  EXPECT_EQ(result.status, 0);
  const std::vector<std::string> lines = linesOf(result.out);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], "0 i void QosSnmp::RootSm::handleCmapType(Qos::MapType) (" + std::string(__FILE__) +
                          ":" + std::to_string(kCmapTypeSiteLine) + ")");
  EXPECT_EQ(lines[1].substr(0, 9), "1 - bare ");
}

TEST_F(RingTraceTest, FormatTimePrintsUtcWithNanoseconds) {
  EXPECT_EQ(RingTrace::formatTime(0), "1970-01-01T00:00:00.000000000Z");
  EXPECT_EQ(RingTrace::formatTime(1'700'000'000'123'456'789), "2023-11-14T22:13:20.123456789Z");
  EXPECT_EQ(RingTrace::formatTime(-1), "1969-12-31T23:59:59.999999999Z");
}

TEST_F(RingTraceTest, CommandReportsAMissingFileWithStatusTwo) {
  const CommandResult result = runCommand({pathOf("absent.ring")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "kel-ringtrace: " + pathOf("absent.ring") + ": cannot open: No such file or directory\n");
}

TEST_F(RingTraceTest, CommandReportsAFileThatIsNotARingWithStatusTwo) {
  std::ofstream(pathOf("text.ring")) << std::string(4096, 'x');
  const CommandResult result = runCommand({pathOf("text.ring")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "kel-ringtrace: " + pathOf("text.ring") + ": not a ring trace file\n");

  std::ofstream(pathOf("short.ring")) << "KELRING";
  EXPECT_EQ(runCommand({pathOf("short.ring")}).status, 2);
}

TEST_F(RingTraceTest, CommandReportsACorruptEntryWithStatusTwo) {
  openDefault();
  RingTrace::message(cmapTypeSite, 1);
  RingTrace::message(cmapTypeSite, 2);
  RingTrace::closeDefaultRingTraceFile();

  // Give the second entry a length that runs past the head.
  RingTrace::Layout::FileHeader header{};
  std::fstream file(pathOf("agent.ring"), std::ios::in | std::ios::out | std::ios::binary);
  file.read(reinterpret_cast<char*>(&header), sizeof(header));
  const U32 badLength = 4'096;
  file.seekp(static_cast<std::streamoff>(header.entryOffset + 40));
  file.write(reinterpret_cast<const char*>(&badLength), sizeof(badLength));
  file.close();

  const CommandResult result = runCommand({pathOf("agent.ring")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "kel-ringtrace: " + pathOf("agent.ring") +
                            ": malformed ring trace file: entry at position 40 has length 4096\n");
}

TEST_F(RingTraceTest, CommandRejectsBadUsageWithStatusTwo) {
  EXPECT_EQ(runCommand({}).status, 2);
  EXPECT_EQ(runCommand({"--verbose", pathOf("agent.ring")}).status, 2);
  EXPECT_EQ(runCommand({pathOf("a.ring"), pathOf("b.ring")}).status, 2);
  const CommandResult help = runCommand({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("usage: kel-ringtrace"), std::string::npos);
}

}  // namespace
