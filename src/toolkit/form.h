#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

class CommandButton;

/// Hears what changes on a form, so that a face can paint it. It must not call back into the
/// toolkit: a face notes what changed and paints later.
class FormObserver {
 public:
  virtual ~FormObserver() = default;
  virtual void OnControlChanged(Control& control, Property property) = 0;
  /// The form's caption, or whether it is visible, has changed.
  virtual void OnFormChanged() = 0;
};

/// Why a form is being unloaded.
enum class UnloadMode { kCode, kControlMenu };

/// A dialog: a container of controls that is shown modally.
///
/// A form is loaded when it is first shown, stays loaded while it is hidden, and can be asked for
/// the values of its controls in every state.
class Form : public Container {
 public:
  /// `desktop` must outlive the form. Width and height are those of the client area, in twips.
  Form(Desktop& desktop, std::string name, std::string caption, int width, int height);
  virtual ~Form();

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);
  int Width() const { return width_; }
  int Height() const { return height_; }
  Desktop& OwnerDesktop() const { return desktop_; }

  /// The form is about to be used for the first time. An error goes to the caller of Load.
  std::function<void()> Form_Load;
  /// The form is about to be unloaded; setting `cancel` keeps it. Form_QueryUnload comes first.
  std::function<void(bool& cancel, UnloadMode mode)> Form_QueryUnload;
  std::function<void(bool& cancel)> Form_Unload;

  /// Raises Form_Load unless the form is loaded. After an error it is not.
  void Load();
  /// Loads the form, shows it over all others and returns when it was hidden or unloaded. The first
  /// control in tab order gets the focus, unless one has it. Raises error 400 for a form that is
  /// visible already.
  void ShowModal();
  /// Ends the modal show when the running handlers have returned.
  void Hide();
  /// Asks by Form_QueryUnload and Form_Unload; unless one refuses, hides the form, which is then no
  /// longer loaded. Does nothing with a form that is not loaded.
  void Unload();

  bool Loaded() const { return loaded_; }
  bool Visible() const { return visible_; }

  /// The control with the focus, or null.
  Control* ActiveControl() const { return focus_; }
  /// All controls, of frames and pages too, in the order of making.
  const std::vector<Control*>& AllControls() const { return all_controls_; }
  /// The first control of this name, without regard to case; null if there is none.
  Control* Find(std::string_view name) const;
  /// The controls that the Tab key goes through at this moment, in order.
  std::vector<Control*> TabOrder() const;

  /// Must outlive its use; null for none.
  void SetObserver(FormObserver* observer) { observer_ = observer; }

  /// The window's own close button: asks no control.
  GestureResult UserClose();
  /// A key pressed: goes to the control with the focus.
  GestureResult UserKey(Key key, bool shift = false);

  /// Why a hand can do nothing on this form at present; empty if it can.
  std::string WhyNoGesture() const;

  Form& OwnerForm() override { return *this; }
  bool ShowsContents() const override { return true; }
  bool EnablesContents() const override { return true; }

 private:
  friend class Control;
  friend class Desktop;

  void Register(Control& control);
  void Unregister(const Control& control);
  void OnChanged(Control& control, Property property);

  GestureResult Gesture(std::string why_not, const std::function<void()>& action);
  /// Moves the focus after asking the control that has it. False if it was refused, or if the
  /// target can no longer take it.
  bool MoveFocus(Control& target);
  /// Moves the focus without asking.
  void ChangeFocus(Control* target);
  /// Gives the focus to the next control if the one that has it can't have it any more.
  void RescueFocus();
  /// Validates the control with the focus. False if it refuses. After an error the focus is let go
  /// to `target`, unless that is null.
  bool AskToLeave(Control* target);
  Control* NextInTabOrder(const Control* from, bool backward) const;
  void OnDialogKey(Key key, bool shift);
  void PressButton(CommandButton* button);
  CommandButton* FindButton(bool (CommandButton::*is_it)() const) const;
  void AskUnload(UnloadMode mode);

  Desktop& desktop_;
  std::string name_;
  std::string caption_;
  int width_;
  int height_;
  std::vector<Control*> all_controls_;
  Control* focus_ = nullptr;
  FormObserver* observer_ = nullptr;
  bool loaded_ = false;
  bool visible_ = false;
  bool validating_ = false;
  bool unloading_ = false;
};

}  // namespace nimbrel::toolkit
