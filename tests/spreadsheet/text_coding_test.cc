#include "spreadsheet/text_coding.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

namespace nimbrel::spreadsheet {
namespace {

using std::literals::operator""s;

TEST(ValidUtf8, TextStaysAsItIs) {
  for (const char* text : {"", "rain", "Tauwetter: Frühling", "€", "雨", "🌧"}) {
    EXPECT_EQ(ValidUtf8(text), text);
    EXPECT_TRUE(IsValidUtf8(text));
  }
}

TEST(ValidUtf8, WhatIsNoCharacterIsReplaced) {
  EXPECT_EQ(ValidUtf8("a\xFF"
                      "b"),
            "a\uFFFDb");
  EXPECT_EQ(ValidUtf8("\xC3"), "\uFFFD");              // cut short
  EXPECT_EQ(ValidUtf8("\xC0\x80"), "\uFFFD\uFFFD");    // longer than need be
  EXPECT_EQ(ValidUtf8("\xED\xA0\x80"), "\uFFFD");      // a surrogate
  EXPECT_EQ(ValidUtf8("\xEF\xBF\xBE"), "\uFFFD");      // no XML can hold it
  EXPECT_EQ(ValidUtf8("\xF4\x90\x80\x80"), "\uFFFD");  // past the last one
  EXPECT_EQ(ValidUtf8("\xE2\x82"
                      "A"),
            "\uFFFD"
            "A");
  EXPECT_FALSE(IsValidUtf8("\xFF"));
}

TEST(Utf16Length, CountsAsExcelDoes) {
  EXPECT_EQ(Utf16Length("rain"), 4U);
  EXPECT_EQ(Utf16Length("Frühling"), 8U);
  EXPECT_EQ(Utf16Length("🌧"), 2U);
}

TEST(FromUtf16, PairsBelongTogether) {
  EXPECT_EQ(FromUtf16("R\0\xFC\0"s), "Rü");
  EXPECT_EQ(FromUtf16("\x3C\xD8\x27\xDF"s), "🌧");
  EXPECT_EQ(FromUtf16("\x3C\xD8R\0"s), "\uFFFDR");
  EXPECT_EQ(FromUtf16("\x27\xDF"s), "\uFFFD");
  EXPECT_EQ(FromUtf16("R\0x"s), "R");
}

TEST(EscapeXlsxText, ControlCharactersTakeTheFormOfTheFile) {
  EXPECT_EQ(EscapeXlsxText("a\x01"
                           "b"),
            "a_x0001_b");
  EXPECT_EQ(EscapeXlsxText("\r\n\t"), "_x000D_\n\t");
  EXPECT_EQ(EscapeXlsxText("\x1F"), "_x001F_");
  EXPECT_EQ(EscapeXlsxText("a\0b"s), "a_x0000_b");
}

TEST(EscapeXlsxText, WhatLooksLikeSuchAFormIsKeptFromBeingOne) {
  EXPECT_EQ(EscapeXlsxText("_x0041_"), "_x005F_x0041_");
  EXPECT_EQ(EscapeXlsxText("_x00e9_"), "_x005F_x00e9_");
  EXPECT_EQ(EscapeXlsxText("_x004_"), "_x004_");
  EXPECT_EQ(EscapeXlsxText("_X0041_"), "_X0041_");
  // The form of the control character would close the one in front of it.
  EXPECT_EQ(UnescapeXlsxText(EscapeXlsxText("_x0041\x02")), "_x0041\x02");
}

TEST(UnescapeXlsxText, FormsBecomeCharacters) {
  EXPECT_EQ(UnescapeXlsxText("_x0041_BC"), "ABC");
  EXPECT_EQ(UnescapeXlsxText("_x000d_"), "\r");
  EXPECT_EQ(UnescapeXlsxText("_xD83C__xDF27_"), "🌧");
  EXPECT_EQ(UnescapeXlsxText("_xD83C_"), "\uFFFD");
  EXPECT_EQ(UnescapeXlsxText("_x00G1_ _x0041"), "_x00G1_ _x0041");
}

TEST(UnescapeXlsxText, GivesBackWhatWasEscaped) {
  const bool holds = rc::check("escaping is undone", [] {
    // Characters of which forms are made, and ones that need them.
    const auto text = *rc::gen::container<std::string>(
        rc::gen::element('_', 'x', '0', '4', '1', 'A', 'f', '\x01', '\r', '\n', ' '));
    RC_ASSERT(UnescapeXlsxText(EscapeXlsxText(text)) == text);
  });
  EXPECT_TRUE(holds);
}

TEST(Quoted, AMessageStaysOnOneLine) {
  EXPECT_EQ(Quoted("rain"), "'rain'");
  EXPECT_EQ(Quoted("a\nb"), "'a\uFFFDb'");
  EXPECT_EQ(Quoted(std::string(1000, 'x')), "'" + std::string(60, 'x') + "...'");
  EXPECT_EQ(Quoted("\xFF"), "'\uFFFD'");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
