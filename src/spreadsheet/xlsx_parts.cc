#include "spreadsheet/xlsx_parts.h"

#include <charconv>
#include <optional>
#include <unordered_map>

#include "spreadsheet/limits.h"
#include "spreadsheet/number_format.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/xml_parser.h"

namespace nimbrel::spreadsheet {
namespace {

bool IsTrue(std::string_view value) {
  return value == "1" || value == "true";
}

/// The text of an attribute that holds a name of some kind; empty without the attribute.
std::string ShortText(const ReadPlace& place, std::optional<std::string_view> value) {
  if (!value) {
    return {};
  }
  if (value->size() > kMaxNameBytes) {
    RaiseReadError(place, "has a name that is too long: " + Quoted(*value));
  }
  return UnescapeXlsxText(*value);
}

/// Reads a part with a sink and makes sure that it was the kind of part that the sink reads.
template <class Sink>
void ReadPart(Package& package, std::string_view part, Sink& sink, const char* kind) {
  ParseXml(package, part, sink);
  if (!sink.knows_root()) {
    RaiseReadError({.file = package.file()}, "part " + Quoted(part) + " is no " + kind);
  }
}

enum class WorkbookState { kStart, kWorkbook, kSheets, kItem, kOther };

class WorkbookSink : public XmlStates<WorkbookState> {
 public:
  explicit WorkbookSink(std::string file) : place_{.file = std::move(file)} {}

  XlsxWorkbookPart part;

 protected:
  WorkbookState Enter(WorkbookState parent, const XmlElement& element) override {
    if (element.vocabulary() != Vocabulary::kSpreadsheet) {
      return WorkbookState::kOther;
    }
    if (parent == WorkbookState::kStart && element.name() == "workbook") {
      return WorkbookState::kWorkbook;
    }
    if (parent == WorkbookState::kWorkbook && element.name() == "workbookPr") {
      part.date_1904 = IsTrue(element.Attribute("date1904").value_or(""));
      return WorkbookState::kItem;
    }
    if (parent == WorkbookState::kWorkbook && element.name() == "sheets") {
      return WorkbookState::kSheets;
    }
    if (parent == WorkbookState::kSheets && element.name() == "sheet") {
      if (part.sheets.size() == kMaxSheets) {
        RaiseReadError(place_, "has more than " + std::to_string(kMaxSheets) + " sheets");
      }
      part.sheets.push_back({ShortText(place_, element.Attribute("name")),
                             ShortText(place_, element.RelationshipId())});
      return WorkbookState::kItem;
    }
    return WorkbookState::kOther;
  }
  void Leave(WorkbookState) override {}
  void Take(WorkbookState, std::string_view) override {}

 private:
  ReadPlace place_;
};

enum class TextState { kStart, kTable, kItem, kRun, kText, kOther };

class SharedTextSink : public XmlStates<TextState> {
 public:
  SharedTextSink(std::string file, ReadCounts& counts, Workbook& workbook)
      : place_{.file = std::move(file)}, counts_(counts), workbook_(workbook) {}

 protected:
  TextState Enter(TextState parent, const XmlElement& element) override {
    if (element.vocabulary() != Vocabulary::kSpreadsheet) {
      return TextState::kOther;
    }
    if (parent == TextState::kStart && element.name() == "sst") {
      return TextState::kTable;
    }
    if (parent == TextState::kTable && element.name() == "si") {
      item_.clear();
      return TextState::kItem;
    }
    if (parent == TextState::kItem && element.name() == "r") {
      return TextState::kRun;
    }
    if ((parent == TextState::kItem || parent == TextState::kRun) && element.name() == "t") {
      piece_.clear();
      return TextState::kText;
    }
    return TextState::kOther;
  }
  void Leave(TextState state) override {
    if (state == TextState::kText) {
      item_ += UnescapeXlsxText(piece_);
    } else if (state == TextState::kItem) {
      counts_.AddText(place_, item_.size());
      workbook_.AddText(item_);
    }
  }
  void Take(TextState state, std::string_view text) override {
    if (state == TextState::kText) {
      CheckTextSize(place_, item_.size() + piece_.size() + text.size());
      piece_ += text;
    }
  }

 private:
  ReadPlace place_;
  ReadCounts& counts_;
  Workbook& workbook_;
  std::string item_;
  std::string piece_;
};

enum class StyleState { kStart, kStyles, kFormats, kCellStyles, kItem, kOther };

class StyleSink : public XmlStates<StyleState> {
 public:
  explicit StyleSink(std::string file) : place_{.file = std::move(file)} {}

  std::unordered_map<std::int32_t, std::string> formats;
  std::vector<std::int32_t> cell_styles;  // by the number of their format

 protected:
  StyleState Enter(StyleState parent, const XmlElement& element) override {
    if (element.vocabulary() != Vocabulary::kSpreadsheet) {
      return StyleState::kOther;
    }
    const auto name = element.name();
    if (parent == StyleState::kStart && name == "styleSheet") {
      return StyleState::kStyles;
    }
    if (parent == StyleState::kStyles) {
      return name == "numFmts"   ? StyleState::kFormats
             : name == "cellXfs" ? StyleState::kCellStyles
                                 : StyleState::kOther;
    }
    if (parent == StyleState::kFormats && name == "numFmt") {
      if (formats.size() == kMaxNumberFormats) {
        RaiseReadError(place_,
                       "has more than " + std::to_string(kMaxNumberFormats) + " number formats");
      }
      formats[FormatId(element)] = ShortText(place_, element.Attribute("formatCode"));
      return StyleState::kItem;
    }
    if (parent == StyleState::kCellStyles && name == "xf") {
      if (cell_styles.size() == kMaxCellFormats) {
        RaiseReadError(place_, "has more than " + std::to_string(kMaxCellFormats) + " cell styles");
      }
      cell_styles.push_back(FormatId(element));
      return StyleState::kItem;
    }
    return StyleState::kOther;
  }
  void Leave(StyleState) override {}
  void Take(StyleState, std::string_view) override {}

 private:
  std::int32_t FormatId(const XmlElement& element) const {
    const std::string_view text = element.Attribute("numFmtId").value_or("0");
    std::int32_t id = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), id);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || id < 0) {
      RaiseReadError(place_, Quoted(text) + " is no number of a number format");
    }
    return id;
  }

  ReadPlace place_;
};

}  // namespace

XlsxWorkbookPart ReadXlsxWorkbookPart(Package& package, std::string_view part) {
  WorkbookSink sink(package.file());
  ReadPart(package, part, sink, "workbook");
  return std::move(sink.part);
}

void ReadXlsxSharedTexts(Package& package, std::string_view part, ReadCounts& counts,
                         Workbook& workbook) {
  SharedTextSink sink(package.file(), counts, workbook);
  ReadPart(package, part, sink, "list of texts");
}

std::vector<std::uint16_t> ReadXlsxStyles(Package& package, std::string_view part,
                                          Workbook& workbook) {
  StyleSink sink(package.file());
  ReadPart(package, part, sink, "list of styles");
  std::vector<std::uint16_t> formats;
  formats.reserve(sink.cell_styles.size());
  for (const std::int32_t id : sink.cell_styles) {
    const auto own = sink.formats.find(id);
    std::string_view format = own != sink.formats.end() ? own->second : BuiltInNumberFormat(id);
    if (id == 0 || format.empty()) {
      format = BuiltInNumberFormat(0);
    }
    formats.push_back(workbook.AddNumberFormat(format));
  }
  return formats;
}

}  // namespace nimbrel::spreadsheet
