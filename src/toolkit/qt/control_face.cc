#include "toolkit/qt/control_face.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

namespace nimbrel::toolkit::qt {
namespace {

/// Keys that go on coming while they are held down, and mean something new each time.
bool Repeats(Key key) {
  return key != Key::kEnter && key != Key::kEscape;
}

}  // namespace

std::optional<Key> KeyOf(const QKeyEvent& event) {
  if ((event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != 0) {
    return std::nullopt;
  }
  switch (event.key()) {
    case Qt::Key_Backspace:
      return Key::kBackspace;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return Key::kTab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Key::kEnter;
    case Qt::Key_Escape:
      return Key::kEscape;
    case Qt::Key_Space:
      return Key::kSpace;
    case Qt::Key_End:
      return Key::kEnd;
    case Qt::Key_Home:
      return Key::kHome;
    case Qt::Key_Left:
      return Key::kLeft;
    case Qt::Key_Up:
      return Key::kUp;
    case Qt::Key_Right:
      return Key::kRight;
    case Qt::Key_Down:
      return Key::kDown;
    case Qt::Key_Delete:
      return Key::kDelete;
    default:
      return std::nullopt;
  }
}

void ControlFace::Refresh(const Changes& changes) {
  if (changes.Has(Property::kVisible)) {
    Widget().setVisible(control_.Visible());
  }
  if (changes.Has(Property::kEnabled)) {
    Widget().setEnabled(control_.Enabled());
  }
  Paint(changes);
}

int ControlFace::NeededWidth() const {
  return Widget().minimumSizeHint().width();
}

int ControlFace::NeededHeight(int /*width*/) const {
  return Widget().minimumSizeHint().height();
}

void ControlFace::Watch(QWidget& widget) {
  // Neither clicks nor Qt's own tab order move the focus: the toolkit does.
  if (widget.focusPolicy() != Qt::NoFocus) {
    widget.setFocusPolicy(Qt::TabFocus);
  }
  widget.installEventFilter(this);
}

bool ControlFace::eventFilter(QObject* watched, QEvent* event) {
  auto& widget = static_cast<QWidget&>(*watched);
  switch (event->type()) {
    case QEvent::KeyPress:
      return OnKeyPress(static_cast<QKeyEvent&>(*event));
    case QEvent::MouseButtonPress:
      return OnMousePress(widget, static_cast<QMouseEvent&>(*event));
    case QEvent::MouseButtonDblClick:
      return OnDoubleClick(widget, static_cast<QMouseEvent&>(*event));
    case QEvent::FocusIn:
      OnFocusFromOutside(widget);
      return OnFocusIn(widget, *event);
    default:
      return OnOther(widget, *event);
  }
}

bool ControlFace::OnKeyPress(QKeyEvent& event) {
  const std::optional<Key> key = KeyOf(event);
  if (key && (Repeats(*key) || !event.isAutoRepeat())) {
    const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
    Make([&] { control_.UserKey(*key, shift); });
  }
  return key.has_value();
}

void ControlFace::OnFocusFromOutside(QWidget& widget) {
  if (control_.HasFocus()) {
    return;
  }
  // Later, since Qt also moves the focus on its own for a moment, when a widget goes.
  QTimer::singleShot(0, this, [this, focused = QPointer<QWidget>(&widget)] {
    if (!focused.isNull() && focused->hasFocus() && !control_.HasFocus()) {
      Make([this] { control_.UserFocus(); });
    }
  });
}

}  // namespace nimbrel::toolkit::qt
