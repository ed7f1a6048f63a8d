#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

/// A control with an edit part: one line of text that can be typed, and a selection in it. Texts
/// are UTF-8; positions and lengths count characters.
class EditControl : public Control {
 public:
  const std::string& Text() const { return text_; }
  /// Raises Change for a new text, once. The caret goes to the start.
  void SetText(const std::string& text);
  /// The same as Text.
  const std::string& Value() const { return text_; }
  void SetValue(const std::string& text) { SetText(text); }

  /// First selected character, or the caret's place, from 0.
  std::int32_t SelStart() const { return sel_start_; }
  std::int32_t SelLength() const { return sel_length_; }
  /// Both are held inside the text. Setting the start ends the selection. Raise error 380 for a
  /// negative number; no event.
  void SetSelStart(std::int32_t start);
  void SetSelLength(std::int32_t length);
  std::string SelText() const;
  /// Puts `text` in the place of the selection, as typing does; the caret goes behind it.
  void SetSelText(const std::string& text);

  /// Also "Text" and "Value".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  std::function<void()> Change;

  /// Goes into the box as by a click, selects all and types the text key by key: each character is
  /// a KeyDown, then a Change. Each key is a gesture of its own for errors. The empty text deletes
  /// what is selected.
  GestureResult UserType(const std::string& text);
  /// Types one character in the place of the selection. For faces, which get keys one by one.
  GestureResult UserTypeCharacter(const std::string& character);
  /// Replaces the whole text at once, without keys: pasting, dropping, an input method. The caret
  /// goes to `caret`.
  GestureResult UserReplaceText(const std::string& text, std::int32_t caret);
  /// Selects by mouse or keys.
  GestureResult UserSelect(std::int32_t start, std::int32_t length);

 protected:
  EditControl(Container& parent, std::string name, Place place)
      : Control(parent, std::move(name), place) {}

  bool OnKey(Key key) override;

  /// Takes the text, with the caret at `caret`, and raises what follows from it.
  virtual void Put(std::string text, std::int32_t caret);
  /// Takes text and caret, tells the face, raises nothing. True if the text is new.
  bool Assign(std::string text, std::int32_t caret);

 private:
  void ReplaceSelection(const std::string& text);
  void Erase(std::int32_t start, std::int32_t length);

  std::string text_;
  std::int32_t sel_start_ = 0;
  std::int32_t sel_length_ = 0;
};

/// A text box of one line.
class TextBox final : public EditControl {
 public:
  TextBox(Container& parent, std::string name, Place place = {});

  ControlKind Kind() const override { return ControlKind::kTextBox; }
};

}  // namespace nimbrel::toolkit
