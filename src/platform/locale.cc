#include "platform/locale.h"

#include <algorithm>

#include "platform/text.h"

namespace nimbrel::platform {

const Locale* FindLocale(std::string_view name) {
  std::string wanted(name);
  std::replace(wanted.begin(), wanted.end(), '_', '-');
  for (const Locale& locale : KnownLocales()) {
    const std::string_view known = locale.name;
    if (EqualsIgnoreCase(known, wanted) ||
        EqualsIgnoreCase(known.substr(0, known.find('-')), wanted)) {
      return &locale;
    }
  }
  return nullptr;
}

const Locale& DefaultLocale() {
  return KnownLocales().front();
}

}  // namespace nimbrel::platform
