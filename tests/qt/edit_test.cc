#include <QClipboard>
#include <QComboBox>
#include <QInputMethodEvent>

#include "tests/qt/window_test.h"

namespace nimbrel::toolkit::qt {
namespace {

class EditTest : public WindowTest {
 protected:
  EditTest() { box_.Change = Heard(); }

  QLineEdit& line() const { return Drawn<QLineEdit>(box_); }

  TextBox box_{form_, "txt", {120, 120, 3000, 375}};
  TextBox other_{form_, "other", {120, 600, 3000, 375}};
  ComboBox combo_{form_, "cb", {120, 1080, 3000, 375}};
};

TEST_F(EditTest, WhatTheKeyboardMarksIsTheSelectionOfTheBox) {
  box_.SetText("März");
  InWindow([&] {
    Press(Qt::Key_End);
    Press(Qt::Key_Left, Qt::ShiftModifier);
    Press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(box_.SelText(), "rz");
    Press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(box_.SelText(), "ärz");  // the end that moves is still the left one
    Type("m");
    EXPECT_EQ(box_.Text(), "Mm");
  });
}

TEST_F(EditTest, WhatTheMouseMarksIsTheSelectionOfTheBox) {
  box_.SetText("two words");
  InWindow([&] {
    ClickOn(line(), {10, line().height() / 2}, true);
    EXPECT_EQ(box_.SelText(), "two");
  });
  EXPECT_EQ(log(), Lines{});
}

TEST_F(EditTest, ACharacterOfTwoUnitsIsOneCharacter) {
  box_.SetText("a😀b");
  InWindow([&] {
    Press(Qt::Key_Right);
    Press(Qt::Key_Right);
    EXPECT_EQ(box_.SelStart(), 2);
    EXPECT_EQ(line().cursorPosition(), 3);
    Press(Qt::Key_Backspace);
    EXPECT_EQ(line().text(), "ab");
  });
}

TEST_F(EditTest, PastingIsOneChangeWithoutKeys) {
  box_.SetText("ab");
  box_.KeyDown = [](int) {};
  InWindow([&] {
    QGuiApplication::clipboard()->setText("12 3");
    Press(Qt::Key_Right);
    ClearLog();
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(box_.Text(), "a12 3b");
    EXPECT_EQ(box_.SelStart(), 5);
  });
  EXPECT_EQ(log(), Lines{"txt Change"});
}

TEST_F(EditTest, CuttingAndCopyingGoByTheClipboard) {
  box_.SetText("abc");
  InWindow([&] {
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "abc");
    EXPECT_EQ(box_.Text(), "abc");
    Press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(box_.Text(), "");
  });
  EXPECT_EQ(log(), Lines{"txt Change"});
}

TEST_F(EditTest, TypingCanBeUndoneAndDoneAgain) {
  box_.SetText("before");
  InWindow([&] {
    Press(Qt::Key_End);
    Type("12");
    Press(Qt::Key_Backspace);
    EXPECT_EQ(box_.Text(), "before1");
    for (int i = 0; i < 5 && box_.Text() != "before"; ++i) {
      Press(Qt::Key_Z, Qt::ControlModifier);
    }
    EXPECT_EQ(box_.Text(), "before");
    EXPECT_FALSE(line().isUndoAvailable());
    for (int i = 0; i < 5 && box_.Text() != "before1"; ++i) {
      Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    }
    EXPECT_EQ(box_.Text(), "before1");
  });
}

TEST_F(EditTest, ATextThatTheProgramSetsIsNotUndoneByTheUser) {
  InWindow([&] {
    Type("mine");
    box_.SetText("another row's");
    QCoreApplication::processEvents();
    EXPECT_EQ(line().text(), "another row's");
    EXPECT_FALSE(line().isUndoAvailable());
  });
}

TEST_F(EditTest, AHandlerHasTheLastWordOnWhatIsTyped) {
  box_.Change = [&] {
    if (box_.Text().size() > 2) {
      box_.SetText(box_.Text().substr(0, 2));
    }
  };
  InWindow([&] {
    Type("123");
    EXPECT_EQ(box_.Text(), "12");
    EXPECT_EQ(line().text(), "12");
  });
}

TEST_F(EditTest, AWordIsDeletedWhole) {
  box_.SetText("two words");
  InWindow([&] {
    Press(Qt::Key_End);
    Press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(box_.Text(), "two ");
  });
}

TEST_F(EditTest, AnInputMethodsTextCountsWhenItIsDone) {
  InWindow([&] {
    QInputMethodEvent composing("ni", {});
    QApplication::sendEvent(&line(), &composing);
    EXPECT_EQ(box_.Text(), "");
    QInputMethodEvent done;
    done.setCommitString("你");
    QApplication::sendEvent(&line(), &done);
    EXPECT_EQ(box_.Text(), "你");
  });
  EXPECT_EQ(log(), Lines{"txt Change"});
}

TEST_F(EditTest, KeysWithControlTypeNothingUnlessTheyAreAThirdLevel) {
  InWindow([&] {
    QTest::sendKeyEvent(QTest::Click, window().windowHandle(), Qt::Key_Q, "q", Qt::ControlModifier);
    EXPECT_EQ(box_.Text(), "");
    // As AltGr with Q, where that is an at sign.
    QTest::sendKeyEvent(QTest::Click, window().windowHandle(), Qt::Key_At, "@",
                        Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(box_.Text(), "@");
  });
}

TEST_F(EditTest, ABoxThatIsLeftKeepsItsTextAndShowsNoSelection) {
  box_.SetText("abc");
  InWindow([&] {
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Tab);
    EXPECT_EQ(form_.ActiveControl(), &other_);
    EXPECT_FALSE(line().hasSelectedText());
    Press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(form_.ActiveControl(), &box_);
    EXPECT_EQ(line().selectedText(), "abc");
  });
}

TEST_F(EditTest, FocusThatAScreenReaderGivesIsAskedForAsAClickIs) {
  box_.Validate = [&](bool& cancel) { cancel = box_.Text() == "bad"; };
  InWindow([&] {
    Type("bad");
    Drawn<QLineEdit>(other_).setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(form_.ActiveControl(), &box_);
    EXPECT_TRUE(line().hasFocus());
    box_.SetText("good");
    Drawn<QLineEdit>(other_).setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(form_.ActiveControl(), &other_);
  });
}

TEST_F(EditTest, LeavingAComboBoxPicksNothing) {
  combo_.AddItem("Standard");
  combo_.AddItem("Night");
  combo_.Change = Heard();
  InWindow([&] {
    ClickOn(combo_);
    Type("Night");
    EXPECT_EQ(combo_.ListIndex(), 1);
    ClearLog();
    Press(Qt::Key_Tab);
    EXPECT_EQ(form_.ActiveControl(), &box_);
    EXPECT_EQ(combo_.Text(), "Night");
  });
  EXPECT_EQ(log(), Lines{});
}

TEST_F(EditTest, TheWheelAndThePageKeysPickNothing) {
  combo_.AddItem("Standard");
  combo_.AddItem("Night");
  InWindow([&] {
    ClickOn(combo_);
    Press(Qt::Key_PageDown);
    QWheelEvent turn({5, 5}, window().mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(window().WidgetOf(combo_), &turn);
    EXPECT_EQ(combo_.ListIndex(), -1);
  });
}

TEST_F(EditTest, EntriesThatComeLaterLeaveTheTypedTextAlone) {
  InWindow([&] {
    ClickOn(combo_);
    Type("Ni");
    combo_.AddItem("Night");
    QCoreApplication::processEvents();
    EXPECT_EQ(Drawn<QComboBox>(combo_).currentText(), "Ni");
    Type("ght");
    EXPECT_EQ(combo_.ListIndex(), 0);
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::qt
