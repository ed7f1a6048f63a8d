#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/dialog/weather_dialog_test.h"

namespace nimbrel::dialog {

/// A node and all below it, one line each, indented by two blanks a level; with `shown_only`
/// without what stands below a node that is not expanded.
inline void AddLines(const toolkit::NodeRef& node, bool shown_only, const std::string& indent,
                     std::vector<std::string>& lines) {
  lines.push_back(indent + node->Text());
  if (shown_only && !node->Expanded()) {
    return;
  }
  for (toolkit::NodeRef child = node->Child(); !child.IsNothing(); child = child->Next()) {
    AddLines(child, shown_only, indent + "  ", lines);
  }
}

inline std::vector<std::string> AllNodes(const toolkit::TreeView& tree) {
  std::vector<std::string> lines;
  AddLines(tree.Root(), false, "", lines);
  return lines;
}
inline std::vector<std::string> ShownNodes(const toolkit::TreeView& tree) {
  std::vector<std::string> lines;
  AddLines(tree.Root(), true, "", lines);
  return lines;
}

/// The texts of the checked items.
inline std::vector<std::string> Checked(const toolkit::ListView& list) {
  std::vector<std::string> texts;
  for (const toolkit::ListItemRef& item : list.ListItems()) {
    if (item->Checked()) {
      texts.push_back(item->Text());
    }
  }
  return texts;
}

/// The weather dialog on its page of assignments, over a plan in the recording host: tasks A
/// "Foundations", B "Steel" and C "Painting" on STANDARD, the event calendars North Sea and FROST,
/// the window calendar River Ice.
class AssignPageTest : public WeatherDialogTest {
 protected:
  AssignPageTest() {
    plan().title = "Bridge";
    plan().AddTask("A", 5)->description = "Foundations";
    plan().AddTask("B", 5)->description = "Steel";
    plan().AddTask("C", 5)->description = "Painting";
    MakeWeatherPlan();
    const auto day = platform::MakeDate(2027, 1, 4);
    AddPeriod("P1", "North Sea", day, day);
    AddPeriod("P2", "FROST", day, day);
    AddWindow("W1", "River Ice", "1/4/2027", "2/4/2027");
  }

  /// Puts a task under another one.
  void PutUnder(const std::string& task, const std::string& parent) {
    plan().Task(task).parent = plan().FindTask(parent);
    plan().Task(parent).type = 1;
  }
  std::vector<std::string> AssignedTo(const std::string& task) {
    std::vector<std::string> names;
    for (const auto& assigned : plan().Task(task).risk_calendars) {
      names.push_back(assigned.risk_calendar->name);
    }
    return names;
  }

  /// Opens the dialog, goes to the page and works it; what happened before is in neither record.
  void OnPage(const std::function<void()>& hands) {
    desktop_.OnNextForm([this, hands](toolkit::Form&) {
      dialog().tabs.UserPickTab(2);
      recorder().Clear();
      events_.lines.clear();
      hands();
    });
    dialog().ShowModal();
  }
  frmWeather& dialog() {
    if (!dialog_) {
      dialog_ = std::make_unique<frmWeather>(desktop_);
    }
    return *dialog_;
  }

  /// A node by its key without the leading letter.
  toolkit::NodeRef NodeOf(const std::string& id) { return dialog().tvTasks.Nodes().Item("k" + id); }
  void ClickNode(const std::string& id) { dialog().tvTasks.UserClickNode(NodeOf(id)); }
  void Find(const std::string& text) {
    dialog().txtFind.UserType(text);
    dialog().cmdFind.UserClick();
  }
  /// Clicks on the check box of a calendar in one of the lists.
  void Toggle(toolkit::ListView& list, const std::string& calendar) {
    const toolkit::ListItemRef item = list.ListItems().Item(calendar);
    list.UserToggleCheck(item->Index());
  }

 private:
  std::unique_ptr<frmWeather> dialog_;
};

}  // namespace nimbrel::dialog
