#include "dialog/frm_convert_cal.h"

#include "dialog/date_span_check.h"
#include "host/mod_global.h"

namespace nimbrel::dialog {

frmConvertCal::frmConvertCal(toolkit::Desktop& desktop)
    : Form(desktop, "frmConvertCal", "Convert a calendar", 6000, 5055) {
  lstCals.SetAccessibleName("Existing calendars");
  txtStart.SetAccessibleName("First date");
  txtEnd.SetAccessibleName("Last date");
  cmdOK.SetDefault(true);
  cmdCancel.SetCancel(true);
  Form_Load = [this] { OnLoad(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmConvertCal::OnLoad() {
  const auto plan = modGlobal::Application()->get_ActivePlan();
  ShowYearFrom(plan->get_Properties()->get_ReferenceDate(), txtStart, txtEnd);
  for (const auto& calendar : plan->get_Calendars()->Elements()) {
    lstCals.AddItem(calendar->get_Name());
  }
  if (lstCals.ListCount() > 0) {
    lstCals.SetListIndex(0);
  }
}

bool frmConvertCal::ValidateDates() {
  return CheckDateSpan(txtStart, txtEnd, YearRange::kAny);
}

void frmConvertCal::cmdOK_Click() {
  if (lstCals.ListIndex() >= 0) {
    m_bOk = true;
    Hide();
  }
}

void frmConvertCal::cmdCancel_Click() {
  m_bOk = false;
  Hide();
}

}  // namespace nimbrel::dialog
