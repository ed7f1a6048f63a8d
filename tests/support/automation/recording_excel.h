#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/automation.h"
#include "platform/variant.h"
#include "tests/support/host/recorder.h"

namespace nimbrel::recording {

/// A cell of a test's sheet, by row and column from 1.
using CellPlace = std::pair<std::int32_t, std::int32_t>;

/// A sheet as plain data.
struct SheetState {
  std::string label;  ///< how the log calls it: "Sheet1", in the order of making
  std::string name;
  std::map<CellPlace, platform::Variant> cells;
  std::string selection = "A1";
};

struct ExcelState {
  std::vector<std::shared_ptr<SheetState>> sheets;
  std::shared_ptr<SheetState> active;
  bool open = false;  ///< whether a workbook is open
  bool visible = false;
  int sheets_made = 0;
  int new_sheets = 3;  ///< of a new workbook
  /// The user closes this Excel just before the step whose line contains this; empty: never. That
  /// step and whatever else is asked of it from then on raise error 462.
  std::string closed_at;
  bool closed = false;

  /// Adds a sheet at the end, as if it came out of a file.
  SheetState& AddSheet(const std::string& name);
  /// The sheet of this name. Throws std::out_of_range if there is none: a mistake of the test.
  SheetState& Sheet(const std::string& name) const;
};

/// A small Excel in memory for tests: it has the members that the exchange of weather data uses and
/// no other, writes down every step, and can be made to fail (see Recorder).
///
/// A line of the log is the whole way from the application to what was put, called or read, as in
/// `Sheet1.Application.Selection.Font.Bold = True`. Objects on the way leave no line of their own.
/// A workbook is called "Book", sheets by their labels. What looks and formats do is not kept.
class RecordingExcel final : public platform::AutomationServers {
 public:
  /// Writes into `recorder`, which must outlive the object and everything that it has made.
  explicit RecordingExcel(Recorder& recorder);

  platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;

  /// What the workbook holds: of one that is opened, as it was when the test set it up.
  ExcelState& state() const { return *state_; }
  /// Whether anybody still holds an object of this Excel.
  bool IsHeld() const { return state_.use_count() > 1; }

  /// Whether there is an Excel at all.
  bool installed = true;

 private:
  Recorder& recorder_;
  std::shared_ptr<ExcelState> state_;
};

}  // namespace nimbrel::recording
