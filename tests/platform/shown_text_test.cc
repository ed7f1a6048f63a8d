#include "platform/shown_text.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/date.h"
#include "platform/locale.h"
#include "platform/number.h"
#include "platform/runtime_error.h"

namespace nimbrel::platform {
namespace {

TEST(ShownText, AShortTextIsShownAsItIs) {
  EXPECT_EQ(ShownText(""), "");
  EXPECT_EQ(ShownText("Böen \"stark\" & 雨"), "Böen \"stark\" & 雨");
  EXPECT_EQ(ShownText(std::string(60, 'x')), std::string(60, 'x'));
}

TEST(ShownText, ALongTextIsCutBetweenCharacters) {
  EXPECT_EQ(ShownText(std::string(61, 'x')), std::string(60, 'x') + "...");
  std::string rain;
  std::string shown;
  for (int i = 0; i < 100; ++i) {
    rain += "雨";
    shown += i < 60 ? "雨" : "";
  }
  EXPECT_EQ(ShownText(rain), shown + "...");
}

TEST(ShownText, ControlCharactersAndLineEndsAreReplaced) {
  EXPECT_EQ(ShownText("a\nb\x1b[31mc\x7f"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD[31mc\xEF\xBF\xBD");
  // U+009B does what ESC [ does, and U+2028 ends a line.
  EXPECT_EQ(ShownText("a\xC2\x9B"
                      "b\xE2\x80\xA8"
                      "c"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c");
  EXPECT_EQ(ShownText("\xC2\xA0"), "\xC2\xA0");
}

TEST(ShownText, ErrorsOfConversionShowTheTextThisWay) {
  const std::string text = "often\n" + std::string(40'000, 'x');
  const std::string shown = "\"often\xEF\xBF\xBD" + std::string(54, 'x') + "...\"";
  const auto error_of = [](auto convert) -> std::string {
    try {
      convert();
    } catch (const RuntimeError& error) {
      return error.text();
    }
    return "";
  };
  EXPECT_EQ(error_of([&] { ParseNumber(text, DefaultLocale()); }),
            "Type mismatch: " + shown + " is no number in en-US");
  EXPECT_EQ(error_of([&] { ParseDate(text, DefaultLocale()); }),
            "Type mismatch: " + shown + " is no date in en-US");
}

}  // namespace
}  // namespace nimbrel::platform
