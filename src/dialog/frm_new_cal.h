#pragma once

#include <array>

#include "platform/variant.h"
#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"

namespace nimbrel::dialog {

/// Asks for the name of a new event calendar and the span of its monthly periods. It changes
/// nothing in the plan: after ShowModal the caller reads m_bOk and, if it is True, the texts of the
/// three boxes, which the hidden form keeps.
class frmNewCal final : public toolkit::Form {
 public:
  /// `desktop` must outlive the form.
  explicit frmNewCal(toolkit::Desktop& desktop);

  /// True after an OK that was taken, else False.
  platform::Variant m_bOk = false;

  /// Over the name, and over the dates.
  std::array<toolkit::Label, 2> Label1{
      {{*this, "Label1", "Enter the name of the new calendar", {240, 240, 5520, 315}},
       {*this, "Label1", "Add monthly weather events from:", {240, 1200, 5520, 315}}}};
  /// After OK: not empty, at most 15 characters, in upper case.
  toolkit::TextBox txtCalName{*this, "txtCalName", {240, 600, 5520, 375}};
  /// After OK: dates of the user's locale in the years 1900 to 2100, the last not before the first.
  toolkit::TextBox txtStart{*this, "txtStart", {240, 1560, 2370, 375}};
  toolkit::Label Label2{*this, "Label2", "to", {2790, 1605, 420, 315}};
  toolkit::TextBox txtEnd{*this, "txtEnd", {3390, 1560, 2370, 375}};
  toolkit::CommandButton cmdOK{*this, "cmdOK", "OK", {2670, 2280, 1455, 495}};
  toolkit::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {4305, 2280, 1455, 495}};

 private:
  /// Raises what the host raises, error 91 without an active plan.
  void OnLoad();
  void cmdOK_Click();
  bool ValidateDates();
};

}  // namespace nimbrel::dialog
