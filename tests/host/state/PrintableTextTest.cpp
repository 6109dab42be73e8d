#include "host/state/PrintableText.h"

#include <string>

#include <gtest/gtest.h>

namespace QosSnmpHost {
namespace {

TEST(PrintableTextTest, PrintableUtf8PassesUnchanged) {
  EXPECT_EQ(PrintableText::of("class-voice \xc3\xa9t\xc3\xa9 \xe2\x82\xac", 100),
            "class-voice \xc3\xa9t\xc3\xa9 \xe2\x82\xac");
}

TEST(PrintableTextTest, ControlCharactersAreEscapedSoTheTextStaysOnOneLine) {
  EXPECT_EQ(PrintableText::of("a\nb\rc\td\x1b[31m\x7f", 100), "a\\nb\\rc\\td\\u001b[31m\\u007f");
}

TEST(PrintableTextTest, BytesThatAreNotUtf8AreShownAsHex) {
  EXPECT_EQ(PrintableText::of("x\xff\xfey", 100), "x\\xff\\xfey");
  // A truncated sequence, an overlong encoding and a surrogate.
  EXPECT_EQ(PrintableText::of("\xe2\x82", 100), "\\xe2\\x82");
  EXPECT_EQ(PrintableText::of("\xc0\xaf", 100), "\\xc0\\xaf");
  EXPECT_EQ(PrintableText::of("\xed\xa0\x80", 100), "\\xed\\xa0\\x80");
}

TEST(PrintableTextTest, LongTextIsCutAtTheStatedLengthWithAMark) {
  EXPECT_EQ(PrintableText::of(std::string(65536, 'n'), 10), "nnnnnnnnnn...");
  EXPECT_EQ(PrintableText::of("0123456789", 10), "0123456789");
}

TEST(PrintableTextTest, CuttingNeverSplitsAnEscapeOrACharacter) {
  EXPECT_EQ(PrintableText::of("abc\n", 4), "abc...");
  EXPECT_EQ(PrintableText::of("abc\xe2\x82\xac", 5), "abc...");
}

}  // namespace
}  // namespace QosSnmpHost
