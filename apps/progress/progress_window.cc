#include "progress/progress_window.h"

#include <QGuiApplication>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>

#include "progress/host_area.h"

namespace nimbrel::progress {
namespace {

constexpr int kWidth = 360;         // pixels
constexpr int kMilliseconds = 200;  // between two looks at the job
constexpr int kPlaceFromTop = 3;    // the window stands in the upper third of the host's

}  // namespace

ProgressWindow::ProgressWindow(const ProgressJob& job)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowStaysOnTopHint),
      job_(job),
      label_(new QLabel(this)) {
  setWindowTitle("Nimbrel");
  setAttribute(Qt::WA_ShowWithoutActivating);
  label_->setTextFormat(Qt::PlainText);
  label_->setWordWrap(true);
  auto* bar = new QProgressBar(this);
  bar->setRange(0, 0);
  bar->setTextVisible(false);
  bar->setAccessibleName("Progress");
  auto* column = new QVBoxLayout(this);
  column->addWidget(label_);
  column->addWidget(bar);
  setFixedWidth(kWidth);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
  timer_.start(kMilliseconds);
  Look();
}

void ProgressWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  MoveBesideHost();
}

void ProgressWindow::Look() {
  if (job_.Runs()) {
    label_->setText(QString::fromStdString(job_.Label()));
  } else {
    QGuiApplication::quit();
  }
}

void ProgressWindow::MoveBesideHost() {
  QRect area = HostArea(job_.Window());
  if (area.isEmpty()) {
    area = screen()->availableGeometry();
  }
  QRect place(QPoint(), sizeHint());
  place.setWidth(width());
  place.moveCenter(area.center());
  place.moveTop(area.top() + (area.height() - place.height()) / kPlaceFromTop);
  move(place.topLeft());
}

}  // namespace nimbrel::progress
