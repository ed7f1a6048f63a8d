#include "tests/support/gestures/hands.h"

namespace nimbrel::gestures {

using toolkit::GestureResult;

GestureResult Hands::Type(toolkit::EditControl& box, const std::string& text) {
  return box.UserType(text);
}

GestureResult Hands::Leave(toolkit::Form& form) {
  return form.UserKey(toolkit::Key::kTab);
}

GestureResult Hands::PressKey(toolkit::Control& control, toolkit::Key key) {
  return control.UserKey(key);
}

GestureResult Hands::Click(toolkit::Control& control) {
  return control.UserClick();
}

GestureResult Hands::Pick(toolkit::ListBox& list, std::int32_t index) {
  return list.UserPick(index);
}

GestureResult Hands::Pick(toolkit::ComboBox& box, std::int32_t index) {
  return box.UserPick(index);
}

GestureResult Hands::DoubleClick(toolkit::ListBox& list, std::int32_t index) {
  return list.UserDoubleClick(index);
}

GestureResult Hands::ClickRow(toolkit::ListView& list, std::int32_t index) {
  return list.UserClickRow(index);
}

GestureResult Hands::DoubleClickRow(toolkit::ListView& list, std::int32_t index) {
  return list.UserDoubleClickRow(index);
}

GestureResult Hands::ClickHeader(toolkit::ListView& list, std::int32_t index) {
  return list.UserClickHeader(index);
}

GestureResult Hands::ToggleCheck(toolkit::ListView& list, std::int32_t index) {
  return list.UserToggleCheck(index);
}

GestureResult Hands::PickTab(toolkit::TabStrip& tabs, std::int32_t index) {
  return tabs.UserPickTab(index);
}

GestureResult Hands::ClickNode(toolkit::TreeView& tree, const toolkit::NodeRef& node) {
  return tree.UserClickNode(node);
}

GestureResult Hands::Close(toolkit::Form& form) {
  return form.UserClose();
}

}  // namespace nimbrel::gestures
