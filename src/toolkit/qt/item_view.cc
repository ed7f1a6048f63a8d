#include "toolkit/qt/item_view.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>

#include "toolkit/qt/check_outline.h"

namespace nimbrel::toolkit::qt {
namespace {

/// Rows with some air between them, so that check boxes don't touch.
class AiryRows final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, option.fontMetrics.height() / 3);
  }
  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    if (const auto* const view = dynamic_cast<const ItemView*>(option.widget); view != nullptr) {
      OutlineCheckOnDark(*painter, view->CheckRect(index), option.palette);
    }
  }
};

}  // namespace

ItemView::ItemView(QWidget* parent) : QTreeView(parent) {
  setItemDelegate(new AiryRows(this));
  setUniformRowHeights(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setExpandsOnDoubleClick(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

void ItemView::HandleKey(QKeyEvent& event) {
  QTreeView::keyPressEvent(&event);
}

QRect ItemView::CheckRect(const QModelIndex& index) const {
  if (!index.data(Qt::CheckStateRole).isValid()) {
    return {};
  }
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = visualRect(index);
  option.features |= QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
  option.text = index.data().toString();
  return style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this);
}

QRect ItemView::SignRect(const QModelIndex& index) const {
  if (!rootIsDecorated() || !model()->hasChildren(index)) {
    return {};
  }
  const QRect row = visualRect(index);
  const int left = isRightToLeft() ? row.right() + 1 : row.left() - indentation();
  return {left, row.top(), indentation(), row.height()};
}

void ItemView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (hasFocus() && !currentIndex().isValid()) {
    // No row shows that the focus is here.
    QPainter painter(viewport());
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = viewport()->rect();
    option.backgroundColor = palette().color(QPalette::Base);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

void ItemView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  if (OnResized) {
    OnResized();
  }
}

}  // namespace nimbrel::toolkit::qt
