#include "dialog/frm_import.h"

#include "dialog/message_title.h"
#include "platform/text.h"

namespace nimbrel::dialog {

frmImport::frmImport(toolkit::Desktop& desktop)
    : Form(desktop, "frmImport", "Import Calendars From Excel", 7200, 4590) {
  lstCals.SetAccessibleName("Calendars of the workbook");
  lstCals.ColumnHeaders().Add("Calendar", 4200);
  lstCals.ColumnHeaders().Add("Type of data", 2400);
  cmdOK.SetDefault(true);
  cmdCancel.SetCancel(true);
  lstCals.DblClick = [this] { cmdOK_Click(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmImport::cmdOK_Click() {
  m_bOk = true;
  m_strSelCal = lstCals.SelectedItem()->Text();
  const std::string strKind = lstCals.SelectedItem()->SubItems(1);
  if (platform::UpperCase(strKind) == platform::UpperCase(m_strDataType)) {
    Hide();
    return;
  }
  OwnerDesktop().Show(m_strDataType == "Weather-windows"
                          ? "You can't import weather-period data into a weather window calendar!"
                          : "You can't import weather-windows data into a weather period calendar!",
                      kMessageTitle);
}

void frmImport::cmdCancel_Click() {
  m_bOk = false;
  Hide();
  Unload();
}

}  // namespace nimbrel::dialog
