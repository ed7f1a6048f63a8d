#pragma once

#include <string>

#include "platform/runtime_error.h"
#include "toolkit/buttons.h"
#include "toolkit/desktop.h"
#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/image_list.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit {

/// A small dialog that is shown from a handler of the large one.
class SmallForm final : public Form {
 public:
  explicit SmallForm(Desktop& desktop) : Form(desktop, "frmSmall", "Small", 3600, 1500) {
    cmdOK.SetDefault(true);
    cmdOK.Click = [this] {
      confirmed = true;
      Hide();
    };
    cmdCancel.SetCancel(true);
    cmdCancel.Click = [this] { Hide(); };
    txtName.Change = [] {};
    txtName.Validate = [this, &desktop](bool& cancel) {
      if (txtName.Text() == "stay") {
        desktop.MsgBox("No leaving.", "Small");
        cancel = true;
      }
    };
  }

  bool confirmed = false;
  Label Label1{*this, "Label1", "Enter a name", {120, 120, 3360, 255}};
  TextBox txtName{*this, "txtName", {120, 375, 3360, 375}};
  CommandButton cmdOK{*this, "cmdOK", "OK", {120, 900, 1455, 495}};
  CommandButton cmdCancel{*this, "cmdCancel", "Cancel", {2025, 900, 1455, 495}};
};

/// A dialog with every kind of control, on two pages of a tab strip and beside it. Almost every
/// event has a handler, so that it is logged.
class LargeForm final : public Form {
 public:
  explicit LargeForm(Desktop& desktop) : Form(desktop, "frmLarge", "Large", 9000, 8000) {
    HearTop(desktop);
    FillLists();
    FillAssignments();
    cmdClose.Click = [this] {
      Hide();
      Unload();
    };
    Form_Unload = [](bool&) {};
  }

  CheckBox chkOn{*this, "chkOn", "Pages can be used", {120, 120, 2400, 375}};
  CommandButton cmdAsk{*this, "cmdAsk", "Ask", {2640, 120, 1200, 495}};
  CommandButton cmdFail{*this, "cmdFail", "Fail && go", {3960, 120, 1500, 495}};
  CommandButton cmdFile{*this, "cmdFile", "File...", {5580, 120, 1500, 495}};
  CommandButton cmdClose{*this, "cmdClose", "Close", {7200, 120, 1455, 495}};
  TabStrip tabs{*this, "tabs", {"Rows", "Tasks"}, {120, 720, 8760, 7160}};

  CommandButton cmdAdd{tabs.Page(0), "cmdAdd", "Add...", {120, 720, 1800, 495}};
  CommandButton cmdQuick{tabs.Page(0), "cmdQuick", "No focus", {120, 1440, 1800, 495}};
  Label lblCals{tabs.Page(0), "lblCals", "Existing calendars", {2160, 480, 3000, 255}};
  ListBox lstCals{tabs.Page(0), "lstCals", {2160, 720, 3000, 1575}};
  Label lblLong{tabs.Page(0),
                "lblLong",
                "Use this page to see how a text of several lines is broken between its words.",
                {5400, 720, 3200, 800}};
  ListView lstRows{tabs.Page(0), "lstRows", {120, 2500, 8520, 3500}};
  Label lblDescr{tabs.Page(0), "lblDescr", "Description", {120, 6060, 3000, 255}};
  TextBox txtDescr{tabs.Page(0), "txtDescr", {120, 6300, 3000, 375}};
  Label lblDate{tabs.Page(0), "lblDate", "Start", {3200, 6060, 1500, 255}};
  TextBox txtDate{tabs.Page(0), "txtDate", {3200, 6300, 1500, 375}};
  TextBox txtHidden{tabs.Page(0), "txtHidden", {4800, 6300, 1500, 375}};

  Frame Frame1{tabs.Page(1), "Frame1", "Tasks", {120, 480, 4200, 6500}};
  TextBox txtFind{Frame1, "txtFind", {240, 360, 2600, 375}};
  CommandButton cmdFind{Frame1, "cmdFind", "Find", {2940, 360, 735, 375}};
  TreeView tvTasks{Frame1, "tvTasks", {240, 900, 3600, 5300}};
  Frame Frame2{tabs.Page(1), "Frame2", "Task Calendar", {4560, 480, 4080, 1455}};
  ComboBox cbCals{Frame2, "cbCals", {240, 360, 3600, 375}};
  CheckBox chkSplit{Frame2, "chkSplit", "No split", {240, 900, 3600, 375}};
  Frame Frame3{tabs.Page(1), "Frame3", "Checks", {4560, 2160, 4080, 4820}};
  ListView lstChecks{Frame3, "lstChecks", {240, 360, 3600, 4200}, ListViewStyle::kList};
  ImageList images{16, 16};

 private:
  void HearTop(Desktop& desktop) {
    chkOn.SetValue(true);
    chkOn.Click = [this] { tabs.SetEnabled(chkOn.Value()); };
    cmdAsk.Click = [&desktop] {
      desktop.MsgBox("Remove all?\r\nGo on?", "Large", Buttons::kYesNo);
    };
    cmdFail.Click = [] { throw platform::RuntimeError(5, "No such \"task\""); };
    cmdFile.Click = [this, &desktop] { cmdFile.SetCaption(desktop.PickFile({.title = "Import"})); };
    cmdAdd.Click = [this, &desktop] { AddByDialog(desktop); };
    cmdQuick.SetTakesFocusOnClick(false);
    cmdQuick.Click = [] {};
    tabs.Click = [](std::int32_t) {};
    txtHidden.SetVisible(false);
    txtDescr.Change = [] {};
    txtDescr.KeyDown = [](int) {};
    txtDate.Change = [this] {
      if (!lstRows.SelectedItem().IsNothing()) {
        lstRows.SelectedItem()->SetSubItems(2, txtDate.Text());
      }
    };
    txtDate.Validate = [this, &desktop](bool& cancel) {
      if (txtDate.Text() == "bad") {
        desktop.MsgBox("bad is not a valid date!", "Large");
        cancel = true;
      } else if (txtDate.Text() == "error") {
        throw platform::RuntimeError(13, "Type mismatch");
      }
    };
  }

  void AddByDialog(Desktop& desktop) {
    SmallForm small(desktop);
    small.ShowModal();
    if (small.confirmed) {
      lstCals.AddItem(small.txtName.Text());
      lstCals.SetListIndex(lstCals.ListCount() - 1);
    }
  }

  void FillLists() {
    for (int i = 1; i <= 12; ++i) {
      lstCals.AddItem("Calendar " + std::to_string(i));
    }
    lstCals.Change = [] {};
    lstCals.DblClick = [] {};
    lstRows.ColumnHeaders().Add("ID", 0);
    lstRows.ColumnHeaders().Add("Description", 3000);
    lstRows.ColumnHeaders().Add("Start", 1500);
    lstRows.ColumnHeaders().Add("", 100);
    lstRows.ColumnHeaders().Add("Probability of Occurence", 2000);
    for (int i = 1; i <= 40; ++i) {
      const ListItemRef row = lstRows.ListItems().Add({}, {}, "ID" + std::to_string(i));
      row->SetSubItems(1, "Row " + std::to_string(i));
      row->SetSubItems(2, std::to_string(50 - i));
      row->SetSubItems(4, std::to_string(i % 7));
    }
    lstRows.ItemClick = [this](const ListItemRef& row) { txtDate.SetText(row->SubItems(2)); };
    lstRows.ColumnClick = [this](const ColumnHeader& column) {
      lstRows.SetSortKey(column.Index() - 1);
      lstRows.SetSorted(true);
      lstRows.SetSortOrder(lstRows.SortOrder() == SortOrder::kAscending ? SortOrder::kDescending
                                                                        : SortOrder::kAscending);
    };
    lstRows.DblClick = [] {};
  }

  void FillAssignments() {
    for (const char* const name : {"Standard", "Night shift", "Stan"}) {
      cbCals.AddItem(name);
    }
    cbCals.Change = [] {};
    cbCals.Validate = [](bool&) {};
    chkSplit.SetEnabled(false);
    chkSplit.Click = [] {};
    lstChecks.SetCheckBoxes(true);
    for (int i = 1; i <= 30; ++i) {
      lstChecks.ListItems().Add({}, "K" + std::to_string(i), "Check " + std::to_string(i));
    }
    lstChecks.ItemCheck = [](const ListItemRef&) {};
    lstChecks.ItemClick = [](const ListItemRef&) {};
    images.Add({{{{{2, 2}, {14, 2}, {14, 14}, {2, 14}}, true, Shape::Fill::kSolid, {200, 0, 0}}}});
    images.Add({{{{{8, 1}, {15, 15}, {1, 15}}, true, Shape::Fill::kDiagonalHatch, {0, 0, 200}}}});
    tvTasks.SetImages(&images);
    tvTasks.SetStyle(TreeStyle::kTreelinesPlusMinusPictureText);
    const NodeRef root = tvTasks.Nodes().Add("k", "Plan", 1);
    root->SetExpanded(true);
    for (int i = 1; i <= 5; ++i) {
      const std::string group = "G" + std::to_string(i);
      const NodeRef above = tvTasks.Nodes().Add(root, Relationship::kChild, group, group, 2);
      for (int j = 1; j <= 30; ++j) {
        const std::string task = group + "." + std::to_string(j);
        tvTasks.Nodes().Add(above, Relationship::kChild, task, task);
      }
    }
    tvTasks.NodeClick = [this](const NodeRef&) { chkSplit.SetEnabled(true); };
    txtFind.KeyDown = [this](int key) {
      if (key == static_cast<int>(Key::kEnter) && tvTasks.Nodes().Contains(txtFind.Text())) {
        tvTasks.Nodes().Remove(txtFind.Text());
      }
    };
  }
};

}  // namespace nimbrel::toolkit
