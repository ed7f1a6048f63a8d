#include "tests/support/workbooks/test_files.h"

#include <zip.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "platform/files.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr const char* kHead = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";
constexpr const char* kMain =
    R"(xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")";
constexpr const char* kOffice =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr const char* kRelationships =
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";

std::string Link(const std::string& id, const std::string& kind, const std::string& target) {
  return "<Relationship Id=\"" + id + "\" Type=\"" + kOffice + "/" + kind + "\" Target=\"" +
         target + "\"/>";
}

void Require(bool condition) {
  if (!condition) {
    throw std::logic_error("the test's zip cannot be made");
  }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  path_ =
      platform::MakeNewFolder((std::filesystem::temp_directory_path() / "spreadsheet-").string());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TemporaryFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadBytes(const std::string& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, std::string_view bytes) {
  std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

namespace {

/// A zip that is being made in memory.
class ZipMaker {
 public:
  ZipMaker() {
    zip_error_t error;
    zip_error_init(&error);
    target_ = zip_source_buffer_create(nullptr, 0, 0, &error);
    archive_ = zip_open_from_source(target_, ZIP_TRUNCATE, &error);
    zip_error_fini(&error);
    Require(archive_ != nullptr);
    zip_source_keep(target_);
  }
  ZipMaker(const ZipMaker&) = delete;
  ZipMaker& operator=(const ZipMaker&) = delete;
  ~ZipMaker() { zip_source_free(target_); }

  zip_t* archive() const { return archive_; }

  void Add(const std::string& name, zip_source_t* source, Packing packing) {
    // A package may have two parts of one name, and tests need such ones.
    const auto added = zip_file_add(archive_, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    Require(added >= 0);
    const auto index = static_cast<zip_uint64_t>(added);
    zip_file_set_mtime(archive_, index, 946'684'800, 0);
    if (packing == Packing::kStored) {
      zip_set_file_compression(archive_, index, ZIP_CM_STORE, 0);
    }
  }

  void Add(const Parts& parts, Packing packing) {
    for (const auto& [name, text] : parts) {
      Add(name, zip_source_buffer(archive_, text.data(), text.size(), 0), packing);
    }
  }

  std::string Close() {
    Require(zip_close(archive_) == 0);
    zip_source_open(target_);
    zip_source_seek(target_, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(zip_source_tell(target_)), '\0');
    zip_source_seek(target_, 0, SEEK_SET);
    zip_source_read(target_, bytes.data(), bytes.size());
    zip_source_close(target_);
    return bytes;
  }

 private:
  zip_source_t* target_;
  zip_t* archive_;
};

}  // namespace

std::string MakeZip(const Parts& parts, Packing packing) {
  ZipMaker maker;
  maker.Add(parts, packing);
  return maker.Close();
}

std::string MakeZipWithCopies(const Parts& parts, const std::string& text,
                              const std::vector<std::string>& names) {
  const std::string once = MakeZip({{"x", text}});
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_buffer_create(once.data(), once.size(), 0, &error);
  zip_t* const packed = zip_open_from_source(source, ZIP_RDONLY, &error);
  zip_error_fini(&error);
  Require(packed != nullptr);
  ZipMaker maker;
  maker.Add(parts, Packing::kDeflated);
  for (const std::string& name : names) {
    // Taken over as it is packed.
    maker.Add(name, zip_source_zip(maker.archive(), packed, 0, 0, 0, -1), Packing::kDeflated);
  }
  std::string bytes = maker.Close();
  zip_discard(packed);
  return bytes;
}

Parts ReadZip(std::string_view bytes) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
  zip_t* const archive = zip_open_from_source(source, ZIP_RDONLY, &error);
  Require(archive != nullptr);
  Parts parts;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    zip_stat_t stat;
    const auto index = static_cast<zip_uint64_t>(i);
    Require(zip_stat_index(archive, index, 0, &stat) == 0);
    std::string text(static_cast<std::size_t>(stat.size), '\0');
    zip_file_t* const file = zip_fopen_index(archive, index, 0);
    Require(zip_fread(file, text.data(), text.size()) == static_cast<zip_int64_t>(text.size()));
    zip_fclose(file);
    parts.emplace_back(stat.name, std::move(text));
  }
  zip_discard(archive);
  zip_error_fini(&error);
  return parts;
}

std::string PartOf(std::string_view bytes, std::string_view name) {
  for (auto& [part, text] : ReadZip(bytes)) {
    if (part == name) {
      return text;
    }
  }
  return {};
}

Parts XlsxFile::MakeParts() const {
  std::string list;
  std::string links;
  Parts sheet_parts;
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    list +=
        "<sheet name=\"Sheet" + number + "\" sheetId=\"" + number + "\" r:id=\"s" + number + "\"/>";
    links += Link("s" + number, "worksheet", "worksheets/sheet" + number + ".xml");
    sheet_parts.emplace_back("xl/worksheets/sheet" + number + ".xml",
                             std::string(kHead) + "<worksheet " + kMain + "><sheetData>" +
                                 sheets[i] + "</sheetData></worksheet>");
  }
  links += Link("t", "sharedStrings", "sharedStrings.xml");
  Parts parts{
      {"_rels/.rels", std::string(kHead) + kRelationships +
                          Link("d", "officeDocument", "xl/workbook.xml") + "</Relationships>"},
      {"xl/workbook.xml", std::string(kHead) + "<workbook " + kMain + " xmlns:r=\"" + kOffice +
                              "\">" + workbook_properties + "<sheets>" + list +
                              "</sheets></workbook>"},
      {"xl/sharedStrings.xml",
       std::string(kHead) + "<sst " + kMain + ">" + shared_texts + "</sst>"}};
  if (!styles.empty()) {
    links += Link("y", "styles", "styles.xml");
    parts.emplace_back("xl/styles.xml", std::string(kHead) + "<styleSheet " + kMain + ">" + styles +
                                            "</styleSheet>");
  }
  parts.emplace_back("xl/_rels/workbook.xml.rels",
                     std::string(kHead) + kRelationships + links + "</Relationships>");
  parts.insert(parts.end(), sheet_parts.begin(), sheet_parts.end());
  return parts;
}

void Replace(Parts& parts, std::string_view name, std::string text) {
  const auto found = std::find_if(parts.begin(), parts.end(),
                                  [&](const auto& part) { return part.first == name; });
  Require(found != parts.end());
  found->second = std::move(text);
}

}  // namespace nimbrel::spreadsheet
