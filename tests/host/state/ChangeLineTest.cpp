#include "host/state/ChangeLine.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace QosSnmpHost {
namespace {

using Json = nlohmann::json;

Result<ChangeLine> read(const std::string& line, const InputLimits& limits = {}) {
  return ChangeLine::read(line, {"changes.jsonl", 7}, limits);
}

// The error text of a line that must not be read.
std::string errorOf(const std::string& line, const InputLimits& limits = {}) {
  const Result<ChangeLine> read = ChangeLine::read(line, {"changes.jsonl", 7}, limits);
  EXPECT_FALSE(read) << line;
  return read ? std::string() : read.error().text();
}

TEST(ChangeLineTest, BlankAndCommentLinesAskForNothing) {
  for (const std::string line : {"", "   \t", "# a comment", "  # indented"}) {
    const Result<ChangeLine> got = read(line);
    ASSERT_TRUE(got) << line;
    EXPECT_EQ(got->kind, ChangeLine::Kind::none) << line;
  }
}

TEST(ChangeLineTest, SetCarriesTheUnescapedPathAsGivenAndTheValue) {
  const Result<ChangeLine> got = read(
      R"({"op": "set", "path": "/qosStatus/pmapType/1/pmap/pm~11/cmapCounters/c~01/packets", "value": 5})");
  ASSERT_TRUE(got) << got.error().text();
  EXPECT_EQ(got->kind, ChangeLine::Kind::change);
  EXPECT_EQ(got->change.op, StateChange::Op::set);
  EXPECT_EQ(got->change.path, (std::vector<std::string>{"qosStatus", "pmapType", "1", "pmap", "pm/1",
                                                        "cmapCounters", "c~1", "packets"}));
  EXPECT_EQ(got->change.value, Json(5));
}

TEST(ChangeLineTest, APathMayBeAnArrayOfSegments) {
  const Result<ChangeLine> got = read(R"({"op": "delete", "path": ["intfStatus", "Ethernet1/1"]})");
  ASSERT_TRUE(got) << got.error().text();
  EXPECT_EQ(got->change.op, StateChange::Op::del);
  EXPECT_EQ(got->change.path, (std::vector<std::string>{"intfStatus", "Ethernet1/1"}));
  EXPECT_TRUE(got->change.value.is_null());
}

TEST(ChangeLineTest, AdvanceCarriesItsSeconds) {
  const Result<ChangeLine> got = read(R"({"op": "advance", "seconds": 2.5})");
  ASSERT_TRUE(got) << got.error().text();
  EXPECT_EQ(got->kind, ChangeLine::Kind::advance);
  EXPECT_EQ(got->seconds, 2.5);
}

TEST(ChangeLineTest, ALineOfTheWrongFormIsRefusedWithoutAPath) {
  EXPECT_EQ(errorOf(R"({"op": "set", "path": "/hwStatus"})"), R"(changes.jsonl:7: a change needs "value")");
  EXPECT_EQ(errorOf(R"({"op": "delete", "path": "/hwStatus", "value": 1})"),
            R"(changes.jsonl:7: unknown key "value" in a delete change (expected "op", "path"))");
  EXPECT_EQ(errorOf(R"({"op": "move", "path": "/hwStatus"})"),
            R"(changes.jsonl:7: "op": expected "set", "delete" or "advance", got "move")");
  EXPECT_EQ(errorOf(R"({"op": "delete", "path": "hwStatus"})"),
            R"(changes.jsonl:7: "path": a JSON Pointer starts with '/', got "hwStatus")");
  EXPECT_EQ(errorOf(R"({"op": "delete", "path": "/a~2b"})"),
            R"(changes.jsonl:7: "path": '~' must be followed by '0' or '1' in "/a~2b")");
  EXPECT_EQ(errorOf(R"([1])"), R"(changes.jsonl:7: a change is an object with "op", got [1])");
}

TEST(ChangeLineTest, ALineOverTheLimitsIsRefusedBeforeItIsParsed) {
  InputLimits limits;
  limits.maxLineBytes = 16;
  EXPECT_EQ(errorOf(R"({"op": "advance", "seconds": 1})", limits),
            "changes.jsonl:7: line of 31 bytes is longer than the limit of 16 bytes; skipped");
  EXPECT_EQ(errorOf(R"({"op": "advance", "seconds": 1e9})"),
            R"(changes.jsonl:7: "seconds": expected a number of seconds from 0 to 86400, got 1000000000.0)")
      << "the default bound of an advance";
}

}  // namespace
}  // namespace QosSnmpHost
