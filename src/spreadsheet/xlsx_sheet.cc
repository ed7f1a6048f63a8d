#include <charconv>
#include <cmath>
#include <optional>

#include "platform/date.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/xlsx_parts.h"
#include "spreadsheet/xml_parser.h"

namespace nimbrel::spreadsheet {
namespace {

template <class Number>
std::optional<Number> ParseWhole(std::string_view text) {
  Number number{};
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

CellError ParseError(std::string_view text) {
  for (const CellError error : {CellError::kNull, CellError::kDivision, CellError::kValue,
                                CellError::kReference, CellError::kName, CellError::kNumber}) {
    if (text == ErrorText(error)) {
      return error;
    }
  }
  return CellError::kNotAvailable;
}

/// Takes a number of exactly `digits` digits and the character behind it, if there is one.
std::optional<int> TakeDigits(std::string_view& text, std::size_t digits, char behind) {
  if (text.size() < digits) {
    return std::nullopt;
  }
  const auto number = ParseWhole<int>(text.substr(0, digits));
  text.remove_prefix(digits);
  if (!number || *number < 0) {
    return std::nullopt;
  }
  if (!text.empty() && behind != '\0') {
    if (text.front() != behind) {
      return std::nullopt;
    }
    text.remove_prefix(1);
  }
  return number;
}

/// Reads "2026-03-31", "2026-03-31T07:30:00", with or without a fraction of the second and a "Z".
std::optional<platform::Date> ParseIsoDate(std::string_view text) {
  const auto year = TakeDigits(text, 4, '-');
  const auto month = TakeDigits(text, 2, '-');
  const auto day = TakeDigits(text, 2, 'T');
  if (!year || !month || !day || !platform::IsCalendarDay(*year, *month, *day)) {
    return std::nullopt;
  }
  if (text.ends_with('Z')) {
    text.remove_suffix(1);
  }
  double seconds = 0;
  if (!text.empty()) {
    const auto hour = TakeDigits(text, 2, ':');
    const auto minute = TakeDigits(text, 2, ':');
    if (!text.empty()) {
      const auto parsed = ParseWhole<double>(text);
      if (!parsed) {
        return std::nullopt;
      }
      seconds = *parsed;
    }
    if (!hour || !minute || *hour > 23 || *minute > 59 || !(seconds >= 0 && seconds < 60)) {
      return std::nullopt;
    }
    seconds += *hour * 3600 + *minute * 60;
  }
  constexpr double kSecondsPerDay = 86'400;
  return platform::MakeDate(*year, *month, *day) + seconds / kSecondsPerDay;
}

enum class State {
  kStart,
  kSheet,
  kData,
  kRow,
  kCell,
  kValue,
  kFormula,
  kInline,
  kInlineRun,
  kInlineText,
  kOther
};

class SheetSink : public XmlStates<State> {
 public:
  SheetSink(std::string file, XlsxCellContext& context, Sheet& sheet)
      : place_{.file = std::move(file), .sheet = sheet.name()}, context_(context), sheet_(sheet) {}

 protected:
  State Enter(State parent, const XmlElement& element) override {
    if (element.vocabulary() != Vocabulary::kSpreadsheet) {
      return State::kOther;
    }
    const auto name = element.name();
    switch (parent) {
      case State::kStart:
        return name == "worksheet" ? State::kSheet : State::kOther;
      case State::kSheet:
        return name == "sheetData" ? State::kData : State::kOther;
      case State::kData:
        return name == "row" ? BeginRow(element) : State::kOther;
      case State::kRow:
        return name == "c" ? BeginCell(element) : State::kOther;
      case State::kCell:
        return EnterCellPart(name);
      case State::kInline:
        return name == "r" ? State::kInlineRun : BeginInlineText(name);
      case State::kInlineRun:
        return BeginInlineText(name);
      default:
        return State::kOther;
    }
  }

  void Leave(State state) override {
    if (state == State::kInlineText) {
      inline_text_ += UnescapeXlsxText(text_);
    } else if (state == State::kCell) {
      EndCell();
    }
  }

  void Take(State state, std::string_view text) override {
    if (state == State::kValue || state == State::kInlineText) {
      CheckTextSize(place_, inline_text_.size() + text_.size() + text.size());
      text_ += text;
    }
  }

 private:
  State BeginRow(const XmlElement& element) {
    ++place_.row;
    place_.column = 0;
    if (const auto number = element.Attribute("r")) {
      const auto row = ParseWhole<std::int32_t>(*number);
      if (!row || *row < 1 || *row > kRows) {
        RaiseReadError(place_, Quoted(*number) + " is no row");
      }
      place_.row = *row;
    } else if (place_.row > kRows) {
      place_.row = kRows;
      RaiseReadError(place_, "the sheet has too many rows");
    }
    return State::kRow;
  }

  State BeginCell(const XmlElement& element) {
    if (const auto reference = element.Attribute("r")) {
      const auto cell = ParseCell(*reference);
      if (!cell) {
        RaiseReadError(place_, Quoted(*reference) + " is no cell");
      }
      place_.row = cell->first_row;
      place_.column = cell->first_column;
    } else if (++place_.column > kColumns) {
      place_.column = kColumns;
      RaiseReadError(place_, "the row has too many cells");
    }
    type_ = element.Attribute("t").value_or("n");
    format_ = 0;
    if (const auto style = element.Attribute("s"); style && context_.has_styles) {
      const auto number = ParseWhole<std::size_t>(*style);
      if (!number || *number >= context_.formats.size()) {
        RaiseReadError(place_, "the cell has style " + Quoted(*style) + ", which does not exist");
      }
      format_ = context_.formats[*number];
    }
    text_.clear();
    inline_text_.clear();
    has_value_ = has_formula_ = has_inline_ = false;
    return State::kCell;
  }

  State EnterCellPart(std::string_view name) {
    if (name == "v") {
      has_value_ = true;
      text_.clear();
      return State::kValue;
    }
    if (name == "f") {
      has_formula_ = true;
      return State::kFormula;
    }
    if (name == "is") {
      has_inline_ = true;
      return State::kInline;
    }
    return State::kOther;
  }

  State BeginInlineText(std::string_view name) {
    if (name != "t") {
      return State::kOther;
    }
    text_.clear();
    return State::kInlineText;
  }

  void EndCell() {
    const std::string_view value = platform::Trim(text_);
    // A text may be empty; no other value may.
    const bool has_value = type_ == "inlineStr" ? has_inline_
                           : type_ == "str"     ? has_value_
                                                : has_value_ && !value.empty();
    if (!has_value) {
      if (has_formula_) {
        Put(NotComputed());
      }
      return;
    }
    if (type_ == "n") {
      Put(Number(value));
    } else if (type_ == "s") {
      Put(SharedText(value));
    } else if (type_ == "str") {
      PutText(UnescapeXlsxText(text_));
    } else if (type_ == "inlineStr") {
      PutText(inline_text_);
    } else if (type_ == "b") {
      Put(Truth(value));
    } else if (type_ == "e") {
      Put(ParseError(value));
    } else if (type_ == "d") {
      Put(IsoDate(value));
    } else {
      RaiseReadError(place_, "the cell has the type " + Quoted(type_) + ", which is not known");
    }
  }

  double Number(std::string_view text) const {
    const auto number = ParseWhole<double>(text);
    if (!number || !std::isfinite(*number)) {
      RaiseReadError(place_, Quoted(text) + " is no number");
    }
    return *number;
  }

  TextId SharedText(std::string_view text) const {
    const auto index = ParseWhole<std::uint32_t>(text);
    if (!index || *index >= context_.shared_texts) {
      RaiseReadError(place_, "the cell has text number " + Quoted(text) + ", which does not exist");
    }
    return {*index};
  }

  bool Truth(std::string_view text) const {
    if (text == "1" || text == "true") {
      return true;
    }
    if (text != "0" && text != "false") {
      RaiseReadError(place_, Quoted(text) + " is neither true nor false");
    }
    return false;
  }

  double IsoDate(std::string_view text) {
    const auto date = ParseIsoDate(text);
    if (!date) {
      RaiseReadError(place_, Quoted(text) + " is no date");
    }
    if (!context_.workbook.IsDate(format_)) {
      format_ = context_.workbook.AddNumberFormat("m/d/yyyy");
    }
    return date->serial - (context_.workbook.date_1904() ? kDays1904 : 0.0);
  }

  void PutText(const std::string& text) {
    context_.counts.AddText(place_, text.size());
    Put(context_.workbook.AddText(text));
  }

  void Put(const CellValue& value) {
    context_.counts.AddCell(place_);
    sheet_.Append({place_.row, static_cast<std::uint16_t>(place_.column), format_, value});
  }

  ReadPlace place_;
  XlsxCellContext& context_;
  Sheet& sheet_;
  std::string type_;
  std::uint16_t format_ = 0;
  std::string text_;         // of the value, or of one run of an inline text
  std::string inline_text_;  // all runs
  bool has_value_ = false;
  bool has_formula_ = false;
  bool has_inline_ = false;
};

}  // namespace

void ReadXlsxSheet(Package& package, std::string_view part, XlsxCellContext& context,
                   Sheet& sheet) {
  SheetSink sink(package.file(), context, sheet);
  ParseXml(package, part, sink, sheet.name());
  if (!sink.knows_root()) {
    RaiseReadError({.file = package.file(), .sheet = sheet.name()},
                   "part " + Quoted(part) + " is no worksheet");
  }
  sheet.SortCells();
}

}  // namespace nimbrel::spreadsheet
