// Whole stories of the weather dialog, in the windows: each script of the folder "stories" gives
// the log that stands beside it. A script begins with the plan that it is played on, "# plan:
// FILE", or with the story that it goes on from, "# after: STORY".
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/locale.h"
#include "tests/support/gestures/win32/win32_hands.h"
#include "tests/tools/xer_gestures.h"
#include "tests/win32/agreement.h"

namespace nimbrel::gestures {
namespace {

const std::filesystem::path kTop = NIMBREL_SOURCE_DIR;
const std::filesystem::path kStories = kTop / "tests/dialog/stories";

std::string Read(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The names of all stories, in their order in the alphabet.
std::vector<std::string> StoryNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kStories)) {
    if (entry.path().extension() == ".gestures") {
      names.push_back(entry.path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Plays a story after those that it goes on from, on the stage of the first. Gives its log.
std::string Play(const std::string& story, Hands& hands, std::unique_ptr<XerStage>& stage) {
  const std::filesystem::path script = kStories / (story + ".gestures");
  std::istringstream text(Read(script));
  std::string key;
  std::string value;
  text.ignore(2) >> key >> value;
  if (key == "after:") {
    Play(value, hands, stage);
  } else {
    stage = std::make_unique<XerStage>(kTop / value);
  }
  std::ostringstream log;
  stage->Play(script, hands, platform::DefaultLocale(), log);
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
  EXPECT_EQ(Play(GetParam(), hands, stage), Read(kStories / (GetParam() + ".log")));
  EXPECT_EQ(disagreements, "");
}

INSTANTIATE_TEST_SUITE_P(Stories, EveryStory, ::testing::ValuesIn(StoryNames()),
                         [](const auto& story) { return story.param; });

}  // namespace
}  // namespace nimbrel::gestures
