// The faces of list boxes, list views and trees.
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <vector>

#include "toolkit/qt/faces.h"
#include "toolkit/qt/item_models.h"
#include "toolkit/qt/item_view.h"

namespace nimbrel::toolkit::qt {
namespace {

/// Rows that are seen of a list at the least.
constexpr int kRowsAtLeast = 3;

/// What the faces of lists have in common: the selection is the toolkit's, and every click goes
/// there.
class ListFace : public ControlFace {
 public:
  QWidget& Widget() const override { return view_; }
  bool Stretches() const override { return true; }

  int NeededWidth() const override { return view_.fontMetrics().averageCharWidth() * 12; }
  int NeededHeight(int /*width*/) const override {
    const int header = view_.header()->isHidden() ? 0 : view_.header()->sizeHint().height();
    const int row = view_.fontMetrics().height() * 4 / 3 + 2;
    return header + kRowsAtLeast * row + 2 * view_.frameWidth();
  }

 protected:
  ListFace(Control& control, FaceHost& host, QWidget& parent)
      : ControlFace(control, host), view_(*new ItemView(&parent)) {
    view_.viewport()->setFocusPolicy(Qt::NoFocus);
    Watch(view_);
    Watch(*view_.viewport());
  }

  ItemView& view() const { return view_; }

  /// The selected row of the toolkit; no index for none.
  virtual QModelIndex Selected() const = 0;
  /// Forwards a click on a row, on what of it `place` says, or the second click of two.
  virtual void Click(const QModelIndex& index, const QPoint& place) = 0;
  virtual void ClickAgain(const QModelIndex& index, const QPoint& place) = 0;
  /// Forwards that the user went to a row by a key that the toolkit doesn't know.
  virtual void GoTo(const QModelIndex& index) = 0;

  void PaintSelection() {
    QItemSelectionModel& selection = *view_.selectionModel();
    const QModelIndex index = Selected();
    if (!index.isValid()) {
      selection.clear();
    } else if (index != view_.currentIndex() ||
               !selection.isRowSelected(index.row(), index.parent())) {
      selection.setCurrentIndex(index,
                                QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
  }

  /// Looks at the rows again; the place that the list is scrolled to stays. True for other rows.
  bool UpdateRows(ItemModel& model) {
    const int scrolled = view_.verticalScrollBar()->value();
    const bool others = model.Update();
    if (others) {
      view_.doItemsLayout();
      view_.verticalScrollBar()->setValue(scrolled);
    }
    view_.viewport()->update();
    return others;
  }

  bool OnKeyPress(QKeyEvent& event) override {
    const bool forwarded = ControlFace::OnKeyPress(event);
    const bool moves_on = event.key() == Qt::Key_Home || event.key() == Qt::Key_End;
    if (forwarded && !moves_on) {
      return true;
    }
    const QModelIndex before = view_.currentIndex();
    view_.HandleKey(event);
    const QModelIndex after = view_.currentIndex();
    if (after.isValid() && after != before) {
      Make([&] { GoTo(after); });
      PaintSelection();  // the view stands at the row, even if it was refused
    }
    return forwarded || event.isAccepted();
  }

  bool OnMousePress(QWidget& widget, QMouseEvent& event) override {
    const QModelIndex index = IndexAt(widget, event);
    Make([&] {
      if (index.isValid()) {
        Click(index, event.pos());
      } else {
        GetControl().UserFocus();
      }
    });
    return true;
  }
  bool OnDoubleClick(QWidget& widget, QMouseEvent& event) override {
    if (const QModelIndex index = IndexAt(widget, event); index.isValid()) {
      Make([&] { ClickAgain(index, event.pos()); });
    }
    return true;
  }
  bool OnOther(QWidget& widget, QEvent& event) override {
    const bool drags = event.type() == QEvent::MouseMove &&
                       static_cast<QMouseEvent&>(event).buttons() != Qt::NoButton;
    return &widget == view_.viewport() && (drags || event.type() == QEvent::MouseButtonRelease);
  }

 private:
  /// The row of a left click; no index for any other, which gives the focus alone.
  QModelIndex IndexAt(const QWidget& widget, const QMouseEvent& event) const {
    const bool on_rows = &widget == view_.viewport() && event.button() == Qt::LeftButton;
    return on_rows ? view_.indexAt(event.pos()) : QModelIndex();
  }

  ItemView& view_;
};

class ListBoxFace final : public ListFace {
 public:
  ListBoxFace(ListBox& list, FaceHost& host, QWidget& parent)
      : ListFace(list, host, parent),
        list_(list),
        model_(*new EntryModel(list.Entries(), &view())) {
    view().setRootIsDecorated(false);
    view().setHeaderHidden(true);
    view().setModel(&model_);
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kEntries)) {
      UpdateRows(model_);
    }
    if (changes.Has(Property::kEntries) || changes.Has(Property::kSelection)) {
      PaintSelection();
    }
  }
  QModelIndex Selected() const override { return model_.index(list_.ListIndex(), 0, {}); }
  void Click(const QModelIndex& index, const QPoint& /*place*/) override { GoTo(index); }
  void ClickAgain(const QModelIndex& index, const QPoint& /*place*/) override {
    list_.UserClickAgain(index.row());
  }
  void GoTo(const QModelIndex& index) override { list_.UserPick(index.row()); }

 private:
  ListBox& list_;
  EntryModel& model_;
};

class ListViewFace final : public ListFace {
 public:
  ListViewFace(ListView& list, FaceHost& host, QWidget& parent)
      : ListFace(list, host, parent), list_(list), model_(*new RowModel(list, &view())) {
    view().setRootIsDecorated(false);
    view().setHeaderHidden(list.View() != ListViewStyle::kReport);
    view().setModel(&model_);
    view().setAllColumnsShowFocus(true);
    view().OnResized = [this] { PaintColumns(); };
    QHeaderView& header = *view().header();
    header.setSectionsClickable(true);
    header.setSectionsMovable(false);
    header.setHighlightSections(false);
    header.setMinimumSectionSize(1);
    header.setStretchLastSection(true);
    QObject::connect(&header, &QHeaderView::sectionClicked, this,
                     [this](int section) { Make([&] { list_.UserClickHeader(section + 1); }); });
  }

  /// So wide that the caption of each column fits into its share.
  int NeededWidth() const override {
    double needed = ListFace::NeededWidth();
    for (std::int32_t i = 1; HasColumns() && i <= list_.ColumnHeaders().Count(); ++i) {
      const ColumnHeader& column = list_.ColumnHeaders().Item(i);
      if (column.Width() > 0 && !column.Text().empty()) {
        const int caption = view().header()->sectionSizeHint(i - 1);
        needed = std::max(needed, static_cast<double>(caption) * Twips() / column.Width());
      }
    }
    return static_cast<int>(needed) + 2 * view().frameWidth() +
           (HasColumns() ? view().verticalScrollBar()->sizeHint().width() : 0);
  }

 protected:
  void Paint(const Changes& changes) override {
    const bool columns = changes.Has(Property::kColumns) || changes.Has(Property::kStyle);
    const bool rows = columns || changes.Has(Property::kEntries);
    const bool others = rows && UpdateRows(model_);
    if (columns || others) {
      PaintColumns();
    }
    if (changes.Has(Property::kChecked)) {
      model_.Update();
      view().viewport()->update();
    }
    if (rows || changes.Has(Property::kSelection)) {
      PaintSelection();
    }
    if (changes.Has(Property::kScroll)) {
      view().scrollTo(model_.IndexOf(list_.ScrollTarget(), FirstShown()));
    }
  }
  QModelIndex Selected() const override {
    return model_.IndexOf(list_.SelectedItem(), FirstShown());
  }
  void Click(const QModelIndex& index, const QPoint& place) override {
    if (OnCheck(index, place)) {
      list_.UserToggleCheck(index.row() + 1);
    } else {
      GoTo(index);
    }
  }
  void ClickAgain(const QModelIndex& index, const QPoint& place) override {
    if (OnCheck(index, place)) {
      list_.UserToggleCheck(index.row() + 1);
    } else {
      list_.UserClickRowAgain(index.row() + 1);
    }
  }
  void GoTo(const QModelIndex& index) override { list_.UserClickRow(index.row() + 1); }

 private:
  bool HasColumns() const {
    return list_.View() == ListViewStyle::kReport && list_.ColumnHeaders().Count() > 0;
  }
  bool OnCheck(const QModelIndex& index, const QPoint& place) const {
    return list_.CheckBoxes() && view().CheckRect(index.siblingAtColumn(0)).contains(place);
  }
  int FirstShown() const {
    int column = 0;
    while (HasColumns() && column + 1 < list_.ColumnHeaders().Count() &&
           list_.ColumnHeaders().Item(column + 1).Width() == 0) {
      ++column;
    }
    return column;
  }
  /// The twips of all columns, or of the whole list if that is more.
  double Twips() const {
    int sum = 0;
    for (std::int32_t i = 1; i <= list_.ColumnHeaders().Count(); ++i) {
      sum += list_.ColumnHeaders().Item(i).Width();
    }
    return std::max({sum, list_.Width(), 1});
  }
  /// Gives each column its share of the width, so that boxes under the list stay under theirs.
  void PaintColumns() {
    if (!HasColumns()) {
      return;
    }
    const double scale = view().viewport()->width() / Twips();
    for (std::int32_t i = 1; i <= list_.ColumnHeaders().Count(); ++i) {
      const int width = list_.ColumnHeaders().Item(i).Width();
      view().setColumnHidden(i - 1, width == 0);
      if (width > 0) {
        view().setColumnWidth(i - 1, std::max(static_cast<int>(width * scale), 1));
      }
    }
  }

  ListView& list_;
  RowModel& model_;
};

class TreeViewFace final : public ListFace {
 public:
  TreeViewFace(TreeView& tree, FaceHost& host, QWidget& parent)
      : ListFace(tree, host, parent), tree_(tree), model_(*new NodeModel(tree, &view())) {
    view().setHeaderHidden(true);
    view().setItemsExpandable(false);  // only the toolkit expands
    view().setModel(&model_);
    view().header()->setStretchLastSection(false);
    view().header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kStyle)) {
      PaintStyle();
    }
    const bool entries = changes.Has(Property::kEntries) || changes.Has(Property::kStyle);
    if (entries) {
      UpdateNodes();
    }
    if (entries || changes.Has(Property::kExpanded)) {
      PaintExpanded();
    }
    if (entries || changes.Has(Property::kSelection)) {
      PaintSelection();
    }
    if (changes.Has(Property::kScroll)) {
      view().scrollTo(model_.IndexOf(tree_.ScrollTarget()));
    }
  }
  QModelIndex Selected() const override { return model_.IndexOf(tree_.SelectedItem()); }
  void Click(const QModelIndex& index, const QPoint& place) override {
    const NodeRef node = model_.NodeAt(index);
    if (view().SignRect(index).contains(place)) {
      tree_.UserExpand(node, !node->Expanded());
    } else {
      tree_.UserClickNode(node);
    }
  }
  /// On the node itself the second click opens or closes it, as trees do everywhere.
  void ClickAgain(const QModelIndex& index, const QPoint& /*place*/) override {
    const NodeRef node = model_.NodeAt(index);
    if (node->Children() > 0 && tree_.HasFocus()) {
      tree_.UserExpand(node, !node->Expanded());
    }
  }
  void GoTo(const QModelIndex& index) override { tree_.UserClickNode(model_.NodeAt(index)); }

 private:
  void PaintStyle() {
    view().setRootIsDecorated(tree_.Style() != TreeStyle::kText);
    if (const ImageList* const images = tree_.Images(); images != nullptr) {
      // As high as the text, where the text is higher than the pictures.
      const double scale =
          std::max(1.0, static_cast<double>(view().fontMetrics().height()) / images->ImageHeight());
      view().setIconSize(QSize(static_cast<int>(images->ImageWidth() * scale),
                               static_cast<int>(images->ImageHeight() * scale)));
    }
  }
  void UpdateNodes() {
    const int scrolled = view().verticalScrollBar()->value();
    if (model_.Update()) {
      PaintExpanded();
      view().doItemsLayout();
      view().verticalScrollBar()->setValue(scrolled);
    }
    view().viewport()->update();
  }
  void PaintExpanded() {
    bool changed = false;
    for (const QModelIndex& index : model_.Parents()) {
      const bool expanded = model_.NodeAt(index)->Expanded();
      if (expanded != view().isExpanded(index)) {
        if (!changed) {
          view().LayOutLater();  // once, however many nodes open or close
        }
        changed = true;
        view().setExpanded(index, expanded);
      }
    }
  }

  TreeView& tree_;
  NodeModel& model_;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(ListBox& list, FaceHost& host, QWidget& parent) {
  return std::make_unique<ListBoxFace>(list, host, parent);
}

std::unique_ptr<ControlFace> MakeFace(ListView& list, FaceHost& host, QWidget& parent) {
  return std::make_unique<ListViewFace>(list, host, parent);
}

std::unique_ptr<ControlFace> MakeFace(TreeView& tree, FaceHost& host, QWidget& parent) {
  return std::make_unique<TreeViewFace>(tree, host, parent);
}

}  // namespace nimbrel::toolkit::qt
