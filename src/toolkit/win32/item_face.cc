#include "toolkit/win32/item_face.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// Rows that are seen of a list at the least, and characters of a row.
constexpr int kRowsAtLeast = 3;
constexpr int kCharactersAtLeast = 12;
/// What a row has above and below its text, in pixels at 100%.
constexpr int kAirOfRow = 4;

POINT PlaceOf(LPARAM l) {
  return {static_cast<short>(LOWORD(l)), static_cast<short>(HIWORD(l))};
}

}  // namespace

int ItemFace::NeededWidth() const {
  return look().character() * kCharactersAtLeast;
}

int ItemFace::NeededHeight(int /*width*/) const {
  return HeaderHeight() + kRowsAtLeast * (look().line() + look().Pixels(kAirOfRow)) +
         2 * SystemMetric(SM_CYEDGE, look().dpi());
}

std::optional<LRESULT> ItemFace::OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_LBUTTONDOWN:
      Do([&] {
        if (const Item item = ItemAt(PlaceOf(l)); item != 0) {
          Click(item, PlaceOf(l));
        } else {
          GetControl().UserFocus();
        }
      });
      return 0;
    case WM_LBUTTONDBLCLK:
      if (const Item item = ItemAt(PlaceOf(l)); item != 0) {
        Do([&] { ClickAgain(item, PlaceOf(l)); });
      }
      return 0;
    case WM_NCLBUTTONDOWN:
      if (w != HTBORDER) {
        return std::nullopt;  // a scroll bar
      }
      Do([this] { GetControl().UserFocus(); });
      return 0;
    case WM_RBUTTONDOWN:
      Do([this] { GetControl().UserFocus(); });
      return 0;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
    case WM_RBUTTONDBLCLK:
      return 0;
    case WM_MOUSEMOVE:
      return (w & (MK_LBUTTON | MK_RBUTTON)) != 0 ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_CHAR:
      if (w > VK_SPACE) {
        OwnKey(message, w, l);
      }
      return 0;
    default:
      return ControlFace::OnMessage(window, message, w, l);
  }
}

bool ItemFace::OnKeyDown(WPARAM code, bool repeated) {
  const bool forwarded = ControlFace::OnKeyDown(code, repeated);
  const bool moves_on = code == VK_HOME || code == VK_END;
  if (!forwarded || moves_on) {
    OwnKey(WM_KEYDOWN, code, 1);
  }
  return true;
}

void ItemFace::OwnKey(UINT message, WPARAM w, LPARAM l) {
  const Item before = CurrentItem();
  Own(Window(), message, w, l);
  if (const Item after = CurrentItem(); after != before && after != 0) {
    Do([&] { GoTo(after); });
    PaintSelection();  // Windows stands at the item, even if it was refused
  }
}

}  // namespace nimbrel::toolkit::win32
