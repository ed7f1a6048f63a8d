#include <QApplication>
#include <cstdlib>

#include "display/display.h"
#include "platform/posix/ini_settings_store.h"
#include "progress/progress_job.h"
#include "progress/progress_window.h"

/// The progress tool: what it shows, and for how long, stands in the user's settings. It says
/// nothing and gives no code: nobody waits for it.
int main(int argc, char** argv) {
  using namespace nimbrel;
  const platform::IniSettingsStore settings(
      platform::UserSettingsFile([](const char* name) { return std::getenv(name); }));
  const progress::ProgressJob job(settings);
  if (!job.Runs() || !display::CanShowWindows()) {
    return 0;
  }
  const QApplication application(argc, argv);
  progress::ProgressWindow window(job);
  if (job.Runs()) {
    window.show();
    QApplication::exec();
  }
  return 0;
}
