#include "tests/support/workbooks/mutations.h"

#include <algorithm>
#include <array>
#include <random>
#include <stdexcept>
#include <string_view>

#include "spreadsheet/compound_file.h"
#include "tests/support/workbooks/xls_files.h"

namespace nimbrel::spreadsheet {
namespace {

/// Choices by chance that are the same with every standard library.
class Chance {
 public:
  explicit Chance(std::uint64_t number) : random_(number) {}

  /// 0 to `limit` - 1; 0 if there is nothing to choose from.
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }
  /// Mostly small, up to `limit`.
  std::size_t Few(std::size_t limit) { return Below(Below(limit) + 1) + 1; }
  template <class List>
  const auto& OneOf(const List& list) {
    return list[Below(std::size(list))];
  }

 private:
  std::mt19937_64 random_;
};

constexpr std::array<std::string_view, 18> kNumbers = {"0",
                                                       "-1",
                                                       "1",
                                                       "65536",
                                                       "1048576",
                                                       "1048577",
                                                       "16385",
                                                       "2147483647",
                                                       "2147483648",
                                                       "4294967295",
                                                       "99999999999999999999",
                                                       "1e308",
                                                       "1e400",
                                                       "-0.0",
                                                       "nan",
                                                       "60.5",
                                                       "2958466",
                                                       ""};

constexpr std::array<std::string_view, 26> kPieces = {
    "<row>",
    "</row>",
    "<c>",
    "<c r=\"XFD1048576\">",
    "<c r=\"A0\" t=\"s\"><v>0</v></c>",
    "<c t=\"inlineStr\"><is><t>x</t></is></c>",
    "<c t=\"str\"><f>1</f></c>",
    "<c t=\"e\"><v>#N/A</v></c>",
    "<c t=\"d\"><v>2027-02-30T25:00</v></c>",
    "</c>",
    "<v/>",
    "<f>A1</f>",
    "<si><r><t>x</t></r></si>",
    "<sheet name=\"s\" sheetId=\"1\"/>",
    "<xf numFmtId=\"164\"/>",
    "<numFmt numFmtId=\"164\" formatCode=\"d\"/>",
    "&amp;",
    "&#0;",
    "&#x110000;",
    "&x;",
    "<!DOCTYPE x [<!ENTITY x \"xx\">]>",
    "<![CDATA[<]]>",
    "<!-- -->",
    "<?xml version=\"1.0\" encoding=\"UTF-16\"?>",
    "_x0000_",
    "\xFF\xFE",
};

/// Changes that make sense, or none, of any bytes.
void DamageBytes(std::string& bytes, Chance& chance) {
  if (bytes.empty()) {
    return;
  }
  const std::size_t at = chance.Below(bytes.size());
  switch (chance.Below(7)) {
    case 0:
      bytes[at] = static_cast<char>(chance.Below(256));
      break;
    case 1:
      bytes[at] = static_cast<char>(bytes[at] ^ (1 << chance.Below(8)));
      break;
    case 2:
      bytes.erase(at, chance.Few(4'000));
      break;
    case 3:
      bytes.insert(at, bytes.substr(chance.Below(bytes.size()), chance.Few(4'000)));
      break;
    case 4:
      bytes.resize(at);
      break;
    case 5:
      bytes.replace(at, chance.Few(64), chance.Few(64), static_cast<char>(chance.Below(2) * 255));
      break;
    default: {
      static constexpr std::array<std::uint32_t, 8> kValues = {
          0, 1, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x8000, 0x80000000, 0xFFFFFFFF};
      const std::string value = Bytes32(chance.OneOf(kValues));
      bytes.replace(at, 4, value.substr(0, chance.Below(2) == 0 ? 2 : 4));
    }
  }
}

/// The place of a "<" behind a place by chance; the end if there is none.
std::size_t TagPlace(const std::string& text, Chance& chance) {
  return std::min(text.find('<', chance.Below(text.size())), text.size());
}

void DamageXml(std::string& text, Chance& chance) {
  const std::size_t at = TagPlace(text, chance);
  const std::size_t end = std::max(at, TagPlace(text, chance));
  switch (chance.Below(6)) {
    case 0: {  // a number becomes another
      constexpr std::string_view kDigits = "0123456789";
      const auto begin = text.find_first_of(kDigits, at);
      if (begin != std::string::npos) {
        text.replace(begin, text.find_first_not_of(kDigits, begin) - begin, chance.OneOf(kNumbers));
      }
      break;
    }
    case 1:
      text.insert(at, chance.OneOf(kPieces));
      break;
    case 2:
      text.erase(at, std::min(end - at, chance.Few(4'000)));
      break;
    case 3: {  // elements many times over
      const std::string piece = text.substr(at, std::min(end - at, chance.Few(2'000)));
      std::string pieces;
      for (std::size_t times = chance.Few(300); times > 0; --times) {
        pieces += piece;
      }
      text.insert(at, pieces);
      break;
    }
    case 4: {  // an attribute goes, or becomes another's
      const auto quote = text.find('"', at);
      if (quote != std::string::npos) {
        text.replace(quote + 1, chance.Few(12), chance.OneOf(kNumbers));
      }
      break;
    }
    default:
      DamageBytes(text, chance);
  }
}

void DamageParts(Parts& parts, Chance& chance) {
  const std::size_t at = chance.Below(parts.size());
  switch (chance.Below(24)) {
    case 0:
      parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(at));
      break;
    case 1:
      std::swap(parts[at].second, parts[chance.Below(parts.size())].second);
      break;
    case 2:
      parts[at].first += "x";
      break;
    case 3:
      parts[at].second = "\xFF\xFE" + Wide(parts[at].second);
      break;
    default:
      if (!parts[at].second.empty()) {
        DamageXml(parts[at].second, chance);
      }
  }
}

/// The records of a stream of BIFF, headers included.
std::vector<std::string> SplitRecords(std::string_view stream) {
  std::vector<std::string> records;
  while (stream.size() >= 4) {
    const std::size_t size = 4 + static_cast<unsigned char>(stream[2]) +
                             std::size_t{static_cast<unsigned char>(stream[3])} * 256;
    records.emplace_back(stream.substr(0, size));
    stream.remove_prefix(std::min(size, stream.size()));
  }
  return records;
}

void DamageRecords(std::vector<std::string>& records, Chance& chance) {
  const std::size_t at = chance.Below(records.size());
  const auto place = records.begin() + static_cast<std::ptrdiff_t>(at);
  switch (chance.Below(9)) {
    case 0:
      records.erase(place);
      break;
    case 1:
      std::swap(*place, records[chance.Below(records.size())]);
      break;
    case 2: {
      const std::string copy = *place;
      records.insert(place, chance.Few(2'000), copy);
      break;
    }
    case 3: {  // of another type, with the same data
      static constexpr std::array<unsigned, 14> kTypes = {0x0006, 0x000A, 0x003C, 0x0042, 0x0085,
                                                          0x00BD, 0x00D6, 0x00FC, 0x00FD, 0x0203,
                                                          0x0204, 0x0207, 0x027E, 0x0809};
      place->replace(0, 2, Bytes16(chance.OneOf(kTypes)));
      break;
    }
    case 4:
      DamageBytes(*place, chance);
      break;
    default: {  // in its data, with its size true
      std::string data = place->substr(std::min<std::size_t>(4, place->size()));
      DamageBytes(data, chance);
      data.resize(std::min<std::size_t>(data.size(), 0xFFFF));
      place->resize(2);
      *place += Bytes16(static_cast<unsigned>(data.size())) + data;
    }
  }
}

std::string DamagedXlsx(Parts parts, Chance& chance) {
  for (std::size_t times = chance.Few(6); times > 0 && !parts.empty(); --times) {
    DamageParts(parts, chance);
  }
  // To pack them takes longer than to read them.
  return MakeZip(parts, chance.Below(8) == 0 ? Packing::kDeflated : Packing::kStored);
}

std::string DamagedXls(std::string_view stream, Chance& chance) {
  std::vector<std::string> records = SplitRecords(stream);
  for (std::size_t times = chance.Few(6); times > 0 && !records.empty(); --times) {
    DamageRecords(records, chance);
  }
  std::string damaged;
  for (const std::string& record : records) {
    damaged += record;
  }
  return MakeCompoundFile({{"Workbook", damaged}},
                          damaged.size() < (4U << 20) ? kUsualSectors : kLargeSectors);
}

}  // namespace

Mutator::Mutator(std::string bytes) : bytes_(std::move(bytes)) {
  if (bytes_.starts_with("PK")) {
    parts_ = ReadZip(bytes_);
    return;
  }
  const CompoundFile file(bytes_, "w");
  for (const char* const name : {"Workbook", "Book"}) {
    if (stream_.empty()) {
      stream_ = file.Stream(name).value_or("");
    }
  }
  if (stream_.empty()) {
    throw std::invalid_argument("no workbook to damage");
  }
}

std::string Mutator::Make(std::uint64_t number) const {
  Chance chance(number);
  if (chance.Below(4) > 0) {
    return parts_.empty() ? DamagedXls(stream_, chance) : DamagedXlsx(parts_, chance);
  }
  std::string damaged = bytes_;
  for (std::size_t times = chance.Few(8); times > 0; --times) {
    DamageBytes(damaged, chance);
  }
  return damaged;
}

}  // namespace nimbrel::spreadsheet
