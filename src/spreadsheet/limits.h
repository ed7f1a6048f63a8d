#pragma once

#include <cstdint>

namespace nimbrel::spreadsheet {

/// What a workbook may have, so that a damaged or malicious file cannot take all memory or time.
/// Whatever goes past one of these is refused.
inline constexpr std::uint64_t kMaxFileBytes = 64ULL << 20;
inline constexpr std::uint64_t kMaxPartBytes = 256ULL << 20;      // of one part, inflated
inline constexpr std::uint64_t kMaxInflatedBytes = 512ULL << 20;  // of all parts that are read
inline constexpr std::uint64_t kMaxParts = 10'000;
inline constexpr std::uint64_t kMaxCells = 2'000'000;  // that hold a value, in all sheets
inline constexpr std::uint64_t kMaxStrings = 1'000'000;
inline constexpr std::uint64_t kMaxSheets = 1'024;
inline constexpr std::uint64_t kMaxCellFormats = 65'536;
inline constexpr std::uint64_t kMaxRelationships = 10'000;  // of one part
inline constexpr std::uint64_t kMaxNameBytes = 1'024;       // of a sheet's name or a number format
inline constexpr int kMaxXmlDepth = 64;
inline constexpr std::uint64_t kMaxXmlTokenBytes = 1ULL << 20;  // of one tag or comment

/// The longest text that a cell can hold, in UTF-16 units.
inline constexpr std::uint64_t kMaxCellText = 32'767;
/// A reader takes texts up to this, whatever their characters take.
inline constexpr std::uint64_t kMaxTextBytes = 4 * kMaxCellText;

}  // namespace nimbrel::spreadsheet
