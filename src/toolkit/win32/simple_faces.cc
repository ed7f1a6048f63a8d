// The faces of buttons, check boxes and labels.

#include <algorithm>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// The box of a check box, and a button's frame with some air, in pixels at 100%.
constexpr int kCheckBox = 13;
constexpr int kAirBesideCaption = 4;
constexpr int kAirAroundText = 6;

/// What is pressed by the mouse: it looks so while the mouse is held on it. Windows' own way would
/// move the focus before anyone is asked.
class PressFace : public ControlFace {
 protected:
  using ControlFace::ControlFace;

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    switch (message) {
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK:
        pressed_ = true;
        ::SetCapture(window);
        LookPressed(true);
        return 0;
      case WM_MOUSEMOVE:
        if (pressed_) {
          LookPressed(IsInside(l));
          return 0;
        }
        break;
      case WM_LBUTTONUP:
        OnRelease(IsInside(l));
        return 0;
      case WM_CAPTURECHANGED:
        pressed_ = false;
        LookPressed(false);
        return 0;
      case BM_CLICK:  // of a screen reader
        Do([this] { GetControl().UserClick(); });
        return 0;
      case WM_KEYUP:
      case WM_CHAR:
        return 0;
      default:
        break;
    }
    return ControlFace::OnMessage(window, message, w, l);
  }

  /// A key that is held down presses once.
  bool OnKeyDown(WPARAM code, bool repeated) override {
    return (repeated && code == VK_SPACE) || ControlFace::OnKeyDown(code, repeated);
  }

 private:
  void LookPressed(bool pressed) const {
    ::SendMessageW(Window(), BM_SETSTATE, pressed ? TRUE : FALSE, 0);
  }
  bool IsInside(LPARAM place) const {
    RECT all{};
    ::GetClientRect(Window(), &all);
    const POINT point{static_cast<short>(LOWORD(place)), static_cast<short>(HIWORD(place))};
    return ::PtInRect(&all, point) != 0;
  }
  void OnRelease(bool inside) {
    const bool was_pressed = pressed_;
    pressed_ = false;
    if (was_pressed) {
      ::ReleaseCapture();
      if (inside) {
        Do([this] { GetControl().UserClick(); });
      }
    }
  }

  bool pressed_ = false;
};

class ButtonFace final : public PressFace {
 public:
  ButtonFace(CommandButton& button, FaceHost& host, const Pane& pane)
      : PressFace(button, host), button_(button) {
    Make(WC_BUTTONW, BS_PUSHBUTTON, 0, pane.Window());
  }

  int NeededWidth() const override {
    return look().TextWidth(ToWide(button_.Caption())) + 2 * look().Pixels(kAirAroundText);
  }
  int NeededHeight(int /*width*/) const override {
    return look().line() + look().Pixels(kAirAroundText);
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      ::SetWindowTextW(Window(), CaptionToWide(button_.Caption()).c_str());
    }
    if (changes.Has(Property::kStyle)) {
      ::SendMessageW(Window(), BM_SETSTYLE, button_.Default() ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON,
                     TRUE);
    }
  }

 private:
  CommandButton& button_;
};

class CheckBoxFace final : public PressFace {
 public:
  CheckBoxFace(CheckBox& box, FaceHost& host, const Pane& pane) : PressFace(box, host), box_(box) {
    Make(WC_BUTTONW, BS_CHECKBOX, 0, pane.Window());
  }

  int NeededWidth() const override {
    return look().Pixels(kCheckBox + 2 * kAirBesideCaption) +
           look().TextWidth(ToWide(box_.Caption()));
  }
  int NeededHeight(int /*width*/) const override {
    return std::max(look().line(), look().Pixels(kCheckBox)) + 2;
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      ::SetWindowTextW(Window(), CaptionToWide(box_.Caption()).c_str());
    }
    ::SendMessageW(Window(), BM_SETCHECK, box_.Value() ? BST_CHECKED : BST_UNCHECKED, 0);
  }

 private:
  CheckBox& box_;
};

class LabelFace final : public ControlFace {
 public:
  LabelFace(Label& label, FaceHost& host, const Pane& pane)
      : ControlFace(label, host), label_(label) {
    const DWORD lines = HasOneLine() ? SS_LEFTNOWORDWRAP | SS_CENTERIMAGE : SS_LEFT;
    Make(WC_STATICW, SS_NOPREFIX | SS_NOTIFY | lines, 0, pane.Window());
  }

  /// A label that has the room of one line stays on it; others break between words.
  int NeededWidth() const override {
    const std::wstring caption = ToWide(label_.Caption());
    if (HasOneLine()) {
      return look().TextWidth(caption) + 1;
    }
    int widest = 0;
    for (std::size_t from = 0; from < caption.size();) {
      const std::size_t end = std::min(caption.find(L' ', from), caption.size());
      widest = std::max(widest, look().TextWidth(caption.substr(from, end - from)));
      from = end + 1;
    }
    return widest + 1;
  }
  int NeededHeight(int width) const override {
    return HasOneLine() ? look().line() : look().TextHeight(LinesToWide(label_.Caption()), width);
  }
  bool FillsHeight() const override { return true; }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      ::SetWindowTextW(Window(), LinesToWide(label_.Caption()).c_str());
    }
  }
  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
      Do([this] { label_.UserClick(); });
      return 0;
    }
    return ControlFace::OnMessage(window, message, w, l);
  }

 private:
  bool HasOneLine() const { return label_.Height() < 2 * kTwipsOfLine; }

  Label& label_;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(CommandButton& button, FaceHost& host, const Pane& pane) {
  return std::make_unique<ButtonFace>(button, host, pane);
}

std::unique_ptr<ControlFace> MakeFace(CheckBox& box, FaceHost& host, const Pane& pane) {
  return std::make_unique<CheckBoxFace>(box, host, pane);
}

std::unique_ptr<ControlFace> MakeFace(Label& label, FaceHost& host, const Pane& pane) {
  return std::make_unique<LabelFace>(label, host, pane);
}

}  // namespace nimbrel::toolkit::win32
