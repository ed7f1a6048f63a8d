#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ref.h"

namespace nimbrel::toolkit {

class ListItem;
class ListView;

/// A cell of a row behind its first column.
class ListSubItem {
 public:
  explicit ListSubItem(ListItem& row) : row_(row) {}

  const std::string& Text() const { return text_; }
  void SetText(std::string text);
  /// A text that the program keeps with the cell; never shown.
  const std::string& Tag() const { return tag_; }
  void SetTag(std::string tag) { tag_ = std::move(tag); }

 private:
  ListItem& row_;
  std::string text_;
  std::string tag_;
};

/// The cells of a row, numbered from 1; cell n stands in column n + 1.
class ListSubItemList {
 public:
  explicit ListSubItemList(ListItem& row) : row_(row) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(cells_.size()); }
  /// Raises error 35600 for a cell that has not been made. Valid until the next cell is made.
  ListSubItem& Item(std::int32_t n);
  const ListSubItem& Item(std::int32_t n) const;

 private:
  friend class ListItem;

  ListItem& row_;
  std::vector<ListSubItem> cells_;
};

/// A row of a list view. A row that has been taken out of its list lives on for those who hold it,
/// with its texts, and is seen nowhere.
class ListItem final : public platform::Object {
 public:
  ListItem(std::string key, std::string text) : key_(std::move(key)), text_(std::move(text)) {}

  /// Empty for a row without one.
  const std::string& Key() const { return key_; }
  /// The first column.
  const std::string& Text() const { return text_; }
  void SetText(std::string text);

  /// The text of cell n, from 1; empty if it has not been made. Raises error 380 for a cell that
  /// the list has no column for.
  std::string SubItems(std::int32_t n) const;
  /// Makes cell n, and those before it, if they are not there.
  void SetSubItems(std::int32_t n, std::string text);
  ListSubItemList& ListSubItems() { return sub_items_; }
  const ListSubItemList& ListSubItems() const { return sub_items_; }

  /// The text of column `column`, from 1; empty where there is no cell.
  std::string CellText(std::int32_t column) const;

  const std::string& Tag() const { return tag_; }
  void SetTag(std::string tag) { tag_ = std::move(tag); }

  bool Checked() const { return checked_; }
  /// Raises no event.
  void SetChecked(bool checked);

  /// The row's number in its list, from 1; takes time linear in the list. Raises error 35601 for a
  /// row that has been taken out.
  std::int32_t Index() const;
  bool Selected() const;
  /// Asks the face to bring the row into view.
  void EnsureVisible();

 private:
  friend class ListItemList;
  friend class ListSubItem;
  friend class ListView;

  void CheckColumn(std::int32_t n) const;
  void TellChanged();

  ListView* list_ = nullptr;  // null once taken out
  std::string key_;
  std::string text_;
  std::string tag_;
  ListSubItemList sub_items_{*this};
  bool checked_ = false;
};

using ListItemRef = platform::Ref<ListItem>;

}  // namespace nimbrel::toolkit
