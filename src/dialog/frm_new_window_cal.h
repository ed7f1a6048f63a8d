#pragma once

#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"

namespace nimbrel::dialog {

/// Asks for the name of a new window calendar. It changes nothing in the plan: after ShowModal the
/// caller reads m_bOk and, if it is set, the text of the box, which the hidden form keeps.
class frmNewWindowCal final : public toolkit::Form {
 public:
  /// `desktop` must outlive the form.
  explicit frmNewWindowCal(toolkit::Desktop& desktop);

  /// Set after an OK that was taken.
  bool m_bOk = false;

  toolkit::Label Label1{
      *this, "Label1", "Enter the name of the new calendar", {240, 240, 5520, 315}};
  /// After OK: not empty, at most 15 characters, in upper case.
  toolkit::TextBox txtCalName{*this, "txtCalName", {240, 600, 5520, 375}};
  toolkit::CommandButton cmdOK{*this, "cmdOK", "OK", {2670, 1320, 1455, 495}};
  toolkit::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {4305, 1320, 1455, 495}};

 private:
  void cmdOK_Click();
  void cmdCancel_Click();
};

}  // namespace nimbrel::dialog
