#include "progress/progress_window.h"

#include <QGuiApplication>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>
#include <memory>

namespace nimbrel::progress {
namespace {

constexpr int kWidth = 360;         // pixels
constexpr int kMilliseconds = 200;  // between two looks at the job
constexpr int kPlaceFromTop = 3;    // the window stands in the upper third of the host's

/// Where the host's window is on the screen; empty if it cannot be told.
QRect HostArea(std::int32_t handle) {
  // Only with X windows can a handle of another process be looked up.
  if (handle == 0 || QGuiApplication::platformName() != "xcb") {
    return {};
  }
  const std::unique_ptr<QWindow> window(
      QWindow::fromWinId(static_cast<WId>(static_cast<std::uint32_t>(handle))));
  return window ? window->geometry() : QRect();
}

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
