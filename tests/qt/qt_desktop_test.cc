#include "toolkit/qt/qt_desktop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "tests/support/gestures/face_forms.h"
#include "toolkit/qt/form_window.h"

namespace nimbrel::toolkit::qt {
namespace {

/// Runs `hands` as soon as a window of this kind is the one that takes input.
template <class Window>
void OnNext(const std::function<void(Window&)>& hands) {
  QTimer::singleShot(0, qApp, [hands] {
    auto* const window = dynamic_cast<Window*>(QApplication::activeModalWidget());
    if (window != nullptr && window->isVisible()) {
      hands(*window);
    } else {
      OnNext<Window>(hands);
    }
  });
}

QPushButton& ButtonOf(FormWindow& window, const Control& control) {
  return dynamic_cast<QPushButton&>(*window.WidgetOf(control));
}

class QtDesktopTest : public ::testing::Test {
 protected:
  QtDesktopTest() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

  QtDesktop desktop_;
  LargeForm form_{desktop_};
};

TEST_F(QtDesktopTest, AFormIsOpenUntilItIsHidden) {
  OnNext<FormWindow>([&](FormWindow& window) {
    EXPECT_EQ(window.windowTitle(), "Large");
    EXPECT_TRUE(window.isModal());
    form_.SetCaption("Larger");
    QCoreApplication::processEvents();
    EXPECT_EQ(window.windowTitle(), "Larger");
    ButtonOf(window, form_.cmdClose).click();
  });
  form_.ShowModal();
  EXPECT_FALSE(form_.Visible());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtDesktopTest, TheWindowsOwnButtonAsksTheForm) {
  bool refuse = true;
  form_.Form_Unload = [&](bool& cancel) { cancel = refuse; };
  OnNext<FormWindow>([&](FormWindow& window) {
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(form_.Visible());
    refuse = false;
    window.close();
  });
  form_.ShowModal();
  EXPECT_FALSE(form_.Loaded());
}

TEST_F(QtDesktopTest, AFormShownFromAHandlerIsOnTop) {
  OnNext<FormWindow>([&](FormWindow& large) {
    OnNext<FormWindow>([&](FormWindow& small) {
      EXPECT_NE(&small, &large);
      EXPECT_EQ(small.parentWidget(), &large);
      small.close();
    });
    ButtonOf(large, form_.cmdAdd).click();
    EXPECT_EQ(QApplication::activeModalWidget(), &large);
    large.close();
  });
  form_.ShowModal();
}

TEST_F(QtDesktopTest, AFormCanBeShownAgain) {
  for (int i = 0; i < 2; ++i) {
    OnNext<FormWindow>([](FormWindow& window) { window.close(); });
    form_.ShowModal();
    EXPECT_FALSE(form_.Visible());
  }
}

TEST_F(QtDesktopTest, AMessageBoxHasItsTextTitleAndOneButton) {
  OnNext<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.text(), "3 < 4 & <b>more</b>\nsecond line");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.windowTitle(), "Weather Modeling");
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  EXPECT_EQ(desktop_.MsgBox("3 < 4 & <b>more</b>\r\nsecond line", "Weather Modeling"), Answer::kOk);
}

TEST_F(QtDesktopTest, AQuestionIsAnsweredByItsButtonsAndEscapeMeansNo) {
  const std::pair<std::function<void(QMessageBox&)>, Answer> ways[] = {
      {[](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); }, Answer::kYes},
      {[](QMessageBox& box) { box.button(QMessageBox::No)->click(); }, Answer::kNo},
      {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }, Answer::kYes},
      {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }, Answer::kNo}};
  for (const auto& [way, answer] : ways) {
    OnNext<QMessageBox>([&way = way](QMessageBox& box) {
      EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
      way(box);
    });
    EXPECT_EQ(desktop_.MsgBox("Remove all?", "Weather Modeling", Buttons::kYesNo), answer);
  }
}

TEST_F(QtDesktopTest, WhileABoxIsOpenTheFormTakesNoInput) {
  OnNext<FormWindow>([&](FormWindow& window) {
    OnNext<QMessageBox>([&](QMessageBox& box) {
      const bool before = form_.chkOn.Value();
      QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                        window.WidgetOf(form_.chkOn)->mapTo(&window, QPoint(8, 8)));
      EXPECT_EQ(form_.chkOn.Value(), before);
      box.close();
    });
    ButtonOf(window, form_.cmdAsk).click();
    window.close();
  });
  form_.ShowModal();
}

TEST_F(QtDesktopTest, AFileDialogOffersWhatIsAskedFor) {
  OnNext<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Import");
    EXPECT_EQ(dialog.nameFilters(), QStringList{"xls (*.xls *.xlsx)"});
    EXPECT_EQ(dialog.directory().path(), QDir::tempPath());
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
    dialog.reject();
  });
  EXPECT_EQ(desktop_.PickFile({.title = "Import",
                               .folder = QDir::tempPath().toStdString(),
                               .filter_name = "xls (*.xls;*.xlsx)",
                               .pattern = "*.xls;*.xlsx"}),
            "");
}

TEST_F(QtDesktopTest, AFileThatIsChosenComesBackAsItsPath) {
  const QString path = QDir::temp().filePath("nimbrel-qt-ä.xlsx");
  QFile::remove(path);
  OnNext<QFileDialog>([&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    dialog.selectFile(path);
    QMetaObject::invokeMethod(&dialog, "accept");
  });
  EXPECT_EQ(desktop_.PickFile({.title = "Export", .save = true}),
            QDir::toNativeSeparators(path).toStdString());
}

}  // namespace
}  // namespace nimbrel::toolkit::qt
