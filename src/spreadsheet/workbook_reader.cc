#include "spreadsheet/workbook_reader.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "spreadsheet/limits.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/xls_reader.h"
#include "spreadsheet/xlsx_reader.h"

namespace nimbrel::spreadsheet {
namespace {

std::string ReadBytes(const std::string& path) {
  const ReadPlace place{.file = path};
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    RaiseReadError(place, error ? error.message() : "is no file");
  }
  const auto size = std::filesystem::file_size(path, error);
  if (error) {
    RaiseReadError(place, error.message());
  }
  if (size > kMaxFileBytes) {
    RaiseReadError(place, "is larger than " + MebibytesText(kMaxFileBytes));
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  if (!file) {
    RaiseReadError(place, "cannot be read");
  }
  return bytes;
}

}  // namespace

Workbook ReadWorkbook(const std::string& path) {
  return ReadWorkbookBytes(ReadBytes(path), path);
}

Workbook ReadWorkbookBytes(std::string_view bytes, const std::string& name) {
  using namespace std::literals;
  if (bytes.size() > kMaxFileBytes) {
    RaiseReadError({.file = name}, "is larger than " + MebibytesText(kMaxFileBytes));
  }
  if (bytes.starts_with("PK\3\4"sv) || bytes.starts_with("PK\5\6"sv)) {
    return ReadXlsx(bytes, name);
  }
  if (bytes.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv)) {
    return ReadXls(bytes, name);
  }
  RaiseReadError({.file = name}, "is no workbook: neither .xlsx nor .xls");
}

}  // namespace nimbrel::spreadsheet
