#include "engine/formats/xer_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/formats/text_encoding.h"
#include "engine/formats/value_text.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

/// Far more than any file has; bounds the time to find a field or a table by its name.
constexpr std::size_t kMostFields = 500;
constexpr std::size_t kMostTables = 1000;

std::vector<std::string_view> Split(std::string_view text) {
  std::vector<std::string_view> fields;
  fields.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\t')) + 1);
  for (std::size_t begin = 0;;) {
    const std::size_t end = text.find('\t', begin);
    fields.push_back(platform::Trim(text.substr(begin, end - begin)));
    if (end == std::string_view::npos) {
      return fields;
    }
    begin = end + 1;
  }
}

/// What follows a mark such as "%R" and a tab.
std::string_view AfterMark(std::string_view line) {
  return line.substr(std::min<std::size_t>(3, line.size()));
}

bool HasMark(std::string_view line, std::string_view mark) {
  return line.starts_with(mark) && (line.size() == mark.size() || line[mark.size()] == '\t');
}

}  // namespace

XerRow::XerRow(const std::vector<std::string_view>& names, std::string_view text, std::int64_t line,
               const std::string& file)
    : names_(&names), values_(Split(text)), line_(line), file_(&file) {
  if (values_.size() > names.size()) {
    const bool only_empty =
        std::all_of(values_.begin() + static_cast<std::ptrdiff_t>(names.size()), values_.end(),
                    [](std::string_view value) { return value.empty(); });
    if (!only_empty) {
      Fail(fmt::format("expected at most {} fields, found {}", names.size(), values_.size()));
    }
  }
}

std::string_view XerRow::Text(std::string_view name) const {
  const auto found = std::find(names_->begin(), names_->end(), name);
  const auto index = static_cast<std::size_t>(found - names_->begin());
  return found != names_->end() && index < values_.size() ? values_[index] : std::string_view();
}

std::string_view XerRow::Required(std::string_view name) const {
  const std::string_view value = Text(name);
  if (value.empty()) {
    FailField(name, "a value");
  }
  return value;
}

bool XerRow::Flag(std::string_view name, bool fallback) const {
  const std::string_view value = Text(name);
  if (value.empty()) {
    return fallback;
  }
  if (value != "Y" && value != "N") {
    FailField(name, "Y or N");
  }
  return value == "Y";
}

double XerRow::Number(std::string_view name, double fallback) const {
  const std::string_view value = Text(name);
  if (value.empty()) {
    return fallback;
  }
  const std::optional<double> number = ReadNumber(value);
  if (!number) {
    FailField(name, "a number");
  }
  return *number;
}

std::int32_t XerRow::Minutes(std::string_view name, std::int32_t fallback) const {
  if (Text(name).empty()) {
    return fallback;
  }
  const std::optional<std::int32_t> minutes = HoursToMinutes(Number(name, 0));
  if (!minutes) {
    FailField(name, "hours that are no more than 200 years");
  }
  return *minutes;
}

std::int32_t XerRow::Duration(std::string_view name, std::int32_t fallback) const {
  const std::int32_t minutes = Minutes(name, fallback);
  if (minutes < 0) {
    FailField(name, "hours of 0 or more");
  }
  return minutes;
}

Instant XerRow::Date(std::string_view name) const {
  const std::string_view value = Text(name);
  if (value.empty()) {
    return {};
  }
  const Instant instant = ParseIsoText(std::string(value));
  if (instant.IsAbsent()) {
    FailField(name, "a date as YYYY-MM-DD HH:MM");
  }
  if (!IsPlanDate(instant)) {
    FailField(name, "a date from 1950 to 2150");
  }
  return instant.AsStart();
}

Instant XerRow::FinishDate(std::string_view name) const {
  const Instant instant = Date(name);
  return instant.IsAbsent() ? instant : instant.AsFinish();
}

void XerRow::Fail(std::string_view message) const {
  throw FormatError(*file_, line_, message);
}

void XerRow::FailField(std::string_view name, std::string_view expected) const {
  const std::string_view value = Text(name);
  Fail(fmt::format("expected {} in {}, found {}", expected, name,
                   value.empty() ? "nothing" : Quoted(value)));
}

XerFile::XerFile(std::string_view bytes, std::string name)
    : name_(std::move(name)), text_(ToUtf8(bytes)) {
  Table* table = nullptr;
  Line* open = nullptr;
  const std::string_view text = text_;
  for (std::size_t begin = 0; begin < text.size() && !has_end_mark_;) {
    std::size_t end = text.find('\n', begin);
    const bool cut = end == std::string_view::npos;
    end = cut ? text.size() : end;
    std::string_view line = text.substr(begin, end - begin);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    ++line_count_;
    if (line_count_ == 1) {
      ReadHeader(line);
    } else {
      ReadLine({line, line_count_}, table, open);
    }
    begin = end + 1;
  }
  if (line_count_ == 0) {
    Fail(1, "expected a file that starts with ERMHDR, found nothing");
  }
  if (!has_end_mark_) {
    CheckLastRow(table);
  }
}

void XerFile::ReadHeader(std::string_view line) const {
  if (!HasMark(line, "ERMHDR")) {
    Fail(1, "expected a file that starts with ERMHDR, found " + Quoted(line));
  }
}

void XerFile::ReadLine(const Line& line, Table*& table, Line*& open) {
  if (HasMark(line.text, "%R")) {
    if (table == nullptr || table->names.empty()) {
      Fail(line.number, "expected a table's name and field names before its rows, found a row");
    }
    open = &table->rows.emplace_back(Line{AfterMark(line.text), line.number});
    return;
  }
  if (HasMark(line.text, "%T")) {
    open = nullptr;
    const std::string_view table_name = platform::Trim(AfterMark(line.text));
    if (table_name.empty()) {
      Fail(line.number, "expected the name of a table, found nothing");
    }
    table = &tables_[table_name];
    if (tables_.size() > kMostTables) {
      Fail(line.number, "expected at most 1000 tables, found more");
    }
    return;
  }
  if (HasMark(line.text, "%F")) {
    open = nullptr;
    if (table == nullptr) {
      Fail(line.number, "expected a table's name before its field names, found field names");
    }
    std::vector<std::string_view> names = Split(AfterMark(line.text));
    if (names.size() > kMostFields) {
      Fail(line.number,
           fmt::format("expected at most {} fields, found {}", kMostFields, names.size()));
    }
    if (!table->rows.empty() && names != table->names) {
      Fail(line.number, "expected one set of field names a table, found another one");
    }
    table->names = std::move(names);
    return;
  }
  if (HasMark(line.text, "%E")) {
    has_end_mark_ = true;
    return;
  }
  if (open != nullptr) {  // a text of several lines: the row goes on
    const char* begin = open->text.data();
    open->text = {begin, static_cast<std::size_t>(line.text.data() + line.text.size() - begin)};
    return;
  }
  if (!platform::Trim(line.text).empty()) {
    Fail(line.number,
         "expected a line that starts with %T, %F, %R or %E, found " + Quoted(line.text));
  }
}

void XerFile::CheckLastRow(const Table* table) const {
  if (table == nullptr) {
    Fail(line_count_, "expected tables, found the end of the file");
  }
  if (table->rows.empty()) {
    return;
  }
  const Line& last = table->rows.back();
  const std::size_t found = Split(last.text).size();
  if (found < table->names.size()) {
    Fail(last.number, fmt::format("expected {} fields, found {} before the end of the file",
                                  table->names.size(), found));
  }
}

std::vector<std::string_view> XerFile::TableNames() const {
  std::vector<std::string_view> names;
  names.reserve(tables_.size());
  for (const auto& [table_name, table] : tables_) {
    names.push_back(table_name);
  }
  return names;
}

std::int64_t XerFile::CountRows(std::string_view table, std::string_view field,
                                std::string_view value) const {
  const auto found = tables_.find(table);
  if (found == tables_.end()) {
    return 0;
  }
  const auto& [names, rows] = found->second;
  const auto name = std::find(names.begin(), names.end(), field);
  const auto column = static_cast<std::size_t>(name - names.begin());
  return std::count_if(rows.begin(), rows.end(), [column, value](const Line& line) {
    const std::vector<std::string_view> values = Split(line.text);
    return column >= values.size() || values[column].empty() || values[column] == value;
  });
}

void XerFile::Fail(std::int64_t line, std::string_view message) const {
  throw FormatError(name_, line, message);
}

}  // namespace nimbrel::engine
