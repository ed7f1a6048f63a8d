#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "desktop/mod_tool_box.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel {

/// A desktop that does nothing but write down, in one list, what it is asked for; the answers are
/// set by the test.
class RecordingDesktop final : public platform::SettingsStore,
                               public platform::ProcessStart,
                               public platform::WindowSystem,
                               public platform::FileDialog,
                               public platform::HelpWindow,
                               public platform::DirectorySearch,
                               public platform::MessageBox {
 public:
  void Save(std::string_view application, std::string_view section, std::string_view key,
            std::string_view value) override {
    Note("Save", {application, section, key, value});
    if (failing_key == key) {
      throw platform::RuntimeError(platform::kInvalidProcedureCall, "the disk is full");
    }
  }
  std::string Get(std::string_view /*application*/, std::string_view /*section*/,
                  std::string_view /*key*/, std::string_view default_value) const override {
    return std::string(default_value);
  }
  std::int32_t ShellExecute(std::int32_t owner, const std::string& verb, const std::string& file,
                            const std::string& parameters, const std::string& directory,
                            std::int32_t show) override {
    Note("ShellExecute",
         {std::to_string(owner), verb, file, parameters, directory, std::to_string(show)});
    return shell_result;
  }
  std::int32_t GetActiveWindow() override { return active_window; }
  std::int32_t GetWindowLong(std::int32_t window, std::int32_t index) override {
    Note("GetWindowLong", {std::to_string(window), std::to_string(index)});
    return instance;
  }
  std::int32_t GetWindowThread(std::int32_t window) override {
    Note("GetWindowThread", {std::to_string(window)});
    return thread;
  }
  std::int32_t GetOpenFileName(platform::FileDialogRecord& record) override {
    return Choose("GetOpenFileName", record);
  }
  std::int32_t GetSaveFileName(platform::FileDialogRecord& record) override {
    return Choose("GetSaveFileName", record);
  }
  void HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                std::int32_t data) override {
    Note("HtmlHelp", {std::to_string(owner), file, std::to_string(command), std::to_string(data)});
  }
  std::string FindFirst(const std::string& pattern) override {
    Note("FindFirst", {pattern});
    return found;
  }
  void Show(const std::string& text, const std::string& title) override {
    Note("Show", {text, title});
  }

  std::vector<std::string> calls;
  std::vector<platform::FileDialogRecord> records;

  std::string failing_key;
  std::int32_t shell_result = 42;
  std::int32_t active_window = 0x1234;
  std::int32_t instance = 0x400000;
  std::int32_t thread = 0;
  std::string found;
  std::int32_t dialog_result = 1;
  std::string chosen;  // what a file dialog leaves in its buffer

 private:
  void Note(const std::string& call, const std::vector<std::string_view>& arguments) {
    std::string text = call;
    for (const std::string_view argument : arguments) {
      text += "|" + std::string(argument);
    }
    calls.push_back(text);
  }
  std::int32_t Choose(const std::string& call, platform::FileDialogRecord& record) {
    Note(call, {});
    records.push_back(record);
    record.lpstrFile = chosen;
    return dialog_result;
  }
};

/// Base of tests of the tool box: a recording host whose folder is "/opt/corvane", a recording
/// desktop.
class ToolBoxTest : public recording::WiredTest {
 protected:
  ToolBoxTest() {
    modToolBox::Wire({&desktop_, &desktop_, &desktop_, &desktop_, &desktop_, &desktop_, &desktop_});
  }
  ~ToolBoxTest() override { modToolBox::Wire({}); }

  RecordingDesktop desktop_;
};

}  // namespace nimbrel
