#pragma once

#include <string>

#include "toolkit/buttons.h"
#include "toolkit/form.h"
#include "toolkit/list_view.h"

namespace nimbrel::dialog {

/// Asks which sheet of a workbook to read. The caller sets m_strDataType and fills lstCals before
/// ShowModal and reads m_bOk and m_strSelCal after it.
class frmImport final : public toolkit::Form {
 public:
  /// `desktop` must outlive the form.
  explicit frmImport(toolkit::Desktop& desktop);

  /// Set by OK, also by one that was refused for the kind of data; unset by Cancel.
  bool m_bOk = false;
  /// The name of the sheet that OK was pressed for.
  std::string m_strSelCal;
  /// The kind of data that the target calendar holds: "Weather-Events" or "Weather-windows".
  std::string m_strDataType;

  /// A row for each sheet: its text is the sheet's name, cell 1 the kind of data on it.
  toolkit::ListView lstCals{*this, "lstCals", {240, 240, 6720, 3375}};
  toolkit::CommandButton cmdOK{*this, "cmdOK", "OK", {3870, 3855, 1455, 495}};
  toolkit::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {5505, 3855, 1455, 495}};

 private:
  /// Raises error 91 while no row is selected.
  void cmdOK_Click();
  void cmdCancel_Click();
};

}  // namespace nimbrel::dialog
