#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::platform {

/// An ordered collection: items keep the order of adding, are numbered from 1, and may have a text
/// key that is compared without regard to case. The empty text is a key like any other.
///
/// Item and Contains take constant time and allocate nothing; Remove takes time linear in Count.
template <class T>
class Collection {
  struct Entry {
    T value;
    std::string key;  // empty, too, for an item without one
  };

 public:
  /// Adds an item without a key.
  void Add(T item) { items_.push_back({std::move(item), {}}); }

  /// Adds an item under `key`. Raises error 457 if the key is there already; the collection is then
  /// as it was.
  void Add(T item, std::string_view key) {
    if (!positions_.try_emplace(std::string(key), items_.size()).second) {
      throw RuntimeError(kDuplicateKey,
                         "The key is already in the collection: " + std::string(key));
    }
    items_.push_back({std::move(item), std::string(key)});
  }

  /// The item with the number `index`, from 1. Raises error 9 outside the collection.
  const T& Item(std::int32_t index) const { return items_[Position(index)].value; }
  T& Item(std::int32_t index) { return items_[Position(index)].value; }

  /// The item under `key`. Raises error 5 if there is none.
  const T& Item(std::string_view key) const { return items_[Position(key)].value; }
  T& Item(std::string_view key) { return items_[Position(key)].value; }

  bool Contains(std::string_view key) const { return positions_.contains(key); }

  /// Takes an item out; those behind it move up. Raises as Item does.
  void Remove(std::int32_t index) { RemoveAt(Position(index)); }
  void Remove(std::string_view key) { RemoveAt(Position(key)); }

  void Clear() {
    items_.clear();
    positions_.clear();
  }

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

  /// Iteration in the order of adding. Adding or removing an item ends the life of all iterators.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = T;
    using pointer = const T*;
    using reference = const T&;

    Iterator() = default;
    explicit Iterator(const typename Collection::Entry* entry) : entry_(entry) {}
    const T& operator*() const { return entry_->value; }
    const T* operator->() const { return &entry_->value; }
    Iterator& operator++() {
      ++entry_;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++entry_;
      return before;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const typename Collection::Entry* entry_ = nullptr;
  };
  using value_type = T;
  using const_iterator = Iterator;
  Iterator begin() const { return Iterator(items_.data()); }
  Iterator end() const { return Iterator(items_.data() + items_.size()); }

 private:
  std::size_t Position(std::int32_t index) const {
    if (index < 1 || index > Count()) {
      throw RuntimeError(
          kSubscriptOutOfRange,
          "No item " + std::to_string(index) + " in a collection of " + std::to_string(Count()));
    }
    return static_cast<std::size_t>(index - 1);
  }
  std::size_t Position(std::string_view key) const {
    const auto found = positions_.find(key);
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
  std::unordered_map<std::string, std::size_t, IgnoreCaseHash, IgnoreCaseEqual> positions_;
};

}  // namespace nimbrel::platform
