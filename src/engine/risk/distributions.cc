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
      triangle_ = {.split = (mode - minimum) / width_,
                   .minimum = minimum,
                   .rising_product = width_ * (mode - minimum),
                   .maximum = maximum,
                   .falling_product = width_ * (maximum - mode)};
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
    default:
      return triangle_.Sample(u);
  }
}

}  // namespace nimbrel::engine
