#pragma once

#include <unistd.h>

#include <utility>

namespace nimbrel::platform {

/// An open file's descriptor, closed in the end. A negative one is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { Close(); }

  bool IsOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  void Close() {
    if (number_ >= 0) {
      ::close(std::exchange(number_, -1));
    }
  }

 private:
  int number_;
};

}  // namespace nimbrel::platform
