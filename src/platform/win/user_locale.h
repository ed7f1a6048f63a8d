#pragma once

#include <string>

#include "platform/locale.h"

namespace nimbrel::platform {

/// How the user has dates and numbers written, as the system's settings have it: names, order,
/// separators and the short pattern. What the settings leave open, or have in a form that dates
/// here do not take, stays as in English.
///
/// `name` ("de-DE") takes another language's own settings; empty: the user's.
Locale UserLocale(const std::string& name = {});

/// A pattern of the system ("dd.MM.yyyy") as patterns are written here: letters in lower case, the
/// separator between numbers as "/". Quotes go with what stands in them, and so does a separator
/// behind the last number.
std::string PatternOf(const std::string& system_pattern, char separator);

}  // namespace nimbrel::platform
