#pragma once

#include <QPoint>
#include <Qt>
#include <functional>
#include <memory>
#include <vector>

#include "tests/support/gestures/hands.h"

class QApplication;
class QWidget;

namespace nimbrel::toolkit::qt {
class FormWindow;
class ItemView;
}  // namespace nimbrel::toolkit::qt

namespace nimbrel::gestures {

/// Hands that work the Qt face: they open its windows and make every gesture by the mouse and the
/// keyboard, as events of the window system. Where there is no QApplication they make one that
/// draws in memory, unless QT_QPA_PLATFORM names a platform; it lives as long as they do.
class QtHands final : public Hands {
 public:
  QtHands();
  ~QtHands() override;

  /// Runs after each gesture that was made, for each window that is open.
  std::function<void(const toolkit::qt::FormWindow&)> AfterEach;

  void OnShown(toolkit::Form& form) override;
  void OnGone(toolkit::Form& form) override;

  toolkit::GestureResult Type(toolkit::EditControl& box, const std::string& text) override;
  toolkit::GestureResult Leave(toolkit::Form& form) override;
  toolkit::GestureResult PressKey(toolkit::Control& control, toolkit::Key key) override;
  toolkit::GestureResult Click(toolkit::Control& control) override;
  toolkit::GestureResult Pick(toolkit::ListBox& list, std::int32_t index) override;
  toolkit::GestureResult Pick(toolkit::ComboBox& box, std::int32_t index) override;
  toolkit::GestureResult DoubleClick(toolkit::ListBox& list, std::int32_t index) override;
  toolkit::GestureResult ClickRow(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult DoubleClickRow(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult ClickHeader(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult ToggleCheck(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult PickTab(toolkit::TabStrip& tabs, std::int32_t index) override;
  toolkit::GestureResult ClickNode(toolkit::TreeView& tree, const toolkit::NodeRef& node) override;
  toolkit::GestureResult Close(toolkit::Form& form) override;

  /// The window of the form on top; null when none is open.
  toolkit::qt::FormWindow* TopWindow() const;

 private:
  toolkit::GestureResult Made();
  toolkit::qt::FormWindow& Window(const toolkit::Form& form) const;
  QWidget& WidgetOf(const toolkit::Control& control) const;
  toolkit::qt::ItemView& ViewOf(const toolkit::Control& control) const;

  void ClickAt(const toolkit::Form& form, const QWidget& widget, QPoint place, bool twice = false);
  void ClickItem(const toolkit::Control& control, int row, bool twice);
  void PressKeyOn(const toolkit::Form& form, Qt::Key key);

  std::unique_ptr<QApplication> application_;
  std::vector<std::unique_ptr<toolkit::qt::FormWindow>> windows_;
};

}  // namespace nimbrel::gestures
