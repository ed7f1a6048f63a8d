#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/formats/format_error.h"

namespace nimbrel::engine {

/// An XML file in memory. Knows the line of each element.
class XmlFile {
 public:
  /// Parses the bytes, which must live as long. UTF-8, or Windows-1252 where they are none. Raises
  /// FormatError for XML that is not well-formed and for document types, which could name other
  /// files. `name` stands in errors.
  XmlFile(std::string_view bytes, std::string name);
  XmlFile(const XmlFile&) = delete;
  XmlFile& operator=(const XmlFile&) = delete;

  pugi::xml_node root() const { return document_.document_element(); }
  const std::string& name() const { return name_; }
  /// The line on which a node starts, from 1.
  std::int64_t LineOf(pugi::xml_node node) const;

 private:
  std::int64_t LineAt(std::ptrdiff_t offset) const;

  std::string name_;
  std::string converted_;  // where the bytes were no UTF-8
  std::string_view text_;
  pugi::xml_document document_;
};

/// Names of elements that are looked up in many elements of one kind.
class XmlNames {
 public:
  XmlNames(std::initializer_list<std::string_view> names);
  std::size_t size() const { return slots_.size(); }
  /// Position of a name, or -1.
  std::int32_t SlotOf(std::string_view name) const;

 private:
  std::unordered_map<std::string_view, std::int32_t> slots_;
};

/// An element whose children hold one value each. The file must live as long.
class XmlElement {
 public:
  XmlElement(const XmlFile& file, pugi::xml_node node) : file_(&file), node_(node) {}
  /// The same, with children of these names found once and for all, which pays where there are many
  /// children and many look-ups. `names` must live as long too.
  XmlElement(const XmlFile& file, pugi::xml_node node, const XmlNames& names);

  pugi::xml_node node() const { return node_; }
  bool Has(const char* name) const { return !Text(name).empty(); }
  /// The text of the first child of that name, without surrounding spaces; empty if there is none.
  std::string_view Text(const char* name) const;

  // Each raises FormatError, naming the line and the element, where the value is not what it must
  // be; each gives `fallback`, or nothing, where the value is empty.

  std::int64_t Integer(const char* name, std::int64_t fallback) const;
  double Number(const char* name, double fallback) const;
  bool Flag(const char* name, bool fallback) const;
  /// A date from 1950 to 2150.
  Instant Date(const char* name) const;
  /// A date as Date has it, in the form of a finish: midnight is 24:00 of the day before.
  Instant FinishDate(const char* name) const;
  /// Minutes of an XML duration such as "PT8H30M0S", from 0 to 200 years.
  std::optional<std::int32_t> Duration(const char* name) const;
  /// Minutes of a number of tenths of minutes, within 200 years either way.
  std::optional<std::int32_t> Tenths(const char* name) const;

  [[noreturn]] void Fail(std::string_view message) const;
  /// Raises "expected EXPECTED in NAME, found VALUE" for a child.
  [[noreturn]] void FailChild(const char* name, std::string_view expected) const;

 private:
  pugi::xml_node Child(const char* name) const;

  const XmlFile* file_;
  pugi::xml_node node_;
  const XmlNames* names_ = nullptr;
  std::vector<pugi::xml_node> slots_;
};

/// Minutes of an XML duration in days, hours, minutes and seconds; nothing for any other text and
/// for durations below 0 or above 200 years.
std::optional<std::int32_t> ReadXmlDuration(std::string_view text);

}  // namespace nimbrel::engine
