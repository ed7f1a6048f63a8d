#include "tests/win32/agreement.h"

#include <vector>

#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"
#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// What the window shows, in a form that ShownByObject gives for the control, too.
using Shown = std::vector<std::string>;

constexpr int kLongestText = 512;

LRESULT Ask(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) {
  return ::SendMessageW(window, message, w, l);
}

std::string Selection(int start, int end) {
  return " [" + std::to_string(start) + "+" + std::to_string(end - start) + "]";
}

std::string LineText(HWND line, bool with_selection) {
  DWORD start = 0;
  DWORD end = 0;
  Ask(line, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  const std::string selection = Selection(static_cast<int>(start), static_cast<int>(end));
  return FromWide(TextOf(line)) + (with_selection ? selection : std::string());
}

std::string BoxText(const EditControl& box) {
  const std::wstring text = ToWide(box.Text());
  const std::string selection = Selection(UnitsBefore(text, box.SelStart()),
                                          UnitsBefore(text, box.SelStart() + box.SelLength()));
  return box.Text() + (box.HasFocus() ? selection : std::string());
}

Shown EntriesOfWindow(HWND list) {
  Shown shown;
  for (LRESULT i = 0; i < Ask(list, LB_GETCOUNT); ++i) {
    std::wstring text(static_cast<std::size_t>(Ask(list, LB_GETTEXTLEN, static_cast<WPARAM>(i))),
                      L'\0');
    Ask(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()));
    shown.push_back(FromWide(text) + (Ask(list, LB_GETCURSEL) == i ? " *" : ""));
  }
  return shown;
}

Shown EntriesOfObject(const ListBox& list) {
  Shown shown;
  for (std::int32_t i = 0; i < list.ListCount(); ++i) {
    shown.push_back(list.List(i) + (i == list.ListIndex() ? " *" : ""));
  }
  return shown;
}

std::string CellOfWindow(HWND list, int row, int column) {
  std::wstring text(kLongestText, L'\0');
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = text.data();
  item.cchTextMax = kLongestText;
  Ask(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return FromWide(item.pszText);
}

Shown RowsOfWindow(HWND list) {
  Shown shown;
  const auto header = reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
  const LRESULT columns = Ask(header, HDM_GETITEMCOUNT);
  const bool checks = (Ask(list, LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_CHECKBOXES) != 0;
  for (int row = 0; row < Ask(list, LVM_GETITEMCOUNT); ++row) {
    std::string line;
    for (int column = 0; column < columns; ++column) {
      line += CellOfWindow(list, row, column) + '|';
    }
    const auto state =
        Ask(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK | LVIS_SELECTED);
    if (checks) {
      line += (state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2) ? "[x]" : "[ ]";
    }
    shown.push_back(line + ((state & LVIS_SELECTED) != 0 ? " *" : ""));
  }
  return shown;
}

Shown RowsOfObject(const ListView& list) {
  Shown shown;
  const int columns = list.View() == ListViewStyle::kList ? 1 : list.ColumnHeaders().Count();
  for (const ListItemRef& row : list.ListItems()) {
    std::string line;
    for (int column = 1; column <= columns; ++column) {
      line += row->CellText(column) + '|';
    }
    if (list.CheckBoxes()) {
      line += row->Checked() ? "[x]" : "[ ]";
    }
    shown.push_back(line + (row->Selected() ? " *" : ""));
  }
  return shown;
}

void AddNodes(HWND tree, HTREEITEM first, const std::string& indent, Shown& shown) {
  for (HTREEITEM item = first; item != nullptr;
       item = reinterpret_cast<HTREEITEM>(
           Ask(tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)))) {
    std::wstring text(kLongestText, L'\0');
    TVITEMW asked{};
    asked.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_STATE;
    asked.hItem = item;
    asked.stateMask = TVIS_EXPANDED | TVIS_SELECTED;
    asked.pszText = text.data();
    asked.cchTextMax = kLongestText;
    Ask(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    shown.push_back(indent + FromWide(asked.pszText) + " " + std::to_string(asked.iImage) +
                    ((asked.state & TVIS_EXPANDED) != 0 ? " expanded" : "") +
                    ((asked.state & TVIS_SELECTED) != 0 ? " *" : ""));
    AddNodes(tree,
             reinterpret_cast<HTREEITEM>(
                 Ask(tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(item))),
             indent + ' ', shown);
  }
}

void AddNodes(const TreeView& tree, const NodeRef& first, const std::string& indent, Shown& shown) {
  for (NodeRef node = first; !node.IsNothing(); node = node->Next()) {
    const bool marked = tree.SelectedItem() == node && node->IsShown();
    shown.push_back(indent + node->Text() + " " + std::to_string(node->Image()) +
                    (node->Expanded() && node->Children() > 0 ? " expanded" : "") +
                    (marked ? " *" : ""));
    AddNodes(tree, node->Child(), indent + ' ', shown);
  }
}

Shown ShownByWindow(const Control& control, HWND window, HWND focus_window) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
    case ControlKind::kLabel:
    case ControlKind::kFrame:
      return {FromWide(TextOf(window))};
    case ControlKind::kCheckBox:
      return {FromWide(TextOf(window)), Ask(window, BM_GETCHECK) == BST_CHECKED ? "on" : "off"};
    case ControlKind::kTextBox:
    case ControlKind::kComboBox:
      return {LineText(focus_window, control.HasFocus())};
    case ControlKind::kTabStrip:
      return {std::to_string(Ask(window, TCM_GETCURSEL))};
    case ControlKind::kListBox:
      return EntriesOfWindow(window);
    case ControlKind::kListView:
      return RowsOfWindow(window);
    case ControlKind::kTreeView: {
      Shown shown;
      AddNodes(window, reinterpret_cast<HTREEITEM>(Ask(window, TVM_GETNEXTITEM, TVGN_ROOT)), {},
               shown);
      return shown;
    }
  }
  return {};
}

Shown ShownByObject(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
      return {FromWide(CaptionToWide(dynamic_cast<const CommandButton&>(control).Caption()))};
    case ControlKind::kCheckBox: {
      const auto& box = dynamic_cast<const CheckBox&>(control);
      return {FromWide(CaptionToWide(box.Caption())), box.Value() ? "on" : "off"};
    }
    case ControlKind::kTextBox:
    case ControlKind::kComboBox:
      return {BoxText(dynamic_cast<const EditControl&>(control))};
    case ControlKind::kLabel:
      return {dynamic_cast<const Label&>(control).Caption()};
    case ControlKind::kFrame:
      return {FromWide(CaptionToWide(dynamic_cast<const Frame&>(control).Caption()))};
    case ControlKind::kTabStrip:
      return {std::to_string(dynamic_cast<const TabStrip&>(control).Tab())};
    case ControlKind::kListBox:
      return EntriesOfObject(dynamic_cast<const ListBox&>(control));
    case ControlKind::kListView:
      return RowsOfObject(dynamic_cast<const ListView&>(control));
    case ControlKind::kTreeView: {
      Shown shown;
      const auto& tree = dynamic_cast<const TreeView&>(control);
      AddNodes(tree, tree.Root(), {}, shown);
      return shown;
    }
  }
  return {};
}

std::string Joined(const Shown& shown) {
  std::string joined;
  for (const std::string& line : shown) {
    joined += line + '\n';
  }
  return joined;
}

}  // namespace

std::string Disagreements(const FormWindow& window) {
  std::string found;
  const auto expect = [&found](const Control& control, const std::string& what, bool agrees) {
    if (!agrees) {
      found += control.Name() + ": " + what + '\n';
    }
  };
  for (const Control* const control : window.ShownForm().AllControls()) {
    const HWND shows = window.WindowOf(*control);
    expect(*control, "on show", (::IsWindowVisible(shows) != 0) == control->IsOnShow());
    expect(*control, "enabled", (::IsWindowEnabled(shows) != 0) == control->IsUsable());
    const Shown shown = ShownByWindow(*control, shows, window.FocusWindowOf(*control));
    const Shown held = ShownByObject(*control);
    expect(*control, Joined(shown) + "instead of\n" + Joined(held), shown == held);
  }
  const Control* const active = window.ShownForm().ActiveControl();
  if (active != nullptr && ::GetActiveWindow() == window.Window()) {
    expect(*active, "focus", ::GetFocus() == window.FocusWindowOf(*active));
  }
  const bool on_top = window.ShownForm().OwnerDesktop().Top() == &window.ShownForm();
  if ((::IsWindowEnabled(window.Window()) != 0) != on_top ||
      (::GetActiveWindow() == window.Window()) != on_top) {
    found += window.ShownForm().Name() + ": takes input\n";
  }
  return found;
}

}  // namespace nimbrel::toolkit::win32
