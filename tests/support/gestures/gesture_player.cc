#include "tests/support/gestures/gesture_player.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/form.h"

namespace nimbrel::gestures {
namespace {

using toolkit::Answer;
using toolkit::Buttons;
using toolkit::Control;
using toolkit::Form;

/// The entry's place from 0, or the number of entries if there is none of that text.
std::int32_t FindEntry(const std::vector<std::string>& entries, const std::string& text) {
  return static_cast<std::int32_t>(
      std::distance(entries.begin(), std::find(entries.begin(), entries.end(), text)));
}

/// The first node of this text as the tree runs from top to bottom; Nothing if there is none.
toolkit::NodeRef FindNode(const toolkit::NodeRef& first, const std::string& text) {
  for (toolkit::NodeRef node = first; !node.IsNothing(); node = node->Next()) {
    if (node->Text() == text) {
      return node;
    }
    if (toolkit::NodeRef below = FindNode(node->Child(), text); !below.IsNothing()) {
      return below;
    }
  }
  return {};
}

bool HasButton(Buttons buttons, Answer answer) {
  return (buttons == Buttons::kOk) == (answer == Answer::kOk);
}

}  // namespace

GesturePlayer::GesturePlayer(std::vector<Gesture> script, Hands& hands, std::ostream& log)
    : script_(std::move(script)), hands_(hands), log_(log) {
  SetEventLog(&log_);
}

void GesturePlayer::Play(const std::function<void()>& open) {
  try {
    open();
  } catch (const platform::RuntimeError& error) {
    log_.OnError(error.number(), error.text());
  }
  while (PlayNext()) {
  }
}

void GesturePlayer::RunModal(Form& form) {
  hands_.OnShown(form);
  while (form.Visible()) {
    if (!PlayNext()) {
      LeaveByItself(form);
    }
  }
  hands_.OnGone(form);
}

void GesturePlayer::LeaveByItself(Form& form) {
  log_.Stop();
  form.UserClose();
  if (form.Visible()) {
    form.Hide();
  }
}

Answer GesturePlayer::ShowMessage(const toolkit::Message& message) {
  const Answer otherwise = message.buttons == Buttons::kOk ? Answer::kOk : Answer::kNo;
  if (message.reports_error) {
    return otherwise;  // the log has it as an error
  }
  Answer answer = otherwise;
  if (!answers_.empty()) {
    answer = answers_.front();
    answers_.pop_front();
    if (!HasButton(message.buttons, answer)) {
      log_.Line("cannot: the box has no button " + std::string(AnswerText(answer)));
      answer = otherwise;
    }
  }
  log_.OnBox(message, answer);
  return answer;
}

std::string GesturePlayer::ShowFileDialog(const toolkit::FileRequest& /*request*/) {
  if (files_.empty()) {
    return {};
  }
  std::string path = std::move(files_.front());
  files_.pop_front();
  return path;
}

bool GesturePlayer::PlayNext() {
  if (next_ == script_.size()) {
    return false;
  }
  const Gesture& gesture = script_[next_++];
  log_.Line("> " + gesture.line);
  if (const std::string why_not = Make(gesture); !why_not.empty()) {
    log_.Line("cannot: " + why_not);
  }
  return true;
}

std::string GesturePlayer::Make(const Gesture& gesture) {
  Form* const form = Top();
  switch (gesture.kind) {
    case GestureKind::kAnswer:
      answers_.push_back(gesture.answer);
      return {};
    case GestureKind::kFile:
      files_.push_back(gesture.text.value_or(std::string()));
      return {};
    case GestureKind::kShowForm:
      log_.Line("form = " + Quoted(form == nullptr ? std::string() : form->Name()));
      return {};
    case GestureKind::kShowFocus: {
      const Control* const focus = form == nullptr ? nullptr : form->ActiveControl();
      log_.Line("focus = " + Quoted(focus == nullptr ? std::string() : focus->Name()));
      return {};
    }
    default:
      return form == nullptr ? "no form is open" : MakeOnForm(gesture, *form);
  }
}

std::string GesturePlayer::MakeOnForm(const Gesture& gesture, Form& form) {
  switch (gesture.kind) {
    case GestureKind::kLeave:
      return hands_.Leave(form).reason();
    case GestureKind::kClose:
      return hands_.Close(form).reason();
    case GestureKind::kTab:
      return PickTab(gesture, form);
    default: {
      Control* const control = form.Find(gesture.control);
      return control == nullptr ? "no control " + gesture.control + " on " + form.Name()
                                : MakeOnControl(gesture, *control);
    }
  }
}

std::string GesturePlayer::MakeOnControl(const Gesture& gesture, Control& control) {
  auto* const box = dynamic_cast<toolkit::EditControl*>(&control);
  auto* const list = dynamic_cast<toolkit::ListView*>(&control);
  auto* const tree = dynamic_cast<toolkit::TreeView*>(&control);
  switch (gesture.kind) {
    case GestureKind::kType:
      return box == nullptr ? control.Name() + " can't be typed into"
                            : hands_.Type(*box, *gesture.text).reason();
    case GestureKind::kKey:
      return hands_.PressKey(control, gesture.key).reason();
    case GestureKind::kClick:
      return hands_.Click(control).reason();
    case GestureKind::kPick:
      return Pick(gesture, control);
    case GestureKind::kRow:
    case GestureKind::kDoubleClick:
      return ClickRow(gesture, control);
    case GestureKind::kHeader:
      return list == nullptr ? control.Name() + " has no column headers"
                             : hands_.ClickHeader(*list, gesture.number).reason();
    case GestureKind::kCheck:
      return list == nullptr ? control.Name() + " has no check boxes" : Check(gesture, *list);
    case GestureKind::kNode:
      return tree == nullptr ? control.Name() + " has no nodes" : ClickNode(*gesture.text, *tree);
    default:
      return Show(gesture, control);
  }
}

std::string GesturePlayer::Pick(const Gesture& gesture, Control& control) {
  auto* const list = dynamic_cast<toolkit::ListBox*>(&control);
  auto* const box = dynamic_cast<toolkit::ComboBox*>(&control);
  if (list == nullptr && box == nullptr) {
    return control.Name() + " has no entries to pick";
  }
  const std::vector<std::string>& entries = list != nullptr ? list->Entries() : box->Entries();
  std::int32_t index = gesture.number - 1;
  if (gesture.text) {
    index = FindEntry(entries, *gesture.text);
    if (index == static_cast<std::int32_t>(entries.size())) {
      return control.Name() + " has no entry " + Quoted(*gesture.text);
    }
  }
  return list != nullptr ? hands_.Pick(*list, index).reason() : hands_.Pick(*box, index).reason();
}

std::string GesturePlayer::ClickRow(const Gesture& gesture, Control& control) {
  const bool twice = gesture.kind == GestureKind::kDoubleClick;
  if (auto* const rows = dynamic_cast<toolkit::ListView*>(&control); rows != nullptr) {
    return twice ? hands_.DoubleClickRow(*rows, gesture.number).reason()
                 : hands_.ClickRow(*rows, gesture.number).reason();
  }
  if (auto* const list = dynamic_cast<toolkit::ListBox*>(&control); list != nullptr) {
    return twice ? hands_.DoubleClick(*list, gesture.number - 1).reason()
                 : hands_.Pick(*list, gesture.number - 1).reason();
  }
  return control.Name() + " has no rows";
}

std::string GesturePlayer::Check(const Gesture& gesture, toolkit::ListView& list) {
  const auto& rows = list.ListItems();
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const toolkit::ListItemRef& row) {
    return row->Text() == *gesture.text;
  });
  if (found == rows.end()) {
    return list.Name() + " has no item " + Quoted(*gesture.text);
  }
  const auto index = static_cast<std::int32_t>(std::distance(rows.begin(), found)) + 1;
  if ((*found)->Checked() == gesture.on) {
    return list.WhyNoCheck(index);  // it is so already: nothing to click
  }
  return hands_.ToggleCheck(list, index).reason();
}

std::string GesturePlayer::ClickNode(const std::string& text, toolkit::TreeView& tree) {
  const toolkit::NodeRef node = FindNode(tree.Root(), text);
  return node.IsNothing() ? tree.Name() + " has no node " + Quoted(text)
                          : hands_.ClickNode(tree, node).reason();
}

std::string GesturePlayer::PickTab(const Gesture& gesture, Form& form) {
  for (Control* const control : form.AllControls()) {
    if (auto* const tabs = dynamic_cast<toolkit::TabStrip*>(control); tabs != nullptr) {
      return hands_.PickTab(*tabs, gesture.number).reason();
    }
  }
  return form.Name() + " has no tabs";
}

std::string GesturePlayer::Show(const Gesture& gesture, const Control& control) {
  if (gesture.property.empty()) {
    return log_.ShowWhole(control) ? std::string() : control.Name() + " is no list and no tree";
  }
  return log_.ShowProperty(control, gesture.property)
             ? std::string()
             : control.Name() + " has no property " + gesture.property;
}

}  // namespace nimbrel::gestures
