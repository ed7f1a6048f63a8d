#include "toolkit/win32/control_face.h"

#include <algorithm>
#include <array>

namespace nimbrel::toolkit::win32 {
namespace {

/// Under these names a window keeps its face and the procedure that it had before.
constexpr wchar_t kFace[] = L"NimbrelFace";
constexpr wchar_t kProcedure[] = L"NimbrelProcedure";

/// The bit of a key's message that says that the key was down before.
constexpr LPARAM kWasDown = LPARAM{1} << 30;

/// Keys that go on coming while they are held down, and mean something new each time.
bool Repeats(Key key) {
  return key != Key::kEnter && key != Key::kEscape;
}

WNDPROC ProcedureOf(HWND window) {
  return reinterpret_cast<WNDPROC>(reinterpret_cast<void*>(::GetPropW(window, kProcedure)));
}

}  // namespace

bool IsHeld(int code) {
  return ::GetKeyState(code) < 0;
}

std::optional<Key> KeyOf(WPARAM code) {
  constexpr std::array kKeys = {Key::kBackspace, Key::kTab,   Key::kEnter, Key::kEscape,
                                Key::kSpace,     Key::kEnd,   Key::kHome,  Key::kLeft,
                                Key::kUp,        Key::kRight, Key::kDown,  Key::kDelete};
  const auto key = static_cast<Key>(code);
  const bool is_command = IsHeld(VK_CONTROL) || IsHeld(VK_MENU);
  const bool is_known = std::find(kKeys.begin(), kKeys.end(), key) != kKeys.end();
  return is_known && !is_command ? std::optional(key) : std::nullopt;
}

ControlFace* FaceOf(HWND window) {
  return static_cast<ControlFace*>(::GetPropW(window, kFace));
}

ControlFace::~ControlFace() {
  if (window_ != nullptr) {
    ::DestroyWindow(window_);
  }
}

void ControlFace::Make(const wchar_t* window_class, DWORD style, DWORD ex_style, HWND pane) {
  window_ = Made(::CreateWindowExW(ex_style, window_class, L"", style | WS_CHILD | WS_CLIPSIBLINGS,
                                   0, 0, 0, 0, pane, nullptr, OwnModule(), nullptr));
  Watch(window_);
  ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(look().font()), 0);
}

void ControlFace::Watch(HWND window) {
  const LONG_PTR before = ::SetWindowLongPtrW(
      window, GWLP_WNDPROC,
      reinterpret_cast<LONG_PTR>(reinterpret_cast<void*>(&ControlFace::Procedure)));
  ::SetPropW(window, kProcedure, reinterpret_cast<HANDLE>(before));
  ::SetPropW(window, kFace, this);
}

LRESULT CALLBACK ControlFace::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  ControlFace* const face = FaceOf(window);
  if (message == WM_NCDESTROY) {
    const WNDPROC own = ProcedureOf(window);
    if (window == face->window_) {
      face->window_ = nullptr;
    }
    ::RemovePropW(window, kFace);
    ::RemovePropW(window, kProcedure);
    return ::CallWindowProcW(own, window, message, w, l);
  }
  try {
    return face->Handle(window, message, w, l);
  } catch (...) {
    face->host_.Keep(std::current_exception());
    return 0;
  }
}

LRESULT ControlFace::Own(HWND window, UINT message, WPARAM w, LPARAM l) {
  return ::CallWindowProcW(ProcedureOf(window), window, message, w, l);
}

LRESULT ControlFace::Handle(HWND window, UINT message, WPARAM w, LPARAM l) {
  const std::optional<LRESULT> answer = OnMessage(window, message, w, l);
  return answer ? *answer : Own(window, message, w, l);
}

std::optional<LRESULT> ControlFace::OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_GETDLGCODE:
      return Own(window, message, w, l) | DLGC_WANTALLKEYS;
    case WM_KEYDOWN:
      if (w == VK_TAB && IsHeld(VK_CONTROL) && host_.TurnPage(window, IsHeld(VK_SHIFT))) {
        return 0;
      }
      return OnKeyDown(w, (l & kWasDown) != 0) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_SETFOCUS: {
      const LRESULT answer = Own(window, message, w, l);
      OnFocus(window);
      return answer;
    }
    default:
      return std::nullopt;
  }
}

bool ControlFace::OnKeyDown(WPARAM code, bool repeated) {
  const std::optional<Key> key = KeyOf(code);
  if (key && (Repeats(*key) || !repeated)) {
    Do([&] { control_.UserKey(*key, IsHeld(VK_SHIFT)); });
  }
  return key.has_value();
}

void ControlFace::OnFocus(HWND window) {
  if (control_.HasFocus()) {
    return;
  }
  // The window got the focus otherwise than from the toolkit, such as by a screen reader. Later,
  // since Windows also moves the focus on its own for a moment, when a window goes.
  host_.Defer([this, window] {
    if (::GetFocus() == window && !control_.HasFocus()) {
      Do([this] { control_.UserFocus(); });
    }
  });
}

void ControlFace::Refresh(const Changes& changes) {
  Paint(changes);
}

void ControlFace::RefreshState() const {
  if ((::IsWindowEnabled(window_) != 0) != control_.IsUsable()) {
    ::EnableWindow(window_, control_.IsUsable() ? TRUE : FALSE);
  }
  const bool shown = (::GetWindowLongPtrW(window_, GWL_STYLE) & WS_VISIBLE) != 0;
  if (shown != control_.Visible()) {
    ::ShowWindow(window_, control_.Visible() ? SW_SHOWNA : SW_HIDE);
  }
}

void ControlFace::TakeLook() {
  ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(look().font()), TRUE);
}

void ControlFace::TakeBounds(const RECT& bounds) const {
  ::SetWindowPos(window_, nullptr, bounds.left, bounds.top, bounds.right - bounds.left,
                 bounds.bottom - bounds.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace nimbrel::toolkit::win32
