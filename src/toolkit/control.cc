#include "toolkit/control.h"

#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/form.h"

namespace nimbrel::toolkit {

Control::Control(Container& parent, std::string name, Place place)
    : parent_(parent),
      name_(std::move(name)),
      place_(place),
      tab_index_(static_cast<int>(parent.OwnerForm().AllControls().size())) {
  parent_.controls_.push_back(this);
  parent_.OwnerForm().Register(*this);
}

Control::~Control() {
  std::erase(parent_.controls_, this);
  parent_.OwnerForm().Unregister(*this);
}

Form& Control::OwnerForm() const {
  return parent_.OwnerForm();
}

Desktop& Control::OwnerDesktop() const {
  return OwnerForm().OwnerDesktop();
}

void Control::Move(int left, int top, int width, int height) {
  const Place place{left, top, width, height};
  if (place != place_) {
    place_ = place;
    Changed(Property::kPlace);
  }
}

void Control::SetEnabled(bool enabled) {
  if (enabled != enabled_) {
    enabled_ = enabled;
    Changed(Property::kEnabled);
    RescueFocus();
  }
}

void Control::SetVisible(bool visible) {
  if (visible != visible_) {
    visible_ = visible;
    Changed(Property::kVisible);
    RescueFocus();
  }
}

bool Control::HasFocus() const {
  return OwnerForm().ActiveControl() == this;
}

void Control::SetFocus() {
  if (!CanHaveFocus()) {
    throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                 name_ + " can't take the focus at present");
  }
  OwnerForm().MoveFocus(*this);
}

void Control::RescueFocus() {
  OwnerForm().RescueFocus();
}

std::optional<std::string> Control::PropertyText(std::string_view property) const {
  if (property == "Enabled") {
    return enabled_ ? "True" : "False";
  }
  if (property == "Visible") {
    return visible_ ? "True" : "False";
  }
  return std::nullopt;
}

void Control::Changed(Property property) {
  OwnerForm().OnChanged(*this, property);
}

std::string Control::WhyNoGesture() const {
  if (std::string why_not = OwnerForm().WhyNoGesture(); !why_not.empty()) {
    return why_not;
  }
  if (!IsOnShow()) {
    return name_ + " is not on show";
  }
  if (!IsUsable()) {
    return name_ + " is disabled";
  }
  return {};
}

std::string Control::WhyNoGestureOr(std::string own_reason) const {
  std::string reason = WhyNoGesture();
  return reason.empty() ? own_reason : reason;
}

GestureResult Control::Gesture(std::string why_not, const std::function<void()>& action) {
  return OwnerForm().Gesture(std::move(why_not), action);
}

bool Control::TakeFocusForClick() {
  if (!TakesFocusOnClick()) {
    return true;
  }
  // What the handlers on the way did may have left nothing to click on.
  return OwnerForm().MoveFocus(*this) && OwnerForm().Visible() && CanHaveFocus();
}

bool Control::PressKeyDown(int key_code) {
  if (!OwnerForm().MoveFocus(*this)) {
    return false;
  }
  Raise(KeyDown, "KeyDown", std::to_string(key_code), false, key_code);
  return HasFocus() && OwnerForm().Visible();
}

GestureResult Control::UserClick() {
  return Gesture(WhyNoGesture(), [this] {
    if (TakeFocusForClick()) {
      OnClick();
    }
  });
}

GestureResult Control::UserFocus() {
  return Gesture(WhyNoGesture(), [this] { TakeFocusForClick(); });
}

GestureResult Control::UserKey(Key key, bool shift) {
  std::string own_reason = TakesFocus() ? std::string() : name_ + " takes no focus";
  return Gesture(WhyNoGestureOr(std::move(own_reason)), [this, key, shift] {
    if (PressKeyDown(static_cast<int>(key)) && !OnKey(key)) {
      OwnerForm().OnDialogKey(key, shift);
    }
  });
}

}  // namespace nimbrel::toolkit
