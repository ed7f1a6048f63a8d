// nimbrel-screenshots [--dark] [--points N] PLAN.nplan FOLDER
//
// Opens each page of the weather dialog, each small dialog and each kind of message box on a plan
// with weather and puts a picture of its window into the folder. The plan is changed.
#include <QApplication>
#include <QMessageBox>
#include <QPixmap>
#include <QStyleFactory>
#include <QTimer>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "dialog/frm_convert_cal.h"
#include "platform/locale.h"
#include "tests/support/gestures/qt/qt_hands.h"
#include "tests/tools/gesture_tool.h"
#include "tests/tools/shots.h"
#include "toolkit/qt/form_window.h"
#include "toolkit/qt/qt_desktop.h"

namespace nimbrel::gestures {
namespace {

QPalette DarkPalette() {
  QPalette palette(QColor(53, 53, 53), QColor(53, 53, 53));
  palette.setColor(QPalette::WindowText, Qt::white);
  palette.setColor(QPalette::Text, Qt::white);
  palette.setColor(QPalette::ButtonText, Qt::white);
  palette.setColor(QPalette::Base, QColor(25, 25, 25));
  palette.setColor(QPalette::AlternateBase, QColor(53, 53, 53));
  palette.setColor(QPalette::Button, QColor(53, 53, 53));
  palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
  palette.setColor(QPalette::HighlightedText, Qt::black);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(80, 80, 80));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(127, 127, 127));
  }
  return palette;
}

void Save(const QPixmap& picture, const std::string& folder, const std::string& name) {
  const QString path = QString::fromStdString(folder + "/" + name + ".png");
  if (!picture.save(path)) {
    throw std::runtime_error(path.toStdString() + ": cannot be written");
  }
}

/// The windows that one opened over, and itself.
int Depth(const QWidget& window) {
  return window.parentWidget() == nullptr ? 1 : 1 + Depth(*window.parentWidget());
}

void TakeShot(const Shot& shot, const std::string& plan, const std::string& folder) {
  std::string script = shot.script;
  if (const auto at = script.find("%PLAN%"); at != std::string::npos) {
    script.replace(at, 6, plan);
  }
  QPixmap last;
  int deepest = 0;
  QtHands hands;
  hands.AfterEach = [&](const toolkit::qt::FormWindow& window) {
    // When the script is at its end the windows below come up again, one by one.
    if (&window == hands.TopWindow() && Depth(window) >= deepest) {
      deepest = Depth(window);
      last = hands.TopWindow()->grab();
    }
  };
  std::ostringstream log;
  std::function<void(toolkit::Desktop&)> open;
  if (shot.converts) {
    open = [](toolkit::Desktop& desktop) { dialog::frmConvertCal(desktop).ShowModal(); };
  }
  PlayOnPlan(plan, ParseScript(script, shot.name), hands, platform::DefaultLocale(), log, open);
  if (log.str().find("cannot: ") != std::string::npos) {
    throw std::runtime_error(std::string(shot.name) + " cannot be played:\n" + log.str());
  }
  Save(last, folder, shot.name);
}

void TakeBox(const BoxShot& box, const std::string& folder) {
  toolkit::qt::QtDesktop desktop;
  QTimer::singleShot(100, qApp, [&] {
    QWidget& window = *QApplication::activeModalWidget();
    Save(window.grab(), folder, box.name);
    window.close();
  });
  desktop.MsgBox(box.text, "Weather Modeling", box.buttons);
}

int Run(const QStringList& arguments) {
  QStringList files;
  for (int i = 1; i < arguments.size(); ++i) {
    if (arguments[i] == "--dark") {
      QApplication::setPalette(DarkPalette());
    } else if (arguments[i] == "--points" && i + 1 < arguments.size()) {
      QFont font = QApplication::font();
      font.setPointSizeF(arguments[++i].toDouble());
      QApplication::setFont(font);
    } else {
      files << arguments[i];
    }
  }
  if (files.size() != 2) {
    std::cerr << "nimbrel-screenshots: expected [--dark] [--points N] PLAN.nplan FOLDER\n";
    return 2;
  }
  const std::string plan = files[0].toStdString();
  const std::string folder = files[1].toStdString();
  for (const Shot& shot : kShots) {
    TakeShot(shot, plan, folder);
  }
  for (const BoxShot& box : kBoxShots) {
    TakeBox(box, folder);
  }
  return 0;
}

}  // namespace
}  // namespace nimbrel::gestures

int main(int argc, char** argv) {
  try {
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    return nimbrel::gestures::Run(QApplication::arguments());
  } catch (const std::exception& error) {
    std::cerr << "nimbrel-screenshots: " << error.what() << '\n';
    return 4;
  }
}
