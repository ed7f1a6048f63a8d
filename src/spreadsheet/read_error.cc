#include "spreadsheet/read_error.h"

#include "platform/runtime_error.h"
#include "spreadsheet/grid.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {

void RaiseReadError(const ReadPlace& place, const std::string& reason) {
  std::string text = place.file + ": ";
  if (!place.sheet.empty()) {
    text += "sheet " + Quoted(place.sheet);
    if (place.row > 0) {
      text += ", row " + std::to_string(place.row);
    }
    if (place.column > 0) {
      text += ", column " + ColumnLetters(place.column);
    }
    text += ": ";
  }
  throw platform::RuntimeError(platform::kApplicationDefined, text + reason);
}

std::string MebibytesText(std::uint64_t bytes) {
  return std::to_string(bytes >> 20) + " MiB";
}

void CheckTextSize(const ReadPlace& place, std::size_t bytes) {
  if (bytes > kMaxTextBytes) {
    RaiseReadError(place, "a text is longer than " + std::to_string(kMaxCellText) + " characters");
  }
}

void ReadCounts::AddCell(const ReadPlace& place) {
  if (++cells_ > kMaxCells) {
    RaiseReadError(place, "the workbook has more than " + std::to_string(kMaxCells) + " cells");
  }
}

void ReadCounts::AddText(const ReadPlace& place, std::size_t bytes) {
  text_bytes_ += bytes;
  if (++texts_ > kMaxStrings) {
    RaiseReadError(place, "the workbook has more than " + std::to_string(kMaxStrings) + " texts");
  }
  if (text_bytes_ > kMaxTextsBytes) {
    RaiseReadError(place,
                   "the workbook has more than " + MebibytesText(kMaxTextsBytes) + " of texts");
  }
}

}  // namespace nimbrel::spreadsheet
