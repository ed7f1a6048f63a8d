#include "nimbrel/weather_workbook.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "desktop/mod_tool_box.h"
#include "dialog/desktop_file_dialog.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "nimbrel/wiring.h"
#include "platform/directory_search.h"
#include "platform/posix/folder_search.h"
#include "platform/process_start.h"
#include "platform/runtime_error.h"
#include "platform/settings_store.h"
#include "platform/window_system.h"
#include "toolkit/desktop.h"

namespace nimbrel::cli {
namespace {

constexpr const char* kWeatherTask = "WEATHER";

/// A desktop without a user.
class AnsweringDesktop final : public toolkit::Desktop {
 public:
  explicit AnsweringDesktop(UnshownDialog::Answers answers) : answers_(std::move(answers)) {}

  std::vector<std::string> messages;
  bool has_asked = false;

 protected:
  void RunModal(toolkit::Form& form) override {
    throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                 "There is nobody to work the form " + form.Name());
  }
  toolkit::Answer ShowMessage(const toolkit::Message& message) override {
    if (message.buttons == toolkit::Buttons::kYesNo) {
      has_asked = true;
      return answers_.yes ? toolkit::Answer::kYes : toolkit::Answer::kNo;
    }
    messages.push_back(message.text);
    return toolkit::Answer::kOk;
  }
  std::string ShowFileDialog(const toolkit::FileRequest& /*request*/) override {
    return answers_.file;
  }

 private:
  UnshownDialog::Answers answers_;
};

/// The progress tool of a program in a terminal: a line on standard error, for as long as the
/// settings say that the job runs.
class TerminalProgress final : public platform::SettingsStore, public platform::ProcessStart {
 public:
  explicit TerminalProgress(Console& console) : console_(console) {}
  ~TerminalProgress() override { Clear(); }

  void Save(std::string_view /*application*/, std::string_view /*section*/, std::string_view key,
            std::string_view value) override {
    if (key == "Label") {
      label_ = value;
    } else if (key == "Running" && value == "0") {
      Clear();
    }
  }
  std::string Get(std::string_view /*application*/, std::string_view /*section*/,
                  std::string_view /*key*/, std::string_view default_value) const override {
    return std::string(default_value);
  }
  std::int32_t ShellExecute(std::int32_t /*owner*/, const std::string& /*verb*/,
                            const std::string& /*file*/, const std::string& /*parameters*/,
                            const std::string& /*directory*/, std::int32_t /*show*/) override {
    constexpr std::int32_t kStarted = 42;
    if (console_.terminal.err_is_terminal) {
      console_.err << '\r' << label_ << "\x1b[K";
      console_.err.flush();
      is_shown_ = true;
    }
    return kStarted;
  }

 private:
  void Clear() {
    if (is_shown_) {
      console_.err << "\r\x1b[K";
      console_.err.flush();
      is_shown_ = false;
    }
  }

  Console& console_;
  std::string label_;
  bool is_shown_ = false;
};

class NoWindows final : public platform::WindowSystem {
 public:
  std::int32_t GetActiveWindow() override { return 0; }
  std::int32_t GetWindowLong(std::int32_t /*window*/, std::int32_t /*index*/) override { return 0; }
  std::int32_t GetWindowThread(std::int32_t /*window*/) override { return 0; }
};

/// The dialog takes a plan without the mark for one without weather.
engine::Plan Marked(engine::Plan plan) {
  const engine::Task* summary = plan.FindTask(kWeatherTask);
  if (summary != nullptr && CarriesWeather(*summary)) {
    plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
  }
  return plan;
}

}  // namespace

class UnshownDialog::Parts {
 public:
  Parts(const engine::Plan& plan, platform::AutomationServers& servers, Answers answers,
        Console& console)
      : desktop(std::move(answers)),
        progress_(console),
        file_dialog_(desktop),
        host(engine::MakeHost(Marked(plan), MakeHostOptions())),
        joined_(JoinAddIn(*host)) {
    modToolBox::Wire(
        {&progress_, &progress_, &windows_, &file_dialog_, nullptr, &search_, &desktop});
    modExcel::Wire({&servers, &desktop, {}});
    modImportExport::Wire({&desktop, {}});
    form = std::make_unique<dialog::frmWeather>(desktop);
  }
  ~Parts() {
    form = nullptr;
    modImportExport::Wire({});
    modExcel::Wire({});
    modToolBox::Wire({});
  }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  AnsweringDesktop desktop;

 private:
  TerminalProgress progress_;
  NoWindows windows_;
  platform::FolderSearch search_;
  dialog::DesktopFileDialog file_dialog_;

 public:
  platform::Ref<engine::Host> host;

 private:
  std::shared_ptr<void> joined_;

 public:
  std::unique_ptr<dialog::frmWeather> form;
};

UnshownDialog::UnshownDialog(const engine::Plan& plan, platform::AutomationServers& servers,
                             Answers answers, Console& console)
    : parts_(std::make_unique<Parts>(plan, servers, std::move(answers), console)) {
  parts_->form->Load();
}

UnshownDialog::~UnshownDialog() = default;

dialog::frmWeather& UnshownDialog::form() {
  return *parts_->form;
}

void UnshownDialog::Press(toolkit::CommandButton& button) {
  button.Click();
}

const std::vector<std::string>& UnshownDialog::messages() const {
  return parts_->desktop.messages;
}

bool UnshownDialog::has_asked() const {
  return parts_->desktop.has_asked;
}

const engine::Plan& UnshownDialog::document() const {
  return parts_->host->document();
}

}  // namespace nimbrel::cli
