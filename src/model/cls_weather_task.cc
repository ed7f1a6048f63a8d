#include "model/cls_weather_task.h"

#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/number.h"
#include "platform/runtime_error.h"

namespace nimbrel::model {

using Corvane8::Ref;
using modGlobal::DaysToPlanUnits;
using modGlobal::Locale;
using modGlobal::NormalisePlanDate;
using modGlobal::PlanUnitsToDays;
using platform::IgnoreErrors;

namespace {

constexpr double kPercent = 100.0;
constexpr std::int32_t kPlanInDays = 1;

/// A whole number from a text that may have a fraction, which is rounded.
std::int32_t LongFromText(const std::string& str) {
  return platform::ToLong(platform::ParseNumber(str, Locale()));
}

/// The text of a date that a time can be put behind. The default text of day zero is a time alone,
/// and a second time cannot be read behind that.
std::string DayText(platform::Date dt) {
  return dt == platform::Date{} ? platform::FormatDate(dt, Locale().short_date, Locale())
                                : platform::DefaultDateText(dt, Locale());
}

/// The last day as the plan stores it: a plan that does not count in days ends a period at 22:00.
/// A fresh period has no end yet while its first cells are written: its last day is day zero.
platform::Date StoredEnd(platform::Date dtEnd) {
  if (modGlobal::Application()->get_ActivePlan()->get_Properties()->get_TimeUnit() == kPlanInDays) {
    return NormalisePlanDate(dtEnd);
  }
  return platform::ParseDate(DayText(NormalisePlanDate(dtEnd)) + " 22:00", Locale());
}

}  // namespace

void clsWeatherTask::InitFromTask(const Ref<Corvane8::Task>& t) {
  IgnoreErrors([&] { m_strTaskID = t->get_ID(); });
  IgnoreErrors([&] { m_strTaskDesc = t->get_Description(); });
  IgnoreErrors(
      [&] { m_dtStart = t->get_UserFields()->GetCustom("Weather-start").ToDate(Locale()); });
  IgnoreErrors([&] { m_dtEnd = t->get_UserFields()->GetCustom("Weather-end").ToDate(Locale()); });
  Ref<Corvane8::TaskRisk> risk;
  IgnoreErrors([&] { risk = t->Risk(0); });
  m_dOccur = 1.0;
  if (risk) {
    IgnoreErrors([&] { m_dOccur = risk->get_Probability() / kPercent; });
  }
  IgnoreErrors([&] { m_strCalName = t->get_Calendar()->get_Name(); });
  Ref<Corvane8::Duration> duration;
  IgnoreErrors([&] { duration = t->Duration(0); });
  IgnoreErrors([&] { m_nMin = PlanUnitsToDays(platform::ToLong(duration->get_Minimum())); });
  IgnoreErrors([&] { m_nLikely = PlanUnitsToDays(platform::ToLong(duration->get_Likely())); });
  IgnoreErrors([&] { m_nMax = PlanUnitsToDays(platform::ToLong(duration->get_Maximum())); });
  m_task = t;
}

void clsWeatherTask::UpdateFromText(std::string& str, std::int32_t nCol) {
  switch (nCol) {
    case 0:
      m_strTaskID = str;
      break;
    case 1:
      m_strTaskDesc = str;
      break;
    case 2:
      m_dtStart = platform::ParseDate(str, Locale());
      break;
    case 3:
      m_dtEnd = platform::ParseDate(str, Locale());
      break;
    case 4:
      std::erase(str, '%');
      m_dOccur = platform::ParseNumber(str, Locale()) / kPercent;
      break;
    case 5:
      m_nMin = LongFromText(str);
      break;
    case 6:
      m_nLikely = LongFromText(str);
      break;
    case 7:
      m_nMax = LongFromText(str);
      break;
    default:
      break;
  }
  UpdateTask();
}

void clsWeatherTask::UpdateTask() {
  m_task->put_ID(m_strTaskID);
  m_task->put_Description(m_strTaskDesc.ToText(Locale()));
  m_task->get_UserFields()->SetCustom("Weather-start", NormalisePlanDate(m_dtStart));
  const platform::Date dtStoredEnd = StoredEnd(m_dtEnd);
  m_task->get_UserFields()->SetCustom("Weather-end", dtStoredEnd);
  if (m_dOccur != 1.0) {
    m_task->Risk(-1)->put_Probability(m_dOccur * kPercent);
  } else {
    m_task->Risk(1);
  }
  const Ref<Corvane8::Duration> duration = m_task->Duration(-1);
  duration->put_Minimum(DaysToPlanUnits(m_nMin));
  duration->put_Likely(DaysToPlanUnits(m_nLikely));
  duration->put_Maximum(DaysToPlanUnits(m_nMax));
}

}  // namespace nimbrel::model
