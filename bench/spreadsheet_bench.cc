#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/automation.h"
#include "platform/date.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/workbook_viewer.h"

namespace nimbrel::bench {
namespace {

using Object = platform::Ref<platform::AutomationObject>;

constexpr int kSheets = 50;
constexpr int kRowsOfData = 200;
constexpr int kLastColumn = 8;

std::string BenchFile() {
  return (std::filesystem::temp_directory_path() / "nimbrel-spreadsheet-bench.xlsx").string();
}

void Fill(const Object& selection, int color, int pattern) {
  selection->GetRef("Interior")->Put("Colorindex", color);
  selection->GetRef("Interior")->Put("Pattern", pattern);
}

/// A sheet of event periods with its looks, call by call as an export makes it.
void WriteSheet(const Object& excel, const Object& sheet, int number) {
  const auto select = [&](const char* range) {
    sheet->GetRef("Range", {range})->Call("Select");
    return excel->GetRef("Selection");
  };
  sheet->GetRef("Columns")->Put("VerticalAlignment", -4160);
  sheet->GetRef("Columns")->Put("WrapText", true);
  for (int row = 1; row <= 3; ++row) {
    sheet->GetRef("Cells", {row, 1})->Put("Value", "Weather-Events");
    sheet->GetRef("Cells", {row, 1})->Put("WrapText", false);
  }
  sheet->Call("Select");
  sheet->Put("Name", "Calendar " + std::to_string(number));
  for (int column = 2; column <= kLastColumn; ++column) {
    sheet->GetRef("Columns", {column})->Put("ColumnWidth", column == 2 ? 20 : 13);
  }
  select("C:D")->Put("NumberFormat", "dd mmm yyyy");
  select("E:E")->Put("NumberFormat", "0.00%");
  sheet->GetRef("Cells")->Call("Select");
  Fill(excel->GetRef("Selection"), 15, 1);
  Fill(select("B:H"), -4142, -4142);
  Fill(select("1:5"), 15, 1);
  for (int column = 2; column <= kLastColumn; ++column) {
    sheet->GetRef("Cells", {5, column})->Put("Value", "Caption " + std::to_string(column));
  }
  Fill(select("B5:H5"), 41, 1);
  excel->GetRef("Selection")->GetRef("Font")->Put("Colorindex", 2);
  excel->GetRef("Selection")->GetRef("Font")->Put("Bold", true);
  for (int row = 6; row < 6 + kRowsOfData; ++row) {
    const auto put = [&](int column, const platform::Variant& value) {
      sheet->GetRef("Cells", {row, column})->Put("Value", value);
    };
    put(2, "Period " + std::to_string(row));
    put(3, platform::Date{46447.0 + row});
    put(4, platform::Date{46454.0 + row});
    put(5, 0.25);
    put(6, 1);
    put(7, 2);
    put(8, row);
  }
  select("B6:B6");
}

void Export(spreadsheet::WorkbookViewer& viewer) {
  spreadsheet::ExcelServers servers(viewer);
  const Object excel = servers.CreateObject("Excel.Application");
  const Object sheets = excel->GetRef("Workbooks")->CallRef("Add")->GetRef("Sheets");
  for (int i = 1; i < kSheets; ++i) {
    sheets->Call("Add");
  }
  int number = 0;
  for (const Object& sheet : sheets->Items()) {
    WriteSheet(excel, sheet, ++number);
  }
  excel->Put("Visible", true);
}

void ReportMemory(benchmark::State& state) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void BM_WriteWorkbook(benchmark::State& state) {
  spreadsheet::WorkbookSaver saver(BenchFile());
  for (auto _ : state) {
    Export(saver);
  }
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(BenchFile()));
  ReportMemory(state);
  std::filesystem::remove(BenchFile());
}
BENCHMARK(BM_WriteWorkbook)->Unit(benchmark::kMillisecond);

/// The file alone.
void BM_ReadWorkbook(benchmark::State& state) {
  spreadsheet::WorkbookSaver saver(BenchFile());
  Export(saver);
  for (auto _ : state) {
    benchmark::DoNotOptimize(spreadsheet::ReadWorkbook(BenchFile()).sheets().size());
  }
  ReportMemory(state);
  std::filesystem::remove(BenchFile());
}
BENCHMARK(BM_ReadWorkbook)->Unit(benchmark::kMillisecond);

/// The file and each of its cells by a call, as an import reads it.
void BM_ReadEveryCell(benchmark::State& state) {
  spreadsheet::WorkbookSaver saver(BenchFile());
  Export(saver);
  for (auto _ : state) {
    spreadsheet::ExcelServers servers(saver);
    const Object excel = servers.CreateObject("Excel.Application");
    const Object book = excel->GetRef("Workbooks")->CallRef("open", {BenchFile()});
    std::int64_t filled = 0;
    for (const Object& sheet : book->GetRef("Sheets")->Items()) {
      for (int row = 6; row < 9 + kRowsOfData; ++row) {
        for (int column = 2; column <= kLastColumn; ++column) {
          filled += sheet->GetRef("Cells", {row, column})->Get("Value").IsEmpty() ? 0 : 1;
        }
      }
    }
    if (filled != std::int64_t{kSheets} * kRowsOfData * (kLastColumn - 1)) {
      state.SkipWithError("cells are missing");
    }
    book->Call("Close", {false});
  }
  ReportMemory(state);
  std::filesystem::remove(BenchFile());
}
BENCHMARK(BM_ReadEveryCell)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nimbrel::bench
