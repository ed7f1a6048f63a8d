#pragma once

#include <string>
#include <vector>

#include "dialog/frm_weather.h"
#include "exchange/mod_import_export.h"
#include "platform/variant.h"
#include "toolkit/desktop.h"

namespace nimbrel::dialog {

/// What the buttons that carry weather data to and from workbooks do. They reach workbooks through
/// modExcel and modImportExport, which must be wired. An error of the automation, of the host or of
/// a conversion goes to the caller: nothing of what was done until then is taken back.
WeatherSeams WorkbookButtons();

/// Writes every weather calendar on show in `form` into a new workbook, a sheet each, and leaves it
/// to the user, unsaved in a visible Excel. The plan stays as it is. The result is empty.
platform::Variant ExportCalendars(frmWeather& form);

/// Puts a workbook of the user's choice in the place of all weather data of the plan: each sheet
/// becomes a calendar of its name. Makes the plan a weather plan, whatever comes of the import.
/// Until it has ended the edit boxes take no notice of the lists; an error leaves that so.
void cmdImport_Click(frmWeather& form);

/// Put one sheet of a workbook of the user's choice in the place of the periods, or the windows, of
/// the selected calendar, as new tasks. The sheet's name does not matter.
void cmdImportWeather_Click(frmWeather& form);
void cmdImportWW_Click(frmWeather& form);

/// Shows the sheets in frmImport and gives what the user chose: the way from modImportExport up to
/// the dialogs. `desktop` shows the form.
modImportExport::SheetChoice ChooseSheet(toolkit::Desktop& desktop,
                                         const std::vector<modImportExport::ListedSheet>& sheets,
                                         const std::string& DataType);

}  // namespace nimbrel::dialog
