#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/variant.h"
#include "spreadsheet/workbook.h"
#include "spreadsheet/workbook_viewer.h"

namespace nimbrel::spreadsheet {

/// A workbook that is open.
struct OpenBook {
  Workbook workbook;
  std::string path;              // empty if it has never been saved
  std::int32_t last_number = 1;  // of the names that new sheets get by themselves
};

/// The state that all objects of one application share.
struct ExcelSession {
  explicit ExcelSession(WorkbookViewer& the_viewer) : viewer(the_viewer) {}

  /// The one that has the window; null if none is open.
  std::shared_ptr<OpenBook> ActiveBook() const { return books.empty() ? nullptr : books.back(); }

  /// Raises error 462 when the application has quit.
  void RequireRunning() const;
  /// Raises error 462 when the application has quit, and error -2147221080, as automation has it
  /// for objects that have gone, when the book is closed.
  void RequireOpen(const OpenBook& book) const;

  WorkbookViewer& viewer;
  std::vector<std::shared_ptr<OpenBook>> books;  // the active one last
  bool visible = false;
  bool display_alerts = true;
  std::int32_t calculation = kAutomatic;
  bool has_quit = false;
};

/// A sheet of an open workbook, as the objects that work on it hold it.
class SheetHandle {
 public:
  SheetHandle(std::shared_ptr<ExcelSession> session, std::shared_ptr<OpenBook> book,
              std::shared_ptr<Sheet> sheet)
      : session_(std::move(session)), book_(std::move(book)), sheet_(std::move(sheet)) {}

  /// The sheet, its workbook and its place in it, from 0. All raise as
  /// ExcelSession::RequireOpen does, also when the sheet has been deleted.
  Sheet& sheet() const;
  Workbook& workbook() const;
  std::size_t Index() const;

  const std::shared_ptr<ExcelSession>& session() const { return session_; }
  const std::shared_ptr<OpenBook>& book() const { return book_; }

  /// Whether the sheet is the one in the window.
  bool IsActive() const;
  /// "sheet 'Spring', row 7, column C", with the file in front if there is one.
  std::string PlaceText(std::int32_t row, std::int32_t column) const;

 private:
  std::shared_ptr<ExcelSession> session_;
  std::shared_ptr<OpenBook> book_;
  std::shared_ptr<Sheet> sheet_;
};

/// The sheet in the window of the application. There must be an open workbook.
SheetHandle ActiveSheet(const std::shared_ptr<ExcelSession>& session);

/// Raises error 1004.
[[noreturn]] void RaiseRefused(const std::string& text);

}  // namespace nimbrel::spreadsheet
