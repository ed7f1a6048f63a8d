#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/gestures/gesture_log.h"
#include "tests/support/gestures/gesture_script.h"
#include "tests/support/gestures/hands.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// A desktop whose user is a script. Gestures go to the form on top; a form that is shown from a
/// handler takes the next ones until it is closed. Message boxes and file dialogs take the answers
/// that the script has queued; without one a message box gets OK or No and a file dialog is
/// cancelled.
///
/// When the script ends with forms open, nothing more is logged, and each form is left by its
/// window's own button.
class GesturePlayer final : public toolkit::Desktop {
 public:
  /// `hands` and `log` must outlive the player.
  GesturePlayer(std::vector<Gesture> script, Hands& hands, std::ostream& log);

  /// Runs `open`, which shows the dialog, and then what is left of the script. A run-time error of
  /// `open` is logged as one that reached the default handling.
  void Play(const std::function<void()>& open);

 protected:
  void RunModal(toolkit::Form& form) override;
  toolkit::Answer ShowMessage(const toolkit::Message& message) override;
  std::string ShowFileDialog(const toolkit::FileRequest& request) override;

 private:
  /// Plays one gesture; false at the end of the script.
  bool PlayNext();
  void LeaveByItself(toolkit::Form& form);
  /// Why the gesture cannot be made; empty if it was.
  std::string Make(const Gesture& gesture);
  std::string MakeOnForm(const Gesture& gesture, toolkit::Form& form);
  std::string MakeOnControl(const Gesture& gesture, toolkit::Control& control);
  std::string Pick(const Gesture& gesture, toolkit::Control& control);
  std::string ClickRow(const Gesture& gesture, toolkit::Control& control);
  std::string Check(const Gesture& gesture, toolkit::ListView& list);
  std::string ClickNode(const std::string& text, toolkit::TreeView& tree);
  std::string PickTab(const Gesture& gesture, toolkit::Form& form);
  std::string Show(const Gesture& gesture, const toolkit::Control& control);

  std::vector<Gesture> script_;
  std::size_t next_ = 0;
  Hands& hands_;
  GestureLog log_;
  std::deque<toolkit::Answer> answers_;
  std::deque<std::string> files_;
};

}  // namespace nimbrel::gestures
