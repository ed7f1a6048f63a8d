#pragma once

#include <cstdint>
#include <string>

#include "host/corvane8.h"
#include "model/frm_weather_storage.h"
#include "model/weather_controls.h"
#include "platform/automation.h"
#include "platform/collection.h"
#include "platform/date.h"
#include "platform/ref.h"
#include "platform/variant.h"
#include "toolkit/buttons.h"
#include "toolkit/desktop.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/image_list.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::dialog {

/// Makes a fresh weather dialog for the active plan, shows it modally on `desktop`, and lets it go
/// when it has closed. An error in opening it goes to the caller.
void ShowWeatherDialog(toolkit::Desktop& desktop);

/// The weather dialog: the calendars of event periods and of windows, what is in them, and which
/// tasks they are for. One instance serves one opening.
///
/// What it shows is read from the active plan when it opens; what is changed goes into the plan at
/// once or, for the rows of a list, when another calendar is picked and at Close. The window's own
/// close button leaves without that.
///
/// Handlers are named after control and event. A handler that does not say otherwise lets an error
/// go on to whatever raised the event, and what it had done until then stays in the plan.
class frmWeather final : public toolkit::Form, private model::WeatherControls {
 public:
  /// `desktop` must outlive the dialog.
  explicit frmWeather(toolkit::Desktop& desktop);

  // Controls, with their places in twips. Their order is the order of the Tab key.

  toolkit::CheckBox chkIsWeather{
      *this, "chkIsWeather", "Add weather modeling to this plan.", {120, 120, 2895, 375}};
  toolkit::CommandButton cmdHelp{*this, "cmdHelp", "Help", {3120, 120, 1455, 495}};
  toolkit::CommandButton cmdExport{
      *this, "cmdExport", "Export All Weather Data", {5520, 120, 2175, 495}};
  toolkit::CommandButton cmdImport{
      *this, "cmdImport", "Import All Weather Data...", {7800, 120, 2175, 495}};
  toolkit::CommandButton cmdClearAll{*this, "cmdClearAll", "Clear All...", {10080, 120, 1455, 495}};
  toolkit::CommandButton cmdClose{*this, "cmdClose", "Close", {11640, 120, 1455, 495}};
  toolkit::TabStrip tabs{*this,
                         "tabs",
                         {"Weather Events", "Weather Windows", "Assign to Tasks"},
                         {120, 720, 12975, 9855}};

  // Page "Weather Events".

  toolkit::CommandButton cmdAddWeatherCal{
      tabs.Page(0), "cmdAddWeatherCal", "Add New Event Calendar...", {360, 960, 2535, 495}};
  toolkit::CommandButton cmdDelCalendar{
      tabs.Page(0), "cmdDelCalendar", "Delete Event Calendar", {360, 1680, 2535, 495}};
  toolkit::Label Label11{
      tabs.Page(0), "Label11", "Existing Weather Event Calendars", {3120, 720, 4215, 255}};
  toolkit::ListBox lstWeatherCals{tabs.Page(0), "lstWeatherCals", {3120, 960, 4215, 1575}};
  toolkit::Label Label2{tabs.Page(0),
                        "Label2",
                        "Use weather events to model the uncertainty in non-working time between "
                        "two dates, e.g. poor weather.",
                        {7800, 1140, 4935, 615}};
  toolkit::Label Label1{tabs.Page(0),
                        "Label1",
                        "Enter a Probability of Occurrence less than 100% to model a single "
                        "probabilistic non-working event between the two dates, e.g. hurricane.",
                        {7800, 1740, 4935, 735}};
  toolkit::ListView lstWeather{tabs.Page(0), "lstWeather", {120, 2760, 12735, 5595}};
  toolkit::Label Label10{tabs.Page(0), "Label10", "Period Description", {120, 8460, 3375, 255}};
  toolkit::TextBox txtDescription{tabs.Page(0), "txtDescription", {120, 8700, 3375, 375}};
  toolkit::Label Label4{tabs.Page(0), "Label4", "Start", {3600, 8460, 1455, 255}};
  toolkit::TextBox txtStart{tabs.Page(0), "txtStart", {3600, 8700, 1455, 375}};
  toolkit::Label Label5{tabs.Page(0), "Label5", "Finish", {5160, 8460, 1335, 255}};
  toolkit::TextBox txtEnd{tabs.Page(0), "txtEnd", {5160, 8700, 1335, 375}};
  toolkit::Label Label6{
      tabs.Page(0), "Label6", "Probability of Occurence", {6600, 8460, 1935, 255}};
  toolkit::TextBox txtFrequency{tabs.Page(0), "txtFrequency", {6600, 8700, 1935, 375}};
  toolkit::Label Label7{tabs.Page(0), "Label7", "Minimum", {8640, 8460, 1335, 255}};
  toolkit::TextBox txtMin{tabs.Page(0), "txtMin", {8640, 8700, 1335, 375}};
  toolkit::Label Label8{tabs.Page(0), "Label8", "Likely", {10080, 8460, 1335, 255}};
  toolkit::TextBox txtML{tabs.Page(0), "txtML", {10080, 8700, 1335, 375}};
  toolkit::Label Label9{tabs.Page(0), "Label9", "Maximum", {11520, 8460, 1335, 255}};
  toolkit::TextBox txtMax{tabs.Page(0), "txtMax", {11520, 8700, 1335, 375}};
  toolkit::CommandButton cmdAddNewPeriods{
      tabs.Page(0), "cmdAddNewPeriods", "Add New Period(s) to Calendar...", {120, 9180, 3015, 495}};
  toolkit::CommandButton cmdDelEventPeriod{
      tabs.Page(0), "cmdDelEventPeriod", "Delete Selected Period", {3360, 9180, 3015, 495}};
  toolkit::CommandButton cmdImportWeather{
      tabs.Page(0), "cmdImportWeather", "Import Event Period Data...", {9720, 9180, 3135, 495}};

  // Page "Weather Windows".

  toolkit::CommandButton cmdAddWWCal{
      tabs.Page(1), "cmdAddWWCal", "Add New Window Calendar...", {360, 960, 2535, 495}};
  toolkit::CommandButton cmdDelWindowCal{
      tabs.Page(1), "cmdDelWindowCal", "Delete Window Calendar", {360, 1680, 2535, 495}};
  toolkit::Label Label3{
      tabs.Page(1), "Label3", "Existing Weather Window Calendars", {3120, 720, 4215, 255}};
  toolkit::ListBox lstWWCals{tabs.Page(1), "lstWWCals", {3120, 960, 4215, 1575}};
  toolkit::Label Label12{tabs.Page(1),
                         "Label12",
                         "Use weather windows to define the uncertainty on the start date and "
                         "finish date of a non-working period, e.g. frozen canal.",
                         {7440, 1440, 5415, 615}};
  toolkit::ListView lstWW{tabs.Page(1), "lstWW", {120, 2760, 12735, 5595}};
  toolkit::Label Label13{tabs.Page(1), "Label13", "Window Description", {120, 8460, 3735, 255}};
  toolkit::TextBox txtDescrWW{tabs.Page(1), "txtDescrWW", {120, 8700, 3735, 375}};
  toolkit::Label Label14{tabs.Page(1), "Label14", "Start (Earliest)", {4080, 8460, 1335, 255}};
  toolkit::TextBox txtEarlyStartWW{tabs.Page(1), "txtEarlyStartWW", {4080, 8700, 1335, 375}};
  toolkit::Label Label15{tabs.Page(1), "Label15", "Start (Likely)", {5520, 8460, 1335, 255}};
  toolkit::TextBox txtLikelyStartWW{tabs.Page(1), "txtLikelyStartWW", {5520, 8700, 1335, 375}};
  toolkit::Label Label16{tabs.Page(1), "Label16", "Start (Latest)", {6960, 8460, 1335, 255}};
  toolkit::TextBox txtLateStartWW{tabs.Page(1), "txtLateStartWW", {6960, 8700, 1335, 375}};
  /// Never visible: stands for the blank column of lstWW among the edit boxes.
  toolkit::TextBox txtDummy{tabs.Page(1), "txtDummy", {8040, 480, 2175, 495}};
  toolkit::Label Label17{tabs.Page(1), "Label17", "Finish (Earliest)", {8520, 8460, 1335, 255}};
  toolkit::TextBox txtEarlyEndWW{tabs.Page(1), "txtEarlyEndWW", {8520, 8700, 1335, 375}};
  toolkit::Label Label18{tabs.Page(1), "Label18", "Finish (Likely)", {9960, 8460, 1335, 255}};
  toolkit::TextBox txtLikelyEndWW{tabs.Page(1), "txtLikelyEndWW", {9960, 8700, 1335, 375}};
  toolkit::Label Label19{tabs.Page(1), "Label19", "Finish (Latest)", {11400, 8460, 1455, 255}};
  toolkit::TextBox txtLateEndWW{tabs.Page(1), "txtLateEndWW", {11400, 8700, 1455, 375}};
  toolkit::CommandButton cmdAddWW{
      tabs.Page(1), "cmdAddWW", "Add Window to Calendar...", {120, 9180, 2655, 495}};
  toolkit::CommandButton cmdDelWW{
      tabs.Page(1), "cmdDelWW", "Delete Selected Window", {2880, 9180, 2655, 495}};
  toolkit::CommandButton cmdImportWW{
      tabs.Page(1), "cmdImportWW", "Import Window Data...", {10200, 9180, 2655, 495}};

  // Page "Assign to Tasks".

  toolkit::Frame Frame1{tabs.Page(2), "Frame1", "Tasks", {240, 480, 6000, 9135}};
  toolkit::TextBox txtFind{Frame1, "txtFind", {240, 360, 4335, 375}};
  toolkit::CommandButton cmdFind{Frame1, "cmdFind", "Find", {4680, 360, 735, 375}};
  toolkit::TreeView tvTasks{Frame1, "tvTasks", {240, 960, 5175, 7935}};
  toolkit::Frame Frame2{tabs.Page(2), "Frame2", "Task Calendar", {6720, 480, 6000, 1455}};
  toolkit::ComboBox cbAllCals{Frame2, "cbAllCals", {240, 360, 5535, 375}};
  toolkit::CheckBox chkSplit{Frame2,
                             "chkSplit",
                             "Prevent task duration from splitting across its task calendar.",
                             {240, 960, 5535, 375}};
  toolkit::Frame Frame3{
      tabs.Page(2), "Frame3", "Weather Event Calendars", {6720, 2160, 6015, 3615}};
  toolkit::ListView lstWCals1{
      Frame3, "lstWCals1", {240, 360, 5535, 3015}, toolkit::ListViewStyle::kList};
  toolkit::Frame Frame4{
      tabs.Page(2), "Frame4", "Weather Window Calendars", {6720, 6000, 6015, 3615}};
  toolkit::ListView lstWCals3{
      Frame4, "lstWCals3", {240, 360, 5535, 3015}, toolkit::ListViewStyle::kList};
  /// The pictures of tvTasks; has no place on the form.
  toolkit::ImageList ImageList1{16, 16};

  /// Writes every weather calendar that the dialog has into a new workbook, a sheet each, and
  /// leaves it to the user, unsaved in a visible Excel. The plan stays as it is. The result is
  /// empty.
  platform::Variant ExportCalendars();

  // The data behind the controls.

  /// The calendars, periods and windows of the plan, the summary task above them, and the
  /// operations that read and write them.
  model::frmWeatherStorage m_oStorage{*this};
  /// While it is set, the Validate and Change handlers of the edit boxes do nothing. A plain flag
  /// and no count: ShowEventRow and ShowWindowRow clear it for whoever had set it.
  bool m_bFilling = false;

  /// Write all rows on show into their objects and the plan, cell by cell, with the host's
  /// recalculation and change monitor switched off; an error leaves both switched off.
  void SaveEventRows();
  void SaveWindowRows();

 private:
  using EditBoxes = platform::Collection<toolkit::TextBox*>;

  // The shell: frm_weather.cc.

  void ConnectShell();
  void SetUpLists();
  void NameForReaders();
  void OnLoad();
  void OnUnload();
  void chkIsWeather_Click();
  void cmdClearAll_Click();
  void cmdClose_Click();

  // model::WeatherControls; FillCalendarCombo is the assign page's, ClickWindowCalendars the window
  // page's.
  void ClearCalendarList(model::CalendarKind kind) override;
  void ClearCheckList(model::CalendarKind kind) override;
  void ClearRows(model::CalendarKind kind) override;
  void AddToCalendarList(model::CalendarKind kind, const std::string& strName) override;
  void AddToCheckList(model::CalendarKind kind, const std::string& strName) override;

  // The page of event calendars: event_page.cc.

  void ConnectEventPage();
  /// Shows the periods of the calendar, whose name is compared exactly, and selects the first.
  void FillEventList(const std::string& strCal);
  /// Makes a period for each month from `dtStart` on, until one would start at or after `dtEnd`.
  void AddEventPeriods(const Corvane8::Ref<Corvane8::Calendar>& cal, platform::Date dtStart,
                       platform::Date dtEnd);
  void cmdAddWeatherCal_Click();
  void cmdDelCalendar_Click();
  void cmdAddNewPeriods_Click();
  void cmdDelEventPeriod_Click();
  void lstWeatherCals_Change();
  void lstWeather_ItemClick(const toolkit::ListItemRef& item);
  void lstWeather_ColumnClick(const toolkit::ColumnHeader& column);

  // The page of window calendars: window_page.cc.

  void ConnectWindowPage();
  void ClickWindowCalendars() override;
  /// Shows the windows of the calendar, whose name is compared exactly, and selects the first.
  void FillWindowList(const std::string& strCal);
  void cmdAddWWCal_Click();
  void cmdDelWindowCal_Click();
  void cmdAddWW_Click();
  void cmdDelWW_Click();
  void lstWWCals_Change();
  void lstWW_ItemClick(const toolkit::ListItemRef& item);
  void lstWW_ColumnClick(const toolkit::ColumnHeader& column);

  // The edit boxes under the two lists, and their sorting: row_editing.cc. Cells and boxes count
  // from 1.

  void ConnectRowEditing();
  /// Load the edit boxes from the current row, or empty and disable them if there is none.
  void ShowEventRow();
  void ShowWindowRow();
  /// Copy the text of box `nCol` into the cell of that number of the current row.
  void MirrorEventEdit(std::int32_t nCol);
  void MirrorWindowEdit(std::int32_t nCol);
  /// Check the text of `Box`, and put it into the object of the current row as column `nCol`, and
  /// so into the plan. False, after a message, if the box may not be left.
  bool ValidateEventEdit(toolkit::TextBox& Box, std::int32_t nCol);
  bool ValidateWindowEdit(toolkit::TextBox& Box, std::int32_t nCol);
  /// Puts the date of `Box` into the form of the lists; false, after a message, if it is none.
  bool NormaliseDate(toolkit::TextBox& Box);
  bool NormalisePercentage(toolkit::TextBox& Box);
  bool CheckNumber(const toolkit::TextBox& Box);
  /// Ways of sorting a column.
  static constexpr std::int32_t kSortText = 0;
  static constexpr std::int32_t kSortDate = 1;
  static constexpr std::int32_t kSortNumber = 2;
  /// Sorts by column `nCol`, from 1, in the way `nKind`, and turns the list's order: the first sort
  /// of a fresh list ends in descending order. Raises error 13 for a cell that is no date or
  /// number, and error 5 for a number of more than seven places before its two decimals; the cells
  /// before it are then left with their sort keys as texts.
  static void SortListColumn(toolkit::ListView& List, std::int32_t nCol, std::int32_t nKind);

  // The exchange with workbooks, which are reached through modExcel and modImportExport:
  // exchange_buttons.cc. An error leaves what was done until then, and Excel as it is.

  void ConnectExchange();
  std::int32_t CountCalendars() const;
  /// A new workbook with a sheet for each calendar, in an Excel that is hidden and leaves its user
  /// in peace.
  platform::Ref<platform::AutomationObject> MakeWorkbook(
      const platform::Ref<platform::AutomationObject>& excel);
  /// Whether the user lets all weather data go; not asked where there is none.
  bool MayRemoveAll() const;
  /// Makes a calendar of a sheet; one of no known kind counts as events.
  void ImportSheet(const platform::Ref<platform::AutomationObject>& sheet);
  /// Make new tasks for all rows of a list, on the calendar `strCal`, and tie the rows to them.
  void TieEventRows(const std::string& strCal);
  void TieWindowRows(const std::string& strCal);
  /// Puts a workbook of the user's choice in the place of all weather data of the plan: each sheet
  /// becomes a calendar of its name. Makes the plan a weather plan, whatever comes of the import.
  /// An error leaves m_bFilling set.
  void cmdImport_Click();
  /// Put one sheet of a workbook of the user's choice in the place of the periods, or the windows,
  /// of the selected calendar, as new tasks. The sheet's name does not matter.
  void cmdImportWeather_Click();
  void cmdImportWW_Click();

  // The page of assignments: assign_page.cc.

  void ConnectAssignPage();
  void FillCalendarCombo() override;
  void InitTaskTree();
  void BuildTaskTree();
  static void CollapseAllNodes(toolkit::TreeView& Tree);
  static void ExpandAllNodes(toolkit::TreeView& Tree);
  void SortNodeChildren(const toolkit::NodeRef& Node);
  void FilterTaskNodes(const toolkit::NodeRef& Node, const std::string& Text);
  void tvTasks_NodeClick(const toolkit::NodeRef& Node);
  void cbAllCals_Change();
  void chkSplit_Click();
  void CheckList_ItemCheck(const toolkit::ListItemRef& Item);
  void cmdFind_Click();
  void txtFind_KeyDown(int KeyCode);
  void txtFind_GotFocus();

  EditBoxes m_colEventEdits;        ///< in column order
  EditBoxes m_colWindowEdits;       ///< in column order
  toolkit::ListItemRef m_liEvent;   ///< current row of lstWeather; Nothing when there is none
  toolkit::ListItemRef m_liWindow;  ///< current row of lstWW; Nothing when there is none
  Corvane8::Ref<Corvane8::Task> m_taskAssign;  ///< the task picked last in tvTasks
  Corvane8::Ref<Corvane8::Task> m_taskSplit;   ///< the task that chkSplit wrote last
};

}  // namespace nimbrel::dialog
