#include "toolkit/list_box.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/runtime_error.h"
#include "platform/text.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

std::string NoEntry(std::int32_t index, std::int32_t count) {
  return "no entry " + std::to_string(index) + " in a list of " + std::to_string(count);
}

void CheckListIndex(std::int32_t index, std::int32_t count) {
  if (index < -1 || index >= count) {
    throw platform::RuntimeError(kInvalidPropertyValue,
                                 "Invalid property value: " + NoEntry(index, count));
  }
}

/// Why there is no entry to pick; entries are counted from 1 in the text.
std::string ReasonForNoEntry(const std::string& name, std::int32_t index, std::int32_t count) {
  return index >= 0 && index < count
             ? std::string()
             : name + " has no entry " + std::to_string(static_cast<std::int64_t>(index) + 1);
}

/// Where the arrow keys lead in a list; nothing for any other key.
std::optional<std::int32_t> IndexByKey(Key key, std::int32_t index, std::int32_t count) {
  switch (key) {
    case Key::kUp:
      return std::clamp(index - 1, 0, std::max(count - 1, 0));
    case Key::kDown:
      return std::clamp(index + 1, 0, std::max(count - 1, 0));
    default:
      return std::nullopt;
  }
}

}  // namespace

const std::string& EntryList::Entry(std::int32_t index) const {
  if (index < 0 || index >= Count()) {
    throw platform::RuntimeError(kInvalidPropertyIndex,
                                 "Invalid property array index: " + NoEntry(index, Count()));
  }
  return entries_[static_cast<std::size_t>(index)];
}

bool EntryList::Select(std::int32_t index) {
  return std::exchange(selected_, index) != index;
}

void EntryList::Insert(const std::string& entry, std::optional<std::int32_t> index) {
  const std::int32_t place = index.value_or(Count());
  if (place < 0 || place > Count()) {
    throw platform::RuntimeError(
        platform::kInvalidProcedureCall,
        "No place " + std::to_string(place) + " in a list of " + std::to_string(Count()));
  }
  entries_.insert(std::next(entries_.begin(), place), entry);
  if (place <= selected_) {
    ++selected_;
  }
}

bool EntryList::Remove(std::int32_t index) {
  if (index < 0 || index >= Count()) {
    throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                 "Nothing to remove: " + NoEntry(index, Count()));
  }
  entries_.erase(std::next(entries_.begin(), index));
  if (index == selected_) {
    return Select(-1);
  }
  if (index < selected_) {
    --selected_;
  }
  return false;
}

bool EntryList::Clear() {
  entries_.clear();
  return Select(-1);
}

std::int32_t EntryList::Find(std::string_view text) const {
  auto found = std::find(entries_.begin(), entries_.end(), text);
  if (found == entries_.end()) {
    found = std::find_if(entries_.begin(), entries_.end(), [text](const std::string& entry) {
      return platform::EqualsIgnoreCase(entry, text);
    });
  }
  return found == entries_.end()
             ? -1
             : static_cast<std::int32_t>(std::distance(entries_.begin(), found));
}

ListBox::ListBox(Container& parent, std::string name, Place place)
    : Control(parent, std::move(name), place) {}

void ListBox::SetListIndex(std::int32_t index) {
  CheckListIndex(index, ListCount());
  if (entries_.Select(index)) {
    Changed(Property::kSelection);
    Raise(Change, "Change");
    Raise(Click, "Click");
  }
}

void ListBox::EntriesChanged(bool lost_selection) {
  Changed(Property::kEntries);
  if (lost_selection) {
    Raise(Change, "Change");
  }
}

void ListBox::AddItem(const std::string& entry, std::optional<std::int32_t> index) {
  entries_.Insert(entry, index);
  EntriesChanged(false);
}

void ListBox::RemoveItem(std::int32_t index) {
  EntriesChanged(entries_.Remove(index));
}

void ListBox::Clear() {
  EntriesChanged(entries_.Clear());
}

std::optional<std::string> ListBox::PropertyText(std::string_view property) const {
  if (property == "ListIndex") {
    return std::to_string(ListIndex());
  }
  return property == "Text" || property == "Value" ? Text() : Control::PropertyText(property);
}

std::string ListBox::WhyNoEntry(std::int32_t index) const {
  return WhyNoGestureOr(ReasonForNoEntry(Name(), index, ListCount()));
}

GestureResult ListBox::UserPick(std::int32_t index) {
  return Gesture(WhyNoEntry(index), [this, index] {
    if (TakeFocusForClick() && index < ListCount()) {
      SetListIndex(index);
    }
  });
}

GestureResult ListBox::UserDoubleClick(std::int32_t index) {
  return Gesture(WhyNoEntry(index), [this, index] {
    if (TakeFocusForClick() && index < ListCount()) {
      SetListIndex(index);
      Raise(DblClick, "DblClick");
    }
  });
}

GestureResult ListBox::UserClickAgain(std::int32_t index) {
  return Gesture(WhyNoEntry(index), [this, index] {
    if (HasFocus() && index == ListIndex()) {
      Raise(DblClick, "DblClick");
    }
  });
}

bool ListBox::OnKey(Key key) {
  const std::optional<std::int32_t> index = IndexByKey(key, ListIndex(), ListCount());
  if (index && *index < ListCount()) {
    SetListIndex(*index);
  }
  return index.has_value();
}

ComboBox::ComboBox(Container& parent, std::string name, Place place)
    : EditControl(parent, std::move(name), place) {}

void ComboBox::SetListIndex(std::int32_t index) {
  CheckListIndex(index, ListCount());
  Take(index < 0 ? std::string() : List(index), 0, index);
}

void ComboBox::Put(std::string text, std::int32_t caret) {
  const std::int32_t index = entries_.Find(text);
  Take(std::move(text), caret, index);
}

void ComboBox::Take(std::string text, std::int32_t caret, std::int32_t index) {
  const bool new_index = entries_.Select(index);
  const bool new_text = Assign(std::move(text), caret);
  if (new_index) {
    Changed(Property::kSelection);
  }
  if (new_index || new_text) {
    Raise(Change, "Change");
  }
}

void ComboBox::EntriesChanged(bool lost_selection) {
  Changed(Property::kEntries);
  if (lost_selection) {
    Raise(Change, "Change");
  }
}

void ComboBox::AddItem(const std::string& entry, std::optional<std::int32_t> index) {
  entries_.Insert(entry, index);
  EntriesChanged(false);
}

void ComboBox::RemoveItem(std::int32_t index) {
  EntriesChanged(entries_.Remove(index));
}

void ComboBox::Clear() {
  EntriesChanged(entries_.Clear());
}

std::optional<std::string> ComboBox::PropertyText(std::string_view property) const {
  return property == "ListIndex" ? std::to_string(ListIndex())
                                 : EditControl::PropertyText(property);
}

std::string ComboBox::WhyNoEntry(std::int32_t index) const {
  return WhyNoGestureOr(ReasonForNoEntry(Name(), index, ListCount()));
}

GestureResult ComboBox::UserPick(std::int32_t index) {
  return Gesture(WhyNoEntry(index), [this, index] {
    if (TakeFocusForClick() && index < ListCount()) {
      SetListIndex(index);
    }
  });
}

bool ComboBox::OnKey(Key key) {
  const std::optional<std::int32_t> index = IndexByKey(key, ListIndex(), ListCount());
  if (index && *index < ListCount()) {
    SetListIndex(*index);
  }
  return index.has_value() || EditControl::OnKey(key);
}

}  // namespace nimbrel::toolkit
