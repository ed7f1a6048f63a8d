#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "toolkit/control.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// A text as it stands in a log: in quotes, with \" \\ \r \n for what would break the line.
std::string Quoted(std::string_view text);

/// What the box says of its buttons, and of the answer: "OK", "YesNo"; "OK", "Yes", "No".
std::string_view ButtonsText(toolkit::Buttons buttons);
std::string_view AnswerText(toolkit::Answer answer);

/// Writes what happens on a dialog, one line each.
class GestureLog final : public toolkit::EventLog {
 public:
  /// `out` must outlive the log.
  explicit GestureLog(std::ostream& out) : out_(out) {}

  /// From here on nothing is written.
  void Stop() { stopped_ = true; }

  void Line(std::string_view line);
  void OnEvent(const Event& event) override;
  void OnError(std::int32_t number, const std::string& text) override;
  void OnBox(const toolkit::Message& message, toolkit::Answer answer);

  /// A property as `NAME.Property = "value"`. False if the control has no such property.
  bool ShowProperty(const toolkit::Control& control, const std::string& property);
  /// The rows of a list as `NAME[1] * [x] "cell" "cell"`, the nodes of a tree, one a line. False
  /// for a control that is neither.
  bool ShowWhole(const toolkit::Control& control);

 private:
  std::ostream& out_;
  bool stopped_ = false;
};

}  // namespace nimbrel::gestures
