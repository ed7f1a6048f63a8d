#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbrel::spreadsheet {

/// Numbers in bytes, the lowest first.
std::string Bytes16(unsigned value);
std::string Bytes32(std::uint32_t value);
std::string BytesOf(double value);

/// Text in UTF-16; ASCII only.
std::string Wide(std::string_view text);
/// A text of BIFF 8 of one byte a character, without its length.
std::string Narrow8(std::string_view text);

/// Records of a BIFF stream, put together one by one.
class BiffMaker {
 public:
  /// The records of a part: a begin of the given kind (5 globals, 16 worksheet), and an end.
  explicit BiffMaker(unsigned version = 0x0600) : version_(version) {}

  BiffMaker& Begin(unsigned kind);
  BiffMaker& Add(unsigned type, std::string_view data);
  BiffMaker& End() { return Add(0x000A, ""); }

  const std::string& bytes() const { return bytes_; }

 private:
  unsigned version_;
  std::string bytes_;
};

/// A stream of a workbook: what stands in its globals beside the list of sheets, and the records of
/// each sheet. The sheets are called "Sheet1", "Sheet2", ...
struct XlsFile {
  unsigned version = 0x0600;  // 0x0500 for BIFF 5
  std::string globals = {};
  std::vector<std::string> sheets = {""};

  std::string Stream() const;
  std::string Bytes() const;
};

/// An XF record, the style of cells, with a number format.
std::string StyleRecord(unsigned format);

/// The two sizes that sectors have, as powers of two.
inline constexpr unsigned kUsualSectors = 9;
inline constexpr unsigned kLargeSectors = 12;  // for more than some 6 MiB

/// A compound file with the streams; small streams go where small streams go.
std::string MakeCompoundFile(const std::vector<std::pair<std::string, std::string>>& streams,
                             unsigned sector_shift = kUsualSectors);

}  // namespace nimbrel::spreadsheet
