#include "dialog/choose_sheet.h"

#include "dialog/frm_import.h"

namespace nimbrel::dialog {

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
