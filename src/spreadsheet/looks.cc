#include "spreadsheet/looks.h"

#include <algorithm>

namespace nimbrel::spreadsheet {
namespace {

/// Makes the cuts of stretches that each begin at a number and end at another; `size` is the last
/// number there is.
class CutList {
 public:
  explicit CutList(std::int32_t size) : size_(size) {}

  void Add(std::int32_t first, std::int32_t last) {
    cuts_.push_back(first);
    if (last < size_) {
      cuts_.push_back(last + 1);
    }
  }

  std::vector<std::int32_t> Take() {
    std::sort(cuts_.begin(), cuts_.end());
    cuts_.erase(std::unique(cuts_.begin(), cuts_.end()), cuts_.end());
    return std::move(cuts_);
  }

 private:
  std::int32_t size_;
  std::vector<std::int32_t> cuts_{1};
};

/// The cuts that fall into first..last, with `first` in front.
std::vector<std::int32_t> Within(const std::vector<std::int32_t>& cuts, std::int32_t first,
                                 std::int32_t last) {
  std::vector<std::int32_t> within{first};
  std::copy(std::upper_bound(cuts.begin(), cuts.end(), first),
            std::upper_bound(cuts.begin(), cuts.end(), last), std::back_inserter(within));
  return within;
}

}  // namespace

void Looks::Set(const CellRange& range, Attribute attribute, std::int32_t value) {
  // What the new setting covers wholly can never show again.
  std::erase_if(settings_, [&](const Setting& setting) {
    return setting.attribute == attribute && range.Contains(setting.range);
  });
  settings_.push_back({range, attribute, value});
}

Style Looks::At(std::int32_t row, std::int32_t column) const {
  Style style = kDefaultStyle;
  for (const Setting& setting : settings_) {
    if (setting.range.Contains(row, column)) {
      style[static_cast<std::size_t>(setting.attribute)] = setting.value;
    }
  }
  return style;
}

std::int32_t Looks::At(std::int32_t row, std::int32_t column, Attribute attribute) const {
  const auto last = std::find_if(settings_.rbegin(), settings_.rend(), [&](const Setting& setting) {
    return setting.attribute == attribute && setting.range.Contains(row, column);
  });
  return last == settings_.rend() ? Of(kDefaultStyle, attribute) : last->value;
}

std::optional<std::int32_t> Looks::Common(const CellRange& range, Attribute attribute) const {
  const std::int32_t value = At(range.first_row, range.first_column, attribute);
  if (range.IsOneCell()) {
    return value;
  }
  const auto columns = Within(ColumnCuts(), range.first_column, range.last_column);
  for (const std::int32_t row : Within(RowCuts(), range.first_row, range.last_row)) {
    for (const std::int32_t column : columns) {
      if (At(row, column, attribute) != value) {
        return std::nullopt;
      }
    }
  }
  return value;
}

std::vector<std::int32_t> Looks::RowCuts() const {
  CutList cuts(kRows);
  for (const Setting& setting : settings_) {
    cuts.Add(setting.range.first_row, setting.range.last_row);
  }
  return cuts.Take();
}

std::vector<std::int32_t> Looks::ColumnCuts() const {
  CutList cuts(kColumns);
  for (const Setting& setting : settings_) {
    cuts.Add(setting.range.first_column, setting.range.last_column);
  }
  return cuts.Take();
}

}  // namespace nimbrel::spreadsheet
