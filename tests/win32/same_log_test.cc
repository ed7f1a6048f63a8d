// The same script gives the same log on the plain objects and in the windows.
#include "tests/support/gestures/same_log.h"

#include "tests/support/gestures/win32/win32_hands.h"
#include "tests/win32/agreement.h"

namespace nimbrel::gestures {
namespace {

class SameLog : public ::testing::TestWithParam<FaceStory> {};

TEST_P(SameLog, OnBothFaces) {
  ExpectSameLog<Win32Hands>(GetParam(), toolkit::win32::Disagreements);
}

INSTANTIATE_TEST_SUITE_P(Stories, SameLog, ::testing::ValuesIn(kFaceStories),
                         [](const auto& story) { return std::string(story.param.name); });

}  // namespace
}  // namespace nimbrel::gestures
