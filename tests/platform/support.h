#pragma once

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "platform/date.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::platform {

inline void PrintTo(Date date, std::ostream* out) {
  *out << "day " << date.serial;
}

inline void PrintTo(const CivilTime& civil, std::ostream* out) {
  *out << civil.year << '-' << civil.month << '-' << civil.day << ' ' << civil.hour << ':'
       << civil.minute << ':' << civil.second;
}

inline void showValue(const CivilTime& civil, std::ostream& out) {
  PrintTo(civil, &out);
}

/// The number of the error that a statement raises, or nothing.
template <class Statement>
std::optional<std::int32_t> ErrorOf(Statement&& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    return error.number();
  }
  return std::nullopt;
}

/// Any number from `first` to `last`, spread evenly from a property's first run on.
inline rc::Gen<std::int32_t> Evenly(std::int32_t first, std::int32_t last) {
  return rc::gen::resize(rc::kNominalSize, rc::gen::inRange(first, last + 1));
}

/// Any second of the days from `first` to `last`, both as day counts; midnights often.
inline rc::Gen<CivilTime> AnyCivilTime(std::int32_t first = kFirstSerialDay,
                                       std::int32_t last = kLastSerialDay) {
  const auto second = rc::gen::oneOf(rc::gen::just(0), Evenly(0, 86399));
  return rc::gen::map(rc::gen::pair(Evenly(first, last), second),
                      [](const std::pair<std::int32_t, int>& moment) {
                        CivilTime civil = ToCivil(Date{static_cast<double>(moment.first)});
                        civil.hour = moment.second / 3600;
                        civil.minute = moment.second / 60 % 60;
                        civil.second = moment.second % 60;
                        return civil;
                      });
}

/// A test that is run in every locale.
class EveryLocale : public testing::TestWithParam<std::string> {
 protected:
  const Locale& locale() const { return *FindLocale(GetParam()); }
};

inline auto LocaleNames() {
  std::vector<std::string> names;
  for (const Locale& locale : KnownLocales()) {
    names.push_back(locale.name);
  }
  return testing::ValuesIn(names);
}

/// The locale's name as a test's name can hold it.
inline std::string TestName(const testing::TestParamInfo<std::string>& info) {
  return info.param.substr(0, 2) + info.param.substr(3);
}

}  // namespace nimbrel::platform
