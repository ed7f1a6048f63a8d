#include "toolkit/win32/win32_desktop.h"

#include <commdlg.h>

#include <algorithm>

#include "platform/runtime_error.h"
#include "toolkit/form.h"
#include "toolkit/win32/form_window.h"
#include "toolkit/win32/screen.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// Code units of the longest path that a file dialog gives.
constexpr std::size_t kLongestPath = 32768;

/// Runs the thread's messages until the form is no longer visible.
void RunMessages(const Form& form, FormWindow& window) {
  MSG message{};
  BOOL got = TRUE;
  while (form.Visible() && (got = ::GetMessageW(&message, nullptr, 0, 0)) > 0) {
    window.Dispatch(message);
  }
  if (got < 0) {
    throw platform::RuntimeError(
        platform::kApplicationDefined,
        "No messages can be had (system error " + std::to_string(::GetLastError()) + ")");
  }
  if (form.Visible()) {
    // The program is being ended: whoever runs the loop around this one has to hear it, too.
    ::PostQuitMessage(static_cast<int>(message.wParam));
  }
}

/// The filter as Windows wants it: name and pattern, each with a NUL behind it, and one more.
std::wstring FilterOf(const FileRequest& request) {
  std::wstring filter = ToWide(request.filter_name) + L'\0' + ToWide(request.pattern) + L'\0';
  return request.pattern.empty() ? std::wstring() : filter;
}

}  // namespace

HWND Win32Desktop::TopWindow() const {
  return windows_.empty() ? owner_ : windows_.back()->Window();
}

void Win32Desktop::RunModal(Form& form) {
  const PerMonitorDpi dpi;
  const VisualStyles styles;
  FormWindow window(form, TopWindow());
  windows_.push_back(&window);
  try {
    window.Show();
    RunMessages(form, window);
  } catch (...) {
    windows_.pop_back();
    throw;
  }
  windows_.pop_back();
  if (form.Visible()) {
    form.Hide();
  }
}

Answer Win32Desktop::ShowMessage(const Message& message) {
  const PerMonitorDpi dpi;
  const VisualStyles styles;
  const bool asks = message.buttons == Buttons::kYesNo;
  // A box that no window owns takes the input from all of the thread's.
  const UINT style = (asks ? MB_YESNO : MB_OK) | MB_TASKMODAL;
  const int button = ::MessageBoxW(TopWindow(), LinesToWide(message.text).c_str(),
                                   ToWide(message.title).c_str(), style);
  if (!asks) {
    return Answer::kOk;
  }
  return button == IDYES ? Answer::kYes : Answer::kNo;
}

std::string Win32Desktop::ShowFileDialog(const FileRequest& request) {
  const PerMonitorDpi dpi;
  const VisualStyles styles;
  const std::wstring title = ToWide(request.title);
  const std::wstring folder = ToWide(request.folder);
  const std::wstring filter = FilterOf(request);
  std::wstring path = ToWide(request.file_name);
  path.resize(kLongestPath);
  OPENFILENAMEW asked{};
  asked.lStructSize = sizeof asked;
  asked.hwndOwner = TopWindow();
  asked.lpstrFilter = filter.empty() ? nullptr : filter.c_str();
  asked.lpstrFile = path.data();
  asked.nMaxFile = static_cast<DWORD>(path.size());
  asked.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
  asked.lpstrTitle = title.empty() ? nullptr : title.c_str();
  asked.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                (request.save ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST);
  const BOOL chosen = request.save ? ::GetSaveFileNameW(&asked) : ::GetOpenFileNameW(&asked);
  return chosen == 0 ? std::string() : FromWide(path.c_str());
}

}  // namespace nimbrel::toolkit::win32
