#include "spreadsheet/excel_session.h"

#include <algorithm>

#include "platform/runtime_error.h"
#include "spreadsheet/excel_dispatch.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::int32_t kServerUnavailable = 462;
constexpr std::int32_t kObjectGone = -2147221080;

[[noreturn]] void RaiseGone(const std::string& what) {
  throw platform::RuntimeError(kObjectGone, "Automation error: the " + what + " is gone");
}

}  // namespace

void RequireArguments(Arguments arguments, std::size_t least, std::size_t most) {
  if (arguments.size() < least || arguments.size() > most) {
    throw platform::RuntimeError(platform::kWrongNumberOfArguments, "Wrong number of arguments");
  }
}

void RaiseRefused(const std::string& text) {
  throw platform::RuntimeError(platform::kApplicationDefined, text);
}

void ExcelSession::RequireRunning() const {
  if (has_quit) {
    throw platform::RuntimeError(kServerUnavailable, "The application has quit");
  }
}

void ExcelSession::RequireOpen(const OpenBook& book) const {
  RequireRunning();
  const bool is_open = std::any_of(books.begin(), books.end(),
                                   [&](const auto& open) { return open.get() == &book; });
  if (!is_open) {
    RaiseGone("workbook");
  }
}

std::size_t SheetHandle::Index() const {
  session_->RequireOpen(*book_);
  const auto& sheets = book_->workbook.sheets();
  const auto found = std::find(sheets.begin(), sheets.end(), sheet_);
  if (found == sheets.end()) {
    RaiseGone("sheet");
  }
  return static_cast<std::size_t>(found - sheets.begin());
}

Sheet& SheetHandle::sheet() const {
  Index();
  return *sheet_;
}

Workbook& SheetHandle::workbook() const {
  Index();
  return book_->workbook;
}

bool SheetHandle::IsActive() const {
  return session_->ActiveBook() == book_ && book_->workbook.active_sheet() == Index();
}

std::string SheetHandle::PlaceText(std::int32_t row, std::int32_t column) const {
  return (book_->path.empty() ? "" : book_->path + ": ") + "sheet " + Quoted(sheet_->name()) +
         ", row " + std::to_string(row) + ", column " + ColumnLetters(column);
}

SheetHandle ActiveSheet(const std::shared_ptr<ExcelSession>& session) {
  const auto book = session->ActiveBook();
  return {session, book, book->workbook.sheets()[book->workbook.active_sheet()]};
}

}  // namespace nimbrel::spreadsheet
