#pragma once

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>
#include <QWidget>
#include <optional>

#include "toolkit/changes.h"
#include "toolkit/control.h"
#include "toolkit/twips_bands.h"

namespace nimbrel::toolkit::qt {

/// The window that faces stand in.
class FaceHost {
 public:
  /// Shows at once what a gesture has changed, and puts the keyboard's focus where the toolkit has
  /// it.
  virtual void AfterGesture() = 0;

 protected:
  ~FaceHost() = default;
};

/// The key of the toolkit that is pressed alone or with Shift; nothing for any other.
std::optional<Key> KeyOf(const QKeyEvent& event);

/// Draws one control with a widget of Qt and forwards what the user does with it. It keeps no
/// state of the control and has no rules: a click or key goes to the User... operation of the
/// control, and the widget is then brought to what came of it.
///
/// Both the control and the window must outlive the face. The widget belongs to its parent widget.
class ControlFace : public QObject, public Placed {
 public:
  Control& GetControl() const { return control_; }
  /// The widget that has the control's place.
  virtual QWidget& Widget() const = 0;
  /// The widget that has the keyboard's focus for it.
  virtual QWidget& FocusWidget() const { return Widget(); }

  /// Brings the widget to the control's state.
  void Refresh(const Changes& changes);

  const Control& PlacedControl() const override { return control_; }
  int NeededWidth() const override;
  int NeededHeight(int width) const override;
  bool Stretches() const override { return false; }
  bool FillsHeight() const override { return Stretches(); }

 protected:
  ControlFace(Control& control, FaceHost& host) : control_(control), host_(host) {}

  /// Has the keys, the clicks and the focus of a widget of this face go through it first.
  void Watch(QWidget& widget);
  /// The part of Refresh that depends on the kind of control.
  virtual void Paint(const Changes& changes) = 0;

  bool eventFilter(QObject* watched, QEvent* event) override;
  /// Each gives true if the event ends here, and false if the widget is to have it, too.
  virtual bool OnKeyPress(QKeyEvent& event);
  virtual bool OnMousePress(QWidget& /*widget*/, QMouseEvent& /*event*/) { return false; }
  virtual bool OnDoubleClick(QWidget& widget, QMouseEvent& event) {
    return OnMousePress(widget, event);
  }
  virtual bool OnFocusIn(QWidget& /*widget*/, QEvent& /*event*/) { return false; }
  /// Any other event.
  virtual bool OnOther(QWidget& /*widget*/, QEvent& /*event*/) { return false; }

  /// Makes a gesture and shows what came of it.
  template <class Gesture>
  void Make(const Gesture& gesture) {
    gesture();
    host_.AfterGesture();
  }

 private:
  /// The widget got the focus otherwise than from the toolkit, such as by a screen reader.
  void OnFocusFromOutside(QWidget& widget);

  Control& control_;
  FaceHost& host_;
};

}  // namespace nimbrel::toolkit::qt
