#pragma once

#include <string>
#include <vector>

#include "exchange/mod_import_export.h"
#include "toolkit/desktop.h"

namespace nimbrel::dialog {

/// Shows the sheets in frmImport and gives what the user chose: the way from modImportExport up to
/// the dialogs. `desktop` shows the form.
modImportExport::SheetChoice ChooseSheet(toolkit::Desktop& desktop,
                                         const std::vector<modImportExport::ListedSheet>& sheets,
                                         const std::string& DataType);

}  // namespace nimbrel::dialog
