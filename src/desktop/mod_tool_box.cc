#include "desktop/mod_tool_box.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "host/mod_global.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::modToolBox {

using modGlobal::Application;

namespace {

constexpr std::string_view kApplication = "CorvaneProgress";
constexpr std::string_view kSection = "Options";
constexpr std::string_view kRunning = "Running";

/// Characters that a file dialog's record has room for, without the closing NUL.
constexpr std::size_t kFileRoom = 254;
/// Bytes of the record in the platform's narrow form.
constexpr std::int32_t kRecordSize = 76;
/// What a window's instance is asked for with.
constexpr std::int32_t kInstanceIndex = -6;

Services& TheServices() {
  static Services services;
  return services;
}

template <class Service>
Service& Need(Service* service) {
  if (service == nullptr) {
    platform::RaiseNothing();
  }
  return *service;
}

void SaveOption(std::string_view key, const std::string& value) {
  Need(TheServices().settings).Save(kApplication, kSection, key, value);
}

/// The first `count` characters of a UTF-8 text followed by spaces: always `count` long.
std::string Padded(const std::string& text, std::size_t count) {
  std::string padded(platform::FirstCharacters(text, count));
  const auto characters = static_cast<std::size_t>(std::ranges::count_if(
      padded, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
  return padded.append(count - characters, ' ');
}

std::string Without(std::string text, std::string_view part) {
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
    text.erase(at, part.size());
  }
  return text;
}

std::string TrimSpaces(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? ""
                                    : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string FilterText(const std::string& description, const std::string& pattern) {
  const std::string nul(1, '\0');
  return description.empty() ? "All Files (*.*)" + nul + "*.*" + nul
                             : description + nul + pattern + nul;
}

}  // namespace

void Wire(const Services& services) {
  TheServices() = services;
}

void StartProgress(const std::string& Label, std::int32_t WndHandle, std::int32_t ThreadID) {
  SaveOption(kRunning, "1");
  SaveOption("Label", Label);
  // The tool looks for the thread under this name.
  SaveOption("ParentHwnd", std::to_string(ThreadID));
  SaveOption("WndHandle", std::to_string(WndHandle));
  const std::string file = Application()->get_Path() + "\\Progress.exe";
  Need(TheServices().process_start).ShellExecute(0, "open", file, "0", "0", 0);
}

void StopProgress() {
  SaveOption(kRunning, "0");
}

bool FileExists(const std::string& Path, bool ShowMessage) {
  const bool exists =
      !Path.empty() && !Need(TheServices().directory_search).FindFirst(Path).empty();
  if (ShowMessage && !exists) {
    Need(TheServices().message_box)
        .Show(FormatMsg("The file '%x' does not exist.", {Path}), "Weather Modeling");
  }
  return exists;
}

std::string ShowFileDialog(const std::string& Title, const std::string& InitialDir,
                           const std::string& FilterDesc, const std::string& FilterExt,
                           const std::string& FileName, bool SaveMode) {
  platform::FileDialogRecord record;
  record.lStructSize = kRecordSize;
  record.hwndOwner = Need(TheServices().windows).GetActiveWindow();
  record.hInstance = GetWindowInstance(record.hwndOwner);
  record.lpstrFilter = FilterText(FilterDesc, FilterExt);
  record.lpstrFile = Padded(FileName, kFileRoom);
  record.nMaxFile = kFileRoom + 1;
  record.lpstrFileTitle = std::string(kFileRoom, ' ');
  record.nMaxFileTitle = kFileRoom + 1;
  record.lpstrInitialDir = InitialDir;
  record.lpstrTitle = Title;

  platform::FileDialog& dialog = Need(TheServices().file_dialog);
  const std::int32_t answer =
      SaveMode ? dialog.GetSaveFileName(record) : dialog.GetOpenFileName(record);
  std::string path;
  if (answer != 0) {
    path = TrimSpaces(Without(std::move(record.lpstrFile), std::string_view("\0", 1)));
  }
  if (SaveMode) {
    const std::string extension = "." + Without(FilterExt, "*.");
    if (!path.ends_with(extension)) {
      path += extension;
    }
  }
  return path;
}

std::int32_t GetWindowInstance(std::int32_t Hwnd) {
  return Need(TheServices().windows).GetWindowLong(Hwnd, kInstanceIndex);
}

std::int32_t GetWindowThreadProcessId(std::int32_t Hwnd) {
  return Need(TheServices().windows).GetWindowThread(Hwnd);
}

void ShowHelpTopic(const std::string& Topic) {
  const std::string file = Application()->get_Path() + "\\Help.chm::/" + Topic;
  Need(TheServices().help).HtmlHelp(0, file, 0, 0);
}

std::string FormatMsg(const std::string& Text, const std::vector<platform::Variant>& Args) {
  if (Args.empty()) {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange, "Subscript out of range");
  }
  constexpr std::string_view kMarker = "%x";
  std::string message = Text;
  for (const platform::Variant& argument : Args) {
    const std::string value = argument.ToText(modGlobal::Locale());
    const std::size_t at = message.find(kMarker);
    if (at != std::string::npos) {
      message.replace(at, kMarker.size(), value);
    }
  }
  return message;
}

}  // namespace nimbrel::modToolBox
