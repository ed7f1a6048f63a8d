#include "dialog/frm_new_window_cal.h"

#include "dialog/new_calendar_name.h"

namespace nimbrel::dialog {

frmNewWindowCal::frmNewWindowCal(toolkit::Desktop& desktop)
    : Form(desktop, "frmNewWindowCal", "Weather Modeling", 6000, 2055) {
  txtCalName.SetAccessibleName("Name of the new calendar");
  cmdOK.SetDefault(true);
  cmdCancel.SetCancel(true);
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmNewWindowCal::cmdOK_Click() {
  if (TakeNewCalendarName(txtCalName)) {
    m_bOk = true;
    Hide();
  }
}

void frmNewWindowCal::cmdCancel_Click() {
  Hide();
  Unload();
}

}  // namespace nimbrel::dialog
