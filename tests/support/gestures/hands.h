#pragma once

#include <cstdint>
#include <string>

#include "toolkit/edit.h"
#include "toolkit/form.h"
#include "toolkit/gesture.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::gestures {

/// The hands that work a dialog. These work the plain objects; the hands of a face override what
/// they do by real input events. A gesture that a hand cannot make gives the reason that the
/// control's WhyNo... operations give, so that every face logs the same.
class Hands {
 public:
  virtual ~Hands() = default;

  /// A form has been shown, or is about to be gone: a face opens and closes its window.
  virtual void OnShown(toolkit::Form& /*form*/) {}
  virtual void OnGone(toolkit::Form& /*form*/) {}

  virtual toolkit::GestureResult Type(toolkit::EditControl& box, const std::string& text);
  virtual toolkit::GestureResult Leave(toolkit::Form& form);
  virtual toolkit::GestureResult PressKey(toolkit::Control& control, toolkit::Key key);
  virtual toolkit::GestureResult Click(toolkit::Control& control);
  /// Entries count from 0, rows and columns from 1.
  virtual toolkit::GestureResult Pick(toolkit::ListBox& list, std::int32_t index);
  virtual toolkit::GestureResult Pick(toolkit::ComboBox& box, std::int32_t index);
  virtual toolkit::GestureResult DoubleClick(toolkit::ListBox& list, std::int32_t index);
  virtual toolkit::GestureResult ClickRow(toolkit::ListView& list, std::int32_t index);
  virtual toolkit::GestureResult DoubleClickRow(toolkit::ListView& list, std::int32_t index);
  virtual toolkit::GestureResult ClickHeader(toolkit::ListView& list, std::int32_t index);
  virtual toolkit::GestureResult ToggleCheck(toolkit::ListView& list, std::int32_t index);
  virtual toolkit::GestureResult PickTab(toolkit::TabStrip& tabs, std::int32_t index);
  virtual toolkit::GestureResult ClickNode(toolkit::TreeView& tree, const toolkit::NodeRef& node);
  virtual toolkit::GestureResult Close(toolkit::Form& form);
};

}  // namespace nimbrel::gestures
