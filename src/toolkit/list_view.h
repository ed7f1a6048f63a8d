#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text.h"
#include "toolkit/control.h"
#include "toolkit/list_item.h"

namespace nimbrel::toolkit {

/// The rows of a list view, numbered from 1. Keys have no case.
class ListItemList {
 public:
  explicit ListItemList(ListView& list) : list_(list) {}
  ListItemList(const ListItemList&) = delete;
  ListItemList& operator=(const ListItemList&) = delete;
  ~ListItemList();

  std::int32_t Count() const { return static_cast<std::int32_t>(rows_.size()); }
  /// Puts a row at place `index`, from 1, or at the end; the sort of the list is not applied to it.
  /// Raises error 35602 for a key that is there and 35600 for a place beyond the end; the list is
  /// then as it was.
  ListItemRef Add(std::optional<std::int32_t> index = {}, const std::string& key = {},
                  std::string text = {});
  /// Raises error 35600 for a number that is not there, 35601 for a key that is not.
  const ListItemRef& Item(std::int32_t index) const;
  ListItemRef Item(std::string_view key) const;
  /// Takes a row out; a selected one leaves no SelectedItem. Raise as Item does.
  void Remove(std::int32_t index);
  void Remove(std::string_view key);
  void Clear();

  std::vector<ListItemRef>::const_iterator begin() const { return rows_.begin(); }
  std::vector<ListItemRef>::const_iterator end() const { return rows_.end(); }

 private:
  friend class ListView;

  std::size_t Position(std::int32_t index) const;
  void RemoveAt(std::size_t position);

  ListView& list_;
  std::vector<ListItemRef> rows_;
  std::unordered_map<std::string, ListItem*, platform::IgnoreCaseHash, platform::IgnoreCaseEqual>
      keys_;
};

/// A column of a list view in report form.
class ColumnHeader {
 public:
  ColumnHeader(std::int32_t index, std::string text, int width)
      : index_(index), text_(std::move(text)), width_(width) {}

  /// From 1.
  std::int32_t Index() const { return index_; }
  const std::string& Text() const { return text_; }
  /// In twips; a column of width 0 is not seen, and its header can't be clicked.
  int Width() const { return width_; }

 private:
  std::int32_t index_;
  std::string text_;
  int width_;
};

/// The columns of a list view, numbered from 1.
class ColumnHeaderList {
 public:
  explicit ColumnHeaderList(ListView& list) : list_(list) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(columns_.size()); }
  /// Adds a column at the end; `width` in twips.
  void Add(std::string text, int width);
  /// Raises error 35600 for a number that is not there.
  const ColumnHeader& Item(std::int32_t index) const;

 private:
  ListView& list_;
  std::vector<ColumnHeader> columns_;
};

enum class ListViewStyle { kReport, kList };
enum class SortOrder { kAscending = 0, kDescending = 1 };

/// Rows of cells under column headers, one of which may be selected; or, in list form, rows of one
/// text. Rows may have check boxes.
class ListView final : public Control {
 public:
  ListView(Container& parent, std::string name, Place place = {},
           ListViewStyle style = ListViewStyle::kReport);
  ~ListView() override;

  ControlKind Kind() const override { return ControlKind::kListView; }
  ListViewStyle View() const { return style_; }

  ListItemList& ListItems() { return items_; }
  const ListItemList& ListItems() const { return items_; }
  ColumnHeaderList& ColumnHeaders() { return columns_; }
  const ColumnHeaderList& ColumnHeaders() const { return columns_; }

  bool CheckBoxes() const { return check_boxes_; }
  void SetCheckBoxes(bool check_boxes);

  /// The selected row or Nothing.
  const ListItemRef& SelectedItem() const { return selected_; }
  /// Raises no event. Raises error 35601 for a row that is not in this list.
  void SetSelectedItem(const ListItemRef& item);

  /// The row that was last asked to be brought into view, for faces; Nothing if there is none or it
  /// has been taken out.
  const ListItemRef& ScrollTarget() const { return scroll_target_; }

  /// Sorting compares the texts of one column without regard to case, character by character; rows
  /// whose texts are equal keep their order, in both directions. The rows are sorted when Sorted is
  /// set to true, and while it is, when the key or the order is set to another value. Rows that
  /// are added or changed later stay where they are until then.
  bool Sorted() const { return sorted_; }
  void SetSorted(bool sorted);
  /// 0 for the row's text, n for cell n. Raises error 380 for a column that is not there.
  std::int32_t SortKey() const { return sort_key_; }
  void SetSortKey(std::int32_t key);
  toolkit::SortOrder SortOrder() const { return sort_order_; }
  void SetSortOrder(toolkit::SortOrder order);

  /// Also "SelectedItem": the text of the selected row, or empty.
  std::optional<std::string> PropertyText(std::string_view property) const override;

  /// A row is clicked, or reached by the arrow keys; it is then the SelectedItem.
  std::function<void(const ListItemRef& item)> ItemClick;
  /// The user has changed a row's check box; Checked has the new value.
  std::function<void(const ListItemRef& item)> ItemCheck;
  std::function<void(const ColumnHeader& column)> ColumnClick;
  /// Comes after the ItemClick of the row.
  std::function<void()> DblClick;

  /// Why a hand can't click on a row, its check box, a column's header, from 1, at present; empty
  /// if it can.
  std::string WhyNoRow(std::int32_t index) const;
  std::string WhyNoCheck(std::int32_t index) const;
  std::string WhyNoHeader(std::int32_t index) const;
  /// A click on row `index`, from 1, or two clicks.
  GestureResult UserClickRow(std::int32_t index);
  GestureResult UserDoubleClickRow(std::int32_t index);
  /// The second of two clicks alone, for faces, which get them one by one: raises DblClick if the
  /// first one was made, which left the focus here and the row selected.
  GestureResult UserClickRowAgain(std::int32_t index);
  /// A click on the header of column `index`, from 1, hidden ones counted.
  GestureResult UserClickHeader(std::int32_t index);
  /// A click on the check box of row `index`, from 1.
  GestureResult UserToggleCheck(std::int32_t index);

 protected:
  bool OnKey(Key key) override;

 private:
  friend class ColumnHeaderList;
  friend class ListItem;
  friend class ListItemList;

  void Sort();
  void Select(const ListItemRef& item);
  void ToggleCheck(const ListItemRef& item);
  GestureResult OnRow(std::int32_t index, std::string why_not,
                      const std::function<void(const ListItemRef&)>& action);

  ListItemList items_{*this};
  ColumnHeaderList columns_{*this};
  ListItemRef selected_;
  ListItemRef scroll_target_;
  ListViewStyle style_;
  bool check_boxes_ = false;
  bool sorted_ = false;
  std::int32_t sort_key_ = 0;
  toolkit::SortOrder sort_order_ = toolkit::SortOrder::kAscending;
};

}  // namespace nimbrel::toolkit
