#pragma once

#include <ostream>

namespace nimbrel::gestures {

/// A script for the forms of face_forms.h, on which every face has to give the log of the plain
/// objects.
struct FaceStory {
  const char* name;
  const char* script;
};

inline std::ostream& operator<<(std::ostream& out, const FaceStory& story) {
  return out << story.name;
}

inline constexpr FaceStory kFaceStories[] = {
    FaceStory{"ButtonsAndBoxes",
              "click cmdAsk\nanswer Yes\nclick cmdAsk\nclick cmdFail\nshow focus\n"
              "file \"/tmp/a & b.xlsx\"\nclick cmdFile\nshow cmdFile.Caption\nclick cmdQuick\n"
              "show focus\nkey cmdQuick Space\nshow focus\nkey cmdAsk Enter\nkey cmdAsk Space\n"
              "click lblLong\nclick Frame1\nclick txtHidden\nclick chkSplit\nclick cmdClose\n"
              "show form\n"},
    FaceStory{"CheckBoxes",
              "show chkOn.Value\nclick chkOn\nshow chkOn.Value\nclick lstCals\ntab 1\n"
              "type txtDescr \"x\"\nkey chkOn Space\nshow chkOn.Value\nclick cmdAdd\nclose\n"
              "key chkOn Enter\nkey chkOn Down\n"},
    FaceStory{"Typing",
              "type txtDescr \"Föhn 2 & 3\"\nshow txtDescr.Text\nkey txtDescr Delete\n"
              "type txtDescr \"\"\nshow txtDescr.Text\ntype txtDescr \"\"\ntype txtDescr \"\\\"a "
              "b\"\n"
              "key txtDescr Space\nkey txtDescr Up\nkey txtDescr Down\nkey txtDescr Escape\n"
              "show txtDescr.Text\nleave\nshow focus\nkey txtDescr Delete\nshow txtDescr.Text\n"
              "type txtDescr \"😀x\"\nkey txtDescr Tab\n"},
    FaceStory{
        "RefusedEverywhere",
        "type txtDate \"bad\"\nleave\nshow focus\nclick cmdClose\nclick chkOn\nrow lstRows 3\n"
        "header lstRows 2\ndblclick lstRows 2\ntab 1\npick lstCals 2\ndblclick lstCals 3\n"
        "type txtDescr \"x\"\nkey cmdAsk Space\nkey chkOn Space\nclick cmdQuick\nclick "
        "lstCals\n"
        "click lstRows\nclick tabs\nclick lblCals\nshow focus\nshow txtDate.Text\n"
        "show lstRows.SelectedItem\nshow lstCals.ListIndex\ntype txtDate \"1\"\nrow lstRows 3\n"
        "show focus\n"},
    FaceStory{"AnErrorInValidate",
              "type txtDate \"error\"\nclick cmdAsk\nshow focus\nclick cmdAsk\n"
              "type txtDate \"error\"\nkey cmdAsk Space\nshow focus\n"
              "type txtDate \"error\"\ntype txtDescr \"y\"\nshow txtDescr.Text\n"
              "type txtDate \"error\"\nrow lstRows 2\nshow lstRows.SelectedItem\n"
              "type txtDate \"error\"\nleave\nshow focus\n"},
    FaceStory{"TypingOverATextAfterAnErrorInValidate",
              "type txtDescr \"old\"\ntype txtDate \"error\"\ntype txtDescr \"new\"\n"
              "show txtDescr.Text\n"},
    FaceStory{"AClickOnABoxLeavesTheCaretAlone",
              "type txtDescr \"storm\"\nclick txtDescr\nkey txtDescr Delete\nshow txtDescr.Text\n"
              "key txtDescr Space\nshow txtDescr.Text\nrow lstRows 2\nclick txtDate\n"
              "key txtDate Delete\nshow txtDate.Text\ntab 1\npick cbCals 1\nclick cbCals\n"
              "key cbCals Delete\nshow cbCals.Text\n"},
    FaceStory{"CharactersThatNoKeyTypesIntoALine",
              "type txtDescr \"a\\nb\\r\tc\"\nshow txtDescr.Text\n"},
    FaceStory{"KeysOnTabsThatLackTheFocus",
              "click chkOn\nclick chkOn\nkey tabs Tab\nshow focus\nclick chkOn\nclick chkOn\n"
              "key tabs Space\nshow focus\ntype txtDate \"bad\"\nkey tabs Escape\nkey tabs Tab\n"
              "show focus\n"},
    FaceStory{"ClosedWhileABoxRefuses", "type txtDate \"bad\"\nclose\nshow form\n"},
    FaceStory{
        "Lists",
        "pick lstCals \"Calendar 11\"\nshow lstCals.ListIndex\npick lstCals 1\npick lstCals 1\n"
        "key lstCals Down\nkey lstCals Up\nkey lstCals Up\ndblclick lstCals 12\n"
        "dblclick lstCals 12\nrow lstCals 3\npick lstCals 13\nshow lstCals\n"
        "click lstCals\nkey lstCals Enter\nkey lstCals Escape\nkey lstCals Space\n"},
    FaceStory{"Rows",
              "row lstRows 40\nshow txtDate.Text\nrow lstRows 1\nkey lstRows Down\nkey lstRows Up\n"
              "key lstRows Up\nheader lstRows 2\nheader lstRows 3\nheader lstRows 5\n"
              "header lstRows 4\nheader lstRows 1\nshow lstRows\ndblclick lstRows 7\n"
              "dblclick lstRows 7\nkey lstRows Space\nrow lstRows 41\ntype txtDate \"99\"\n"
              "show lstRows\ncheck lstRows \"ID3\" on\n"},
    FaceStory{"Checks",
              "tab 1\ncheck lstChecks \"Check 29\" on\ncheck lstChecks \"Check 29\" on\n"
              "check lstChecks \"Check 2\" on\ncheck lstChecks \"Check 29\" off\nrow lstChecks 5\n"
              "key lstChecks Space\nkey lstChecks Down\nkey lstChecks Space\n"
              "check lstChecks \"Check 99\" on\nheader lstChecks 1\nshow lstChecks\n"},
    FaceStory{"Trees",
              "tab 1\nnode tvTasks \"G2.17\"\nshow tvTasks.SelectedItem\nclick chkSplit\n"
              "key tvTasks Up\nkey tvTasks Down\nnode tvTasks \"G2\"\nnode tvTasks \"G2.1\"\n"
              "node tvTasks \"G9\"\nnode tvTasks \"Plan\"\nkey tvTasks Down\nkey tvTasks Enter\n"
              "type txtFind \"G2.17\"\nkey txtFind Enter\nnode tvTasks \"G2.17\"\n"
              "type txtFind \"G2\"\nkey txtFind Enter\nnode tvTasks \"G2.2\"\nshow tvTasks\n"},
    FaceStory{"Combos",
              "tab 1\npick cbCals \"Night shift\"\nshow cbCals.Text\nshow cbCals.ListIndex\n"
              "pick cbCals 2\npick cbCals 4\ntype cbCals \"stand\"\nshow cbCals.ListIndex\n"
              "type cbCals \"STANDARD\"\nshow cbCals.ListIndex\nshow cbCals.Text\nkey cbCals Down\n"
              "key cbCals Down\nkey cbCals Down\nkey cbCals Up\nshow cbCals.Text\nclick cbCals\n"
              "leave\nshow focus\ntype cbCals \"Stan\"\nleave\nshow cbCals\nclick cmdFind\n"
              "pick cbCals 1\nkey cbCals Delete\nshow cbCals.Text\n"},
    FaceStory{"Tabs",
              "tab 1\ntab 1\ntab 0\nclick tabs\nshow focus\ntab 2\ntype txtFind \"x\"\ntab 1\n"
              "type txtFind \"x\"\ntab 0\nshow focus\nkey tabs Down\nleave\nleave\nleave\n"
              "show focus\n"},
    FaceStory{"NestedForms",
              "click cmdAdd\nshow form\nshow focus\ntype txtName \"stay\"\nclick cmdOK\nshow form\n"
              "key txtName Enter\nkey txtName Escape\ntype txtName \"North\"\nclick cmdClose\n"
              "key txtName Enter\nshow form\nshow lstCals\nclick cmdAdd\nkey txtName Escape\n"
              "click cmdAdd\nclose\nclick cmdAdd\nleave\nleave\nshow focus\nkey cmdCancel Enter\n"
              "show form\nclick cmdAdd\n"},
    FaceStory{"LeavingRoundTheForm",
              "show focus\nleave\nshow focus\nleave\nshow focus\nleave\nleave\nleave\nshow focus\n"
              "leave\nleave\nleave\nshow focus\nleave\nleave\nleave\nleave\nshow focus\n"}};

}  // namespace nimbrel::gestures
