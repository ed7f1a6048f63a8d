#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "toolkit/desktop.h"
#include "toolkit/gesture.h"

namespace nimbrel::toolkit {

class Control;
class Form;

/// A place in twips, relative to the container: 1440 to the inch.
struct Place {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  friend bool operator==(const Place&, const Place&) = default;
};

/// What of a control has changed, for faces.
enum class Property {
  kCaption,
  kText,     ///< text, value of a check box, selection of an edit part
  kEnabled,  ///< its own or, for a container, that of all in it
  kVisible,  ///< the same
  kPlace,
  kEntries,    ///< entries of a list box or combo box; rows and cells of a list view; nodes
  kSelection,  ///< ListIndex, SelectedItem
  kChecked,
  kExpanded,
  kColumns,
  kTab,  ///< the page on show
  kStyle,
  kScroll,  ///< ScrollTarget, an item to bring into view
  kFocus,   ///< has taken or lost the focus, or kept it against a gesture
};

enum class ControlKind {
  kCommandButton,
  kCheckBox,
  kTextBox,
  kComboBox,
  kListBox,
  kLabel,
  kFrame,
  kTabStrip,
  kListView,
  kTreeView,
};

/// What controls stand in: a form, a frame, a page of a tab strip.
class Container {
 public:
  Container() = default;
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  virtual Form& OwnerForm() = 0;
  /// Whether what stands in it can be seen, and used, as far as it depends on the container and
  /// all around it.
  virtual bool ShowsContents() const = 0;
  virtual bool EnablesContents() const = 0;

  /// The controls that stand directly in it, in the order of making.
  const std::vector<Control*>& Controls() const { return controls_; }

 protected:
  ~Container() = default;

 private:
  friend class Control;

  std::vector<Control*> controls_;
};

/// A control of a form: place, state, focus and the events that all controls have.
///
/// Setting a property to a new value raises its event within the statement, if it has one; setting
/// the value that it has raises nothing. An error of a handler goes to the statement that raised
/// the event. The operations named User... are a user's gestures: they keep to the rules of focus
/// and validation, and an error ends at the form's default handling.
///
/// Controls belong to their form's object and live as long; they are neither copied nor moved.
class Control {
 public:
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  virtual ControlKind Kind() const = 0;
  const std::string& Name() const { return name_; }
  Container& Parent() const { return parent_; }
  Form& OwnerForm() const;

  const Place& GetPlace() const { return place_; }
  int Left() const { return place_.left; }
  int Top() const { return place_.top; }
  int Width() const { return place_.width; }
  int Height() const { return place_.height; }
  void Move(int left, int top, int width, int height);

  /// The control's own setting. A control that has the focus and is disabled or hidden gives it to
  /// the next one in tab order, without being asked.
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  /// Whether it is visible, or enabled, together with all that it stands in.
  bool IsOnShow() const { return visible_ && parent_.ShowsContents(); }
  bool IsUsable() const { return enabled_ && parent_.EnablesContents(); }

  /// Place in the form's tab order; at first the order of making. Equal ones keep that order.
  int TabIndex() const { return tab_index_; }
  void SetTabIndex(int tab_index) { tab_index_ = tab_index; }

  /// What a screen reader calls it, where its caption does not say it; empty if none was given.
  const std::string& AccessibleName() const { return accessible_name_; }
  void SetAccessibleName(std::string name) { accessible_name_ = std::move(name); }

  /// Whether it can have the focus at all. Labels and frames can't.
  virtual bool TakesFocus() const { return true; }
  /// Whether a click gives it the focus.
  virtual bool TakesFocusOnClick() const { return TakesFocus(); }
  bool HasFocus() const;
  /// Moves the focus here; the control that has it is validated first and may keep it. Raises
  /// error 5 for a control that can't take it: it, too, has to be on show and usable.
  void SetFocus();

  /// A property as text, for logs: "Enabled" and "Visible" ("True" or "False") and what the kind of
  /// control adds. Nothing for a property that it has not.
  virtual std::optional<std::string> PropertyText(std::string_view property) const;

  std::function<void()> GotFocus;
  std::function<void()> LostFocus;
  /// A key is pressed; the code is that of Key, the upper-case letter, the digit, or 229 for any
  /// other character. What the key does comes after it.
  std::function<void(int key_code)> KeyDown;
  /// The focus is about to leave; setting `cancel` keeps it and swallows the gesture. An error
  /// swallows the gesture, too, but lets the focus go, so that no control can trap it.
  std::function<void(bool& cancel)> Validate;

  /// A click of the mouse.
  GestureResult UserClick();
  /// A key pressed while the control has the focus; if it has not, it takes it first as by a click.
  GestureResult UserKey(Key key, bool shift = false);
  /// Takes the focus as by a click, and no more.
  GestureResult UserFocus();

  /// Why a hand can do nothing with it at present; empty if it can.
  std::string WhyNoGesture() const;

 protected:
  /// `parent` must outlive the control.
  Control(Container& parent, std::string name, Place place);

  /// Runs a handler, if there is one, for an event with at most one argument worth logging.
  template <class... Params>
  void Raise(const std::function<void(Params...)>& handler, std::string_view event,
             std::string_view argument, bool quoted, std::type_identity_t<Params>... params) {
    if (!handler) {
      return;
    }
    const auto running = handler;  // lives on if the handler is replaced meanwhile
    const EventScope scope(OwnerDesktop(), {name_, event, argument, quoted, 0});
    running(params...);
  }
  void Raise(const std::function<void()>& handler, std::string_view event) {
    Raise(handler, event, {}, false);
  }
  /// Tells the form's observer.
  void Changed(Property property);

  /// What the control does on a click, after it has the focus.
  virtual void OnClick() {}
  /// What it does with a key; false leaves the key to the form (Tab, Enter, Escape).
  virtual bool OnKey(Key /*key*/) { return false; }

  /// Runs a gesture on this control, unless there is a reason why a hand can't make it; errors go
  /// to the form's default handling.
  GestureResult Gesture(std::string why_not, const std::function<void()>& action);
  /// WhyNoGesture or, where a hand could make one, `own_reason`, which may be empty.
  std::string WhyNoGestureOr(std::string own_reason) const;
  /// Within a gesture: gives the control the focus as a click does, if a click does. False if the
  /// gesture ends here, since the focus was kept elsewhere.
  bool TakeFocusForClick();
  /// Within a gesture of keys: takes the focus as by a click, then raises KeyDown. False if the
  /// gesture ends here, since the focus is elsewhere.
  bool PressKeyDown(int key_code);

  /// What stands in the control can no longer have the focus: gives it to the next control.
  void RescueFocus();

  Desktop& OwnerDesktop() const;

 private:
  friend class Form;

  bool CanHaveFocus() const { return TakesFocus() && IsOnShow() && IsUsable(); }

  Container& parent_;
  std::string name_;
  std::string accessible_name_;
  Place place_;
  int tab_index_;
  bool enabled_ = true;
  bool visible_ = true;
};

}  // namespace nimbrel::toolkit
