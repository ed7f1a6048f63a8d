// Whole stories of the weather dialog, in the windows: each gives the log that stands beside it.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "platform/locale.h"
#include "tests/support/gestures/story_files.h"
#include "tests/support/gestures/win32/win32_hands.h"
#include "tests/tools/xer_gestures.h"
#include "tests/win32/agreement.h"

namespace nimbrel::gestures {
namespace {

/// Plays a story after those that it goes on from, on the stage of the first. Gives its log.
std::string Play(const std::string& story, Hands& hands, std::unique_ptr<XerStage>& stage) {
  const StoryStart start = StartOf(story);
  if (start.key == "after:") {
    Play(start.value, hands, stage);
  } else {
    stage = std::make_unique<XerStage>(kTop / start.value);
  }
  std::ostringstream log;
  stage->Play(ScriptOf(story), hands, platform::DefaultLocale(), log);
  return log.str();
}

class EveryStory : public ::testing::TestWithParam<std::string> {};

TEST_P(EveryStory, GivesTheLogThatStandsBesideIt) {
  Win32Hands hands;
  std::string disagreements;
  hands.AfterEach = [&](const toolkit::win32::FormWindow& window) {
    disagreements += toolkit::win32::Disagreements(window);
  };
  std::unique_ptr<XerStage> stage;
  EXPECT_EQ(Play(GetParam(), hands, stage), LogBeside(GetParam()));
  EXPECT_EQ(disagreements, "");
}

INSTANTIATE_TEST_SUITE_P(Stories, EveryStory, ::testing::ValuesIn(StoryNames()),
                         [](const auto& story) { return story.param; });

}  // namespace
}  // namespace nimbrel::gestures
