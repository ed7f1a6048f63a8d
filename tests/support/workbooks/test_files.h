#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/runtime_error.h"

namespace nimbrel::spreadsheet {

/// The number of the error that a statement raises, and its text; 0 if it raises none.
struct Raised {
  std::int32_t number = 0;
  std::string text;
};

template <class Statement>
Raised ErrorOf(Statement&& statement) {
  try {
    statement();
  } catch (const platform::RuntimeError& error) {
    return {error.number(), error.text()};
  }
  return {};
}

/// A folder that is empty at first and gone at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  std::string path() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  /// Names of what is in the folder.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};

std::string ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, std::string_view bytes);

/// Parts of a zip package with their names, in order.
using Parts = std::vector<std::pair<std::string, std::string>>;
enum class Packing { kDeflated, kStored };
std::string MakeZip(const Parts& parts, Packing packing = Packing::kDeflated);
/// The same, with one text more under each of the names, which is packed only once.
std::string MakeZipWithCopies(const Parts& parts, const std::string& text,
                              const std::vector<std::string>& names);
/// The parts of a package that is sound.
Parts ReadZip(std::string_view bytes);
/// The bytes of a part; empty if there is none.
std::string PartOf(std::string_view bytes, std::string_view name);

/// The parts of an .xlsx of which a test says only what matters to it.
struct XlsxFile {
  /// What stands within sheetData, for each sheet; their names are "Sheet1", "Sheet2", ...
  std::vector<std::string> sheets{""};
  std::string shared_texts = {};  // within sst
  std::string styles = {};        // within styleSheet; no part without
  std::string workbook_properties = {};

  Parts MakeParts() const;
  std::string Bytes() const { return MakeZip(MakeParts()); }
};

/// Puts another text in place of a part.
void Replace(Parts& parts, std::string_view name, std::string text);

}  // namespace nimbrel::spreadsheet
