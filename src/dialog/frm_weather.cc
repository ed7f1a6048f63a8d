#include "dialog/frm_weather.h"

#include <initializer_list>
#include <utility>

#include "desktop/mod_tool_box.h"
#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::dialog {

using model::CalendarKind;
using platform::IgnoreErrors;

namespace {

struct Column {
  const char* title;
  int width;
};

void AddColumns(toolkit::ListView& list, std::initializer_list<Column> columns) {
  for (const Column& column : columns) {
    list.ColumnHeaders().Add(column.title, column.width);
  }
}

void Fill(platform::Collection<std::string>& collection, std::initializer_list<const char*> texts) {
  collection.Clear();
  for (const char* const text : texts) {
    collection.Add(text);
  }
}

template <class Box>
void Fill(platform::Collection<Box*>& collection, std::initializer_list<Box*> boxes) {
  collection.Clear();
  for (Box* const box : boxes) {
    collection.Add(box);
  }
}

}  // namespace

void ShowWeatherDialog(toolkit::Desktop& desktop) {
  frmWeather dialog(desktop);
  dialog.ShowModal();
}

frmWeather::frmWeather(toolkit::Desktop& desktop)
    : Form(desktop, "frmWeather", "Weather Modeling", 13215, 10665) {
  SetUpLists();
  NameForReaders();
  txtDummy.SetVisible(false);
  ConnectShell();
  ConnectEventPage();
  ConnectWindowPage();
  ConnectRowEditing();
  ConnectAssignPage();
  ConnectExchange();
}

void frmWeather::SetUpLists() {
  AddColumns(lstWeather, {{"ID", 0},
                          {"Period Description", 3350},
                          {"Start", 1450},
                          {"Finish", 1450},
                          {"Probability of Occurence", 2000},
                          {"Minimum", 1450},
                          {"Likely", 1450},
                          {"Maximum", 1450}});
  AddColumns(lstWW, {{"ID", 0},
                     {"Window Description", 3800},
                     {"Start (Earliest)", 1440},
                     {"Start (Likely)", 1440},
                     {"Start (Latest)", 1440},
                     {"", 100},
                     {"Finish (Earliest)", 1440},
                     {"Finish (Likely)", 1440},
                     {"Finish (Latest)", 1440}});
  lstWCals1.SetCheckBoxes(true);
  lstWCals3.SetCheckBoxes(true);
}

void frmWeather::NameForReaders() {
  const std::initializer_list<std::pair<toolkit::Control*, const toolkit::Label*>> labels = {
      {&lstWeatherCals, &Label11}, {&txtDescription, &Label10},  {&txtStart, &Label4},
      {&txtEnd, &Label5},          {&txtFrequency, &Label6},     {&txtMin, &Label7},
      {&txtML, &Label8},           {&txtMax, &Label9},           {&lstWWCals, &Label3},
      {&txtDescrWW, &Label13},     {&txtEarlyStartWW, &Label14}, {&txtLikelyStartWW, &Label15},
      {&txtLateStartWW, &Label16}, {&txtEarlyEndWW, &Label17},   {&txtLikelyEndWW, &Label18},
      {&txtLateEndWW, &Label19}};
  for (const auto& [control, label] : labels) {
    control->SetAccessibleName(label->Caption());
  }
  tabs.SetAccessibleName("Weather data");
  lstWeather.SetAccessibleName("Periods of the calendar");
  lstWW.SetAccessibleName("Windows of the calendar");
  txtFind.SetAccessibleName("Text to find");
  tvTasks.SetAccessibleName(Frame1.Caption());
  cbAllCals.SetAccessibleName(Frame2.Caption());
  lstWCals1.SetAccessibleName(Frame3.Caption());
  lstWCals3.SetAccessibleName(Frame4.Caption());
}

void frmWeather::ConnectShell() {
  Form_Load = [this] { OnLoad(); };
  Form_Unload = [this](bool& /*cancel*/) { OnUnload(); };
  chkIsWeather.Click = [this] { chkIsWeather_Click(); };
  cmdClearAll.Click = [this] { cmdClearAll_Click(); };
  cmdClose.Click = [this] { cmdClose_Click(); };
  cmdHelp.Click = [] { modToolBox::ShowHelpTopic("C21_WeatherOverview.html"); };
}

void frmWeather::OnLoad() {
  if (modGlobal::IsWeatherPlan(modGlobal::Application()->get_ActivePlan())) {
    chkIsWeather.SetValue(true);  // its Click finds or makes the summary task
  }
  tabs.SetTab(0);
  modGlobal::g_strModulesFolder = modGlobal::Application()->get_Path() + "\\Modules";
  Fill(m_colEventEdits,
       {&txtDescription, &txtStart, &txtEnd, &txtFrequency, &txtMin, &txtML, &txtMax});
  Fill(m_colWindowEdits, {&txtDescrWW, &txtEarlyStartWW, &txtLikelyStartWW, &txtLateStartWW,
                          &txtDummy, &txtEarlyEndWW, &txtLikelyEndWW, &txtLateEndWW});
  m_bFilling = false;
  modGlobal::AddWeatherFields();
  FillCalendarCombo();
  m_oStorage.LoadEventCalendars();
  m_oStorage.LoadWindowCalendars();
  InitTaskTree();
  Fill(modGlobal::g_colEventHeaders,
       {"Description", "Start", "Finish", "Probability", "Min", "Likely", "Max"});
  Fill(modGlobal::g_colWindowHeaders,
       {"Description", "Start (Early)", "Start (Likely)", "Start (Late)", "", "Finish (Early)",
        "Finish (Likely)", "Finish (Late)"});
  if (lstWeatherCals.ListCount() > 0) {
    lstWeatherCals.SetListIndex(0);
  }
  if (lstWWCals.ListCount() > 0) {
    lstWWCals.SetListIndex(0);
  }
  // The tabs take their state from the box, also where it was not ticked; the plan's option is
  // written by that in any case.
  chkIsWeather_Click();
}

void frmWeather::OnUnload() {
  m_oStorage.m_colEventCals.Clear();
  m_oStorage.m_colEventTasks.Clear();
  m_oStorage.m_colWindowCals.Clear();
  m_oStorage.m_colWindowTasks.Clear();
  m_oStorage.m_taskWeather = nullptr;
  m_taskAssign = nullptr;
  m_taskSplit = nullptr;
  m_liEvent = nullptr;
  m_liWindow = nullptr;
  m_colEventEdits.Clear();
  m_colWindowEdits.Clear();
}

void frmWeather::chkIsWeather_Click() {
  const bool bIsWeather = chkIsWeather.Value();
  IgnoreErrors(
      [&] { modGlobal::SetIsWeatherPlan(modGlobal::Application()->get_ActivePlan(), bIsWeather); });
  if (bIsWeather) {
    m_oStorage.FindOrCreateWeatherTask();
  }
  IgnoreErrors([&] { tabs.SetEnabled(bIsWeather); });
}

void frmWeather::cmdClearAll_Click() {
  if (MayRemoveAll()) {
    m_oStorage.RemoveAllWeatherData();
  }
}

void frmWeather::cmdClose_Click() {
  m_bFilling = true;  // whatever the form raises while it goes, no handler acts
  SaveEventRows();
  SaveWindowRows();
  Hide();
  Unload();
}

void frmWeather::ClearCalendarList(CalendarKind kind) {
  toolkit::ListBox& list = kind == CalendarKind::kEvent ? lstWeatherCals : lstWWCals;
  while (list.ListCount() > 0) {
    list.RemoveItem(0);
  }
}

void frmWeather::ClearCheckList(CalendarKind kind) {
  (kind == CalendarKind::kEvent ? lstWCals1 : lstWCals3).ListItems().Clear();
}

void frmWeather::ClearRows(CalendarKind kind) {
  (kind == CalendarKind::kEvent ? lstWeather : lstWW).ListItems().Clear();
}

void frmWeather::AddToCalendarList(CalendarKind kind, const std::string& strName) {
  (kind == CalendarKind::kEvent ? lstWeatherCals : lstWWCals).AddItem(strName);
}

void frmWeather::AddToCheckList(CalendarKind kind, const std::string& strName) {
  toolkit::ListView& list = kind == CalendarKind::kEvent ? lstWCals1 : lstWCals3;
  list.ListItems().Add(1, platform::UpperCase(strName), strName);
}

}  // namespace nimbrel::dialog
