#include "dialog/date_span_check.h"

#include <string>

#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "toolkit/form.h"

namespace nimbrel::dialog {
namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2100;
constexpr double kSpanDays = 365.0;

std::string DateText(platform::Date dt) {
  return platform::FormatDate(dt, "dd/mmm/yyyy", modGlobal::Locale());
}

bool IsInRange(platform::Date dt) {
  const int nYear = platform::ToCivil(dt).year;
  return nYear >= kFirstYear && nYear <= kLastYear;
}

bool Refuse(const toolkit::TextBox& txt, const std::string& strText) {
  txt.OwnerForm().OwnerDesktop().Show(strText, kMessageTitle);
  return false;
}

bool RefuseDates(const toolkit::TextBox& txt) {
  return Refuse(txt, "Please make sure the dates are valid.");
}

}  // namespace

void ShowYearFrom(platform::Date dtFirst, toolkit::TextBox& txtStart, toolkit::TextBox& txtEnd) {
  const platform::Date dtLast = dtFirst + kSpanDays;
  txtStart.SetText(DateText(dtFirst));
  txtEnd.SetText(DateText(dtLast));
}

bool CheckDateSpan(const toolkit::TextBox& txtStart, const toolkit::TextBox& txtEnd,
                   YearRange range) {
  platform::Date dtStart;
  platform::Date dtEnd;
  try {
    dtStart = platform::ParseDate(txtStart.Text(), modGlobal::Locale());
    dtEnd = platform::ParseDate(txtEnd.Text(), modGlobal::Locale());
  } catch (const platform::RuntimeError&) {
    return RefuseDates(txtStart);
  }
  if (range == YearRange::kFrom1900To2100 && !(IsInRange(dtStart) && IsInRange(dtEnd))) {
    return RefuseDates(txtStart);
  }
  if (dtStart > dtEnd) {
    return Refuse(txtStart, "Start date must be before the finish date");
  }
  return true;
}

}  // namespace nimbrel::dialog
