// The page of window calendars.

#include <algorithm>

#include "desktop/mod_tool_box.h"
#include "dialog/frm_new_window_cal.h"
#include "dialog/frm_weather.h"
#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/runtime_error.h"

namespace nimbrel::dialog {

using Corvane8::Ref;
using model::clsWWTask;
using platform::IgnoreErrors;
using toolkit::ListItemRef;

namespace {

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

}  // namespace

void frmWeather::ConnectWindowPage() {
  cmdAddWWCal.Click = [this] { cmdAddWWCal_Click(); };
  cmdDelWindowCal.Click = [this] { cmdDelWindowCal_Click(); };
  cmdAddWW.Click = [this] { cmdAddWW_Click(); };
  cmdDelWW.Click = [this] { cmdDelWW_Click(); };
  lstWWCals.Change = [this] { lstWWCals_Change(); };
  lstWW.ItemClick = [this](const ListItemRef& item) { lstWW_ItemClick(item); };
  lstWW.ColumnClick = [this](const toolkit::ColumnHeader& column) { lstWW_ColumnClick(column); };
}

void frmWeather::ClickWindowCalendars() {
  lstWWCals_Change();
}

void frmWeather::cmdAddWWCal_Click() {
  frmNewWindowCal dialog(OwnerDesktop());
  dialog.ShowModal();
  if (!dialog.m_bOk) {
    return;
  }
  m_oStorage.AddWindowCalendar(dialog.txtCalName.Text(), true);
  m_oStorage.LoadWindowCalendars();
  lstWWCals.SetListIndex(lstWWCals.ListCount() - 1);
}

void frmWeather::cmdAddWW_Click() {
  const std::int32_t i = lstWWCals.ListIndex();
  if (i < 0) {
    return;
  }
  m_oStorage.AddWindowTasks(ActivePlan()->get_Calendars()->Item(lstWWCals.List(i)));
  m_oStorage.LoadWindowCalendars();
  lstWWCals.SetListIndex(i);
}

void frmWeather::lstWWCals_Change() {
  if (lstWWCals.ListIndex() == -1) {
    return;  // emptied by a load
  }
  const std::string strCal = lstWWCals.List(lstWWCals.ListIndex());
  SaveWindowRows();  // those of the calendar that is left
  FillWindowList(strCal);
}

void frmWeather::FillWindowList(const std::string& strCal) {
  lstWW.ListItems().Clear();
  for (const Ref<clsWWTask>& t : m_oStorage.m_colWindowTasks) {
    if (!strCal.empty() && t->m_strCalName == strCal) {
      t->PopulateListItem(lstWW.ListItems().Add());
    }
  }
  if (lstWW.ListItems().Count() > 0) {
    m_liWindow = lstWW.ListItems().Item(1);
    lstWW.SetSelectedItem(m_liWindow);
  } else {
    m_liWindow = nullptr;
  }
  ShowWindowRow();
}

void frmWeather::lstWW_ItemClick(const ListItemRef& item) {
  m_liWindow = item;
  ShowWindowRow();
}

void frmWeather::lstWW_ColumnClick(const toolkit::ColumnHeader& column) {
  const std::int32_t nCol = column.Index();
  const bool bDate = nCol >= 3 && nCol <= 9 && nCol != 6;
  SortListColumn(lstWW, nCol, bDate ? kSortDate : kSortText);
}

void frmWeather::cmdDelWW_Click() {
  if (lstWW.ListItems().Count() == 0) {
    return;
  }
  std::int32_t Pos = lstWW.SelectedItem()->Index();
  const std::string Key = lstWW.ListItems().Item(Pos)->Text();
  if (Key.empty()) {
    return;
  }
  const Ref<clsWWTask> t = m_oStorage.m_colWindowTasks.Item(Key);
  ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDStart);
  ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDEnd);
  m_oStorage.m_colWindowTasks.Remove(Key);
  lstWW.ListItems().Remove(Pos);
  if (lstWW.ListItems().Count() > 0) {
    Pos = std::min(Pos, lstWW.ListItems().Count());
    m_liWindow = lstWW.ListItems().Item(Pos);
    lstWW.SetSelectedItem(m_liWindow);
  } else {
    m_liWindow = nullptr;
  }
  ShowWindowRow();
}

void frmWeather::cmdDelWindowCal_Click() {
  std::string Name;
  IgnoreErrors([&] { Name = lstWWCals.List(lstWWCals.ListIndex()); });
  const std::string strQuestion = modToolBox::FormatMsg(
      "Are you sure you want to delete all the weather windows for %x. This action cannot be "
      "undone",
      {Name});
  if (OwnerDesktop().MsgBox(strQuestion, kMessageTitle, toolkit::Buttons::kYesNo) ==
      toolkit::Answer::kNo) {
    return;
  }
  for (const Ref<clsWWTask>& t : m_oStorage.m_colWindowTasks) {
    if (t->m_strCalName == Name) {
      IgnoreErrors([&] { ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDStart); });
      IgnoreErrors([&] { ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDEnd); });
    }
  }
  lstWW.ListItems().Clear();
  IgnoreErrors([&] { ActivePlan()->get_RiskCalendars()->Remove(Name); });
  IgnoreErrors([&] { ActivePlan()->get_Calendars()->Remove(Name); });
  m_oStorage.LoadWindowCalendars();
  if (lstWWCals.ListCount() > 0) {
    IgnoreErrors([&] { lstWWCals.SetListIndex(lstWWCals.ListCount() - 1); });
  } else {
    m_liWindow = nullptr;
    IgnoreErrors([&] { ShowWindowRow(); });
  }
}

}  // namespace nimbrel::dialog
