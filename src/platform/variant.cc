#include "platform/variant.h"

#include "platform/locale.h"
#include "platform/number.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::platform {
namespace {

template <class... Cases>
struct Overload : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overload(Cases...) -> Overload<Cases...>;

[[noreturn]] void RaiseNoValue(const Ref<Object>& object) {
  if (object.IsNothing()) {
    RaiseNothing();
  }
  throw RuntimeError(kMemberNotFound, "An object cannot be used as a value");
}

}  // namespace

double Variant::ToDouble(const Locale& locale) const {
  return std::visit(
      Overload{[](std::monostate) { return 0.0; }, [](bool value) { return value ? -1.0 : 0.0; },
               [](std::int32_t value) { return static_cast<double>(value); },
               [](double value) { return value; }, [](Date value) { return value.serial; },
               [&](const std::string& value) { return ParseNumber(value, locale); },
               [](const Ref<Object>& object) -> double { RaiseNoValue(object); }},
      value_);
}

Date Variant::ToDate(const Locale& locale) const {
  if (const auto* text = Get<std::string>()) {
    return ParseDate(*text, locale);
  }
  const Date date{ToDouble(locale)};
  if (!IsValidDate(date)) {
    throw RuntimeError(
        kOverflow, "Overflow: no date has the day count " + DefaultNumberText(date.serial, locale));
  }
  return date;
}

std::int32_t Variant::ToLong(const Locale& locale) const {
  if (const auto* value = Get<std::int32_t>()) {
    return *value;
  }
  return platform::ToLong(ToDouble(locale));
}

bool Variant::ToBoolean(const Locale& locale) const {
  if (const auto* text = Get<std::string>()) {
    if (EqualsIgnoreCase(*text, "True")) {
      return true;
    }
    if (EqualsIgnoreCase(*text, "False")) {
      return false;
    }
  }
  return ToDouble(locale) != 0.0;
}

std::string Variant::ToText(const Locale& locale) const {
  return std::visit(
      Overload{[](std::monostate) { return std::string(); },
               [](bool value) { return std::string(value ? "True" : "False"); },
               [](std::int32_t value) { return std::to_string(value); },
               [&](double value) { return DefaultNumberText(value, locale); },
               [&](Date value) { return DefaultDateText(value, locale); },
               [](const std::string& value) { return value; },
               [](const Ref<Object>& object) -> std::string { RaiseNoValue(object); }},
      value_);
}

}  // namespace nimbrel::platform
