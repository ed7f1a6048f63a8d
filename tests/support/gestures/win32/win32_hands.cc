#include "tests/support/gestures/win32/win32_hands.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::gestures {
namespace {

using namespace toolkit;
using toolkit::win32::FormWindow;

LPARAM PlaceParameter(POINT place) {
  return MAKELPARAM(place.x, place.y);
}

POINT MiddleOf(const RECT& rect) {
  return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

LRESULT Ask(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) {
  return ::SendMessageW(window, message, w, l);
}

/// The window that the mouse hits at a place of the form's window.
HWND HitBy(HWND form, POINT place) {
  HWND window = form;
  while (true) {
    POINT inside = place;
    ::MapWindowPoints(form, window, &inside, 1);
    const HWND child =
        ::ChildWindowFromPointEx(window, inside, CWP_SKIPINVISIBLE | CWP_SKIPDISABLED);
    if (child == nullptr || child == window) {
      return window;
    }
    window = child;
  }
}

/// Where a hand clicks on a control as such: a check box is hit on its mark, a box on its text, a
/// frame on its caption, and of tabs the one on show.
POINT PlaceOf(HWND window, const Control& control) {
  RECT all{};
  ::GetClientRect(window, &all);
  if (control.Kind() == ControlKind::kTabStrip) {
    RECT tab{};
    Ask(window, TCM_GETITEMRECT, static_cast<WPARAM>(Ask(window, TCM_GETCURSEL)),
        reinterpret_cast<LPARAM>(&tab));
    return MiddleOf(tab);
  }
  const LONG left = std::min(10L, all.right / 2);
  return {left, control.Kind() == ControlKind::kFrame ? 1 : all.bottom / 2};
}

bool IsList(const Control& control) {
  return control.Kind() == ControlKind::kListBox || control.Kind() == ControlKind::kListView ||
         control.Kind() == ControlKind::kTreeView;
}

/// The node as Windows has it: the same way down from the top.
HTREEITEM ItemOf(HWND tree, const NodeRef& node) {
  const NodeRef parent = node->Parent();
  const HTREEITEM above = parent.IsNothing() ? TVI_ROOT : ItemOf(tree, parent);
  auto item = reinterpret_cast<HTREEITEM>(
      Ask(tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(above)));
  for (NodeRef before = node->Previous(); !before.IsNothing(); before = before->Previous()) {
    item = reinterpret_cast<HTREEITEM>(
        Ask(tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)));
  }
  return item;
}

}  // namespace

FormWindow* Win32Hands::TopWindow() const {
  return windows_.empty() ? nullptr : windows_.back().get();
}

void Win32Hands::OnShown(Form& form) {
  FormWindow* const below = TopWindow();
  windows_.push_back(
      std::make_unique<FormWindow>(form, below == nullptr ? nullptr : below->Window()));
  TopWindow()->Show();
  Made();
}

void Win32Hands::OnGone(Form& /*form*/) {
  windows_.pop_back();
}

FormWindow& Win32Hands::Window(const Form& form) const {
  const auto found = std::find_if(windows_.begin(), windows_.end(), [&form](const auto& window) {
    return &window->ShownForm() == &form;
  });
  return **found;
}

HWND Win32Hands::WindowOf(const Control& control) const {
  return Window(control.OwnerForm()).WindowOf(control);
}

HWND Win32Hands::FocusWindowOf(const Control& control) const {
  return Window(control.OwnerForm()).FocusWindowOf(control);
}

HWND Win32Hands::Focused(const Form& form) const {
  const HWND window = Window(form).Window();
  const HWND focused = ::GetFocus();
  if (focused != window && ::IsChild(window, focused) == 0) {
    throw std::runtime_error("the window of " + form.Name() + " does not have the focus");
  }
  return focused;
}

void Win32Hands::Pump() const {
  MSG message{};
  while (TopWindow() != nullptr && ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    TopWindow()->Dispatch(message);
  }
}

GestureResult Win32Hands::Made() {
  Pump();
  for (const auto& window : windows_) {
    if (AfterEach && window->ShownForm().Visible()) {
      AfterEach(*window);
    }
  }
  return GestureResult::Made();
}

void Win32Hands::ClickAt(HWND window, POINT place, bool twice) const {
  FormWindow& top = *TopWindow();
  top.BringIntoView(window, place);
  POINT on_form = place;
  ::MapWindowPoints(window, top.Window(), &on_form, 1);
  if (HitBy(top.Window(), on_form) != window) {
    throw std::runtime_error("another window covers the place of a click");
  }
  ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, PlaceParameter(place));
  ::PostMessageW(window, WM_LBUTTONUP, 0, PlaceParameter(place));
  if (twice) {
    ::PostMessageW(window, WM_LBUTTONDBLCLK, MK_LBUTTON, PlaceParameter(place));
    ::PostMessageW(window, WM_LBUTTONUP, 0, PlaceParameter(place));
  }
  Pump();
}

void Win32Hands::PressKeyCode(WPARAM code, HWND window) const {
  const HWND target = window == nullptr ? Focused(TopWindow()->ShownForm()) : window;
  const auto scan =
      static_cast<LPARAM>(::MapVirtualKeyW(static_cast<UINT>(code), MAPVK_VK_TO_VSC) << 16);
  constexpr LPARAM kReleased = LPARAM{3} << 30;
  ::PostMessageW(target, WM_KEYDOWN, code, scan | 1);
  ::PostMessageW(target, WM_KEYUP, code, scan | 1 | kReleased);
  Pump();
}

void Win32Hands::TypeCharacters(const std::wstring& text) const {
  for (const wchar_t unit : text) {
    // The character alone says what is typed; no keyboard has a key for every one.
    ::PostMessageW(Focused(TopWindow()->ShownForm()), WM_CHAR, unit, 1);
    Pump();
  }
}

void Win32Hands::Holding(int code, const std::function<void()>& action) {
  std::array<BYTE, 256> keys{};
  ::GetKeyboardState(keys.data());
  const std::array<BYTE, 256> before = keys;
  keys[static_cast<std::size_t>(code)] = 0x80;
  ::SetKeyboardState(keys.data());
  action();
  std::array<BYTE, 256> released = before;
  ::SetKeyboardState(released.data());
}

GestureResult Win32Hands::Type(EditControl& box, const std::string& text) {
  if (const std::string why_not = box.WhyNoGesture(); !why_not.empty()) {
    return GestureResult::Impossible(why_not);
  }
  ClickAt(FocusWindowOf(box), PlaceOf(FocusWindowOf(box), box));
  if (!box.HasFocus()) {
    return Made();
  }
  Holding(VK_CONTROL, [this] { PressKeyCode('A'); });
  if (text.empty() && !box.Text().empty()) {
    PressKeyCode(VK_DELETE);
  }
  const std::wstring typed = win32::ToWide(text);
  for (std::size_t at = 0; at < typed.size() && box.HasFocus();) {
    if (std::string why_not = box.WhyNoGesture(); !why_not.empty()) {
      return GestureResult::Impossible(std::move(why_not));
    }
    const std::size_t units = IS_HIGH_SURROGATE(typed[at]) ? 2 : 1;
    TypeCharacters(typed.substr(at, units));
    at += units;
  }
  return Made();
}

GestureResult Win32Hands::Leave(Form& form) {
  if (const std::string why_not = form.WhyNoGesture(); !why_not.empty()) {
    return GestureResult::Impossible(why_not);
  }
  PressKeyCode(VK_TAB);
  return Made();
}

GestureResult Win32Hands::PressKey(Control& control, Key key) {
  if (!control.WhyNoGesture().empty() || !control.TakesFocus()) {
    return Hands::PressKey(control, key);  // says why not
  }
  PressKeyCode(static_cast<WPARAM>(key),
               control.HasFocus() ? Focused(control.OwnerForm()) : FocusWindowOf(control));
  return Made();
}

void Win32Hands::ClickOnControl(const Control& control) {
  if (!IsList(control)) {
    ClickAt(FocusWindowOf(control), PlaceOf(FocusWindowOf(control), control));
    return;
  }
  // On the edge, where there is no row.
  RECT bounds{};
  ::GetWindowRect(WindowOf(control), &bounds);
  const POINT place{bounds.left, MiddleOf(bounds).y};
  ::PostMessageW(WindowOf(control), WM_NCLBUTTONDOWN, HTBORDER, PlaceParameter(place));
  Pump();
}

GestureResult Win32Hands::Click(Control& control) {
  if (!control.WhyNoGesture().empty()) {
    return Hands::Click(control);
  }
  auto* const box = dynamic_cast<EditControl*>(&control);
  const std::string text = box != nullptr ? box->Text() : std::string();
  const std::int32_t start = box != nullptr ? box->SelStart() : 0;
  const std::int32_t length = box != nullptr ? box->SelLength() : 0;
  ClickOnControl(control);
  if (box != nullptr && box->HasFocus()) {
    // The mouse puts the caret where it points; a click on a box as such leaves it alone.
    const bool is_same = box->Text() == text;
    box->UserSelect(is_same ? start : 0, is_same ? length : 0);
  }
  return Made();
}

void Win32Hands::ClickEntryOf(const ListBox& list, std::int32_t index, bool twice) {
  const HWND window = WindowOf(list);
  const auto entry = static_cast<WPARAM>(index);
  RECT bounds{};
  RECT all{};
  ::GetClientRect(window, &all);
  Ask(window, LB_GETITEMRECT, entry, reinterpret_cast<LPARAM>(&bounds));
  if (bounds.top < 0 || bounds.bottom > all.bottom) {
    Ask(window, LB_SETTOPINDEX, entry);
    Ask(window, LB_GETITEMRECT, entry, reinterpret_cast<LPARAM>(&bounds));
  }
  ClickAt(window, MiddleOf(bounds), twice);
}

GestureResult Win32Hands::Pick(ListBox& list, std::int32_t index) {
  if (!list.WhyNoEntry(index).empty()) {
    return Hands::Pick(list, index);
  }
  ClickEntryOf(list, index, false);
  return Made();
}

GestureResult Win32Hands::DoubleClick(ListBox& list, std::int32_t index) {
  if (!list.WhyNoEntry(index).empty()) {
    return Hands::DoubleClick(list, index);
  }
  ClickEntryOf(list, index, true);
  return Made();
}

GestureResult Win32Hands::Pick(ComboBox& box, std::int32_t index) {
  if (!box.WhyNoEntry(index).empty()) {
    return Hands::Pick(box, index);
  }
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof parts;
  ::GetComboBoxInfo(WindowOf(box), &parts);
  ClickAt(WindowOf(box), MiddleOf(parts.rcButton));
  if (::IsWindowVisible(parts.hwndList) != 0) {
    const auto entry = static_cast<WPARAM>(index);
    Ask(parts.hwndList, LB_SETTOPINDEX, entry);
    RECT bounds{};
    Ask(parts.hwndList, LB_GETITEMRECT, entry, reinterpret_cast<LPARAM>(&bounds));
    const LPARAM place = PlaceParameter(MiddleOf(bounds));
    ::PostMessageW(parts.hwndList, WM_MOUSEMOVE, 0, place);
    ::PostMessageW(parts.hwndList, WM_LBUTTONDOWN, MK_LBUTTON, place);
    ::PostMessageW(parts.hwndList, WM_LBUTTONUP, 0, place);
    Pump();
  }
  return Made();
}

POINT Win32Hands::PlaceOnRow(HWND list, int row, bool on_check) {
  Ask(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
  RECT bounds{};
  bounds.left = LVIR_BOUNDS;
  Ask(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&bounds));
  RECT all{};
  ::GetClientRect(list, &all);
  for (LONG x = std::max(bounds.left, 0L); x < all.right; ++x) {
    LVHITTESTINFO hit{};
    hit.pt = {x, MiddleOf(bounds).y};
    Ask(list, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    const UINT wanted = on_check ? LVHT_ONITEMSTATEICON : LVHT_ONITEMLABEL;
    if (hit.iItem == row && hit.flags == wanted) {
      return {x + 3, hit.pt.y};
    }
  }
  throw std::runtime_error("a row of a list has no place to click on");
}

void Win32Hands::ClickRowOf(const ListView& list, std::int32_t index, bool on_check, bool twice) {
  const HWND window = WindowOf(list);
  ClickAt(window, PlaceOnRow(window, index - 1, on_check), twice);
}

GestureResult Win32Hands::ClickRow(ListView& list, std::int32_t index) {
  if (!list.WhyNoRow(index).empty()) {
    return Hands::ClickRow(list, index);
  }
  ClickRowOf(list, index, false, false);
  return Made();
}

GestureResult Win32Hands::DoubleClickRow(ListView& list, std::int32_t index) {
  if (!list.WhyNoRow(index).empty()) {
    return Hands::DoubleClickRow(list, index);
  }
  ClickRowOf(list, index, false, true);
  return Made();
}

GestureResult Win32Hands::ToggleCheck(ListView& list, std::int32_t index) {
  if (!list.WhyNoCheck(index).empty()) {
    return Hands::ToggleCheck(list, index);
  }
  ClickRowOf(list, index, true, false);
  return Made();
}

GestureResult Win32Hands::ClickHeader(ListView& list, std::int32_t index) {
  if (!list.WhyNoHeader(index).empty()) {
    return Hands::ClickHeader(list, index);
  }
  const auto header = reinterpret_cast<HWND>(Ask(WindowOf(list), LVM_GETHEADER));
  RECT bounds{};
  Ask(header, HDM_GETITEMRECT, static_cast<WPARAM>(index - 1), reinterpret_cast<LPARAM>(&bounds));
  ClickAt(header, MiddleOf(bounds));
  return Made();
}

GestureResult Win32Hands::PickTab(TabStrip& tabs, std::int32_t index) {
  if (!tabs.WhyNoTab(index).empty()) {
    return Hands::PickTab(tabs, index);
  }
  RECT bounds{};
  Ask(WindowOf(tabs), TCM_GETITEMRECT, static_cast<WPARAM>(index),
      reinterpret_cast<LPARAM>(&bounds));
  ClickAt(WindowOf(tabs), MiddleOf(bounds));
  return Made();
}

POINT Win32Hands::PlaceOnNode(HWND tree, const NodeRef& node, bool on_sign) {
  const HTREEITEM item = ItemOf(tree, node);
  Ask(tree, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
  RECT bounds{};
  std::memcpy(&bounds, &item, sizeof item);  // how a tree is asked
  Ask(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&bounds));
  RECT all{};
  ::GetClientRect(tree, &all);
  const UINT wanted = on_sign ? TVHT_ONITEMBUTTON : TVHT_ONITEMLABEL;
  for (LONG x = 0; x < all.right; ++x) {
    TVHITTESTINFO hit{};
    hit.pt = {x, MiddleOf(bounds).y};
    Ask(tree, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (hit.hItem == item && hit.flags == wanted) {
      return {x + 3, hit.pt.y};
    }
  }
  throw std::runtime_error("the node " + node->Text() + " has no place to click on");
}

GestureResult Win32Hands::ClickNode(TreeView& tree, const NodeRef& node) {
  if (!tree.WhyNoNode(node).empty()) {
    return Hands::ClickNode(tree, node);
  }
  const HWND window = WindowOf(tree);
  std::vector<NodeRef> closed;
  for (NodeRef above = node->Parent(); !above.IsNothing(); above = above->Parent()) {
    if (!above->Expanded()) {
      closed.insert(closed.begin(), above);
    }
  }
  for (const NodeRef& above : closed) {
    ClickAt(window, PlaceOnNode(window, above, true));
    if (!above->Expanded()) {
      return Made();  // refused
    }
  }
  ClickAt(window, PlaceOnNode(window, node, false));
  return Made();
}

GestureResult Win32Hands::Close(Form& form) {
  if (!form.WhyNoGesture().empty()) {
    return Hands::Close(form);
  }
  ::PostMessageW(Window(form).Window(), WM_SYSCOMMAND, SC_CLOSE, 0);
  return Made();
}

}  // namespace nimbrel::gestures
