#include <cstdint>
#include <string>

#include "platform/date.h"
#include "platform/locale.h"
#include "tests/desktop/tool_box_test.h"

namespace nimbrel {
namespace {

using modToolBox::FormatMsg;

class FormatMsgTest : public ToolBoxTest {};

TEST_F(FormatMsgTest, AnArgumentTakesThePlaceOfItsMarker) {
  EXPECT_EQ(FormatMsg("Risk Analysis %x Modeling", {"Weather"}), "Risk Analysis Weather Modeling");
  EXPECT_EQ(FormatMsg("The file '%x' does not exist.", {"C:\\a.xls"}),
            "The file 'C:\\a.xls' does not exist.");
}

TEST_F(FormatMsgTest, ArgumentsFillTheMarkersFromLeftToRight) {
  EXPECT_EQ(FormatMsg("%x, then %x and %x", {"one", "two", "three"}), "one, then two and three");
}

TEST_F(FormatMsgTest, AMarkerInsideAnArgumentIsFilledByTheNextArgument) {
  EXPECT_EQ(FormatMsg("<%x> <%x>", {"a %x b", "inner"}), "<a inner b> <%x>");
}

TEST_F(FormatMsgTest, EachReplacementCountsFromTheStartOfTheText) {
  // With the first marker gone, what stood around it makes a new one.
  EXPECT_EQ(FormatMsg("%%xx-%x", {"", "B"}), "B-%x");
}

TEST_F(FormatMsgTest, MarkersLeftOverStay) {
  EXPECT_EQ(FormatMsg("%x and %x", {"one"}), "one and %x");
}

TEST_F(FormatMsgTest, ArgumentsLeftOverAreDropped) {
  EXPECT_EQ(FormatMsg("%x only", {"one", "two"}), "one only");
  EXPECT_EQ(FormatMsg("none", {"one"}), "none");
  EXPECT_EQ(FormatMsg("", {"one"}), "");
}

TEST_F(FormatMsgTest, OnlyTheSmallLetterMakesAMarker) {
  EXPECT_EQ(FormatMsg("%X 100% %y %", {"one"}), "%X 100% %y %");
}

TEST_F(FormatMsgTest, AnEmptyArrayIsAFailure) {
  EXPECT_EQ(ErrorOf([] { FormatMsg("%x", {}); }), platform::kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([] { FormatMsg("no marker", {}); }), platform::kSubscriptOutOfRange);
}

TEST_F(FormatMsgTest, ArgumentsStandInTheirDefaultTextForm) {
  EXPECT_EQ(FormatMsg("%x|%x|%x|%x|%x", {std::int32_t{-7}, 0.25, true,
                                         platform::MakeDate(2027, 3, 4), platform::Variant()}),
            "-7|0.25|True|3/4/2027|");
}

TEST_F(FormatMsgTest, NumbersAndDatesAreWrittenInTheUsersLocale) {
  Wire(*platform::FindLocale("de-DE"));
  EXPECT_EQ(FormatMsg("%x %x", {0.25, platform::MakeDate(2027, 3, 4)}), "0,25 04.03.2027");
}

TEST_F(FormatMsgTest, AnObjectIsNoText) {
  EXPECT_EQ(ErrorOf([this] { FormatMsg("%x", {host_.application()}); }), platform::kMemberNotFound);
}

}  // namespace
}  // namespace nimbrel
