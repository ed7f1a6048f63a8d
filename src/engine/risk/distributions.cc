#include "engine/risk/distributions.h"

#include <algorithm>
#include <cmath>

#include "platform/runtime_error.h"

namespace nimbrel::engine {

const BetaTable& PertTables::For(double relative_mode) {
  std::unique_ptr<BetaTable>& table = tables_[relative_mode];
  if (table == nullptr) {
    table = std::make_unique<BetaTable>(Beta(1.0 + 4.0 * relative_mode, 5.0 - 4.0 * relative_mode));
  }
  return *table;
}

Distribution::Distribution(const ThreePoint& range, PertTables& tables) {
  if (!std::isfinite(range.minimum) || !std::isfinite(range.likely) ||
      !std::isfinite(range.maximum)) {
    throw platform::RuntimeError(platform::kOverflow, "A duration is no finite number.");
  }
  const double minimum = std::min(range.minimum, range.maximum);
  const double maximum = std::max(range.minimum, range.maximum);
  const double mode = std::clamp(range.likely, minimum, maximum);
  width_ = maximum - minimum;
  if (!std::isfinite(width_)) {
    throw platform::RuntimeError(platform::kOverflow, "The range of a duration is too wide.");
  }
  if (range.shape == Shape::kSingle || width_ == 0.0) {
    base_ = range.shape == Shape::kSingle ? mode : minimum;
    return;
  }
  base_ = minimum;
  switch (range.shape) {
    case Shape::kUniform:
      kind_ = Kind::kLine;
      break;
    case Shape::kPert:
      kind_ = Kind::kPert;
      table_ = &tables.For((mode - minimum) / width_);
      break;
    default:
      kind_ = Kind::kTriangle;
      split_ = (mode - minimum) / width_;
      end_ = {maximum, minimum};
      product_ = {width_ * (maximum - mode), width_ * (mode - minimum)};
  }
}

double Distribution::Sample(double u) const {
  switch (kind_) {
    case Kind::kConstant:
      return base_;
    case Kind::kLine:
      return base_ + width_ * u;
    case Kind::kPert:
      return base_ + width_ * table_->At(u);
    case Kind::kTriangle:
      break;
  }
  // Without a branch, which would be guessed wrong half of the time.
  const auto rising = static_cast<std::size_t>(u < split_);
  const double tail = rising != 0 ? u : 1.0 - u;
  const double reach = std::sqrt(product_[rising] * tail);
  return end_[rising] + (rising != 0 ? reach : -reach);
}

}  // namespace nimbrel::engine
