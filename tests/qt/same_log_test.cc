// The same script gives the same log on the plain objects and in the windows.
#include "tests/support/gestures/same_log.h"

#include "tests/qt/agreement.h"
#include "tests/support/gestures/qt/qt_hands.h"

namespace nimbrel::gestures {
namespace {

class SameLog : public ::testing::TestWithParam<FaceStory> {};

TEST_P(SameLog, OnBothFaces) {
  ExpectSameLog<QtHands>(GetParam(), toolkit::qt::Disagreements);
}

INSTANTIATE_TEST_SUITE_P(Stories, SameLog, ::testing::ValuesIn(kFaceStories),
                         [](const auto& story) { return std::string(story.param.name); });

}  // namespace
}  // namespace nimbrel::gestures
