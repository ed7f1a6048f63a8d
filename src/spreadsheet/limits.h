#pragma once

#include <cstdint>

namespace nimbrel::spreadsheet {

/// What a workbook may have, so that no file, damaged or malicious, takes more than a second or
/// 256 MB to read. Whatever goes past one of these is refused. 500 sheets of 200 rows have some
/// 700,000 cells and 30 to 45 MiB of XML.
inline constexpr std::uint64_t kMaxFileBytes = 32ULL << 20;
inline constexpr std::uint64_t kMaxInflatedBytes = 64ULL << 20;  // of all parts that are read
inline constexpr std::uint64_t kMaxParts = 10'000;
inline constexpr std::uint64_t kMaxCells = 1'000'000;         // that hold a value, in all sheets
inline constexpr std::uint64_t kMaxStrings = 1'000'000;       // that are kept
inline constexpr std::uint64_t kMaxTextsBytes = 32ULL << 20;  // of all that are kept
inline constexpr std::uint64_t kMaxSheets = 1'024;
inline constexpr std::uint64_t kMaxCellFormats = 65'536;
inline constexpr std::uint64_t kMaxNumberFormats = 10'000;
inline constexpr std::uint64_t kMaxRelationships = 10'000;  // of one part
/// Of a sheet's name, a number format, or a relationship's name and target.
inline constexpr std::uint64_t kMaxNameBytes = 1'024;
inline constexpr int kMaxXmlDepth = 64;
inline constexpr std::uint64_t kMaxXmlItems = 6'000'000;  // elements and attributes
/// A parser hands on every line end and its blanks, "&" and the like as a run of its own.
inline constexpr std::uint64_t kMaxXmlRuns = 12'000'000;
inline constexpr std::uint64_t kMaxXmlTokenBytes = 128ULL << 10;  // of one tag or comment
/// What the names of elements and attributes may take. The parser forgets none that it has met.
inline constexpr std::uint64_t kMaxXmlNameMemory = 16ULL << 20;
inline constexpr std::uint64_t kMaxContinuations = 65'536;  // of one record of an .xls file

/// The longest text that a cell can hold, in UTF-16 units.
inline constexpr std::uint64_t kMaxCellText = 32'767;
/// A reader takes texts up to this, whatever their characters take.
inline constexpr std::uint64_t kMaxTextBytes = 4 * kMaxCellText;

}  // namespace nimbrel::spreadsheet
