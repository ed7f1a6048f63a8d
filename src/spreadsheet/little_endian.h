#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nimbrel::spreadsheet {

/// Numbers in bytes, the lowest byte first. The bytes from `offset` on must be there.

inline std::uint16_t Read16(std::string_view bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[offset]) |
                                    static_cast<unsigned char>(bytes[offset + 1]) << 8);
}

inline std::uint32_t Read32(std::string_view bytes, std::size_t offset) {
  return Read16(bytes, offset) | static_cast<std::uint32_t>(Read16(bytes, offset + 2)) << 16;
}

inline std::uint64_t Read64(std::string_view bytes, std::size_t offset) {
  return Read32(bytes, offset) | static_cast<std::uint64_t>(Read32(bytes, offset + 4)) << 32;
}

inline double ReadDouble(std::string_view bytes, std::size_t offset) {
  return std::bit_cast<double>(Read64(bytes, offset));
}

}  // namespace nimbrel::spreadsheet
