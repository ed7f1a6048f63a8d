#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/date.h"

namespace nimbrel::platform {

struct Locale;

/// A value of any of the plan's types, or empty.
class Variant {
 public:
  Variant() = default;
  // A value converts to a Variant silently: that is what the type is for.
  Variant(bool value) : value_(value) {}                       // NOLINT
  Variant(std::int32_t value) : value_(value) {}               // NOLINT
  Variant(double value) : value_(value) {}                     // NOLINT
  Variant(Date value) : value_(value) {}                       // NOLINT
  Variant(std::string value) : value_(std::move(value)) {}     // NOLINT
  Variant(const char* value) : value_(std::string(value)) {}   // NOLINT

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  template <class T>
  bool Is() const {
    return std::holds_alternative<T>(value_);
  }
  /// The value if it has type T, else null.
  template <class T>
  const T* Get() const {
    return std::get_if<T>(&value_);
  }

  /// Conversions. Empty gives 0, False or the empty text; True gives -1; text goes through the
  /// locale's parsers. Each raises error 13 for text that does not parse and error 6 on overflow.
  Date ToDate(const Locale& locale) const;
  double ToDouble(const Locale& locale) const;
  std::int32_t ToLong(const Locale& locale) const;
  bool ToBoolean(const Locale& locale) const;
  /// Text as the platform shows the value by default.
  std::string ToText(const Locale& locale) const;

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  std::variant<std::monostate, bool, std::int32_t, double, Date, std::string> value_;
};

}  // namespace nimbrel::platform
