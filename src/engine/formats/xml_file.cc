#include "engine/formats/xml_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/formats/text_encoding.h"
#include "engine/formats/value_text.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};

/// Hours of a unit of an XML duration. Years and months have no length in hours.
std::optional<double> HoursOfUnit(char unit, bool in_time) {
  if (!in_time) {
    return unit == 'D' ? std::optional(24.0) : std::nullopt;
  }
  switch (unit) {
    case 'H':
      return 1.0;
    case 'M':
      return 1.0 / 60;
    case 'S':
      return 1.0 / 3600;
    default:
      return std::nullopt;
  }
}

}  // namespace

XmlFile::XmlFile(std::string_view bytes, std::string name) : name_(std::move(name)), text_(bytes) {
  for (const std::string_view mark : kUtf16Marks) {
    if (bytes.starts_with(mark)) {
      throw FormatError(name_, 1, "expected XML in UTF-8, found UTF-16");
    }
  }
  if (!IsUtf8(bytes)) {
    converted_ = ToUtf8(bytes);
    text_ = converted_;
  }
  const pugi::xml_parse_result result = document_.load_buffer(
      text_.data(), text_.size(),
      pugi::parse_default | pugi::parse_doctype | pugi::parse_embed_pcdata, pugi::encoding_utf8);
  for (const pugi::xml_node node : document_.children()) {
    if (node.type() == pugi::node_doctype) {
      throw FormatError(name_, LineOf(node), "expected XML without a document type, found one");
    }
  }
  if (!result) {
    throw FormatError(
        name_, LineAt(result.offset),
        "expected well-formed XML, found: " + platform::FoldCase(result.description()));
  }
}

std::int64_t XmlFile::LineAt(std::ptrdiff_t offset) const {
  const auto end = std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(text_.size()));
  return 1 + std::count(text_.begin(), text_.begin() + end, '\n');
}

std::int64_t XmlFile::LineOf(pugi::xml_node node) const {
  return LineAt(node.offset_debug());
}

XmlNames::XmlNames(std::initializer_list<std::string_view> names) {
  for (const std::string_view name : names) {
    slots_.emplace(name, static_cast<std::int32_t>(slots_.size()));
  }
}

std::int32_t XmlNames::SlotOf(std::string_view name) const {
  const auto found = slots_.find(name);
  return found == slots_.end() ? -1 : found->second;
}

XmlElement::XmlElement(const XmlFile& file, pugi::xml_node node, const XmlNames& names)
    : file_(&file), node_(node), names_(&names), slots_(names.size()) {
  for (const pugi::xml_node child : node.children()) {
    const std::int32_t slot = names.SlotOf(child.name());
    if (slot >= 0 && slots_[static_cast<std::size_t>(slot)].empty()) {
      slots_[static_cast<std::size_t>(slot)] = child;
    }
  }
}

pugi::xml_node XmlElement::Child(const char* name) const {
  const std::int32_t slot = names_ == nullptr ? -1 : names_->SlotOf(name);
  return slot < 0 ? node_.child(name) : slots_[static_cast<std::size_t>(slot)];
}

std::string_view XmlElement::Text(const char* name) const {
  return platform::Trim(Child(name).child_value());
}

std::int64_t XmlElement::Integer(const char* name, std::int64_t fallback) const {
  if (!Has(name)) {
    return fallback;
  }
  const std::optional<std::int64_t> value = ReadInteger(Text(name));
  if (!value) {
    FailChild(name, "a whole number");
  }
  return *value;
}

double XmlElement::Number(const char* name, double fallback) const {
  if (!Has(name)) {
    return fallback;
  }
  const std::optional<double> value = ReadNumber(Text(name));
  if (!value) {
    FailChild(name, "a number");
  }
  return *value;
}

bool XmlElement::Flag(const char* name, bool fallback) const {
  const std::string_view value = Text(name);
  if (value.empty()) {
    return fallback;
  }
  const bool yes = value == "1" || value == "true";
  if (!yes && value != "0" && value != "false") {
    FailChild(name, "0 or 1");
  }
  return yes;
}

Instant XmlElement::Date(const char* name) const {
  if (!Has(name)) {
    return {};
  }
  const Instant instant = ParseIsoText(std::string(Text(name)));
  if (instant.IsAbsent()) {
    FailChild(name, "a date as YYYY-MM-DDTHH:MM:SS");
  }
  if (!IsPlanDate(instant)) {
    FailChild(name, "a date from 1950 to 2150");
  }
  return instant.AsStart();
}

Instant XmlElement::FinishDate(const char* name) const {
  const Instant instant = Date(name);
  return instant.IsAbsent() ? instant : instant.AsFinish();
}

std::optional<std::int32_t> XmlElement::Duration(const char* name) const {
  if (!Has(name)) {
    return std::nullopt;
  }
  const std::optional<std::int32_t> minutes = ReadXmlDuration(Text(name));
  if (!minutes) {
    FailChild(name, "a duration as PT8H0M0S of at most 200 years");
  }
  return minutes;
}

std::optional<std::int32_t> XmlElement::Tenths(const char* name) const {
  if (!Has(name)) {
    return std::nullopt;
  }
  const std::optional<std::int32_t> minutes = HoursToMinutes(Number(name, 0) / 600.0);
  if (!minutes) {
    FailChild(name, "tenths of minutes of no more than 200 years");
  }
  return minutes;
}

void XmlElement::Fail(std::string_view message) const {
  throw FormatError(file_->name(), file_->LineOf(node_), message);
}

void XmlElement::FailChild(const char* name, std::string_view expected) const {
  const pugi::xml_node child = Child(name);
  const std::string_view value = Text(name);
  throw FormatError(file_->name(), file_->LineOf(child.empty() ? node_ : child),
                    fmt::format("expected {} in {}, found {}", expected, name,
                                value.empty() ? "nothing" : Quoted(value)));
}

std::optional<std::int32_t> ReadXmlDuration(std::string_view text) {
  if (!text.starts_with('P')) {
    return std::nullopt;
  }
  text.remove_prefix(1);
  bool in_time = false;
  std::optional<double> hours;
  while (!text.empty()) {
    if (text.front() == 'T' && !in_time) {
      in_time = true;
      text.remove_prefix(1);
      continue;
    }
    const std::size_t unit = text.find_first_not_of("0123456789.");
    const std::optional<double> amount = ReadNumber(text.substr(0, unit));
    const std::optional<double> length =
        unit == std::string_view::npos ? std::nullopt : HoursOfUnit(text[unit], in_time);
    if (!amount || !length) {
      return std::nullopt;
    }
    hours = hours.value_or(0) + *amount * *length;
    text.remove_prefix(unit + 1);
  }
  return hours ? HoursToMinutes(*hours) : std::nullopt;
}

}  // namespace nimbrel::engine
