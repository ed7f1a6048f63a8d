#include "spreadsheet/xls_globals.h"

#include <unordered_map>

#include "spreadsheet/limits.h"
#include "spreadsheet/number_format.h"
#include "spreadsheet/sheet_name.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::uint16_t kBiff5 = 0x0500;
constexpr std::uint16_t kBiff8 = 0x0600;
constexpr std::uint16_t kWorksheet = 0x0010;

class GlobalsReader {
 public:
  GlobalsReader(const ReadPlace& place, ReadCounts& counts, Workbook& workbook, XlsGlobals& globals)
      : place_(place), counts_(counts), workbook_(workbook), globals_(globals) {}

  void Read(std::string_view stream) {
    BiffStream records(stream, 0, place_);
    BiffRecord record;
    if (!records.Next(record)) {
      RaiseReadError(place_, "the workbook is cut short");
    }
    globals_.is_biff8 = ReadBiffBegin(record, place_).is_biff8;
    do {
      if (!records.Next(record)) {
        RaiseReadError(place_, "the workbook is cut short");
      }
      ReadRecord(record);
    } while (record.type != kBiffEof);
    CheckSheetNames(place_, names_);
    for (const std::uint16_t id : styles_) {
      globals_.formats.push_back(workbook_.AddNumberFormat(FormatText(id)));
    }
  }

 private:
  void ReadRecord(const BiffRecord& record) {
    BiffFields fields(record, place_);
    switch (record.type) {
      case kBiffFilePass:
        RaiseReadError(place_, "is encrypted");
      case kBiffCodePage:
        if (const auto number = fields.Take16();
            !globals_.is_biff8 && !globals_.code_page.Select(number)) {
          RaiseReadError(
              place_, "has texts of code page " + std::to_string(number) + ", which is not known");
        }
        break;
      case kBiffDateMode:
        workbook_.set_date_1904(fields.Take16() == 1);
        break;
      case kBiffFormat:
        ReadFormat(fields);
        break;
      case kBiffXf:
        if (styles_.size() == kMaxCellFormats) {
          RaiseReadError(place_,
                         "has more than " + std::to_string(kMaxCellFormats) + " cell styles");
        }
        fields.Skip(2);  // the font
        styles_.push_back(fields.Take16());
        break;
      case kBiffBoundSheet:
        ReadSheetEntry(fields);
        break;
      case kBiffSst:
        ReadSharedTexts(fields);
        break;
      default:
        break;
    }
  }

  void ReadFormat(BiffFields& fields) {
    const std::uint16_t id = fields.Take16();
    std::string text = globals_.is_biff8
                           ? fields.TakeUnicode(fields.Take16())
                           : globals_.code_page.Decode(fields.TakeBytes(fields.Take8()));
    if (text.size() > kMaxNameBytes) {
      RaiseReadError(place_, "has a name that is too long: " + Quoted(text));
    }
    formats_[id] = std::move(text);
    if (formats_.size() > kMaxNumberFormats) {
      RaiseReadError(place_,
                     "has more than " + std::to_string(kMaxNumberFormats) + " number formats");
    }
  }

  void ReadSheetEntry(BiffFields& fields) {
    if (names_.size() == kMaxSheets) {
      RaiseReadError(place_, "has more than " + std::to_string(kMaxSheets) + " sheets");
    }
    XlsGlobals::SheetEntry entry;
    entry.offset = fields.Take32();
    fields.Skip(1);  // whether it is hidden
    const bool holds_cells = fields.Take8() == 0;
    const std::size_t length = fields.Take8();
    entry.name = globals_.is_biff8 ? fields.TakeUnicode(length)
                                   : globals_.code_page.Decode(fields.TakeBytes(length));
    names_.push_back(entry.name);
    if (holds_cells) {
      globals_.sheets.push_back(std::move(entry));
    }
  }

  void ReadSharedTexts(BiffFields& fields) {
    fields.Skip(4);  // how often they are used
    const std::uint32_t count = fields.Take32();
    for (std::uint32_t i = 0; i < count && !fields.AtEnd(); ++i) {
      std::string text = fields.TakeUnicode(fields.Take16());
      counts_.AddText(place_, text.size());
      workbook_.AddText(std::move(text));
    }
    globals_.shared_texts = workbook_.text_count();
  }

  std::string_view FormatText(std::uint16_t id) const {
    constexpr std::uint16_t kGeneralId = 0;
    const auto own = formats_.find(id);
    // The file names the general format in its own language.
    const std::string_view format =
        own != formats_.end() && id != kGeneralId ? own->second : BuiltInNumberFormat(id);
    return format.empty() ? BuiltInNumberFormat(kGeneralId) : format;
  }

  const ReadPlace& place_;
  ReadCounts& counts_;
  Workbook& workbook_;
  XlsGlobals& globals_;
  std::unordered_map<std::uint16_t, std::string> formats_;
  std::vector<std::uint16_t> styles_;
  std::vector<std::string> names_;  // of all sheets, those without cells among them
};

}  // namespace

BiffBegin ReadBiffBegin(const BiffRecord& record, const ReadPlace& place) {
  if (record.type != kBiffBof) {
    // The two oldest forms begin with records of other types.
    const bool is_older = (record.type & 0xFF) == (kBiffBof & 0xFF) && record.type < kBiffBof;
    RaiseReadError(place, is_older ? "is a workbook of Excel 4 or older, which is not read"
                                   : "the file is damaged: a sheet does not begin where it should");
  }
  BiffFields fields(record, place);
  const std::uint16_t version = fields.Take16();
  if (version != kBiff5 && version != kBiff8) {
    RaiseReadError(place, "is a workbook of a version that is not known");
  }
  return {.is_biff8 = version == kBiff8, .is_worksheet = fields.Take16() == kWorksheet};
}

void ReadXlsGlobals(std::string_view stream, const ReadPlace& place, ReadCounts& counts,
                    Workbook& workbook, XlsGlobals& globals) {
  GlobalsReader(place, counts, workbook, globals).Read(stream);
}

}  // namespace nimbrel::spreadsheet
