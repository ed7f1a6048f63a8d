#include "tests/support/gestures/qt/qt_hands.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QStyleHints>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <algorithm>
#include <stdexcept>

#include "toolkit/qt/form_window.h"
#include "toolkit/qt/item_models.h"
#include "toolkit/qt/item_view.h"
#include "toolkit/qt/qt_text.h"

namespace nimbrel::gestures {
namespace {

using namespace toolkit;
using toolkit::qt::FormWindow;
using toolkit::qt::ItemView;

Qt::Key QtKey(Key key) {
  switch (key) {
    case Key::kBackspace:
      return Qt::Key_Backspace;
    case Key::kTab:
      return Qt::Key_Tab;
    case Key::kEnter:
      return Qt::Key_Return;
    case Key::kEscape:
      return Qt::Key_Escape;
    case Key::kSpace:
      return Qt::Key_Space;
    case Key::kEnd:
      return Qt::Key_End;
    case Key::kHome:
      return Qt::Key_Home;
    case Key::kLeft:
      return Qt::Key_Left;
    case Key::kUp:
      return Qt::Key_Up;
    case Key::kRight:
      return Qt::Key_Right;
    case Key::kDown:
      return Qt::Key_Down;
    case Key::kDelete:
      return Qt::Key_Delete;
  }
  return Qt::Key_unknown;
}

/// Where a hand clicks on a control as such: on no row of a list and on no other tab.
QPoint PlaceOf(QWidget& widget) {
  if (dynamic_cast<ItemView*>(&widget) != nullptr) {
    return {0, widget.height() / 2};  // its frame
  }
  if (auto* const bar = qobject_cast<QTabBar*>(&widget); bar != nullptr) {
    return bar->tabRect(bar->currentIndex()).center();
  }
  // A check box is hit on its mark; a combo box on its text.
  return {std::min(10, widget.width() / 2), widget.height() / 2};
}

QString Character(const std::string& text, std::size_t& at) {
  std::size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    ++end;
  }
  const QString character = qt::ToQt(text.substr(at, end - at));
  at = end;
  return character;
}

void Activate(FormWindow& window) {
  window.activateWindow();
  if (!QTest::qWaitForWindowActive(&window)) {
    throw std::runtime_error("the window of " + window.ShownForm().Name() +
                             " does not become active");
  }
}

}  // namespace

QtHands::QtHands() {
  if (QCoreApplication::instance() == nullptr) {
    static int argc = 1;
    static char name[] = "nimbrel";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
      qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    application_ = std::make_unique<QApplication>(argc, argv);
  }
}

QtHands::~QtHands() = default;

FormWindow* QtHands::TopWindow() const {
  return windows_.empty() ? nullptr : windows_.back().get();
}

void QtHands::OnShown(Form& form) {
  windows_.push_back(std::make_unique<FormWindow>(form, TopWindow()));
  TopWindow()->show();
  Activate(*TopWindow());
  Made();
}

void QtHands::OnGone(Form& /*form*/) {
  windows_.pop_back();
  if (FormWindow* const below = TopWindow(); below != nullptr) {
    Activate(*below);
  }
}

FormWindow& QtHands::Window(const Form& form) const {
  const auto found = std::find_if(windows_.begin(), windows_.end(), [&form](const auto& window) {
    return &window->ShownForm() == &form;
  });
  return **found;
}

QWidget& QtHands::WidgetOf(const Control& control) const {
  return *Window(control.OwnerForm()).WidgetOf(control);
}

ItemView& QtHands::ViewOf(const Control& control) const {
  return dynamic_cast<ItemView&>(WidgetOf(control));
}

GestureResult QtHands::Made() {
  QCoreApplication::processEvents();
  for (const auto& window : windows_) {
    if (AfterEach && window->ShownForm().Visible()) {
      AfterEach(*window);
    }
  }
  return GestureResult::Made();
}

void QtHands::ClickAt(const Form& form, const QWidget& widget, QPoint place, bool twice) {
  FormWindow& window = Window(form);
  window.BringIntoView(widget, place);
  const QPoint on_window = widget.mapTo(&window, place);
  if (twice) {
    QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, on_window);
  } else {
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, on_window);
  }
}

void QtHands::PressKeyOn(const Form& form, Qt::Key key) {
  QTest::keyClick(Window(form).windowHandle(), key);
}

GestureResult QtHands::Type(EditControl& box, const std::string& text) {
  if (const std::string why_not = box.WhyNoGesture(); !why_not.empty()) {
    return GestureResult::Impossible(why_not);
  }
  const Form& form = box.OwnerForm();
  ClickAt(form, WidgetOf(box), PlaceOf(WidgetOf(box)));
  if (!box.HasFocus()) {
    return Made();
  }
  QTest::keyClick(Window(form).windowHandle(), Qt::Key_A, Qt::ControlModifier);
  if (text.empty() && !box.Text().empty()) {
    PressKeyOn(form, Qt::Key_Delete);
  }
  for (std::size_t at = 0; at < text.size() && box.HasFocus();) {
    if (std::string why_not = box.WhyNoGesture(); !why_not.empty()) {
      return GestureResult::Impossible(std::move(why_not));
    }
    // The text alone says what is typed; no keyboard has a key for every character.
    QTest::sendKeyEvent(QTest::Click, Window(form).windowHandle(), Qt::Key_unknown,
                        Character(text, at), Qt::NoModifier);
  }
  return Made();
}

GestureResult QtHands::Leave(Form& form) {
  if (const std::string why_not = form.WhyNoGesture(); !why_not.empty()) {
    return GestureResult::Impossible(why_not);
  }
  PressKeyOn(form, Qt::Key_Tab);
  return Made();
}

GestureResult QtHands::PressKey(Control& control, Key key) {
  if (!control.WhyNoGesture().empty() || !control.TakesFocus()) {
    return Hands::PressKey(control, key);  // says why not
  }
  if (control.HasFocus()) {
    PressKeyOn(control.OwnerForm(), QtKey(key));
  } else {
    QWidget& widget = *Window(control.OwnerForm()).FocusWidgetOf(control);
    QTest::keyClick(&widget, QtKey(key));
  }
  return Made();
}

GestureResult QtHands::Click(Control& control) {
  if (!control.WhyNoGesture().empty()) {
    return Hands::Click(control);
  }
  QWidget& widget = control.Kind() == ControlKind::kTabStrip
                        ? *Window(control.OwnerForm()).FocusWidgetOf(control)
                        : WidgetOf(control);
  auto* const box = dynamic_cast<EditControl*>(&control);
  const std::string text = box != nullptr ? box->Text() : std::string();
  const std::int32_t start = box != nullptr ? box->SelStart() : 0;
  const std::int32_t length = box != nullptr ? box->SelLength() : 0;
  ClickAt(control.OwnerForm(), widget, PlaceOf(widget));
  if (box != nullptr && box->HasFocus()) {
    // The mouse puts the caret where it points; a click on a box as such leaves it alone.
    const bool is_same = box->Text() == text;
    box->UserSelect(is_same ? start : 0, is_same ? length : 0);
  }
  return Made();
}

void QtHands::ClickItem(const Control& control, int row, bool twice) {
  ItemView& view = ViewOf(control);
  int column = 0;
  while (view.isColumnHidden(column)) {
    ++column;
  }
  const QModelIndex index = view.model()->index(row, column);
  view.scrollTo(index);
  const QRect shown = view.visualRect(index) & view.viewport()->rect();
  const QRect check = view.CheckRect(index);
  const int left = check.isNull() ? shown.left() : check.right() + 1;
  ClickAt(control.OwnerForm(), *view.viewport(),
          {std::min(left + 6, shown.right()), shown.center().y()}, twice);
}

GestureResult QtHands::Pick(ListBox& list, std::int32_t index) {
  if (!list.WhyNoEntry(index).empty()) {
    return Hands::Pick(list, index);
  }
  ClickItem(list, index, false);
  return Made();
}

GestureResult QtHands::DoubleClick(ListBox& list, std::int32_t index) {
  if (!list.WhyNoEntry(index).empty()) {
    return Hands::DoubleClick(list, index);
  }
  ClickItem(list, index, true);
  return Made();
}

GestureResult QtHands::Pick(ComboBox& box, std::int32_t index) {
  if (!box.WhyNoEntry(index).empty()) {
    return Hands::Pick(box, index);
  }
  auto& widget = dynamic_cast<QComboBox&>(WidgetOf(box));
  // A list that has just dropped down takes no click for as long as a double click may last.
  const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
  QApplication::setDoubleClickInterval(0);
  ClickAt(box.OwnerForm(), widget, {widget.width() - 8, widget.height() / 2});
  QAbstractItemView& entries = *widget.view();
  if (entries.isVisible()) {
    const QModelIndex entry = entries.model()->index(index, 0);
    entries.scrollTo(entry);
    const QPoint place = entries.visualRect(entry).center();
    QTest::mouseMove(entries.viewport(), place);
    QTest::mouseClick(entries.window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      entries.viewport()->mapTo(entries.window(), place));
  }
  QApplication::setDoubleClickInterval(interval);
  return Made();
}

GestureResult QtHands::ClickRow(ListView& list, std::int32_t index) {
  if (!list.WhyNoRow(index).empty()) {
    return Hands::ClickRow(list, index);
  }
  ClickItem(list, index - 1, false);
  return Made();
}

GestureResult QtHands::DoubleClickRow(ListView& list, std::int32_t index) {
  if (!list.WhyNoRow(index).empty()) {
    return Hands::DoubleClickRow(list, index);
  }
  ClickItem(list, index - 1, true);
  return Made();
}

GestureResult QtHands::ClickHeader(ListView& list, std::int32_t index) {
  if (!list.WhyNoHeader(index).empty()) {
    return Hands::ClickHeader(list, index);
  }
  QHeaderView& header = *ViewOf(list).header();
  const int section = index - 1;
  ClickAt(list.OwnerForm(), *header.viewport(),
          {header.sectionViewportPosition(section) + header.sectionSize(section) / 2,
           header.height() / 2});
  return Made();
}

GestureResult QtHands::ToggleCheck(ListView& list, std::int32_t index) {
  if (!list.WhyNoCheck(index).empty()) {
    return Hands::ToggleCheck(list, index);
  }
  ItemView& view = ViewOf(list);
  const QModelIndex row = view.model()->index(index - 1, 0);
  view.scrollTo(row);
  ClickAt(list.OwnerForm(), *view.viewport(), view.CheckRect(row).center());
  return Made();
}

GestureResult QtHands::PickTab(TabStrip& tabs, std::int32_t index) {
  if (!tabs.WhyNoTab(index).empty()) {
    return Hands::PickTab(tabs, index);
  }
  auto& bar = dynamic_cast<QTabBar&>(*Window(tabs.OwnerForm()).FocusWidgetOf(tabs));
  ClickAt(tabs.OwnerForm(), bar, bar.tabRect(index).center());
  return Made();
}

GestureResult QtHands::ClickNode(TreeView& tree, const NodeRef& node) {
  if (!tree.WhyNoNode(node).empty()) {
    return Hands::ClickNode(tree, node);
  }
  ItemView& view = ViewOf(tree);
  const auto& nodes = dynamic_cast<const qt::NodeModel&>(*view.model());
  std::vector<NodeRef> closed;
  for (NodeRef above = node->Parent(); !above.IsNothing(); above = above->Parent()) {
    if (!above->Expanded()) {
      closed.insert(closed.begin(), above);
    }
  }
  for (const NodeRef& above : closed) {
    view.scrollTo(nodes.IndexOf(above));
    ClickAt(tree.OwnerForm(), *view.viewport(), view.SignRect(nodes.IndexOf(above)).center());
    if (!above->Expanded()) {
      return Made();  // refused
    }
  }
  view.scrollTo(nodes.IndexOf(node));
  const QRect shown = view.visualRect(nodes.IndexOf(node)) & view.viewport()->rect();
  ClickAt(tree.OwnerForm(), *view.viewport(), {shown.left() + 6, shown.center().y()});
  return Made();
}

GestureResult QtHands::Close(Form& form) {
  if (!form.WhyNoGesture().empty()) {
    return Hands::Close(form);
  }
  Window(form).close();
  return Made();
}

}  // namespace nimbrel::gestures
