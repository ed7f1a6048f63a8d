// The layer over Excel: how it is started, how columns are called, and which way each formatter
// takes to a range.

#include "exchange/mod_excel.h"

#include <gmock/gmock.h>

#include "tests/support/automation/exchange_test.h"

namespace nimbrel::modExcel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ModExcelTest : public recording::ExchangeTest {
 protected:
  ModExcelTest() {
    app_ = StartExcel();
    const Ref<AutomationObject> workbook = app_->GetRef("Workbooks")->CallRef("Add");
    sheet_ = workbook->GetRef("Sheets", {1});
    InitColumnLetters();
    recorder().Clear();
  }
  ~ModExcelTest() override { g_asColumnLetters.clear(); }

  Ref<AutomationObject> app_;
  Ref<AutomationObject> sheet_;
};

TEST_F(ModExcelTest, StartsExcelByItsIdentifier) {
  EXPECT_FALSE(StartExcel().IsNothing());
  EXPECT_THAT(calls(), ElementsAre("Automation.CreateObject \"Excel.Application\""));
}

TEST_F(ModExcelTest, TellsTheUserOnceThatExcelDoesNotStart) {
  excel_.installed = false;
  EXPECT_TRUE(StartExcel().IsNothing());
  EXPECT_THAT(
      calls(),
      ElementsAre(
          "Automation.CreateObject \"Excel.Application\"",
          "Desktop.Show \"Either Microsoft Excel is not installed or there is a problem starting "
          "it.\r\n\r\nPlease contact Velmora Risk Analysis (help@velmora.example) for support.\" "
          "\"Weather\""));
}

TEST_F(ModExcelTest, AStartWithoutAnythingWiredIsOneThatFailed) {
  modExcel::Wire({nullptr, &services_, "help@velmora.example"});
  EXPECT_TRUE(StartExcel().IsNothing());
  EXPECT_EQ(calls().size(), 1u);
}

TEST_F(ModExcelTest, HasLettersForTheColumns1To78) {
  EXPECT_EQ(g_asColumnLetters.size(), 78u);
  EXPECT_EQ(GetColumnLetter(1), "A");
  EXPECT_EQ(GetColumnLetter(26), "Z");
  EXPECT_EQ(GetColumnLetter(27), "AA");
  EXPECT_EQ(GetColumnLetter(52), "AZ");
  EXPECT_EQ(GetColumnLetter(53), "BA");
  EXPECT_EQ(GetColumnLetter(78), "BZ");
}

TEST_F(ModExcelTest, HasNoLettersForOtherColumns) {
  EXPECT_EQ(GetColumnLetter(79), "");
  EXPECT_EQ(GetColumnLetter(0), "");
  EXPECT_EQ(GetColumnLetter(-1), "");
}

TEST_F(ModExcelTest, FillsTheLettersAnewEachTime) {
  g_asColumnLetters[0] = "X";
  InitColumnLetters();
  EXPECT_EQ(g_asColumnLetters.size(), 78u);
  EXPECT_EQ(GetColumnLetter(1), "A");
}

TEST_F(ModExcelTest, LettersThatWereNeverFilledAreAnError) {
  g_asColumnLetters.clear();
  EXPECT_EQ(ErrorOf([] { GetColumnLetter(1); }), platform::kSubscriptOutOfRange);
}

TEST_F(ModExcelTest, SelectsASheet) {
  SelectSheet(sheet_);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Select"));
}

TEST_F(ModExcelTest, SelectsABlock) {
  EXPECT_TRUE(SelectRange(sheet_, 2, 8, 5, 5));
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Range(\"B5:H5\").Select"));
}

TEST_F(ModExcelTest, ABlockThatCannotBeSelectedIsNoError) {
  recorder().FailOn("Select");
  EXPECT_FALSE(SelectRange(sheet_, 2, 8, 5, 5));
}

TEST_F(ModExcelTest, ABlockWithoutLettersIsNoErrorEither) {
  g_asColumnLetters.clear();
  EXPECT_FALSE(SelectRange(sheet_, 2, 8, 5, 5));
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(ModExcelTest, AlignmentGoesThroughTheSelectedSheetAndItsApplication) {
  SetColumnsAlignment(sheet_, "C:I", kCentre);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Select", "Sheet1.Application.Range(\"C:I\").Select",
                                   "Sheet1.Application.Selection.HorizontalAlignment = -4108"));
}

TEST_F(ModExcelTest, PercentGoesThroughTheSelectedSheetAndApp) {
  SetPercentFormat(app_, sheet_, "E:E");
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Select", "Sheet1.Range(\"E:E\").Select",
                                   "Excel.Selection.NumberFormat = \"0.00%\""));
}

TEST_F(ModExcelTest, DatesGoThroughTheSheetAsItIsAndApp) {
  SetDateFormat(app_, sheet_, "C:D");
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Range(\"C:D\").Select",
                                   "Excel.Selection.NumberFormat = \"dd mmm yyyy\""));
}

TEST_F(ModExcelTest, AFillOfARangeGoesThroughTheSheetAsItIsAndItsApplication) {
  SetRangeFill(sheet_, "1:5", kGrey, kSolid);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Range(\"1:5\").Select",
                                   "Sheet1.Application.Selection.Interior.Colorindex = 15",
                                   "Sheet1.Application.Selection.Interior.Pattern = 1"));
}

TEST_F(ModExcelTest, AFillOfABlockSelectsIt) {
  SetBlockFill(sheet_, 2, 9, 5, 5, kBlue, kSolid);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Range(\"B5:I5\").Select",
                                   "Sheet1.Application.Selection.Interior.Colorindex = 41",
                                   "Sheet1.Application.Selection.Interior.Pattern = 1"));
}

TEST_F(ModExcelTest, AFontOfABlockSelectsIt) {
  SetBlockFont(sheet_, 2, 9, 5, 5, kWhite, true);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Range(\"B5:I5\").Select",
                                   "Sheet1.Application.Selection.Font.Colorindex = 2",
                                   "Sheet1.Application.Selection.Font.Bold = True"));
}

TEST_F(ModExcelTest, ARefusedBlockSilentlyKeepsItsLook) {
  recorder().FailAlways("Range(");
  SetBlockFill(sheet_, 2, 9, 5, 5, kBlue, kSolid);
  SetBlockFont(sheet_, 2, 9, 5, 5, kWhite, true);
  EXPECT_THAT(calls(),
              ElementsAre("Sheet1.Range(\"B5:I5\").Select", "Sheet1.Range(\"B5:I5\").Select"));
}

TEST_F(ModExcelTest, OnlyTheSelectionOfABlockMayFail) {
  recorder().FailOn("Interior");
  EXPECT_EQ(ErrorOf([&] { SetBlockFill(sheet_, 2, 9, 5, 5, kBlue, kSolid); }), 1004);
  recorder().FailOn("Font");
  EXPECT_EQ(ErrorOf([&] { SetBlockFont(sheet_, 2, 9, 5, 5, kWhite, true); }), 1004);
}

TEST_F(ModExcelTest, FailuresOfRangesGoToTheCaller) {
  recorder().FailAlways("Range(");
  EXPECT_EQ(ErrorOf([&] { SetColumnsAlignment(sheet_, "C:I", kCentre); }), 1004);
  EXPECT_EQ(ErrorOf([&] { SetPercentFormat(app_, sheet_, "E:E"); }), 1004);
  EXPECT_EQ(ErrorOf([&] { SetDateFormat(app_, sheet_, "C:D"); }), 1004);
  EXPECT_EQ(ErrorOf([&] { SetRangeFill(sheet_, "1:5", kGrey, kSolid); }), 1004);
}

}  // namespace
}  // namespace nimbrel::modExcel
