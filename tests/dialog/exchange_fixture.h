#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dialog/choose_sheet.h"
#include "dialog/desktop_file_dialog.h"
#include "dialog/frm_import.h"
#include "dialog/frm_weather.h"
#include "platform/text.h"
#include "tests/support/automation/exchange_test.h"
#include "tests/toolkit/support.h"

namespace nimbrel::dialog {

/// The weather dialog over a plan in the recording host, with a recording Excel behind its buttons.
/// Message boxes are in the same log as the calls of host and Excel, and in the desktop's record.
///
/// The plan has the event calendars NORTH SEA, with periods P1 and P2, and FROST, with P3, and the
/// window calendar RIVER ICE with the window W1.
class ExchangeButtonsTest : public recording::ExchangeTest {
 protected:
  ExchangeButtonsTest() {
    desktop_.SetEventLog(&events_);
    desktop_.file = "/data/weather.xlsx";
    desktop_.while_box_is_open = [this] {
      const toolkit::Message& message = desktop_.messages.back();
      recorder().Call("Desktop", "Show", message.text, message.title);
      if (on_message_) {
        on_message_(message);
      }
    };
    modToolBox::Wire(
        {&services_, &services_, &services_, &file_dialog_, nullptr, &services_, &desktop_});
    modExcel::Wire({&excel_, &desktop_, "help@velmora.example"});
    modImportExport::Wire({&desktop_, [this](const auto& sheets, const std::string& kind) {
                             return ChooseSheet(desktop_, sheets, kind);
                           }});
    plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
    plan().AddWeatherSummary();
    plan().AddTask("A", 5)->description = "Foundations";
    AddPeriod("P1", "NORTH SEA", "January", 1);
    AddPeriod("P2", "NORTH SEA", "February", 2);
    AddPeriod("P3", "FROST", "March", 3);
    plan().AddWindow("W1", "RIVER ICE", "12/1/2026", "2/20/2027")->description = "Frozen";
    for (const char* const name : {"NORTH SEA", "FROST", "RIVER ICE"}) {
      AddRiskCalendar(name);
    }
  }

  void AddPeriod(const std::string& id, const std::string& calendar, const std::string& description,
                 int month) {
    const auto period =
        plan().AddPeriod(id, calendar, platform::MakeDate(2027, month, 1),
                         platform::MakeDate(2027, month, platform::DaysInMonth(2027, month)));
    period->description = description;
    period->duration = recording::DurationState{4, 7, 14};
  }
  void AddRiskCalendar(const std::string& name) {
    auto calendar = std::make_shared<recording::RiskCalendarState>();
    calendar->name = name;
    calendar->calendar = plan().FindCalendar(name);
    plan().risk_calendars.push_back(calendar);
  }

  /// Opens the dialog and works it; what happened before is in no record.
  void WhileOpen(const std::function<void()>& hands) {
    desktop_.OnNextForm([this, hands](toolkit::Form&) {
      recorder().Clear();
      events_.lines.clear();
      hands();
    });
    for (const auto& choose : on_sheets_) {
      desktop_.OnNextForm(
          [choose](toolkit::Form& form) { choose(dynamic_cast<frmImport&>(form)); });
    }
    on_sheets_.clear();
    form().ShowModal();
  }
  /// The dialog; one serves one opening, and NewForm makes the next.
  void NewForm() { form_ = nullptr; }
  frmWeather& form() {
    if (!form_) {
      form_ = std::make_unique<frmWeather>(desktop_);
    }
    return *form_;
  }
  /// What the user does in the choice of a sheet while the dialog is open next.
  void OnSheets(std::function<void(frmImport&)> hands) { on_sheets_.push_back(std::move(hands)); }
  void ChooseRow(std::int32_t row) {
    OnSheets([row](frmImport& sheets) {
      sheets.lstCals.UserClickRow(row);
      sheets.cmdOK.UserClick();
    });
  }
  void Answer(toolkit::Answer answer) { desktop_.answers.push_back(answer); }

  /// The texts of a row of a list, the row's own text first.
  static std::vector<std::string> Row(const toolkit::ListView& list, std::int32_t index) {
    const toolkit::ListItemRef& row = list.ListItems().Item(index);
    std::vector<std::string> cells = {row->Text()};
    for (std::int32_t n = 1; n <= row->ListSubItems().Count(); ++n) {
      cells.push_back(row->ListSubItems().Item(n).Text());
    }
    return cells;
  }
  /// IDs of all tasks of the plan, in its order.
  std::vector<std::string> TaskIds() {
    std::vector<std::string> ids;
    for (const auto& task : plan().tasks) {
      ids.push_back(task->id);
    }
    return ids;
  }
  std::vector<std::string> SheetNames() {
    std::vector<std::string> names;
    for (const auto& sheet : workbook().sheets) {
      names.push_back(sheet->name);
    }
    return names;
  }
  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const toolkit::Message& message : desktop_.messages) {
      texts.push_back(message.title + ": " + message.text);
    }
    return texts;
  }
  /// The log from the last line that contains `part` on.
  std::vector<std::string> CallsFrom(std::string_view part) {
    auto from = calls().end();
    while (from != calls().begin() &&
           (from == calls().end() || from->find(part) == std::string::npos)) {
      --from;
    }
    return {from, calls().end()};
  }

  toolkit::TestDesktop desktop_;
  toolkit::Events events_;
  DesktopFileDialog file_dialog_{desktop_};
  std::function<void(const toolkit::Message&)> on_message_;

 private:
  std::unique_ptr<frmWeather> form_;
  std::vector<std::function<void(frmImport&)>> on_sheets_;
};

}  // namespace nimbrel::dialog
