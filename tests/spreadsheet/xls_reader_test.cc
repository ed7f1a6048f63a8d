#include <gtest/gtest.h>

#include <string>

#include "spreadsheet/workbook_reader.h"
#include "tests/support/workbooks/test_files.h"
#include "tests/support/workbooks/xls_files.h"

namespace nimbrel::spreadsheet {
namespace {

using std::literals::operator""s;

std::string Shown(const Workbook& workbook, std::int32_t row, std::int32_t column) {
  const Sheet& sheet = *workbook.sheets().at(0);
  const Cell* const cell = sheet.Find(row, column);
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

/// Reads a file whose styles are General, a date, and whatever `globals` adds.
Workbook Read(const std::string& cells, const std::string& globals = {},
              unsigned version = 0x0600) {
  return ReadWorkbookBytes(XlsFile{.version = version,
                                   .globals = StyleRecord(0) + StyleRecord(14) + globals,
                                   .sheets = {cells}}
                               .Bytes(),
                           "w.xls");
}

std::string ReadError(const std::string& bytes) {
  const Raised raised = ErrorOf([&] { ReadWorkbookBytes(bytes, "w.xls"); });
  EXPECT_TRUE(raised.number == 0 || raised.number == platform::kApplicationDefined);
  EXPECT_EQ(raised.text.find('\n'), std::string::npos);
  return raised.text;
}

/// Row, column and style of a cell, rows and columns from 0 as the file counts them.
std::string At(unsigned row, unsigned column, unsigned style = 0) {
  return Bytes16(row) + Bytes16(column) + Bytes16(style);
}

std::string Record(unsigned type, const std::string& data) {
  return BiffMaker().Add(type, data).bytes();
}

/// A formula with the eight bytes of its result.
std::string Formula(unsigned row, unsigned column, const std::string& result) {
  return Record(0x0006, At(row, column) + result + std::string(8, '\0'));
}

/// The result of a formula that is no number.
std::string Result(char kind, char value = 0) {
  return kind + "\0"s + value + "\0\0\0\xFF\xFF"s;
}

/// A table of shared texts of which each is given as the file has it.
std::string SharedTexts(unsigned count, const std::string& texts) {
  return Record(0x00FC, Bytes32(count) + Bytes32(count) + texts);
}

std::string ReadRk(std::uint32_t rk) {
  return Shown(Read(Record(0x027E, At(0, 0) + Bytes32(rk))), 1, 1);
}

TEST(ReadXls, NumbersAreRead) {
  const Workbook workbook = Read(Record(0x0203, At(6, 2) + BytesOf(0.25)));
  EXPECT_EQ(Shown(workbook, 7, 3), "number 0.250000");
  EXPECT_EQ(workbook.sheets()[0]->name(), "Sheet1");
}

TEST(ReadXls, NumbersOf30BitsAreRead) {
  EXPECT_EQ(ReadRk(5U << 2 | 2), "number 5.000000");
  EXPECT_EQ(ReadRk(static_cast<std::uint32_t>(-5) << 2 | 2), "number -5.000000");
  EXPECT_EQ(ReadRk(1234U << 2 | 3), "number 12.340000");
  // The upper half of the double 1.5 is 0x3FF80000.
  EXPECT_EQ(ReadRk(0x3FF80000), "number 1.500000");
  EXPECT_EQ(ReadRk(0x3FF80001), "number 0.015000");
}

TEST(ReadXls, ManyNumbersInOneRecordAreRead) {
  const std::string cells =
      Record(0x00BD, Bytes16(0) + Bytes16(1) + Bytes16(0) + Bytes32(7U << 2 | 2) + Bytes16(1) +
                         Bytes32(8U << 2 | 2) + Bytes16(2));
  const Workbook workbook = Read(cells);
  EXPECT_EQ(Shown(workbook, 1, 1), "nothing");
  EXPECT_EQ(Shown(workbook, 1, 2), "number 7.000000");
  EXPECT_EQ(Shown(workbook, 1, 3), "date 8.000000");
  EXPECT_EQ(Shown(workbook, 1, 4), "nothing");
}

TEST(ReadXls, TruthAndErrorsAreRead) {
  const Workbook workbook =
      Read(Record(0x0205, At(0, 0) + "\1\0"s) + Record(0x0205, At(0, 1) + "\x2A\1"s) +
           Record(0x0205, At(0, 2) + "\x99\1"s));
  EXPECT_EQ(Shown(workbook, 1, 1), "true");
  EXPECT_EQ(Shown(workbook, 1, 2), "#N/A");
  EXPECT_EQ(Shown(workbook, 1, 3), "#N/A");
}

TEST(ReadXls, BlankCellsAreEmpty) {
  EXPECT_EQ(Shown(Read(Record(0x0201, At(0, 0))), 1, 1), "nothing");
}

TEST(ReadXls, TextInTheCellIsRead) {
  EXPECT_EQ(Shown(Read(Record(0x0204, At(0, 0) + Bytes16(4) + Narrow8("rain"))), 1, 1),
            "text rain");
  EXPECT_EQ(Shown(Read(Record(0x0204, At(0, 0) + Bytes16(2) + "\1"s + "\xE8\x96\xAC\x20"s)), 1, 1),
            "text \u96E8\u20AC");
}

TEST(ReadXls, SharedTextsAreFoundByNumber) {
  const std::string texts = Bytes16(3) + Narrow8("sun") + Bytes16(4) + "\1"s + Wide("rain");
  const Workbook workbook =
      Read(Record(0x00FD, At(0, 0) + Bytes32(1)) + Record(0x00FD, At(0, 1) + Bytes32(0)),
           SharedTexts(2, texts));
  EXPECT_EQ(Shown(workbook, 1, 1), "text rain");
  EXPECT_EQ(Shown(workbook, 1, 2), "text sun");
}

TEST(ReadXls, LooksAndPhoneticHintsOfATextArePassedOver) {
  // Flags 8: rich, 4: phonetic.
  const std::string texts = Bytes16(4) + "\x08"s + Bytes16(2) + "rain" + std::string(8, 'r') +
                            Bytes16(3) + "\x04"s + Bytes32(5) + "sun" + std::string(5, 'p') +
                            Bytes16(4) + "\x0D"s + Bytes16(1) + Bytes32(3) + Wide("hail") +
                            std::string(7, 'x') + Bytes16(3) + Narrow8("fog");
  std::string cells;
  for (unsigned i = 0; i < 4; ++i) {
    cells += Record(0x00FD, At(i, 0) + Bytes32(i));
  }
  const Workbook workbook = Read(cells, SharedTexts(4, texts));
  EXPECT_EQ(Shown(workbook, 1, 1), "text rain");
  EXPECT_EQ(Shown(workbook, 2, 1), "text sun");
  EXPECT_EQ(Shown(workbook, 3, 1), "text hail");
  EXPECT_EQ(Shown(workbook, 4, 1), "text fog");
}

TEST(ReadXls, ATextGoesOnInTheNextRecordWhereverItIsCut) {
  // The characters of "thunderstorm", of one and two bytes, cut at each place; what goes on says
  // anew how wide it is.
  const std::string word = "thunderstorm";
  for (std::size_t cut = 0; cut <= word.size(); ++cut) {
    for (const auto& [first, second] : {std::pair{false, false}, {true, false}, {false, true}}) {
      const auto piece = [](bool wide, const std::string& text) {
        return wide ? Wide(text) : text;
      };
      const std::string texts =
          Bytes16(12) + (first ? "\1"s : "\0"s) + piece(first, word.substr(0, cut));
      const std::string rest =
          (cut == word.size() ? "" : (second ? "\1"s : "\0"s) + piece(second, word.substr(cut))) +
          Bytes16(3) + Narrow8("fog");
      const Workbook workbook =
          Read(Record(0x00FD, At(0, 0) + Bytes32(0)) + Record(0x00FD, At(0, 1) + Bytes32(1)),
               SharedTexts(2, texts) + Record(0x003C, rest));
      EXPECT_EQ(Shown(workbook, 1, 1), "text thunderstorm") << cut;
      EXPECT_EQ(Shown(workbook, 1, 2), "text fog") << cut;
    }
  }
}

TEST(ReadXls, LooksOfATextGoOnWithoutSayingAnything) {
  const std::string texts = Bytes16(4) + "\x08"s + Bytes16(2) + "rain" + "rrr";
  const Workbook workbook =
      Read(Record(0x00FD, At(0, 0) + Bytes32(1)),
           SharedTexts(2, texts) + Record(0x003C, "rrrrr" + Bytes16(3) + Narrow8("fog")));
  EXPECT_EQ(Shown(workbook, 1, 1), "text fog");
}

TEST(ReadXls, FormulasGiveTheValueThatIsStored) {
  const Workbook workbook =
      Read(Formula(0, 0, BytesOf(2.5)) + Formula(0, 1, Result(1, 1)) +
           Formula(0, 2, Result(2, 0x07)) + Formula(0, 3, Result(3)) + Formula(0, 4, Result(0)) +
           Record(0x0207, Bytes16(4) + Narrow8("rain")) + Formula(0, 5, Result(0)) +
           Record(0x04BC, std::string(8, '\0')) + Record(0x0207, Bytes16(3) + Narrow8("fog")));
  EXPECT_EQ(Shown(workbook, 1, 1), "number 2.500000");
  EXPECT_EQ(Shown(workbook, 1, 2), "true");
  EXPECT_EQ(Shown(workbook, 1, 3), "#DIV/0!");
  EXPECT_EQ(Shown(workbook, 1, 4), "text ");
  EXPECT_EQ(Shown(workbook, 1, 5), "text rain");
  EXPECT_EQ(Shown(workbook, 1, 6), "text fog");
}

TEST(ReadXls, AFormulaWithoutAStoredValueIsNotComputed) {
  const std::string number = Record(0x0203, At(7, 0) + BytesOf(1));
  for (const std::string& cells :
       {Formula(6, 2, Result(0)), Formula(6, 2, Result(0)) + number, Formula(6, 2, Result(9))}) {
    EXPECT_EQ(Shown(Read(cells), 7, 3), "not computed");
  }
  EXPECT_EQ(Shown(Read(Formula(6, 2, Result(0)) + number), 8, 1), "number 1.000000");
}

TEST(ReadXls, SheetsWhoseNamesDifferByCaseAloneAreRefused) {
  const auto entry = [](const std::string& name) {
    return BiffMaker()
        .Add(0x0085,
             Bytes32(0) + std::string(2, '\0') + static_cast<char>(name.size()) + Narrow8(name))
        .bytes();
  };
  EXPECT_EQ(ReadError(XlsFile{.globals = entry("SHEET1")}.Bytes()),
            "w.xls: sheets 1 and 2 have one name in whatever case, 'Sheet1'");
  EXPECT_EQ(
      ReadError(XlsFile{.globals = entry(std::string(32, 'x'))}.Bytes()),
      "w.xls: the name of sheet 1, '" + std::string(32, 'x') + "', is longer than 31 characters");
}

TEST(ReadXls, ATextThatNoFormulaWaitsForIsPassedOver) {
  EXPECT_EQ(Shown(Read(Record(0x0207, Bytes16(4) + Narrow8("rain"))), 1, 1), "nothing");
}

TEST(ReadXls, TheFormatTellsADateFromANumber) {
  const auto format = [](unsigned id, const std::string& text) {
    return Record(0x041E,
                  Bytes16(id) + Bytes16(static_cast<unsigned>(text.size())) + Narrow8(text));
  };
  const std::string globals = format(164, "dd mmm yyyy") + format(165, "0 \"days\"") +
                              format(0, "Standard") + StyleRecord(164) + StyleRecord(165) +
                              StyleRecord(0);
  std::string cells;
  for (unsigned style = 0; style < 5; ++style) {
    cells += Record(0x0203, At(0, style, style) + BytesOf(1));
  }
  const Workbook workbook = Read(cells, globals);
  EXPECT_EQ(Shown(workbook, 1, 1), "number 1.000000");
  EXPECT_EQ(Shown(workbook, 1, 2), "date 1.000000");
  EXPECT_EQ(Shown(workbook, 1, 3), "date 1.000000");
  EXPECT_EQ(Shown(workbook, 1, 4), "number 1.000000");
  EXPECT_EQ(Shown(workbook, 1, 5), "number 1.000000");
}

TEST(ReadXls, TheDateSystemIsRead) {
  EXPECT_FALSE(Read("").date_1904());
  EXPECT_TRUE(Read("", Record(0x0022, Bytes16(1))).date_1904());
}

TEST(ReadXls, AChartInASheetIsPassedOver) {
  const std::string chart = BiffMaker().Begin(0x20).bytes() +
                            Record(0x0203, At(0, 0) + BytesOf(9)) + BiffMaker().End().bytes();
  const Workbook workbook = Read(chart + Record(0x0203, At(0, 1) + BytesOf(1)));
  EXPECT_EQ(Shown(workbook, 1, 1), "nothing");
  EXPECT_EQ(Shown(workbook, 1, 2), "number 1.000000");
}

TEST(ReadXls, SheetsOfOtherKindsAreLeftOut) {
  const std::string chart =
      Record(0x0085, Bytes32(0) + "\0\2"s + '\3' + Narrow8("pie"));  // 2: a chart
  const Workbook workbook = Read(Record(0x0203, At(0, 0) + BytesOf(1)), chart);
  ASSERT_EQ(workbook.sheets().size(), 1U);
  EXPECT_EQ(workbook.sheets()[0]->name(), "Sheet1");
}

TEST(ReadXls, OlderWorkbooksHaveTextsOfTheirCodePage) {
  constexpr unsigned kBiff5 = 0x0500;
  const std::string cells = Record(0x0204, At(0, 0) + Bytes16(5) + "R\xE4gen") +
                            Record(0x0203, At(0, 1, 1) + BytesOf(1)) +
                            Record(0x00D6, At(0, 2) + Bytes16(3) + "fog" + '\1' + "xx") +
                            Formula(0, 3, Result(0)) + Record(0x0207, Bytes16(3) + "ice");
  const Workbook western = Read(cells, "", kBiff5);
  EXPECT_EQ(Shown(western, 1, 1), "text Rägen");
  EXPECT_EQ(Shown(western, 1, 2), "date 1.000000");
  EXPECT_EQ(Shown(western, 1, 3), "text fog");
  EXPECT_EQ(Shown(western, 1, 4), "text ice");
  EXPECT_EQ(western.sheets()[0]->name(), "Sheet1");
  // 0xE4 is another letter in the page of Cyrillic.
  EXPECT_EQ(Shown(Read(cells, Record(0x0042, Bytes16(1251)), kBiff5), 1, 1), "text Rдgen");
}

TEST(ReadXls, OlderWorkbooksHaveShorterFormats) {
  const std::string format = Record(0x041E, Bytes16(164) + '\2' + "dd") + StyleRecord(164);
  EXPECT_EQ(Shown(Read(Record(0x0203, At(0, 0, 2) + BytesOf(1)), format, 0x0500), 1, 1),
            "date 1.000000");
}

TEST(ReadXls, ACodePageThatIsNotKnownIsNamed) {
  EXPECT_EQ(ReadError(XlsFile{.version = 0x0500, .globals = Record(0x0042, Bytes16(9999))}.Bytes()),
            "w.xls: has texts of code page 9999, which is not known");
}

TEST(ReadXls, LargeAndSmallStreamsAreRead) {
  std::string cells;
  for (unsigned row = 0; row < 20'000; ++row) {
    cells += Record(0x0203, At(row, 0) + BytesOf(row));
  }
  // Over 109 sectors of the table would need a second list of them; this is well below.
  const Workbook workbook = Read(cells);
  EXPECT_EQ(workbook.sheets()[0]->cells().size(), 20'000U);
  EXPECT_EQ(Shown(workbook, 20'000, 1), "number 19999.000000");
}

TEST(ReadXls, TheNewerOfTwoWorkbooksIsRead) {
  const auto stream = [](unsigned version, double number) {
    return XlsFile{.version = version,
                   .globals = StyleRecord(0),
                   .sheets = {Record(0x0203, At(0, 0) + BytesOf(number))}}
        .Stream();
  };
  const std::string bytes =
      MakeCompoundFile({{"Book", stream(0x0500, 5)}, {"Workbook", stream(0x0600, 8)}});
  EXPECT_EQ(Shown(ReadWorkbookBytes(bytes, "w.xls"), 1, 1), "number 8.000000");
}

TEST(ReadXls, EncryptedFilesAreNamedAsSuch) {
  EXPECT_EQ(ReadError(XlsFile{.globals = Record(0x002F, std::string(6, '\1'))}.Bytes()),
            "w.xls: is encrypted");
  EXPECT_EQ(ReadError(MakeCompoundFile({{"EncryptedPackage", "x"}})), "w.xls: is encrypted");
}

TEST(ReadXls, OtherCompoundFilesAreNamedAsSuch) {
  EXPECT_EQ(ReadError(MakeCompoundFile({{"WordDocument", "x"}})),
            "w.xls: is a compound file, but no .xls workbook");
  EXPECT_EQ(ReadError(MakeCompoundFile({{"Book", Record(0x0409, std::string(6, '\0'))}})),
            "w.xls: is a workbook of Excel 4 or older, which is not read");
  EXPECT_EQ(ReadError(XlsFile{.version = 0x0700}.Bytes()),
            "w.xls: is a workbook of a version that is not known");
}

TEST(ReadXls, WhatACellRefersToMustBeThere) {
  const std::string place = "w.xls: sheet 'Sheet1', row 7, column C: ";
  EXPECT_EQ(ReadError(XlsFile{.globals = StyleRecord(0),
                              .sheets = {Record(0x00FD, At(6, 2) + Bytes32(0))}}
                          .Bytes()),
            place + "the cell has text number 0, which does not exist");
  EXPECT_EQ(ReadError(XlsFile{.sheets = {Record(0x0203, At(6, 2) + BytesOf(1))}}.Bytes()),
            place + "the cell has style 0, which does not exist");
}

TEST(ReadXls, ANumberThatIsNoneIsNamed) {
  EXPECT_EQ(
      ReadError(XlsFile{.globals = StyleRecord(0),
                        .sheets = {Record(0x0203, At(6, 2) + Bytes32(0) + Bytes32(0x7FF00000))}}
                    .Bytes()),
      "w.xls: sheet 'Sheet1', row 7, column C: the number is none");
}

TEST(ReadXls, ARecordThatIsCutShortIsNamed) {
  EXPECT_EQ(
      ReadError(XlsFile{.globals = StyleRecord(0), .sheets = {Record(0x0203, At(6, 2))}}.Bytes()),
      "w.xls: sheet 'Sheet1', row 7, column C: a record is cut short");
  EXPECT_EQ(ReadError(XlsFile{.globals = SharedTexts(1, Bytes16(9) + Narrow8("rain"))}.Bytes()),
            "w.xls: a record is cut short");
}

TEST(ReadXls, ASheetThatIsCutShortIsNamed) {
  std::string stream = XlsFile{}.Stream();
  stream.resize(stream.size() - 4);
  EXPECT_EQ(ReadError(MakeCompoundFile({{"Workbook", stream}})),
            "w.xls: sheet 'Sheet1': the sheet is cut short");
}

TEST(ReadXls, SheetsThatLieOverOneAnotherAreRefused) {
  // A thousand entries that all mean the same large sheet would take a thousand times its time.
  const std::string sheet =
      BiffMaker().Begin(16).Add(0x0201, std::string(6'000, '\0')).End().bytes();
  const auto globals = [](std::size_t offset) {
    BiffMaker maker;
    maker.Begin(5);
    for (int i = 0; i < 1'000; ++i) {
      maker.Add(0x0085, Bytes32(static_cast<std::uint32_t>(offset)) + "\0\0"s + '\4' +
                            Narrow8(std::to_string(1'000 + i)));
    }
    return maker.End().bytes();
  };
  const std::string stream = globals(globals(0).size()) + sheet;
  EXPECT_EQ(ReadError(MakeCompoundFile({{"Workbook", stream}})),
            "w.xls: sheet '1003': the file is damaged: its sheets overlap");
}

TEST(ReadXls, ChainsThatRunInACircleAreRefused) {
  std::string bytes = XlsFile{.globals = std::string(8'000, '\0')}.Bytes();
  // Every sector is followed by the first one.
  const std::size_t table = bytes.size() - 512;
  for (std::size_t i = 0; i < 16; ++i) {
    bytes.replace(table + i * 4, 4, Bytes32(0));
  }
  EXPECT_EQ(ReadError(bytes), "w.xls: the file is damaged: a chain of sectors runs in a circle");
}

TEST(ReadXls, ImpossibleHeadersAreRefused) {
  const std::string bytes = XlsFile{}.Bytes();
  EXPECT_EQ(ReadError(bytes.substr(0, 100)), "w.xls: the file is damaged: it is cut short");
  std::string odd = bytes;
  odd[30] = 31;
  EXPECT_EQ(ReadError(odd), "w.xls: the file is damaged: its sectors have an impossible size");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
