#pragma once

#include "platform/date.h"
#include "toolkit/edit.h"

namespace nimbrel::dialog {

/// Shows a span of 365 days from `dtFirst` on in two boxes, as "dd/mmm/yyyy" of the user's locale.
void ShowYearFrom(platform::Date dtFirst, toolkit::TextBox& txtStart, toolkit::TextBox& txtEnd);

/// Which years a span may lie in.
enum class YearRange { kAny, kFrom1900To2100 };

/// Whether the texts of two boxes are dates of the user's locale in that range, the last not before
/// the first. If not, a message box tells the user why, once.
bool CheckDateSpan(const toolkit::TextBox& txtStart, const toolkit::TextBox& txtEnd,
                   YearRange range);

}  // namespace nimbrel::dialog
