#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/read_error.h"

namespace nimbrel::spreadsheet {

/// A record of a BIFF stream with the records that continue it. The views are into the stream.
struct BiffRecord {
  std::uint16_t type = 0;
  std::size_t offset = 0;                // of the record in the stream
  std::vector<std::string_view> pieces;  // the record's own bytes, then each continuation's

  /// The record's own bytes.
  std::string_view data() const { return pieces.front(); }
};

/// The records of a BIFF stream one after the other.
class BiffStream {
 public:
  /// `bytes` and `place` must live as long as this.
  BiffStream(std::string_view bytes, std::size_t offset, const ReadPlace& place)
      : bytes_(bytes), offset_(offset), place_(place) {}

  /// Takes the next record; false at the end of the stream. A record that is cut short ends it,
  /// too, since some writers pad the stream with zeros. Raises error 1004 if the record is
  /// continued too often.
  bool Next(BiffRecord& record);

 private:
  bool HasRecord() const;
  std::string_view TakeData();

  std::string_view bytes_;
  std::size_t offset_;
  const ReadPlace& place_;
};

/// Reads the fields of a record, on into its continuations. Raises error 1004 past their end.
class BiffFields {
 public:
  BiffFields(const BiffRecord& record, const ReadPlace& place) : record_(record), place_(place) {}

  std::uint8_t Take8();
  std::uint16_t Take16();
  std::uint32_t Take32();
  double TakeDouble();
  void Skip(std::size_t bytes);
  bool AtEnd() const;

  /// `length` characters of BIFF 8, with the byte of flags and whatever else stands between the
  /// length and the characters, and what stands behind them. As UTF-8.
  std::string TakeUnicode(std::size_t length);
  /// `length` bytes of older BIFF.
  std::string TakeBytes(std::size_t length);

 private:
  [[noreturn]] void RaiseShort() const;
  std::size_t Left() const { return record_.pieces[piece_].size() - offset_; }
  /// Goes on to the next piece if this one is used up.
  void Settle();
  std::string TakeCharacters(std::size_t length, bool wide);

  const BiffRecord& record_;
  const ReadPlace& place_;
  std::size_t piece_ = 0;
  std::size_t offset_ = 0;
};

}  // namespace nimbrel::spreadsheet
