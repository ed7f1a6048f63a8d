#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/cls_weather_task.h"
#include "model/cls_ww_task.h"
#include "platform/automation.h"
#include "platform/collection.h"
#include "platform/message_box.h"
#include "platform/ref.h"
#include "platform/variant.h"
#include "toolkit/list_view.h"

/// Weather data on the sheets of workbooks: one sheet a calendar, whose cell A3 says of which kind
/// it is, with a row for each period or window from row 6 on.
///
/// Errors of the automation, and of conversions, go to the caller: what was done until then stays,
/// a workbook that was opened stays open and hidden.
namespace nimbrel::modImportExport {

using platform::AutomationObject;
using platform::Ref;

/// The kinds of data that a user can ask an import for. What the sheets say is compared with them
/// without regard to case.
inline constexpr const char* kEventData = "Weather-Events";
inline constexpr const char* kWindowData = "Weather-windows";

/// A sheet that the user may choose.
struct ListedSheet {
  std::string key;   ///< the name with a "k" behind it
  std::string name;  ///< the sheet's name
  std::string kind;  ///< the text of its cell A3
};

/// What the user chose.
struct SheetChoice {
  bool m_bOk = false;
  std::string m_strSelCal{};  ///< the sheet's name
};

/// What stands behind the functions. Whoever wires them keeps ownership of what is pointed at.
struct Services {
  platform::MessageBox* message_box = nullptr;
  /// Asks which of the sheets, in the workbook's order, to read as data of kind `DataType`.
  std::function<SheetChoice(const std::vector<ListedSheet>& sheets, const std::string& DataType)>
      choose_sheet{};
};

/// Puts `services` in place; called with {} it takes them away. What is missing raises error 91 at
/// its first use.
void Wire(Services services);

/// Write a calendar's title, header and rows onto an empty sheet, and name the sheet after it. Of
/// `Tasks`, those whose calendar has exactly the name `CalName` get a row, in the collection's
/// order. Need the column letters and the header captions to be filled. The results are empty.
platform::Variant ExportEventSheet(const Ref<AutomationObject>& Sheet,
                                   const platform::Collection<Ref<model::clsWeatherTask>>& Tasks,
                                   const std::string& CalName);
platform::Variant ExportWindowSheet(const Ref<AutomationObject>& Sheet,
                                    const platform::Collection<Ref<model::clsWWTask>>& Tasks,
                                    const std::string& CalName);

/// Lets the user choose a workbook, and gives its path; empty if he cancelled, or chose one that
/// does not exist and was told so.
std::string ChooseWorkbook();

/// The text of a sheet's cell A3, which says what kind of data is on it.
std::string ReadMarker(const Ref<AutomationObject>& Sheet);

/// Fill the list with the rows of a sheet, as texts; what was in it is gone. Dates become texts as
/// "dd/mmm/yyyy", and so does whatever else reads as a date or a number; any other text stays as it
/// is. Reading ends at the third row in all, counted from row 6, whose test cell is empty: that is
/// column B on a sheet of events, column C on a sheet of windows. Rows with an empty test cell are
/// left out. Raise error 13 for a probability that is no number. The results mean nothing.
bool ReadEventRows(const Ref<AutomationObject>& Sheet, toolkit::ListView& List);
bool ReadWindowRows(const Ref<AutomationObject>& Sheet, toolkit::ListView& List);

/// Closes the workbook unsaved, quits Excel, lets both go, and tells the user that the import is
/// complete.
void EndImport(Ref<AutomationObject>& Workbook, Ref<AutomationObject>& Excel);

/// Lets the user choose a workbook and a sheet of it, and reads that into the list, which is empty
/// in any other case. `DataType` is kEventData or kWindowData. True if a sheet was read.
///
/// A user who does not choose a sheet is told that the import is complete, too.
bool ImportCalendarSheet(toolkit::ListView& List, const std::string& DataType);

}  // namespace nimbrel::modImportExport
