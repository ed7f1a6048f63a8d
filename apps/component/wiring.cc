#include "wiring.h"

#include <string>
#include <utility>
#include <vector>

#include "com/host_application.h"
#include "desktop/mod_tool_box.h"
#include "dialog/choose_sheet.h"
#include "dialog/frm_weather.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "host/mod_global.h"
#include "platform/win/registry_settings_store.h"
#include "platform/win/user_locale.h"
#include "platform/win/windows_services.h"
#include "servers.h"
#include "simulation/mod_weather_events.h"
#include "toolkit/win32/win32_desktop.h"

namespace nimbrel::component {
namespace {

/// What the add-in takes from Windows.
struct Services {
  platform::RegistrySettingsStore settings;
  platform::WindowsProcessStart process_start;
  platform::WindowsWindows windows;
  platform::WindowsFileDialog file_dialog;
  platform::WindowsHelp help;
  platform::WindowsDirectorySearch directory_search;
  toolkit::win32::Win32Desktop desktop;
};

}  // namespace

host::Seams Wire() {
  static Services services;
  toolkit::Desktop& desktop = services.desktop;
  modGlobal::Wire({.create_application = [] { return com::CreateHostApplication(); },
                   .locale = platform::UserLocale()});
  modToolBox::Wire({&services.settings, &services.process_start, &services.windows,
                    &services.file_dialog, &services.help, &services.directory_search, &desktop});
  modExcel::Wire({&Servers(desktop), &desktop, NIMBREL_SUPPORT_ADDRESS});
  modImportExport::Wire(
      {&desktop, [&desktop](const std::vector<modImportExport::ListedSheet>& sheets,
                            const std::string& DataType) {
         return dialog::ChooseSheet(desktop, sheets, DataType);
       }});

  host::Seams seams;
  seams.handlers = {modWeatherEvents::BeforeRiskAnalysis, modWeatherEvents::BeforeRiskIteration,
                    modWeatherEvents::AfterRiskIteration, modWeatherEvents::AfterRiskAnalysis};
  seams.message_box = &desktop;
  seams.ShowWeatherDialog = [&desktop] { dialog::ShowWeatherDialog(desktop); };
  return seams;
}

}  // namespace nimbrel::component
