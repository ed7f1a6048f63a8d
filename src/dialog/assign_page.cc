// The page "Assign to Tasks": which calendars hold up which task, and whether it may be split.
// Every change goes into the plan at once.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dialog/frm_weather.h"
#include "dialog/task_images.h"
#include "host/mod_global.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/variant.h"
#include "toolkit/gesture.h"

namespace nimbrel::dialog {

using Corvane8::Ref;
using platform::IgnoreErrors;
using platform::UpperCase;
using toolkit::ListItemRef;
using toolkit::NodeRef;
using toolkit::Relationship;

namespace {

constexpr std::string_view kSection = "weather";
constexpr std::string_view kNoSplit = "nosplit";
constexpr const char* kPrompt = "[type here to find task]";

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

/// The key of a node, for the ID of its task or, for the root, the plan's title.
std::string KeyOf(const std::string& strID) {
  return "k" + strID;
}

std::string IdOf(const NodeRef& node) {
  return node->Key().substr(1);
}

/// Whether a task is one of the plan's own and carries no weather.
bool IsOrdinary(const Ref<Corvane8::Task>& task) {
  return task->get_UserFields()->GetValue(2, kSection, "tasktype", "0") == "0";
}

}  // namespace

void frmWeather::ConnectAssignPage() {
  AddTaskImages(ImageList1);
  chkSplit.SetEnabled(false);
  tvTasks.NodeClick = [this](const NodeRef& Node) { tvTasks_NodeClick(Node); };
  cbAllCals.Change = [this] { cbAllCals_Change(); };
  chkSplit.Click = [this] { chkSplit_Click(); };
  lstWCals1.ItemCheck = [this](const ListItemRef& Item) { CheckList_ItemCheck(Item); };
  lstWCals3.ItemCheck = [this](const ListItemRef& Item) { CheckList_ItemCheck(Item); };
  cmdFind.Click = [this] { cmdFind_Click(); };
  txtFind.KeyDown = [this](int KeyCode) { txtFind_KeyDown(KeyCode); };
  txtFind.GotFocus = [this] { txtFind_GotFocus(); };
}

void frmWeather::FillCalendarCombo() {
  for (std::int32_t nLeft = cbAllCals.ListCount(); nLeft > 0; --nLeft) {
    cbAllCals.RemoveItem(0);
  }
  for (const Ref<Corvane8::Calendar>& calendar : ActivePlan()->get_Calendars()->Elements()) {
    cbAllCals.AddItem(calendar->get_Name());
  }
}

void frmWeather::InitTaskTree() {
  tvTasks.SetImages(&ImageList1);
  tvTasks.SetStyle(toolkit::TreeStyle::kTreelinesPlusMinusPictureText);
  BuildTaskTree();
}

void frmWeather::BuildTaskTree() {
  toolkit::NodeList& nodes = tvTasks.Nodes();
  const std::string strTitle = ActivePlan()->get_Properties()->get_Title();
  const NodeRef root = nodes.Add(KeyOf(strTitle), strTitle, kPlanImage);
  for (const Ref<Corvane8::Task>& task : ActivePlan()->get_Tasks()->Elements()) {
    if (IsOrdinary(task)) {
      const std::string strID = task->get_ID();
      if (platform::EqualsIgnoreCase(strID, strTitle)) {
        // As in a plan whose topmost summary stands for the project: the key is the task's.
        root->SetKey(root->Key() + ' ');
      }
      const NodeRef node = nodes.Add(root, Relationship::kChild, KeyOf(strID),
                                     strID + " - " + task->get_Description());
      node->SetImage(ImageOfTask(task));
    }
  }
  // A task may come before its summary, so the nodes are put in their places when all are there.
  for (const Ref<Corvane8::Task>& task : ActivePlan()->get_Tasks()->Elements()) {
    if (IsOrdinary(task)) {
      const Ref<Corvane8::Task> parent = task->Parent(0);
      // A task that hangs under one that is not shown, such as "WEATHER", stays under the root.
      if (!parent.IsNothing() && nodes.Contains(KeyOf(parent->get_ID()))) {
        nodes.Item(KeyOf(task->get_ID()))->SetParent(nodes.Item(KeyOf(parent->get_ID())));
      }
    }
  }
  CollapseAllNodes(tvTasks);
  root->SetExpanded(true);
  SortNodeChildren(root);
}

void frmWeather::CollapseAllNodes(toolkit::TreeView& Tree) {
  for (const NodeRef& node : Tree.Nodes()) {
    node->SetExpanded(false);
  }
}

void frmWeather::ExpandAllNodes(toolkit::TreeView& Tree) {
  for (const NodeRef& node : Tree.Nodes()) {
    node->SetExpanded(true);
  }
}

void frmWeather::SortNodeChildren(const NodeRef& Node) {
  Node->SetSorted(true);
  for (NodeRef child = Node->Child(); !child.IsNothing(); child = child->Next()) {
    SortNodeChildren(child);
  }
}

void frmWeather::FilterTaskNodes(const NodeRef& Node, const std::string& Text) {
  for (NodeRef child = Node->Child(); !child.IsNothing();) {
    const NodeRef next = child->Next();
    FilterTaskNodes(child, Text);
    child = next;
  }
  const NodeRef parent = Node->Parent();
  if (parent.IsNothing() ||
      platform::FoldCase(Node->Text()).find(platform::FoldCase(Text)) != std::string::npos) {
    return;
  }
  for (NodeRef child = Node->Child(); !child.IsNothing();) {
    const NodeRef next = child->Next();
    child->SetParent(parent);
    child = next;
  }
  tvTasks.Nodes().Remove(Node->Key());
}

void frmWeather::tvTasks_NodeClick(const NodeRef& Node) {
  for (toolkit::ListView* const list : {&lstWCals1, &lstWCals3}) {
    for (const ListItemRef& item : list->ListItems()) {
      item->SetChecked(false);
    }
  }
  const std::string strID = IdOf(Node);
  const bool bIsTask = !Node->Parent().IsNothing();
  lstWCals1.SetEnabled(bIsTask);
  lstWCals3.SetEnabled(bIsTask);
  if (!bIsTask) {
    return;
  }
  m_taskAssign = ActivePlan()->get_Tasks()->Item(strID);
  chkSplit.SetEnabled(true);
  cbAllCals.SetEnabled(true);
  cbAllCals.SetListIndex(-1);
  // A summary task may have no calendar; the box then stays empty.
  if (const auto calendar = m_taskAssign->get_Calendar(); !calendar.IsNothing()) {
    cbAllCals.SetSelText(calendar->get_Name());
  }
  std::vector<Ref<Corvane8::TaskRiskCalendar>> assignments;
  IgnoreErrors([&] { assignments = m_taskAssign->get_RiskCalendars()->Elements(); });
  std::string strName;
  for (const Ref<Corvane8::TaskRiskCalendar>& assignment : assignments) {
    IgnoreErrors([&] { strName = UpperCase(assignment->get_RiskCalendar()->get_Name()); });
    // A name is in one of the lists at most; the other one has no such item.
    IgnoreErrors([&] { lstWCals1.ListItems().Item(strName)->SetChecked(true); });
    IgnoreErrors([&] { lstWCals3.ListItems().Item(strName)->SetChecked(true); });
  }
  IgnoreErrors([&] {
    const platform::Variant value =
        m_taskAssign->get_UserFields()->GetValue(2, kSection, kNoSplit, "False");
    chkSplit.SetValue(value.ToBoolean(modGlobal::Locale()));
  });
}

void frmWeather::cbAllCals_Change() {
  if (cbAllCals.ListIndex() >= 0) {
    const auto calendar = ActivePlan()->get_Calendars()->Item(cbAllCals.Text());
    m_taskAssign->put_Calendar(calendar);
  }
}

void frmWeather::chkSplit_Click() {
  // The task of the tree's current node, which after a click on the root is not m_taskAssign.
  m_taskSplit = ActivePlan()->get_Tasks()->Item(IdOf(tvTasks.SelectedItem()));
  m_taskSplit->get_UserFields()->SetValue(2, kSection, kNoSplit,
                                          chkSplit.Value() ? "True" : "False");
}

void frmWeather::CheckList_ItemCheck(const ListItemRef& Item) {
  if (Item->Checked()) {
    m_taskAssign->get_RiskCalendars()->Add(Item->Key())->put_Value(0.0);
  } else {
    m_taskAssign->get_RiskCalendars()->Remove(Item->Key());
  }
}

void frmWeather::cmdFind_Click() {
  try {
    const std::string& strText = txtFind.Value();
    tvTasks.Nodes().Clear();
    BuildTaskTree();
    FilterTaskNodes(tvTasks.Root(), strText);
    ExpandAllNodes(tvTasks);
  } catch (const platform::RuntimeError&) {
    // The search ends where it failed; the tree shows how far it came.
    return;
  }
}

void frmWeather::txtFind_KeyDown(int KeyCode) {
  if (KeyCode == static_cast<int>(toolkit::Key::kEnter)) {
    cmdFind_Click();
  }
}

void frmWeather::txtFind_GotFocus() {
  if (txtFind.Text() == kPrompt) {
    txtFind.SetText("");
  }
}

}  // namespace nimbrel::dialog
