#pragma once

#include "platform/variant.h"
#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"

namespace nimbrel::dialog {

/// Asks for a span of further monthly periods. It changes nothing in the plan: after ShowModal the
/// caller reads m_bOk and, if it is True, the texts of the two boxes, which the hidden form keeps.
class frmNewWeather1 final : public toolkit::Form {
 public:
  /// `desktop` must outlive the form.
  explicit frmNewWeather1(toolkit::Desktop& desktop);

  /// True after an OK that was taken, else False.
  platform::Variant m_bOk = false;

  toolkit::Label Label1{*this, "Label1", "Add monthly weather events from:", {240, 240, 5520, 315}};
  /// After OK: dates of the user's locale of any year, the last not before the first.
  toolkit::TextBox txtStart{*this, "txtStart", {240, 600, 2370, 375}};
  toolkit::Label Label2{*this, "Label2", "to", {2790, 645, 420, 315}};
  toolkit::TextBox txtEnd{*this, "txtEnd", {3390, 600, 2370, 375}};
  toolkit::CommandButton cmdOK{*this, "cmdOK", "OK", {2670, 1320, 1455, 495}};
  toolkit::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {4305, 1320, 1455, 495}};

 private:
  /// Raises what the host raises, error 91 without an active plan.
  void OnLoad();
  void cmdOK_Click();
  void cmdCancel_Click();
  bool ValidateDates();
};

}  // namespace nimbrel::dialog
