#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/automation.h"
#include "spreadsheet/excel_dispatch.h"
#include "spreadsheet/excel_session.h"
#include "spreadsheet/workbook_viewer.h"

namespace nimbrel::spreadsheet {

/// The program as a whole. It is hidden and has no workbook until it is told otherwise. When it
/// becomes visible its workbooks are shown as they are at that moment; what changes afterwards is
/// not. It needs no Quit: what it holds goes with the last reference to any object of it.
class ExcelApplication final : public DispatchObject<ExcelApplication> {
 public:
  static constexpr std::string_view kClassName = "Application";
  static std::span<const Member<ExcelApplication>> Members();

  explicit ExcelApplication(std::shared_ptr<ExcelSession> session) : session_(std::move(session)) {}

 private:
  platform::Variant GetVisible(Arguments arguments);
  void PutVisible(const platform::Variant& value);
  platform::Variant GetDisplayAlerts(Arguments arguments);
  void PutDisplayAlerts(const platform::Variant& value);
  /// -4105 automatic, -4135 manual, 2 automatic but for tables. As the program has it, there is
  /// none without a workbook.
  platform::Variant GetCalculation(Arguments arguments);
  void PutCalculation(const platform::Variant& value);
  platform::Variant GetWorkbooks(Arguments arguments);
  /// Nothing if no workbook is open.
  platform::Variant GetActiveWindow(Arguments arguments);
  /// The selected range of the active sheet; Nothing if no workbook is open.
  platform::Variant GetSelection(Arguments arguments);
  /// A range of the active sheet.
  platform::Variant GetRange(Arguments arguments);
  /// Closes all workbooks without saving. No object can be used afterwards.
  platform::Variant Quit(Arguments arguments);

  void RequireBook() const;

  std::shared_ptr<ExcelSession> session_;
};

/// Makes objects of the identifier "Excel.Application" where there is no Excel.
class ExcelServers final : public platform::AutomationServers {
 public:
  /// The viewer shows what becomes visible. It must live as long as any object made here.
  explicit ExcelServers(WorkbookViewer& viewer) : viewer_(viewer) {}

  platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;

 private:
  WorkbookViewer& viewer_;
};

}  // namespace nimbrel::spreadsheet
