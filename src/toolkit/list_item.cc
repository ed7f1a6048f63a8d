#include "toolkit/list_item.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"
#include "toolkit/list_view.h"

namespace nimbrel::toolkit {

void ListSubItem::SetText(std::string text) {
  text_ = std::move(text);
  row_.TellChanged();
}

const ListSubItem& ListSubItemList::Item(std::int32_t n) const {
  if (n < 1 || n > Count()) {
    throw platform::RuntimeError(kIndexOutOfBounds, "Index out of bounds: cell " +
                                                        std::to_string(n) + " of a row with " +
                                                        std::to_string(Count()));
  }
  return cells_[static_cast<std::size_t>(n - 1)];
}

ListSubItem& ListSubItemList::Item(std::int32_t n) {
  return const_cast<ListSubItem&>(std::as_const(*this).Item(n));
}

void ListItem::SetText(std::string text) {
  text_ = std::move(text);
  TellChanged();
}

void ListItem::CheckColumn(std::int32_t n) const {
  const bool has_column = list_ == nullptr || n < list_->ColumnHeaders().Count();
  if (n < 1 || !has_column) {
    throw platform::RuntimeError(kInvalidPropertyValue,
                                 "Invalid property value: no column for cell " + std::to_string(n));
  }
}

std::string ListItem::SubItems(std::int32_t n) const {
  CheckColumn(n);
  return CellText(n + 1);
}

void ListItem::SetSubItems(std::int32_t n, std::string text) {
  CheckColumn(n);
  while (sub_items_.Count() < n) {
    sub_items_.cells_.emplace_back(*this);
  }
  sub_items_.Item(n).SetText(std::move(text));
}

std::string ListItem::CellText(std::int32_t column) const {
  if (column == 1) {
    return text_;
  }
  return column <= sub_items_.Count() + 1 ? sub_items_.Item(column - 1).Text() : std::string();
}

void ListItem::SetChecked(bool checked) {
  if (checked != checked_) {
    checked_ = checked;
    if (list_ != nullptr) {
      list_->Changed(Property::kChecked);
    }
  }
}

std::int32_t ListItem::Index() const {
  if (list_ == nullptr) {
    throw platform::RuntimeError(kElementNotFound, "Element not found: the row was taken out");
  }
  const ListItemList& rows = list_->ListItems();
  const auto place = std::find_if(rows.begin(), rows.end(),
                                  [this](const ListItemRef& row) { return row.get() == this; });
  return static_cast<std::int32_t>(std::distance(rows.begin(), place)) + 1;
}

bool ListItem::Selected() const {
  return list_ != nullptr && list_->SelectedItem().get() == this;
}

void ListItem::EnsureVisible() {
  if (list_ != nullptr) {
    list_->scroll_target_ = ListItemRef(this);
    list_->Changed(Property::kScroll);
  }
}

void ListItem::TellChanged() {
  if (list_ != nullptr) {
    list_->Changed(Property::kEntries);
  }
}

}  // namespace nimbrel::toolkit
