// The page of event calendars.

#include <algorithm>

#include "desktop/mod_tool_box.h"
#include "dialog/frm_new_cal.h"
#include "dialog/frm_new_weather1.h"
#include "dialog/frm_weather.h"
#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::dialog {

using Corvane8::Ref;
using model::clsWeatherTask;
using modGlobal::Locale;
using modGlobal::NormalisePlanDate;
using platform::Date;
using platform::IgnoreErrors;
using toolkit::ListItemRef;

namespace {

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

std::string ListText(Date dt) {
  return platform::FormatDate(dt, "dd/mmm/yyyy", Locale());
}

void PutIntoRow(const clsWeatherTask& t, const ListItemRef& row) {
  row->SetSubItems(1, t.m_strTaskDesc.ToText(Locale()));
  row->SetSubItems(2, ListText(t.m_dtStart));
  row->SetSubItems(3, ListText(t.m_dtEnd));
  row->SetSubItems(4, platform::FormatNumber(t.m_dOccur, "0%", Locale()));
  row->SetSubItems(5, std::to_string(t.m_nMin));
  row->SetSubItems(6, std::to_string(t.m_nLikely));
  row->SetSubItems(7, std::to_string(t.m_nMax));
}

}  // namespace

void frmWeather::ConnectEventPage() {
  cmdAddWeatherCal.Click = [this] { cmdAddWeatherCal_Click(); };
  cmdDelCalendar.Click = [this] { cmdDelCalendar_Click(); };
  cmdAddNewPeriods.Click = [this] { cmdAddNewPeriods_Click(); };
  cmdDelEventPeriod.Click = [this] { cmdDelEventPeriod_Click(); };
  lstWeatherCals.Change = [this] { lstWeatherCals_Change(); };
  lstWeather.ItemClick = [this](const ListItemRef& item) { lstWeather_ItemClick(item); };
  lstWeather.ColumnClick = [this](const toolkit::ColumnHeader& column) {
    lstWeather_ColumnClick(column);
  };
}

void frmWeather::AddEventPeriods(const Ref<Corvane8::Calendar>& cal, Date dtStart, Date dtEnd) {
  Date dt = dtStart;
  while (dt < dtEnd) {
    const Ref<Corvane8::Task> t = m_oStorage.AddEventTask(cal);
    t->put_Description(platform::FormatDate(dt, "mmmm", Locale()));
    t->get_UserFields()->SetCustom("Weather-start", NormalisePlanDate(dt));
    dt = platform::AddMonths(dt, 1);
    dt = platform::AddDays(dt, -1);
    t->get_UserFields()->SetCustom("Weather-end", NormalisePlanDate(dt));
    dt = platform::AddDays(dt, 1);
  }
}

void frmWeather::cmdAddWeatherCal_Click() {
  frmNewCal dialog(OwnerDesktop());
  dialog.ShowModal();
  if (!dialog.m_bOk.ToBoolean(Locale())) {
    return;
  }
  const Ref<Corvane8::Calendar> cal = m_oStorage.AddEventCalendar(dialog.txtCalName.Text());
  const Date dtStart = platform::ParseDate(dialog.txtStart.Text(), Locale());
  const Date dtEnd = platform::ParseDate(dialog.txtEnd.Text(), Locale());
  AddEventPeriods(cal, dtStart, dtEnd);
  m_oStorage.LoadEventCalendars();
  IgnoreErrors([&] { lstWeatherCals.SetListIndex(lstWeatherCals.ListCount() - 1); });
}

void frmWeather::cmdAddNewPeriods_Click() {
  const std::int32_t i = lstWeatherCals.ListIndex();
  if (i < 0) {
    return;
  }
  frmNewWeather1 dialog(OwnerDesktop());
  dialog.ShowModal();
  if (!dialog.m_bOk.ToBoolean(Locale()) || lstWeatherCals.List(i).empty()) {
    return;
  }
  const Ref<Corvane8::Calendar> cal = ActivePlan()->get_Calendars()->Item(lstWeatherCals.List(i));
  const Date dtStart = platform::ParseDate(dialog.txtStart.Text(), Locale());
  const Date dtEnd = platform::ParseDate(dialog.txtEnd.Text(), Locale());
  AddEventPeriods(cal, dtStart, dtEnd);
  m_oStorage.LoadEventCalendars();
  lstWeatherCals.SetListIndex(i);
}

void frmWeather::lstWeatherCals_Change() {
  if (lstWeatherCals.ListIndex() == -1) {
    return;  // emptied by a load
  }
  const std::string strCal = lstWeatherCals.List(lstWeatherCals.ListIndex());
  SaveEventRows();  // those of the calendar that is left
  FillEventList(strCal);
}

void frmWeather::FillEventList(const std::string& strCal) {
  m_bFilling = true;
  lstWeather.ListItems().Clear();
  for (const Ref<clsWeatherTask>& t : m_oStorage.m_colEventTasks) {
    if (t->m_strCalName == strCal) {
      PutIntoRow(*t, lstWeather.ListItems().Add({}, {}, t->m_strTaskID));
    }
  }
  if (lstWeather.ListItems().Count() > 0) {
    m_liEvent = lstWeather.ListItems().Item(1);
    lstWeather.SetSelectedItem(m_liEvent);
  } else {
    m_liEvent = nullptr;
  }
  ShowEventRow();
  m_bFilling = false;
}

void frmWeather::lstWeather_ItemClick(const ListItemRef& item) {
  m_bFilling = true;
  m_liEvent = item;
  ShowEventRow();
  m_bFilling = false;
}

void frmWeather::lstWeather_ColumnClick(const toolkit::ColumnHeader& column) {
  const std::int32_t nCol = column.Index();
  const bool bDate = nCol == 3 || nCol == 4;
  const bool bNumber = nCol >= 5 && nCol <= 8;
  SortListColumn(lstWeather, nCol, bDate ? kSortDate : bNumber ? kSortNumber : kSortText);
}

void frmWeather::cmdDelEventPeriod_Click() {
  if (lstWeather.ListItems().Count() == 0) {
    return;
  }
  std::int32_t n = lstWeather.SelectedItem()->Index();
  const std::string strID = lstWeather.ListItems().Item(n)->Text();
  if (strID.empty()) {
    return;
  }
  ActivePlan()->get_Tasks()->Remove(strID);
  m_oStorage.m_colEventTasks.Remove(strID);
  lstWeather.ListItems().Remove(n);
  if (lstWeather.ListItems().Count() > 0) {
    n = std::min(n, lstWeather.ListItems().Count());
    m_liEvent = lstWeather.ListItems().Item(n);
    lstWeather.SetSelectedItem(m_liEvent);
  } else {
    m_liEvent = nullptr;
  }
  ShowEventRow();
}

void frmWeather::cmdDelCalendar_Click() {
  std::string strCal;
  IgnoreErrors([&] { strCal = lstWeatherCals.List(lstWeatherCals.ListIndex()); });
  const std::string strQuestion = modToolBox::FormatMsg(
      "Are you sure you want to delete all the weather elements for %x. This action cannot be "
      "undone",
      {strCal});
  if (OwnerDesktop().MsgBox(strQuestion, kMessageTitle, toolkit::Buttons::kYesNo) ==
      toolkit::Answer::kNo) {
    return;
  }
  for (const Ref<clsWeatherTask>& t : m_oStorage.m_colEventTasks) {
    if (t->m_strCalName == strCal) {
      IgnoreErrors([&] { ActivePlan()->get_Tasks()->Remove(t->m_strTaskID); });
    }
  }
  IgnoreErrors([&] { ActivePlan()->get_RiskCalendars()->Remove(strCal); });
  IgnoreErrors([&] { ActivePlan()->get_Calendars()->Remove(strCal); });
  lstWeather.ListItems().Clear();
  m_oStorage.LoadEventCalendars();
  if (lstWeatherCals.ListCount() > 0) {
    IgnoreErrors([&] { lstWeatherCals.SetListIndex(lstWeatherCals.ListCount() - 1); });
  } else {
    m_liEvent = nullptr;
    IgnoreErrors([&] { ShowEventRow(); });
  }
}

}  // namespace nimbrel::dialog
