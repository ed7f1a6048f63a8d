#include <QApplication>
#include <QWidget>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

#include "desk/desk_program.h"
#include "desk/desk_services.h"
#include "desk/weather_desk.h"
#include "display/display.h"
#include "nimbrel/wiring.h"
#include "platform/posix/program_folder.h"
#include "toolkit/qt/qt_desktop.h"

namespace {

using namespace nimbrel;

std::int32_t ActiveWindow() {
  const QWidget* window = QApplication::activeWindow();
  return window == nullptr ? 0 : static_cast<std::int32_t>(window->winId());
}

cli::ExitCode EditWeather(const std::string& path, int& argc, char** argv, cli::Console& console) {
  if (!display::CanShowWindows()) {
    throw cli::FileTrouble(
        "no display: a window needs a desktop session, or DISPLAY set to an X server");
  }
  const QApplication application(argc, argv);
  toolkit::qt::QtDesktop desktop;
  engine::HostOptions options = cli::MakeHostOptions();
  options.path = platform::ProgramFolder();
  options.window = ActiveWindow;
  const desk::DeskServices services(desktop, options.path, ActiveWindow);

  desk::WeatherDesk desk(desktop, options, desk::WeatherDialogOn(desktop), console);
  return desk.Run(path);
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  cli::Console console{std::cout, std::cerr, {}};
  return desk::RunDeskProgram(
      std::vector<std::string>(argv + 1, argv + argc), console,
      [&](const std::string& path) { return EditWeather(path, argc, argv, console); });
}
