#include "toolkit/qt/form_window.h"

#include "tests/qt/window_test.h"

namespace nimbrel::toolkit::qt {
namespace {

using FormWindowTest = WindowTest;

TEST_F(FormWindowTest, KeysReachAFormOfWhichNoControlHasTheFocus) {
  CommandButton button(form_, "cmd", "OK", {120, 120, 1455, 495});
  button.SetDefault(true);
  button.SetEnabled(false);
  button.Click = Heard();
  InWindow([&] {
    button.SetEnabled(true);
    EXPECT_EQ(form_.ActiveControl(), nullptr);
    Press(Qt::Key_Return);
  });
  EXPECT_EQ(log(), Lines{"cmd Click"});
}

TEST_F(FormWindowTest, AKeyThatIsHeldDownPressesAButtonOnce) {
  CommandButton button(form_, "cmd", "OK", {120, 120, 1455, 495});
  button.Click = Heard();
  InWindow([&] {
    for (const int key : {Qt::Key_Space, Qt::Key_Return}) {
      for (const bool again : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, {}, again);
        QApplication::sendEvent(window().WidgetOf(button), &press);
      }
    }
  });
  EXPECT_EQ(log(), (Lines{"cmd Click", "cmd Click"}));
}

}  // namespace
}  // namespace nimbrel::toolkit::qt
