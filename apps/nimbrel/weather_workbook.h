#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dialog/frm_weather.h"
#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "nimbrel/console.h"
#include "platform/automation.h"

namespace nimbrel::cli {

/// The weather dialog over a copy of a plan, never shown: the program presses its buttons and
/// answers for the user. So the commands go the dialog's own way. One at a time.
///
/// What the dialog shows of its progress stands on standard error while it lasts, if that is a
/// terminal.
class UnshownDialog {
 public:
  /// What is said to the dialog in the user's place.
  struct Answers {
    std::string file{};  ///< to file dialogs
    bool yes = false;    ///< to questions; else it is No
  };

  /// Loads the dialog. A plan with weather data counts as a weather plan, also where the user has
  /// switched that off. `servers` makes what the dialog knows as Excel; both must outlive the
  /// object. Raises platform::RuntimeError.
  UnshownDialog(const engine::Plan& plan, platform::AutomationServers& servers, Answers answers,
                Console& console);
  ~UnshownDialog();
  UnshownDialog(const UnshownDialog&) = delete;
  UnshownDialog& operator=(const UnshownDialog&) = delete;

  dialog::frmWeather& form();
  /// Presses a button. What its handler raises comes back as it is.
  void Press(toolkit::CommandButton& button);

  /// The texts of the message boxes that were shown, questions not among them.
  const std::vector<std::string>& messages() const;
  /// Whether the dialog has asked a question.
  bool has_asked() const;
  /// The copy as it now is.
  const engine::Plan& document() const;

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace nimbrel::cli
