#include "toolkit/form.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/runtime_error.h"
#include "platform/text.h"
#include "toolkit/buttons.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

/// Sets a flag for as long as it lives.
class Raised {
 public:
  explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
  ~Raised() { flag_ = false; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

 private:
  bool& flag_;
};

/// Runs a form's own handler, if there is one.
template <class... Params>
void RaiseOn(const Form& form, const std::function<void(Params...)>& handler,
             std::string_view event, std::type_identity_t<Params>... params) {
  if (handler) {
    const EventScope scope(form.OwnerDesktop(), {form.Name(), event, {}, false, 0});
    handler(params...);
  }
}

}  // namespace

Form::Form(Desktop& desktop, std::string name, std::string caption, int width, int height)
    : desktop_(desktop),
      name_(std::move(name)),
      caption_(std::move(caption)),
      width_(width),
      height_(height) {}

Form::~Form() = default;

void Form::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  if (observer_ != nullptr) {
    observer_->OnFormChanged();
  }
}

void Form::Load() {
  if (loaded_) {
    return;
  }
  loaded_ = true;
  try {
    RaiseOn(*this, Form_Load, "Load");
  } catch (...) {
    loaded_ = false;
    throw;
  }
}

void Form::ShowModal() {
  if (visible_) {
    throw platform::RuntimeError(kFormAlreadyShown, name_ + " is shown already");
  }
  Load();
  if (!loaded_) {
    return;  // unloaded itself while loading
  }
  const Raised shown(visible_);
  if (observer_ != nullptr) {
    observer_->OnFormChanged();
  }
  if (focus_ == nullptr) {
    ChangeFocus(NextInTabOrder(nullptr, false));
  }
  desktop_.RunForm(*this);
}

void Form::Hide() {
  visible_ = false;
  if (observer_ != nullptr) {
    observer_->OnFormChanged();
  }
}

void Form::Unload() {
  AskUnload(UnloadMode::kCode);
}

void Form::AskUnload(UnloadMode mode) {
  if (!loaded_ || unloading_) {
    return;
  }
  const Raised unloading(unloading_);
  bool cancel = false;
  RaiseOn(*this, Form_QueryUnload, "QueryUnload", cancel, mode);
  if (!cancel) {
    RaiseOn(*this, Form_Unload, "Unload", cancel);
  }
  if (!cancel) {
    Hide();
    focus_ = nullptr;
    loaded_ = false;
  }
}

Control* Form::Find(std::string_view name) const {
  const auto found = std::find_if(
      all_controls_.begin(), all_controls_.end(),
      [name](const Control* control) { return platform::EqualsIgnoreCase(control->Name(), name); });
  return found == all_controls_.end() ? nullptr : *found;
}

std::vector<Control*> Form::TabOrder() const {
  std::vector<Control*> order;
  for (Control* const control : all_controls_) {
    // The control that has just lost the power to have the focus still says where to go on.
    if (control->CanHaveFocus() || control == focus_) {
      order.push_back(control);
    }
  }
  std::stable_sort(order.begin(), order.end(), [](const Control* a, const Control* b) {
    return a->TabIndex() < b->TabIndex();
  });
  return order;
}

Control* Form::NextInTabOrder(const Control* from, bool backward) const {
  std::vector<Control*> order = TabOrder();
  if (backward) {
    std::reverse(order.begin(), order.end());
  }
  auto place = std::find(order.begin(), order.end(), from);
  if (place == order.end()) {
    return order.empty() ? nullptr : order.front();
  }
  std::rotate(order.begin(), place, order.end());
  return order.size() > 1 ? order[1] : nullptr;
}

void Form::Register(Control& control) {
  all_controls_.push_back(&control);
}

void Form::Unregister(const Control& control) {
  std::erase(all_controls_, &control);
  if (focus_ == &control) {
    focus_ = nullptr;
  }
}

void Form::OnChanged(Control& control, Property property) {
  if (observer_ != nullptr) {
    observer_->OnControlChanged(control, property);
  }
}

std::string Form::WhyNoGesture() const {
  if (!visible_) {
    return name_ + " is not open";
  }
  if (desktop_.BoxIsOpen()) {
    return name_ + " is behind a message box";
  }
  if (desktop_.Top() != this) {
    return name_ + " is behind another form";
  }
  return {};
}

GestureResult Form::Gesture(std::string why_not, const std::function<void()>& action) {
  if (!why_not.empty()) {
    return GestureResult::Impossible(std::move(why_not));
  }
  try {
    action();
  } catch (const platform::RuntimeError& error) {
    desktop_.ReportError(error.number(), error.text(), caption_);
  } catch (const std::exception& error) {
    desktop_.ReportError(kInternalError, error.what(), caption_);
  }
  return GestureResult::Made();
}

GestureResult Form::UserClose() {
  return Gesture(WhyNoGesture(), [this] { AskUnload(UnloadMode::kControlMenu); });
}

GestureResult Form::UserKey(Key key, bool shift) {
  if (focus_ != nullptr) {
    return focus_->UserKey(key, shift);
  }
  return Gesture(WhyNoGesture(), [this, key, shift] { OnDialogKey(key, shift); });
}

bool Form::AskToLeave(Control* target) {
  Control& asked = *focus_;
  bool cancel = false;
  try {
    const Raised validating(validating_);
    asked.Raise(asked.Validate, "Validate", {}, false, cancel);
  } catch (...) {
    if (target != nullptr && target->CanHaveFocus()) {
      ChangeFocus(target);
    }
    throw;
  }
  if (cancel) {
    OnChanged(asked, Property::kFocus);
  }
  return !cancel;
}

bool Form::MoveFocus(Control& target) {
  if (focus_ == &target) {
    return true;
  }
  if (focus_ != nullptr && !validating_ && !AskToLeave(&target)) {
    return false;
  }
  if (!target.CanHaveFocus()) {
    return false;
  }
  ChangeFocus(&target);
  return focus_ == &target;
}

void Form::ChangeFocus(Control* target) {
  Control* const left = std::exchange(focus_, target);
  if (left == target) {
    return;
  }
  if (left != nullptr) {
    OnChanged(*left, Property::kFocus);
    left->Raise(left->LostFocus, "LostFocus");
  }
  if (target != nullptr && focus_ == target) {
    OnChanged(*target, Property::kFocus);
    target->Raise(target->GotFocus, "GotFocus");
  }
}

void Form::RescueFocus() {
  if (focus_ != nullptr && !focus_->CanHaveFocus()) {
    ChangeFocus(NextInTabOrder(focus_, false));
  }
}

CommandButton* Form::FindButton(bool (CommandButton::*is_it)() const) const {
  for (Control* const control : all_controls_) {
    auto* const button = dynamic_cast<CommandButton*>(control);
    if (button != nullptr && (button->*is_it)()) {
      return button;
    }
  }
  return nullptr;
}

void Form::OnDialogKey(Key key, bool shift) {
  if (key == Key::kTab) {
    if (Control* const next = NextInTabOrder(focus_, shift); next != nullptr) {
      MoveFocus(*next);
    }
  } else if (key == Key::kEnter) {
    PressButton(FindButton(&CommandButton::Default));
  } else if (key == Key::kEscape) {
    PressButton(FindButton(&CommandButton::Cancel));
  }
}

void Form::PressButton(CommandButton* button) {
  if (button == nullptr || !button->WhyNoGesture().empty()) {
    return;
  }
  const bool asks = focus_ != nullptr && focus_ != button;
  if (!asks || AskToLeave(nullptr)) {
    button->OnClick();
  }
}

}  // namespace nimbrel::toolkit
