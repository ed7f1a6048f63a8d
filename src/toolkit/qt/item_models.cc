#include "toolkit/qt/item_models.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "toolkit/qt/picture_icon.h"
#include "toolkit/qt/qt_text.h"

namespace nimbrel::toolkit::qt {

QModelIndex FlatModel::index(int row, int column, const QModelIndex& parent) const {
  return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

QModelIndex FlatModel::parent(const QModelIndex& /*child*/) const {
  return {};
}

void FlatModel::TellContents() {
  const int rows = rowCount({});
  const int columns = columnCount({});
  if (rows > 0 && columns > 0) {
    emit dataChanged(createIndex(0, 0), createIndex(rows - 1, columns - 1));
  }
}

EntryModel::EntryModel(const std::vector<std::string>& entries, QObject* parent)
    : FlatModel(parent), entries_(entries), count_(static_cast<int>(entries.size())) {}

int EntryModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count_;
}

int EntryModel::columnCount(const QModelIndex& /*parent*/) const {
  return 1;
}

QVariant EntryModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  const bool is_text = role == Qt::DisplayRole || role == Qt::EditRole;
  return is_text && index.isValid() && row < entries_.size() ? ToQt(entries_[row]) : QVariant();
}

bool EntryModel::Update() {
  const int count = static_cast<int>(entries_.size());
  if (count == count_) {
    TellContents();
    return false;
  }
  beginResetModel();
  count_ = count;
  endResetModel();
  return true;
}

RowModel::RowModel(const ListView& list, QObject* parent)
    : FlatModel(parent),
      list_(list),
      rows_(list.ListItems().begin(), list.ListItems().end()),
      columns_(CountColumns()) {}

int RowModel::CountColumns() const {
  const bool report = list_.View() == ListViewStyle::kReport;
  return report ? std::max(list_.ColumnHeaders().Count(), 1) : 1;
}

int RowModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RowModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  const ListItem& row = *rows_[static_cast<std::size_t>(index.row())];
  if (role == Qt::DisplayRole) {
    return ToQt(row.CellText(index.column() + 1));
  }
  if (role == Qt::CheckStateRole && index.column() == 0 && list_.CheckBoxes()) {
    return row.Checked() ? Qt::Checked : Qt::Unchecked;
  }
  return {};
}

QVariant RowModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool there = orientation == Qt::Horizontal && section >= 0 &&
                     section < static_cast<int>(list_.ColumnHeaders().Count());
  if (!there) {
    return {};
  }
  if (role == Qt::TextAlignmentRole) {
    return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
  }
  return role == Qt::DisplayRole ? ToQt(list_.ColumnHeaders().Item(section + 1).Text())
                                 : QVariant();
}

Qt::ItemFlags RowModel::flags(const QModelIndex& index) const {
  // So that screen readers tell of the mark; what changes it is the toolkit alone.
  const bool marked = index.isValid() && index.column() == 0 && list_.CheckBoxes();
  return FlatModel::flags(index) | (marked ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}

bool RowModel::Update() {
  const ListItemList& rows = list_.ListItems();
  if (columns_ == CountColumns() &&
      std::equal(rows_.begin(), rows_.end(), rows.begin(), rows.end())) {
    TellContents();
    return false;
  }
  beginResetModel();
  rows_.assign(rows.begin(), rows.end());
  columns_ = CountColumns();
  endResetModel();
  return true;
}

QModelIndex RowModel::IndexOf(const ListItemRef& row, int column) const {
  const auto found = std::find(rows_.begin(), rows_.end(), row);
  return row.IsNothing() || found == rows_.end()
             ? QModelIndex()
             : createIndex(static_cast<int>(std::distance(rows_.begin(), found)), column);
}

NodeModel::NodeModel(const TreeView& tree, QObject* parent) : ItemModel(parent), tree_(tree) {
  Update();
}

int NodeModel::AppendChildren(std::vector<Entry>& entries, const NodeRef& first, int parent) const {
  int row = 0;
  for (NodeRef node = first; !node.IsNothing(); node = node->Next()) {
    entries.push_back({node, parent, row++});
  }
  return row;
}

std::vector<NodeModel::Entry> NodeModel::ReadEntries() const {
  std::vector<Entry> entries;
  entries.reserve(static_cast<std::size_t>(tree_.Nodes().Count()));
  AppendChildren(entries, tree_.Root(), -1);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto first_child = static_cast<int>(entries.size());
    const int children = AppendChildren(entries, entries[i].node->Child(), static_cast<int>(i));
    entries[i].first_child = first_child;
    entries[i].children = children;
  }
  return entries;
}

bool NodeModel::Update() {
  icons_.clear();
  std::vector<Entry> entries = ReadEntries();
  const bool same = std::equal(
      entries.begin(), entries.end(), entries_.begin(), entries_.end(),
      [](const Entry& a, const Entry& b) { return a.node == b.node && a.parent == b.parent; });
  if (same) {
    TellContents();
    return false;
  }
  beginResetModel();
  entries_ = std::move(entries);
  places_.clear();
  places_.reserve(entries_.size());
  at_top_ = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    places_.emplace(entries_[i].node.get(), static_cast<int>(i));
    at_top_ += entries_[i].parent < 0 ? 1 : 0;
  }
  endResetModel();
  return true;
}

void NodeModel::TellContents() {
  if (at_top_ > 0) {
    emit dataChanged(createIndex(0, 0, quintptr{0}),
                     createIndex(at_top_ - 1, 0, static_cast<quintptr>(at_top_ - 1)));
  }
}

const NodeModel::Entry& NodeModel::EntryAt(const QModelIndex& index) const {
  return entries_[index.internalId()];
}

QModelIndex NodeModel::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) {
    return {};
  }
  const int first = parent.isValid() ? EntryAt(parent).first_child : 0;
  return createIndex(row, column, static_cast<quintptr>(first + row));
}

QModelIndex NodeModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || EntryAt(child).parent < 0) {
    return {};
  }
  const int above = EntryAt(child).parent;
  return createIndex(entries_[static_cast<std::size_t>(above)].row, 0,
                     static_cast<quintptr>(above));
}

int NodeModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? EntryAt(parent).children : at_top_;
}

int NodeModel::columnCount(const QModelIndex& /*parent*/) const {
  return 1;
}

QIcon NodeModel::IconOf(std::int32_t image) const {
  const ImageList* const images = tree_.Images();
  if (images == nullptr || image < 1 || image > images->Count()) {
    return {};
  }
  auto found = icons_.find(image);
  if (found == icons_.end()) {
    found = icons_
                .emplace(image, PictureIcon(images->Item(image), images->ImageWidth(),
                                            images->ImageHeight()))
                .first;
  }
  return found->second;
}

QVariant NodeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  const Node& node = *EntryAt(index).node;
  if (role == Qt::DisplayRole) {
    return ToQt(node.Text());
  }
  if (role == Qt::DecorationRole && tree_.Style() == TreeStyle::kTreelinesPlusMinusPictureText &&
      node.Image() > 0) {
    return IconOf(node.Image());
  }
  return {};
}

NodeRef NodeModel::NodeAt(const QModelIndex& index) const {
  return index.isValid() ? EntryAt(index).node : NodeRef();
}

QModelIndex NodeModel::IndexOf(const NodeRef& node) const {
  const auto found = places_.find(node.IsNothing() ? nullptr : node.get());
  if (found == places_.end()) {
    return {};
  }
  return createIndex(entries_[static_cast<std::size_t>(found->second)].row, 0,
                     static_cast<quintptr>(found->second));
}

std::vector<QModelIndex> NodeModel::Parents() const {
  std::vector<QModelIndex> parents;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].children > 0) {
      parents.push_back(createIndex(entries_[i].row, 0, static_cast<quintptr>(i)));
    }
  }
  return parents;
}

}  // namespace nimbrel::toolkit::qt
