#include "toolkit/buttons.h"

#include <utility>

namespace nimbrel::toolkit {

CommandButton::CommandButton(Container& parent, std::string name, std::string caption, Place place)
    : Control(parent, std::move(name), place), caption_(std::move(caption)) {}

void CommandButton::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed(Property::kCaption);
}

void CommandButton::SetDefault(bool is_default) {
  default_ = is_default;
  Changed(Property::kStyle);
}

void CommandButton::SetCancel(bool is_cancel) {
  cancel_ = is_cancel;
  Changed(Property::kStyle);
}

std::optional<std::string> CommandButton::PropertyText(std::string_view property) const {
  return property == "Caption" ? caption_ : Control::PropertyText(property);
}

void CommandButton::OnClick() {
  Raise(Click, "Click");
}

bool CommandButton::OnKey(Key key) {
  const bool presses = key == Key::kEnter || key == Key::kSpace;
  if (presses) {
    OnClick();
  }
  return presses;
}

CheckBox::CheckBox(Container& parent, std::string name, std::string caption, Place place)
    : Control(parent, std::move(name), place), caption_(std::move(caption)) {}

void CheckBox::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed(Property::kCaption);
}

void CheckBox::SetValue(bool value) {
  if (value != value_) {
    value_ = value;
    Changed(Property::kText);
    Raise(Click, "Click");
  }
}

std::optional<std::string> CheckBox::PropertyText(std::string_view property) const {
  if (property == "Value") {
    return value_ ? "True" : "False";
  }
  return property == "Caption" ? caption_ : Control::PropertyText(property);
}

bool CheckBox::OnKey(Key key) {
  if (key != Key::kSpace) {
    return false;
  }
  OnClick();
  return true;
}

}  // namespace nimbrel::toolkit
