#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/mod_tool_box.h"
#include "dialog/frm_new_cal.h"
#include "dialog/frm_new_weather1.h"
#include "dialog/frm_new_window_cal.h"
#include "dialog/frm_weather.h"
#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "platform/date.h"
#include "tests/support/host/wired_test.h"
#include "tests/toolkit/support.h"

namespace nimbrel::dialog {

using toolkit::Key;
using toolkit::Lines;

/// The rows of a list as they stand, one text a row, with a bar between two columns.
inline Lines RowsOf(const toolkit::ListView& list) {
  Lines rows;
  for (const toolkit::ListItemRef& row : list.ListItems()) {
    std::string line = row->Text();
    for (std::int32_t column = 2; column <= list.ColumnHeaders().Count(); ++column) {
      line += "|" + row->CellText(column);
    }
    rows.push_back(std::move(line));
  }
  return rows;
}

/// One column of a list, from 1.
inline Lines ColumnOf(const toolkit::ListView& list, std::int32_t column) {
  Lines cells;
  for (const toolkit::ListItemRef& row : list.ListItems()) {
    cells.push_back(row->CellText(column));
  }
  return cells;
}

inline std::string Selected(const toolkit::ListView& list) {
  return list.SelectedItem().IsNothing() ? "" : list.SelectedItem()->Text();
}

/// The edit boxes of a page in column order, without the hidden one.
inline std::vector<toolkit::TextBox*> EventBoxes(frmWeather& form) {
  return {&form.txtDescription, &form.txtStart, &form.txtEnd, &form.txtFrequency,
          &form.txtMin,         &form.txtML,    &form.txtMax};
}
inline std::vector<toolkit::TextBox*> WindowBoxes(frmWeather& form) {
  return {&form.txtDescrWW,    &form.txtEarlyStartWW, &form.txtLikelyStartWW, &form.txtLateStartWW,
          &form.txtEarlyEndWW, &form.txtLikelyEndWW,  &form.txtLateEndWW};
}
inline Lines TextsOf(const std::vector<toolkit::TextBox*>& boxes) {
  Lines texts;
  for (const toolkit::TextBox* const box : boxes) {
    texts.push_back(box->Text());
  }
  return texts;
}
inline bool AllEnabled(const std::vector<toolkit::TextBox*>& boxes, bool enabled) {
  return std::all_of(boxes.begin(), boxes.end(),
                     [enabled](const toolkit::TextBox* box) { return box->Enabled() == enabled; });
}

/// Opens weather dialogs on a desktop of the test, and works them.
class DialogDesk {
 public:
  DialogDesk() {
    desktop_.SetEventLog(&events_);
    modToolBox::Services services;
    services.message_box = &desktop_;
    services.help = &help_;
    modToolBox::Wire(services);
  }
  ~DialogDesk() { modToolBox::Wire({}); }
  DialogDesk(const DialogDesk&) = delete;
  DialogDesk& operator=(const DialogDesk&) = delete;

  /// Opens a fresh dialog, works it and, unless it was closed by that, leaves it by the window's
  /// own button.
  void Open(const std::function<void(frmWeather&)>& hands) {
    desktop_.OnNextForm([this, hands](toolkit::Form& form) {
      events_.lines.clear();
      hands(static_cast<frmWeather&>(form));
      form.UserClose();
    });
    ShowWeatherDialog(desktop_);
  }

  /// What the user does on the next small dialog.
  void OnNewCal(const std::string& name, const std::string& start, const std::string& end) {
    desktop_.OnNextForm([=](toolkit::Form& form) {
      auto& dialog = static_cast<frmNewCal&>(form);
      dialog.txtCalName.UserType(name);
      dialog.txtStart.UserType(start);
      dialog.txtEnd.UserType(end);
      dialog.cmdOK.UserClick();
    });
  }
  void OnNewPeriods(const std::string& start, const std::string& end) {
    desktop_.OnNextForm([=](toolkit::Form& form) {
      auto& dialog = static_cast<frmNewWeather1&>(form);
      dialog.txtStart.UserType(start);
      dialog.txtEnd.UserType(end);
      dialog.cmdOK.UserClick();
    });
  }
  void OnNewWindowCal(const std::string& name) {
    desktop_.OnNextForm([=](toolkit::Form& form) {
      auto& dialog = static_cast<frmNewWindowCal&>(form);
      dialog.txtCalName.UserType(name);
      dialog.cmdOK.UserClick();
    });
  }
  void OnCancel() {
    desktop_.OnNextForm([](toolkit::Form& form) {
      static_cast<toolkit::CommandButton*>(form.Find("cmdCancel"))->UserClick();
    });
  }

  /// Types a text into a box and moves the focus on.
  static void Enter(toolkit::TextBox& box, const std::string& text) {
    box.UserType(text);
    box.UserKey(Key::kTab);
  }

  /// The texts of the add-in's own message boxes so far.
  Lines Messages() const {
    Lines texts;
    for (const toolkit::Message& message : desktop_.messages) {
      if (!message.reports_error) {
        EXPECT_EQ(message.title, "Weather Modeling");
        texts.push_back(message.text);
      }
    }
    return texts;
  }
  /// The numbers of the errors that reached the default handling since the dialog opened.
  std::vector<int> Errors() const {
    std::vector<int> numbers;
    for (const std::string& line : events_.lines) {
      if (line.starts_with("error ")) {
        numbers.push_back(std::stoi(line.substr(6)));
      }
    }
    return numbers;
  }
  const Lines& HelpAsked() const { return help_.files; }

  toolkit::TestDesktop desktop_;
  toolkit::Events events_;

 private:
  struct Help final : platform::HelpWindow {
    void HtmlHelp(std::int32_t /*owner*/, const std::string& file, std::int32_t /*command*/,
                  std::int32_t /*data*/) override {
      files.push_back(file);
    }
    Lines files;
  };
  Help help_;
};

/// The dialog over the plan of the recording host: its calls are written down and can fail.
class WeatherDialogTest : public recording::WiredTest, public DialogDesk {
 protected:
  /// Marks the plan as one with weather, with the summary task.
  void MakeWeatherPlan() {
    plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
    plan().AddWeatherSummary();
  }
  /// Adds a period of 1, 2 and 3 days, with its calendar if there is none.
  recording::TaskState& AddPeriod(const std::string& id, const std::string& calendar,
                                  platform::Date start, platform::Date end) {
    AddRiskCalendar(calendar);
    auto period = plan().AddPeriod(id, calendar, start, end);
    period->description = "Period " + id;
    period->duration = {1.0, 2.0, 3.0};
    return *period;
  }
  /// Adds a window with the earliest dates given, a day between them and the likely and the latest
  /// dates.
  recording::TaskState& AddWindow(const std::string& id, const std::string& calendar,
                                  const std::string& start, const std::string& end) {
    AddRiskCalendar(calendar);
    auto window = plan().AddWindow(id, calendar, start, end);
    window->description = "Window " + id;
    window->duration = {0.0, 1.0, 2.0};
    plan().Task(id + "-END").duration = {0.0, 1.0, 2.0};
    return *window;
  }
  Lines TaskIds() {
    Lines ids;
    for (const auto& task : plan().tasks) {
      ids.push_back(task->id);
    }
    return ids;
  }
  std::string Option() { return plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}]; }

 private:
  void AddRiskCalendar(const std::string& name) {
    if (!plan().FindCalendar(name)) {
      plan().AddCalendar(name);
    }
    if (!plan().FindRiskCalendar(name)) {
      auto calendar = std::make_shared<recording::RiskCalendarState>();
      calendar->name = name;
      calendar->calendar = plan().FindCalendar(name);
      plan().risk_calendars.push_back(calendar);
    }
  }
};

/// The dialog over a plan of the embedded host that starts on Monday, 4 January 2027, in days
/// unless told otherwise, with the task "A" and no weather.
class WeatherOnHostTest : public ::testing::Test, public DialogDesk {
 protected:
  WeatherOnHostTest() { Begin(engine::TimeUnit::kDays, platform::DefaultLocale()); }
  ~WeatherOnHostTest() override { modGlobal::Wire({}); }

  void Begin(engine::TimeUnit unit, const platform::Locale& locale) {
    engine::Plan plan;
    plan.title = "The new pier";
    plan.start = engine::Instant(platform::SerialDay(2027, 1, 4), 0);
    plan.time_unit = unit;
    plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("STANDARD", 5, 8)).uid;
    engine::Task task;
    task.id = "A";
    task.remaining_minutes = 5 * plan.hours_per_day * 60;
    task.original_minutes = task.remaining_minutes;
    plan.AddTask(task);
    host_ = engine::MakeHost(std::move(plan), {.carries_weather = CarriesWeather, .path = "/opt"});
    modGlobal::Wire({[this] { return platform::Ref<Corvane8::Application>(host_.get()); }, locale});
  }

  /// Opens the dialog with the box ticked.
  void OpenTicked(const std::function<void(frmWeather&)>& hands) {
    Open([&hands](frmWeather& form) {
      if (!form.chkIsWeather.Value()) {
        form.chkIsWeather.UserClick();
      }
      hands(form);
    });
  }
  Corvane8::Plan& host_plan() { return *host_->get_ActivePlan(); }
  const engine::Plan& document() { return host_->document(); }
  const engine::Task& Stored(const std::string& id) { return *document().FindTask(id); }
  /// A stored value of a custom field as a date.
  platform::Date StoredDate(const std::string& id, const std::string& field) {
    for (const engine::CustomValue& value : Stored(id).custom_values) {
      if (value.field == field) {
        return value.value.ToDate(platform::DefaultLocale());
      }
    }
    return {};
  }

 private:
  static bool CarriesWeather(const engine::Task& task) {
    return task.FindUserValue("weather", "tasktype") != nullptr;
  }

  platform::Ref<engine::Host> host_;
};

}  // namespace nimbrel::dialog
