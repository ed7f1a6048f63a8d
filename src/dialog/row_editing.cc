// The edit boxes under the two lists, the checks of what is typed there, and the sorting of lists.
//
// There are two of everything, one for periods and one for windows, which differ in small ways.

#include <string_view>

#include "desktop/mod_tool_box.h"
#include "dialog/frm_weather.h"
#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::dialog {

using Corvane8::Ref;
using modGlobal::Locale;
using toolkit::ListItemRef;
using toolkit::TextBox;

namespace {

constexpr std::string_view kListDate = "dd/mmm/yyyy";

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

/// What stands in the cell of a date while a list is sorted.
std::string DateKey(const std::string& strText) {
  return platform::FormatDate(platform::ParseDate(strText, Locale()), "YYYYMMDD", Locale());
}

/// The same of a number: in ten places, which is all that texts need to sort as numbers do.
std::string NumberKey(std::string strText) {
  constexpr std::string_view kZeros = "0000000000";
  if (strText.find('%') != std::string::npos) {
    strText.pop_back();
  }
  const std::string strNumber =
      platform::FormatNumber(platform::ParseNumber(strText, Locale()), "0.00", Locale());
  if (strNumber.size() > kZeros.size()) {
    throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                 "The number is too long to sort by: " + strNumber);
  }
  return std::string(kZeros.substr(0, kZeros.size() - strNumber.size())) + strNumber;
}

/// Loads the boxes from the cells of the row, or empties and disables them for Nothing.
void ShowRow(const ListItemRef& row, const platform::Collection<TextBox*>& boxes) {
  if (!row.IsNothing()) {
    for (std::int32_t j = 1; j <= row->ListSubItems().Count(); ++j) {
      boxes.Item(j)->SetText(row->ListSubItems().Item(j).Text());
      boxes.Item(j)->SetEnabled(true);
    }
  } else {
    for (TextBox* const box : boxes) {
      box->SetText({});
      box->SetEnabled(false);
    }
  }
}

}  // namespace

void frmWeather::ConnectRowEditing() {
  struct Edit {
    TextBox* box;
    std::int32_t mirrored;   // cell that a change is copied to
    std::int32_t validated;  // cell that leaving the box is for
  };
  for (const Edit& edit :
       {Edit{&txtDescription, 1, 1}, Edit{&txtStart, 2, 2}, Edit{&txtEnd, 3, 3},
        Edit{&txtFrequency, 4, 4}, Edit{&txtMin, 5, 5}, Edit{&txtML, 6, 6}, Edit{&txtMax, 7, 7}}) {
    edit.box->Change = [this, edit] { MirrorEventEdit(edit.mirrored); };
    edit.box->Validate = [this, edit](bool& cancel) {
      cancel = !ValidateEventEdit(*edit.box, edit.validated);
    };
  }
  // What is typed into the boxes of the finish does not run along in the list.
  for (const Edit& edit :
       {Edit{&txtDescrWW, 1, 1}, Edit{&txtEarlyStartWW, 2, 2}, Edit{&txtLikelyStartWW, 3, 3},
        Edit{&txtLateStartWW, 4, 4}, Edit{&txtEarlyEndWW, 5, 6}, Edit{&txtLikelyEndWW, 6, 7},
        Edit{&txtLateEndWW, 7, 8}}) {
    edit.box->Change = [this, edit] { MirrorWindowEdit(edit.mirrored); };
    edit.box->Validate = [this, edit](bool& cancel) {
      cancel = !ValidateWindowEdit(*edit.box, edit.validated);
    };
  }
}

void frmWeather::ShowEventRow() {
  m_bFilling = true;
  ShowRow(m_liEvent, m_colEventEdits);
  m_bFilling = false;
}

void frmWeather::ShowWindowRow() {
  m_bFilling = true;
  ShowRow(m_liWindow, m_colWindowEdits);
  m_bFilling = false;
}

void frmWeather::MirrorEventEdit(std::int32_t nCol) {
  if (!m_bFilling && !m_liEvent.IsNothing()) {
    m_liEvent->ListSubItems().Item(nCol).SetText(m_colEventEdits.Item(nCol)->Text());
  }
}

void frmWeather::MirrorWindowEdit(std::int32_t nCol) {
  if (!m_bFilling && !m_liWindow.IsNothing()) {
    m_liWindow->ListSubItems().Item(nCol).SetText(m_colWindowEdits.Item(nCol)->Text());
  }
}

bool frmWeather::NormaliseDate(TextBox& Box) {
  if (!platform::IsDate(Box.Text(), Locale())) {
    OwnerDesktop().Show(modToolBox::FormatMsg("%x is not a valid date!", {Box.Text()}),
                        kMessageTitle);
    return false;
  }
  Box.SetText(platform::FormatDate(platform::ParseDate(Box.Text(), Locale()), kListDate, Locale()));
  return true;
}

bool frmWeather::CheckNumber(const TextBox& Box) {
  const bool bNumber = platform::IsNumeric(Box.Text(), Locale());
  if (!bNumber) {
    OwnerDesktop().Show("Please enter a valid number", kMessageTitle);
  }
  return bNumber;
}

bool frmWeather::NormalisePercentage(TextBox& Box) {
  if (const std::size_t at = Box.Text().find('%'); at != std::string::npos) {
    Box.SetText(Box.Text().substr(0, at));
  }
  if (Box.Text().empty()) {
    Box.SetText("0%");
    return true;
  }
  if (!CheckNumber(Box)) {
    return false;
  }
  const double x = platform::ParseNumber(Box.Text(), Locale());
  if (x < 0.0 || x > 100.0) {
    OwnerDesktop().Show("Please enter a value between 0% and 100%.", kMessageTitle);
    return false;
  }
  Box.SetText(platform::FormatNumber(x / 100.0, "0%", Locale()));
  return true;
}

bool frmWeather::ValidateEventEdit(TextBox& Box, std::int32_t nCol) {
  if (m_bFilling) {
    return true;
  }
  bool bValid = true;
  if (nCol == 2 || nCol == 3) {
    bValid = NormaliseDate(Box);
  } else if (nCol == 4) {
    bValid = NormalisePercentage(Box);
  } else if (nCol >= 5 && nCol <= 7) {
    bValid = CheckNumber(Box);
  }
  if (bValid) {
    std::string strText = Box.Text();
    m_oStorage.m_colEventTasks.Item(m_liEvent->Text())->UpdateFromText(strText, nCol);
    ShowEventRow();
  }
  return bValid;
}

bool frmWeather::ValidateWindowEdit(TextBox& Box, std::int32_t nCol) {
  if (m_bFilling) {
    return true;
  }
  if (nCol >= 2 && nCol <= 7 && !NormaliseDate(Box)) {
    return false;
  }
  const Ref<model::clsWWTask> t = m_oStorage.m_colWindowTasks.Item(m_liWindow->Text());
  std::string strText = Box.Text();
  t->UpdateFromText(strText, nCol);
  t->PopulateListItem(m_liWindow);  // shows what was corrected
  ShowWindowRow();
  return true;
}

void frmWeather::SaveEventRows() {
  ActivePlan()->put_AutoRecalculate(false);
  ActivePlan()->get_ChangeMonitor()->put_Enabled(false);
  for (const ListItemRef& row : lstWeather.ListItems()) {
    const Ref<model::clsWeatherTask> t = m_oStorage.m_colEventTasks.Item(row->Text());
    for (std::int32_t j = 1; j <= row->ListSubItems().Count(); ++j) {
      std::string strText = row->ListSubItems().Item(j).Text();
      t->UpdateFromText(strText, j);
    }
    t->UpdateTask();
  }
  ActivePlan()->get_ChangeMonitor()->put_Enabled(true);
  ActivePlan()->put_AutoRecalculate(true);
}

void frmWeather::SaveWindowRows() {
  ActivePlan()->put_AutoRecalculate(false);
  ActivePlan()->get_ChangeMonitor()->put_Enabled(false);
  for (const ListItemRef& row : lstWW.ListItems()) {
    for (std::int32_t j = 1; j <= row->ListSubItems().Count(); ++j) {
      if (!row->Text().empty()) {
        std::string strText = row->ListSubItems().Item(j).Text();
        m_oStorage.m_colWindowTasks.Item(row->Text())->UpdateFromText(strText, j);
      }
    }
  }
  ActivePlan()->put_AutoRecalculate(true);
  ActivePlan()->get_ChangeMonitor()->put_Enabled(true);
}

void frmWeather::SortListColumn(toolkit::ListView& List, std::int32_t nCol, std::int32_t nKind) {
  const bool bKeys = nKind == kSortDate || nKind == kSortNumber;
  if (bKeys) {
    for (const ListItemRef& row : List.ListItems()) {
      toolkit::ListSubItem& cell = row->ListSubItems().Item(nCol - 1);
      std::string strKey = nKind == kSortDate ? DateKey(cell.Text()) : NumberKey(cell.Text());
      cell.SetTag(cell.Text());
      cell.SetText(std::move(strKey));
    }
  }
  List.SetSortKey(nCol - 1);
  List.SetSorted(true);
  List.SetSortOrder(List.SortOrder() == toolkit::SortOrder::kAscending
                        ? toolkit::SortOrder::kDescending
                        : toolkit::SortOrder::kAscending);
  if (bKeys) {
    for (const ListItemRef& row : List.ListItems()) {
      toolkit::ListSubItem& cell = row->ListSubItems().Item(nCol - 1);
      cell.SetText(cell.Tag());
    }
  }
}

}  // namespace nimbrel::dialog
