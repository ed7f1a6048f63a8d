#include "platform/text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace nimbrel::platform {
namespace {

TEST(FoldCase, FoldsTheLettersOfEuropeanAlphabets) {
  EXPECT_EQ(FoldCase("WEATHER-Windows 1"), "weather-windows 1");
  EXPECT_EQ(FoldCase("MÄRZ ÖSTLICH ÜBER"), "märz östlich über");
  EXPECT_EQ(FoldCase("FÉVRIER AOÛT ÇA ŒUVRE"), "février août ça œuvre");
  EXPECT_EQ(FoldCase("ŁÓDŹ ŽELEZO ŸSER"), "łódź železo ÿser");
  EXPECT_EQ(FoldCase("ΑΠΡΙΛΙΟΣ ΩΡΑ"), "απριλιοσ ωρα");
  EXPECT_EQ(FoldCase("ЁЛКА ЯНВАРЬ"), "ёлка январь");
}

TEST(FoldCase, LeavesWhatIsNoLetter) {
  EXPECT_EQ(FoldCase("[`{@} 2×3÷4 €"), "[`{@} 2×3÷4 €");
}

TEST(FoldCase, LeavesBytesThatAreNoUtf8) {
  EXPECT_EQ(FoldCase("A\xC3"), "a\xC3");
  EXPECT_EQ(FoldCase("\xC4"
                     "A\xFF"),
            "\xC4"
            "a\xFF");
}

TEST(EqualsIgnoreCase, DependsOnLettersAndNotOnTheirCase) {
  EXPECT_TRUE(EqualsIgnoreCase("Öffnung", "öFFNUNG"));
  EXPECT_TRUE(EqualsIgnoreCase("", ""));
  EXPECT_FALSE(EqualsIgnoreCase("Öffnung", "Offnung"));
  EXPECT_FALSE(EqualsIgnoreCase("abc", "abcd"));
  EXPECT_FALSE(EqualsIgnoreCase("@", "`"));
}

/// Text of letters whose cases matter, of bytes that begin characters and of any others.
rc::Gen<std::string> AnyText() {
  return rc::gen::container<std::string>(rc::gen::oneOf(
      rc::gen::element('a', 'A', 'b', '\xC3', '\xC4', '\x84', '\xA4'), rc::gen::arbitrary<char>()));
}

RC_GTEST_PROP(TextProperty, EqualityIsThatOfTheFoldedTexts, ()) {
  const std::string a = *AnyText();
  const std::string b = *rc::gen::oneOf(AnyText(), rc::gen::just(a), rc::gen::just(FoldCase(a)));
  RC_ASSERT(EqualsIgnoreCase(a, b) == (FoldCase(a) == FoldCase(b)));
}

RC_GTEST_PROP(TextProperty, EqualTextsHaveTheSameHash, ()) {
  const std::string text = *AnyText();
  RC_ASSERT(HashIgnoreCase(text) == HashIgnoreCase(FoldCase(text)));
}

RC_GTEST_PROP(TextProperty, FoldingKeepsTheLengthAndFoldsAllAtOnce, ()) {
  const std::string text = *AnyText();
  const std::string folded = FoldCase(text);
  RC_ASSERT(folded.size() == text.size());
  RC_ASSERT(FoldCase(folded) == folded);
}

TEST(UpperCase, RaisesTheLettersOfEuropeanAlphabets) {
  EXPECT_EQ(UpperCase("North Sea 1"), "NORTH SEA 1");
  EXPECT_EQ(UpperCase("märz östlich über"), "MÄRZ ÖSTLICH ÜBER");
  EXPECT_EQ(UpperCase("łódź železo ÿser"), "ŁÓDŹ ŽELEZO ŸSER");
  EXPECT_EQ(UpperCase("ωρα ёлка январь"), "ΩΡΑ ЁЛКА ЯНВАРЬ");
}

TEST(UpperCase, LeavesWhatHasNoPartner) {
  EXPECT_EQ(UpperCase("[`{@} 2×3÷4 € ß"), "[`{@} 2×3÷4 € ß");
  EXPECT_EQ(UpperCase("a\xC3"), "A\xC3");
  EXPECT_EQ(UpperCase("\xC3z"), "\xC3Z");
}

RC_GTEST_PROP(TextProperty, RaisingKeepsWhatFoldingGives, ()) {
  const std::string text = *AnyText();
  const std::string upper = UpperCase(text);
  RC_ASSERT(FoldCase(upper) == FoldCase(text));
  RC_ASSERT(UpperCase(upper) == upper);
  RC_ASSERT(UpperCase(FoldCase(text)) == upper);
}

TEST(FirstCharacters, CountsCharactersAndNotBytes) {
  EXPECT_EQ(FirstCharacters("März-Öffnung", 3), "Mär");
  EXPECT_EQ(FirstCharacters("Mä", 2), "Mä");
  EXPECT_EQ(FirstCharacters("Mä", 9), "Mä");
  EXPECT_EQ(FirstCharacters("abc", 0), "");
  EXPECT_EQ(FirstCharacters("", 2), "");
}

TEST(HashIgnoreCase, TellsKeysApart) {
  EXPECT_NE(HashIgnoreCase("A10"), HashIgnoreCase("A11"));
  EXPECT_NE(HashIgnoreCase("A10"), HashIgnoreCase("A01"));
}

TEST(Trim, TakesBlanksOffBothEndsOnly) {
  EXPECT_EQ(Trim(" \t 5 Jan \r\n"), "5 Jan");
  EXPECT_EQ(Trim(" \n"), "");
  EXPECT_EQ(Trim(""), "");
}

}  // namespace
}  // namespace nimbrel::platform
