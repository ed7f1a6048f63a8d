// The faces of frames and tab strips.

#include <algorithm>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// The edge of a frame, and what its caption needs beside itself, in pixels at 100%.
constexpr int kFrameEdge = 3;
constexpr int kBesideCaption = 10;
/// What a tab has beside its caption, and above and below it.
constexpr int kBesideTab = 7;
constexpr int kAboveTab = 3;

/// The frame is drawn around the pane of what is in it.
class FrameFace final : public ContainerFace {
 public:
  FrameFace(Frame& frame, FaceHost& host, const Pane& pane)
      : ContainerFace(frame, host), frame_(frame) {
    Make(WC_BUTTONW, BS_GROUPBOX | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, pane.Window());
    AddGroup(frame, Window(), pane.on_page());
  }

  int NeededWidth() const override {
    const int caption =
        look().TextWidth(ToWide(frame_.Caption())) + 2 * look().Pixels(kBesideCaption);
    return std::max(LeastOfGroups().width + 2 * Edge(), caption);
  }
  int NeededHeight(int /*width*/) const override {
    return look().line() + LeastOfGroups().height + Edge();
  }

  void TakeBounds(const RECT& bounds) const override {
    ContainerFace::TakeBounds(bounds);
    Arrange(groups().front(), {Edge(), look().line(), bounds.right - bounds.left - Edge(),
                               bounds.bottom - bounds.top - Edge()});
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      ::SetWindowTextW(Window(), CaptionToWide(frame_.Caption()).c_str());
    }
  }
  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    const bool presses = message == WM_LBUTTONDOWN || message == WM_LBUTTONUP;
    return presses ? std::optional<LRESULT>(0) : ContainerFace::OnMessage(window, message, w, l);
  }

 private:
  int Edge() const { return look().Pixels(kFrameEdge); }

  Frame& frame_;
};

class TabStripFace final : public ContainerFace {
 public:
  TabStripFace(TabStrip& strip, FaceHost& host, const Pane& pane)
      : ContainerFace(strip, host), strip_(strip) {
    Make(WC_TABCONTROLW, WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, pane.Window());
    PadTabs();
    for (std::int32_t i = 0; i < strip.Tabs(); ++i) {
      std::wstring caption = CaptionToWide(strip.Page(i).Caption());
      TCITEMW item{};
      item.mask = TCIF_TEXT;
      item.pszText = caption.data();
      ::SendMessageW(Window(), TCM_INSERTITEMW, static_cast<WPARAM>(i),
                     reinterpret_cast<LPARAM>(&item));
      AddGroup(strip.Page(i), Window(), true);
      ::SetWindowTextW(groups().back().pane->Window(), ToWide(strip.Page(i).Caption()).c_str());
    }
  }

  void TakeLook() override {
    PadTabs();
    ContainerFace::TakeLook();
  }

  int NeededWidth() const override {
    RECT last{};
    ::SendMessageW(Window(), TCM_GETITEMRECT, static_cast<WPARAM>(strip_.Tabs() - 1),
                   reinterpret_cast<LPARAM>(&last));
    const RECT around = Around(LeastOfGroups());
    return std::max<int>(around.right - around.left, last.right + look().Pixels(kFrameEdge));
  }
  int NeededHeight(int /*width*/) const override {
    const RECT around = Around(LeastOfGroups());
    return around.bottom - around.top;
  }

  void TakeBounds(const RECT& bounds) const override {
    ContainerFace::TakeBounds(bounds);
    RECT inside{0, 0, bounds.right - bounds.left, bounds.bottom - bounds.top};
    ::SendMessageW(Window(), TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&inside));
    for (const Group& group : groups()) {
      Arrange(group, inside);
    }
  }

 protected:
  void Paint(const Changes& /*changes*/) override {
    ::SendMessageW(Window(), TCM_SETCURSEL, static_cast<WPARAM>(strip_.Tab()), 0);
    for (std::size_t i = 0; i < groups().size(); ++i) {
      const bool on_show = static_cast<std::int32_t>(i) == strip_.Tab();
      ::ShowWindow(groups()[i].pane->Window(), on_show ? SW_SHOWNA : SW_HIDE);
    }
  }

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    switch (message) {
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK: {
        TCHITTESTINFO hit{{static_cast<short>(LOWORD(l)), static_cast<short>(HIWORD(l))}, 0};
        const auto tab = static_cast<std::int32_t>(
            ::SendMessageW(window, TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
        if (tab >= 0) {
          Do([&] { strip_.UserPickTab(tab); });
        }
        return 0;
      }
      case WM_LBUTTONUP:
      case WM_RBUTTONDOWN:
      case WM_CHAR:
        return 0;
      default:
        return ContainerFace::OnMessage(window, message, w, l);
    }
  }
  /// Windows would go to a tab by other keys, too.
  bool OnKeyDown(WPARAM code, bool repeated) override {
    ContainerFace::OnKeyDown(code, repeated);
    return true;
  }

 private:
  void PadTabs() const {
    ::SendMessageW(Window(), TCM_SETPADDING, 0,
                   MAKELPARAM(look().Pixels(kBesideTab), look().Pixels(kAboveTab)));
  }
  /// The strip around pages of this size.
  RECT Around(TwipsBands::Size page) const {
    RECT all{0, 0, page.width, page.height};
    ::SendMessageW(Window(), TCM_ADJUSTRECT, TRUE, reinterpret_cast<LPARAM>(&all));
    return all;
  }

  TabStrip& strip_;
};

}  // namespace

void ContainerFace::AddGroup(const Container& container, HWND parent, bool on_page) {
  const Control& control = GetControl();
  groups_.push_back(
      {container, std::make_unique<Pane>(host(), parent, on_page),
       TwipsBands(TwipsBands::AreaOf(container, control.Width(), control.Height(), false))});
}

TwipsBands::Size ContainerFace::LeastOfGroups() const {
  TwipsBands::Size most;
  for (const Group& group : groups_) {
    const TwipsBands::Size least = group.bands.LeastSize(look().line());
    most = {std::max(most.width, least.width), std::max(most.height, least.height)};
  }
  return most;
}

void ContainerFace::Arrange(const Group& group, const RECT& bounds) const {
  const TwipsBands::Size size{std::max<int>(bounds.right - bounds.left, 0),
                              std::max<int>(bounds.bottom - bounds.top, 0)};
  ::SetWindowPos(group.pane->Window(), nullptr, bounds.left, bounds.top, size.width, size.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  ArrangeAll(group.bands, size, look());
}

void ArrangeAll(const TwipsBands& bands, TwipsBands::Size size, const Look& look) {
  for (const TwipsBands::Spot& spot : bands.Arrange(size, look.line())) {
    static_cast<const ControlFace*>(spot.placed)
        ->TakeBounds({spot.left, spot.top, spot.left + spot.width, spot.top + spot.height});
  }
}

std::unique_ptr<ContainerFace> MakeFace(Frame& frame, FaceHost& host, const Pane& pane) {
  return std::make_unique<FrameFace>(frame, host, pane);
}

std::unique_ptr<ContainerFace> MakeFace(TabStrip& strip, FaceHost& host, const Pane& pane) {
  return std::make_unique<TabStripFace>(strip, host, pane);
}

}  // namespace nimbrel::toolkit::win32
