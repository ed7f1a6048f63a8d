#pragma once

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <functional>

#include "tests/toolkit/support.h"
#include "toolkit/qt/form_window.h"
#include "toolkit/qt/item_view.h"
#include "toolkit/qt/qt_text.h"

namespace nimbrel::toolkit::qt {

/// A form that a test fills with controls and works in its window.
class WindowTest : public ToolkitTest {
 protected:
  /// Opens the form's window; what happened before is left out of the log.
  void InWindow(const std::function<void()>& hands) { InWindow(form_, hands); }
  void InWindow(Form& form, const std::function<void()>& hands) {
    WhileOpen(form, [&] {
      FormWindow window(form, nullptr);
      window_ = &window;
      window.show();
      window.activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
      ClearLog();
      hands();
      window_ = nullptr;
    });
  }

  FormWindow& window() const { return *window_; }
  /// The widget that a control is drawn with.
  template <class WidgetType>
  WidgetType& Drawn(const Control& control) const {
    return dynamic_cast<WidgetType&>(*window_->WidgetOf(control));
  }

  /// Keys go to whatever has the focus.
  void Press(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier) const {
    QTest::keyClick(window_->windowHandle(), key, held);
  }
  void Type(const QString& text) const {
    for (const QChar character : text) {
      QTest::sendKeyEvent(QTest::Click, window_->windowHandle(), Qt::Key_unknown,
                          QString(character), Qt::NoModifier);
    }
  }
  void ClickOn(const QWidget& widget, const QPoint& place, bool twice = false) const {
    const QPoint on_window = widget.mapTo(window_, place);
    if (twice) {
      QTest::mouseDClick(window_->windowHandle(), Qt::LeftButton, Qt::NoModifier, on_window);
    } else {
      QTest::mouseClick(window_->windowHandle(), Qt::LeftButton, Qt::NoModifier, on_window);
    }
  }
  void ClickOn(const Control& control) const {
    const QWidget& widget = *window_->WidgetOf(control);
    ClickOn(widget, widget.rect().center());
  }

 private:
  FormWindow* window_ = nullptr;
};

}  // namespace nimbrel::toolkit::qt
