#pragma once

#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit {

/// Calls `visit` with a control as what it is (a CommandButton&, a TextBox& and so on). Gives its
/// result, which has one type for all of them; an empty one for no kind of control.
template <class Result, class Visit>
Result VisitControl(Control& control, const Visit& visit) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
      return visit(static_cast<CommandButton&>(control));
    case ControlKind::kCheckBox:
      return visit(static_cast<CheckBox&>(control));
    case ControlKind::kTextBox:
      return visit(static_cast<TextBox&>(control));
    case ControlKind::kComboBox:
      return visit(static_cast<ComboBox&>(control));
    case ControlKind::kListBox:
      return visit(static_cast<ListBox&>(control));
    case ControlKind::kLabel:
      return visit(static_cast<Label&>(control));
    case ControlKind::kFrame:
      return visit(static_cast<Frame&>(control));
    case ControlKind::kTabStrip:
      return visit(static_cast<TabStrip&>(control));
    case ControlKind::kListView:
      return visit(static_cast<ListView&>(control));
    case ControlKind::kTreeView:
      return visit(static_cast<TreeView&>(control));
  }
  return {};
}

}  // namespace nimbrel::toolkit
