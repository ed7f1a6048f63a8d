#include "toolkit/list_view.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {

ListItemList::~ListItemList() {
  for (const ListItemRef& row : rows_) {
    row->list_ = nullptr;
  }
}

std::size_t ListItemList::Position(std::int32_t index) const {
  if (index < 1 || index > Count()) {
    throw platform::RuntimeError(
        kIndexOutOfBounds,
        "Index out of bounds: row " + std::to_string(index) + " of " + std::to_string(Count()));
  }
  return static_cast<std::size_t>(index - 1);
}

ListItemRef ListItemList::Add(std::optional<std::int32_t> index, const std::string& key,
                              std::string text) {
  const std::int32_t place = index.value_or(Count() + 1);
  if (place != Count() + 1) {
    Position(place);
  }
  ListItemRef row = platform::MakeRef<ListItem>(key, std::move(text));
  if (!key.empty() && !keys_.try_emplace(key, row.get()).second) {
    throw platform::RuntimeError(kKeyNotUnique, "Key is not unique in collection: " + key);
  }
  row->list_ = &list_;
  rows_.insert(std::next(rows_.begin(), place - 1), row);
  list_.Changed(Property::kEntries);
  return row;
}

const ListItemRef& ListItemList::Item(std::int32_t index) const {
  return rows_[Position(index)];
}

ListItemRef ListItemList::Item(std::string_view key) const {
  const auto found = keys_.find(key);
  if (found == keys_.end()) {
    throw platform::RuntimeError(kElementNotFound, "Element not found: " + std::string(key));
  }
  return ListItemRef(found->second);
}

void ListItemList::RemoveAt(std::size_t position) {
  const ListItemRef row = rows_[position];
  keys_.erase(row->key_);
  rows_.erase(std::next(rows_.begin(), static_cast<std::ptrdiff_t>(position)));
  row->list_ = nullptr;
  for (ListItemRef* const held : {&list_.selected_, &list_.scroll_target_}) {
    if (*held == row) {
      *held = nullptr;
    }
  }
  list_.Changed(Property::kEntries);
}

void ListItemList::Remove(std::int32_t index) {
  RemoveAt(Position(index));
}

void ListItemList::Remove(std::string_view key) {
  RemoveAt(static_cast<std::size_t>(Item(key)->Index() - 1));
}

void ListItemList::Clear() {
  for (const ListItemRef& row : rows_) {
    row->list_ = nullptr;
  }
  rows_.clear();
  keys_.clear();
  list_.selected_ = nullptr;
  list_.scroll_target_ = nullptr;
  list_.Changed(Property::kEntries);
}

void ColumnHeaderList::Add(std::string text, int width) {
  columns_.emplace_back(Count() + 1, std::move(text), width);
  list_.Changed(Property::kColumns);
}

const ColumnHeader& ColumnHeaderList::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) {
    throw platform::RuntimeError(
        kIndexOutOfBounds,
        "Index out of bounds: column " + std::to_string(index) + " of " + std::to_string(Count()));
  }
  return columns_[static_cast<std::size_t>(index - 1)];
}

ListView::ListView(Container& parent, std::string name, Place place, ListViewStyle style)
    : Control(parent, std::move(name), place), style_(style) {}

ListView::~ListView() = default;

void ListView::SetCheckBoxes(bool check_boxes) {
  check_boxes_ = check_boxes;
  Changed(Property::kStyle);
}

void ListView::SetSelectedItem(const ListItemRef& item) {
  if (!item.IsNothing() && item->list_ != this) {
    throw platform::RuntimeError(kElementNotFound, "Element not found: no row of " + Name());
  }
  selected_ = item;
  Changed(Property::kSelection);
}

void ListView::SetSorted(bool sorted) {
  sorted_ = sorted;
  Sort();
}

void ListView::SetSortKey(std::int32_t key) {
  if (key < 0 || (key > 0 && key >= columns_.Count())) {
    throw platform::RuntimeError(kInvalidPropertyValue,
                                 "Invalid property value: no column for the sort key " +
                                     std::to_string(key) + " of " + Name());
  }
  if (std::exchange(sort_key_, key) != key) {
    Sort();
  }
}

void ListView::SetSortOrder(toolkit::SortOrder order) {
  if (std::exchange(sort_order_, order) != order) {
    Sort();
  }
}

void ListView::Sort() {
  if (!sorted_) {
    return;
  }
  struct Keyed {
    std::string text;
    ListItemRef row;
  };
  std::vector<Keyed> keyed;
  keyed.reserve(items_.rows_.size());
  for (ListItemRef& row : items_.rows_) {
    std::string text = platform::FoldCase(row->CellText(sort_key_ + 1));
    keyed.push_back({std::move(text), std::move(row)});
  }
  const bool descending = sort_order_ == toolkit::SortOrder::kDescending;
  std::stable_sort(keyed.begin(), keyed.end(), [descending](const Keyed& a, const Keyed& b) {
    return descending ? b.text < a.text : a.text < b.text;
  });
  std::transform(keyed.begin(), keyed.end(), items_.rows_.begin(),
                 [](Keyed& entry) { return std::move(entry.row); });
  Changed(Property::kEntries);
}

std::optional<std::string> ListView::PropertyText(std::string_view property) const {
  if (property == "SelectedItem") {
    return selected_.IsNothing() ? std::string() : selected_->Text();
  }
  return Control::PropertyText(property);
}

void ListView::Select(const ListItemRef& item) {
  SetSelectedItem(item);
  Raise(ItemClick, "ItemClick", item->Text(), true, item);
}

void ListView::ToggleCheck(const ListItemRef& item) {
  item->SetChecked(!item->Checked());
  Raise(ItemCheck, "ItemCheck", item->Text(), true, item);
}

std::string ListView::WhyNoRow(std::int32_t index) const {
  const bool there = index >= 1 && index <= items_.Count();
  return WhyNoGestureOr(there ? std::string() : Name() + " has no row " + std::to_string(index));
}

std::string ListView::WhyNoCheck(std::int32_t index) const {
  std::string why_not = WhyNoRow(index);
  return why_not.empty() && !check_boxes_ ? Name() + " has no check boxes" : why_not;
}

std::string ListView::WhyNoHeader(std::int32_t index) const {
  if (style_ != ListViewStyle::kReport || index < 1 || index > columns_.Count()) {
    return WhyNoGestureOr(Name() + " has no column " + std::to_string(index));
  }
  const bool hidden = columns_.Item(index).Width() == 0;
  return WhyNoGestureOr(hidden ? "column " + std::to_string(index) + " of " + Name() + " is hidden"
                               : std::string());
}

GestureResult ListView::OnRow(std::int32_t index, std::string why_not,
                              const std::function<void(const ListItemRef&)>& action) {
  const ListItemRef item = why_not.empty() ? items_.Item(index) : ListItemRef();
  return Gesture(std::move(why_not), [this, &item, &action] {
    if (TakeFocusForClick() && item->list_ == this) {
      action(item);
    }
  });
}

GestureResult ListView::UserClickRow(std::int32_t index) {
  return OnRow(index, WhyNoRow(index), [this](const ListItemRef& item) { Select(item); });
}

GestureResult ListView::UserDoubleClickRow(std::int32_t index) {
  return OnRow(index, WhyNoRow(index), [this](const ListItemRef& item) {
    Select(item);
    Raise(DblClick, "DblClick");
  });
}

GestureResult ListView::UserClickRowAgain(std::int32_t index) {
  return Gesture(WhyNoRow(index), [this, index] {
    if (HasFocus() && items_.Item(index) == selected_) {
      Raise(DblClick, "DblClick");
    }
  });
}

GestureResult ListView::UserToggleCheck(std::int32_t index) {
  return OnRow(index, WhyNoCheck(index), [this](const ListItemRef& item) { ToggleCheck(item); });
}

GestureResult ListView::UserClickHeader(std::int32_t index) {
  return Gesture(WhyNoHeader(index), [this, index] {
    if (TakeFocusForClick()) {
      Raise(ColumnClick, "ColumnClick", std::to_string(index), false, columns_.Item(index));
    }
  });
}

bool ListView::OnKey(Key key) {
  if (key == Key::kSpace && check_boxes_) {
    if (const ListItemRef item = selected_; !item.IsNothing()) {
      ToggleCheck(item);
    }
    return true;
  }
  if (key != Key::kUp && key != Key::kDown) {
    return false;
  }
  const std::int32_t at = selected_.IsNothing() ? 0 : selected_->Index();
  const std::int32_t next = std::clamp(key == Key::kUp ? at - 1 : at + 1, 1, items_.Count() + 1);
  if (next != at && next <= items_.Count()) {
    const ListItemRef item = items_.Item(next);  // the handler may take it out of the list
    Select(item);
  }
  return true;
}

}  // namespace nimbrel::toolkit
