#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "spreadsheet/limits.h"
#include "spreadsheet/workbook_reader.h"
#include "tests/spreadsheet/test_files.h"
#include "tests/spreadsheet/xls_files.h"

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

TEST(DamagedWorkbook, ChangedAnywhereItIsReadOrRefused) {
  std::mt19937 random(20'270'331);
  for (const std::string& sound : {SoundXlsx(), SoundXls()}) {
    for (int i = 0; i < 3'000; ++i) {
      std::string bytes = sound;
      for (std::uint32_t flips = random() % 8 + 1; flips > 0; --flips) {
        bytes[random() % bytes.size()] = static_cast<char>(random());
      }
      ReadAnything(bytes);
    }
  }
}

// A zip guards its parts by check sums, so damage rarely reaches their readers. Here it does.
TEST(DamagedWorkbook, ChangedPartsAreReadOrRefused) {
  std::mt19937 random(1);
  const Parts sound = ReadZip(SoundXlsx());
  for (int i = 0; i < 3'000; ++i) {
    Parts parts = sound;
    std::string& text = parts[random() % parts.size()].second;
    for (std::uint32_t flips = random() % 4 + 1; flips > 0; --flips) {
      switch (random() % 3) {
        case 0:
          text[random() % text.size()] = static_cast<char>(random() % 96 + 32);
          break;
        case 1:
          text.erase(random() % text.size(), random() % 20);
          text += ' ';
          break;
        default:
          text.insert(random() % text.size(), text.substr(random() % text.size(), 30));
      }
    }
    ReadAnything(MakeZip(parts));
  }
}

TEST(DamagedWorkbook, ChangedRecordsAreReadOrRefused) {
  std::mt19937 random(2);
  const std::string sound = SoundXls();
  for (int i = 0; i < 3'000; ++i) {
    std::string bytes = sound;
    // The header and the tables stay, so that the records are reached.
    for (std::uint32_t flips = random() % 4 + 1; flips > 0; --flips) {
      bytes[512 + random() % 1'000] = static_cast<char>(random() % 3 == 0 ? random() : 0);
    }
    ReadAnything(bytes);
  }
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
  const std::string part = "xl/sharedStrings.xml";
  EXPECT_NE(ErrorOf([&] { ReadWorkbookBytes(WithSize(SoundXlsx(), part, 10), "w"); }).text, "");
  const std::string larger =
      ErrorOf([&] { ReadWorkbookBytes(WithSize(SoundXlsx(), part, 300U << 20), "w"); }).text;
  EXPECT_EQ(larger, "w: part 'xl/sharedStrings.xml' is larger than 256 MiB");
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

std::string Repeat(const std::string& text, std::size_t times) {
  std::string repeated;
  repeated.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    repeated += text;
  }
  return repeated;
}

TEST(DamagedWorkbook, TooManyCellsAreRefused) {
  const std::string row = "<row>" + Repeat("<c><v>1</v></c>", 1'000) + "</row>";
  const std::string message =
      ErrorOf([&] {
        ReadWorkbookBytes(XlsxFile{.sheets = {Repeat(row, 1'000), Repeat(row, 1'001)}}.Bytes(),
                          "w");
      }).text;
  EXPECT_EQ(message,
            "w: sheet 'Sheet2', row 1001, column A: the workbook has more than 2000000 cells");
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
  for (std::uint64_t i = 0; i <= kMaxCellFormats; ++i) {
    formats += "<numFmt numFmtId='" + std::to_string(i) + "'/>";
  }
  const XlsxFile file{.styles = "<numFmts>" + formats + "</numFmts>"};
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(file.Bytes(), "w"); }).text,
            "w: has more than 65536 number formats");
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
  EXPECT_TRUE(ErrorOf([&] {
                ReadWorkbookBytes(file.Bytes(), "w");
              }).text.starts_with("w: has a name that is too long: '000"));
}

TEST(DamagedWorkbook, AFileThatIsTooLargeIsRefused) {
  const std::string message = "w: is larger than 64 MiB";
  EXPECT_EQ(ErrorOf([&] { ReadWorkbookBytes(std::string(kMaxFileBytes + 1, 'P'), "w"); }).text,
            message);
  const TemporaryFolder folder;
  WriteBytes(folder.File("w"), "");
  std::filesystem::resize_file(folder.File("w"), kMaxFileBytes + 1);
  EXPECT_EQ(ErrorOf([&] { ReadWorkbook(folder.File("w")); }).text,
            folder.File("w") + ": is larger than 64 MiB");
}

TEST(DamagedWorkbook, WhatIsNoRegularFileIsNotWaitedFor) {
  EXPECT_EQ(ErrorOf([] { ReadWorkbook("/dev/null"); }).text, "/dev/null: is no file");
  EXPECT_EQ(ErrorOf([] { ReadWorkbook("/nowhere/w.xlsx"); }).text,
            "/nowhere/w.xlsx: No such file or directory");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
