#include "dialog/exchange_buttons.h"

#include "desktop/mod_tool_box.h"
#include "dialog/frm_import.h"
#include "dialog/message_title.h"
#include "exchange/mod_excel.h"
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

std::int32_t CountCalendars(const frmWeather& form) {
  return form.m_oStorage.m_colEventCals.Count() + form.m_oStorage.m_colWindowCals.Count();
}

std::int32_t CountSheets(const Ref<AutomationObject>& workbook) {
  return workbook->GetRef("Sheets")->Get("Count").ToLong(modGlobal::Locale());
}

/// A new workbook of `count` sheets, in an Excel that is hidden and leaves its user in peace.
Ref<AutomationObject> MakeWorkbook(const frmWeather& form, const Ref<AutomationObject>& excel) {
  excel->Put("Visible", false);
  Ref<AutomationObject> workbook = excel->GetRef("Workbooks")->CallRef("Add");
  excel->Put("Calculation", modExcel::kManual);
  excel->Put("DisplayAlerts", false);
  excel->GetRef("ActiveWindow")->Put("Zoom", 80);
  const std::int32_t nTotal = CountCalendars(form);
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

/// Makes a task for each row of lstWeather, and ties the row to it.
void TieEventRows(frmWeather& form, const std::string& strCal) {
  for (std::int32_t i = 1; i <= form.lstWeather.ListItems().Count(); ++i) {
    const Ref<Corvane8::Calendar> cal = ActivePlan()->get_Calendars()->Item(strCal);
    const Ref<Corvane8::Task> task = form.m_oStorage.AddEventTask(cal);
    form.lstWeather.ListItems().Item(i)->SetText(task->get_ID());
    const auto t = platform::MakeRef<clsWeatherTask>();
    t->InitFromTask(task);
    form.m_oStorage.m_colEventTasks.Add(t, task->get_ID());
  }
}

/// Makes the two tasks of a window for each row of lstWW, and ties the row to them.
void TieWindowRows(frmWeather& form, const std::string& strCal) {
  for (std::int32_t i = 1; i <= form.lstWW.ListItems().Count(); ++i) {
    const Ref<Corvane8::Calendar> cal = ActivePlan()->get_Calendars()->Item(strCal);
    const std::string strID = form.m_oStorage.AddWindowTasks(cal);
    form.lstWW.ListItems().Item(i)->SetText(strID);
    const auto t = platform::MakeRef<clsWWTask>();
    t->InitFromTask(ActivePlan()->get_Tasks()->Item(strID));
    form.m_oStorage.m_colWindowTasks.Add(t, strID);
  }
}

/// Makes a calendar of a sheet, whatever kind it is; a sheet of no known kind counts as events.
void ImportSheet(frmWeather& form, const Ref<AutomationObject>& sheet) {
  const std::string strMarker = modImportExport::ReadMarker(sheet);
  const std::string strName = sheet->Get("Name").ToText(modGlobal::Locale());
  if (platform::UpperCase(strMarker) == "WEATHER-WINDOWS") {
    form.m_oStorage.AddWindowCalendar(strName, false);
    modImportExport::ReadWindowRows(sheet, form.lstWW);
    TieWindowRows(form, strName);
    form.SaveWindowRows();
  } else {
    form.m_oStorage.AddEventCalendar(strName);
    modImportExport::ReadEventRows(sheet, form.lstWeather);
    TieEventRows(form, strName);
    form.SaveEventRows();
  }
}

bool MayRemoveAll(const frmWeather& form) {
  return CountCalendars(form) == 0 ||
         form.OwnerDesktop().MsgBox(
             "This will remove all Weather Modeling data.\r\nWould you like to continue?",
             kMessageTitle, toolkit::Buttons::kYesNo) != toolkit::Answer::kNo;
}

/// The calendar that is selected in a list of calendars; empty, after a message, if there is none.
std::string ChosenCalendar(const frmWeather& form, const toolkit::ListBox& list) {
  std::string strName = list.Text();
  if (strName.empty()) {
    form.OwnerDesktop().Show("Please choose a calendar to import the data into!", kMessageTitle);
  }
  return strName;
}

}  // namespace

WeatherSeams WorkbookButtons() {
  return {[](frmWeather& form) { ExportCalendars(form); }, cmdImport_Click, cmdImportWeather_Click,
          cmdImportWW_Click};
}

platform::Variant ExportCalendars(frmWeather& form) {
  if (CountCalendars(form) == 0) {
    form.OwnerDesktop().Show("There is no weather data to export!", kMessageTitle);
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
  Ref<AutomationObject> workbook = MakeWorkbook(form, excel);
  Ref<AutomationObject> sheet;
  const model::frmWeatherStorage& storage = form.m_oStorage;
  for (std::int32_t i = 1; i <= storage.m_colEventCals.Count(); ++i) {
    sheet = workbook->GetRef("Sheets", {i});
    modImportExport::ExportEventSheet(sheet, storage.m_colEventTasks,
                                      storage.m_colEventCals.Item(i)->strName);
  }
  for (std::int32_t j = 1; j <= storage.m_colWindowCals.Count(); ++j) {
    sheet = workbook->GetRef("Sheets", {storage.m_colEventCals.Count() + j});
    modImportExport::ExportWindowSheet(sheet, storage.m_colWindowTasks,
                                       storage.m_colWindowCals.Item(j)->strName);
  }
  excel->Put("Calculation", modExcel::kAutomatic);
  excel->Put("Visible", true);
  sheet = nullptr;
  workbook = nullptr;
  excel = nullptr;
  modToolBox::StopProgress();
  return {};
}

void cmdImport_Click(frmWeather& form) {
  form.chkIsWeather.SetValue(true);
  form.chkIsWeather.Click();  // for the second time if the box was clear
  Ref<AutomationObject> excel = modExcel::StartExcel();
  if (excel.IsNothing()) {
    return;
  }
  const std::string strPath = modImportExport::ChooseWorkbook();
  if (strPath.empty() || !MayRemoveAll(form)) {
    return;
  }
  form.m_bFilling = true;
  form.m_oStorage.RemoveAllWeatherData();
  Ref<AutomationObject> workbook = excel->GetRef("Workbooks")->CallRef("open", {strPath});
  excel->Put("Visible", false);
  for (const Ref<AutomationObject>& sheet : workbook->GetRef("Sheets")->Items()) {
    ImportSheet(form, sheet);
  }
  form.m_oStorage.LoadEventCalendars();
  form.m_oStorage.LoadWindowCalendars();
  modImportExport::EndImport(workbook, excel);
  form.m_bFilling = false;
}

void cmdImportWeather_Click(frmWeather& form) {
  const std::string strName = ChosenCalendar(form, form.lstWeatherCals);
  if (strName.empty()) {
    return;
  }
  form.lstWeather.ListItems().Clear();
  if (!modImportExport::ImportCalendarSheet(form.lstWeather, modImportExport::kEventData)) {
    form.m_oStorage.LoadEventCalendars();
    return;
  }
  const platform::Collection<Ref<clsWeatherTask>> colOld = form.m_oStorage.m_colEventTasks;
  for (const Ref<clsWeatherTask>& t : colOld) {
    if (t->m_strCalName == strName) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskID);
      form.m_oStorage.m_colEventTasks.Remove(t->m_strTaskID);
    }
  }
  TieEventRows(form, strName);
  form.SaveEventRows();
}

void cmdImportWW_Click(frmWeather& form) {
  const std::string strName = ChosenCalendar(form, form.lstWWCals);
  if (strName.empty()) {
    return;
  }
  form.lstWW.ListItems().Clear();
  if (!modImportExport::ImportCalendarSheet(form.lstWW, modImportExport::kWindowData)) {
    form.m_oStorage.LoadWindowCalendars();
    return;
  }
  const platform::Collection<Ref<clsWWTask>> colOld = form.m_oStorage.m_colWindowTasks;
  for (const Ref<clsWWTask>& t : colOld) {
    if (t->m_strCalName == strName) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDStart);
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDEnd);
      form.m_oStorage.m_colWindowTasks.Remove(t->m_strTaskIDStart);
    }
  }
  TieWindowRows(form, strName);
  form.SaveWindowRows();
}

modImportExport::SheetChoice ChooseSheet(toolkit::Desktop& desktop,
                                         const std::vector<modImportExport::ListedSheet>& sheets,
                                         const std::string& DataType) {
  frmImport dialog(desktop);
  for (const modImportExport::ListedSheet& sheet : sheets) {
    dialog.lstCals.ListItems().Add({}, sheet.key, sheet.name)->SetSubItems(1, sheet.kind);
  }
  dialog.m_strDataType = DataType;
  dialog.ShowModal();
  return {dialog.m_bOk, dialog.m_strSelCal};
}

}  // namespace nimbrel::dialog
