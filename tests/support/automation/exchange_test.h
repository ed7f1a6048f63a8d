#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "desktop/mod_tool_box.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "platform/date.h"
#include "tests/support/automation/recording_excel.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::recording {

/// The desktop's services, written down in the host's own log. The file dialog gives `chosen`, and
/// a file exists if the test says so.
class LoggedServices final : public platform::SettingsStore,
                             public platform::ProcessStart,
                             public platform::WindowSystem,
                             public platform::FileDialog,
                             public platform::DirectorySearch,
                             public platform::MessageBox {
 public:
  explicit LoggedServices(Recorder& recorder) : recorder_(recorder) {}

  void Save(std::string_view /*application*/, std::string_view /*section*/, std::string_view key,
            std::string_view value) override {
    recorder_.Call("Settings", "Save", key, value);
  }
  std::string Get(std::string_view /*application*/, std::string_view /*section*/,
                  std::string_view /*key*/, std::string_view default_value) const override {
    return std::string(default_value);
  }
  std::int32_t ShellExecute(std::int32_t /*owner*/, const std::string& /*verb*/,
                            const std::string& file, const std::string& /*parameters*/,
                            const std::string& /*directory*/, std::int32_t /*show*/) override {
    recorder_.Call("Desktop", "ShellExecute", file);
    return 2;  // no such file
  }
  std::int32_t GetActiveWindow() override { return 0; }
  std::int32_t GetWindowLong(std::int32_t /*window*/, std::int32_t /*index*/) override { return 0; }
  std::int32_t GetWindowThread(std::int32_t window) override {
    recorder_.Call("Desktop", "GetWindowThread", window);
    return 4711;
  }
  std::int32_t GetOpenFileName(platform::FileDialogRecord& record) override {
    recorder_.Call("Desktop", "GetOpenFileName");
    asked.push_back(record);
    record.lpstrFile = chosen;
    return chosen.empty() ? 0 : 1;
  }
  std::int32_t GetSaveFileName(platform::FileDialogRecord& /*record*/) override {
    recorder_.Call("Desktop", "GetSaveFileName");
    return 0;
  }
  std::string FindFirst(const std::string& pattern) override {
    recorder_.Call("Desktop", "FindFirst", pattern);
    return exists ? "found" : "";
  }
  void Show(const std::string& text, const std::string& title) override {
    recorder_.Call("Desktop", "Show", text, title);
  }

  std::string chosen = "/data/weather.xlsx";
  bool exists = true;
  std::vector<platform::FileDialogRecord> asked;

 private:
  Recorder& recorder_;
};

/// Base of tests of what goes to and from workbooks: a recording host, a recording Excel and a
/// desktop that write into one log.
class ExchangeTest : public WiredTest {
 protected:
  ExchangeTest() {
    modToolBox::Wire(
        {&services_, &services_, &services_, &services_, nullptr, &services_, &services_});
    modExcel::Wire({&excel_, &services_, "help@velmora.example"});
    modImportExport::Wire({&services_, {}});
  }
  ~ExchangeTest() override {
    modImportExport::Wire({});
    modExcel::Wire({});
    modToolBox::Wire({});
  }

  ExcelState& workbook() { return excel_.state(); }

  /// Adds a sheet as a workbook of weather data has it: its marker, and rows from row 6 on, whose
  /// cells begin in column B. Empty values make empty cells.
  SheetState& AddSheet(const std::string& name, const std::string& marker,
                       const std::vector<std::vector<platform::Variant>>& rows) {
    SheetState& sheet = workbook().AddSheet(name);
    sheet.cells[{3, 1}] = marker;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t k = 0; k < rows[i].size(); ++k) {
        if (!rows[i][k].IsEmpty()) {
          sheet.cells[{static_cast<std::int32_t>(i) + 6, static_cast<std::int32_t>(k) + 2}] =
              rows[i][k];
        }
      }
    }
    return sheet;
  }
  /// The cells of a row of events as an export writes them.
  static std::vector<platform::Variant> EventRow(const std::string& description,
                                                 platform::Date start, platform::Date end,
                                                 double probability, double min, double likely,
                                                 double max) {
    return {description, start, end, probability, min, likely, max};
  }
  /// The cells of a row of windows as an export writes them: starts, a blank, finishes.
  static std::vector<platform::Variant> WindowRow(const std::string& description,
                                                  const std::vector<platform::Date>& dates) {
    return {description, dates[0], dates[1], dates[2], {}, dates[3], dates[4], dates[5]};
  }

  LoggedServices services_{recorder()};
  RecordingExcel excel_{recorder()};
};

}  // namespace nimbrel::recording
