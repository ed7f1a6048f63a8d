// The same script gives the same log whether it works the plain objects or the windows, and after
// each gesture the windows show what the objects hold.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/qt/agreement.h"
#include "tests/support/gestures/face_forms.h"
#include "tests/support/gestures/face_stories.h"
#include "tests/support/gestures/gesture_player.h"
#include "tests/support/gestures/qt/qt_hands.h"

namespace nimbrel::gestures {
namespace {

std::string Play(const std::string& script, Hands& hands) {
  std::ostringstream log;
  GesturePlayer player(ParseScript(script, "script"), hands, log);
  toolkit::LargeForm form(player);
  player.Play([&] { form.ShowModal(); });
  return log.str();
}

class SameLog : public ::testing::TestWithParam<FaceStory> {};

TEST_P(SameLog, OnBothFaces) {
  Hands plain;
  const std::string expected = Play(GetParam().script, plain);
  QtHands windows;
  std::string disagreements;
  windows.AfterEach = [&](const toolkit::qt::FormWindow& window) {
    disagreements += toolkit::qt::Disagreements(window);
  };
  EXPECT_EQ(Play(GetParam().script, windows), expected);
  EXPECT_EQ(disagreements, "");
}

INSTANTIATE_TEST_SUITE_P(Stories, SameLog, ::testing::ValuesIn(kFaceStories),
                         [](const auto& story) { return std::string(story.param.name); });

}  // namespace
}  // namespace nimbrel::gestures
