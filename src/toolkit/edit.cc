#include "toolkit/edit.h"

#include <algorithm>
#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

/// The code of a key that makes some character on every keyboard in another place.
constexpr int kCharacterKey = 229;

bool StartsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

std::int32_t CharacterCount(std::string_view text) {
  return static_cast<std::int32_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

/// Where the character `position` starts, or the end of the text.
std::size_t ByteOffset(std::string_view text, std::int32_t position) {
  std::size_t offset = 0;
  for (std::int32_t seen = -1; offset < text.size(); ++offset) {
    if (StartsCharacter(text[offset]) && ++seen == position) {
      break;
    }
  }
  return offset;
}

int KeyCodeOf(std::string_view character) {
  const char byte = character.empty() ? '\0' : character.front();
  if (byte >= 'a' && byte <= 'z') {
    return byte - 'a' + 'A';
  }
  const bool is_its_code = (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
  return is_its_code || byte == ' ' ? byte : kCharacterKey;
}

/// Whether no key types it into a box of one line: a line break, a tab, and their like.
bool IsControlCharacter(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  const bool is_c1 =
      character.size() == 2 && first == 0xC2 && static_cast<unsigned char>(character.back()) < 0xA0;
  return first < 0x20 || first == 0x7F || is_c1;
}

void CheckNotNegative(std::int32_t value) {
  if (value < 0) {
    throw platform::RuntimeError(kInvalidPropertyValue,
                                 "A place in a text can't be negative: " + std::to_string(value));
  }
}

}  // namespace

void EditControl::SetText(const std::string& text) {
  if (text != text_) {
    Put(text, 0);
  }
}

bool EditControl::Assign(std::string text, std::int32_t caret) {
  const bool is_new = text != text_;
  text_ = std::move(text);
  sel_start_ = std::clamp(caret, 0, CharacterCount(text_));
  sel_length_ = 0;
  Changed(Property::kText);
  return is_new;
}

void EditControl::Put(std::string text, std::int32_t caret) {
  if (Assign(std::move(text), caret)) {
    Raise(Change, "Change");
  }
}

void EditControl::SetSelStart(std::int32_t start) {
  CheckNotNegative(start);
  sel_start_ = std::min(start, CharacterCount(text_));
  sel_length_ = 0;
  Changed(Property::kText);
}

void EditControl::SetSelLength(std::int32_t length) {
  CheckNotNegative(length);
  sel_length_ = std::min(length, CharacterCount(text_) - sel_start_);
  Changed(Property::kText);
}

std::string EditControl::SelText() const {
  const std::size_t from = ByteOffset(text_, sel_start_);
  return text_.substr(from, ByteOffset(text_, sel_start_ + sel_length_) - from);
}

void EditControl::SetSelText(const std::string& text) {
  ReplaceSelection(text);
}

void EditControl::ReplaceSelection(const std::string& text) {
  const std::size_t from = ByteOffset(text_, sel_start_);
  const std::size_t to = ByteOffset(text_, sel_start_ + sel_length_);
  Put(text_.substr(0, from) + text + text_.substr(to), sel_start_ + CharacterCount(text));
}

void EditControl::Erase(std::int32_t start, std::int32_t length) {
  if (sel_length_ == 0) {
    if (start < 0) {
      return;
    }
    SetSelStart(start);
    SetSelLength(length);
  }
  ReplaceSelection({});
}

std::optional<std::string> EditControl::PropertyText(std::string_view property) const {
  return property == "Text" || property == "Value" ? text_ : Control::PropertyText(property);
}

bool EditControl::OnKey(Key key) {
  switch (key) {
    case Key::kBackspace:
      Erase(sel_start_ - 1, 1);
      return true;
    case Key::kDelete:
      Erase(sel_start_, 1);
      return true;
    case Key::kSpace:
      ReplaceSelection(" ");
      return true;
    case Key::kHome:
      SetSelStart(0);
      return true;
    case Key::kEnd:
      SetSelStart(CharacterCount(text_));
      return true;
    case Key::kLeft:
      SetSelStart(sel_length_ > 0 ? sel_start_ : std::max(sel_start_ - 1, 0));
      return true;
    case Key::kRight:
      SetSelStart(sel_start_ + (sel_length_ > 0 ? sel_length_ : 1));
      return true;
    default:
      return false;
  }
}

GestureResult EditControl::UserType(const std::string& text) {
  // Two gestures, as a hand makes them: an error in what has the focus ends the first alone.
  GestureResult result = UserFocus();
  if (result.made() && HasFocus()) {
    result = UserSelect(0, CharacterCount(text_));
  }
  if (!result.made() || !HasFocus()) {
    return result;
  }
  if (text.empty() && !text_.empty()) {
    return UserKey(Key::kDelete);
  }
  for (std::size_t at = 0; at < text.size() && result.made() && HasFocus();) {
    std::size_t end = at + 1;
    while (end < text.size() && !StartsCharacter(text[end])) {
      ++end;
    }
    const std::string character = text.substr(at, end - at);
    at = end;
    if (!IsControlCharacter(character)) {
      result = UserTypeCharacter(character);
    }
  }
  return result;
}

GestureResult EditControl::UserTypeCharacter(const std::string& character) {
  return Gesture(WhyNoGesture(), [this, &character] {
    if (PressKeyDown(KeyCodeOf(character))) {
      ReplaceSelection(character);
    }
  });
}

GestureResult EditControl::UserReplaceText(const std::string& text, std::int32_t caret) {
  return Gesture(WhyNoGesture(), [this, &text, caret] {
    if (TakeFocusForClick()) {
      Put(text, caret);
    }
  });
}

GestureResult EditControl::UserSelect(std::int32_t start, std::int32_t length) {
  return Gesture(WhyNoGesture(), [this, start, length] {
    if (TakeFocusForClick()) {
      SetSelStart(std::max(start, 0));
      SetSelLength(std::max(length, 0));
    }
  });
}

TextBox::TextBox(Container& parent, std::string name, Place place)
    : EditControl(parent, std::move(name), place) {}

}  // namespace nimbrel::toolkit
