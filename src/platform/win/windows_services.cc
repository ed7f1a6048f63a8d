#include "platform/win/windows_services.h"

#include <algorithm>
#include <optional>

#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

HWND WindowOf(std::int32_t handle) {
  return reinterpret_cast<HWND>(static_cast<std::intptr_t>(handle));
}

std::int32_t HandleOf(HWND window) {
  return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(window));
}

/// The texts of a file dialog's record in the system's code page, for as long as a call lasts. An
/// empty text is a null pointer, unless there is room to write to.
class NarrowText {
 public:
  explicit NarrowText(const std::string& text, std::int32_t room = 0) : text_(ToNarrow(text)) {
    if (room > 0) {
      // The text ends where the room does, with the closing NUL in it.
      text_.resize(static_cast<std::size_t>(room) - 1);
    }
  }
  char* data() { return text_.empty() ? nullptr : text_.data(); }
  /// What stands there now, up to its full length: the call may have left a shorter text behind a
  /// NUL.
  std::string Text() const { return FromNarrow(text_); }

 private:
  std::string text_;
};

/// The size of the record that has the fields up to lpTemplateName: 76 bytes in 32-bit Windows.
DWORD SizeOf(std::int32_t asked) {
  constexpr std::int32_t kAsked = 76;
  return asked == kAsked ? OPENFILENAME_SIZE_VERSION_400A : static_cast<DWORD>(asked);
}

std::int32_t Show(FileDialogRecord& record, BOOL(WINAPI* function)(OPENFILENAMEA*)) {
  NarrowText filter(record.lpstrFilter);
  NarrowText custom(record.lpstrCustomFilter);
  NarrowText file(record.lpstrFile, record.nMaxFile);
  NarrowText title_of_file(record.lpstrFileTitle, record.nMaxFileTitle);
  NarrowText folder(record.lpstrInitialDir);
  NarrowText title(record.lpstrTitle);
  NarrowText extension(record.lpstrDefExt);
  NarrowText name(record.lpTemplateName);
  OPENFILENAMEA asked = {};
  asked.lStructSize = SizeOf(record.lStructSize);
  asked.hwndOwner = WindowOf(record.hwndOwner);
  asked.hInstance = reinterpret_cast<HINSTANCE>(static_cast<std::intptr_t>(record.hInstance));
  asked.lpstrFilter = filter.data();
  asked.lpstrCustomFilter = custom.data();
  asked.nMaxCustFilter = static_cast<DWORD>(record.nMaxCustFilter);
  asked.nFilterIndex = static_cast<DWORD>(record.nFilterIndex);
  asked.lpstrFile = file.data();
  asked.nMaxFile = static_cast<DWORD>(record.nMaxFile);
  asked.lpstrFileTitle = title_of_file.data();
  asked.nMaxFileTitle = static_cast<DWORD>(record.nMaxFileTitle);
  asked.lpstrInitialDir = folder.data();
  asked.lpstrTitle = title.data();
  asked.Flags = static_cast<DWORD>(record.Flags);
  asked.lpstrDefExt = extension.data();
  asked.lpTemplateName = name.data();
  const BOOL chosen = function(&asked);
  if (chosen != FALSE) {
    record.lpstrFile = file.Text();
    record.lpstrFileTitle = title_of_file.Text();
    record.nFilterIndex = static_cast<std::int32_t>(asked.nFilterIndex);
    record.nFileOffset = static_cast<std::int16_t>(asked.nFileOffset);
    record.nFileExtension = static_cast<std::int16_t>(asked.nFileExtension);
  }
  return chosen;
}

/// The path of a file of Windows: by its name alone the program's own folder would come first.
std::wstring SystemFile(const std::wstring& name) {
  wchar_t folder[MAX_PATH] = {};
  GetSystemDirectoryW(folder, MAX_PATH);
  return std::wstring(folder) + L"\\" + name;
}

}  // namespace

std::int32_t WindowsProcessStart::ShellExecute(std::int32_t owner, const std::string& verb,
                                               const std::string& file,
                                               const std::string& parameters,
                                               const std::string& directory, std::int32_t show) {
  const HINSTANCE result =
      ShellExecuteA(WindowOf(owner), ToNarrow(verb).c_str(), ToNarrow(file).c_str(),
                    ToNarrow(parameters).c_str(), ToNarrow(directory).c_str(), show);
  return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(result));
}

std::int32_t WindowsWindows::GetActiveWindow() {
  return HandleOf(::GetActiveWindow());
}

std::int32_t WindowsWindows::GetWindowLong(std::int32_t window, std::int32_t index) {
  return GetWindowLongA(WindowOf(window), index);
}

std::int32_t WindowsWindows::GetWindowThread(std::int32_t window) {
  return static_cast<std::int32_t>(GetWindowThreadProcessId(WindowOf(window), nullptr));
}

std::int32_t WindowsFileDialog::GetOpenFileName(FileDialogRecord& record) {
  return Show(record, GetOpenFileNameA);
}

std::int32_t WindowsFileDialog::GetSaveFileName(FileDialogRecord& record) {
  return Show(record, GetSaveFileNameA);
}

void WindowsHelp::HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                           std::int32_t data) {
  using Function = HWND(WINAPI*)(HWND, const char*, UINT, DWORD_PTR);
  // Stays loaded: the window of help lives on when the dialog has closed.
  static const HMODULE viewer = LoadLibraryW(SystemFile(L"hhctrl.ocx").c_str());
  const FARPROC found = viewer == nullptr ? nullptr : GetProcAddress(viewer, "HtmlHelpA");
  if (found != nullptr) {
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(found));
    function(WindowOf(owner), ToNarrow(file).c_str(), static_cast<UINT>(command),
             static_cast<DWORD_PTR>(data));
  }
}

std::string WindowsDirectorySearch::FindFirst(const std::string& pattern) {
  constexpr DWORD kSpecial =
      FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW(ToWide(pattern).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return "";
  }
  std::string name;
  bool more = true;
  while (name.empty() && more) {
    if ((found.dwFileAttributes & kSpecial) == 0) {
      name = ToUtf8(found.cFileName);
    }
    more = FindNextFileW(search, &found) != FALSE;
  }
  FindClose(search);
  return name;
}

}  // namespace nimbrel::platform
