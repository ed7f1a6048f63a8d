// The buttons that carry weather data to and from workbooks.

#include "desktop/mod_tool_box.h"
#include "dialog/frm_weather.h"
#include "dialog/message_title.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "host/mod_global.h"
#include "platform/automation.h"
#include "platform/locale.h"
#include "platform/text.h"

namespace nimbrel::dialog {

using Corvane8::Ref;
using model::clsWeatherTask;
using model::clsWWTask;
using platform::AutomationObject;

namespace {

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

std::int32_t CountSheets(const Ref<AutomationObject>& workbook) {
  return workbook->GetRef("Sheets")->Get("Count").ToLong(modGlobal::Locale());
}

/// The calendar that is selected in a list of calendars; empty, after a message, if there is none.
std::string ChosenCalendar(const toolkit::ListBox& list) {
  std::string strName = list.Text();
  if (strName.empty()) {
    list.OwnerForm().OwnerDesktop().Show("Please choose a calendar to import the data into!",
                                         kMessageTitle);
  }
  return strName;
}

}  // namespace

void frmWeather::ConnectExchange() {
  cmdExport.Click = [this] { ExportCalendars(); };
  cmdImport.Click = [this] { cmdImport_Click(); };
  cmdImportWeather.Click = [this] { cmdImportWeather_Click(); };
  cmdImportWW.Click = [this] { cmdImportWW_Click(); };
}

std::int32_t frmWeather::CountCalendars() const {
  return m_oStorage.m_colEventCals.Count() + m_oStorage.m_colWindowCals.Count();
}

Ref<AutomationObject> frmWeather::MakeWorkbook(const Ref<AutomationObject>& excel) {
  excel->Put("Visible", false);
  Ref<AutomationObject> workbook = excel->GetRef("Workbooks")->CallRef("Add");
  excel->Put("Calculation", modExcel::kManual);
  excel->Put("DisplayAlerts", false);
  excel->GetRef("ActiveWindow")->Put("Zoom", 80);
  const std::int32_t nTotal = CountCalendars();
  for (const Ref<AutomationObject>& sheet : workbook->GetRef("Sheets")->Items()) {
    if (CountSheets(workbook) > 1) {  // a workbook must have one
      sheet->Call("Delete");
    }
  }
  for (std::int32_t i = 1; i < nTotal; ++i) {
    workbook->GetRef("Sheets")->Call("Add");
  }
  return workbook;
}

void frmWeather::TieEventRows(const std::string& strCal) {
  for (std::int32_t i = 1; i <= lstWeather.ListItems().Count(); ++i) {
    const Ref<Corvane8::Calendar> cal = ActivePlan()->get_Calendars()->Item(strCal);
    const Ref<Corvane8::Task> task = m_oStorage.AddEventTask(cal);
    lstWeather.ListItems().Item(i)->SetText(task->get_ID());
    const auto t = platform::MakeRef<clsWeatherTask>();
    t->InitFromTask(task);
    m_oStorage.m_colEventTasks.Add(t, task->get_ID());
  }
}

void frmWeather::TieWindowRows(const std::string& strCal) {
  for (std::int32_t i = 1; i <= lstWW.ListItems().Count(); ++i) {
    const Ref<Corvane8::Calendar> cal = ActivePlan()->get_Calendars()->Item(strCal);
    const std::string strID = m_oStorage.AddWindowTasks(cal);
    lstWW.ListItems().Item(i)->SetText(strID);
    const auto t = platform::MakeRef<clsWWTask>();
    t->InitFromTask(ActivePlan()->get_Tasks()->Item(strID));
    m_oStorage.m_colWindowTasks.Add(t, strID);
  }
}

void frmWeather::ImportSheet(const Ref<AutomationObject>& sheet) {
  const std::string strMarker = modImportExport::ReadMarker(sheet);
  const std::string strName = sheet->Get("Name").ToText(modGlobal::Locale());
  if (platform::UpperCase(strMarker) == "WEATHER-WINDOWS") {
    m_oStorage.AddWindowCalendar(strName, false);
    modImportExport::ReadWindowRows(sheet, lstWW);
    TieWindowRows(strName);
    SaveWindowRows();
  } else {
    m_oStorage.AddEventCalendar(strName);
    modImportExport::ReadEventRows(sheet, lstWeather);
    TieEventRows(strName);
    SaveEventRows();
  }
}

bool frmWeather::MayRemoveAll() const {
  return CountCalendars() == 0 ||
         OwnerDesktop().MsgBox(
             "This will remove all Weather Modeling data.\r\nWould you like to continue?",
             kMessageTitle, toolkit::Buttons::kYesNo) != toolkit::Answer::kNo;
}

platform::Variant frmWeather::ExportCalendars() {
  if (CountCalendars() == 0) {
    OwnerDesktop().Show("There is no weather data to export!", kMessageTitle);
    return {};
  }
  modExcel::InitColumnLetters();
  const std::int32_t hWnd = modGlobal::Application()->get_hWnd();
  const std::int32_t nThread =
      modToolBox::GetWindowThreadProcessId(modGlobal::Application()->get_hWnd());
  modToolBox::StartProgress("Exporting Weather Calendar to Excel...", hWnd, nThread);
  Ref<AutomationObject> excel = modExcel::StartExcel();
  if (excel.IsNothing()) {
    return {};  // the progress tool is not told
  }
  Ref<AutomationObject> workbook = MakeWorkbook(excel);
  Ref<AutomationObject> sheet;
  for (std::int32_t i = 1; i <= m_oStorage.m_colEventCals.Count(); ++i) {
    sheet = workbook->GetRef("Sheets", {i});
    modImportExport::ExportEventSheet(sheet, m_oStorage.m_colEventTasks,
                                      m_oStorage.m_colEventCals.Item(i)->strName);
  }
  for (std::int32_t j = 1; j <= m_oStorage.m_colWindowCals.Count(); ++j) {
    sheet = workbook->GetRef("Sheets", {m_oStorage.m_colEventCals.Count() + j});
    modImportExport::ExportWindowSheet(sheet, m_oStorage.m_colWindowTasks,
                                       m_oStorage.m_colWindowCals.Item(j)->strName);
  }
  excel->Put("Calculation", modExcel::kAutomatic);
  excel->Put("Visible", true);
  sheet = nullptr;
  workbook = nullptr;
  excel = nullptr;
  modToolBox::StopProgress();
  return {};
}

void frmWeather::cmdImport_Click() {
  chkIsWeather.SetValue(true);
  chkIsWeather_Click();  // for the second time if the box was clear
  Ref<AutomationObject> excel = modExcel::StartExcel();
  if (excel.IsNothing()) {
    return;
  }
  const std::string strPath = modImportExport::ChooseWorkbook();
  if (strPath.empty() || !MayRemoveAll()) {
    return;
  }
  m_bFilling = true;
  m_oStorage.RemoveAllWeatherData();
  Ref<AutomationObject> workbook = excel->GetRef("Workbooks")->CallRef("open", {strPath});
  excel->Put("Visible", false);
  for (const Ref<AutomationObject>& sheet : workbook->GetRef("Sheets")->Items()) {
    ImportSheet(sheet);
  }
  m_oStorage.LoadEventCalendars();
  m_oStorage.LoadWindowCalendars();
  modImportExport::EndImport(workbook, excel);
  m_bFilling = false;
}

void frmWeather::cmdImportWeather_Click() {
  const std::string strName = ChosenCalendar(lstWeatherCals);
  if (strName.empty()) {
    return;
  }
  lstWeather.ListItems().Clear();
  if (!modImportExport::ImportCalendarSheet(lstWeather, modImportExport::kEventData)) {
    m_oStorage.LoadEventCalendars();
    return;
  }
  const platform::Collection<Ref<clsWeatherTask>> colOld = m_oStorage.m_colEventTasks;
  for (const Ref<clsWeatherTask>& t : colOld) {
    if (t->m_strCalName == strName) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskID);
      m_oStorage.m_colEventTasks.Remove(t->m_strTaskID);
    }
  }
  TieEventRows(strName);
  SaveEventRows();
}

void frmWeather::cmdImportWW_Click() {
  const std::string strName = ChosenCalendar(lstWWCals);
  if (strName.empty()) {
    return;
  }
  lstWW.ListItems().Clear();
  if (!modImportExport::ImportCalendarSheet(lstWW, modImportExport::kWindowData)) {
    m_oStorage.LoadWindowCalendars();
    return;
  }
  const platform::Collection<Ref<clsWWTask>> colOld = m_oStorage.m_colWindowTasks;
  for (const Ref<clsWWTask>& t : colOld) {
    if (t->m_strCalName == strName) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDStart);
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDEnd);
      m_oStorage.m_colWindowTasks.Remove(t->m_strTaskIDStart);
    }
  }
  TieWindowRows(strName);
  SaveWindowRows();
}

}  // namespace nimbrel::dialog
