#pragma once

#include <functional>

#include "host/cls_corvane.h"
#include "platform/message_box.h"
#include "platform/ref.h"

namespace nimbrel::host {

/// What stands behind the entry points, handed in where the parts are wired together.
struct Seams {
  RiskHandlers handlers;
  /// Makes a fresh weather dialog, shows it modally without an owner window, and returns when it
  /// has closed and gone. Empty where there is no dialog: nothing is then shown.
  std::function<void()> ShowWeatherDialog;
  /// Must outlive the clsNimbrel that it is given to.
  platform::MessageBox* message_box = nullptr;
};

/// The class that the host calls. No operation has an error handler: an error of the host or of
/// what is called goes back to the caller.
class clsNimbrel final : public platform::Object {
 public:
  explicit clsNimbrel(Seams seams);

  /// Opens the weather dialog for the active plan; without one it says so in a message box.
  void Main();
  /// Makes the subscriber of the host's events and starts it, unless there is one.
  void LaunchStartCorvane();
  /// Stops the subscriber, if there is one, and drops it.
  void LaunchStopCorvane();

 private:
  Seams seams_;
  Corvane8::Ref<clsCorvane> m_oCorvane;
};

}  // namespace nimbrel::host
