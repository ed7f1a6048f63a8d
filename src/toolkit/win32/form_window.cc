#include "toolkit/win32/form_window.h"

#include <uxtheme.h>
#include <vssym32.h>

#include <algorithm>
#include <utility>

#include "toolkit/accessible_name.h"
#include "toolkit/visit_control.h"
#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

constexpr wchar_t kClass[] = L"NimbrelForm";
constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN;
constexpr DWORD kExtendedStyle = WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME;
/// The share of the screen that a window takes at the most, in percent.
constexpr int kShareOfScreen = 95;

/// Messages that the window posts to itself.
constexpr UINT kFlush = WM_APP + 1;
constexpr UINT kRunDeferred = WM_APP + 2;

void MakeClass(WNDPROC procedure) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES |
                                                     ICC_TAB_CLASSES | ICC_STANDARD_CLASSES};
  ::InitCommonControlsEx(&controls);
  WNDCLASSEXW made{};
  made.cbSize = sizeof made;
  made.lpfnWndProc = procedure;
  made.hInstance = OwnModule();
  made.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  made.lpszClassName = kClass;
  ::RegisterClassExW(&made);  // fails if it is there already
}

/// The part of the screen of a window that windows may cover; of the first screen for null.
RECT WorkArea(HWND window) {
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  const DWORD otherwise = window == nullptr ? MONITOR_DEFAULTTOPRIMARY : MONITOR_DEFAULTTONEAREST;
  ::GetMonitorInfoW(::MonitorFromWindow(window, otherwise), &screen);
  return screen.rcWork;
}

/// The window whose screen the next one opens on: the thread's active one, else the user's.
HWND ActiveWindow() {
  const HWND own = ::GetActiveWindow();
  return own == nullptr ? ::GetForegroundWindow() : own;
}

/// What the style of the desktop has behind the controls of a page.
COLORREF PageColor(HWND window) {
  COLORREF color = ::GetSysColor(COLOR_BTNFACE);
  if (const HTHEME theme = ::OpenThemeData(window, L"TAB"); theme != nullptr) {
    ::GetThemeColor(theme, TABP_BODY, 0, TMT_FILLCOLORHINT, &color);
    ::CloseThemeData(theme);
  }
  return color;
}

int Middle(int from, int to, int size) {
  return std::max(from + (to - from - size) / 2, from);
}

}  // namespace

FormWindow::FormWindow(Form& form, HWND owner, Unmade /*unmade*/)
    : form_(form),
      owner_(owner),
      bands_(TwipsBands::AreaOf(form, form.Width(), form.Height(), true)) {}

// From here on the object is whole, so that the destructor clears away what a failure leaves.
FormWindow::FormWindow(Form& form, HWND owner) : FormWindow(form, owner, Unmade{}) {
  MakeClass(&FormWindow::Procedure);
  window_ =
      Made(::CreateWindowExW(kExtendedStyle, kClass, L"", kStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                             CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, OwnModule(), nullptr));
  look_ = std::make_unique<Look>(DpiOf(window_));
  TakeGrounds();
  content_ = std::make_unique<Pane>(static_cast<FaceHost&>(*this), window_, false);
  FillPane(form, *content_, bands_);
  ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  // Also after a click it is seen where the keys go.
  ::SendMessageW(window_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
  form_.SetObserver(this);
  Flush();
  FitToScreen();
}

FormWindow::~FormWindow() {
  form_.SetObserver(nullptr);
  // Before the window goes: else Windows would make some other one active.
  std::for_each(blocked_.begin(), blocked_.end(),
                [](HWND window) { ::EnableWindow(window, TRUE); });
  names_.Clear();
  if (window_ != nullptr) {
    ::SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    ::DestroyWindow(window_);
  }
  faces_.clear();
  ::UnregisterClassW(kClass, OwnModule());  // fails while there are others
  ::DeleteObject(grounds_.form_brush);
  ::DeleteObject(grounds_.page_brush);
}

void FormWindow::Show() {
  if (owner_ != nullptr) {
    Block(owner_);
  } else {
    ::EnumThreadWindows(::GetCurrentThreadId(), BlockOne, reinterpret_cast<LPARAM>(this));
  }
  ::ShowWindow(window_, SW_SHOW);
  ::SetActiveWindow(window_);
  ::SetForegroundWindow(window_);
  Flush();
  PlaceFocus();
}

BOOL CALLBACK FormWindow::BlockOne(HWND window, LPARAM form) {
  reinterpret_cast<FormWindow*>(form)->Block(window);
  return TRUE;
}

void FormWindow::Block(HWND window) {
  if (window != window_ && ::IsWindowVisible(window) != 0 && ::IsWindowEnabled(window) != 0) {
    ::EnableWindow(window, FALSE);
    blocked_.push_back(window);
  }
}

bool FormWindow::FillPane(const Container& container, const Pane& pane, TwipsBands& bands) {
  bool stretches = false;
  for (Control* const control : container.Controls()) {
    stretches = AddFace(*control, pane, bands) || stretches;
  }
  return stretches;
}

bool FormWindow::AddFace(Control& control, const Pane& pane, TwipsBands& bands) {
  auto made = VisitControl<std::unique_ptr<ControlFace>>(
      control, [&](auto& own) { return MakeFace(own, *this, pane); });
  ControlFace& face = *made;
  faces_.emplace(&control, Entry{std::move(made), Changes::All()});
  names_.Name(face.FocusWindow(), ToWide(AccessibleNameOf(control)));
  if (auto* const around = dynamic_cast<ContainerFace*>(&face); around != nullptr) {
    bool stretches = false;
    for (ContainerFace::Group& group : around->groups()) {
      stretches = FillPane(group.container, *group.pane, group.bands) || stretches;
    }
    if (stretches) {
      around->SetStretches();
    }
  }
  bands.Add(face);
  return face.Stretches();
}

void FormWindow::OnControlChanged(Control& control, Property property) {
  if (const auto found = faces_.find(&control); found != faces_.end()) {
    found->second.changes.Add(property);
    ScheduleFlush();
  }
}

void FormWindow::OnFormChanged() {
  ScheduleFlush();
}

void FormWindow::ScheduleFlush() {
  if (!flush_is_due_) {
    flush_is_due_ = true;
    ::PostMessageW(window_, kFlush, 0, 0);
  }
}

void FormWindow::Defer(std::function<void()> action) {
  deferred_.push_back(std::move(action));
  ::PostMessageW(window_, kRunDeferred, 0, 0);
}

void FormWindow::RunDeferred() {
  if (!deferred_.empty()) {
    const std::function<void()> action = std::move(deferred_.front());
    deferred_.pop_front();
    action();
  }
}

void FormWindow::Keep(std::exception_ptr error) noexcept {
  error_ = std::move(error);
  ::PostMessageW(window_, WM_NULL, 0, 0);
}

void FormWindow::Dispatch(const MSG& message) {
  ::TranslateMessage(&message);
  ::DispatchMessageW(&message);
  if (error_ != nullptr) {
    std::rethrow_exception(std::exchange(error_, nullptr));
  }
}

void FormWindow::Flush() {
  flush_is_due_ = false;
  if (const std::wstring caption = ToWide(form_.Caption()); TextOf(window_) != caption) {
    ::SetWindowTextW(window_, caption.c_str());
  }
  bool focus = false;
  bool states = false;
  bool places = false;
  for (Control* const control : form_.AllControls()) {
    const auto found = faces_.find(control);
    if (found == faces_.end()) {
      continue;
    }
    const Changes changes = std::exchange(found->second.changes, Changes());
    if (changes.Any()) {
      found->second.face->Refresh(changes);
      focus = focus || changes.Has(Property::kFocus);
      places = places || changes.Has(Property::kPlace) || changes.Has(Property::kVisible);
      states = states || changes.Has(Property::kEnabled) || changes.Has(Property::kVisible);
    }
  }
  if (states) {
    for (const auto& [control, entry] : faces_) {
      entry.face->RefreshState();
    }
  }
  if (places) {
    Arrange();
  }
  if (focus || ::IsChild(window_, ::GetFocus()) == 0) {
    PlaceFocus();
  }
}

void FormWindow::PlaceFocus() {
  // Behind a message box the focus is the box's.
  if (::GetActiveWindow() != window_ || !form_.Visible()) {
    return;
  }
  const Control* const active = form_.ActiveControl();
  const HWND target = active == nullptr ? window_ : FocusWindowOf(*active);
  if (target != nullptr && target != ::GetFocus()) {
    ::SetFocus(target);
    if (target != window_) {
      BringIntoView(target, {0, 0});
    }
  }
}

HWND FormWindow::WindowOf(const Control& control) const {
  const auto found = faces_.find(&control);
  return found == faces_.end() ? nullptr : found->second.face->Window();
}

HWND FormWindow::FocusWindowOf(const Control& control) const {
  const auto found = faces_.find(&control);
  return found == faces_.end() ? nullptr : found->second.face->FocusWindow();
}

bool FormWindow::TurnPage(HWND inside, bool back) {
  for (Control* const control : form_.AllControls()) {
    auto* const strip = dynamic_cast<TabStrip*>(control);
    const HWND window = strip == nullptr ? nullptr : WindowOf(*strip);
    if (window != nullptr && (window == inside || ::IsChild(window, inside) != 0)) {
      const std::int32_t step = back ? strip->Tabs() - 1 : 1;
      strip->UserPickTab((strip->Tab() + step) % strip->Tabs());
      Flush();
      return true;
    }
  }
  return false;
}

void FormWindow::TakeGrounds() {
  ::DeleteObject(grounds_.form_brush);
  ::DeleteObject(grounds_.page_brush);
  grounds_.form = ::GetSysColor(COLOR_BTNFACE);
  grounds_.page = PageColor(window_);
  grounds_.form_brush = ::CreateSolidBrush(grounds_.form);
  grounds_.page_brush = ::CreateSolidBrush(grounds_.page);
}

SIZE FormWindow::LeastClient() const {
  const TwipsBands::Size least = bands_.LeastSize(look_->line());
  return {least.width, least.height};
}

void FormWindow::FitToScreen() {
  const RECT area = WorkArea(owner_ == nullptr ? ActiveWindow() : owner_);
  const TwipsBands::Size natural = bands_.NaturalSize(look_->line());
  const SIZE whole =
      WindowSize({natural.width, natural.height}, kStyle, kExtendedStyle, look_->dpi());
  const int width = std::min<int>(whole.cx, (area.right - area.left) * kShareOfScreen / 100);
  const int height = std::min<int>(whole.cy, (area.bottom - area.top) * kShareOfScreen / 100);
  RECT around = area;
  if (owner_ != nullptr && ::IsIconic(owner_) == 0) {
    ::GetWindowRect(owner_, &around);
  }
  const int left = Middle(around.left, around.right, width);
  const int top = Middle(around.top, around.bottom, height);
  ::SetWindowPos(window_, nullptr, std::clamp<int>(left, area.left, area.right - width),
                 std::clamp<int>(top, area.top, area.bottom - height), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  Arrange();
}

void FormWindow::Arrange() {
  const SIZE least = LeastClient();
  RECT client{};
  ::GetClientRect(window_, &client);
  // One bar takes room from the other way.
  for (int i = 0; i < 2; ++i) {
    ::ShowScrollBar(window_, SB_HORZ, client.right < least.cx ? TRUE : FALSE);
    ::GetClientRect(window_, &client);
    ::ShowScrollBar(window_, SB_VERT, client.bottom < least.cy ? TRUE : FALSE);
    ::GetClientRect(window_, &client);
  }
  const TwipsBands::Size size{std::max<int>(client.right, least.cx),
                              std::max<int>(client.bottom, least.cy)};
  ::SetWindowPos(content_->Window(), nullptr, 0, 0, size.width, size.height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  ArrangeAll(bands_, size, *look_);
  ScrollTo(scrolled_);
  ::RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void FormWindow::ScrollTo(POINT place) {
  RECT client{};
  ::GetClientRect(window_, &client);
  RECT all{};
  ::GetClientRect(content_->Window(), &all);
  scrolled_ = {std::clamp<LONG>(place.x, 0, std::max<LONG>(all.right - client.right, 0)),
               std::clamp<LONG>(place.y, 0, std::max<LONG>(all.bottom - client.bottom, 0))};
  SCROLLINFO bar{};
  bar.cbSize = sizeof bar;
  bar.fMask = SIF_ALL;
  if (all.right > client.right) {
    bar.nMax = all.right - 1;
    bar.nPage = static_cast<UINT>(client.right);
    bar.nPos = scrolled_.x;
    ::SetScrollInfo(window_, SB_HORZ, &bar, TRUE);
  }
  if (all.bottom > client.bottom) {
    bar.nMax = all.bottom - 1;
    bar.nPage = static_cast<UINT>(client.bottom);
    bar.nPos = scrolled_.y;
    ::SetScrollInfo(window_, SB_VERT, &bar, TRUE);
  }
  ::SetWindowPos(content_->Window(), nullptr, -scrolled_.x, -scrolled_.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::BringIntoView(HWND window, POINT place) {
  RECT client{};
  ::GetClientRect(window_, &client);
  ::MapWindowPoints(window, window_, &place, 1);
  if (::PtInRect(&client, place) == 0) {
    ScrollTo({scrolled_.x + place.x - client.right / 2, scrolled_.y + place.y - client.bottom / 2});
  }
}

void FormWindow::OnScroll(int bar, int action) {
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  ::GetScrollInfo(window_, bar, &info);
  const int line = look_->line();
  const int page = static_cast<int>(info.nPage);
  int place = info.nPos;
  switch (action) {
    case SB_LINEUP:
      place -= line;
      break;
    case SB_LINEDOWN:
      place += line;
      break;
    case SB_PAGEUP:
      place -= page;
      break;
    case SB_PAGEDOWN:
      place += page;
      break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      place = info.nTrackPos;
      break;
    default:
      break;
  }
  ScrollTo(bar == SB_HORZ ? POINT{place, scrolled_.y} : POINT{scrolled_.x, place});
}

void FormWindow::TellLimits(MINMAXINFO& limits) const {
  const RECT area = WorkArea(window_);
  const SIZE least = WindowSize(LeastClient(), kStyle, kExtendedStyle, look_->dpi());
  limits.ptMinTrackSize = {
      std::min<LONG>(least.cx, (area.right - area.left) * kShareOfScreen / 100),
      std::min<LONG>(least.cy, (area.bottom - area.top) * kShareOfScreen / 100)};
}

void FormWindow::OnNewScale(UINT dpi, const RECT& bounds) {
  const std::unique_ptr<Look> before = std::exchange(look_, std::make_unique<Look>(dpi));
  for (const auto& [control, entry] : faces_) {
    entry.face->TakeLook();
  }
  ::SetWindowPos(window_, nullptr, bounds.left, bounds.top, bounds.right - bounds.left,
                 bounds.bottom - bounds.top, SWP_NOZORDER | SWP_NOACTIVATE);
  Arrange();
}

void FormWindow::OnNewStyle() {
  const std::unique_ptr<Look> before = std::exchange(look_, std::make_unique<Look>(look_->dpi()));
  TakeGrounds();
  for (const auto& [control, entry] : faces_) {
    entry.face->TakeLook();
  }
  Arrange();
}

void FormWindow::OnKeyDown(WPARAM code) {
  const std::optional<Key> key = KeyOf(code);
  if (key && form_.ActiveControl() == nullptr) {
    form_.UserKey(*key, IsHeld(VK_SHIFT));
    Flush();
  }
}

LRESULT CALLBACK FormWindow::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  auto* const form = reinterpret_cast<FormWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (form != nullptr) {
    try {
      if (const std::optional<LRESULT> answer = form->Handle(message, w, l); answer) {
        return *answer;
      }
    } catch (...) {
      form->Keep(std::current_exception());
      return 0;
    }
  }
  return ::DefWindowProcW(window, message, w, l);
}

std::optional<LRESULT> FormWindow::Handle(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case kFlush:
      Flush();
      return 0;
    case kRunDeferred:
      RunDeferred();
      return 0;
    case WM_CLOSE:
      form_.UserClose();
      Flush();
      return 0;
    case WM_KEYDOWN:
      OnKeyDown(w);
      return 0;
    case WM_SETFOCUS:
      PlaceFocus();
      return 0;
    case WM_SIZE:
      Arrange();
      return 0;
    case WM_HSCROLL:
      OnScroll(SB_HORZ, LOWORD(w));
      return 0;
    case WM_VSCROLL:
      OnScroll(SB_VERT, LOWORD(w));
      return 0;
    case WM_GETMINMAXINFO:
      TellLimits(*reinterpret_cast<MINMAXINFO*>(l));
      return 0;
    case WM_DPICHANGED:
      OnNewScale(HIWORD(w), *reinterpret_cast<const RECT*>(l));
      return 0;
    case WM_SYSCOLORCHANGE:
      for (const auto& [control, entry] : faces_) {
        ::SendMessageW(entry.face->Window(), message, w, l);  // else only the form hears of it
      }
      OnNewStyle();
      return std::nullopt;
    case WM_SETTINGCHANGE:
    case WM_THEMECHANGED:
      OnNewStyle();
      return std::nullopt;
    case WM_ERASEBKGND:
      return 1;  // the pane covers it all
    default:
      return std::nullopt;
  }
}

}  // namespace nimbrel::toolkit::win32
