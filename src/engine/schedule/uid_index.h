#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// Positions by uid. Uids of a plan are numbers without many gaps as a rule, and are then looked up
/// in a column; a plan whose uids lie far apart takes a hash table.
class UidIndex {
 public:
  static constexpr std::int32_t kNone = -1;

  UidIndex() = default;
  /// For about `count` uids below `end`.
  UidIndex(Uid end, std::size_t count)
      : is_dense_(static_cast<std::size_t>(end) <= 8 * count + 1024),
        column_(is_dense_ ? static_cast<std::size_t>(end) : 0, kNone) {}

  void Add(Uid uid, std::int32_t position) {
    if (is_dense_) {
      const auto at = static_cast<std::size_t>(uid);
      if (at >= column_.size()) {
        column_.resize(at + 1, kNone);
      }
      column_[at] = position;
    } else {
      table_.emplace(uid, position);
    }
  }

  /// The position of a uid, or kNone.
  std::int32_t Find(Uid uid) const {
    if (is_dense_) {
      const auto at = static_cast<std::size_t>(static_cast<std::uint32_t>(uid));
      return at < column_.size() ? column_[at] : kNone;
    }
    const auto found = table_.find(uid);
    return found == table_.end() ? kNone : found->second;
  }

 private:
  bool is_dense_ = true;
  std::vector<std::int32_t> column_;
  std::unordered_map<Uid, std::int32_t> table_;
};

}  // namespace nimbrel::engine
