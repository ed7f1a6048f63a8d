// The sheets of an export: what is written on them, in which order and as values of which type.

#include <gmock/gmock.h>

#include "exchange/mod_import_export.h"
#include "tests/support/automation/exchange_test.h"

namespace nimbrel::modImportExport {
namespace {

using model::clsWeatherTask;
using model::clsWWTask;
using platform::Date;
using platform::MakeDate;
using platform::MakeRef;
using platform::Variant;
using recording::CellPlace;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Lines = std::vector<std::string>;

class ExportSheetTest : public recording::ExchangeTest {
 protected:
  ExportSheetTest() {
    modExcel::InitColumnLetters();
    for (const char* const caption :
         {"Description", "Start", "Finish", "Probability", "Min", "Likely", "Max"}) {
      modGlobal::g_colEventHeaders.Add(caption);
    }
    for (const char* const caption :
         {"Description", "Start (Early)", "Start (Likely)", "Start (Late)", "", "Finish (Early)",
          "Finish (Likely)", "Finish (Late)"}) {
      modGlobal::g_colWindowHeaders.Add(caption);
    }
    const Ref<AutomationObject> app = modExcel::StartExcel();
    sheet_ = app->GetRef("Workbooks")->CallRef("Add")->GetRef("Sheets", {2});
    recorder().Clear();
  }
  ~ExportSheetTest() override {
    modGlobal::g_colEventHeaders.Clear();
    modGlobal::g_colWindowHeaders.Clear();
    modExcel::g_asColumnLetters.clear();
  }

  void AddPeriod(const std::string& calendar, const std::string& description, Date start, Date end,
                 double occurrence) {
    const auto t = MakeRef<clsWeatherTask>();
    t->m_strCalName = calendar;
    t->m_strTaskDesc = description;
    t->m_dtStart = start;
    t->m_dtEnd = end;
    t->m_dOccur = occurrence;
    t->m_nMin = 4;
    t->m_nLikely = 7;
    t->m_nMax = 14;
    periods_.Add(t);
  }
  void AddWindow(const std::string& calendar, const std::string& description) {
    const auto t = MakeRef<clsWWTask>();
    t->m_strCalName = calendar;
    t->m_strTaskDescStart = description;
    t->m_strTaskDescEnd = "not exported";
    t->m_dtStartStart = MakeDate(2026, 12, 1);
    t->m_dtLikelyStart = MakeDate(2026, 12, 10);
    t->m_dtEndStart = MakeDate(2027, 1, 5);
    t->m_dtStartEnd = MakeDate(2027, 2, 20);
    t->m_dtLikelyEnd = MakeDate(2027, 3, 5);
    t->m_dtEndEnd = MakeDate(2027, 3, 25);
    windows_.Add(t);
  }
  recording::SheetState& state() { return *workbook().sheets[1]; }
  /// The cells of a row that hold something, from column 2 on.
  std::vector<Variant> Row(std::int32_t row) {
    std::vector<Variant> values;
    for (const auto& [place, value] : state().cells) {
      if (place.first == row && place.second >= 2) {
        values.push_back(value);
      }
    }
    return values;
  }
  /// The lines of the log whose text contains `part`.
  Lines LinesWith(std::string_view part) { return recorder().Containing({part}); }

  platform::Collection<Ref<clsWeatherTask>> periods_;
  platform::Collection<Ref<clsWWTask>> windows_;
  Ref<AutomationObject> sheet_;
};

TEST_F(ExportSheetTest, WritesAnEventSheetStepByStep) {
  AddPeriod("NORTH SEA", "January", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31), 0.5);
  EXPECT_TRUE(ExportEventSheet(sheet_, periods_, "NORTH SEA").IsEmpty());
  const Lines expected = {"Sheet2.Columns.VerticalAlignment = -4160",
                          "Sheet2.Columns.WrapText = True",
                          "Application.ActivePlan",
                          "Plan.Name",
                          "Sheet2.Cells(1, 1).Value = \"Plan\"",
                          "Sheet2.Cells(1, 1).WrapText = False",
                          "Sheet2.Cells(2, 1).Value = \"Risk Analysis Weather Modeling\"",
                          "Sheet2.Cells(2, 1).WrapText = False",
                          "Sheet2.Cells(3, 1).Value = \"Weather-Events\"",
                          "Sheet2.Cells(3, 1).WrapText = False",
                          "Sheet2.Select",
                          "Sheet2.Name = \"NORTH SEA\"",
                          "Sheet2.Columns(2).ColumnWidth = 20",
                          "Sheet2.Columns(3).ColumnWidth = 13",
                          "Sheet2.Columns(4).ColumnWidth = 13",
                          "Sheet2.Columns(5).ColumnWidth = 13",
                          "Sheet2.Columns(6).ColumnWidth = 13",
                          "Sheet2.Columns(7).ColumnWidth = 13",
                          "Sheet2.Columns(8).ColumnWidth = 13",
                          "Sheet2.Range(\"C:D\").Select",
                          "Sheet2.Application.Selection.NumberFormat = \"dd mmm yyyy\"",
                          "Sheet2.Select",
                          "Sheet2.Range(\"E:E\").Select",
                          "Sheet2.Application.Selection.NumberFormat = \"0.00%\"",
                          "Sheet2.Cells.Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 15",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Range(\"B:H\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = -4142",
                          "Sheet2.Application.Selection.Interior.Pattern = -4142",
                          "Sheet2.Range(\"1:5\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 15",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Cells(5, 2).Value = \"Description\"",
                          "Sheet2.Cells(5, 3).Value = \"Start\"",
                          "Sheet2.Cells(5, 4).Value = \"Finish\"",
                          "Sheet2.Cells(5, 5).Value = \"Probability\"",
                          "Sheet2.Cells(5, 6).Value = \"Min\"",
                          "Sheet2.Cells(5, 7).Value = \"Likely\"",
                          "Sheet2.Cells(5, 8).Value = \"Max\"",
                          "Sheet2.Range(\"B5:H5\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 41",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Range(\"B5:H5\").Select",
                          "Sheet2.Application.Selection.Font.Colorindex = 2",
                          "Sheet2.Application.Selection.Font.Bold = True",
                          "Sheet2.Cells(6, 2).Value = \"January\"",
                          "Sheet2.Cells(6, 3).Value = 2027-01-01",
                          "Sheet2.Cells(6, 4).Value = 2027-01-31",
                          "Sheet2.Cells(6, 5).Value = 0.5",
                          "Sheet2.Cells(6, 6).Value = 4",
                          "Sheet2.Cells(6, 7).Value = 7",
                          "Sheet2.Cells(6, 8).Value = 14",
                          "Sheet2.Range(\"B6:B6\").Select"};
  EXPECT_THAT(calls(), ElementsAreArray(expected));
}

TEST_F(ExportSheetTest, WritesAWindowSheetStepByStep) {
  AddWindow("RIVER ICE", "Frozen");
  EXPECT_TRUE(ExportWindowSheet(sheet_, windows_, "RIVER ICE").IsEmpty());
  const Lines expected = {"Sheet2.Columns.VerticalAlignment = -4160",
                          "Sheet2.Columns.WrapText = True",
                          "Application.ActivePlan",
                          "Plan.Name",
                          "Sheet2.Cells(1, 1).Value = \"Plan\"",
                          "Sheet2.Cells(1, 1).WrapText = False",
                          "Sheet2.Cells(2, 1).Value = \"Risk Analysis Weather Modeling\"",
                          "Sheet2.Cells(2, 1).WrapText = False",
                          "Sheet2.Cells(3, 1).Value = \"Weather-Windows\"",
                          "Sheet2.Cells(3, 1).WrapText = False",
                          "Sheet2.Select",
                          "Sheet2.Name = \"RIVER ICE\"",
                          "Sheet2.Columns(2).ColumnWidth = 20",
                          "Sheet2.Columns(3).ColumnWidth = 15",
                          "Sheet2.Columns(4).ColumnWidth = 15",
                          "Sheet2.Columns(5).ColumnWidth = 15",
                          "Sheet2.Columns(6).ColumnWidth = 5",
                          "Sheet2.Columns(7).ColumnWidth = 15",
                          "Sheet2.Columns(8).ColumnWidth = 15",
                          "Sheet2.Columns(9).ColumnWidth = 15",
                          "Sheet2.Select",
                          "Sheet2.Application.Range(\"C:I\").Select",
                          "Sheet2.Application.Selection.HorizontalAlignment = -4108",
                          "Sheet2.Cells.Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 15",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Range(\"B:I\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = -4142",
                          "Sheet2.Application.Selection.Interior.Pattern = -4142",
                          "Sheet2.Range(\"1:5\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 15",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Cells(5, 2).Value = \"Description\"",
                          "Sheet2.Cells(5, 3).Value = \"Start (Early)\"",
                          "Sheet2.Cells(5, 4).Value = \"Start (Likely)\"",
                          "Sheet2.Cells(5, 5).Value = \"Start (Late)\"",
                          "Sheet2.Cells(5, 6).Value = \"\"",
                          "Sheet2.Cells(5, 7).Value = \"Finish (Early)\"",
                          "Sheet2.Cells(5, 8).Value = \"Finish (Likely)\"",
                          "Sheet2.Cells(5, 9).Value = \"Finish (Late)\"",
                          "Sheet2.Range(\"B5:I5\").Select",
                          "Sheet2.Application.Selection.Interior.Colorindex = 41",
                          "Sheet2.Application.Selection.Interior.Pattern = 1",
                          "Sheet2.Range(\"B5:I5\").Select",
                          "Sheet2.Application.Selection.Font.Colorindex = 2",
                          "Sheet2.Application.Selection.Font.Bold = True",
                          "Sheet2.Range(\"C:E\").Select",
                          "Sheet2.Application.Selection.NumberFormat = \"dd mmm yyyy\"",
                          "Sheet2.Range(\"G:I\").Select",
                          "Sheet2.Application.Selection.NumberFormat = \"dd mmm yyyy\"",
                          "Sheet2.Cells(6, 2).Value = \"Frozen\"",
                          "Sheet2.Cells(6, 3).Value = 2026-12-01",
                          "Sheet2.Cells(6, 4).Value = 2026-12-10",
                          "Sheet2.Cells(6, 5).Value = 2027-01-05",
                          "Sheet2.Cells(6, 7).Value = 2027-02-20",
                          "Sheet2.Cells(6, 8).Value = 2027-03-05",
                          "Sheet2.Cells(6, 9).Value = 2027-03-25",
                          "Sheet2.Range(\"B6:B6\").Select"};
  EXPECT_THAT(calls(), ElementsAreArray(expected));
}

TEST_F(ExportSheetTest, APeriodsValuesKeepTheirTypes) {
  AddPeriod("NORTH SEA", "January", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31), 1.0);
  ExportEventSheet(sheet_, periods_, "NORTH SEA");
  EXPECT_THAT(Row(6), ElementsAre(Variant("January"), Variant(MakeDate(2027, 1, 1)),
                                  Variant(MakeDate(2027, 1, 31)), Variant(1.0), Variant(4),
                                  Variant(7), Variant(14)));
}

TEST_F(ExportSheetTest, TheHourOfAPeriodsEndGoesAlong) {
  AddPeriod("A", "x", MakeDate(2027, 1, 1), MakeDate({2027, 1, 31, 22, 0, 0}), 1.0);
  ExportEventSheet(sheet_, periods_, "A");
  EXPECT_EQ(Row(6)[2], Variant(MakeDate({2027, 1, 31, 22, 0, 0})));
}

TEST_F(ExportSheetTest, AWindowsValuesAreATextAndSixDates) {
  AddWindow("RIVER ICE", "Frozen");
  ExportWindowSheet(sheet_, windows_, "RIVER ICE");
  const std::vector<Variant> row = Row(6);
  EXPECT_EQ(row.size(), 7u);
  EXPECT_TRUE(row[0].Is<std::string>());
  for (std::size_t i = 1; i < row.size(); ++i) {
    EXPECT_TRUE(row[i].Is<Date>()) << i;
  }
  EXPECT_EQ(state().cells.count({6, 6}), 0u);
  EXPECT_EQ(state().cells.at({5, 6}), Variant(""));
}

TEST_F(ExportSheetTest, RowsFollowTheCollectionWithoutGaps) {
  AddPeriod("A", "first", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2), 1.0);
  AddPeriod("B", "other", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2), 1.0);
  AddPeriod("A", "second", MakeDate(2026, 1, 1), MakeDate(2026, 1, 2), 1.0);
  ExportEventSheet(sheet_, periods_, "A");
  EXPECT_EQ(Row(6)[0], Variant("first"));
  EXPECT_EQ(Row(7)[0], Variant("second"));
  EXPECT_TRUE(Row(8).empty());
}

TEST_F(ExportSheetTest, ATaskOfACalendarThatDiffersByCaseTakesNoRow) {
  AddPeriod("North Sea", "January", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2), 1.0);
  ExportEventSheet(sheet_, periods_, "NORTH SEA");
  EXPECT_TRUE(Row(6).empty());
  AddWindow("River Ice", "Frozen");
  ExportWindowSheet(sheet_, windows_, "RIVER ICE");
  EXPECT_TRUE(Row(6).empty());
}

TEST_F(ExportSheetTest, AnEmptyCalendarGetsTitleHeaderAndCursor) {
  ExportEventSheet(sheet_, periods_, "QUIET");
  EXPECT_EQ(state().name, "QUIET");
  EXPECT_EQ(state().cells.at({3, 1}), Variant("Weather-Events"));
  EXPECT_EQ(Row(5).size(), 7u);
  EXPECT_TRUE(Row(6).empty());
  EXPECT_EQ(state().selection, "B6:B6");
}

TEST_F(ExportSheetTest, ATextThatReadsAsANumberStaysAText) {
  AddPeriod("A", "2027", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2), 1.0);
  ExportEventSheet(sheet_, periods_, "A");
  EXPECT_EQ(Row(6)[0], Variant("2027"));
}

TEST_F(ExportSheetTest, ANameThatExcelRefusesEndsTheSheet) {
  recorder().FailOn("Name =");
  EXPECT_EQ(ErrorOf([&] { ExportEventSheet(sheet_, periods_, "A/B"); }), 1004);
  EXPECT_EQ(calls().back(), "Sheet2.Name = \"A/B\"");
}

TEST_F(ExportSheetTest, AHeaderThatCannotBeSelectedKeepsItsLook) {
  recorder().FailAlways("B5:I5");
  AddWindow("RIVER ICE", "Frozen");
  ExportWindowSheet(sheet_, windows_, "RIVER ICE");
  EXPECT_TRUE(LinesWith("Font").empty());
  EXPECT_TRUE(LinesWith("= 41").empty());
  EXPECT_EQ(Row(6).size(), 7u);
}

TEST_F(ExportSheetTest, ACursorThatCannotBeSetIsNoError) {
  recorder().FailAlways("B6:B6");
  ExportEventSheet(sheet_, periods_, "A");
  EXPECT_NE(state().selection, "B6:B6");
}

TEST_F(ExportSheetTest, AFailureHalfWayLeavesTheSheetAsFarAsItWasWritten) {
  AddPeriod("A", "x", MakeDate(2027, 1, 1), MakeDate(2027, 1, 2), 1.0);
  recorder().FailOn("Cells(6, 4)");
  EXPECT_EQ(ErrorOf([&] { ExportEventSheet(sheet_, periods_, "A"); }), 1004);
  EXPECT_EQ(Row(6).size(), 2u);
}

}  // namespace
}  // namespace nimbrel::modImportExport
