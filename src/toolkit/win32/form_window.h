#pragma once

#include <windows.h>

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "toolkit/form.h"
#include "toolkit/twips_bands.h"
#include "toolkit/win32/control_face.h"
#include "toolkit/win32/pane.h"
#include "toolkit/win32/reader_names.h"

namespace nimbrel::toolkit::win32 {

class ContainerFace;

/// The window of a form. It shows the form's controls as they are when it is made, follows their
/// changes, and forwards what the user does. Changes are painted when Windows next comes round to
/// it, or at the end of a gesture that is made here.
///
/// The window hears the form as its observer; the form must outlive it. It has to be made and used
/// on one thread. From Show on, for as long as it lives, its owner takes no input; without an owner
/// none of the thread's other windows does.
class FormWindow final : private FormObserver, private FaceHost {
 public:
  /// `owner` may be null: the window then opens on the screen of the window that is active now.
  /// Raises error 1004 if the system does not make the windows; nothing of them is left then.
  FormWindow(Form& form, HWND owner);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  const Form& ShownForm() const { return form_; }
  HWND Window() const { return window_; }

  void Show();
  /// Shows at once what has changed since it was painted last.
  void Flush();
  /// Handles a message of the thread's queue as a loop has to while the window is open. Raises what
  /// has gone wrong in the windows meanwhile.
  void Dispatch(const MSG& message);

  /// The window of a control, and the one that it has the keyboard's focus with; null for a control
  /// that is not of this form.
  HWND WindowOf(const Control& control) const;
  HWND FocusWindowOf(const Control& control) const;
  /// Scrolls, if the window is too small for all, so that a place of one of its windows can be
  /// seen.
  void BringIntoView(HWND window, POINT place);

  /// Font and resolution of the window.
  const Look& look() const override { return *look_; }

 private:
  struct Entry {
    std::unique_ptr<ControlFace> face;
    Changes changes;
  };
  /// What of the colors depends on the desktop's style.
  struct Grounds {
    COLORREF form = 0;
    COLORREF page = 0;
    HBRUSH form_brush = nullptr;
    HBRUSH page_brush = nullptr;
  };

  /// The window of a form that has none yet, which the destructor takes as it takes any other.
  struct Unmade {};
  FormWindow(Form& form, HWND owner, Unmade unmade);

  void OnControlChanged(Control& control, Property property) override;
  void OnFormChanged() override;
  void AfterGesture() override { Flush(); }
  void Defer(std::function<void()> action) override;
  void Keep(std::exception_ptr error) noexcept override;
  COLORREF Ground(bool on_page) const override { return on_page ? grounds_.page : grounds_.form; }
  HBRUSH GroundBrush(bool on_page) const override {
    return on_page ? grounds_.page_brush : grounds_.form_brush;
  }
  bool TurnPage(HWND inside, bool back) override;

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  std::optional<LRESULT> Handle(UINT message, WPARAM w, LPARAM l);
  void OnKeyDown(WPARAM code);
  void OnNewScale(UINT dpi, const RECT& bounds);
  void OnNewStyle();
  void OnScroll(int bar, int action);
  void TellLimits(MINMAXINFO& limits) const;

  /// Makes the faces of a container's controls in a pane. True if one of them makes use of more
  /// height.
  bool FillPane(const Container& container, const Pane& pane, TwipsBands& bands);
  bool AddFace(Control& control, const Pane& pane, TwipsBands& bands);
  void TakeGrounds();
  void ScheduleFlush();
  void RunDeferred();
  void PlaceFocus();
  void Arrange();
  void ScrollTo(POINT place);
  SIZE LeastClient() const;
  void FitToScreen();
  /// Takes the input from a window that has it, until this one goes.
  void Block(HWND window);
  /// Block(), as the system calls it for each window of a thread; `form` is the form window.
  static BOOL CALLBACK BlockOne(HWND window, LPARAM form);

  PaneClass pane_class_;
  Form& form_;
  HWND owner_;
  std::vector<HWND> blocked_;
  HWND window_ = nullptr;
  std::unique_ptr<Look> look_;
  Grounds grounds_;
  ReaderNames names_;
  std::unique_ptr<Pane> content_;
  TwipsBands bands_;
  std::unordered_map<const Control*, Entry> faces_;
  POINT scrolled_{};
  std::deque<std::function<void()>> deferred_;
  std::exception_ptr error_;
  bool flush_is_due_ = false;
};

}  // namespace nimbrel::toolkit::win32
