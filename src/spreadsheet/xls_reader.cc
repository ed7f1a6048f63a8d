#include "spreadsheet/xls_reader.h"

#include <bit>
#include <cmath>
#include <optional>

#include "spreadsheet/compound_file.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/xls_globals.h"

namespace nimbrel::spreadsheet {
namespace {

/// The number of 30 bits that most numbers are stored in.
double DecodeRk(std::uint32_t rk) {
  constexpr std::uint32_t kHundredths = 1;
  constexpr std::uint32_t kInteger = 2;
  const double number = (rk & kInteger) != 0
                            ? static_cast<double>(static_cast<std::int32_t>(rk) >> 2)
                            : std::bit_cast<double>(std::uint64_t{rk & ~3U} << 32);
  return (rk & kHundredths) != 0 ? number / 100 : number;
}

CellError DecodeError(std::uint8_t code) {
  for (const CellError error : {CellError::kNull, CellError::kDivision, CellError::kValue,
                                CellError::kReference, CellError::kName, CellError::kNumber}) {
    if (code == static_cast<std::uint8_t>(error)) {
      return error;
    }
  }
  return CellError::kNotAvailable;
}

class SheetReader {
 public:
  SheetReader(const ReadPlace& place, const XlsGlobals& globals, ReadCounts& counts,
              Workbook& workbook, Sheet& sheet)
      : place_(place), globals_(globals), counts_(counts), workbook_(workbook), sheet_(sheet) {}

  /// Reads from `offset` on. Takes what it reads off `budget`, so that sheets which lie over one
  /// another are not read again and again.
  void Read(std::string_view stream, std::size_t offset, std::size_t& budget) {
    BiffStream records(stream, offset, place_);
    BiffRecord record;
    int depth = 0;  // a chart in a sheet is a part of its own
    do {
      if (!records.Next(record)) {
        RaiseReadError(place_, "the sheet is cut short");
      }
      Spend(record, budget);
      if (record.type == kBiffBof) {
        if (depth == 0 && !ReadBiffBegin(record, place_).is_worksheet) {
          RaiseReadError(place_, "the file is damaged: the sheet holds no cells");
        }
        ++depth;
      } else if (depth == 0) {
        ReadBiffBegin(record, place_);
      } else if (record.type == kBiffEof) {
        --depth;
      } else if (depth == 1) {
        ReadRecord(record);
      }
    } while (depth > 0);
    EndFormula();
    sheet_.SortCells();
  }

 private:
  void Spend(const BiffRecord& record, std::size_t& budget) const {
    constexpr std::size_t kRecordHeader = 4;
    for (const std::string_view piece : record.pieces) {
      const std::size_t size = piece.size() + kRecordHeader;
      if (size > budget) {
        RaiseReadError(place_, "the file is damaged: its sheets overlap");
      }
      budget -= size;
    }
  }

  void ReadRecord(const BiffRecord& record) {
    BiffFields fields(record, place_);
    switch (record.type) {
      case kBiffNumber:
        BeginCell(fields);
        PutNumber(fields.TakeDouble());
        break;
      case kBiffRk:
        BeginCell(fields);
        PutNumber(DecodeRk(fields.Take32()));
        break;
      case kBiffMulRk:
        ReadMulRk(fields, record.data().size());
        break;
      case kBiffLabelSst:
        BeginCell(fields);
        PutSharedText(fields.Take32());
        break;
      case kBiffLabel:
      case kBiffRString:
        BeginCell(fields);
        PutText(TakeText(fields));
        break;
      case kBiffBoolErr:
        BeginCell(fields);
        PutTruthOrError(fields);
        break;
      case kBiffFormula:
        BeginCell(fields);
        ReadResult(fields);
        break;
      case kBiffString:
        if (waits_for_text_) {
          waits_for_text_ = false;
          PutText(TakeText(fields));
        }
        break;
      default:
        break;
    }
  }

  /// A formula that gives a text has it in a record of its own, which must be there before the next
  /// cell.
  void EndFormula() {
    if (waits_for_text_) {
      waits_for_text_ = false;
      Put(NotComputed());
    }
  }

  void BeginCell(BiffFields& fields) {
    EndFormula();
    place_.column = 0;
    place_.row = fields.Take16() + 1;
    SetColumn(fields.Take16());
    SetStyle(fields.Take16());
  }

  void SetColumn(std::int32_t index) {
    if (index >= kColumns) {
      RaiseReadError(place_, "the row has too many cells");
    }
    place_.column = index + 1;
  }

  void SetStyle(std::uint16_t style) {
    if (style >= globals_.formats.size()) {
      RaiseReadError(place_,
                     "the cell has style " + std::to_string(style) + ", which does not exist");
    }
    format_ = globals_.formats[style];
  }

  void ReadMulRk(BiffFields& fields, std::size_t size) {
    constexpr std::size_t kFrame = 6;  // row, first and last column
    constexpr std::size_t kEntry = 6;
    EndFormula();
    place_.column = 0;
    place_.row = fields.Take16() + 1;
    const std::int32_t first = fields.Take16();
    const std::size_t count = size < kFrame ? 0 : (size - kFrame) / kEntry;
    for (std::size_t i = 0; i < count; ++i) {
      SetColumn(first + static_cast<std::int32_t>(i));
      SetStyle(fields.Take16());
      PutNumber(DecodeRk(fields.Take32()));
    }
  }

  void ReadResult(BiffFields& fields) {
    const std::uint64_t low = fields.Take32();
    const std::uint64_t result = low | static_cast<std::uint64_t>(fields.Take32()) << 32;
    constexpr std::uint64_t kNoNumber = 0xFFFF;
    if (result >> 48 != kNoNumber) {
      PutNumber(std::bit_cast<double>(result));
      return;
    }
    const auto value = static_cast<std::uint8_t>(result >> 16);
    switch (result & 0xFF) {
      case 0:
        waits_for_text_ = true;
        break;
      case 1:
        Put(value != 0);
        break;
      case 2:
        Put(DecodeError(value));
        break;
      case 3:
        PutText("");
        break;
      default:
        Put(NotComputed());
    }
  }

  void PutTruthOrError(BiffFields& fields) {
    const std::uint8_t value = fields.Take8();
    if (fields.Take8() != 0) {
      Put(DecodeError(value));
    } else {
      Put(value != 0);
    }
  }

  std::string TakeText(BiffFields& fields) const {
    const std::size_t length = fields.Take16();
    return globals_.is_biff8 ? fields.TakeUnicode(length)
                             : globals_.code_page.Decode(fields.TakeBytes(length));
  }

  void PutSharedText(std::uint32_t index) {
    if (index >= globals_.shared_texts) {
      RaiseReadError(
          place_, "the cell has text number " + std::to_string(index) + ", which does not exist");
    }
    Put(TextId{index});
  }

  void PutText(std::string text) {
    counts_.AddText(place_, text.size());
    Put(workbook_.AddText(std::move(text)));
  }

  void PutNumber(double number) {
    if (!std::isfinite(number)) {
      RaiseReadError(place_, "the number is none");
    }
    Put(number);
  }

  void Put(const CellValue& value) {
    counts_.AddCell(place_);
    sheet_.Append({place_.row, static_cast<std::uint16_t>(place_.column), format_, value});
  }

  ReadPlace place_;
  const XlsGlobals& globals_;
  ReadCounts& counts_;
  Workbook& workbook_;
  Sheet& sheet_;
  std::uint16_t format_ = 0;
  bool waits_for_text_ = false;
};

std::string TakeWorkbookStream(std::string_view bytes, const std::string& name) {
  const CompoundFile file(bytes, name);
  for (const char* stream : {"Workbook", "Book"}) {
    if (auto found = file.Stream(stream)) {
      return std::move(*found);
    }
  }
  RaiseReadError({.file = name}, file.Stream("EncryptedPackage")
                                     ? "is encrypted"
                                     : "is a compound file, but no .xls workbook");
}

}  // namespace

Workbook ReadXls(std::string_view bytes, const std::string& name) {
  const std::string stream = TakeWorkbookStream(bytes, name);
  const ReadPlace place{.file = name};
  Workbook workbook;
  ReadCounts counts;
  XlsGlobals globals;
  ReadXlsGlobals(stream, place, counts, workbook, globals);
  std::size_t budget = stream.size();
  for (const auto& entry : globals.sheets) {
    const ReadPlace sheet_place{.file = name, .sheet = entry.name};
    SheetReader(sheet_place, globals, counts, workbook, workbook.AddSheet(entry.name))
        .Read(stream, entry.offset, budget);
  }
  if (workbook.sheets().empty()) {
    RaiseReadError(place, "has no sheet with cells");
  }
  return workbook;
}

}  // namespace nimbrel::spreadsheet
