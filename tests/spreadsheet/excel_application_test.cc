#include <gtest/gtest.h>

#include "platform/runtime_error.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/spreadsheet/excel_fixture.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::int32_t kObjectGone = -2147221080;
constexpr std::int32_t kServerUnavailable = 462;

using ExcelApplicationObject = Excel;
using ExcelSheetsObject = Excel;

using platform::Variant;

TEST(ExcelServers, OnlyExcelIsThere) {
  RecordingViewer viewer;
  ExcelServers servers(viewer);
  EXPECT_FALSE(servers.CreateObject("excel.application").IsNothing());
  EXPECT_EQ(ErrorOf([&] { servers.CreateObject("Word.Application"); }).number,
            platform::kCannotCreateObject);
}

TEST_F(ExcelApplicationObject, MembersHaveNoCase) {
  excel->Put("vISIBLE", false);
  EXPECT_EQ(excel->Get("VISIBLE"), Variant(false));
  EXPECT_NO_THROW(excel->GetRef("workbooks")->Call("ADD"));
}

TEST_F(ExcelApplicationObject, AnUnknownMemberIsRefused) {
  const Object book = AddBook();
  const Object sheet = book->GetRef("Sheets", {1});
  const Object cell = At(sheet, 1, 1);
  const std::vector<Object> objects = {excel,
                                       excel->GetRef("Workbooks"),
                                       book,
                                       book->GetRef("Sheets"),
                                       sheet,
                                       cell,
                                       cell->GetRef("Interior"),
                                       cell->GetRef("Font"),
                                       excel->GetRef("ActiveWindow")};
  for (const Object& object : objects) {
    EXPECT_EQ(ErrorOf([&] { object->Get("Frobnicate"); }).number, platform::kMemberNotFound);
    EXPECT_EQ(ErrorOf([&] { object->Put("Frobnicate", 1); }).number, platform::kMemberNotFound);
    EXPECT_EQ(ErrorOf([&] { object->Call("Frobnicate"); }).number, platform::kMemberNotFound);
  }
  EXPECT_EQ(ErrorOf([&] { excel->Get("Frobnicate"); }).text,
            "Application has no member Frobnicate");
}

TEST_F(ExcelApplicationObject, WhatIsOnlyReadCannotBeSet) {
  EXPECT_EQ(ErrorOf([&] { excel->Put("Workbooks", 1); }).number, platform::kMemberNotFound);
  EXPECT_EQ(ErrorOf([&] { AddBook()->GetRef("Sheets")->Put("Count", 2); }).number,
            platform::kMemberNotFound);
}

TEST_F(ExcelApplicationObject, TooManyOrTooFewArgumentsAreRefused) {
  const Object sheet = AddBook()->GetRef("Sheets", {1});
  EXPECT_EQ(ErrorOf([&] { excel->Get("Visible", {1}); }).number, platform::kWrongNumberOfArguments);
  EXPECT_EQ(ErrorOf([&] { sheet->Get("Cells", {1}); }).number, platform::kWrongNumberOfArguments);
  EXPECT_EQ(ErrorOf([&] { sheet->Get("Range"); }).number, platform::kWrongNumberOfArguments);
  EXPECT_EQ(ErrorOf([&] { excel->GetRef("Workbooks")->Call("open"); }).number,
            platform::kWrongNumberOfArguments);
  EXPECT_EQ(ErrorOf([&] { excel->Put("Visible", true, {1}); }).number,
            platform::kWrongNumberOfArguments);
}

TEST_F(ExcelApplicationObject, StartsHiddenAndWithoutAWorkbook) {
  EXPECT_EQ(excel->Get("Visible"), Variant(false));
  EXPECT_EQ(excel->Get("DisplayAlerts"), Variant(true));
  EXPECT_EQ(ErrorOf([&] { excel->GetRef("ActiveWindow"); }).number, platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { excel->GetRef("Selection"); }).number, platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { excel->Get("Range", {"A1"}); }).number, platform::kApplicationDefined);
}

TEST_F(ExcelApplicationObject, ThereIsNoCalculationWithoutAWorkbook) {
  EXPECT_EQ(ErrorOf([&] { excel->Put("Calculation", -4135); }).number,
            platform::kApplicationDefined);
  AddBook();
  EXPECT_EQ(excel->Get("Calculation"), Variant(-4105));
  excel->Put("Calculation", -4135);
  EXPECT_EQ(excel->Get("Calculation"), Variant(-4135));
  EXPECT_EQ(ErrorOf([&] { excel->Put("Calculation", 7); }).number, platform::kApplicationDefined);
}

TEST_F(ExcelApplicationObject, AlertsStayOff) {
  excel->Put("DisplayAlerts", false);
  EXPECT_EQ(excel->Get("DisplayAlerts"), Variant(false));
}

TEST_F(ExcelApplicationObject, BecomingVisibleShowsTheWorkbooks) {
  AddBook();
  excel->Put("Visible", false);
  EXPECT_TRUE(viewer.shown.empty());
  excel->Put("Visible", true);
  ASSERT_EQ(viewer.shown.size(), 1U);
  EXPECT_EQ(viewer.shown[0].sheets, std::vector<std::string>{"Sheet1"});
  EXPECT_EQ(viewer.shown[0].path, "");
}

TEST_F(ExcelApplicationObject, WhatIsVisibleIsNotShownAgain) {
  AddBook();
  excel->Put("Visible", true);
  excel->Put("Visible", true);
  EXPECT_EQ(viewer.shown.size(), 1U);
  excel->Put("Visible", false);
  excel->Put("Visible", true);
  EXPECT_EQ(viewer.shown.size(), 2U);
}

TEST_F(ExcelApplicationObject, WhatIsDroppedWhileHiddenIsNeverShown) {
  AddBook();
  excel = nullptr;
  EXPECT_TRUE(viewer.shown.empty());
}

TEST_F(ExcelApplicationObject, AnOpenedWorkbookIsShownAsItsFile) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), XlsxFile{}.Bytes());
  excel->GetRef("Workbooks")->Call("open", {folder.File("w.xlsx")});
  excel->Put("Visible", true);
  ASSERT_EQ(viewer.shown.size(), 1U);
  EXPECT_EQ(viewer.shown[0].path, folder.File("w.xlsx"));
}

TEST_F(ExcelApplicationObject, AFileThatIsNoWorkbookIsNotOpened) {
  const TemporaryFolder folder;
  const Object books = excel->GetRef("Workbooks");
  EXPECT_EQ(ErrorOf([&] { books->Call("open", {folder.File("none.xlsx")}); }).number,
            platform::kApplicationDefined);
  WriteBytes(folder.File("text.xlsx"), "A,B\r\n1,2\r\n");
  const Raised raised = ErrorOf([&] { books->Call("open", {folder.File("text.xlsx")}); });
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_EQ(raised.text, folder.File("text.xlsx") + ": is no workbook: neither .xlsx nor .xls");
  EXPECT_EQ(ErrorOf([&] { books->Call("open", {folder.path()}); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { excel->GetRef("ActiveWindow"); }).number, platform::kObjectNotSet);
}

TEST_F(ExcelApplicationObject, AClosedWorkbookIsGone) {
  const Object book = AddBook();
  const Object sheet = book->GetRef("Sheets", {1});
  const Object cell = At(sheet, 1, 1);
  book->Call("Close", {false});
  EXPECT_EQ(ErrorOf([&] { book->Get("Sheets"); }).number, kObjectGone);
  EXPECT_EQ(ErrorOf([&] { sheet->Get("Name"); }).number, kObjectGone);
  EXPECT_EQ(ErrorOf([&] { cell->Put("Value", 1); }).number, kObjectGone);
  EXPECT_EQ(ErrorOf([&] { book->Call("Close", {false}); }).number, kObjectGone);
  excel->Put("Visible", true);
  EXPECT_TRUE(viewer.shown.empty());
}

TEST_F(ExcelApplicationObject, ClosingDoesNotSave) {
  const TemporaryFolder folder;
  const std::string bytes = XlsxFile{}.Bytes();
  WriteBytes(folder.File("w.xlsx"), bytes);
  const Object book = excel->GetRef("Workbooks")->CallRef("open", {folder.File("w.xlsx")});
  At(book->GetRef("Sheets", {1}), 1, 1)->Put("Value", "changed");
  EXPECT_EQ(ErrorOf([&] { book->Call("Close", {true}); }).number, platform::kApplicationDefined);
  book->Call("Close", {false});
  EXPECT_EQ(ReadBytes(folder.File("w.xlsx")), bytes);
}

TEST_F(ExcelApplicationObject, NothingCanBeUsedAfterQuit) {
  const Object book = AddBook();
  const Object sheet = book->GetRef("Sheets", {1});
  excel->Call("Quit");
  for (const Object& object : {excel, book, sheet}) {
    EXPECT_EQ(ErrorOf([&] {
                object->Get(object == excel ? "Visible" : object == book ? "Sheets" : "Name");
              }).number,
              kServerUnavailable);
  }
  EXPECT_EQ(ErrorOf([&] { excel->Put("Visible", true); }).number, kServerUnavailable);
  EXPECT_EQ(ErrorOf([&] { excel->Get("Workbooks"); }).number, kServerUnavailable);
  EXPECT_TRUE(viewer.shown.empty());
}

TEST_F(ExcelApplicationObject, TwoApplicationsHaveNothingInCommon) {
  const Object other = servers.CreateObject("Excel.Application");
  AddBook();
  EXPECT_EQ(ErrorOf([&] { other->GetRef("ActiveWindow"); }).number, platform::kObjectNotSet);
  other->Call("Quit");
  EXPECT_NO_THROW(excel->Get("Visible"));
}

TEST_F(ExcelApplicationObject, ZoomIsThatOfTheSheetInTheWindow) {
  const Object book = AddBook();
  const Object window = excel->GetRef("ActiveWindow");
  window->Put("Zoom", 80);
  EXPECT_EQ(window->Get("Zoom"), Variant(80));
  book->GetRef("Sheets")->Call("Add");
  EXPECT_EQ(window->Get("Zoom"), Variant(100));
  book->GetRef("Sheets", {2})->Call("Select");
  EXPECT_EQ(window->Get("Zoom"), Variant(80));
  EXPECT_EQ(ErrorOf([&] { window->Put("Zoom", 9); }).number, platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { window->Put("Zoom", 401); }).number, platform::kApplicationDefined);
}

TEST_F(ExcelApplicationObject, SelectionIsThatOfTheActiveSheet) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  const Object first = book->GetRef("Sheets", {1});
  const Object second = book->GetRef("Sheets", {2});
  first->Call("Select");
  first->GetRef("Range", {"B5:H5"})->Call("Select");
  excel->GetRef("Selection")->Put("WrapText", true);
  EXPECT_EQ(At(first, 5, 8)->Get("WrapText"), Variant(true));
  EXPECT_EQ(At(first, 5, 9)->Get("WrapText"), Variant(false));
  second->Call("Select");
  excel->GetRef("Selection")->Put("Value", "here");
  EXPECT_EQ(At(second, 1, 1)->Get("Value"), Variant("here"));
  first->Call("Select");
  excel->GetRef("Selection")->GetRef("Font")->Put("Bold", true);
  EXPECT_EQ(At(first, 5, 2)->GetRef("Font")->Get("Bold"), Variant(true));
}

TEST_F(ExcelApplicationObject, ARangeOfTheApplicationIsOnTheActiveSheet) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  const Object second = book->GetRef("Sheets", {2});
  second->Call("Select");
  second->GetRef("Application")->GetRef("Range", {"C3"})->Put("Value", "there");
  EXPECT_EQ(At(second, 3, 3)->Get("Value"), Variant("there"));
  EXPECT_TRUE(At(book->GetRef("Sheets", {1}), 3, 3)->Get("Value").IsEmpty());
}

TEST_F(ExcelApplicationObject, OnlyTheActiveSheetLetsARangeBeSelected) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  const Object second = book->GetRef("Sheets", {2});
  EXPECT_EQ(ErrorOf([&] { second->GetRef("Range", {"B6"})->Call("Select"); }).number,
            platform::kApplicationDefined);
  second->Call("Select");
  EXPECT_NO_THROW(second->GetRef("Range", {"B6"})->Call("Select"));
}

TEST_F(ExcelApplicationObject, OnlyTheActiveWorkbookLetsASheetBeSelected) {
  const Object first = AddBook();
  const Object second = AddBook();
  const Object sheet = first->GetRef("Sheets", {1});
  EXPECT_EQ(ErrorOf([&] { sheet->Call("Select"); }).number, platform::kApplicationDefined);
  second->Call("Close", {false});
  EXPECT_NO_THROW(sheet->Call("Select"));
}

TEST_F(ExcelSheetsObject, ANewWorkbookHasOneSheet) {
  const Object book = AddBook();
  EXPECT_EQ(book->GetRef("Sheets")->Get("Count"), Variant(1));
  EXPECT_EQ(Names(book), std::vector<std::string>{"Sheet1"});
}

TEST_F(ExcelSheetsObject, ANewSheetStandsBeforeTheActiveOneAndIsActive) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  EXPECT_EQ(Names(book), (std::vector<std::string>{"Sheet2", "Sheet1"}));
  book->GetRef("Sheets")->Call("Add");
  EXPECT_EQ(Names(book), (std::vector<std::string>{"Sheet3", "Sheet2", "Sheet1"}));
  book->GetRef("Sheets", {3})->Call("Select");
  const Object added = book->GetRef("Sheets")->CallRef("Add");
  EXPECT_EQ(Text(added->Get("Name")), "Sheet4");
  EXPECT_EQ(Names(book), (std::vector<std::string>{"Sheet3", "Sheet2", "Sheet4", "Sheet1"}));
}

TEST_F(ExcelSheetsObject, ANewSheetTakesANameThatIsFree) {
  const Object book = AddBook();
  book->GetRef("Sheets", {1})->Put("Name", "sheet2");
  book->GetRef("Sheets")->Call("Add");
  EXPECT_EQ(Names(book), (std::vector<std::string>{"Sheet3", "sheet2"}));
}

TEST_F(ExcelSheetsObject, SheetsAreFoundByNumberAndByNameInAnyCase) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  EXPECT_EQ(Text(book->GetRef("Sheets", {1})->Get("Name")), "Sheet2");
  EXPECT_EQ(Text(book->GetRef("Sheets", {2.0})->Get("Name")), "Sheet1");
  EXPECT_EQ(Text(book->GetRef("Sheets", {"SHEET1"})->Get("Name")), "Sheet1");
}

TEST_F(ExcelSheetsObject, ASheetThatIsNotThereIsOutOfRange) {
  const Object book = AddBook();
  for (const Variant& index :
       {Variant(0), Variant(2), Variant(-1), Variant("Sheet2"), Variant("")}) {
    EXPECT_EQ(ErrorOf([&] { book->Get("Sheets", {index}); }).number,
              platform::kSubscriptOutOfRange);
  }
}

TEST_F(ExcelSheetsObject, ALoopDeletesAllButTheLastSheet) {
  const Object book = AddBook();
  const Object sheets = book->GetRef("Sheets");
  sheets->Call("Add");
  sheets->Call("Add");
  for (const auto& sheet : sheets->Items()) {
    if (sheets->Get("Count").ToLong(platform::DefaultLocale()) > 1) {
      sheet->Call("Delete");
    }
  }
  EXPECT_EQ(Names(book), std::vector<std::string>{"Sheet1"});
}

TEST_F(ExcelSheetsObject, TheOnlySheetStays) {
  const Object sheet = AddBook()->GetRef("Sheets", {1});
  EXPECT_EQ(ErrorOf([&] { sheet->Call("Delete"); }).number, platform::kApplicationDefined);
  EXPECT_EQ(Text(sheet->Get("Name")), "Sheet1");
}

TEST_F(ExcelSheetsObject, ADeletedSheetIsGone) {
  const Object book = AddBook();
  const Object sheet = book->GetRef("Sheets")->CallRef("Add");
  const Object cell = At(sheet, 1, 1);
  sheet->Call("Delete");
  EXPECT_EQ(ErrorOf([&] { sheet->Get("Name"); }).number, kObjectGone);
  EXPECT_EQ(ErrorOf([&] { cell->Get("Value"); }).number, kObjectGone);
  EXPECT_EQ(ErrorOf([&] { sheet->Call("Delete"); }).number, kObjectGone);
}

TEST_F(ExcelSheetsObject, AnotherSheetIsActiveWhenTheActiveOneIsDeleted) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  book->GetRef("Sheets")->Call("Add");
  const auto active = [&] {
    excel->GetRef("Selection")->Put("Value", "x");
    std::string name;
    for (const auto& sheet : book->GetRef("Sheets")->Items()) {
      if (!At(sheet, 1, 1)->Get("Value").IsEmpty()) {
        At(sheet, 1, 1)->Put("Value", Variant());
        name = Text(sheet->Get("Name"));
      }
    }
    return name;
  };
  EXPECT_EQ(active(), "Sheet3");
  book->GetRef("Sheets", {"Sheet3"})->Call("Delete");
  EXPECT_EQ(active(), "Sheet2");
  book->GetRef("Sheets", {"Sheet1"})->Call("Select");
  book->GetRef("Sheets", {"Sheet2"})->Call("Delete");
  EXPECT_EQ(active(), "Sheet1");
  book->GetRef("Sheets")->Call("Add");
  book->GetRef("Sheets", {"Sheet1"})->Call("Select");
  book->GetRef("Sheets", {"Sheet1"})->Call("Delete");
  EXPECT_EQ(active(), "Sheet4");
}

TEST_F(ExcelSheetsObject, ANameThatExcelRefusesChangesNothing) {
  const Object sheet = AddBook()->GetRef("Sheets", {1});
  for (const char* name : {"", "a/b", "12345678901234567890123456789012", "History", "'a", "a'"}) {
    EXPECT_EQ(ErrorOf([&] { sheet->Put("Name", name); }).number, platform::kApplicationDefined)
        << name;
    EXPECT_EQ(Text(sheet->Get("Name")), "Sheet1");
  }
  EXPECT_EQ(ErrorOf([&] { sheet->Put("Name", "a/b"); }).text,
            "The sheet name 'a/b' has one of the characters : \\ / ? * [ ]");
}

TEST_F(ExcelSheetsObject, TwoSheetsCannotHaveOneNameInWhateverCase) {
  const Object book = AddBook();
  book->GetRef("Sheets")->Call("Add");
  const Object sheet = book->GetRef("Sheets", {"Sheet2"});
  EXPECT_EQ(ErrorOf([&] { sheet->Put("Name", "SHEET1"); }).number, platform::kApplicationDefined);
  EXPECT_NO_THROW(sheet->Put("Name", "SHEET2"));
  EXPECT_EQ(Text(sheet->Get("Name")), "SHEET2");
}

TEST_F(ExcelSheetsObject, AWorkbookHasNoMoreThan1024Sheets) {
  const Object sheets = AddBook()->GetRef("Sheets");
  for (int i = 1; i < 1024; ++i) {
    sheets->Call("Add");
  }
  EXPECT_EQ(ErrorOf([&] { sheets->Call("Add"); }).number, platform::kApplicationDefined);
  EXPECT_EQ(sheets->Get("Count"), Variant(1024));
}

}  // namespace
}  // namespace nimbrel::spreadsheet
