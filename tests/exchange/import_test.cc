// Reading sheets into the lists, and the way to a sheet of the user's choice.

#include <gmock/gmock.h>

#include "exchange/mod_import_export.h"
#include "tests/support/automation/exchange_test.h"
#include "tests/toolkit/support.h"

namespace nimbrel::modImportExport {
namespace {

using platform::Date;
using platform::MakeDate;
using platform::Variant;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Cells = std::vector<std::string>;

class ImportTest : public recording::ExchangeTest {
 protected:
  ImportTest() {
    for (int column = 0; column < 9; ++column) {
      list_.ColumnHeaders().Add("column", 100);
    }
    modImportExport::Wire({&services_, [this](const auto& sheets, const std::string& kind) {
                             recorder().Call("Desktop", "ChooseSheet", kind);
                             listed_ = sheets;
                             if (choose_) {
                               return choose_(sheets);
                             }
                             return choice_;
                           }});
  }

  Ref<AutomationObject> SheetObject(const std::string& name) {
    return excel_.CreateObject("Excel.Application")
        ->GetRef("Workbooks")
        ->CallRef("open", {"x"})
        ->GetRef("Sheets", {name});
  }
  void ReadEvents(const std::vector<std::vector<Variant>>& rows) {
    AddSheet("S", "Weather-Events", rows);
    ReadEventRows(SheetObject("S"), list_);
  }
  void ReadWindows(const std::vector<std::vector<Variant>>& rows) {
    AddSheet("S", "Weather-Windows", rows);
    ReadWindowRows(SheetObject("S"), list_);
  }

  /// The texts of a row of the list, the row's own text first.
  Cells Row(std::int32_t index) {
    const toolkit::ListItemRef& row = list_.ListItems().Item(index);
    Cells cells = {row->Text()};
    for (std::int32_t n = 1; n <= row->ListSubItems().Count(); ++n) {
      cells.push_back(row->ListSubItems().Item(n).Text());
    }
    return cells;
  }
  std::int32_t Rows() { return list_.ListItems().Count(); }
  static std::vector<Variant> Period(const std::string& description) {
    return EventRow(description, MakeDate(2027, 1, 1), MakeDate(2027, 1, 31), 1.0, 1, 2, 3);
  }

  toolkit::TestDesktop desktop_;
  toolkit::Form form_{desktop_, "frmTest", "Test", 6000, 4000};
  toolkit::ListView list_{form_, "lstTest"};
  SheetChoice choice_;
  std::function<SheetChoice(const std::vector<ListedSheet>&)> choose_;
  std::vector<ListedSheet> listed_;
};

TEST_F(ImportTest, APeriodBecomesSevenTexts) {
  ReadEvents({EventRow("January", MakeDate(2027, 1, 1), MakeDate({2027, 1, 31, 22, 0, 0}), 0.25, 4,
                       7.5, 14)});
  EXPECT_THAT(Row(1),
              ElementsAre("", "January", "01/Jan/2027", "31/Jan/2027", "25%", "4", "7.5", "14"));
}

TEST_F(ImportTest, AWindowBecomesSevenTextsAroundABlank) {
  ReadWindows(
      {WindowRow("Frozen", {MakeDate(2026, 12, 1), MakeDate(2026, 12, 10), MakeDate(2027, 1, 5),
                            MakeDate(2027, 2, 20), MakeDate(2027, 3, 5), MakeDate(2027, 3, 25)})});
  EXPECT_THAT(Row(1), ElementsAre("Frozen", "Frozen", "01/Dec/2026", "10/Dec/2026", "05/Jan/2027",
                                  "", "20/Feb/2027", "05/Mar/2027", "25/Mar/2027"));
}

TEST_F(ImportTest, ReadsTheTestCellAndThenTheCellsOfARowInOrder) {
  AddSheet("S", "Weather-Events", {Period("January")});
  const Ref<AutomationObject> sheet = SheetObject("S");
  recorder().Clear();
  EXPECT_FALSE(ReadEventRows(sheet, list_));
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Cells(6, 2).Value", "Sheet1.Cells(6, 2).Value",
                                   "Sheet1.Cells(6, 3).Value", "Sheet1.Cells(6, 4).Value",
                                   "Sheet1.Cells(6, 5).Value", "Sheet1.Cells(6, 6).Value",
                                   "Sheet1.Cells(6, 7).Value", "Sheet1.Cells(6, 8).Value",
                                   "Sheet1.Cells(7, 2).Value", "Sheet1.Cells(8, 2).Value",
                                   "Sheet1.Cells(9, 2).Value"));
}

TEST_F(ImportTest, SkipsColumnFOfAWindowSheet) {
  AddSheet("S", "Weather-Windows", {});
  workbook().Sheet("S").cells[{6, 3}] = MakeDate(2027, 1, 1);
  workbook().Sheet("S").cells[{6, 6}] = "never read";
  const Ref<AutomationObject> sheet = SheetObject("S");
  recorder().Clear();
  EXPECT_FALSE(ReadWindowRows(sheet, list_));
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Cells(6, 3).Value", "Sheet1.Cells(6, 2).Value",
                                   "Sheet1.Cells(6, 2).Value", "Sheet1.Cells(6, 3).Value",
                                   "Sheet1.Cells(6, 4).Value", "Sheet1.Cells(6, 5).Value",
                                   "Sheet1.Cells(6, 7).Value", "Sheet1.Cells(6, 8).Value",
                                   "Sheet1.Cells(6, 9).Value", "Sheet1.Cells(7, 3).Value",
                                   "Sheet1.Cells(8, 3).Value", "Sheet1.Cells(9, 3).Value"));
}

TEST_F(ImportTest, ASheetWithoutRowsIsReadToRow8AndEmptiesTheList) {
  list_.ListItems().Add({}, {}, "old");
  AddSheet("S", "Weather-Events", {});
  const Ref<AutomationObject> sheet = SheetObject("S");
  recorder().Clear();
  ReadEventRows(sheet, list_);
  EXPECT_EQ(Rows(), 0);
  EXPECT_THAT(calls(), ElementsAre("Sheet1.Cells(6, 2).Value", "Sheet1.Cells(7, 2).Value",
                                   "Sheet1.Cells(8, 2).Value"));
}

TEST_F(ImportTest, EndsAtTheThirdEmptyCellInAll) {
  ReadEvents({Period("a"), {}, Period("b"), {}, Period("c"), {}, Period("lost")});
  ASSERT_EQ(Rows(), 3);
  EXPECT_EQ(Row(3)[1], "c");
}

TEST_F(ImportTest, DropsAPeriodWithoutADescription) {
  std::vector<Variant> nameless = Period("");
  nameless[0] = {};
  ReadEvents({nameless, Period("b")});
  ASSERT_EQ(Rows(), 1);
  EXPECT_EQ(Row(1)[1], "b");
}

TEST_F(ImportTest, DropsAWindowWithoutAnEarlyStart) {
  std::vector<Variant> startless = {"Frozen", {}, MakeDate(2027, 1, 1), MakeDate(2027, 1, 1)};
  ReadWindows({startless, {"Thawed", MakeDate(2027, 1, 1)}});
  ASSERT_EQ(Rows(), 1);
  EXPECT_EQ(Row(1)[0], "Thawed");
}

TEST_F(ImportTest, KeepsAWindowWithoutADescription) {
  ReadWindows({{{}, MakeDate(2027, 1, 1)}});
  ASSERT_EQ(Rows(), 1);
  EXPECT_EQ(Row(1)[0], "");
  EXPECT_EQ(Row(1)[1], "");
  EXPECT_EQ(Row(1)[2], "01/Jan/2027");
}

TEST_F(ImportTest, AWindowsDescriptionThatReadsAsADateOrNumberBecomesADate) {
  const Date start = MakeDate(2027, 1, 1);
  // 46000 days after 30 December 1899 is 9 December 2025: 45,658 is 1 January 2025, and 342 days
  // on.
  ReadWindows({{"1 May 2027", start}, {"46000", start}, {46000.0, start}, {"Frozen 1", start}});
  EXPECT_THAT(Row(1)[0], "1 May 2027");
  EXPECT_THAT(Row(1)[1], "01/May/2027");
  EXPECT_THAT(Row(2)[0], "46000");
  EXPECT_THAT(Row(2)[1], "09/Dec/2025");
  EXPECT_THAT(Row(3)[1], "09/Dec/2025");
  EXPECT_THAT(Row(4)[1], "Frozen 1");
}

TEST_F(ImportTest, APeriodsDescriptionStaysAsItIs) {
  ReadEvents({Period("1 May 2027"), Period("46000")});
  EXPECT_EQ(Row(1)[1], "1 May 2027");
  EXPECT_EQ(Row(2)[1], "46000");
}

TEST_F(ImportTest, TakesDatesAsDateCellsAsDayCountsAndAsTexts) {
  ReadEvents({{"a", MakeDate(2027, 5, 31), 46000, 1.0, 1, 2, 3},
              {"b", "31 May 2027", "5/31/2027", 1.0, 1, 2, 3},
              {"c", 46000.75, "46000.75", 1.0, 1, 2, 3}});
  EXPECT_EQ(Row(1)[2], "31/May/2027");
  EXPECT_EQ(Row(1)[3], "09/Dec/2025");
  EXPECT_EQ(Row(2)[2], "31/May/2027");
  EXPECT_EQ(Row(2)[3], "31/May/2027");
  EXPECT_EQ(Row(3)[2], "09/Dec/2025");
  EXPECT_EQ(Row(3)[3], "09/Dec/2025");
}

TEST_F(ImportTest, WhatIsNoDateGoesThroughUnchanged) {
  ReadEvents({{"a", "soon", true, 1.0, 1, 2, 3},
              {"b", {}, 1e10, 1.0, 1, 2, 3},
              {"c", "9999999", "31 June 2027", 1.0, 1, 2, 3}});
  EXPECT_EQ(Row(1)[2], "soon");
  EXPECT_EQ(Row(1)[3], "True");
  EXPECT_EQ(Row(2)[2], "");
  EXPECT_EQ(Row(2)[3], "10000000000");
  EXPECT_EQ(Row(3)[2], "9999999");
  EXPECT_EQ(Row(3)[3], "31 June 2027");
}

TEST_F(ImportTest, NumbersGoThroughAsTextsWhateverTheyAre) {
  ReadEvents({{"a", MakeDate(2027, 1, 1), MakeDate(2027, 1, 1), 1.0, "few", {}, -2.5}});
  EXPECT_EQ(Row(1)[5], "few");
  EXPECT_EQ(Row(1)[6], "");
  EXPECT_EQ(Row(1)[7], "-2.5");
}

TEST_F(ImportTest, AProbabilityBecomesAPercentage) {
  const Date day = MakeDate(2027, 1, 1);
  ReadEvents({{"a", day, day, 0.25},
              {"b", day, day, 1},
              {"c", day, day, "0.5"},
              {"d", day, day, {}},
              {"e", day, day, 0.07},  // times 100 it is 7.000000000000001
              {"f", day, day, 1.0 / 3.0}});
  EXPECT_EQ(Row(1)[4], "25%");
  EXPECT_EQ(Row(2)[4], "100%");
  EXPECT_EQ(Row(3)[4], "50%");
  EXPECT_EQ(Row(4)[4], "0%");
  EXPECT_EQ(Row(5)[4], "7%");
  EXPECT_EQ(Row(6)[4], "33.3333333333333%");
}

TEST_F(ImportTest, AProbabilityThatIsNoNumberEndsTheReading) {
  const Date day = MakeDate(2027, 1, 1);
  AddSheet("S", "Weather-Events", {Period("a"), {"b", day, day, "often"}, Period("c")});
  const Ref<AutomationObject> sheet = SheetObject("S");
  EXPECT_EQ(ErrorOf([&] { ReadEventRows(sheet, list_); }), platform::kTypeMismatch);
  EXPECT_EQ(Rows(), 2);
  EXPECT_EQ(Row(2)[3], "01/Jan/2027");
}

TEST_F(ImportTest, WritesDatesAndNumbersInTheUsersLanguage) {
  Wire(*platform::FindLocale("de-DE"));
  const Date day = MakeDate(2027, 5, 31);
  ReadEvents({{"a", day, "31. Mai 2027", "0,125", 2.5, 3, 4}});
  EXPECT_EQ(Row(1)[2], platform::FormatDate(day, "dd/mmm/yyyy", *platform::FindLocale("de-DE")));
  EXPECT_EQ(Row(1)[3], Row(1)[2]);
  EXPECT_EQ(Row(1)[4], "12,5%");
  EXPECT_EQ(Row(1)[5], "2,5");
}

// The way to a sheet.

TEST_F(ImportTest, ImportsTheChosenSheetStepByStep) {
  AddSheet("NOTES", "", {});
  AddSheet("NORTH SEA", "Weather-Events", {Period("January")});
  modGlobal::g_strModulesFolder = "/opt/corvane/Modules";
  choice_ = {true, "NORTH SEA"};
  EXPECT_TRUE(ImportCalendarSheet(list_, kEventData));
  EXPECT_THAT(
      calls(),
      ElementsAre(
          "Automation.CreateObject \"Excel.Application\"", "Desktop.GetOpenFileName",
          "Desktop.FindFirst \"/data/weather.xlsx\"",
          "Excel.Workbooks.open(\"/data/weather.xlsx\")", "Excel.Visible = False", "Sheet1.Name",
          "Sheet1.Cells(3, 1).Value", "Sheet2.Name", "Sheet2.Cells(3, 1).Value",
          "Desktop.ChooseSheet \"Weather-Events\"", "Sheet2.Select", "Sheet2.Cells(3, 1).Value",
          "Sheet2.Cells(6, 2).Value", "Sheet2.Cells(6, 2).Value", "Sheet2.Cells(6, 3).Value",
          "Sheet2.Cells(6, 4).Value", "Sheet2.Cells(6, 5).Value", "Sheet2.Cells(6, 6).Value",
          "Sheet2.Cells(6, 7).Value", "Sheet2.Cells(6, 8).Value", "Sheet2.Cells(7, 2).Value",
          "Sheet2.Cells(8, 2).Value", "Sheet2.Cells(9, 2).Value", "Book.Close(False)", "Excel.Quit",
          "Desktop.Show \"Import completed!\" \"Import Weather\""));
  EXPECT_EQ(Rows(), 1);
  EXPECT_FALSE(excel_.IsHeld());
  ASSERT_EQ(services_.asked.size(), 1u);
  const platform::FileDialogRecord& asked = services_.asked[0];
  EXPECT_EQ(asked.lpstrTitle, "Import Weather Calendar");
  EXPECT_EQ(asked.lpstrInitialDir, "/opt/corvane/Modules");
  EXPECT_EQ(asked.lpstrFilter, std::string("xls (*.xls;*.xlsx)\0*.xls;*.xlsx\0", 32));
  EXPECT_EQ(platform::Trim(asked.lpstrFile), "");
}

TEST_F(ImportTest, OffersEverySheetWithTheTextOfItsMarker) {
  AddSheet("b", "Weather-Windows", {});
  AddSheet("a", "Weather-Events", {});
  workbook().AddSheet("NOTES").cells[{3, 1}] = 42.0;
  workbook().AddSheet("EMPTY");
  ImportCalendarSheet(list_, kEventData);
  std::vector<std::string> offered;
  for (const ListedSheet& sheet : listed_) {
    offered.push_back(sheet.key + "|" + sheet.name + "|" + sheet.kind);
  }
  EXPECT_THAT(offered, ElementsAre("bk|b|Weather-Windows", "ak|a|Weather-Events", "NOTESk|NOTES|42",
                                   "EMPTYk|EMPTY|"));
}

TEST_F(ImportTest, ReadsWindowsForThatKindOfDataAlone) {
  AddSheet("ICE", "Weather-Windows", {{"Frozen", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2)}});
  choice_ = {true, "ICE"};
  EXPECT_TRUE(ImportCalendarSheet(list_, kWindowData));
  EXPECT_EQ(Row(1)[0], "Frozen");
  // Spelled as the sheets spell it, it is not the kind that asks for windows.
  EXPECT_TRUE(ImportCalendarSheet(list_, "Weather-Windows"));
  EXPECT_EQ(Row(1)[0], "");
}

TEST_F(ImportTest, ACancelledChoiceIsAnImportThatIsComplete) {
  AddSheet("ICE", "Weather-Windows", {{"Frozen", MakeDate(2027, 1, 1)}});
  list_.ListItems().Add({}, {}, "old");
  choice_ = {false, "ICE"};
  EXPECT_FALSE(ImportCalendarSheet(list_, kWindowData));
  EXPECT_EQ(Rows(), 0);
  const auto& log = calls();
  EXPECT_THAT(std::vector<std::string>(log.end() - 4, log.end()),
              ElementsAre("Desktop.ChooseSheet \"Weather-windows\"", "Book.Close(False)",
                          "Excel.Quit", "Desktop.Show \"Import completed!\" \"Import Weather\""));
}

TEST_F(ImportTest, NoExcelEndsTheImport) {
  excel_.installed = false;
  list_.ListItems().Add({}, {}, "old");
  EXPECT_FALSE(ImportCalendarSheet(list_, kEventData));
  EXPECT_EQ(Rows(), 0);
  EXPECT_EQ(calls().size(), 2u);  // the attempt, and the message
}

TEST_F(ImportTest, NoFileEndsTheImportWithoutAWord) {
  for (const char* const answer : {"", "False"}) {
    recorder().Clear();
    services_.chosen = answer;
    EXPECT_FALSE(ImportCalendarSheet(list_, kEventData));
    EXPECT_THAT(calls(), ElementsAre("Automation.CreateObject \"Excel.Application\"",
                                     "Desktop.GetOpenFileName"));
  }
}

TEST_F(ImportTest, AMissingFileIsToldTwice) {
  services_.exists = false;
  EXPECT_FALSE(ImportCalendarSheet(list_, kEventData));
  EXPECT_THAT(
      calls(),
      ElementsAre("Automation.CreateObject \"Excel.Application\"", "Desktop.GetOpenFileName",
                  "Desktop.FindFirst \"/data/weather.xlsx\"",
                  "Desktop.Show \"The file '/data/weather.xlsx' does not exist.\" \"Weather "
                  "Modeling\"",
                  "Desktop.Show \"This file does not exist or can't be opened\" \"Export "
                  "Weather\""));
}

TEST_F(ImportTest, AWorkbookThatCannotBeOpenedGoesToTheCaller) {
  recorder().FailOn("open");
  EXPECT_EQ(ErrorOf([&] { ImportCalendarSheet(list_, kEventData); }), 1004);
  EXPECT_THAT(recorder().Containing({"Quit", "Show"}), IsEmpty());
}

TEST_F(ImportTest, AnErrorInTheRowsLeavesExcelHiddenWithItsWorkbook) {
  const Date day = MakeDate(2027, 1, 1);
  AddSheet("S", "Weather-Events", {{"b", day, day, "often"}});
  choice_ = {true, "S"};
  EXPECT_EQ(ErrorOf([&] { ImportCalendarSheet(list_, kEventData); }), platform::kTypeMismatch);
  EXPECT_TRUE(workbook().open);
  EXPECT_FALSE(workbook().visible);
  EXPECT_THAT(recorder().Containing({"Close", "Quit", "Show"}), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::modImportExport
