// How forms look on screens of every resolution.
#include "tests/support/gestures/face_forms.h"
#include "tests/win32/window_test.h"

namespace nimbrel::toolkit::win32 {
namespace {

class LayoutTest : public WindowTest {
 protected:
  /// The pixels that something takes at 100%, at the window's resolution.
  int Scaled(int pixels) const { return window().look().Pixels(pixels); }
};

/// Text that a window writes on one line.
std::wstring LineOf(const Control& control, HWND window) {
  const bool is_line =
      control.Kind() == ControlKind::kCommandButton || control.Kind() == ControlKind::kCheckBox ||
      (control.Kind() == ControlKind::kLabel && control.Height() < 2 * kTwipsOfLine);
  return is_line ? TextOf(window) : std::wstring();
}

bool Overlap(const RECT& a, const RECT& b) {
  RECT both{};
  return ::IntersectRect(&both, &a, &b) != 0;
}

class Resolutions : public LayoutTest, public ::testing::WithParamInterface<UINT> {};

TEST_P(Resolutions, NoCaptionIsCutAndNothingOverlaps) {
  LargeForm form(desktop_);
  InWindow(form, [&] {
    MoveToScreenOf(GetParam());
    for (std::int32_t page = 0; page < 2; ++page) {
      form.tabs.SetTab(page);
      hands_.Pump();
      for (const Control* const control : form.AllControls()) {
        if (!control->IsOnShow()) {
          continue;
        }
        const RECT bounds = BoundsOf(Drawn(*control));
        const std::wstring line = LineOf(*control, Drawn(*control));
        EXPECT_GE(WidthOf(bounds), window().look().TextWidth(line)) << control->Name();
        EXPECT_GE(HeightOf(bounds), window().look().line()) << control->Name();
        for (const Control* const other : control->Parent().Controls()) {
          EXPECT_TRUE(other == control || !other->IsOnShow() ||
                      !Overlap(bounds, BoundsOf(Drawn(*other))))
              << control->Name() << " and " << other->Name();
        }
      }
    }
  });
}

TEST_P(Resolutions, FontsRowsAndPicturesHaveTheSizeOfTheScreen) {
  LargeForm form(desktop_);
  form.tabs.SetTab(1);
  InWindow(form, [&] {
    const int line = window().look().line();
    const UINT before = window().look().dpi();
    MoveToScreenOf(GetParam());
    const int scaled = ::MulDiv(line, static_cast<int>(GetParam()), static_cast<int>(before));
    EXPECT_NEAR(window().look().line(), scaled, 2);
    LOGFONTW font{};
    ::GetObjectW(reinterpret_cast<HGDIOBJ>(Ask(Drawn(form.txtFind), WM_GETFONT)), sizeof font,
                 &font);
    LOGFONTW wanted{};
    ::GetObjectW(window().look().font(), sizeof wanted, &wanted);
    EXPECT_EQ(font.lfHeight, wanted.lfHeight);
    int width = 0;
    int height = 0;
    const auto pictures =
        reinterpret_cast<HIMAGELIST>(Ask(Drawn(form.tvTasks), TVM_GETIMAGELIST, TVSIL_NORMAL));
    ::ImageList_GetIconSize(pictures, &width, &height);
    EXPECT_EQ(height, std::max(Scaled(16), window().look().line()));
    EXPECT_EQ(width, height);
    EXPECT_GE(Ask(Drawn(form.tvTasks), TVM_GETITEMHEIGHT), height);
  });
}

INSTANTIATE_TEST_SUITE_P(Dpi, Resolutions, ::testing::Values(96U, 120U, 144U, 192U, 240U));

TEST_F(LayoutTest, AWindowThatGoesToAnotherScreenAndBackIsAsBefore) {
  LargeForm form(desktop_);
  InWindow(form, [&] {
    // Low enough to fit a screen of 1024 rows at 200%, too.
    ::SetWindowPos(window().Window(), nullptr, 0, 0, WidthOf(BoundsOf(window().Window())), 480,
                   SWP_NOMOVE | SWP_NOZORDER);
    const RECT window_before = BoundsOf(window().Window());
    const RECT before = BoundsOf(Drawn(form.lstRows));
    MoveToScreenOf(192);
    EXPECT_EQ(HeightOf(BoundsOf(window().Window())), 2 * HeightOf(window_before));
    EXPECT_EQ(WidthOf(BoundsOf(window().Window())), 2 * WidthOf(window_before));
    EXPECT_NEAR(WidthOf(BoundsOf(Drawn(form.lstRows))), 2 * WidthOf(before),
                16);  // borders don't grow everywhere
    MoveToScreenOf(96);
    EXPECT_EQ(WidthOf(BoundsOf(window().Window())), WidthOf(window_before));
    EXPECT_EQ(WidthOf(BoundsOf(Drawn(form.lstRows))), WidthOf(before));
    EXPECT_EQ(HeightOf(BoundsOf(Drawn(form.lstRows))), HeightOf(before));
  });
}

TEST_F(LayoutTest, PicturesOfATreeAreThoseOfTheImageList) {
  LargeForm form(desktop_);
  form.tabs.SetTab(1);
  InWindow(form, [&] {
    const auto pictures =
        reinterpret_cast<HIMAGELIST>(Ask(Drawn(form.tvTasks), TVM_GETIMAGELIST, TVSIL_NORMAL));
    EXPECT_EQ(::ImageList_GetImageCount(pictures), form.images.Count() + 1);
    // The first picture of the form is a red block (200, 0, 0); number 0 is for nodes without one.
    const HDC screen = ::GetDC(nullptr);
    const HDC memory = ::CreateCompatibleDC(screen);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(screen, 32, 16);
    const HGDIOBJ before = ::SelectObject(memory, bitmap);
    const RECT all{0, 0, 32, 16};
    ::FillRect(memory, &all, static_cast<HBRUSH>(::GetStockObject(GRAY_BRUSH)));
    ::ImageList_Draw(pictures, 1, memory, 0, 0, ILD_NORMAL);
    ::ImageList_Draw(pictures, 0, memory, 16, 0, ILD_NORMAL);
    EXPECT_EQ(::GetPixel(memory, 8, 8), RGB(200, 0, 0));
    EXPECT_EQ(::GetPixel(memory, 0, 0), RGB(255, 255, 255));
    EXPECT_EQ(::GetPixel(memory, 24, 8), RGB(128, 128, 128));
    ::SelectObject(memory, before);
    ::DeleteObject(bitmap);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, screen);
  });
}

TEST_F(LayoutTest, ListsTakeTheHeightThatThereIsMoreAndBoxesKeepTheirs) {
  LargeForm form(desktop_);
  InWindow(form, [&] {
    const int list = HeightOf(BoundsOf(Drawn(form.lstRows)));
    const int box = HeightOf(BoundsOf(Drawn(form.txtDescr)));
    const RECT bounds = BoundsOf(window().Window());
    ::SetWindowPos(window().Window(), nullptr, 0, 0, WidthOf(bounds), HeightOf(bounds) + 200,
                   SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_GT(HeightOf(BoundsOf(Drawn(form.lstRows))), list + 100);
    EXPECT_EQ(HeightOf(BoundsOf(Drawn(form.txtDescr))), box);
  });
}

TEST_F(LayoutTest, AWindowIsNotMadeSmallerThanItsCaptionsNeed) {
  LargeForm form(desktop_);
  InWindow(form, [&] {
    const HWND shown = window().Window();
    ::SetWindowPos(shown, nullptr, 0, 0, 300, 300, SWP_NOZORDER);
    EXPECT_GT(WidthOf(BoundsOf(shown)), 300);
    EXPECT_EQ(::GetWindowLongPtrW(shown, GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL), 0);
  });
}

TEST_F(LayoutTest, AFormThatIsTooLargeForTheScreenScrolls) {
  LargeForm form(desktop_);
  InWindow(form, [&] {
    constexpr UINT kHuge = 960;  // nothing has the room for it
    const HWND shown = window().Window();
    RECT screen{0, 0, 800, 600};
    Ask(shown, WM_DPICHANGED, MAKEWPARAM(kHuge, kHuge), reinterpret_cast<LPARAM>(&screen));
    hands_.Pump();
    EXPECT_NE(::GetWindowLongPtrW(shown, GWL_STYLE) & WS_HSCROLL, 0);
    EXPECT_NE(::GetWindowLongPtrW(shown, GWL_STYLE) & WS_VSCROLL, 0);
    RECT client{};
    ::GetClientRect(shown, &client);
    const auto left = [&] {
      POINT corner{0, 0};
      ::MapWindowPoints(Drawn(form.cmdClose), shown, &corner, 1);
      return corner.x;
    };
    EXPECT_GT(left(), client.right);
    hands_.ClickAt(Drawn(form.cmdClose), {5, 5});  // brings it into view
    EXPECT_LT(left(), client.right);
    EXPECT_FALSE(form.Visible());
    const LONG before = left();
    Post(shown, WM_HSCROLL, SB_LINEUP);
    EXPECT_EQ(left(), before + window().look().line());
    for (int i = 0; i < 100; ++i) {
      Post(shown, WM_HSCROLL, SB_PAGEUP);
    }
    EXPECT_GT(left(), client.right);
  });
}

TEST_F(LayoutTest, ATextBoxIsAsHighAsItsTextAndStandsInTheMiddleOfItsPlace) {
  TextBox box(form_, "txtName", {120, 120, 2000, 900});
  Label label(form_, "Label1", "One\r\ntwo\r\nthree", {2500, 120, 2000, 900});
  InWindow([&] {
    const RECT inside = BoundsOf(Drawn(box));
    const RECT place = BoundsOf(Drawn(label));
    EXPECT_LT(HeightOf(inside), 2 * window().look().line());
    EXPECT_NEAR(inside.top - place.top, place.bottom - inside.bottom, 1);
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
