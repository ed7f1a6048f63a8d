#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "toolkit/list_view.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit::qt {

/// What the models below have in common. They show the toolkit's own rows: texts, pictures and
/// marks are read when they are painted. What is kept here is only which rows there are, so that Qt
/// finds its way between a change in the toolkit and the next Update.
class ItemModel : public QAbstractItemModel {
 public:
  using QAbstractItemModel::QAbstractItemModel;

  /// Looks at the rows again. True if there are others, or they stand elsewhere; all indexes are
  /// then void. False if at most their contents are new.
  virtual bool Update() = 0;

 protected:
  /// All contents may be new.
  virtual void TellContents() = 0;
};

/// A model of rows that have nothing below them.
class FlatModel : public ItemModel {
 public:
  using ItemModel::ItemModel;

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& child) const override;

 protected:
  void TellContents() override;
};

/// The entries of a list box or combo box.
class EntryModel final : public FlatModel {
 public:
  /// `entries` must outlive the model.
  EntryModel(const std::vector<std::string>& entries, QObject* parent);

  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool Update() override;

 private:
  const std::vector<std::string>& entries_;
  int count_ = 0;
};

/// The rows of a list view.
class RowModel final : public FlatModel {
 public:
  /// `list` must outlive the model.
  RowModel(const ListView& list, QObject* parent);

  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool Update() override;

  /// Where the row stands, in `column` from 0; no index for Nothing or a row that is not here.
  QModelIndex IndexOf(const ListItemRef& row, int column) const;

 private:
  int CountColumns() const;

  const ListView& list_;
  std::vector<ListItemRef> rows_;
  int columns_ = 0;
};

/// The nodes of a tree.
class NodeModel final : public ItemModel {
 public:
  /// `tree` must outlive the model.
  NodeModel(const TreeView& tree, QObject* parent);

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool Update() override;

  NodeRef NodeAt(const QModelIndex& index) const;
  /// No index for Nothing or a node that is not here.
  QModelIndex IndexOf(const NodeRef& node) const;
  /// All nodes that have others below them.
  std::vector<QModelIndex> Parents() const;

 protected:
  void TellContents() override;

 private:
  /// The children of an entry stand side by side.
  struct Entry {
    NodeRef node;
    int parent;  // -1 at the top
    int row;
    int first_child = 0;
    int children = 0;
  };

  std::vector<Entry> ReadEntries() const;
  int AppendChildren(std::vector<Entry>& entries, const NodeRef& first, int parent) const;
  const Entry& EntryAt(const QModelIndex& index) const;
  QIcon IconOf(std::int32_t image) const;

  const TreeView& tree_;
  std::vector<Entry> entries_;
  int at_top_ = 0;
  std::unordered_map<const Node*, int> places_;
  mutable std::map<std::int32_t, QIcon> icons_;
};

}  // namespace nimbrel::toolkit::qt
