#include "dialog/frm_new_cal.h"

#include "dialog/date_span_check.h"
#include "dialog/new_calendar_name.h"
#include "host/mod_global.h"
#include "platform/date.h"

namespace nimbrel::dialog {

frmNewCal::frmNewCal(toolkit::Desktop& desktop)
    : Form(desktop, "frmNewCal", "Add New Weather Event Calendar", 6000, 3015) {
  txtCalName.SetAccessibleName("Name of the new calendar");
  txtStart.SetAccessibleName("First date");
  txtEnd.SetAccessibleName("Last date");
  cmdOK.SetDefault(true);
  cmdCancel.SetCancel(true);
  Form_Load = [this] { OnLoad(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Hide(); };
}

void frmNewCal::OnLoad() {
  m_bOk = false;
  const auto plan = modGlobal::Application()->get_ActivePlan();
  const platform::Date dtReference = plan->get_Properties()->get_ReferenceDate();
  const platform::Date dtFirst = dtReference + (1 - platform::ToCivil(dtReference).day);
  ShowYearFrom(dtFirst, txtStart, txtEnd);
}

bool frmNewCal::ValidateDates() {
  return CheckDateSpan(txtStart, txtEnd, YearRange::kFrom1900To2100);
}

void frmNewCal::cmdOK_Click() {
  if (ValidateDates() && TakeNewCalendarName(txtCalName)) {
    m_bOk = true;
    Hide();
  }
}

}  // namespace nimbrel::dialog
