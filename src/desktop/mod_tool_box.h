#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/directory_search.h"
#include "platform/file_dialog.h"
#include "platform/help_window.h"
#include "platform/message_box.h"
#include "platform/process_start.h"
#include "platform/settings_store.h"
#include "platform/variant.h"
#include "platform/window_system.h"

/// The small services that the rest of the add-in takes from the desktop. All are plain functions
/// that leave nothing behind in this process; the progress tool's state lives in the user's
/// settings.
///
/// All run on the thread of the dialog, and block it while a dialog is up. What they need of the
/// platform is handed in by Wire; a service that is missing raises error 91 at its first use.
namespace nimbrel::modToolBox {

/// What stands behind the functions. Whoever wires them keeps ownership.
struct Services {
  platform::SettingsStore* settings = nullptr;
  platform::ProcessStart* process_start = nullptr;
  platform::WindowSystem* windows = nullptr;
  platform::FileDialog* file_dialog = nullptr;
  platform::HelpWindow* help = nullptr;
  platform::DirectorySearch* directory_search = nullptr;
  platform::MessageBox* message_box = nullptr;
};

/// Puts `services` in place, which must outlive their use; called with {} it takes them away.
void Wire(const Services& services);

/// Starts the progress tool, a program of its own beside the host's, with a text to show for as
/// long as the job runs. The tool gets the text, the thread and the window through the user's
/// settings, which are all written before it starts; nothing waits for it, and a missing tool goes
/// unnoticed. An error in saving a setting goes to the caller.
void StartProgress(const std::string& Label, std::int32_t WndHandle, std::int32_t ThreadID);

/// Lets the progress tool end: tells it, by the settings, that the job no longer runs.
void StopProgress();

/// Whether there is a file at `Path`; a pattern is there if it finds any file, the empty path never
/// is. With `ShowMessage` a missing one is told to the user in a message box.
bool FileExists(const std::string& Path, bool ShowMessage);

/// Lets the user choose a file, and gives its path, or the empty text if he cancelled.
///
/// - `FilterDesc` and `FilterExt` describe the one kind of file that is offered, such as
///   "xls (*.xls;*.xlsx)" and "*.xls;*.xlsx"; without a description all files are.
/// - Of `FileName`, the name that is offered, the first 254 characters are used.
/// - With `SaveMode` it is a name to save under. A path that does not end in "." and `FilterExt`
///   without each "*." (exactly so, a list of patterns too) gets that appended, also the empty path
///   of a dialog that was cancelled.
std::string ShowFileDialog(const std::string& Title, const std::string& InitialDir,
                           const std::string& FilterDesc, const std::string& FilterExt,
                           const std::string& FileName, bool SaveMode);

/// The instance of the program that made a window.
std::int32_t GetWindowInstance(std::int32_t Hwnd);

/// The number of the thread that owns a window.
std::int32_t GetWindowThreadProcessId(std::int32_t Hwnd);

/// Shows a page of the help, such as "C21_WeatherOverview.html", in a window that stands by itself.
void ShowHelpTopic(const std::string& Topic);

/// `Text` with its markers "%x" filled: for each argument in turn its default text takes the place
/// of the first marker that the text then has, one that came in with an argument before it
/// included. Markers left over stay, arguments left over are dropped. Raises error 9 without any
/// argument, and what the argument's conversion raises (see Variant::ToText).
std::string FormatMsg(const std::string& Text, const std::vector<platform::Variant>& Args);

}  // namespace nimbrel::modToolBox
