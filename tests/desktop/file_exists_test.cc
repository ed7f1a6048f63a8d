#include "tests/desktop/tool_box_test.h"

namespace nimbrel {
namespace {

using modToolBox::FileExists;
using Calls = std::vector<std::string>;

class FileExistsTest : public ToolBoxTest {};

TEST_F(FileExistsTest, AFileThatIsFoundExists) {
  desktop_.found = "book.xls";
  EXPECT_TRUE(FileExists("/data/book.xls", true));
  EXPECT_EQ(desktop_.calls, (Calls{"FindFirst|/data/book.xls"})) << "no message";
}

TEST_F(FileExistsTest, APatternExistsWhenItFindsAnything) {
  desktop_.found = "anything";
  EXPECT_TRUE(FileExists("/data/*.xls", false));
}

TEST_F(FileExistsTest, AMissingFileIsToldOfWhenAskedFor) {
  EXPECT_FALSE(FileExists("/data/book.xls", true));
  EXPECT_EQ(desktop_.calls,
            (Calls{"FindFirst|/data/book.xls",
                   "Show|The file '/data/book.xls' does not exist.|Weather Modeling"}));
}

TEST_F(FileExistsTest, AMissingFileIsNotToldOfOtherwise) {
  EXPECT_FALSE(FileExists("/data/book.xls", false));
  EXPECT_EQ(desktop_.calls, (Calls{"FindFirst|/data/book.xls"}));
}

TEST_F(FileExistsTest, TheEmptyPathNeverExistsAndIsNotLookedFor) {
  desktop_.found = "anything";
  EXPECT_FALSE(FileExists("", true));
  EXPECT_EQ(desktop_.calls, (Calls{"Show|The file '' does not exist.|Weather Modeling"}));
}

class HelpTopic : public ToolBoxTest {};

TEST_F(HelpTopic, IsAPageOfTheHelpFileInTheHostsFolder) {
  modToolBox::ShowHelpTopic("C21_WeatherOverview.html");
  EXPECT_EQ(desktop_.calls,
            (Calls{"HtmlHelp|0|/opt/corvane\\Help.chm::/C21_WeatherOverview.html|0|0"}));
}

TEST_F(HelpTopic, AHostThatFailsEndsIt) {
  recorder().FailOn("Application.Path");
  EXPECT_EQ(ErrorOf([] { modToolBox::ShowHelpTopic("x"); }), 1004);
  EXPECT_TRUE(desktop_.calls.empty());
}

}  // namespace
}  // namespace nimbrel
