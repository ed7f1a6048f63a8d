#include "spreadsheet/excel_application.h"

#include <algorithm>
#include <array>

#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "spreadsheet/excel_range.h"
#include "spreadsheet/excel_sheet.h"
#include "spreadsheet/workbook_reader.h"

namespace nimbrel::spreadsheet {
namespace {

using platform::DefaultLocale;
using platform::MakeRef;
using platform::Variant;

/// An open workbook.
class ExcelWorkbook final : public DispatchObject<ExcelWorkbook> {
 public:
  static constexpr std::string_view kClassName = "Workbook";
  static std::span<const Member<ExcelWorkbook>> Members();

  ExcelWorkbook(std::shared_ptr<ExcelSession> session, std::shared_ptr<OpenBook> book)
      : session_(std::move(session)), book_(std::move(book)) {}

 private:
  Variant GetSheets(Arguments arguments) {
    RequireArguments(arguments, 0, 1);
    session_->RequireOpen(*book_);
    const auto sheets = MakeRef<ExcelSheets>(session_, book_);
    return arguments.empty() ? Variant(sheets) : sheets->Item(arguments[0]);
  }

  Variant Close(Arguments arguments) {
    RequireArguments(arguments, 0, 1);
    session_->RequireOpen(*book_);
    if (!arguments.empty() && arguments[0].ToBoolean(DefaultLocale())) {
      RaiseRefused("A workbook can be closed only without saving it");
    }
    std::erase(session_->books, book_);
    return true;
  }

  std::shared_ptr<ExcelSession> session_;
  std::shared_ptr<OpenBook> book_;
};

std::span<const Member<ExcelWorkbook>> ExcelWorkbook::Members() {
  static constexpr std::array<Member<ExcelWorkbook>, 2> kMembers = {{
      {"Sheets", &ExcelWorkbook::GetSheets},
      {"Close", &ExcelWorkbook::Close},
  }};
  return kMembers;
}

/// The open workbooks.
class ExcelWorkbooks final : public DispatchObject<ExcelWorkbooks> {
 public:
  static constexpr std::string_view kClassName = "Workbooks";
  static std::span<const Member<ExcelWorkbooks>> Members();

  explicit ExcelWorkbooks(std::shared_ptr<ExcelSession> session) : session_(std::move(session)) {}

 private:
  /// Makes a new workbook of one sheet.
  Variant Add(Arguments arguments) {
    RequireArguments(arguments, 0, 0);
    session_->RequireRunning();
    const auto book = std::make_shared<OpenBook>();
    book->workbook.AddSheet("Sheet1");
    return Activate(book);
  }

  /// Reads a file. Raises error 1004 as ReadWorkbook does.
  Variant Open(Arguments arguments) {
    RequireArguments(arguments, 1, 1);
    session_->RequireRunning();
    const auto book = std::make_shared<OpenBook>();
    book->path = arguments[0].ToText(DefaultLocale());
    book->workbook = ReadWorkbook(book->path);
    return Activate(book);
  }

  Variant Activate(const std::shared_ptr<OpenBook>& book) {
    session_->books.push_back(book);
    return MakeRef<ExcelWorkbook>(session_, book);
  }

  std::shared_ptr<ExcelSession> session_;
};

std::span<const Member<ExcelWorkbooks>> ExcelWorkbooks::Members() {
  static constexpr std::array<Member<ExcelWorkbooks>, 2> kMembers = {{
      {"Add", &ExcelWorkbooks::Add},
      {"Open", &ExcelWorkbooks::Open},
  }};
  return kMembers;
}

/// The window of a workbook, on whatever sheet is active in it at the time.
class ExcelWindow final : public DispatchObject<ExcelWindow> {
 public:
  static constexpr std::string_view kClassName = "Window";
  static std::span<const Member<ExcelWindow>> Members();

  ExcelWindow(std::shared_ptr<ExcelSession> session, std::shared_ptr<OpenBook> book)
      : session_(std::move(session)), book_(std::move(book)) {}

 private:
  Sheet& ShownSheet() const {
    session_->RequireOpen(*book_);
    return *book_->workbook.sheets()[book_->workbook.active_sheet()];
  }

  Variant GetZoom(Arguments arguments) {
    RequireArguments(arguments, 0, 0);
    return static_cast<std::int32_t>(ShownSheet().zoom());
  }

  void PutZoom(const Variant& value) {
    constexpr std::int32_t kSmallest = 10;
    constexpr std::int32_t kLargest = 400;
    const std::int32_t percent = value.ToLong(DefaultLocale());
    if (percent < kSmallest || percent > kLargest) {
      RaiseRefused("A window zooms from 10 to 400 percent");
    }
    ShownSheet().set_zoom(percent);
  }

  std::shared_ptr<ExcelSession> session_;
  std::shared_ptr<OpenBook> book_;
};

std::span<const Member<ExcelWindow>> ExcelWindow::Members() {
  static constexpr std::array<Member<ExcelWindow>, 1> kMembers = {{
      {"Zoom", &ExcelWindow::GetZoom, &ExcelWindow::PutZoom},
  }};
  return kMembers;
}

constexpr std::int32_t kManual = -4135;
constexpr std::int32_t kSemiautomatic = 2;

}  // namespace

std::span<const Member<ExcelApplication>> ExcelApplication::Members() {
  static constexpr std::array<Member<ExcelApplication>, 8> kMembers = {{
      {"Visible", &ExcelApplication::GetVisible, &ExcelApplication::PutVisible},
      {"DisplayAlerts", &ExcelApplication::GetDisplayAlerts, &ExcelApplication::PutDisplayAlerts},
      {"Calculation", &ExcelApplication::GetCalculation, &ExcelApplication::PutCalculation},
      {"Workbooks", &ExcelApplication::GetWorkbooks},
      {"ActiveWindow", &ExcelApplication::GetActiveWindow},
      {"Selection", &ExcelApplication::GetSelection},
      {"Range", &ExcelApplication::GetRange},
      {"Quit", &ExcelApplication::Quit},
  }};
  return kMembers;
}

void ExcelApplication::RequireBook() const {
  session_->RequireRunning();
  if (session_->books.empty()) {
    RaiseRefused("No workbook is open");
  }
}

Variant ExcelApplication::GetVisible(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  return session_->visible;
}

void ExcelApplication::PutVisible(const Variant& value) {
  session_->RequireRunning();
  const bool was_visible = session_->visible;
  session_->visible = value.ToBoolean(DefaultLocale());
  if (session_->visible && !was_visible) {
    for (const auto& book : session_->books) {
      session_->viewer.Show(book->workbook, book->path);
    }
  }
}

Variant ExcelApplication::GetDisplayAlerts(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  return session_->display_alerts;
}

void ExcelApplication::PutDisplayAlerts(const Variant& value) {
  session_->RequireRunning();
  session_->display_alerts = value.ToBoolean(DefaultLocale());
}

Variant ExcelApplication::GetCalculation(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  RequireBook();
  return session_->calculation;
}

void ExcelApplication::PutCalculation(const Variant& value) {
  RequireBook();
  const std::int32_t mode = value.ToLong(DefaultLocale());
  if (mode != kAutomatic && mode != kManual && mode != kSemiautomatic) {
    RaiseRefused("The way of calculation " + std::to_string(mode) + " is not known");
  }
  session_->calculation = mode;
}

Variant ExcelApplication::GetWorkbooks(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  return MakeRef<ExcelWorkbooks>(session_);
}

Variant ExcelApplication::GetActiveWindow(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  if (session_->books.empty()) {
    return platform::Ref<platform::AutomationObject>();
  }
  return MakeRef<ExcelWindow>(session_, session_->ActiveBook());
}

Variant ExcelApplication::GetSelection(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  if (session_->books.empty()) {
    return platform::Ref<platform::AutomationObject>();
  }
  const SheetHandle active = ActiveSheet(session_);
  return MakeRef<ExcelRange>(active, active.sheet().selection());
}

Variant ExcelApplication::GetRange(Arguments arguments) {
  RequireBook();
  return RangeOf(ActiveSheet(session_), arguments);
}

Variant ExcelApplication::Quit(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireRunning();
  session_->books.clear();
  session_->has_quit = true;
  return {};
}

platform::Ref<platform::AutomationObject> ExcelServers::CreateObject(
    const std::string& identifier) {
  if (!platform::EqualsIgnoreCase(identifier, "Excel.Application")) {
    throw platform::RuntimeError(platform::kCannotCreateObject,
                                 "There is no program " + identifier);
  }
  return MakeRef<ExcelApplication>(std::make_shared<ExcelSession>(viewer_));
}

}  // namespace nimbrel::spreadsheet
