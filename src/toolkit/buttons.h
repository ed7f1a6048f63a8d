#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

class CommandButton final : public Control {
 public:
  CommandButton(Container& parent, std::string name, std::string caption = {}, Place place = {});

  ControlKind Kind() const override { return ControlKind::kCommandButton; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  /// The button that Enter presses on the form, and the one that Escape presses. The focus stays
  /// where it is, but the control that has it is validated first, as by a click.
  bool Default() const { return default_; }
  void SetDefault(bool is_default);
  bool Cancel() const { return cancel_; }
  void SetCancel(bool is_cancel);

  bool TakesFocusOnClick() const override { return takes_focus_on_click_; }
  void SetTakesFocusOnClick(bool takes) { takes_focus_on_click_ = takes; }

  /// Also "Caption".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  std::function<void()> Click;

 protected:
  void OnClick() override;
  bool OnKey(Key key) override;

 private:
  friend class Form;

  std::string caption_;
  bool default_ = false;
  bool cancel_ = false;
  bool takes_focus_on_click_ = true;
};

/// A check box of two states.
class CheckBox final : public Control {
 public:
  CheckBox(Container& parent, std::string name, std::string caption = {}, Place place = {});

  ControlKind Kind() const override { return ControlKind::kCheckBox; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  bool Value() const { return value_; }
  /// Raises Click for a new value.
  void SetValue(bool value);

  /// Also "Caption", and "Value" as "True" or "False".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  std::function<void()> Click;

 protected:
  void OnClick() override { SetValue(!value_); }
  bool OnKey(Key key) override;

 private:
  std::string caption_;
  bool value_ = false;
};

}  // namespace nimbrel::toolkit
