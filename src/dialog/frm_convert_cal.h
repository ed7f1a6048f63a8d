#pragma once

#include "platform/variant.h"
#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"

namespace nimbrel::dialog {

/// Asks for one of the plan's calendars and a span, for turning the calendar into weather. It
/// changes nothing in the plan: after ShowModal the caller reads m_bOk and the controls, which the
/// hidden form keeps.
class frmConvertCal final : public toolkit::Form {
 public:
  /// `desktop` must outlive the form.
  explicit frmConvertCal(toolkit::Desktop& desktop);

  /// Whether the boxes hold two dates of the user's locale, the last not before the first; tells
  /// the user if not. OK does not ask for it: that is left to who converts the calendar.
  bool ValidateDates();

  /// True after an OK that was taken, else False.
  platform::Variant m_bOk = false;

  toolkit::Label Label1{*this, "Label1", "Select an existing calendar", {240, 240, 5520, 315}};
  /// All calendars of the plan, in its order.
  toolkit::ListBox lstCals{*this, "lstCals", {240, 600, 5520, 2415}};
  toolkit::Label Label2{
      *this, "Label2", "Add monthly weather events from:", {240, 3240, 5520, 315}};
  /// OK takes any text.
  toolkit::TextBox txtStart{*this, "txtStart", {240, 3600, 2670, 375}};
  toolkit::TextBox txtEnd{*this, "txtEnd", {3090, 3600, 2670, 375}};
  toolkit::CommandButton cmdOK{*this, "cmdOK", "OK", {2670, 4320, 1455, 495}};
  toolkit::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {4305, 4320, 1455, 495}};

 private:
  /// Raises what the host raises, error 91 without an active plan.
  void OnLoad();
  void cmdOK_Click();
  void cmdCancel_Click();
};

}  // namespace nimbrel::dialog
