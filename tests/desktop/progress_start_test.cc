#include <cstdint>
#include <limits>

#include "tests/desktop/tool_box_test.h"

namespace nimbrel {
namespace {

using modToolBox::StartProgress;
using modToolBox::StopProgress;
using Calls = std::vector<std::string>;

class ProgressStart : public ToolBoxTest {};

TEST_F(ProgressStart, AllSettingsAreWrittenInOrderBeforeTheToolStarts) {
  StartProgress("Exporting Weather Calendar to Excel...", 4711, 812);
  EXPECT_EQ(desktop_.calls,
            (Calls{"Save|CorvaneProgress|Options|Running|1",
                   "Save|CorvaneProgress|Options|Label|Exporting Weather Calendar to Excel...",
                   "Save|CorvaneProgress|Options|ParentHwnd|812",
                   "Save|CorvaneProgress|Options|WndHandle|4711",
                   "ShellExecute|0|open|/opt/corvane\\Progress.exe|0|0|0"}));
}

TEST_F(ProgressStart, HandlesAreWrittenAsSignedNumbers) {
  StartProgress("", std::numeric_limits<std::int32_t>::min(), -2);
  EXPECT_EQ(desktop_.calls[2], "Save|CorvaneProgress|Options|ParentHwnd|-2");
  EXPECT_EQ(desktop_.calls[3], "Save|CorvaneProgress|Options|WndHandle|-2147483648");
}

TEST_F(ProgressStart, AMissingToolGoesUnnoticed) {
  desktop_.shell_result = 2;  // file not found
  EXPECT_EQ(ErrorOf([] { StartProgress("x", 1, 2); }), 0);
  EXPECT_EQ(desktop_.calls.size(), 5U) << "no message";
}

TEST_F(ProgressStart, ASettingThatCannotBeSavedEndsTheStart) {
  desktop_.failing_key = "ParentHwnd";
  EXPECT_EQ(ErrorOf([] { StartProgress("x", 1, 2); }), platform::kInvalidProcedureCall);
  EXPECT_EQ(desktop_.calls.size(), 3U) << "neither the window nor the tool";
}

TEST_F(ProgressStart, AStaleRunIsOverwrittenWithoutALook) {
  StartProgress("one", 1, 2);
  desktop_.calls.clear();
  StartProgress("two", 1, 2);
  ASSERT_EQ(desktop_.calls.size(), 5U);
  EXPECT_EQ(desktop_.calls.front(), "Save|CorvaneProgress|Options|Running|1");
  EXPECT_EQ(desktop_.calls.back(), "ShellExecute|0|open|/opt/corvane\\Progress.exe|0|0|0");
}

TEST_F(ProgressStart, StoppingWritesOneSettingAndNoMore) {
  StopProgress();
  EXPECT_EQ(desktop_.calls, (Calls{"Save|CorvaneProgress|Options|Running|0"}));
}

TEST_F(ProgressStart, ServicesThatWereNotWiredAreNothing) {
  modToolBox::Wire({});
  EXPECT_EQ(ErrorOf([] { StopProgress(); }), platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([] { modToolBox::ShowHelpTopic("x"); }), platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([] { modToolBox::FileExists("x", false); }), platform::kObjectNotSet);
}

}  // namespace
}  // namespace nimbrel
