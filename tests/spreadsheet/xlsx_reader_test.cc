#include <gtest/gtest.h>

#include <string>

#include "spreadsheet/workbook_reader.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {
namespace {

using std::literals::operator""s;

/// What a cell holds in a form that reads well in a failure.
std::string Shown(const Workbook& workbook, const Sheet& sheet, std::string_view place) {
  const auto at = ParseCell(place);
  const Cell* const cell = sheet.Find(at->first_row, at->first_column);
  if (cell == nullptr) {
    return "nothing";
  }
  if (const auto* number = std::get_if<double>(&cell->value)) {
    const bool is_date = workbook.IsDate(workbook.NumberFormatOf(sheet, *cell));
    return (is_date ? "date " : "number ") + std::to_string(*number);
  }
  if (const auto* truth = std::get_if<bool>(&cell->value)) {
    return *truth ? "true" : "false";
  }
  if (const auto* text = std::get_if<TextId>(&cell->value)) {
    return "text " + workbook.Text(*text);
  }
  if (std::holds_alternative<NotComputed>(cell->value)) {
    return "not computed";
  }
  return std::string(ErrorText(std::get<CellError>(cell->value)));
}

std::string ReadCell(const std::string& bytes, std::string_view place = "A1") {
  const Workbook workbook = ReadWorkbookBytes(bytes, "w.xlsx");
  return Shown(workbook, *workbook.sheets().at(0), place);
}

/// A file with one cell in A1, of which the test says the attributes and what is in it.
XlsxFile OneCellFile(const std::string& attributes, const std::string& content) {
  return {.sheets = {"<row r='1'><c r='A1' " + attributes + ">" + content + "</c></row>"}};
}

std::string ReadError(const std::string& bytes) {
  const Raised raised = ErrorOf([&] { ReadWorkbookBytes(bytes, "w.xlsx"); });
  EXPECT_TRUE(raised.number == 0 || raised.number == platform::kApplicationDefined);
  EXPECT_EQ(raised.text.find('\n'), std::string::npos);
  return raised.text;
}

TEST(ReadXlsx, EveryKindOfValueIsRead) {
  EXPECT_EQ(ReadCell(OneCellFile("", "<v>0.25</v>").Bytes()), "number 0.250000");
  EXPECT_EQ(ReadCell(OneCellFile("t='n'", "<v> -1.5E3 </v>").Bytes()), "number -1500.000000");
  EXPECT_EQ(ReadCell(OneCellFile("t='b'", "<v>1</v>").Bytes()), "true");
  EXPECT_EQ(ReadCell(OneCellFile("t='b'", "<v>false</v>").Bytes()), "false");
  EXPECT_EQ(ReadCell(OneCellFile("t='e'", "<v>#DIV/0!</v>").Bytes()), "#DIV/0!");
  EXPECT_EQ(ReadCell(OneCellFile("t='e'", "<v>#SPILL!</v>").Bytes()), "#N/A");
  EXPECT_EQ(ReadCell(OneCellFile("t='str'", "<v>rain</v>").Bytes()), "text rain");
  EXPECT_EQ(ReadCell(OneCellFile("t='d'", "<v>2027-03-31</v>").Bytes()), "date 46477.000000");
  EXPECT_EQ(ReadCell(OneCellFile("t='d'", "<v>2027-03-31T06:00:00.000Z</v>").Bytes()),
            "date 46477.250000");
}

TEST(ReadXlsx, CellsWithoutAValueAreEmpty) {
  EXPECT_EQ(ReadCell(OneCellFile("", "").Bytes()), "nothing");
  EXPECT_EQ(ReadCell(OneCellFile("", "<v/>").Bytes()), "nothing");
  EXPECT_EQ(ReadCell(OneCellFile("t='s'", "<v></v>").Bytes()), "nothing");
  EXPECT_EQ(ReadCell(OneCellFile("t='inlineStr'", "").Bytes()), "nothing");
}

TEST(ReadXlsx, SharedTextsAreFoundByNumber) {
  XlsxFile file = OneCellFile("t='s'", "<v>1</v>");
  file.shared_texts = "<si><t>sun</t></si><si><t> rain </t></si>";
  EXPECT_EQ(ReadCell(file.Bytes()), "text  rain ");
}

TEST(ReadXlsx, RichTextIsReadWithoutItsLooks) {
  XlsxFile file = OneCellFile("t='s'", "<v>0</v>");
  file.shared_texts = "<si><r><rPr><b/></rPr><t>heavy </t></r><r><t>rain</t></r></si>";
  EXPECT_EQ(ReadCell(file.Bytes()), "text heavy rain");
}

TEST(ReadXlsx, PhoneticHintsAreNoText) {
  XlsxFile file = OneCellFile("t='s'", "<v>0</v>");
  file.shared_texts =
      "<si><t>雨</t><rPh sb='0' eb='1'><t>ame</t></rPh><phoneticPr fontId='1'/></si>";
  EXPECT_EQ(ReadCell(file.Bytes()), "text 雨");
  EXPECT_EQ(ReadCell(OneCellFile("t='inlineStr'",
                                 "<is><r><t>雨</t></r><r><t>天</t></r>"
                                 "<rPh sb='0' eb='1'><t>ame</t></rPh></is>")
                         .Bytes()),
            "text 雨天");
}

TEST(ReadXlsx, InlineTextIsRead) {
  EXPECT_EQ(ReadCell(OneCellFile("t='inlineStr'", "<is><t>rain</t></is>").Bytes()), "text rain");
}

TEST(ReadXlsx, EscapedCharactersAreCharacters) {
  EXPECT_EQ(ReadCell(OneCellFile("t='str'", "<v>a_x000D_b_x005F_x0041_</v>").Bytes()),
            "text a\rb_x0041_");
  EXPECT_EQ(ReadCell(OneCellFile("t='inlineStr'", "<is><t>_x0041_&lt;&#66;</t></is>").Bytes()),
            "text A<B");
}

TEST(ReadXlsx, FormulasGiveTheValueThatIsStored) {
  EXPECT_EQ(ReadCell(OneCellFile("", "<f>1+1</f><v>2</v>").Bytes()), "number 2.000000");
  EXPECT_EQ(ReadCell(OneCellFile("t='str'", "<f>A2</f><v>rain</v>").Bytes()), "text rain");
  EXPECT_EQ(ReadCell(OneCellFile("t='str'", "<f>\"\"</f><v></v>").Bytes()), "text ");
  EXPECT_EQ(ReadCell(OneCellFile("t='b'", "<f>TRUE()</f><v>1</v>").Bytes()), "true");
}

TEST(ReadXlsx, AFormulaWithoutAStoredValueIsNotComputed) {
  for (const auto& [attributes, content] : {std::pair{"", "<f>1+1</f>"},
                                            {"", "<f>1+1</f><v></v>"},
                                            {"t='str'", "<f>A2</f>"},
                                            {"t='b'", "<f>A2</f><v/>"}}) {
    EXPECT_EQ(ReadCell(OneCellFile(attributes, content).Bytes()), "not computed");
  }
}

TEST(ReadXlsx, TheFormatTellsADateFromANumber) {
  XlsxFile file{.sheets = {"<row r='1'><c r='A1' s='0'><v>1</v></c><c r='B1' s='1'><v>1</v></c>"
                           "<c r='C1' s='2'><v>1</v></c><c r='D1' s='3'><v>1</v></c>"
                           "<c r='E1' s='4'><v>1</v></c></row>"},
                .styles =
                    "<numFmts><numFmt numFmtId='164' formatCode='dd mmm yyyy'/>"
                    "<numFmt numFmtId='165' formatCode='0 &quot;days&quot;'/></numFmts>"
                    "<cellStyleXfs><xf numFmtId='14'/></cellStyleXfs>"
                    "<cellXfs><xf numFmtId='0'/><xf numFmtId='14'/><xf numFmtId='164'/>"
                    "<xf numFmtId='165'/><xf numFmtId='10'/></cellXfs>"};
  EXPECT_EQ(ReadCell(file.Bytes(), "A1"), "number 1.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "B1"), "date 1.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "C1"), "date 1.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "D1"), "number 1.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "E1"), "number 1.000000");
}

TEST(ReadXlsx, IsoDatesOf1904AreTheSameDays) {
  XlsxFile file = OneCellFile("t='d'", "<v>1904-01-02</v>");
  file.workbook_properties = "<workbookPr date1904='true'/>";
  const Workbook workbook = ReadWorkbookBytes(file.Bytes(), "w.xlsx");
  EXPECT_TRUE(workbook.date_1904());
  EXPECT_EQ(Shown(workbook, *workbook.sheets()[0], "A1"), "date 1.000000");
}

TEST(ReadXlsx, RowsAndCellsWithoutANumberFollowTheLastOne) {
  const XlsxFile file{.sheets = {"<row><c><v>1</v></c><c><v>2</v></c></row>"
                                 "<row r='5'><c r='C5'><v>3</v></c><c><v>4</v></c></row>"
                                 "<row><c><v>5</v></c></row>"}};
  EXPECT_EQ(ReadCell(file.Bytes(), "B1"), "number 2.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "D5"), "number 4.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "A6"), "number 5.000000");
}

TEST(ReadXlsx, CellsMayComeInAnyOrder) {
  const XlsxFile file{.sheets = {"<row r='3'><c r='B3'><v>1</v></c><c r='A3'><v>2</v></c></row>"
                                 "<row r='1'><c r='A1'><v>3</v></c></row>"}};
  EXPECT_EQ(ReadCell(file.Bytes(), "A1"), "number 3.000000");
  EXPECT_EQ(ReadCell(file.Bytes(), "A3"), "number 2.000000");
}

TEST(ReadXlsx, SheetsComeInTheOrderOfTheWorkbook) {
  XlsxFile file{.sheets = {"", "", ""}};
  Parts parts = file.MakeParts();
  std::string& list = parts[1].second;
  const auto first = list.find("<sheet name=\"Sheet1\"");
  const auto second = list.find("<sheet name=\"Sheet2\"");
  const std::string moved = list.substr(first, second - first);
  list.erase(first, second - first).insert(list.find("</sheets>"), moved);
  const Workbook workbook = ReadWorkbookBytes(MakeZip(parts), "w.xlsx");
  ASSERT_EQ(workbook.sheets().size(), 3U);
  EXPECT_EQ(workbook.sheets()[0]->name(), "Sheet2");
  EXPECT_EQ(workbook.sheets()[2]->name(), "Sheet1");
}

/// The message for a workbook of sheets with these names, as they stand in its XML.
std::string NamesError(const std::vector<std::string>& names) {
  XlsxFile file{.sheets = std::vector<std::string>(names.size())};
  Parts parts = file.MakeParts();
  std::string book = PartOf(file.Bytes(), "xl/workbook.xml");
  for (std::size_t i = names.size(); i > 0; --i) {
    const std::string old = "\"Sheet" + std::to_string(i) + "\"";
    book.replace(book.find(old), old.size(), "\"" + names[i - 1] + "\"");
  }
  Replace(parts, "xl/workbook.xml", book);
  return ReadError(MakeZip(parts));
}

TEST(ReadXlsx, SheetsHaveNamesThatExcelTakes) {
  const std::string longest(31, 'x');
  EXPECT_EQ(NamesError({"a", longest, "_x005F_x0041_", "B&amp;B"}), "");
  EXPECT_EQ(NamesError({"a", longest + "x"}),
            "w.xlsx: the name of sheet 2, '" + longest + "x', is longer than 31 characters");
  EXPECT_EQ(NamesError({"a", ""}), "w.xlsx: the name of sheet 2, '', is empty");
  EXPECT_EQ(NamesError({"a/b"}),
            "w.xlsx: the name of sheet 1, 'a/b', has one of the characters : \\ / ? * [ ]");
  EXPECT_EQ(NamesError({"a&#10;b"}),
            "w.xlsx: the name of sheet 1, 'a\xEF\xBF\xBD"
            "b', has a control character");
}

TEST(ReadXlsx, SheetsWhoseNamesDifferByCaseAloneAreRefused) {
  EXPECT_EQ(NamesError({"Rain", "Frost", "RAIN"}),
            "w.xlsx: sheets 1 and 3 have one name in whatever case, 'RAIN'");
  EXPECT_EQ(NamesError({"Böe", "BÖE"}),
            "w.xlsx: sheets 1 and 2 have one name in whatever case, 'BÖE'");
}

TEST(ReadXlsx, ChartsAreLeftOut) {
  Parts parts = XlsxFile{.sheets = {"", "<row><c><v>1</v></c></row>"}}.MakeParts();
  std::string& links = parts[3].second;
  const auto kind = links.find("/worksheet\"");
  ASSERT_NE(kind, std::string::npos);
  links.replace(kind, 11, "/chartsheet\"");
  const Workbook workbook = ReadWorkbookBytes(MakeZip(parts), "w.xlsx");
  ASSERT_EQ(workbook.sheets().size(), 1U);
  EXPECT_EQ(workbook.sheets()[0]->name(), "Sheet2");
}

/// Changes every part of a file in the same way.
std::string WithEachPart(const XlsxFile& file,
                         const std::function<std::string(std::string)>& change) {
  Parts parts = file.MakeParts();
  for (auto& [name, text] : parts) {
    text = change(text);
  }
  return MakeZip(parts);
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TEST(ReadXlsx, StrictFilesAreRead) {
  XlsxFile file = OneCellFile("t='s'", "<v>0</v>");
  file.shared_texts = "<si><t>rain</t></si>";
  const std::string bytes = WithEachPart(file, [](std::string text) {
    text = ReplaceAll(text, "http://schemas.openxmlformats.org/spreadsheetml/2006/main",
                      "http://purl.oclc.org/ooxml/spreadsheetml/main");
    return ReplaceAll(text, "http://schemas.openxmlformats.org/officeDocument/2006/relationships",
                      "http://purl.oclc.org/ooxml/officeDocument/relationships");
  });
  EXPECT_EQ(ReadCell(bytes), "text rain");
}

TEST(ReadXlsx, PrefixesMakeNoDifference) {
  XlsxFile file = OneCellFile("t='s'", "<v>0</v>");
  file.shared_texts = "<si><t>rain</t></si>";
  const std::string bytes = WithEachPart(file, [](std::string text) {
    if (text.find("spreadsheetml") == std::string::npos) {
      return text;
    }
    text = ReplaceAll(text, "xmlns=", "xmlns:x=");
    text = ReplaceAll(text, "xmlns:r=", "xmlns:q=");
    text = ReplaceAll(text, " r:id=", " q:id=");
    text = ReplaceAll(text, "</", "<//");
    text = ReplaceAll(text, "<", "<x:");
    text = ReplaceAll(text, "<x://", "</x:");
    return ReplaceAll(text, "<x:?", "<?");
  });
  EXPECT_EQ(ReadCell(bytes), "text rain");
}

TEST(ReadXlsx, Utf16IsRead) {
  XlsxFile file = OneCellFile("t='s'", "<v>0</v>");
  file.shared_texts = "<si><t>rain</t></si>";
  const std::string bytes = WithEachPart(file, [](const std::string& text) {
    std::string wide = "\xFF\xFE";
    for (const char c : ReplaceAll(text, "UTF-8", "UTF-16")) {
      wide += c;
      wide += '\0';
    }
    return wide;
  });
  EXPECT_EQ(ReadCell(bytes), "text rain");
}

TEST(ReadXlsx, WhatIsNotKnownIsPassedOver) {
  Parts parts = XlsxFile{}.MakeParts();
  Replace(parts, "xl/worksheets/sheet1.xml",
          "<worksheet xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main' "
          "xmlns:o='urn:other'><!-- a --><o:sheetData><row><c><v>9</v></c></row></o:sheetData>"
          "<cols><col min='1' max='2'/></cols><sheetData><row r='1'><c r='A1'><v>1</v>"
          "<extLst><ext><v>8</v></ext></extLst></c></row></sheetData><sheetData2/></worksheet>");
  EXPECT_EQ(ReadCell(MakeZip(parts)), "number 1.000000");
}

TEST(ReadXlsx, TargetsAreResolvedFromTheirPart) {
  for (const char* target :
       {"/xl/worksheets/sheet1.xml", "./worksheets/sheet1.xml", "../xl/worksheets/sheet1.xml",
        "WORKSHEETS/Sheet1.xml", "worksheets/shee%741.xml"}) {
    Parts parts = OneCellFile("", "<v>1</v>").MakeParts();
    parts[3].second = ReplaceAll(parts[3].second, "worksheets/sheet1.xml", target);
    EXPECT_EQ(ReadCell(MakeZip(parts)), "number 1.000000") << target;
  }
}

TEST(ReadXlsx, TheWorkbookMayHaveAnyName) {
  Parts parts = OneCellFile("", "<v>1</v>").MakeParts();
  for (auto& [name, text] : parts) {
    name = ReplaceAll(name, "xl/workbook.xml", "book/main.bok");
    name = ReplaceAll(name, "xl/_rels/workbook.xml.rels", "book/_rels/main.bok.rels");
    name = ReplaceAll(name, "xl/", "book/");
    text = ReplaceAll(text, "xl/workbook.xml", "book/main.bok");
  }
  EXPECT_EQ(ReadCell(MakeZip(parts)), "number 1.000000");
}

TEST(ReadXlsx, BackslashesInNamesAreTakenForSlashes) {
  Parts parts = OneCellFile("", "<v>1</v>").MakeParts();
  for (auto& [name, text] : parts) {
    name = ReplaceAll(name, "/", "\\");
  }
  EXPECT_EQ(ReadCell(MakeZip(parts)), "number 1.000000");
}

TEST(ReadXlsx, TargetsOutsideThePackageAreRefused) {
  for (const char* target : {"../../etc/passwd", "/../sheet1.xml", "worksheets/../../../x.xml"}) {
    Parts parts = XlsxFile{}.MakeParts();
    parts[3].second = ReplaceAll(parts[3].second, "worksheets/sheet1.xml", target);
    EXPECT_EQ(ReadError(MakeZip(parts)), "w.xlsx: refers to '"s + target + "' outside the package");
  }
  Parts parts = XlsxFile{}.MakeParts();
  parts[3].second = ReplaceAll(parts[3].second, "Target=\"worksheets/sheet1.xml\"",
                               "TargetMode=\"External\" Target=\"file:///etc/passwd\"");
  EXPECT_EQ(ReadError(MakeZip(parts)),
            "w.xlsx: refers to 'file:///etc/passwd' outside the package");
}

TEST(ReadXlsx, MissingPartsAreNamed) {
  Parts parts = XlsxFile{}.MakeParts();
  parts.pop_back();
  EXPECT_EQ(ReadError(MakeZip(parts)), "w.xlsx: part 'xl/worksheets/sheet1.xml' is missing");
  EXPECT_EQ(ReadError(MakeZip({{"a.txt", "x"}})), "w.xlsx: is a package, but no .xlsx workbook");
}

TEST(ReadXlsx, ASheetThatIsLinkedNowhereIsNamed) {
  Parts parts = XlsxFile{}.MakeParts();
  parts[3].second = ReplaceAll(parts[3].second, "Id=\"s1\"", "Id=\"other\"");
  EXPECT_EQ(ReadError(MakeZip(parts)),
            "w.xlsx: sheet 'Sheet1': the sheet refers to 's1', which is not among the workbook's "
            "relationships");
}

TEST(ReadXlsx, AWorkbookWithoutSheetsIsRefused) {
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {}}.Bytes()), "w.xlsx: has no sheet with cells");
}

TEST(ReadXlsx, ABinaryWorkbookIsNamedAsSuch) {
  Parts parts = XlsxFile{}.MakeParts();
  parts[0].second = ReplaceAll(parts[0].second, "workbook.xml", "workbook.bin");
  parts[1].first = "xl/workbook.bin";
  EXPECT_EQ(ReadError(MakeZip(parts)), "w.xlsx: is a binary workbook (.xlsb), which is not read");
}

TEST(ReadXlsx, PartsOfAnotherKindAreNotTakenForEmptyOnes) {
  for (const char* part : {"xl/workbook.xml", "xl/sharedStrings.xml", "xl/worksheets/sheet1.xml",
                           "_rels/.rels", "xl/_rels/workbook.xml.rels"}) {
    Parts parts = XlsxFile{}.MakeParts();
    Replace(parts, part, "<html/>");
    EXPECT_NE(ReadError(MakeZip(parts)).find(part), std::string::npos) << part;
  }
}

TEST(ReadXlsx, DamagedXmlIsNamedWithItsLine) {
  Parts parts = XlsxFile{}.MakeParts();
  Replace(parts, "xl/worksheets/sheet1.xml",
          "<worksheet xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'>\n<row>");
  EXPECT_EQ(ReadError(MakeZip(parts)),
            "w.xlsx: sheet 'Sheet1': part 'xl/worksheets/sheet1.xml', line 2: no element found");
}

TEST(ReadXlsx, ADocumentTypeIsRefused) {
  Parts parts = XlsxFile{}.MakeParts();
  Replace(parts, "xl/sharedStrings.xml",
          "<!DOCTYPE sst [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">]>"
          "<sst xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'>"
          "<si><t>&b;</t></si></sst>");
  EXPECT_EQ(ReadError(MakeZip(parts)),
            "w.xlsx: part 'xl/sharedStrings.xml', line 1: a document type is not allowed here");
  Replace(parts, "xl/sharedStrings.xml", "<!DOCTYPE sst SYSTEM \"file:///etc/passwd\"><sst/>");
  EXPECT_NE(ReadError(MakeZip(parts)).find("document type"), std::string::npos);
}

TEST(ReadXlsx, AnEncodingThatIsNotKnownIsRefused) {
  Parts parts = XlsxFile{}.MakeParts();
  Replace(parts, "xl/sharedStrings.xml", "<?xml version='1.0' encoding='x-klingon'?><sst/>");
  EXPECT_NE(ReadError(MakeZip(parts)).find("encoding"), std::string::npos);
}

TEST(ReadXlsx, NestingHasAnEnd) {
  const auto nested = [](int depth) {
    std::string inner;
    for (int i = 0; i < depth; ++i) {
      inner = "<a>" + inner + "</a>";
    }
    // The root and sheetData hold them.
    return XlsxFile{.sheets = {inner}}.Bytes();
  };
  EXPECT_EQ(ReadError(nested(62)), "");
  EXPECT_NE(ReadError(nested(63)).find("nested deeper than 64"), std::string::npos);
}

struct BadCell {
  const char* attributes;
  const char* content;
  const char* reason;
};

TEST(ReadXlsx, CellsThatMakeNoSenseAreNamed) {
  for (const BadCell& bad : {
           BadCell{"", "<v>rain</v>", "'rain' is no number"},
           BadCell{"", "<v>1,5</v>", "'1,5' is no number"},
           BadCell{"", "<v>NaN</v>", "'NaN' is no number"},
           BadCell{"", "<v>INF</v>", "'INF' is no number"},
           BadCell{"", "<v>1e999</v>", "'1e999' is no number"},
           BadCell{"t='s'", "<v>0</v>", "the cell has text number '0', which does not exist"},
           BadCell{"t='s'", "<v>-1</v>", "the cell has text number '-1', which does not exist"},
           BadCell{"t='b'", "<v>2</v>", "'2' is neither true nor false"},
           BadCell{"t='d'", "<v>2027-02-29</v>", "'2027-02-29' is no date"},
           BadCell{"t='d'", "<v>2027-02-28T25:00:00</v>", "'2027-02-28T25:00:00' is no date"},
           BadCell{"t='d'", "<v>31/03/2027</v>", "'31/03/2027' is no date"},
           BadCell{"t='q'", "<v>1</v>", "the cell has the type 'q', which is not known"},
       }) {
    EXPECT_EQ(ReadError(OneCellFile(bad.attributes, bad.content).Bytes()),
              "w.xlsx: sheet 'Sheet1', row 1, column A: "s + bad.reason);
  }
}

TEST(ReadXlsx, PlacesOutsideTheSheetAreNamed) {
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {"<row r='0'/>"}}.Bytes()),
            "w.xlsx: sheet 'Sheet1', row 1: '0' is no row");
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {"<row r='1048577'/>"}}.Bytes()),
            "w.xlsx: sheet 'Sheet1', row 1: '1048577' is no row");
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {"<row r='7'><c r='XFE7'/></row>"}}.Bytes()),
            "w.xlsx: sheet 'Sheet1', row 7: 'XFE7' is no cell");
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {"<row r='1048576'/><row/>"}}.Bytes()),
            "w.xlsx: sheet 'Sheet1', row 1048576: the sheet has too many rows");
  EXPECT_EQ(ReadError(XlsxFile{.sheets = {"<row r='1'><c r='XFD1'/><c/></row>"}}.Bytes()),
            "w.xlsx: sheet 'Sheet1', row 1, column XFD: the row has too many cells");
}

TEST(ReadXlsx, AStyleThatIsNotThereIsNamed) {
  XlsxFile file = OneCellFile("s='1'", "<v>1</v>");
  EXPECT_EQ(ReadCell(file.Bytes()), "number 1.000000") << "without styles no cell has one";
  file.styles = "<cellXfs><xf/></cellXfs>";
  EXPECT_EQ(
      ReadError(file.Bytes()),
      "w.xlsx: sheet 'Sheet1', row 1, column A: the cell has style '1', which does not exist");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
