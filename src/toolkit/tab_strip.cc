#include "toolkit/tab_strip.h"

#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {

Form& TabPage::OwnerForm() {
  return strip_.OwnerForm();
}

bool TabPage::ShowsContents() const {
  return strip_.IsOnShow() && strip_.Tab() == index_;
}

bool TabPage::EnablesContents() const {
  return strip_.IsUsable();
}

TabStrip::TabStrip(Container& parent, std::string name, const std::vector<std::string>& captions,
                   Place place)
    : Control(parent, std::move(name), place) {
  for (const std::string& caption : captions) {
    pages_.push_back(std::make_unique<TabPage>(*this, Tabs(), caption));
  }
}

TabPage& TabStrip::Page(std::int32_t index) const {
  if (index < 0 || index >= Tabs()) {
    throw platform::RuntimeError(kInvalidPropertyValue,
                                 Name() + " has no tab " + std::to_string(index));
  }
  return *pages_[static_cast<std::size_t>(index)];
}

void TabStrip::SetTab(std::int32_t index) {
  Page(index);
  if (index == tab_) {
    return;
  }
  const std::int32_t previous = std::exchange(tab_, index);
  Changed(Property::kTab);
  RescueFocus();
  Raise(Click, "Click", std::to_string(previous), false, previous);
}

std::optional<std::string> TabStrip::PropertyText(std::string_view property) const {
  if (property == "Tab") {
    return std::to_string(tab_);
  }
  return property == "Caption" ? Page(tab_).Caption() : Control::PropertyText(property);
}

std::string TabStrip::WhyNoTab(std::int32_t index) const {
  const bool there = index >= 0 && index < Tabs();
  return WhyNoGestureOr(there ? std::string() : Name() + " has no tab " + std::to_string(index));
}

GestureResult TabStrip::UserPickTab(std::int32_t index) {
  return Gesture(WhyNoTab(index), [this, index] {
    if (TakeFocusForClick()) {
      SetTab(index);
    }
  });
}

bool TabStrip::OnKey(Key key) {
  if (key != Key::kLeft && key != Key::kRight) {
    return false;
  }
  const std::int32_t index = key == Key::kLeft ? tab_ - 1 : tab_ + 1;
  if (index >= 0 && index < Tabs()) {
    SetTab(index);
  }
  return true;
}

}  // namespace nimbrel::toolkit
