#include "tests/support/gestures/gesture_script.h"

#include <gtest/gtest.h>

namespace nimbrel::gestures {
namespace {

Gesture One(const std::string& line) {
  const std::vector<Gesture> gestures = ParseScript(line, "script");
  EXPECT_EQ(gestures.size(), 1u) << line;
  return gestures.empty() ? Gesture{} : gestures.front();
}

/// The text of the error that the script raises; empty if it is read.
std::string ErrorOf(const std::string& script) {
  try {
    ParseScript(script, "story.txt");
  } catch (const ScriptError& error) {
    return error.what();
  }
  return {};
}

TEST(GestureScriptTest, BlankLinesAndCommentsMeanNothing) {
  EXPECT_TRUE(ParseScript("", "script").empty());
  EXPECT_TRUE(ParseScript("\n   \n# a comment\n\t# another\r\n", "script").empty());
}

TEST(GestureScriptTest, ALineIsKeptWithoutItsComment) {
  EXPECT_EQ(One("  click  cmdClose   # and away").line, "click  cmdClose");
  EXPECT_EQ(One("type txtFind \"no # comment\"\r\n").line, "type txtFind \"no # comment\"");
}

TEST(GestureScriptTest, TextsHaveTheirEscapes) {
  EXPECT_EQ(One(R"(type txtFind "a\"b\\c\r\n")").text, "a\"b\\c\r\n");
  EXPECT_EQ(One("type txtFind \"\"").text, "");
}

TEST(GestureScriptTest, EachGestureIsRead) {
  EXPECT_EQ(One("leave").kind, GestureKind::kLeave);
  EXPECT_EQ(One("close").kind, GestureKind::kClose);
  EXPECT_EQ(One("click chkSplit").control, "chkSplit");
  EXPECT_EQ(One("key lstWW Down").key, toolkit::Key::kDown);
  EXPECT_EQ(One("pick lst \"NORTH\"").text, "NORTH");
  EXPECT_EQ(One("pick lst 2").text, std::nullopt);
  EXPECT_EQ(One("pick lst 2").number, 2);
  EXPECT_EQ(One("row lst 12").number, 12);
  EXPECT_EQ(One("header lst 3").kind, GestureKind::kHeader);
  EXPECT_EQ(One("dblclick lst 1").kind, GestureKind::kDoubleClick);
  EXPECT_TRUE(One("check lst \"a\" on").on);
  EXPECT_FALSE(One("check lst \"a\" off").on);
  EXPECT_EQ(One("tab 2").number, 2);
  EXPECT_EQ(One("node tv \"A - B\"").text, "A - B");
  EXPECT_EQ(One("answer No").answer, toolkit::Answer::kNo);
  EXPECT_EQ(One("file \"/tmp/a b.xlsx\"").text, "/tmp/a b.xlsx");
  EXPECT_EQ(One("file cancel").text, std::nullopt);
  EXPECT_EQ(One("show txtFind.Text").property, "Text");
  EXPECT_EQ(One("show lstWW").property, "");
  EXPECT_EQ(One("show focus").kind, GestureKind::kShowFocus);
  EXPECT_EQ(One("show form").kind, GestureKind::kShowForm);
}

TEST(GestureScriptTest, ALineThatIsNoGestureIsNamedWithWhatWasExpected) {
  EXPECT_EQ(ErrorOf("leave\n\njump cmdClose\n"), "story.txt:3: no gesture begins with \"jump\"");
  EXPECT_EQ(ErrorOf("type txtFind"),
            "story.txt:1: expected a text in quotes, found the end of the line");
  EXPECT_EQ(ErrorOf("row lst two"), "story.txt:1: expected a number, found \"two\"");
  EXPECT_EQ(ErrorOf("click a b"), "story.txt:1: expected the end of the line, found \"b\"");
  EXPECT_EQ(ErrorOf("answer Maybe"), "story.txt:1: expected one of No, OK, Yes, found \"Maybe\"");
  EXPECT_EQ(ErrorOf("type txtFind \"open"), "story.txt:1: a text without its closing quote");
}

TEST(GestureScriptTest, NothingElseIsAGesture) {
  for (const char* line : {"Click cmdClose",
                           "click",
                           "click \"cmdClose\"",
                           "key txt F1",
                           "key txt",
                           "pick lst",
                           "row lst -1",
                           "row lst 1.5",
                           "row lst 99999999999",
                           "tab",
                           "tab one",
                           "check lst \"a\"",
                           "check lst a on",
                           "node tv",
                           "answer",
                           "file",
                           "file path",
                           "show",
                           "show .Text",
                           "show txt.",
                           "\"leave\"",
                           "leave now",
                           "type txt \"a\\t\"",
                           "type txt \"a\" \"b\""}) {
    EXPECT_NE(ErrorOf(line), "") << line;
  }
}

}  // namespace
}  // namespace nimbrel::gestures
