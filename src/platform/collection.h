#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::platform {

/// An ordered collection: items keep the order of adding, are numbered from 1, and may have a text
/// key that is compared without regard to case.
template <class T>
class Collection {
  struct Entry {
    T value;
    std::string key;  // folded; empty for an item without one
  };

 public:
  /// Adds an item without a key.
  void Add(T item) { items_.push_back({std::move(item), {}}); }

  /// Adds an item under `key`. Raises error 457 if the key is there already; the collection is then
  /// as it was.
  void Add(T item, std::string_view key) {
    std::string folded = FoldCase(key);
    if (!positions_.try_emplace(folded, items_.size()).second) {
      throw RuntimeError(kDuplicateKey,
                         "The key is already in the collection: " + std::string(key));
    }
    items_.push_back({std::move(item), std::move(folded)});
  }

  /// The item with the number `index`, from 1. Raises error 9 outside the collection.
  const T& Item(std::int32_t index) const { return items_[Position(index)].value; }
  T& Item(std::int32_t index) { return items_[Position(index)].value; }

  /// The item under `key`. Raises error 5 if there is none.
  const T& Item(std::string_view key) const { return items_[Position(key)].value; }
  T& Item(std::string_view key) { return items_[Position(key)].value; }

  bool Contains(std::string_view key) const { return positions_.contains(FoldCase(key)); }

  /// Takes an item out; those behind it move up. Raises as Item does.
  void Remove(std::int32_t index) { RemoveAt(Position(index)); }
  void Remove(std::string_view key) { RemoveAt(Position(key)); }

  void Clear() {
    items_.clear();
    positions_.clear();
  }

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

  /// Iteration in the order of adding. The collection must not change meanwhile.
  class Iterator {
   public:
    explicit Iterator(const typename Collection::Entry* entry) : entry_(entry) {}
    const T& operator*() const { return entry_->value; }
    Iterator& operator++() {
      ++entry_;
      return *this;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const typename Collection::Entry* entry_;
  };
  Iterator begin() const { return Iterator(items_.data()); }
  Iterator end() const { return Iterator(items_.data() + items_.size()); }

 private:
  std::size_t Position(std::int32_t index) const {
    if (index < 1 || index > Count()) {
      throw RuntimeError(kSubscriptOutOfRange,
                         "No item " + std::to_string(index) + " in a collection of " +
                             std::to_string(Count()));
    }
    return static_cast<std::size_t>(index - 1);
  }
  std::size_t Position(std::string_view key) const {
    const auto found = positions_.find(FoldCase(key));
    if (found == positions_.end()) {
      throw RuntimeError(kInvalidProcedureCall,
                         "The key is not in the collection: " + std::string(key));
    }
    return found->second;
  }
  void RemoveAt(std::size_t position) {
    if (const auto found = positions_.find(items_[position].key);
        found != positions_.end() && found->second == position) {
      positions_.erase(found);
    }
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [key, at] : positions_) {
      if (at > position) {
        --at;
      }
    }
  }

  std::vector<Entry> items_;
  std::unordered_map<std::string, std::size_t> positions_;
};

}  // namespace nimbrel::platform
