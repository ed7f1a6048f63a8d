#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

/// Text on a form. Takes no focus.
class Label final : public Control {
 public:
  Label(Container& parent, std::string name, std::string caption = {}, Place place = {});

  ControlKind Kind() const override { return ControlKind::kLabel; }
  bool TakesFocus() const override { return false; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  /// Also "Caption".
  std::optional<std::string> PropertyText(std::string_view property) const override;

 private:
  std::string caption_;
};

/// A box with a caption around other controls, which are hidden and disabled with it.
class Frame final : public Control, public Container {
 public:
  Frame(Container& parent, std::string name, std::string caption = {}, Place place = {});

  ControlKind Kind() const override { return ControlKind::kFrame; }
  bool TakesFocus() const override { return false; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  /// Also "Caption".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  Form& OwnerForm() override { return Control::OwnerForm(); }
  bool ShowsContents() const override { return IsOnShow(); }
  bool EnablesContents() const override { return IsUsable(); }

 private:
  std::string caption_;
};

}  // namespace nimbrel::toolkit
