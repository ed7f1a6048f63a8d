#include "tests/support/gestures/gesture_log.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tree_view.h"

namespace nimbrel::gestures {
namespace {

using toolkit::Control;

/// `NAME[1] *`, the star for the selected row.
std::string RowHead(const Control& list, std::int32_t number, bool selected) {
  return list.Name() + "[" + std::to_string(number) + "]" + (selected ? " *" : "");
}

std::vector<std::string> EntryLines(const Control& list, const std::vector<std::string>& entries,
                                    std::int32_t selected) {
  std::vector<std::string> lines;
  for (const std::string& entry : entries) {
    const auto number = static_cast<std::int32_t>(lines.size()) + 1;
    lines.push_back(RowHead(list, number, number == selected + 1) + " " + Quoted(entry));
  }
  return lines;
}

std::vector<std::string> RowLines(const toolkit::ListView& list) {
  const std::int32_t columns = std::max(list.ColumnHeaders().Count(), 1);
  std::vector<std::string> lines;
  for (const toolkit::ListItemRef& row : list.ListItems()) {
    const auto number = static_cast<std::int32_t>(lines.size()) + 1;
    std::string line = RowHead(list, number, row == list.SelectedItem());
    if (list.CheckBoxes()) {
      line += row->Checked() ? " [x]" : " [ ]";
    }
    for (std::int32_t column = 1; column <= columns; ++column) {
      line += " " + Quoted(row->CellText(column));
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

void AddNodeLines(const toolkit::NodeRef& first, std::size_t level,
                  std::vector<std::string>& lines) {
  for (toolkit::NodeRef node = first; !node.IsNothing(); node = node->Next()) {
    std::string line = std::string(level * 2, ' ') + Quoted(node->Text());
    if (node->Image() != 0) {
      line += " image " + std::to_string(node->Image());
    }
    if (node->Expanded()) {
      line += " expanded";
    }
    lines.push_back(std::move(line));
    AddNodeLines(node->Child(), level + 1, lines);
  }
}

std::optional<std::vector<std::string>> WholeLines(const Control& control) {
  if (const auto* list = dynamic_cast<const toolkit::ListBox*>(&control); list != nullptr) {
    return EntryLines(*list, list->Entries(), list->ListIndex());
  }
  if (const auto* box = dynamic_cast<const toolkit::ComboBox*>(&control); box != nullptr) {
    return EntryLines(*box, box->Entries(), box->ListIndex());
  }
  if (const auto* list = dynamic_cast<const toolkit::ListView*>(&control); list != nullptr) {
    return RowLines(*list);
  }
  if (const auto* tree = dynamic_cast<const toolkit::TreeView*>(&control); tree != nullptr) {
    std::vector<std::string> lines;
    AddNodeLines(tree->Root(), 0, lines);
    return lines;
  }
  return std::nullopt;
}

}  // namespace

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
      case '\\':
        quoted += '\\';
        quoted += c;
        break;
      case '\r':
        quoted += "\\r";
        break;
      case '\n':
        quoted += "\\n";
        break;
      default:
        quoted += c;
    }
  }
  return quoted + '"';
}

std::string_view ButtonsText(toolkit::Buttons buttons) {
  return buttons == toolkit::Buttons::kOk ? "OK" : "YesNo";
}

std::string_view AnswerText(toolkit::Answer answer) {
  if (answer == toolkit::Answer::kOk) {
    return "OK";
  }
  return answer == toolkit::Answer::kYes ? "Yes" : "No";
}

void GestureLog::Line(std::string_view line) {
  if (!stopped_) {
    out_ << line << '\n';
  }
}

void GestureLog::OnEvent(const Event& event) {
  std::string line(static_cast<std::size_t>(event.depth) * 2, ' ');
  line.append("event ").append(event.control).append(" ").append(event.event);
  if (event.quoted) {
    line.append(" ").append(Quoted(event.argument));
  } else if (!event.argument.empty()) {
    line.append(" ").append(event.argument);
  }
  Line(line);
}

void GestureLog::OnError(std::int32_t number, const std::string& text) {
  Line("error " + std::to_string(number) + " " + Quoted(text));
}

void GestureLog::OnBox(const toolkit::Message& message, toolkit::Answer answer) {
  std::string line = "box " + Quoted(message.title) + " " + Quoted(message.text) + " ";
  line.append(ButtonsText(message.buttons)).append(" -> ").append(AnswerText(answer));
  Line(line);
}

bool GestureLog::ShowProperty(const Control& control, const std::string& property) {
  const std::optional<std::string> value = control.PropertyText(property);
  if (value) {
    Line(control.Name() + "." + property + " = " + Quoted(*value));
  }
  return value.has_value();
}

bool GestureLog::ShowWhole(const Control& control) {
  const std::optional<std::vector<std::string>> lines = WholeLines(control);
  if (lines) {
    for (const std::string& line : *lines) {
      Line(line);
    }
  }
  return lines.has_value();
}

}  // namespace nimbrel::gestures
