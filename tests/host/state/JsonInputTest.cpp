#include "host/state/JsonInput.h"

#include <string>

#include <gtest/gtest.h>

namespace QosSnmpHost {
namespace {

TEST(JsonInputTest, ParsesAValueWithinTheLimits) {
  const JsonInput::Parsed parsed = JsonInput::parse(R"({"a": [1, {"b": "c"}]})", InputLimits{});
  ASSERT_TRUE(parsed.value);
  EXPECT_EQ(parsed.value->at("a").at(1).at("b"), "c");
}

TEST(JsonInputTest, NestingAtTheLimitIsAcceptedAndOneLevelMoreIsRefused) {
  InputLimits limits;
  limits.maxDepth = 3;
  EXPECT_TRUE(JsonInput::parse("[[[1]]]", limits).value);
  const JsonInput::Parsed deep = JsonInput::parse("[[[\n[1]]]]", limits);
  EXPECT_FALSE(deep.value);
  EXPECT_EQ(deep.error, "invalid JSON: nested deeper than 3 levels");
  EXPECT_EQ(deep.line, 2);
}

TEST(JsonInputTest, BracketsInsideStringsDoNotCountAsNesting) {
  InputLimits limits;
  limits.maxDepth = 1;
  EXPECT_TRUE(JsonInput::parse(R"(["[[[{{{", "\"[[["])", limits).value);
}

TEST(JsonInputTest, AMillionOpenBracketsAreRefusedWithoutRecursing) {
  const std::string text(1000000, '[');
  const JsonInput::Parsed parsed = JsonInput::parse(text, InputLimits{});
  EXPECT_FALSE(parsed.value);
  EXPECT_EQ(parsed.error, "invalid JSON: nested deeper than 64 levels");
}

TEST(JsonInputTest, ANumberBeyondADoubleIsAnErrorOnItsLine) {
  const JsonInput::Parsed parsed = JsonInput::parse("{\n\"a\":\n1e999}", InputLimits{});
  EXPECT_FALSE(parsed.value);
  EXPECT_EQ(parsed.error, "invalid JSON: number overflow parsing '1e999'");
  EXPECT_EQ(parsed.line, 3);
}

TEST(JsonInputTest, ASyntaxErrorNamesItsLineNotTheLibrarysPosition) {
  const JsonInput::Parsed parsed = JsonInput::parse("{\n\"a\": tru\n}", InputLimits{});
  EXPECT_FALSE(parsed.value);
  EXPECT_EQ(
      parsed.error,
      "invalid JSON: syntax error while parsing value - invalid literal; last read: '\"a\": tru<U+000A>'");
  EXPECT_EQ(parsed.line, 2);
}

TEST(JsonInputTest, ANulByteIsRefusedEvenAfterACompleteValue) {
  const JsonInput::Parsed parsed = JsonInput::parse(std::string("{}\n\0{", 4), InputLimits{});
  EXPECT_FALSE(parsed.value);
  EXPECT_EQ(parsed.error, "invalid JSON: a NUL byte at byte 4");
  EXPECT_EQ(parsed.line, 2);
}

TEST(JsonInputTest, ALongLibraryMessageIsCut) {
  const JsonInput::Parsed parsed = JsonInput::parse(std::string(1000, '7') + "e999", InputLimits{});
  EXPECT_FALSE(parsed.value);
  EXPECT_EQ(parsed.error.size(), std::string("invalid JSON: ").size() + 120 + 3);
  EXPECT_TRUE(parsed.error.ends_with("777..."));
}

}  // namespace
TEST(JsonInputTest, NestedDeeperThanCountsArraysAndObjectsNotScalars) {
  EXPECT_FALSE(JsonInput::nestedDeeperThan(nlohmann::json(5), 0));
  EXPECT_TRUE(JsonInput::nestedDeeperThan(nlohmann::json::object(), 0));
  const nlohmann::json three = nlohmann::json::parse(R"({"a": [1, {"b": 2}], "c": 3})");
  EXPECT_FALSE(JsonInput::nestedDeeperThan(three, 3));
  EXPECT_TRUE(JsonInput::nestedDeeperThan(three, 2));
}

}  // namespace QosSnmpHost
