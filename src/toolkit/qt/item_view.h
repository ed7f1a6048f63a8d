#pragma once

#include <QTreeView>
#include <functional>

namespace nimbrel::toolkit::qt {

/// A view of rows or nodes that shows where its parts are and takes keys when told.
class ItemView final : public QTreeView {
 public:
  explicit ItemView(QWidget* parent);

  /// Runs after the view has got another size.
  std::function<void()> OnResized;

  /// Does what Qt's own view does with a key.
  void HandleKey(QKeyEvent& event);

  /// Lays the rows out when Qt next comes round to it.
  void LayOutLater() { scheduleDelayedItemsLayout(); }

  /// The check box of a row, and the sign that opens a node, in the viewport. Empty where there is
  /// none.
  QRect CheckRect(const QModelIndex& index) const;
  QRect SignRect(const QModelIndex& index) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
};

}  // namespace nimbrel::toolkit::qt
