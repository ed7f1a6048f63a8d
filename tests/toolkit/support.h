#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/runtime_error.h"
#include "toolkit/buttons.h"
#include "toolkit/desktop.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit {

/// A desktop without a window system: each modal show runs the next of the queued hands, message
/// boxes are written down and answered from a queue.
class TestDesktop final : public Desktop {
 public:
  /// What the user does on the next form that is shown; a form without hands is closed at once.
  void OnNextForm(std::function<void(Form&)> hands) { hands_.push_back(std::move(hands)); }

  std::vector<Message> messages;
  std::deque<Answer> answers;
  std::string file;
  std::vector<FileRequest> files_asked;
  /// Runs while a message box is open.
  std::function<void()> while_box_is_open;

 protected:
  void RunModal(Form& form) override {
    if (!hands_.empty()) {
      const auto hands = hands_.front();
      hands_.pop_front();
      hands(form);
    }
    if (form.Visible()) {
      form.Hide();
    }
  }
  Answer ShowMessage(const Message& message) override {
    messages.push_back(message);
    if (while_box_is_open) {
      while_box_is_open();
    }
    if (answers.empty()) {
      return message.buttons == Buttons::kOk ? Answer::kOk : Answer::kNo;
    }
    const Answer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::string ShowFileDialog(const FileRequest& request) override {
    files_asked.push_back(request);
    return file;
  }

 private:
  std::deque<std::function<void(Form&)>> hands_;
};

/// Writes the events down, one line each, indented by two blanks for each level.
class Events final : public EventLog {
 public:
  void OnEvent(const Event& event) override {
    std::string line(static_cast<std::size_t>(event.depth) * 2, ' ');
    line.append(event.control).append(" ").append(event.event);
    if (!event.argument.empty()) {
      line.append(" ").append(event.argument);
    }
    lines.push_back(std::move(line));
  }
  void OnError(std::int32_t number, const std::string& text) override {
    lines.push_back("error " + std::to_string(number) + " " + text);
  }

  std::vector<std::string> lines;
};

/// A form that a test fills with controls and works while it is open.
class ToolkitTest : public ::testing::Test {
 protected:
  ToolkitTest() { desktop_.SetEventLog(&events_); }

  /// Shows the form, and what happened on it before is left out of the log.
  void WhileOpen(const std::function<void()>& hands) { WhileOpen(form_, hands); }
  void WhileOpen(Form& form, const std::function<void()>& hands) {
    desktop_.OnNextForm([this, hands](Form&) {
      events_.lines.clear();
      hands();
    });
    form.ShowModal();
  }

  const std::vector<std::string>& log() const { return events_.lines; }
  void ClearLog() { events_.lines.clear(); }

  /// The number of the run-time error that the statement raises, 0 if it raises none.
  static std::int32_t ErrorOf(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const platform::RuntimeError& error) {
      return error.number();
    }
    return 0;
  }
  [[noreturn]] static void Fail(const std::string& text, std::int32_t number = 1004) {
    throw platform::RuntimeError(number, text);
  }
  /// A handler that does nothing, so that the event is logged.
  static std::function<void()> Heard() {
    return [] {};
  }

  TestDesktop desktop_;
  Events events_;
  Form form_{desktop_, "frmTest", "Test", 6000, 4000};
};

using Lines = std::vector<std::string>;

}  // namespace nimbrel::toolkit
