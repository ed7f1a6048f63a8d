#pragma once

#include <string>
#include <utility>

namespace nimbrel::toolkit {

/// What became of a user's gesture. It is made unless a hand cannot make it: the control is
/// disabled or not on show, or its form is behind another one. A gesture that was made may have
/// been refused by a Validate, or may have raised an error that the form's default handling showed.
class GestureResult {
 public:
  static GestureResult Made() { return GestureResult({}); }
  static GestureResult Impossible(std::string reason) { return GestureResult(std::move(reason)); }

  bool made() const { return reason_.empty(); }
  /// Why a hand cannot make it; empty if it was made.
  const std::string& reason() const { return reason_; }

 private:
  explicit GestureResult(std::string reason) : reason_(std::move(reason)) {}

  std::string reason_;
};

/// The keys that mean more than a character; the values are the key codes that KeyDown gets.
enum class Key {
  kBackspace = 8,
  kTab = 9,
  kEnter = 13,
  kEscape = 27,
  kSpace = 32,
  kEnd = 35,
  kHome = 36,
  kLeft = 37,
  kUp = 38,
  kRight = 39,
  kDown = 40,
  kDelete = 46,
};

}  // namespace nimbrel::toolkit
