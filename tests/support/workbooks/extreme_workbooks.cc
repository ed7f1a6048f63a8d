#include "tests/support/workbooks/extreme_workbooks.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>
#include <utility>

#include "spreadsheet/limits.h"
#include "tests/support/workbooks/test_files.h"
#include "tests/support/workbooks/xls_files.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kMebi = std::size_t{1} << 20;
/// What a sheet may inflate to, less some room for the other parts.
constexpr std::size_t kSheetBytes = kMaxInflatedBytes - kMebi;
constexpr std::size_t kStreamBytes = kMaxFileBytes - kMebi;

/// `text` over and over, up to `bytes` bytes in all.
std::string Fill(std::string_view text, std::size_t bytes) {
  std::string filled;
  filled.reserve(bytes);
  while (filled.size() + text.size() <= bytes) {
    filled += text;
  }
  return filled;
}

/// What `make` makes of the numbers from 0 on, up to `bytes` bytes in all.
template <class Make>
std::string FillNumbered(std::size_t bytes, const Make& make) {
  std::string filled;
  filled.reserve(bytes + kMebi);
  for (std::size_t i = 0; filled.size() < bytes; ++i) {
    filled += make(i);
  }
  return filled;
}

std::string SheetOf(std::string data) {
  return XlsxFile{.sheets = {std::move(data)}}.Bytes();
}
std::string TextsOf(std::string texts) {
  return XlsxFile{.shared_texts = std::move(texts)}.Bytes();
}
std::string XlsOf(std::string globals, std::string sheet) {
  return XlsFile{.globals = StyleRecord(0) + std::move(globals), .sheets = {std::move(sheet)}}
      .Bytes();
}

std::string Record(unsigned type, std::string_view data) {
  return BiffMaker().Add(type, data).bytes();
}

/// The rows and columns of a sheet in which every row has eight cells.
struct Place {
  std::size_t row, column;
};
Place PlaceOf(std::size_t i) {
  return {i / 8 + 1, i % 8 + 2};
}
std::string NameOf(const Place& place) {
  return static_cast<char>('A' + place.column - 1) + std::to_string(place.row);
}

/// As many sheets of weather as a large project has, each as an export writes it.
std::string RealWorkbook(std::size_t sheets, std::size_t rows) {
  std::string data;
  for (std::size_t row = 6; row < 6 + rows; ++row) {
    const std::string r = std::to_string(row);
    data += "<row r=\"" + r + "\" spans=\"1:9\">";
    for (const char column : std::string_view("BCDEFGHI")) {
      const bool is_text = column == 'B';
      data += std::string("<c r=\"") + column + r +
              (is_text ? "\" s=\"1\" t=\"s\"><v>" : "\" s=\"1\"><v>") +
              (is_text ? std::to_string(row - 6) : std::to_string(46'000 + row)) + "</v></c>";
    }
    data += "</row>";
  }
  std::string texts;
  for (std::size_t row = 0; row < rows; ++row) {
    texts += "<si><t>Heavy rain and gales, week " + std::to_string(row) + "</t></si>";
  }
  return XlsxFile{.sheets = std::vector<std::string>(sheets, data),
                  .shared_texts = texts,
                  .styles = "<cellXfs><xf/><xf numFmtId='15'/></cellXfs>"}
      .Bytes();
}

std::vector<ExtremeWorkbook> LargeXml() {
  return {
      {"xlsx: 500 sheets of 200 rows", [] { return RealWorkbook(500, 200); }, ""},
      {"xlsx: blanks", [] { return SheetOf(Fill(" ", kSheetBytes)); }, ""},
      {"xlsx: line ends", [] { return SheetOf(Fill("\n", kSheetBytes)); }, "runs of text"},
      {"xlsx: empty elements", [] { return SheetOf(Fill("<a/>", kSheetBytes)); },
       "elements and attributes"},
      {"xlsx: elements with attributes",
       [] { return SheetOf(Fill("<a b='' c='' d='' e='' f='' g=''/>", kSheetBytes)); },
       "elements and attributes"},
      {"xlsx: one element of many attributes",
       [] {
         const auto attributes = FillNumbered(
             kMebi / 16, [](std::size_t i) { return " a" + std::to_string(i) + "=''"; });
         return SheetOf(Fill("<a" + attributes + "/>", kSheetBytes));
       },
       "elements and attributes"},
      {"xlsx: elements of different names",
       [] {
         return SheetOf(FillNumbered(
             kSheetBytes, [](std::size_t i) { return "<a" + std::to_string(i) + "/>"; }));
       },
       "its names take more than 16 MiB"},
      {"xlsx: attributes of different names",
       [] {
         return SheetOf(FillNumbered(
             kSheetBytes, [](std::size_t i) { return "<a a" + std::to_string(i) + "=''/>"; }));
       },
       "its names take more than 16 MiB"},
      {"xlsx: namespaces",
       [] {
         return SheetOf(FillNumbered(kSheetBytes, [](std::size_t i) {
           return "<a xmlns:a" + std::to_string(i) + "='u" + std::to_string(i) + "'/>";
         }));
       },
       "its names take more than 16 MiB"},
      {"xlsx: entities", [] { return SheetOf(Fill("&amp;", kSheetBytes)); }, "runs of text"},
      {"xlsx: CDATA", [] { return SheetOf(Fill("<![CDATA[]]>", kSheetBytes)); }, ""},
      {"xlsx: instructions", [] { return SheetOf(Fill("<?a?>", kSheetBytes)); }, ""},
      {"xlsx: small comments", [] { return SheetOf(Fill("<!---->", kSheetBytes)); }, ""},
      {"xlsx: large comments",
       [] {
         return SheetOf(
             Fill("<!--" + std::string(kMaxXmlTokenBytes * 9 / 10, 'x') + "-->", kSheetBytes));
       },
       ""},
      {"xlsx: large attributes",
       [] {
         return SheetOf(
             Fill("<a b='" + std::string(kMaxXmlTokenBytes * 9 / 10, 'x') + "'/>", kSheetBytes));
       },
       ""},
      {"xlsx: what hardly packs",
       [] {
         std::mt19937 random(1);
         std::string data(kMaxFileBytes * 5 / 4, ' ');  // six bits of eight a byte
         for (char& c : data) {
           c = static_cast<char>('@' + random() % 60);
         }
         return SheetOf(std::move(data));
       },
       ""},
      {"xlsx: UTF-16",
       [] {
         Parts parts = XlsxFile{}.MakeParts();
         Replace(parts, "xl/worksheets/sheet1.xml",
                 "\xFF\xFE" + Wide("<worksheet xmlns='http://schemas.openxmlformats.org/"
                                   "spreadsheetml/2006/main'><sheetData>" +
                                   Fill("<a/>", kSheetBytes / 2) + "</sheetData></worksheet>"));
         return MakeZip(parts);
       },
       "elements and attributes"},
      {"xlsx: one part for many sheets",
       [] {
         XlsxFile file{.sheets = {Fill("<c/>", kMebi)}};
         Parts parts = file.MakeParts();
         std::string list;
         for (int i = 0; i < 600; ++i) {
           list += "<sheet name='" + std::to_string(i) + "' r:id='s1'/>";
         }
         Replace(parts, "xl/workbook.xml",
                 "<workbook xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'"
                 " xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'>"
                 "<sheets>" +
                     list + "</sheets></workbook>");
         return MakeZip(parts);
       },
       "elements and attributes"}};
}

std::vector<ExtremeWorkbook> ManyCells() {
  return {
      {"xlsx: empty cells", [] { return SheetOf("<row>" + Fill("<c/>", 60'000) + "</row>"); }, ""},
      {"xlsx: as many cells as there may be",
       [] {
         const std::string row = "<row>" + Fill("<c><v>1</v></c>", 15'000) + "</row>";
         return SheetOf(Fill(row, row.size() * (kMaxCells / 1'000)));
       },
       ""},
      {"xlsx: cells with places",
       [] {
         return SheetOf("<row>" +
                        FillNumbered(kMaxCells * 28,
                                     [](std::size_t i) {
                                       return "<c r='" + NameOf(PlaceOf(i % 8'000'000)) +
                                              "'><v>1</v></c>";
                                     }) +
                        "</row>");
       },
       "more than 1000000 cells"},
      {"xlsx: cells in no order",
       [] {
         return SheetOf("<row>" +
                        FillNumbered(kMaxCells * 28,
                                     [](std::size_t i) {
                                       return "<c r='" +
                                              NameOf(PlaceOf(i * 2'654'435'761 % 8'000'000)) +
                                              "'><v>1</v></c>";
                                     }) +
                        "</row>");
       },
       "more than 1000000 cells"},
      {"xlsx: as many cells as there may be, in no order",
       [] {
         std::string cells;
         for (std::size_t i = 0; i < kMaxCells; ++i) {
           cells += "<c r='" + NameOf(PlaceOf(i * 2'654'435'761 % 8'000'000)) + "'><v>1</v></c>";
         }
         return SheetOf("<row>" + cells + "</row>");
       },
       ""},
      {"xlsx: much of everything",
       [] {
         std::mt19937 random(1);
         return SheetOf("<row>" +
                        FillNumbered(kSheetBytes,
                                     [&](std::size_t i) {
                                       return "<c r='" +
                                              NameOf(PlaceOf(i * 2'654'435'761 % 8'000'000)) +
                                              "' t='inlineStr'><is><t>" + std::to_string(random()) +
                                              "and something more</t></is></c>";
                                     }) +
                        "</row>");
       },
       ""},
      {"xlsx: numbers of many digits",
       [] {
         return SheetOf("<row>" +
                        Fill("<c r='A1'><v>1.2345678901234567e-300</v></c>", kSheetBytes) +
                        "</row>");
       },
       "more than 1000000 cells"},
      {"xlsx: numbers of very many digits",
       [] {
         return SheetOf(
             "<row>" +
             Fill("<c r='A1'><v>1." + std::string(30'000, '7') + "</v></c>", kSheetBytes) +
             "</row>");
       },
       ""},
      {"xlsx: inline texts",
       [] {
         return SheetOf("<row>" +
                        Fill("<c r='A1' t='inlineStr'><is><t>ab</t></is></c>", kSheetBytes) +
                        "</row>");
       },
       "more than 1000000 texts"},
      {"xlsx: inline texts of many runs",
       [] {
         return SheetOf("<row><c r='A1' t='inlineStr'><is>" + Fill("<r><t>a</t></r>", kSheetBytes) +
                        "</is></c></row>");
       },
       "longer than 32767"},
      {"xlsx: empty shared texts", [] { return TextsOf(Fill("<si/>", kSheetBytes)); },
       "more than 1000000 texts"},
      {"xlsx: shared texts",
       [] { return TextsOf(Fill("<si><t>Heavy rain and gales, week 12</t></si>", kSheetBytes)); },
       "more than 1000000 texts"},
      {"xlsx: long shared texts",
       [] {
         return TextsOf(Fill("<si><t>" + std::string(32'000, 'x') + "</t></si>", kSheetBytes));
       },
       "more than 32 MiB of texts"},
      {"xlsx: shared texts of escapes",
       [] { return TextsOf(Fill("<si><t>" + Fill("_x0041_", 70'000) + "</t></si>", kSheetBytes)); },
       ""},
      {"xlsx: number formats",
       [] {
         return XlsxFile{.styles = "<numFmts>" +
                                   FillNumbered(kSheetBytes,
                                                [](std::size_t i) {
                                                  const std::string id = std::to_string(i);
                                                  return "<numFmt numFmtId='" + id +
                                                         "' formatCode='" + id +
                                                         std::string(1'000, '0') + "'/>";
                                                }) +
                                   "</numFmts>"}
             .Bytes();
       },
       "more than 10000 number formats"},
      {"xlsx: relationships",
       [] {
         Parts parts = XlsxFile{}.MakeParts();
         Replace(parts, "xl/_rels/workbook.xml.rels",
                 "<Relationships "
                 "xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" +
                     FillNumbered(kSheetBytes,
                                  [](std::size_t i) {
                                    return "<Relationship Id='" + std::to_string(i) +
                                           std::string(6'000, 'x') + "'/>";
                                  }) +
                     "</Relationships>");
         return MakeZip(parts);
       },
       "a name that is too long"},
      {"xlsx: sheets that look far for their part",
       [] {
         std::string list;
         std::string links;
         for (std::size_t i = 0; i < kMaxRelationships - 3; ++i) {
           const std::string id = std::string(900, 'x') + std::to_string(100'000 + i);
           links += "<Relationship Id='" + id +
                    "' Type='http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
                    "worksheet' Target='worksheets/sheet1.xml'/>";
           if (i + kMaxSheets >= kMaxRelationships - 3) {
             list += "<sheet name='" + std::to_string(i) + "' r:id='" + id + "'/>";
           }
         }
         Parts parts = XlsxFile{}.MakeParts();
         Replace(parts, "xl/workbook.xml",
                 "<workbook xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'"
                 " xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'>"
                 "<sheets>" +
                     list + "</sheets></workbook>");
         Replace(parts, "xl/_rels/workbook.xml.rels",
                 "<Relationships "
                 "xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" +
                     links + "</Relationships>");
         return MakeZip(parts);
       },
       ""},
  };
}

std::vector<ExtremeWorkbook> OddPackages() {
  return {
      {"xlsx: parts with long names",
       [] {
         Parts parts = XlsxFile{}.MakeParts();
         const std::size_t each = kStreamBytes / 2 / kMaxParts;
         while (parts.size() < kMaxParts) {
           parts.emplace_back(std::to_string(parts.size()) + std::string(each, 'x'), "");
         }
         return MakeZip(parts);
       },
       ""},
      {"xlsx: many ends of a directory",
       [] {
         Parts parts = XlsxFile{}.MakeParts();
         while (parts.size() < kMaxParts) {
           parts.emplace_back(std::to_string(parts.size()), "");
         }
         std::string bytes = MakeZip(parts);
         const std::string end = bytes.substr(bytes.rfind("PK\5\6"));
         // All of them show the same directory.
         return bytes + Fill(end, 60'000);
       },
       "more than one directory"},
      {"no workbook at all", [] { return std::string(kMaxFileBytes, 'x'); },
       "neither .xlsx nor .xls"},
      {"xlsx: only its first bytes", [] { return "PK\3\4" + std::string(kStreamBytes, 'x'); },
       "cut short"},
  };
}

std::string CellPlace(std::size_t i) {
  return Bytes16(static_cast<unsigned>(i / 250 % 65'536)) +
         Bytes16(static_cast<unsigned>(i % 250)) + Bytes16(0);
}

std::vector<ExtremeWorkbook> LargeXls() {
  return {
      {"xls: numbers",
       [] {
         return XlsOf("", FillNumbered(kStreamBytes, [](std::size_t i) {
                        return Record(0x0203, CellPlace(i) + BytesOf(1));
                      }));
       },
       "more than 1000000 cells"},
      {"xls: numbers in no order",
       [] {
         return XlsOf("", FillNumbered(kStreamBytes, [](std::size_t i) {
                        return Record(0x0203,
                                      CellPlace(i * 2'654'435'761 % 16'000'000) + BytesOf(1));
                      }));
       },
       "more than 1000000 cells"},
      {"xls: many numbers a record",
       [] {
         std::string many = Bytes16(0) + Bytes16(0);
         many += Fill(Bytes16(0) + Bytes32(6), 6 * 250) + Bytes16(249);
         return XlsOf("", Fill(Record(0x00BD, many), kStreamBytes));
       },
       "more than 1000000 cells"},
      {"xls: texts in cells",
       [] {
         return XlsOf("", FillNumbered(kStreamBytes, [](std::size_t i) {
                        return Record(0x0204, CellPlace(i) + Bytes16(2) + Narrow8("ab"));
                      }));
       },
       "more than 1000000 texts"},
      {"xls: long texts in cells",
       [] {
         return XlsOf("", FillNumbered(kStreamBytes, [](std::size_t i) {
                        return Record(0x0204, CellPlace(i) + Bytes16(8'000) +
                                                  Narrow8(std::string(8'000, '\xE9')));
                      }));
       },
       "more than 32 MiB of texts"},
      {"xls: much of everything",
       [] {
         return XlsOf("", FillNumbered(kStreamBytes, [](std::size_t i) {
                        return Record(0x0204, CellPlace(i * 2'654'435'761 % 16'000'000) +
                                                  Bytes16(16) + Narrow8(std::string(16, '\xE9')));
                      }));
       },
       "more than 1000000 texts"},
      {"xls: empty shared texts",
       [] {
         return XlsOf(Record(0x00FC, Bytes32(1) + Bytes32(100'000'000)) +
                          Fill(Record(0x003C, Fill(std::string(3, '\0'), 8'000)), kStreamBytes),
                      "");
       },
       "more than 1000000 texts"},
      {"xls: shared texts",
       [] {
         return XlsOf(
             Record(0x00FC, Bytes32(1) + Bytes32(100'000'000)) +
                 Fill(Record(0x003C, Fill(Bytes16(30) + Narrow8(std::string(30, 'x')), 8'000)),
                      kStreamBytes),
             "");
       },
       ""},
      {"xls: records without data", [] { return XlsOf("", Fill(Record(0, ""), kStreamBytes)); },
       ""},
      {"xls: continuations without data",
       [] { return XlsOf("", Record(0x0204, "") + Fill(Record(0x003C, ""), kStreamBytes)); },
       "continued more than 65536 times"},
      {"xls: number formats",
       [] {
         return XlsOf(FillNumbered(kStreamBytes,
                                   [](std::size_t i) {
                                     return Record(0x041E,
                                                   Bytes16(static_cast<unsigned>(i) & 0xFFFF) +
                                                       Bytes16(2'000) +
                                                       Narrow8(std::string(2'000, 'y')));
                                   }),
                      "");
       },
       "a name that is too long"},
      {"xls: a large directory",
       [] {
         std::vector<std::pair<std::string, std::string>> streams = {
             {"Workbook", XlsFile{}.Stream()}};
         while (streams.size() < kStreamBytes / 128) {
           streams.emplace_back("An entry with a long name", "");
         }
         return MakeCompoundFile(streams, kLargeSectors);
       },
       "more than 10000 parts"},
      {"xls: large small streams",
       [] {
         std::vector<std::pair<std::string, std::string>> streams = {
             {"Workbook", XlsFile{}.Stream()}};
         for (std::size_t size = 0; size < kStreamBytes * 7 / 8; size += 4'000) {
           streams.emplace_back("x", std::string(4'000, 'x'));
         }
         return MakeCompoundFile(streams, kLargeSectors);
       },
       ""},
      {"xls: a stream that is not the workbook",
       [] {
         return MakeCompoundFile(
             {{"Workbook", XlsFile{}.Stream()}, {"Other", std::string(kStreamBytes, 'x')}},
             kLargeSectors);
       },
       ""},
  };
}

}  // namespace

std::vector<ExtremeWorkbook> ExtremeWorkbooks() {
  std::vector<ExtremeWorkbook> all;
  for (auto& group : {LargeXml(), ManyCells(), OddPackages(), LargeXls()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

}  // namespace nimbrel::spreadsheet
