#include "dialog/frm_new_weather1.h"

#include "dialog/date_span_check.h"
#include "host/mod_global.h"

namespace nimbrel::dialog {

frmNewWeather1::frmNewWeather1(toolkit::Desktop& desktop)
    : Form(desktop, "frmNewWeather1", "New weather periods", 6000, 2055) {
  txtStart.SetAccessibleName("First date");
  txtEnd.SetAccessibleName("Last date");
  cmdOK.SetDefault(true);
  cmdCancel.SetCancel(true);
  Form_Load = [this] { OnLoad(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmNewWeather1::OnLoad() {
  const auto plan = modGlobal::Application()->get_ActivePlan();
  ShowYearFrom(plan->get_Properties()->get_ReferenceDate(), txtStart, txtEnd);
}

bool frmNewWeather1::ValidateDates() {
  return CheckDateSpan(txtStart, txtEnd, YearRange::kAny);
}

void frmNewWeather1::cmdOK_Click() {
  if (ValidateDates()) {
    m_bOk = true;
    Hide();
  }
}

void frmNewWeather1::cmdCancel_Click() {
  m_bOk = false;
  Hide();
}

}  // namespace nimbrel::dialog
