#include "nimbrel/glob.h"

#include <gtest/gtest.h>

#include <string>

namespace nimbrel::cli {
namespace {

struct GlobCase {
  const char* pattern;
  const char* text;
  bool matches;
};

class Glob : public ::testing::TestWithParam<GlobCase> {};
INSTANTIATE_TEST_SUITE_P(
    Cases, Glob,
    ::testing::Values(
        GlobCase{"", "", true}, GlobCase{"", "a", false}, GlobCase{"abc", "abc", true},
        GlobCase{"abc", "abcd", false}, GlobCase{"*", "", true}, GlobCase{"*", "anything", true},
        GlobCase{"*crane*", "Lift by Crane 2", true}, GlobCase{"*crane*", "cran e", false},
        GlobCase{"a*b*c", "a-b-b-c", true}, GlobCase{"a*b*c", "a-b-b-", false},
        GlobCase{"*ab", "aab", true}, GlobCase{"**a**", "a", true}, GlobCase{"a?c", "abc", true},
        GlobCase{"a?c", "ac", false}, GlobCase{"?", "é", true}, GlobCase{"??", "é", false},
        GlobCase{"STRAßE*", "straße 1", true}, GlobCase{"*ÜBER*", "Brücke über den Fluss", true},
        GlobCase{"[abc]1", "B1", true}, GlobCase{"[abc]1", "d1", false},
        GlobCase{"A[0-9]0", "a50", true}, GlobCase{"A[0-9]0", "ax0", false},
        GlobCase{"[!0-9]*", "x1", true}, GlobCase{"[!0-9]*", "11", false},
        GlobCase{"[]x]", "]", true}, GlobCase{"[a-]", "-", true}, GlobCase{"[é-ü]", "ö", true},
        GlobCase{"[open", "[open", true}, GlobCase{"[open", "o", false}, GlobCase{"[]", "[]", true},
        GlobCase{"a.c", "abc", false}, GlobCase{"\xff*", "\xffz", true}));

TEST_P(Glob, MatchesTheWholeTextWithoutRegardToCase) {
  EXPECT_EQ(GlobMatches(GetParam().pattern, GetParam().text), GetParam().matches)
      << '"' << GetParam().pattern << "\" against \"" << GetParam().text << '"';
}

TEST(GlobMatches, EndsOnAPatternOfManyStars) {
  // Trying every way to share the text out among the stars would outlast anybody.
  std::string pattern;
  for (int i = 0; i < 40; ++i) {
    pattern += "a*";
  }
  EXPECT_FALSE(GlobMatches(pattern + "b", std::string(2000, 'a')));
}

}  // namespace
}  // namespace nimbrel::cli
