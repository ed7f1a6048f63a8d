#include "toolkit/win32/pane.h"

#include <optional>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/control_face.h"

namespace nimbrel::toolkit::win32 {
namespace {

constexpr wchar_t kClass[] = L"NimbrelPane";

}  // namespace

PaneClass::PaneClass() {
  WNDCLASSEXW made{};
  made.cbSize = sizeof made;
  made.lpfnWndProc = Pane::Procedure;
  made.hInstance = OwnModule();
  made.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  made.lpszClassName = kClass;
  ::RegisterClassExW(&made);  // fails if it is there already
}

PaneClass::~PaneClass() {
  ::UnregisterClassW(kClass, OwnModule());  // fails while there are windows of it
}

Pane::Pane(FaceHost& host, HWND parent, bool on_page)
    : host_(host),
      on_page_(on_page),
      window_(Made(::CreateWindowExW(WS_EX_CONTROLPARENT, kClass, L"",
                                     WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0,
                                     0, 0, 0, parent, nullptr, OwnModule(), nullptr))) {
  ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

Pane::~Pane() {
  if (window_ != nullptr) {
    ::SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
  }
}

LRESULT CALLBACK Pane::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  auto* const pane = reinterpret_cast<Pane*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (pane == nullptr) {
    return ::DefWindowProcW(window, message, w, l);
  }
  if (message == WM_NCDESTROY) {
    pane->window_ = nullptr;
    return ::DefWindowProcW(window, message, w, l);
  }
  try {
    return pane->Handle(message, w, l);
  } catch (...) {
    pane->host_.Keep(std::current_exception());
    return 0;
  }
}

LRESULT Pane::Handle(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_COMMAND:
      if (ControlFace* const face = FaceOf(reinterpret_cast<HWND>(l)); face != nullptr) {
        face->OnCommand(HIWORD(w));
        return 0;
      }
      break;
    case WM_NOTIFY: {
      auto& header = *reinterpret_cast<NMHDR*>(l);
      ControlFace* const face = FaceOf(header.hwndFrom);
      const auto answer = face == nullptr ? std::nullopt : face->OnNotify(header);
      if (answer) {
        return *answer;
      }
      break;
    }
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      return Color(message, reinterpret_cast<HDC>(w), reinterpret_cast<HWND>(l));
    case WM_ERASEBKGND:
    case WM_PRINTCLIENT: {
      RECT all{};
      ::GetClientRect(window_, &all);
      ::FillRect(reinterpret_cast<HDC>(w), &all, host_.GroundBrush(on_page_));
      return 1;
    }
    default:
      break;
  }
  return ::DefWindowProcW(window_, message, w, l);
}

LRESULT Pane::Color(UINT message, HDC context, HWND control) {
  const ControlFace* const face = FaceOf(control);
  const bool is_box = face != nullptr && (face->GetControl().Kind() == ControlKind::kTextBox ||
                                          face->GetControl().Kind() == ControlKind::kComboBox);
  if (is_box) {  // one that is disabled
    return ::DefWindowProcW(window_, message, reinterpret_cast<WPARAM>(context),
                            reinterpret_cast<LPARAM>(control));
  }
  ::SetBkColor(context, host_.Ground(on_page_));
  ::SetTextColor(context, ::GetSysColor(COLOR_BTNTEXT));
  return reinterpret_cast<LRESULT>(host_.GroundBrush(on_page_));
}

}  // namespace nimbrel::toolkit::win32
