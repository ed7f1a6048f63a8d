#include "tests/qt/agreement.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include "toolkit/buttons.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/qt/item_models.h"
#include "toolkit/qt/item_view.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/tab_strip.h"

namespace nimbrel::toolkit::qt {
namespace {

/// What the widget shows, in a form that ShownByObject gives for the control, too.
using Shown = QStringList;

QString LineText(const QLineEdit& line, bool with_selection) {
  const int start = line.hasSelectedText() ? line.selectionStart() : line.cursorPosition();
  const QString selection = QString(" [%1+%2]").arg(start).arg(line.selectedText().size());
  return line.text() + (with_selection ? selection : QString());
}

QString BoxText(const EditControl& box) {
  const QString text = ToQt(box.Text());
  const int start = UnitsBefore(text, box.SelStart());
  const QString selection = QString(" [%1+%2]")
                                .arg(start)
                                .arg(UnitsBefore(text, box.SelStart() + box.SelLength()) - start);
  return text + (box.HasFocus() ? selection : QString());
}

void AddNodes(const ItemView& view, const QModelIndex& parent, const QString& indent,
              Shown& shown) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    const bool picture = !index.data(Qt::DecorationRole).isNull();
    shown << indent + index.data().toString() + (picture ? " picture" : "") +
                 (view.isExpanded(index) ? " expanded" : "") +
                 (view.selectionModel()->isSelected(index) ? " *" : "");
    AddNodes(view, index, indent + ' ', shown);
  }
}

void AddNodes(const TreeView& tree, const NodeRef& first, const QString& indent, Shown& shown) {
  for (NodeRef node = first; !node.IsNothing(); node = node->Next()) {
    shown << indent + ToQt(node->Text()) + (node->Image() > 0 ? " picture" : "") +
                 (node->Expanded() && node->Children() > 0 ? " expanded" : "") +
                 (tree.SelectedItem() == node ? " *" : "");
    AddNodes(tree, node->Child(), indent + ' ', shown);
  }
}

Shown RowsOfWidget(const ItemView& view) {
  Shown shown;
  for (int row = 0; row < view.model()->rowCount(); ++row) {
    QString line;
    for (int column = 0; column < view.model()->columnCount(); ++column) {
      const QModelIndex index = view.model()->index(row, column);
      const QVariant mark = index.data(Qt::CheckStateRole);
      line += index.data().toString() + '|' + (mark.isValid() ? mark.toString() : QString());
    }
    shown << line + (view.selectionModel()->isRowSelected(row) ? " *" : "");
  }
  return shown;
}

Shown RowsOfObject(const ListView& list) {
  Shown shown;
  const int columns = list.View() == ListViewStyle::kList ? 1 : list.ColumnHeaders().Count();
  for (const ListItemRef& row : list.ListItems()) {
    QString line;
    for (int column = 1; column <= columns; ++column) {
      const bool marked = column == 1 && list.CheckBoxes();
      line += ToQt(row->CellText(column)) + '|' +
              (marked ? QString::number(row->Checked() ? Qt::Checked : Qt::Unchecked) : QString());
    }
    shown << line + (row->Selected() ? " *" : "");
  }
  return shown;
}

Shown EntriesOfObject(const ListBox& list) {
  Shown shown;
  for (std::int32_t i = 0; i < list.ListCount(); ++i) {
    shown << ToQt(list.List(i)) + '|' + (i == list.ListIndex() ? " *" : "");
  }
  return shown;
}

Shown ShownByWidget(const Control& control, const QWidget& widget) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
      return {dynamic_cast<const QPushButton&>(widget).text()};
    case ControlKind::kCheckBox: {
      const auto& box = dynamic_cast<const QCheckBox&>(widget);
      return {box.text(), box.isChecked() ? "on" : "off"};
    }
    case ControlKind::kTextBox:
      return {LineText(dynamic_cast<const QLineEdit&>(widget), control.HasFocus())};
    case ControlKind::kComboBox:
      return {LineText(*dynamic_cast<const QComboBox&>(widget).lineEdit(), control.HasFocus())};
    case ControlKind::kLabel:
      return {dynamic_cast<const QLabel&>(widget).text()};
    case ControlKind::kFrame:
      return {dynamic_cast<const QGroupBox&>(widget).title()};
    case ControlKind::kTabStrip:
      return {QString::number(dynamic_cast<const QTabWidget&>(widget).currentIndex())};
    case ControlKind::kListBox:
    case ControlKind::kListView:
      return RowsOfWidget(dynamic_cast<const ItemView&>(widget));
    case ControlKind::kTreeView: {
      Shown shown;
      AddNodes(dynamic_cast<const ItemView&>(widget), {}, {}, shown);
      return shown;
    }
  }
  return {};
}

Shown ShownByObject(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
      return {CaptionToQt(dynamic_cast<const CommandButton&>(control).Caption())};
    case ControlKind::kCheckBox: {
      const auto& box = dynamic_cast<const CheckBox&>(control);
      return {CaptionToQt(box.Caption()), box.Value() ? "on" : "off"};
    }
    case ControlKind::kTextBox:
    case ControlKind::kComboBox:
      return {BoxText(dynamic_cast<const EditControl&>(control))};
    case ControlKind::kLabel:
      return {ToQt(dynamic_cast<const Label&>(control).Caption())};
    case ControlKind::kFrame:
      return {CaptionToQt(dynamic_cast<const Frame&>(control).Caption())};
    case ControlKind::kTabStrip:
      return {QString::number(dynamic_cast<const TabStrip&>(control).Tab())};
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

}  // namespace

std::string Disagreements(const FormWindow& window) {
  QString found;
  const auto expect = [&found](const Control& control, const QString& what, const auto& shown,
                               const auto& held) {
    if (shown != held) {
      found += ToQt(control.Name()) + ": " + what + '\n';
    }
  };
  for (const Control* const control : window.ShownForm().AllControls()) {
    const QWidget& widget = *window.WidgetOf(*control);
    expect(*control, "on show", widget.isVisibleTo(&window), control->IsOnShow());
    expect(*control, "enabled", widget.isEnabled(), control->IsUsable());
    const Shown shown = ShownByWidget(*control, widget);
    const Shown held = ShownByObject(*control);
    expect(*control, shown.join('\n') + " instead of " + held.join('\n'), shown, held);
  }
  const Control* const active = window.ShownForm().ActiveControl();
  const bool on_top = QApplication::activeModalWidget() == &window;
  if (active != nullptr && on_top) {
    expect(*active, "focus", QApplication::focusWidget(), window.FocusWidgetOf(*active));
  }
  return FromQt(found);
}

}  // namespace nimbrel::toolkit::qt
