#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/automation.h"
#include "platform/message_box.h"
#include "platform/ref.h"

/// The thin layer through which workbooks are reached: by automation of Excel, or of what stands in
/// for it, by member names alone.
///
/// The formatters work by selecting a range and then changing the application's Selection. They
/// hold no range across calls. Where a comment does not say otherwise, an error of the automation
/// goes to the caller.
namespace nimbrel::modExcel {

using platform::AutomationObject;
using platform::Ref;

/// What stands behind the functions. Whoever wires them keeps ownership of what is pointed at.
struct Services {
  platform::AutomationServers* servers = nullptr;
  platform::MessageBox* message_box = nullptr;
  /// Where a user finds help if Excel does not start; part of the message that says so.
  std::string support_address{};
};

/// Puts `services` in place; called with {} it takes them away.
void Wire(Services services);

/// Excel's own numbers.
inline constexpr std::int32_t kGrey = 15;          ///< Colorindex
inline constexpr std::int32_t kBlue = 41;          ///< Colorindex
inline constexpr std::int32_t kWhite = 2;          ///< Colorindex of a font
inline constexpr std::int32_t kNone = -4142;       ///< Colorindex, Pattern
inline constexpr std::int32_t kSolid = 1;          ///< Pattern
inline constexpr std::int32_t kCentre = -4108;     ///< HorizontalAlignment
inline constexpr std::int32_t kTop = -4160;        ///< VerticalAlignment
inline constexpr std::int32_t kManual = -4135;     ///< Calculation
inline constexpr std::int32_t kAutomatic = -4105;  ///< Calculation

/// The letters of the columns 1 to 78 (A to BZ), that of column 1 at index 0; empty until
/// InitColumnLetters.
extern std::vector<std::string> g_asColumnLetters;

/// Starts Excel and gives its application, or Nothing after telling the user that it did not start.
/// No failure to start it goes to the caller.
Ref<AutomationObject> StartExcel();

/// Fills g_asColumnLetters.
void InitColumnLetters();

/// The letters of column `Col`, from 1; empty for a column outside 1 to 78. Raises error 9 before
/// InitColumnLetters.
std::string GetColumnLetter(std::int32_t Col);

void SelectSheet(const Ref<AutomationObject>& Sheet);

/// Selects the block of columns `Col1` to `Col2` and rows `Row1` to `Row2`, all from 1, on a sheet.
/// False if that fails, for whatever reason.
bool SelectRange(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                 std::int32_t Row1, std::int32_t Row2);

// Ranges as texts are in Excel's own form: "C:D", "1:5". The four differ in whether they select the
// sheet first, and in whether they take range and selection from the sheet, its application or App.

/// Selects the sheet, and aligns a range of the sheet that is then active horizontally.
void SetColumnsAlignment(const Ref<AutomationObject>& Sheet, const std::string& Range,
                         std::int32_t Alignment);
/// Selects the sheet, and gives a range of it the number format "0.00%".
void SetPercentFormat(const Ref<AutomationObject>& App, const Ref<AutomationObject>& Sheet,
                      const std::string& Range);
/// Gives a range of the sheet, which must be the active one, the number format "dd mmm yyyy".
void SetDateFormat(const Ref<AutomationObject>& App, const Ref<AutomationObject>& Sheet,
                   const std::string& Range);
/// Fills a range of the sheet, which must be the active one.
void SetRangeFill(const Ref<AutomationObject>& Sheet, const std::string& Range,
                  std::int32_t ColorIndex, std::int32_t Pattern);

/// Fill a block, or set its font; a block that cannot be selected silently keeps its old look.
void SetBlockFill(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                  std::int32_t Row1, std::int32_t Row2, std::int32_t ColorIndex,
                  std::int32_t Pattern);
void SetBlockFont(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                  std::int32_t Row1, std::int32_t Row2, std::int32_t ColorIndex, bool Bold);

}  // namespace nimbrel::modExcel
