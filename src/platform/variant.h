#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "platform/date.h"
#include "platform/ref.h"

namespace nimbrel::platform {

struct Locale;

/// A value of any of the plan's types, a reference to an object, or empty.
class Variant {
 public:
  Variant() = default;
  // A value converts to a Variant silently: that is what the type is for. Only a real bool is
  // taken as one, so that no pointer turns into True.
  template <std::same_as<bool> B>
  Variant(B value) : value_(value) {}                         // NOLINT
  Variant(std::int32_t value) : value_(value) {}              // NOLINT
  Variant(double value) : value_(value) {}                    // NOLINT
  Variant(Date value) : value_(value) {}                      // NOLINT
  Variant(std::string value) : value_(std::move(value)) {}    // NOLINT
  Variant(const char* value) : value_(std::string(value)) {}  // NOLINT
  /// Shares the object; the reference may be Nothing, which is not the same as empty.
  template <std::derived_from<Object> T>
  Variant(const Ref<T>& object) : value_(Ref<Object>(object)) {}  // NOLINT

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  /// Whether the value has type T: bool, std::int32_t, double, Date, std::string or Ref<Object>.
  template <class T>
  bool Is() const {
    return std::holds_alternative<T>(value_);
  }
  /// The value if it has type T, else null. Lives as long as the Variant keeps its value.
  template <class T>
  const T* Get() const {
    return std::get_if<T>(&value_);
  }

  /// Conversions. Empty gives 0, False or the empty text; True gives -1. Each raises error 13 for
  /// text that the locale does not read as the type asked for, and error 6 on overflow. An object
  /// is no value: it raises error 438, and Nothing error 91.

  /// A number is taken as days since 30 December 1899; raises error 6 outside the years 100 to
  /// 9999. Text must be a date (see ParseDate): digits alone are no day count.
  Date ToDate(const Locale& locale) const;
  /// A date gives its day count.
  double ToDouble(const Locale& locale) const;
  /// Rounds to the nearest whole number, a tie going to the even neighbour.
  std::int32_t ToLong(const Locale& locale) const;
  /// True for anything but 0. Text may also be "True" or "False" in any case.
  bool ToBoolean(const Locale& locale) const;
  /// Text as the platform shows the value by default: "True" or "False", DefaultNumberText,
  /// DefaultDateText.
  std::string ToText(const Locale& locale) const;

  /// Equal in type and value: the Long 1 is not the Double 1.0. Objects are equal if they are the
  /// same.
  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  std::variant<std::monostate, bool, std::int32_t, double, Date, std::string, Ref<Object>> value_;
};

}  // namespace nimbrel::platform
