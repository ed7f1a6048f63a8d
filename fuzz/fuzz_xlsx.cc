// A package whose parts are any bytes gives a workbook or an error with its line; everything else
// is a crash. The input is cut into the parts at each zero byte: bytes of a whole package would
// hardly ever get past its check sums.

#include <zip.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/runtime_error.h"
#include "spreadsheet/workbook_reader.h"

namespace {

constexpr std::array kParts = {
    "xl/worksheets/sheet1.xml", "xl/sharedStrings.xml",       "xl/styles.xml",
    "xl/workbook.xml",          "xl/_rels/workbook.xml.rels", "_rels/.rels"};
constexpr std::array kUsual = {
    "",
    R"(<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"/>)",
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"/>)",
    R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")"
    R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
    R"(<sheets><sheet name="s" r:id="s"/></sheets></workbook>)",
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
    R"(<Relationship Id="s" Target="worksheets/sheet1.xml")"
    R"( Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet"/>)"
    R"(<Relationship Id="t" Target="sharedStrings.xml")"
    R"( Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings"/>)"
    R"(<Relationship Id="y" Target="styles.xml")"
    R"( Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles"/>)"
    R"(</Relationships>)",
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
    R"(<Relationship Id="d" Target="xl/workbook.xml")"
    R"( Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument"/>)"
    R"(</Relationships>)"};

/// A package of the input's parts; those that it does not reach are the usual ones.
std::string MakePackage(std::string_view input) {
  zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_t* const archive = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
  zip_source_keep(target);
  for (std::size_t i = 0; i < kParts.size(); ++i) {
    const std::size_t end = input.find('\0');
    const std::string_view part =
        input.empty() ? std::string_view(kUsual[i]) : input.substr(0, end);
    zip_source_t* const source = zip_source_buffer(archive, part.data(), part.size(), 0);
    const auto index = zip_file_add(archive, kParts[i], source, 0);
    zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
  }
  zip_close(archive);
  zip_source_open(target);
  zip_source_seek(target, 0, SEEK_END);
  std::string bytes(static_cast<std::size_t>(zip_source_tell(target)), '\0');
  zip_source_seek(target, 0, SEEK_SET);
  zip_source_read(target, bytes.data(), bytes.size());
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using nimbrel::platform::RuntimeError;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  // Both as the bytes of a file and as those of its parts.
  for (const std::string& bytes : {std::string(input), MakePackage(input)}) {
    try {
      nimbrel::spreadsheet::ReadWorkbookBytes(bytes, "fuzzed");
    } catch (const RuntimeError& error) {
      if (error.text().find('\n') != std::string::npos) {
        std::abort();
      }
    }
  }
  return 0;
}
