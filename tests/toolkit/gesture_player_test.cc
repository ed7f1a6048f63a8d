#include "tests/support/gestures/gesture_player.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/runtime_error.h"
#include "toolkit/buttons.h"
#include "toolkit/frame.h"

namespace nimbrel::gestures {
namespace {

using namespace toolkit;

/// A small dialog that is shown from a handler of the large one.
class SmallForm final : public Form {
 public:
  explicit SmallForm(Desktop& desktop) : Form(desktop, "frmSmall", "Small", 2000, 1000) {
    cmdOK.SetDefault(true);
    cmdOK.Click = [this] {
      confirmed = true;
      Hide();
    };
    cmdCancel.SetCancel(true);
    cmdCancel.Click = [this] { Hide(); };
  }

  bool confirmed = false;
  TextBox txtName{*this, "txtName"};
  CommandButton cmdOK{*this, "cmdOK", "OK"};
  CommandButton cmdCancel{*this, "cmdCancel", "Cancel"};
};

/// A dialog with one control of each kind.
class LargeForm final : public Form {
 public:
  explicit LargeForm(Desktop& desktop) : Form(desktop, "frmLarge", "Large", 6000, 4000) {
    txtDate.Validate = [this, &desktop](bool& cancel) {
      if (txtDate.Text() == "bad") {
        desktop.MsgBox("bad is not a valid date!", "Weather Modeling");
        cancel = true;
      }
    };
    txtDate.Change = [] {};
    cmdAdd.Click = [this, &desktop] {
      SmallForm small(desktop);
      small.ShowModal();
      if (small.confirmed) {
        lstCals.AddItem(small.txtName.Text());
        lstCals.SetListIndex(lstCals.ListCount() - 1);
      }
    };
    cmdFail.Click = [] { throw platform::RuntimeError(5, "No such \"task\""); };
    cmdAsk.Click = [&desktop] {
      desktop.MsgBox("Remove all?\r\nGo on?", "Weather Modeling", Buttons::kYesNo);
    };
    cmdFile.Click = [this, &desktop] { cmdFile.SetCaption(desktop.PickFile({.title = "Import"})); };
    cmdClose.Click = [this] {
      Hide();
      Unload();
    };
    lstCals.Change = [] {};
    lstRows.ColumnHeaders().Add("ID", 0);
    lstRows.ColumnHeaders().Add("Start", 1450);
    for (const char* id : {"A", "B"}) {
      lstRows.ListItems().Add({}, {}, id)->SetSubItems(1, std::string("start \"") + id + '"');
    }
    lstRows.ItemClick = [](const ListItemRef&) {};
    lstRows.ColumnClick = [](const ColumnHeader&) {};
    lstRows.DblClick = [] {};
    lstChecks.SetCheckBoxes(true);
    lstChecks.ListItems().Add({}, "NORTH", "North");
    lstChecks.ListItems().Add({}, "SOUTH", "South");
    lstChecks.ItemCheck = [](const ListItemRef&) {};
    cbCals.AddItem("Standard");
    images.Add({});
    tvTasks.SetImages(&images);
    const NodeRef root = tvTasks.Nodes().Add("k", "Plan", 1);
    root->SetExpanded(true);
    tvTasks.Nodes().Add(root, Relationship::kChild, "kA", "A - Piles");
    tvTasks.NodeClick = [](const NodeRef&) {};
  }

  ImageList images{16, 16};
  TextBox txtDate{*this, "txtDate"};
  CommandButton cmdAdd{*this, "cmdAdd", "Add..."};
  CommandButton cmdFail{*this, "cmdFail", "Fail"};
  CommandButton cmdAsk{*this, "cmdAsk", "Ask"};
  CommandButton cmdFile{*this, "cmdFile", "File"};
  CommandButton cmdClose{*this, "cmdClose", "Close"};
  CheckBox chkSplit{*this, "chkSplit", "Split"};
  ListBox lstCals{*this, "lstCals"};
  ComboBox cbCals{*this, "cbCals"};
  ListView lstRows{*this, "lstRows"};
  ListView lstChecks{*this, "lstChecks", {}, ListViewStyle::kList};
  TreeView tvTasks{*this, "tvTasks"};
  TabStrip tabs{*this, "tabs", {"One", "Two"}};
  TextBox txtOnTwo{tabs.Page(1), "txtOnTwo"};
};

/// The log of a script played on a fresh dialog.
std::string Play(const std::string& script) {
  std::ostringstream log;
  Hands hands;
  GesturePlayer player(ParseScript(script, "script"), hands, log);
  LargeForm form(player);
  player.Play([&] { form.ShowModal(); });
  EXPECT_EQ(player.Top(), nullptr);
  return log.str();
}

TEST(GesturePlayerTest, TypingLogsEachKeysEvent) {
  EXPECT_EQ(Play("type txtDate \"01\"\nshow txtDate.Text\n"),
            "> type txtDate \"01\"\n"
            "event txtDate Change\n"
            "event txtDate Change\n"
            "> show txtDate.Text\n"
            "txtDate.Text = \"01\"\n");
}

TEST(GesturePlayerTest, ARefusedBoxKeepsTheFocusAndSwallowsTheClick) {
  EXPECT_EQ(Play("type txtDate \"bad\"\nclick cmdClose\nshow focus\nshow form\n"),
            "> type txtDate \"bad\"\n"
            "event txtDate Change\nevent txtDate Change\nevent txtDate Change\n"
            "> click cmdClose\n"
            "event txtDate Validate\n"
            "box \"Weather Modeling\" \"bad is not a valid date!\" OK -> OK\n"
            "> show focus\nfocus = \"txtDate\"\n"
            "> show form\nform = \"frmLarge\"\n");
}

TEST(GesturePlayerTest, LeaveMovesTheFocusOnAsTheTabKeyDoes) {
  EXPECT_EQ(Play("leave\nshow focus\nkey cmdAdd Tab\nshow focus\n"),
            "> leave\nevent txtDate Validate\n> show focus\nfocus = \"cmdAdd\"\n"
            "> key cmdAdd Tab\n> show focus\nfocus = \"cmdFail\"\n");
}

TEST(GesturePlayerTest, ASmallDialogTakesTheGesturesUntilItIsClosed) {
  EXPECT_EQ(Play("click cmdAdd\n"
                 "show form\n"
                 "type txtName \"N\"\n"
                 "click cmdClose\n"
                 "key txtName Enter\n"
                 "show form\n"
                 "show lstCals\n"),
            "> click cmdAdd\n"
            "event txtDate Validate\n"
            "event cmdAdd Click\n"
            "> show form\nform = \"frmSmall\"\n"
            "> type txtName \"N\"\n"
            "> click cmdClose\ncannot: no control cmdClose on frmSmall\n"
            "> key txtName Enter\n"
            "  event cmdOK Click\n"
            "  event lstCals Change\n"
            "> show form\nform = \"frmLarge\"\n"
            "> show lstCals\nlstCals[1] * \"N\"\n");
}

TEST(GesturePlayerTest, AnErrorIsLoggedAndTheDialogGoesOn) {
  EXPECT_EQ(Play("key cmdFail Space\nkey cmdFail Space\n"),
            "> key cmdFail Space\nevent txtDate Validate\nevent cmdFail Click\n"
            "error 5 \"No such \\\"task\\\"\"\n"
            "> key cmdFail Space\nevent cmdFail Click\n"
            "error 5 \"No such \\\"task\\\"\"\n");
}

TEST(GesturePlayerTest, BoxesTakeTheQueuedAnswersAndThenNo) {
  const std::string box = "box \"Weather Modeling\" \"Remove all?\\r\\nGo on?\" YesNo -> ";
  EXPECT_EQ(Play("answer Yes\nclick cmdAsk\nclick cmdAsk\n"),
            "> answer Yes\n"
            "> click cmdAsk\nevent txtDate Validate\nevent cmdAsk Click\n" +
                box + "Yes\n" + "> click cmdAsk\nevent cmdAsk Click\n" + box + "No\n");
}

TEST(GesturePlayerTest, AnAnswerThatTheBoxHasNoButtonForIsNotGiven) {
  EXPECT_EQ(Play("answer OK\nclick cmdAsk\n"),
            "> answer OK\n"
            "> click cmdAsk\nevent txtDate Validate\nevent cmdAsk Click\n"
            "cannot: the box has no button OK\n"
            "box \"Weather Modeling\" \"Remove all?\\r\\nGo on?\" YesNo -> No\n");
}

TEST(GesturePlayerTest, AnErrorsOwnBoxTakesNoAnswer) {
  EXPECT_NE(Play("answer Yes\nclick cmdFail\nclick cmdAsk\n").find("-> Yes"), std::string::npos);
}

TEST(GesturePlayerTest, FileDialogsTakeTheQueuedPathsAndThenAreCancelled) {
  EXPECT_EQ(Play("file \"/tmp/a.xlsx\"\nfile cancel\nleave\n"
                 "click cmdFile\nshow cmdFile.Caption\n"
                 "click cmdFile\nshow cmdFile.Caption\n"
                 "click cmdFile\nshow cmdFile.Caption\n"),
            "> file \"/tmp/a.xlsx\"\n> file cancel\n> leave\nevent txtDate Validate\n"
            "> click cmdFile\nevent cmdFile Click\n"
            "> show cmdFile.Caption\ncmdFile.Caption = \"/tmp/a.xlsx\"\n"
            "> click cmdFile\nevent cmdFile Click\n"
            "> show cmdFile.Caption\ncmdFile.Caption = \"\"\n"
            "> click cmdFile\nevent cmdFile Click\n"
            "> show cmdFile.Caption\ncmdFile.Caption = \"\"\n");
}

TEST(GesturePlayerTest, RowsAndHeadersAreCountedFromOne) {
  EXPECT_EQ(Play("leave\nrow lstRows 2\nheader lstRows 2\nheader lstRows 1\ndblclick lstRows 1\n"
                 "show lstRows\nshow lstRows.SelectedItem\n"),
            "> leave\nevent txtDate Validate\n"
            "> row lstRows 2\nevent lstRows ItemClick \"B\"\n"
            "> header lstRows 2\nevent lstRows ColumnClick 2\n"
            "> header lstRows 1\ncannot: column 1 of lstRows is hidden\n"
            "> dblclick lstRows 1\nevent lstRows ItemClick \"A\"\nevent lstRows DblClick\n"
            "> show lstRows\n"
            "lstRows[1] * \"A\" \"start \\\"A\\\"\"\n"
            "lstRows[2] \"B\" \"start \\\"B\\\"\"\n"
            "> show lstRows.SelectedItem\nlstRows.SelectedItem = \"A\"\n");
}

TEST(GesturePlayerTest, ACheckThatIsSetAlreadyIsLeftAlone) {
  EXPECT_EQ(Play("leave\ncheck lstChecks \"South\" on\ncheck lstChecks \"South\" on\n"
                 "check lstChecks \"East\" on\nshow lstChecks\n"),
            "> leave\nevent txtDate Validate\n"
            "> check lstChecks \"South\" on\nevent lstChecks ItemCheck \"South\"\n"
            "> check lstChecks \"South\" on\n"
            "> check lstChecks \"East\" on\ncannot: lstChecks has no item \"East\"\n"
            "> show lstChecks\n"
            "lstChecks[1] [ ] \"North\"\n"
            "lstChecks[2] [x] \"South\"\n");
}

TEST(GesturePlayerTest, EntriesArePickedByTextOrByNumberFromOne) {
  EXPECT_EQ(Play("leave\npick cbCals \"Standard\"\nshow cbCals.ListIndex\npick cbCals 2\n"
                 "pick cbCals \"x\"\nshow cbCals\n"),
            "> leave\nevent txtDate Validate\n"
            "> pick cbCals \"Standard\"\n"
            "> show cbCals.ListIndex\ncbCals.ListIndex = \"0\"\n"
            "> pick cbCals 2\ncannot: cbCals has no entry 2\n"
            "> pick cbCals \"x\"\ncannot: cbCals has no entry \"x\"\n"
            "> show cbCals\ncbCals[1] * \"Standard\"\n");
}

TEST(GesturePlayerTest, ATreeIsClickedByTextAndShownWhole) {
  EXPECT_EQ(Play("leave\nnode tvTasks \"A - Piles\"\nnode tvTasks \"B\"\nshow tvTasks\n"
                 "show tvTasks.SelectedItem\n"),
            "> leave\nevent txtDate Validate\n"
            "> node tvTasks \"A - Piles\"\nevent tvTasks NodeClick \"A - Piles\"\n"
            "> node tvTasks \"B\"\ncannot: tvTasks has no node \"B\"\n"
            "> show tvTasks\n\"Plan\" image 1 expanded\n  \"A - Piles\"\n"
            "> show tvTasks.SelectedItem\ntvTasks.SelectedItem = \"A - Piles\"\n");
}

TEST(GesturePlayerTest, WhatAHandCannotDoIsSaidAndTheScriptGoesOn) {
  EXPECT_EQ(Play("type txtNone \"x\"\ntype cmdAdd \"x\"\ntype txtOnTwo \"x\"\nrow txtDate 1\n"
                 "check txtDate \"a\" on\nnode txtDate \"a\"\nheader txtDate 1\n"
                 "pick txtDate 1\nshow txtDate\nshow txtDate.ListIndex\ntab 2\n"),
            "> type txtNone \"x\"\ncannot: no control txtNone on frmLarge\n"
            "> type cmdAdd \"x\"\ncannot: cmdAdd can't be typed into\n"
            "> type txtOnTwo \"x\"\ncannot: txtOnTwo is not on show\n"
            "> row txtDate 1\ncannot: txtDate has no rows\n"
            "> check txtDate \"a\" on\ncannot: txtDate has no check boxes\n"
            "> node txtDate \"a\"\ncannot: txtDate has no nodes\n"
            "> header txtDate 1\ncannot: txtDate has no column headers\n"
            "> pick txtDate 1\ncannot: txtDate has no entries to pick\n"
            "> show txtDate\ncannot: txtDate is no list and no tree\n"
            "> show txtDate.ListIndex\ncannot: txtDate has no property ListIndex\n"
            "> tab 2\ncannot: tabs has no tab 2\n");
}

TEST(GesturePlayerTest, PagesAreCountedFromZero) {
  EXPECT_EQ(Play("leave\ntab 1\ntype txtOnTwo \"x\"\nshow txtOnTwo.Value\n"),
            "> leave\nevent txtDate Validate\n> tab 1\n"
            "> type txtOnTwo \"x\"\n> show txtOnTwo.Value\ntxtOnTwo.Value = \"x\"\n");
}

TEST(GesturePlayerTest, AfterTheDialogIsClosedNoHandCanDoAnything) {
  EXPECT_EQ(Play("close\nclick cmdAdd\nshow form\nshow focus\n"),
            "> close\n> click cmdAdd\ncannot: no form is open\n"
            "> show form\nform = \"\"\n> show focus\nfocus = \"\"\n");
}

TEST(GesturePlayerTest, AnEndInsideASmallDialogLeavesEveryFormWithoutFurtherLines) {
  EXPECT_EQ(Play("click cmdAdd\n"), "> click cmdAdd\nevent txtDate Validate\nevent cmdAdd Click\n");
}

TEST(GesturePlayerTest, AnErrorBeforeTheDialogIsOpenIsLogged) {
  std::ostringstream log;
  Hands hands;
  GesturePlayer player(ParseScript("show form\n", "script"), hands, log);
  player.Play([] { throw platform::RuntimeError(1004, "no plan"); });
  EXPECT_EQ(log.str(), "error 1004 \"no plan\"\n> show form\nform = \"\"\n");
}

TEST(GesturePlayerTest, AFaceHearsWhichFormsAreShownAndGone) {
  struct WatchingHands final : Hands {
    void OnShown(Form& form) override { seen.push_back("+" + form.Name()); }
    void OnGone(Form& form) override { seen.push_back("-" + form.Name()); }
    std::vector<std::string> seen;
  } hands;
  std::ostringstream log;
  GesturePlayer player(ParseScript("click cmdAdd\nclose\nclick cmdClose\n", "script"), hands, log);
  LargeForm form(player);
  player.Play([&] { form.ShowModal(); });
  EXPECT_EQ(hands.seen,
            (std::vector<std::string>{"+frmLarge", "+frmSmall", "-frmSmall", "-frmLarge"}));
}

}  // namespace
}  // namespace nimbrel::gestures
