#include "spreadsheet/biff_stream.h"

#include <algorithm>
#include <array>
#include <bit>

#include "spreadsheet/limits.h"
#include "spreadsheet/little_endian.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kRecordHeader = 4;
constexpr std::uint16_t kContinue = 0x003C;

// Flags of a text of BIFF 8.
constexpr unsigned kWide = 0x01;
constexpr unsigned kPhonetic = 0x04;
constexpr unsigned kRich = 0x08;

}  // namespace

bool BiffStream::HasRecord() const {
  return offset_ <= bytes_.size() && bytes_.size() - offset_ >= kRecordHeader &&
         bytes_.size() - offset_ - kRecordHeader >= Read16(bytes_, offset_ + 2);
}

std::string_view BiffStream::TakeData() {
  const std::size_t length = Read16(bytes_, offset_ + 2);
  const std::string_view data = bytes_.substr(offset_ + kRecordHeader, length);
  offset_ += kRecordHeader + length;
  return data;
}

bool BiffStream::Next(BiffRecord& record) {
  if (!HasRecord()) {
    return false;
  }
  record.type = Read16(bytes_, offset_);
  record.offset = offset_;
  record.pieces.clear();
  record.pieces.push_back(TakeData());
  while (HasRecord() && Read16(bytes_, offset_) == kContinue) {
    if (record.pieces.size() > kMaxContinuations) {
      RaiseReadError(place_, "a record is continued more than " +
                                 std::to_string(kMaxContinuations) + " times");
    }
    record.pieces.push_back(TakeData());
  }
  return true;
}

void BiffFields::RaiseShort() const {
  RaiseReadError(place_, "a record is cut short");
}

void BiffFields::Settle() {
  while (Left() == 0 && piece_ + 1 < record_.pieces.size()) {
    ++piece_;
    offset_ = 0;
  }
}

bool BiffFields::AtEnd() const {
  return Left() == 0 &&
         std::all_of(record_.pieces.begin() + static_cast<std::ptrdiff_t>(piece_) + 1,
                     record_.pieces.end(), [](std::string_view piece) { return piece.empty(); });
}

std::uint8_t BiffFields::Take8() {
  Settle();
  if (Left() == 0) {
    RaiseShort();
  }
  return static_cast<std::uint8_t>(record_.pieces[piece_][offset_++]);
}

std::uint16_t BiffFields::Take16() {
  const unsigned low = Take8();
  return static_cast<std::uint16_t>(low | static_cast<unsigned>(Take8()) << 8);
}

std::uint32_t BiffFields::Take32() {
  const std::uint32_t low = Take16();
  return low | static_cast<std::uint32_t>(Take16()) << 16;
}

double BiffFields::TakeDouble() {
  const std::uint64_t low = Take32();
  return std::bit_cast<double>(low | static_cast<std::uint64_t>(Take32()) << 32);
}

void BiffFields::Skip(std::size_t bytes) {
  while (bytes > 0) {
    Settle();
    if (Left() == 0) {
      RaiseShort();
    }
    const std::size_t step = std::min(bytes, Left());
    offset_ += step;
    bytes -= step;
  }
}

std::string BiffFields::TakeUnicode(std::size_t length) {
  const unsigned flags = Take8();
  const std::size_t runs = (flags & kRich) != 0 ? Take16() : 0;
  const std::size_t phonetic = (flags & kPhonetic) != 0 ? Take32() : 0;
  std::string text = TakeCharacters(length, (flags & kWide) != 0);
  constexpr std::size_t kRunSize = 4;
  Skip(runs * kRunSize + phonetic);
  return text;
}

std::string BiffFields::TakeCharacters(std::size_t length, bool wide) {
  std::string units;  // UTF-16
  while (length > 0) {
    if (Left() == 0) {
      if (piece_ + 1 == record_.pieces.size()) {
        RaiseShort();
      }
      // Each continuation says anew how wide its characters are.
      ++piece_;
      offset_ = 0;
      wide = (Take8() & kWide) != 0;
      continue;
    }
    const std::size_t width = wide ? 2 : 1;
    const std::size_t count = std::min(length, Left() / width);
    if (count == 0) {
      RaiseShort();
    }
    const std::string_view raw = record_.pieces[piece_].substr(offset_, count * width);
    if (wide) {
      units += raw;
    } else {
      for (const char c : raw) {
        units += c;
        units += '\0';
      }
    }
    offset_ += count * width;
    length -= count;
  }
  return FromUtf16(units);
}

std::string BiffFields::TakeBytes(std::size_t length) {
  std::string bytes;
  while (bytes.size() < length) {
    Settle();
    if (Left() == 0) {
      RaiseShort();
    }
    const std::size_t step = std::min(length - bytes.size(), Left());
    bytes += record_.pieces[piece_].substr(offset_, step);
    offset_ += step;
  }
  return bytes;
}

}  // namespace nimbrel::spreadsheet
