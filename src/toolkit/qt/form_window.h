#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "toolkit/form.h"
#include "toolkit/qt/control_face.h"

class QScrollArea;

namespace nimbrel::toolkit::qt {

class ContainerFace;

/// The window of a form. It shows the form's controls as they are when it is made, follows their
/// changes, and forwards what the user does. Changes are painted when Qt next comes round to it, or
/// at the end of a gesture that is made here.
///
/// The window hears the form as its observer; the form must outlive it.
class FormWindow final : public QDialog, private FormObserver, private FaceHost {
 public:
  /// `parent` may be null; the window is modal over all others.
  FormWindow(Form& form, QWidget* parent);
  ~FormWindow() override;

  const Form& ShownForm() const { return form_; }

  /// Runs when the form is no longer visible. The window stays until it is destroyed.
  std::function<void()> OnFormHidden;

  /// Shows at once what has changed since it was painted last.
  void Flush();

  /// The widget of a control; null for one that is not of this form.
  QWidget* WidgetOf(const Control& control) const;
  /// The widget that a control has the keyboard's focus with; null as before.
  QWidget* FocusWidgetOf(const Control& control) const;
  /// Scrolls the window, if it is too small for all, so that a place of a widget can be seen.
  void BringIntoView(const QWidget& widget, const QPoint& place);

  /// Escape and the window's own button come here; only the form closes the window.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void OnControlChanged(Control& control, Property property) override;
  void OnFormChanged() override;
  void AfterGesture() override;

  /// Makes the faces of a container's controls in `pane`. True if one of them makes use of more
  /// height.
  bool FillPane(const Container& container, QWidget& pane, int width, int height, bool whole);
  bool AddFace(Control& control, QWidget& pane, class TwipsLayout& layout);
  void ScheduleFlush();
  void PlaceFocus();
  void FitToScreen();

  struct Entry {
    std::unique_ptr<ControlFace> face;
    Changes changes;
  };

  Form& form_;
  QScrollArea& area_;
  std::unordered_map<const Control*, Entry> faces_;
  bool flush_is_due_ = false;
};

}  // namespace nimbrel::toolkit::qt
