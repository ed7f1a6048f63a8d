// Excel where it is installed, and the workbook object where it is not.

#include "com/stand_in_servers.h"

#include <gmock/gmock.h>

#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "tests/com/excel_stand_in.h"
#include "tests/support/automation/exchange_test.h"
#include "tests/support/workbooks/test_files.h"
#include "tests/toolkit/support.h"

namespace nimbrel::com {
namespace {

using ::testing::ElementsAre;

class StandInServersTest : public recording::ExchangeTest {
 protected:
  StandInServersTest() { modExcel::Wire({&servers_, &services_}); }

  /// Whether an object answers only what the program in Excel's place has.
  static bool IsProgram(const Ref<AutomationObject>& excel) {
    return spreadsheet::ErrorOf([&] { excel->Get("TestProcess"); }).number == 0;
  }

  spreadsheet::TemporaryFolder folder_;
  std::string file_ = folder_.File("Wetter & Sturm.xlsx");
  spreadsheet::WorkbookSaver saver_{file_};
  ComServers installed_;
  spreadsheet::ExcelServers workbooks_{saver_};
  StandInServers servers_{installed_, workbooks_};
};

TEST_F(StandInServersTest, WithoutExcelTheWorkbookObjectAnswers) {
  ASSERT_FALSE(ComServers::IsInstalled("Excel.Application"));
  const auto excel = servers_.CreateObject("excel.application");
  EXPECT_FALSE(IsProgram(excel));
  EXPECT_EQ(excel->Get("Visible"), platform::Variant(false));
}

TEST_F(StandInServersTest, ExcelIsTakenFromWhenItIsInstalled) {
  ASSERT_EQ(RunAndWait(ExcelStandIn(L"/RegServer")), 0U);
  auto excel = servers_.CreateObject("Excel.Application");
  EXPECT_TRUE(IsProgram(excel));
  const auto id = static_cast<DWORD>(excel->Get("TestProcess").ToLong(platform::DefaultLocale()));
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
  excel = nullptr;
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
  ASSERT_EQ(RunAndWait(ExcelStandIn(L"/UnregServer")), 0U);
  EXPECT_FALSE(IsProgram(servers_.CreateObject("Excel.Application")));
}

TEST_F(StandInServersTest, WhatHasNeitherCannotBeCreated) {
  EXPECT_EQ(spreadsheet::ErrorOf([&] { servers_.CreateObject("Nowhere.Application"); }).number,
            platform::kCannotCreateObject);
}

TEST_F(StandInServersTest, WithoutExcelASheetIsExportedAndReadsBackTheSame) {
  ASSERT_FALSE(ComServers::IsInstalled("Excel.Application"));
  modExcel::InitColumnLetters();
  for (const char* const caption :
       {"Description", "Start", "Finish", "Probability", "Min", "Likely", "Max"}) {
    modGlobal::g_colEventHeaders.Add(caption);
  }
  platform::Collection<Ref<model::clsWeatherTask>> periods;
  const auto period = JanuaryPeriod("NORDSEE – Ä", "January <storm> & 雨");
  periods.Add(period);

  const auto excel = modExcel::StartExcel();
  const auto sheet = excel->GetRef("Workbooks")->CallRef("Add")->GetRef("Sheets", {1});
  modImportExport::ExportEventSheet(sheet, periods, period->m_strCalName);
  excel->Put("Visible", true);
  modGlobal::g_colEventHeaders.Clear();

  toolkit::TestDesktop desktop;
  toolkit::Form form(desktop, "frmTest", "Test", 6000, 4000);
  toolkit::ListView list(form, "lstTest");
  for (int column = 0; column < 9; ++column) {
    list.ColumnHeaders().Add("column", 100);
  }
  const auto again = modExcel::StartExcel();
  const auto read = again->GetRef("Workbooks")
                        ->CallRef("Open", {file_})
                        ->GetRef("Sheets", {period->m_strCalName});
  modImportExport::ReadEventRows(read, list);
  ASSERT_EQ(list.ListItems().Count(), 1);
  const auto& row = list.ListItems().Item(1);
  std::vector<std::string> cells;
  for (std::int32_t n = 1; n <= row->ListSubItems().Count(); ++n) {
    cells.push_back(row->ListSubItems().Item(n).Text());
  }
  EXPECT_THAT(cells, ElementsAre("January <storm> & 雨", "01/Jan/2027", "31/Jan/2027", "25%", "4",
                                 "7", "14"));
}

}  // namespace
}  // namespace nimbrel::com
