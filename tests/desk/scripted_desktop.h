#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "toolkit/desktop.h"
#include "toolkit/form.h"

namespace nimbrel::desk {

/// A desktop whose user is a test: what he does on each form that is shown, what he answers to each
/// message box, and which file he picks, in their order. What he was shown is kept. A question that
/// the test has no answer for fails it.
class ScriptedDesktop final : public toolkit::Desktop {
 public:
  std::deque<std::function<void(toolkit::Form&)>> hands;
  std::deque<toolkit::Answer> answers;
  std::deque<std::string> files;

  std::vector<std::string> shown;  // texts of message boxes; for errors with "error: " before them
  std::vector<toolkit::FileRequest> asked_files;

 protected:
  void RunModal(toolkit::Form& form) override {
    if (hands.empty()) {
      ADD_FAILURE() << "form " << form.Name() << " was not expected";
      form.UserClose();
      return;
    }
    const auto work = hands.front();
    hands.pop_front();
    work(form);
    EXPECT_FALSE(form.Visible()) << "the test left " << form.Name() << " open";
  }
  toolkit::Answer ShowMessage(const toolkit::Message& message) override {
    shown.push_back((message.reports_error ? "error: " : "") + message.text);
    if (message.buttons == toolkit::Buttons::kOk) {
      return toolkit::Answer::kOk;
    }
    if (answers.empty()) {
      ADD_FAILURE() << "no answer to: " << message.text;
      return toolkit::Answer::kNo;
    }
    const toolkit::Answer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::string ShowFileDialog(const toolkit::FileRequest& request) override {
    asked_files.push_back(request);
    if (files.empty()) {
      ADD_FAILURE() << "no file for: " << request.title;
      return "";
    }
    const std::string file = files.front();
    files.pop_front();
    return file;
  }
};

}  // namespace nimbrel::desk
