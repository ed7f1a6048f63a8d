#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <string>

#include "spreadsheet/text_coding.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {
namespace {

/// A workbook of random values, such as the ones that weather data has and odder ones.
Workbook RandomWorkbook() {
  Workbook workbook;
  const auto sheets = *rc::gen::inRange(1, 4);
  const auto date = workbook.AddNumberFormat("dd mmm yyyy");
  const auto percent = workbook.AddNumberFormat("0.00%");
  for (int i = 0; i < sheets; ++i) {
    Sheet& sheet = workbook.AddSheet("Sheet " + std::to_string(i));
    for (int left = *rc::gen::inRange(0, 40); left > 0; --left) {
      Cell cell{.row = *rc::gen::inRange(1, 30),
                .column = *rc::gen::inRange<std::uint16_t>(1, 12),
                .value = 0.0};
      switch (*rc::gen::inRange(0, 5)) {
        case 0:
          cell.value = workbook.AddText("t" + ValidUtf8(*rc::gen::string<std::string>()));
          break;
        case 1:
          cell.value = *rc::gen::arbitrary<bool>();
          break;
        case 2:
          cell.format = date;
          cell.value = static_cast<double>(*rc::gen::inRange(61, 2'958'465));
          break;
        case 3:
          cell.format = percent;
          cell.value = *rc::gen::inRange(0, 10'001) / 10'000.0;
          break;
        default:
          // Seven digits before the point and six behind it: what the file keeps.
          cell.value = *rc::gen::inRange(-100'000'000, 100'000'000) / 64.0;
      }
      sheet.Put(cell);
    }
  }
  return workbook;
}

/// Whether two workbooks have the same sheets with the same values, dates in the same places.
::testing::AssertionResult SameValues(const Workbook& a, const Workbook& b) {
  if (a.sheets().size() != b.sheets().size()) {
    return ::testing::AssertionFailure() << b.sheets().size() << " sheets";
  }
  for (std::size_t i = 0; i < a.sheets().size(); ++i) {
    const Sheet& first = *a.sheets()[i];
    const Sheet& second = *b.sheets()[i];
    if (first.name() != second.name() || first.cells().size() != second.cells().size()) {
      return ::testing::AssertionFailure() << first.name() << " and " << second.name();
    }
    for (std::size_t j = 0; j < first.cells().size(); ++j) {
      const Cell& x = first.cells()[j];
      const Cell& y = second.cells()[j];
      const auto* text = std::get_if<TextId>(&x.value);
      const bool same_value = text != nullptr
                                  ? std::holds_alternative<TextId>(y.value) &&
                                        a.Text(*text) == b.Text(std::get<TextId>(y.value))
                                  : x.value == y.value;
      const bool same_kind =
          a.IsDate(a.NumberFormatOf(first, x)) == b.IsDate(b.NumberFormatOf(second, y));
      if (x.row != y.row || x.column != y.column || !same_value || !same_kind) {
        return ::testing::AssertionFailure()
               << first.name() << ", " << ColumnLetters(x.column) << x.row;
      }
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(RoundTrip, RandomWorkbooksReadBackAsTheyWere) {
  const bool holds = rc::check("a workbook survives", [] {
    const Workbook workbook = RandomWorkbook();
    const TemporaryFolder folder;
    WriteXlsx(workbook, folder.File("w.xlsx"));
    RC_ASSERT(SameValues(workbook, ReadWorkbook(folder.File("w.xlsx"))));
  });
  EXPECT_TRUE(holds);
}

/// A workbook with a value of each kind.
Workbook PlainWorkbook() {
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("Frühling");
  workbook.AddSheet("empty");
  const auto date = workbook.AddNumberFormat("dd mmm yyyy");
  const auto percent = workbook.AddNumberFormat("0.00%");
  for (std::int32_t row = 6; row < 40; ++row) {
    sheet.Put({row, 2, kFormatOfPlace,
               workbook.AddText("heavy rain, <1/2> & 雨 " + std::to_string(row))});
    sheet.Put({row, 3, date, 46'000.0 + row});
    sheet.Put({row, 4, date, 46'000.25 + row});
    sheet.Put({row, 5, percent, row / 64.0});
    sheet.Put({row, 6, kFormatOfPlace, row * 1.0});
    sheet.Put({row, 7, kFormatOfPlace, row % 2 == 0});
  }
  return workbook;
}

/// Another program that opens a workbook and saves it again, where it is installed.
struct Writer {
  const char* name;
  const char* program;
  const char* extension;
  /// A shell command, with @in, @out and @folder for the two files and a folder for itself.
  const char* command;
};

constexpr Writer kWriters[] = {
    {"LibreOfficeXlsx", "soffice", "xlsx",
     "soffice --headless -env:UserInstallation=file://@folder/home --convert-to xlsx --outdir "
     "@folder/out @in && mv @folder/out/in.xlsx @out"},
    {"LibreOfficeXls", "soffice", "xls",
     "soffice --headless -env:UserInstallation=file://@folder/home --convert-to xls --outdir "
     "@folder/out @in && mv @folder/out/in.xls @out"},
    {"GnumericXlsx", "ssconvert", "xlsx", "ssconvert -T Gnumeric_Excel:xlsx @in @out"},
    {"GnumericStrictXlsx", "ssconvert", "xlsx", "ssconvert -T Gnumeric_Excel:xlsx2 @in @out"},
    {"GnumericXls", "ssconvert", "xls", "ssconvert -T Gnumeric_Excel:excel_biff8 @in @out"},
    {"GnumericBothXls", "ssconvert", "xls", "ssconvert -T Gnumeric_Excel:excel_dsf @in @out"},
    {"OpenPyXl", "/usr/bin/python3 -c 'import openpyxl'", "xlsx",
     "/usr/bin/python3 -c \"import openpyxl; openpyxl.load_workbook('@in').save('@out')\""},
};

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

class SavedElsewhere : public testing::Test {
 protected:
  SavedElsewhere() { std::filesystem::create_directory(folder_.File("out")); }

  static bool IsInstalled(const std::string& program) {
    const std::string probe =
        program.find(' ') == std::string::npos ? "command -v " + program : program;
    return std::system((probe + " >/dev/null 2>&1").c_str()) == 0;
  }

  /// The file as the other program saves it; a test that fails has none.
  std::string Save(const Workbook& workbook, Writer writer) {
    WriteXlsx(workbook, folder_.File("in.xlsx"));
    const std::string out = folder_.File("saved.") + writer.extension;
    std::string command = writer.command;
    ReplaceAll(command, "@folder", folder_.path());
    ReplaceAll(command, "@in", folder_.File("in.xlsx"));
    ReplaceAll(command, "@out", out);
    EXPECT_EQ(std::system(("(" + command + ") >/dev/null 2>&1").c_str()), 0) << command;
    return out;
  }

 private:
  TemporaryFolder folder_;
};

class OtherWriter : public SavedElsewhere, public testing::WithParamInterface<Writer> {};

TEST_P(OtherWriter, WhatItSavesReadsBackAsItWas) {
  if (!IsInstalled(GetParam().program)) {
    GTEST_SKIP() << GetParam().program << " is not installed";
  }
  const Workbook workbook = PlainWorkbook();
  EXPECT_TRUE(SameValues(workbook, ReadWorkbook(Save(workbook, GetParam()))));
}

INSTANTIATE_TEST_SUITE_P(Programs, OtherWriter, testing::ValuesIn(kWriters),
                         [](const auto& info) { return std::string(info.param.name); });

/// The oldest form has texts of a code page, so its texts are Western ones.
TEST_F(SavedElsewhere, WhatGnumericSavesForExcel95ReadsBackAsItWas) {
  if (!IsInstalled("ssconvert")) {
    GTEST_SKIP() << "ssconvert is not installed";
  }
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("Spring");
  sheet.Put({6, 2, kFormatOfPlace, workbook.AddText("Frühlingsregen")});
  sheet.Put({6, 3, workbook.AddNumberFormat("dd mmm yyyy"), 46'000.0});
  sheet.Put({6, 4, workbook.AddNumberFormat("0.00%"), 0.25});
  sheet.Put({7, 4, kFormatOfPlace, true});
  const Writer writer{"", "", "xls", "ssconvert -T Gnumeric_Excel:excel_biff7 @in @out"};
  EXPECT_TRUE(SameValues(workbook, ReadWorkbook(Save(workbook, writer))));
}

}  // namespace
}  // namespace nimbrel::spreadsheet
