#include "model/cls_ww_task.h"

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
using platform::Date;
using platform::IgnoreErrors;

namespace {

/// Reads the dates of one edge, each statement for itself. `dtDefault` is taken for an edge that
/// has no earliest date.
void ReadDates(const Ref<Corvane8::Task>& edge, Date dtDefault, Date& dtEarliest, Date& dtLikely,
               Date& dtLatest) {
  IgnoreErrors([&] {
    const std::string strDate = edge->get_UserFields()->GetValue(
        2, "weather", "startdate", platform::DefaultDateText(dtDefault, Locale()));
    dtEarliest = platform::ParseDate(strDate, Locale());
  });
  Ref<Corvane8::Duration> duration;
  IgnoreErrors([&] { duration = edge->Duration(0); });
  IgnoreErrors([&] {
    const std::int32_t n = PlanUnitsToDays(platform::ToLong(duration->get_Likely()));
    dtLikely = platform::AddDays(dtEarliest, n);
  });
  IgnoreErrors([&] {
    const std::int32_t n = PlanUnitsToDays(platform::ToLong(duration->get_Maximum()));
    dtLatest = platform::AddDays(dtEarliest, n);
  });
}

void WriteEdge(const Ref<Corvane8::Task>& edge, const std::string& strID,
               const std::string& strDescription, Date dtEarliest, Date dtLikely, Date dtLatest) {
  edge->put_ID(strID);
  edge->put_Description(strDescription);
  edge->get_UserFields()->SetValue(
      2, "weather", "startdate",
      platform::DefaultDateText(NormalisePlanDate(dtEarliest), Locale()));
  const Ref<Corvane8::Duration> duration = edge->Duration(0);
  duration->put_Likely(DaysToPlanUnits(platform::DaysBetween(dtEarliest, dtLikely)));
  duration->put_Maximum(DaysToPlanUnits(platform::DaysBetween(dtEarliest, dtLatest)));
}

std::string ListText(Date dt) {
  return platform::FormatDate(dt, "dd/mmm/yyyy", Locale());
}

/// Keeps durations from going negative, and corrects no more than that.
void NotBefore(Date dtEarliest, Date& dt) {
  if (dt < dtEarliest) {
    dt = dtEarliest;
  }
}

}  // namespace

void clsWWTask::InitFromTask(const Ref<Corvane8::Task>& t1) {
  IgnoreErrors([&] { m_strCalName = t1->get_Calendar()->get_Name(); });
  Date d0;
  IgnoreErrors([&] {
    d0 = modGlobal::Application()->get_ActivePlan()->get_Properties()->get_ReferenceDate();
  });
  IgnoreErrors([&] { m_strTaskIDStart = t1->get_ID(); });
  IgnoreErrors([&] { m_strTaskDescStart = t1->get_Description(); });
  ReadDates(t1, d0, m_dtStartStart, m_dtLikelyStart, m_dtEndStart);
  m_taskStart = t1;
  Ref<Corvane8::Task> t2;
  IgnoreErrors([&] { t2 = t1->get_Links()->get_Successors()->Item(1)->get_Task(); });
  IgnoreErrors([&] { m_strTaskIDEnd = t2->get_ID(); });
  IgnoreErrors([&] { m_strTaskDescEnd = t2->get_Description(); });
  ReadDates(t2, d0, m_dtStartEnd, m_dtLikelyEnd, m_dtEndEnd);
  m_taskEnd = t2;
}

void clsWWTask::UpdateFromText(std::string& str, std::int32_t nCol) {
  switch (nCol) {
    case 0:
      m_strTaskIDStart = str;
      break;
    case 1:
      m_strTaskDescStart = str;
      break;
    case 2:
      m_dtStartStart = platform::ParseDate(str, Locale());
      break;
    case 3:
      m_dtLikelyStart = platform::ParseDate(str, Locale());
      break;
    case 4:
      m_dtEndStart = platform::ParseDate(str, Locale());
      break;
    case 6:
      m_dtStartEnd = platform::ParseDate(str, Locale());
      break;
    case 7:
      m_dtLikelyEnd = platform::ParseDate(str, Locale());
      break;
    case 8:
      m_dtEndEnd = platform::ParseDate(str, Locale());
      break;
    default:  // 5 is a blank column of the list
      break;
  }
  NotBefore(m_dtStartStart, m_dtLikelyStart);
  NotBefore(m_dtStartStart, m_dtEndStart);
  NotBefore(m_dtStartEnd, m_dtLikelyEnd);
  NotBefore(m_dtStartEnd, m_dtEndEnd);
  UpdateTask();
}

void clsWWTask::UpdateTask() {
  WriteEdge(m_taskStart, m_strTaskIDStart, m_strTaskDescStart, m_dtStartStart, m_dtLikelyStart,
            m_dtEndStart);
  WriteEdge(m_taskEnd, m_strTaskIDEnd, m_strTaskDescEnd.ToText(Locale()), m_dtStartEnd,
            m_dtLikelyEnd, m_dtEndEnd);
}

void clsWWTask::PopulateListItem(const toolkit::ListItemRef& lstItem) const {
  lstItem->SetText(m_strTaskIDStart);
  lstItem->SetSubItems(1, m_strTaskDescStart);
  lstItem->SetSubItems(2, ListText(m_dtStartStart));
  lstItem->SetSubItems(3, ListText(m_dtLikelyStart));
  lstItem->SetSubItems(4, ListText(m_dtEndStart));
  lstItem->SetSubItems(6, ListText(m_dtStartEnd));
  lstItem->SetSubItems(7, ListText(m_dtLikelyEnd));
  lstItem->SetSubItems(8, ListText(m_dtEndEnd));
}

}  // namespace nimbrel::model
