#pragma once

#include <cstdint>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

/// What has changed of a control since a face has painted it last.
class Changes {
 public:
  static Changes All() { return Changes(~std::uint32_t{0}); }
  Changes() = default;

  void Add(Property property) { bits_ |= Bit(property); }
  bool Has(Property property) const { return (bits_ & Bit(property)) != 0; }
  bool Any() const { return bits_ != 0; }

 private:
  explicit Changes(std::uint32_t bits) : bits_(bits) {}
  static std::uint32_t Bit(Property property) {
    return std::uint32_t{1} << static_cast<unsigned>(property);
  }

  std::uint32_t bits_ = 0;
};

}  // namespace nimbrel::toolkit
