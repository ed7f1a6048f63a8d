#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/support/gestures/face_forms.h"
#include "tests/support/gestures/face_stories.h"
#include "tests/support/gestures/gesture_player.h"

namespace nimbrel::gestures {

/// Plays a script on the large form. Gives the log.
inline std::string PlayOnLargeForm(const std::string& script, Hands& hands) {
  std::ostringstream log;
  GesturePlayer player(ParseScript(script, "script"), hands, log);
  toolkit::LargeForm form(player);
  player.Play([&] { form.ShowModal(); });
  return log.str();
}

/// The same script gives the same log whether it works the plain objects or the windows, and after
/// each gesture the windows show what the objects hold. `disagreements` tells of a window what it
/// shows otherwise.
template <class WindowHands, class Disagreements>
void ExpectSameLog(const FaceStory& story, const Disagreements& disagreements) {
  Hands plain;
  const std::string expected = PlayOnLargeForm(story.script, plain);
  WindowHands windows;
  std::string found;
  windows.AfterEach = [&](const auto& window) { found += disagreements(window); };
  EXPECT_EQ(PlayOnLargeForm(story.script, windows), expected);
  EXPECT_EQ(found, "");
}

}  // namespace nimbrel::gestures
