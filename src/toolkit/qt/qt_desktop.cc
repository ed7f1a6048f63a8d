#include "toolkit/qt/qt_desktop.h"

#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QMessageBox>

#include "toolkit/form.h"
#include "toolkit/qt/form_window.h"
#include "toolkit/qt/qt_text.h"

namespace nimbrel::toolkit::qt {
namespace {

/// The filter as Qt writes it: "xls (*.xls *.xlsx)".
QString FilterOf(const FileRequest& request) {
  QString patterns = ToQt(request.pattern).replace(QLatin1Char(';'), QLatin1Char(' '));
  const QString name = ToQt(request.filter_name).section(QLatin1Char('('), 0, 0).trimmed();
  return patterns.isEmpty() ? QString() : name + QLatin1String(" (") + patterns + QLatin1Char(')');
}

}  // namespace

void QtDesktop::RunModal(Form& form) {
  FormWindow window(form, TopWindow());
  windows_.push_back(&window);
  QEventLoop loop;
  window.OnFormHidden = [&loop] { loop.quit(); };
  window.show();
  window.Flush();
  if (form.Visible()) {
    loop.exec();
  }
  if (form.Visible()) {
    // The program is being ended.
    form.Hide();
  }
  windows_.pop_back();
}

Answer QtDesktop::ShowMessage(const Message& message) {
  const bool asks = message.buttons == Buttons::kYesNo;
  QMessageBox box(TopWindow());
  box.setAttribute(Qt::WA_QuitOnClose, false);
  box.setWindowTitle(ToQt(message.title));
  box.setTextFormat(Qt::PlainText);
  box.setText(LinesToQt(message.text));
  box.setIcon(QMessageBox::NoIcon);
  box.setStandardButtons(asks ? QMessageBox::Yes | QMessageBox::No
                              : QMessageBox::StandardButtons(QMessageBox::Ok));
  box.setDefaultButton(asks ? QMessageBox::Yes : QMessageBox::Ok);
  const int button = box.exec();
  if (!asks) {
    return Answer::kOk;
  }
  return button == QMessageBox::Yes ? Answer::kYes : Answer::kNo;
}

std::string QtDesktop::ShowFileDialog(const FileRequest& request) {
  const QString start = QDir(ToQt(request.folder)).filePath(ToQt(request.file_name));
  const QString path = request.save ? QFileDialog::getSaveFileName(TopWindow(), ToQt(request.title),
                                                                   start, FilterOf(request))
                                    : QFileDialog::getOpenFileName(TopWindow(), ToQt(request.title),
                                                                   start, FilterOf(request));
  return FromQt(QDir::toNativeSeparators(path));
}

}  // namespace nimbrel::toolkit::qt
