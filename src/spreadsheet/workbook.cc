#include "spreadsheet/workbook.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/runtime_error.h"
#include "spreadsheet/number_format.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kMaxFormats = 65'000;

bool ComesBefore(const Cell& a, const Cell& b) {
  return std::tie(a.row, a.column) < std::tie(b.row, b.column);
}

bool SamePlace(const Cell& a, const Cell& b) {
  return a.row == b.row && a.column == b.column;
}

}  // namespace

std::string_view ErrorText(CellError error) {
  switch (error) {
    case CellError::kNull:
      return "#NULL!";
    case CellError::kDivision:
      return "#DIV/0!";
    case CellError::kValue:
      return "#VALUE!";
    case CellError::kReference:
      return "#REF!";
    case CellError::kName:
      return "#NAME?";
    case CellError::kNumber:
      return "#NUM!";
    case CellError::kNotAvailable:
      break;
  }
  return "#N/A";
}

std::vector<Cell>::iterator Sheet::Place(std::int32_t row, std::int32_t column) {
  const Cell place{.row = row, .column = static_cast<std::uint16_t>(column), .value = 0.0};
  if (cells_.empty() || ComesBefore(cells_.back(), place)) {
    return cells_.end();
  }
  return std::lower_bound(cells_.begin(), cells_.end(), place, ComesBefore);
}

const Cell* Sheet::Find(std::int32_t row, std::int32_t column) const {
  const Cell place{.row = row, .column = static_cast<std::uint16_t>(column), .value = 0.0};
  const auto found = std::lower_bound(cells_.begin(), cells_.end(), place, ComesBefore);
  return found != cells_.end() && SamePlace(*found, place) ? &*found : nullptr;
}

void Sheet::Put(const Cell& cell) {
  const auto place = Place(cell.row, cell.column);
  if (place != cells_.end() && SamePlace(*place, cell)) {
    *place = cell;
  } else {
    cells_.insert(place, cell);
  }
}

void Sheet::Clear(std::int32_t row, std::int32_t column) {
  const auto place = Place(row, column);
  if (place != cells_.end() && place->row == row && place->column == column) {
    cells_.erase(place);
  }
}

void Sheet::SortCells() {
  // Nearly every file is in order already.
  if (!std::is_sorted(cells_.begin(), cells_.end(), ComesBefore)) {
    std::stable_sort(cells_.begin(), cells_.end(), ComesBefore);
  }
  auto kept = cells_.begin();
  for (auto cell = cells_.begin(); cell != cells_.end(); ++cell) {
    if (kept != cells_.begin() && SamePlace(*std::prev(kept), *cell)) {
      *std::prev(kept) = *cell;
    } else {
      *kept++ = *cell;
    }
  }
  cells_.erase(kept, cells_.end());
}

void Sheet::SetLook(const CellRange& range, Attribute attribute, std::int32_t value) {
  looks_.Set(range, attribute, value);
  if (attribute == Attribute::kNumberFormat) {
    for (Cell& cell : cells_) {
      if (range.Contains(cell.row, cell.column)) {
        cell.format = kFormatOfPlace;
      }
    }
  }
}

Workbook::Workbook() {
  AddNumberFormat("General");
}

Sheet& Workbook::AddSheet(std::string name) {
  return *sheets_.emplace_back(std::make_shared<Sheet>(std::move(name)));
}

TextId Workbook::AddText(std::string text) {
  texts_.push_back(std::move(text));
  return {static_cast<std::uint32_t>(texts_.size() - 1)};
}

std::uint16_t Workbook::AddNumberFormat(std::string_view format) {
  const auto [found, is_new] =
      format_ids_.try_emplace(std::string(format), static_cast<std::uint16_t>(formats_.size()));
  if (is_new) {
    if (formats_.size() == kMaxFormats) {
      format_ids_.erase(found);
      throw platform::RuntimeError(platform::kApplicationDefined,
                                   "Too many different number formats");
    }
    formats_.push_back({std::string(format), IsDateFormat(format)});
  }
  return found->second;
}

std::int32_t Workbook::NumberFormatOf(const Sheet& sheet, const Cell& cell) const {
  return cell.format != kFormatOfPlace
             ? cell.format
             : Of(sheet.looks().At(cell.row, cell.column), Attribute::kNumberFormat);
}

}  // namespace nimbrel::spreadsheet
