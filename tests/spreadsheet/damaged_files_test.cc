#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "spreadsheet/limits.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/support/workbooks/measured_read.h"
#include "tests/support/workbooks/mutations.h"
#include "tests/support/workbooks/test_files.h"
#include "tests/support/workbooks/xls_files.h"

namespace nimbrel::spreadsheet {
namespace {

/// Reads bytes that may be anything: the result is a workbook or one clear line.
void ReadAnything(const std::string& bytes) {
  const Raised raised = ErrorOf([&] { ReadWorkbookBytes(bytes, "w"); });
  if (raised.number != 0) {
    EXPECT_EQ(raised.number, platform::kApplicationDefined);
    EXPECT_TRUE(raised.text.starts_with("w: ")) << raised.text;
    EXPECT_TRUE(std::none_of(raised.text.begin(), raised.text.end(), [](char c) {
      return static_cast<unsigned char>(c) < 0x20;
    })) << raised.text;
  }
}

std::string Repeat(const std::string& text, std::size_t times) {
  std::string repeated;
  repeated.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    repeated += text;
  }
  return repeated;
}

std::string SoundXlsx() {
  return XlsxFile{.sheets = {"<row r='1'><c r='A1' t='s'><v>0</v></c><c r='B1' s='1'><v>1</v></c>"
                             "<c r='C1' t='inlineStr'><is><t>x</t></is></c></row>",
                             "<row><c><f>1</f><v>1</v></c></row>"},
                  .shared_texts = "<si><r><t>rain</t></r></si>",
                  .styles =
                      "<numFmts><numFmt numFmtId='164' formatCode='dd mmm yyyy'/></numFmts>"
                      "<cellXfs><xf/><xf numFmtId='164'/></cellXfs>"}
      .Bytes();
}

std::string SoundXls() {
  const std::string texts =
      BiffMaker()
          .Add(0x00FC, Bytes32(1) + Bytes32(1) + Bytes16(8) + std::string(1, '\0') + "rain")
          .Add(0x003C, std::string(1, '\0') + "fall")
          .bytes();
  const std::string place = Bytes16(0) + Bytes16(0) + Bytes16(0);
  const std::string cells =
      BiffMaker()
          .Add(0x00FD, place + Bytes32(0))
          .Add(0x0203, place + BytesOf(1))
          .Add(0x00BD, Bytes16(0) + Bytes16(1) + Bytes16(0) + Bytes32(6) + Bytes16(1))
          .Add(0x0006, place + std::string(6, '\0') + "\xFF\xFF" + std::string(8, '\0'))
          .Add(0x0207, Bytes16(3) + Narrow8("fog"))
          .bytes();
  return XlsFile{.globals = StyleRecord(0) + texts, .sheets = {cells, cells}}.Bytes();
}

TEST(DamagedWorkbook, TheSoundOnesAreSound) {
  EXPECT_NO_THROW(ReadWorkbookBytes(SoundXlsx(), "w"));
  EXPECT_NO_THROW(ReadWorkbookBytes(SoundXls(), "w"));
}

TEST(DamagedWorkbook, CutShortAnywhereItIsRefused) {
  for (const std::string& bytes : {SoundXlsx(), SoundXls()}) {
    for (std::size_t size = 0; size < bytes.size(); size += size < 1'000 ? 1 : 37) {
      ReadAnything(bytes.substr(0, size));
    }
  }
  EXPECT_NE(ErrorOf([] { ReadWorkbookBytes("", "w"); }).number, 0);
}

/// Weather as an export writes it: sheets with a text, dates, a share and numbers in each row.
std::string WeatherXlsx() {
  Workbook workbook;
  const auto date = workbook.AddNumberFormat("dd mmm yyyy");
  const auto percent = workbook.AddNumberFormat("0.00%");
  for (int i = 1; i <= 6; ++i) {
    Sheet& sheet = workbook.AddSheet("Site " + std::to_string(i));
    sheet.Put({3, 1, kFormatOfPlace, workbook.AddText("Weather-Events")});
    for (std::int32_t row = 6; row < 56; ++row) {
      sheet.Put({row, 2, kFormatOfPlace, workbook.AddText("Gales & rain " + std::to_string(row))});
      sheet.Put({row, 3, date, 46'000.0 + row});
      sheet.Put({row, 4, date, 46'006.0 + row});
      sheet.Put({row, 5, percent, row / 64.0});
      sheet.Put({row, 6, kFormatOfPlace, row * 1.0});
    }
  }
  const TemporaryFolder folder;
  WriteXlsx(workbook, folder.File("w.xlsx"));
  return ReadBytes(folder.File("w.xlsx"));
}

// scripts/check-hostile-workbooks does this 20,000 times, with workbooks of other programs.
TEST(DamagedWorkbook, DamagedAnywhereItIsReadOrRefused) {
  for (const std::string& sound : {SoundXlsx(), SoundXls()}) {
    const Mutator mutator(sound);
    for (std::uint64_t number = 1; number <= 4'000; ++number) {
      SCOPED_TRACE(number);
      ReadAnything(mutator.Make(number));
    }
  }
}

TEST(DamagedWorkbook, DamagedAnywhereItTakesNoMoreThanItsMemory) {
  constexpr std::uint64_t kMostMemory = 256'000'000;
  for (const std::string& sound : {WeatherXlsx(), SoundXls()}) {
    const Mutator mutator(sound);
    for (std::uint64_t number = 1; number <= 150; ++number) {
      SCOPED_TRACE(number);
      const MeasuredRead read = ReadMeasured(mutator.Make(number));
      EXPECT_NE(read.outcome, MeasuredRead::Outcome::kBroken) << read.text;
      EXPECT_LE(read.memory, kMostMemory);
    }
  }
}

// The measure itself: texts of 30 million bytes take that and the package, and not much more.
TEST(DamagedWorkbook, TheMemoryThatIsMeasuredIsThatOfTheReading) {
  constexpr std::size_t kBytes = 30'000'000;
  const MeasuredRead small = ReadMeasured(SoundXlsx());
  const std::string bytes =
      XlsxFile{.shared_texts =
                   Repeat("<si><t>" + std::string(30'000, 'x') + "</t></si>", kBytes / 30'000)}
          .Bytes();
  const MeasuredRead large = ReadMeasured(bytes);
  EXPECT_EQ(large.outcome, MeasuredRead::Outcome::kRead) << large.text;
  EXPECT_GT(large.memory, small.memory + kBytes * 9 / 10);
  EXPECT_LT(large.memory, small.memory + kBytes * 2);
}

TEST(DamagedWorkbook, APartOfTwiceTheNameIsRefused) {
  Parts parts = ReadZip(SoundXlsx());
  parts.emplace_back("XL/workbook.xml", "<x/>");
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); }).text,
            "w: has the part 'XL/workbook.xml' more than once");
}

/// Overwrites the size that the directory of a zip gives for a part.
std::string WithSize(std::string bytes, const std::string& part, std::uint32_t size) {
  // Directory entries begin with this; the size stands at 24, the name at 46.
  for (auto at = bytes.find("PK\1\2"); at != std::string::npos; at = bytes.find("PK\1\2", at + 1)) {
    if (bytes.compare(at + 46, part.size(), part) == 0) {
      bytes.replace(at + 24, 4, Bytes32(size));
    }
  }
  return bytes;
}

TEST(DamagedWorkbook, APartThatInflatesPastItsHeaderIsRefused) {
  const auto error_with_size = [](std::uint32_t size) {
    return ErrorOf(
               [&] { ReadWorkbookBytes(WithSize(SoundXlsx(), "xl/sharedStrings.xml", size), "w"); })
        .text;
  };
  EXPECT_EQ(error_with_size(10), "w: part 'xl/sharedStrings.xml' is longer than its header says");
  EXPECT_EQ(error_with_size(10'000), "w: part 'xl/sharedStrings.xml' is cut short");
  EXPECT_EQ(error_with_size(300U << 20), "w: part 'xl/sharedStrings.xml' is larger than 64 MiB");
}

/// A workbook of that many sheets, whose parts are one text.
std::string CopiedSheets(int count, const std::string& text) {
  XlsxFile file{.sheets = std::vector<std::string>(static_cast<std::size_t>(count))};
  Parts parts = file.MakeParts();
  std::vector<std::string> names;
  std::erase_if(parts, [&](const auto& part) {
    const bool is_sheet = part.first.starts_with("xl/worksheets/");
    if (is_sheet) {
      names.push_back(part.first);
    }
    return is_sheet;
  });
  return MakeZipWithCopies(parts, text, names);
}

TEST(DamagedWorkbook, AZipBombIsLeftAtTheLimit) {
  // 40 sheets of 16 MiB of blanks each: 640 MiB of a file of 640 KiB.
  const std::string sheet =
      "<worksheet xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'>" +
      std::string(16U << 20, ' ') + "</worksheet>";
  const std::string bytes = CopiedSheets(40, sheet);
  EXPECT_LT(bytes.size(), 1U << 20);
  const MeasuredRead read = ReadMeasured(bytes);
  EXPECT_EQ(read.text,
            "w: part 'xl/worksheets/sheet4.xml' takes what is read of the package past 64 MiB");
  EXPECT_LT(read.memory, 64U << 20);  // what is inflated is not kept
}

TEST(DamagedWorkbook, OnePartThatIsReadManyTimesCountsEachTime) {
  const std::string blanks(16U << 20, ' ');
  Parts parts = XlsxFile{.sheets = std::vector<std::string>(40)}.MakeParts();
  Replace(parts, "xl/worksheets/sheet1.xml",
          "<worksheet xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'>" + blanks +
              "</worksheet>");
  std::string links = PartOf(MakeZip(parts), "xl/_rels/workbook.xml.rels");
  for (int i = 2; i <= 40; ++i) {
    const std::string name = "worksheets/sheet" + std::to_string(i) + ".xml";
    links.replace(links.find(name), name.size(), "worksheets/sheet1.xml");
  }
  Replace(parts, "xl/_rels/workbook.xml.rels", links);
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); }).text,
            "w: part 'xl/worksheets/sheet1.xml' takes what is read of the package past 64 MiB");
}

TEST(DamagedWorkbook, APartThatIsPackedInAnotherWayIsRefused) {
  std::string bytes = SoundXlsx();
  const std::string part = "xl/sharedStrings.xml";
  for (auto at = bytes.find("PK\1\2"); at != std::string::npos; at = bytes.find("PK\1\2", at + 1)) {
    if (bytes.compare(at + 46, part.size(), part) == 0) {
      bytes.replace(at + 10, 2, Bytes16(14));  // LZMA, which says itself how much memory it takes
    }
  }
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(bytes, "w"); }).text,
            "w: part 'xl/sharedStrings.xml' is compressed in a way that is not read");
}

TEST(DamagedWorkbook, ALargeDirectoryOfTheNewerFormIsRefused) {
  const std::string bytes = SoundXlsx();
  const auto end = bytes.rfind("PK\5\6");
  const auto with_count = [&](std::uint32_t count) {
    const std::string record = "PK\6\6" + Bytes32(44) + Bytes32(0) + Bytes16(45) + Bytes16(45) +
                               Bytes32(0) + Bytes32(0) + Bytes32(count) + Bytes32(0) +
                               Bytes32(count) + Bytes32(0) + std::string(16, '\0');
    const std::string locator =
        "PK\6\7" + Bytes32(0) + Bytes32(static_cast<std::uint32_t>(end)) + Bytes32(0) + Bytes32(1);
    return bytes.substr(0, end) + record + locator + bytes.substr(end);
  };
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(with_count(1'000'000), "w"); }).text,
            "w: has more than 10000 parts");
}

TEST(DamagedWorkbook, ManyDirectoriesAreNotReadOneAfterTheOther) {
  const std::string bytes = SoundXlsx();
  const std::string end = bytes.substr(bytes.rfind("PK\5\6"));
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(bytes + Repeat(end, 100), "w"); }).text,
            "w: is no sound .xlsx package: it has more than one directory");
  // What looks like one in a package is none.
  Parts parts = ReadZip(bytes);
  parts.emplace_back("picture.png", Repeat("PK\5\6", 2));
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts, Packing::kStored), "w"); }).text, "");
}

TEST(DamagedWorkbook, ATextOfMoreThanACellHoldsIsRefused) {
  const XlsxFile file{.shared_texts =
                          "<si><t>" + std::string(kMaxTextBytes + 1, 'x') + "</t></si>"};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: a text is longer than 32767 characters");
}

TEST(DamagedWorkbook, AnEndlessTagIsRefused) {
  Parts parts = ReadZip(SoundXlsx());
  Replace(parts, "xl/sharedStrings.xml", "<!--" + std::string(8U << 20, 'x') + "--><sst/>");
  const Raised raised = ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); });
  EXPECT_NE(raised.text.find("a tag or comment is longer than"), std::string::npos) << raised.text;
}

TEST(DamagedWorkbook, TooManyPartsAreRefused) {
  Parts parts = ReadZip(SoundXlsx());
  while (parts.size() <= kMaxParts) {
    parts.emplace_back("x/" + std::to_string(parts.size()), "");
  }
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); }).text,
            "w: has more than 10000 parts");
  parts.pop_back();
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); }).text, "");
}

TEST(DamagedWorkbook, TooManySheetsAreRefused) {
  XlsxFile file{.sheets = std::vector<std::string>(kMaxSheets + 1)};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: has more than 1024 sheets");
  file.sheets.pop_back();
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text, "");
  XlsFile old{.sheets = std::vector<std::string>(kMaxSheets + 1)};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(old.Bytes(), "w"); }).text,
            "w: has more than 1024 sheets");
  old.sheets.pop_back();
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(old.Bytes(), "w"); }).text, "");
}

TEST(DamagedWorkbook, TooManyCellsAreRefused) {
  const std::string row = "<row>" + Repeat("<c><v>1</v></c>", 1'000) + "</row>";
  XlsxFile file{.sheets = {Repeat(row, 500), Repeat(row, 500)}};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text, "");
  file.sheets[1] += "<row><c><v>1</v></c></row>";
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: sheet 'Sheet2', row 501, column A: the workbook has more than 1000000 cells");
}

TEST(DamagedWorkbook, TooMuchTextIsRefused) {
  const std::string long_text(32'000, 'x');
  const XlsxFile shared{.shared_texts = Repeat("<si><t>" + long_text + "</t></si>", 1'049)};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(shared.Bytes(), "w"); }).text,
            "w: the workbook has more than 32 MiB of texts");
  const XlsxFile inside{
      .sheets = {
          Repeat("<row><c t='inlineStr'><is><t>" + long_text + "</t></is></c></row>", 1'049)}};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(inside.Bytes(), "w"); }).text,
            "w: sheet 'Sheet1', row 1049, column A: the workbook has more than 32 MiB of texts");
  // In an .xls they take half the room.
  BiffMaker texts;
  for (unsigned i = 0; i < 2'200; ++i) {
    texts.Add(0x0204, Bytes16(i) + Bytes16(0) + Bytes16(0) + Bytes16(8'000) +
                          Narrow8(std::string(8'000, '\xE9')));
  }
  const XlsFile old{.globals = StyleRecord(0), .sheets = {texts.bytes()}};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(old.Bytes(), "w"); }).text,
            "w: sheet 'Sheet1', row 2098, column A: the workbook has more than 32 MiB of texts");
}

TEST(DamagedWorkbook, TooMuchXmlIsRefusedHoweverSmallItPacks) {
  const auto error_of = [](const std::string& data) {
    return ErrorOf([&] { ReadWorkbookBytes(XlsxFile{.sheets = {data}}.Bytes(), "w"); }).text;
  };
  const std::string part = "w: sheet 'Sheet1': part 'xl/worksheets/sheet1.xml', line ";
  EXPECT_EQ(error_of(Repeat("<a b=''/>", kMaxXmlItems / 2)),
            part + "1: the workbook has more than 6000000 elements and attributes");
  EXPECT_EQ(error_of(Repeat("\n", kMaxXmlRuns + 1)),
            part + "12000001: the workbook has more than 12000000 runs of text");
  std::string names;
  for (int i = 0; i < 300'000; ++i) {
    names += "<a" + std::to_string(i) + "/>";
  }
  EXPECT_EQ(error_of(names), part + "1: its names take more than 16 MiB");
}

TEST(DamagedWorkbook, TooManyTextsAreRefused) {
  const XlsxFile file{.shared_texts = Repeat("<si/>", kMaxStrings + 1)};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: the workbook has more than 1000000 texts");
}

TEST(DamagedWorkbook, TooManyStylesAreRefused) {
  const XlsxFile file{.styles = "<cellXfs>" + Repeat("<xf/>", kMaxCellFormats + 1) + "</cellXfs>"};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: has more than 65536 cell styles");
}

TEST(DamagedWorkbook, TooManyNumberFormatsAndRelationshipsAreRefused) {
  std::string formats;
  for (std::uint64_t i = 0; i <= kMaxNumberFormats; ++i) {
    formats += "<numFmt numFmtId='" + std::to_string(i) + "'/>";
  }
  const XlsxFile file{.styles = "<numFmts>" + formats + "</numFmts>"};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: has more than 10000 number formats");
  Parts parts = ReadZip(SoundXlsx());
  Replace(parts, "_rels/.rels",
          "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" +
              Repeat("<Relationship/>", kMaxRelationships + 1) + "</Relationships>");
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeZip(parts), "w"); }).text,
            "w: a part has more than 10000 relationships");
}

TEST(DamagedWorkbook, ANameThatIsTooLongIsRefused) {
  const XlsxFile file{.styles = "<numFmts><numFmt numFmtId='164' formatCode='" +
                                std::string(kMaxNameBytes + 1, '0') + "'/></numFmts>"};
  const std::string message = "w: has a name that is too long: '" + std::string(60, '0') + "...'";
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text, message);
  const XlsFile old{.globals = BiffMaker()
                                   .Add(0x041E, Bytes16(164) + Bytes16(kMaxNameBytes + 1) +
                                                    Narrow8(std::string(kMaxNameBytes + 1, '0')))
                                   .bytes()};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(old.Bytes(), "w"); }).text, message);
}

TEST(DamagedWorkbook, ARecordThatIsContinuedWithoutEndIsRefused) {
  const std::string more = BiffMaker().Add(0x003C, "").bytes();
  const XlsFile file{.globals =
                         BiffMaker().Add(0x00FC, "").bytes() + Repeat(more, kMaxContinuations + 1)};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: a record is continued more than 65536 times");
}

TEST(DamagedWorkbook, ACompoundFileOfTooManyEntriesIsRefused) {
  std::vector<std::pair<std::string, std::string>> streams(kMaxParts, {"x", ""});
  streams[0] = {"Workbook", XlsFile{}.Stream()};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeCompoundFile(streams), "w"); }).text,
            "w: has more than 10000 parts");  // the root is one of them
  streams.resize(kMaxParts - 10);             // sectors hold four, and the last one's gaps count
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(MakeCompoundFile(streams), "w"); }).text, "");
}

TEST(DamagedWorkbook, ASmallStreamIsNoLongerThanAllOfThem) {
  // The limit below which a stream is a small one, and the stream's size, are four billion; the
  // chain of small sectors runs in a circle.
  std::string bytes = XlsFile{}.Bytes();
  bytes.replace(56, 4, Bytes32(0xFFFFFFFF));
  const auto entry = bytes.find(Wide("Workbook"));
  bytes.replace(entry + 120, 4, Bytes32(0xFFFFFFF0));
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(bytes, "w"); }).text,
            "w: the file is damaged: a small stream is cut short");
}

TEST(DamagedWorkbook, AFileThatIsTooLargeIsRefused) {
  const std::string message = "w: is larger than 32 MiB";
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(std::string(kMaxFileBytes + 1, 'P'), "w"); }).text,
            message);
  const TemporaryFolder folder;
  WriteBytes(folder.File("w"), "");
  std::filesystem::resize_file(folder.File("w"), kMaxFileBytes + 1);
  EXPECT_EQ(ErrorOf([&] { ReadWorkbook(folder.File("w")); }).text,
            folder.File("w") + ": is larger than 32 MiB");
}

TEST(DamagedWorkbook, WhatIsNoRegularFileIsNotWaitedFor) {
  EXPECT_EQ(ErrorOf([] { ReadWorkbook("/dev/null"); }).text, "/dev/null: is no file");
  EXPECT_EQ(ErrorOf([] { ReadWorkbook("/nowhere/w.xlsx"); }).text,
            "/nowhere/w.xlsx: No such file or directory");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
