#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>

#include "progress/progress_job.h"

namespace nimbrel::progress {

/// A small window with the job's text and a bar that keeps moving. Closes when the job no longer
/// runs.
class ProgressWindow final : public QWidget {
 public:
  /// `job` must outlive the window.
  explicit ProgressWindow(const ProgressJob& job);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Look();
  void MoveBesideHost();

  const ProgressJob& job_;
  QLabel* label_;
  QTimer timer_;
};

}  // namespace nimbrel::progress
