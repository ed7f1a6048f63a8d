// The faces of text boxes and combo boxes.

#include <algorithm>
#include <utility>

#include "toolkit/edit.h"
#include "toolkit/list_box.h"
#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// What a box has beside its text within its edge, and above and below it together, in pixels at
/// 100%.
constexpr int kBesideText = 4;
constexpr int kAroundText = 3;
/// Entries of a list that drops down, at the most.
constexpr int kEntriesInView = 16;
/// The least width of a box, in characters.
constexpr int kLeastCharacters = 3;

/// What keys with Control type: copying, pasting, cutting and undoing, which the edit control does.
bool IsCommandOfEdit(wchar_t typed) {
  constexpr std::wstring_view kCommands = L"\x03\x16\x18\x1A";
  return kCommands.find(typed) != std::wstring_view::npos;
}

bool IsControlCharacter(wchar_t typed) {
  return typed < L' ' || typed == L'\x7F';
}

/// A part of a text, in code units.
struct Part {
  int start = 0;
  int end = 0;

  friend bool operator==(const Part&, const Part&) = default;
};

Part MarkedPart(HWND line) {
  DWORD start = 0;
  DWORD end = 0;
  ::SendMessageW(line, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  return {static_cast<int>(start), static_cast<int>(end)};
}

/// Joins an edit part with an edit control. Keys that mean something to the toolkit are forwarded
/// one by one, and the edit control follows; what it does by itself (marking, the clipboard,
/// undoing, input methods) is forwarded when it has been done.
class EditLink {
 public:
  explicit EditLink(EditControl& box) : box_(box) {}

  void Join(HWND line) { line_ = line; }
  HWND line() const { return line_; }

  /// The time in which changes of the edit control come from here.
  class Painting {
   public:
    explicit Painting(EditLink& link)
        : flag_(link.painting_), before_(std::exchange(flag_, true)) {}
    ~Painting() { flag_ = before_; }
    Painting(const Painting&) = delete;
    Painting& operator=(const Painting&) = delete;

   private:
    bool& flag_;
    bool before_;
  };
  bool painting() const { return painting_; }

  /// Brings the edit control to the box's text and selection. `by_user` says that the user's own
  /// key changed the text, which can then be undone.
  void Paint(bool by_user) {
    const Painting painting(*this);
    const std::wstring text = ToWide(box_.Text());
    const std::wstring shown = TextOf(line_);
    if (shown != text) {
      if (by_user) {
        Amend(shown, text);
      } else {
        ::SetWindowTextW(line_, text.c_str());
      }
    }
    if (box_.HasFocus()) {
      PaintSelection();
    }
  }

  void PaintSelection() {
    const std::wstring text = ToWide(box_.Text());
    const Part part{UnitsBefore(text, box_.SelStart()),
                    UnitsBefore(text, box_.SelStart() + box_.SelLength())};
    if (MarkedPart(line_) != part) {  // else it keeps the end at which the caret is
      ::SendMessageW(line_, EM_SETSEL, static_cast<WPARAM>(part.start), part.end);
      ::SendMessageW(line_, EM_SCROLLCARET, 0, 0);
    }
  }

  /// What the edit control holds goes to the box.
  void ForwardText() {
    const std::wstring text = TextOf(line_);
    box_.UserReplaceText(FromWide(text), CharactersBefore(text, MarkedPart(line_).end));
  }
  /// True if it marks something else than the box.
  bool MarksAnother() const {
    const std::wstring text = TextOf(line_);
    return box_.HasFocus() && FromWide(text) == box_.Text() && MarkedCharacters(text) != BoxPart();
  }
  void ForwardSelection() {
    const Part part = MarkedCharacters(TextOf(line_));
    box_.UserSelect(part.start, part.end - part.start);
  }

 private:
  Part MarkedCharacters(const std::wstring& text) const {
    const Part part = MarkedPart(line_);
    return {CharactersBefore(text, part.start), CharactersBefore(text, part.end)};
  }
  Part BoxPart() const { return {box_.SelStart(), box_.SelStart() + box_.SelLength()}; }

  /// Changes the part of the text that differs, so that undoing takes it back.
  void Amend(const std::wstring& before, const std::wstring& text) {
    const auto caret = static_cast<std::size_t>(MarkedPart(line_).start);
    const std::size_t shorter = std::min(before.size(), text.size());
    std::size_t prefix = 0;
    while (prefix < std::min(caret, shorter) && before[prefix] == text[prefix]) {
      ++prefix;
    }
    std::size_t suffix = 0;
    while (suffix < shorter - prefix &&
           before[before.size() - 1 - suffix] == text[text.size() - 1 - suffix]) {
      ++suffix;
    }
    ::SendMessageW(line_, EM_SETSEL, prefix, static_cast<LPARAM>(before.size() - suffix));
    const std::wstring added = text.substr(prefix, text.size() - prefix - suffix);
    ::SendMessageW(line_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(added.c_str()));
  }

  EditControl& box_;
  HWND line_ = nullptr;
  bool painting_ = false;
};

/// What text boxes and combo boxes have in common.
class EditFace : public ControlFace {
 public:
  HWND FocusWindow() const override { return link_.line(); }
  int NeededWidth() const override {
    return kLeastCharacters * look().character() + 2 * look().Pixels(kBesideText);
  }
  int NeededHeight(int /*width*/) const override {
    return look().line() + look().Pixels(kAroundText) + 2 * SystemMetric(SM_CYEDGE, look().dpi());
  }

 protected:
  EditFace(EditControl& box, FaceHost& host) : ControlFace(box, host), box_(box), link_(box) {}

  EditLink& link() { return link_; }
  const EditLink& link() const { return link_; }

  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kText) || changes.Has(Property::kFocus)) {
      link_.Paint(typing_);
    }
  }

  /// The edit control has been changed by its own ways.
  void OnEdited() {
    if (!link_.painting()) {
      Type([this] { link_.ForwardText(); });
    }
  }

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    return window == link_.line() ? OnLineMessage(message, w, l)
                                  : ControlFace::OnMessage(window, message, w, l);
  }

  virtual std::optional<LRESULT> OnLineMessage(UINT message, WPARAM w, LPARAM l) {
    const HWND line = link_.line();
    switch (message) {
      case WM_CHAR:
        return OnCharacter(static_cast<wchar_t>(w), l);
      case WM_LBUTTONDOWN:
      case WM_RBUTTONDOWN:
        Do([this] { box_.UserFocus(); });
        return box_.HasFocus() ? std::optional(OwnAndMark(message, w, l))
                               : std::optional<LRESULT>(0);
      case WM_LBUTTONDBLCLK:
      case WM_LBUTTONUP:
      case WM_MOUSEMOVE:
        return box_.HasFocus() ? std::optional(OwnAndMark(message, w, l))
                               : std::optional<LRESULT>(0);
      case WM_SETFOCUS: {
        const EditLink::Painting painting(link_);
        const std::optional<LRESULT> answer = ControlFace::OnMessage(line, message, w, l);
        if (box_.HasFocus()) {
          link_.PaintSelection();
        }
        return answer;
      }
      default:
        return ControlFace::OnMessage(line, message, w, l);
    }
  }

  bool OnKeyDown(WPARAM code, bool repeated) override {
    const std::optional<Key> key = KeyOf(code);
    const bool shift = IsHeld(VK_SHIFT);
    // With Shift these mark text, or cut it.
    const bool marks = shift && (key == Key::kLeft || key == Key::kRight || key == Key::kHome ||
                                 key == Key::kEnd || key == Key::kDelete);
    if (key == Key::kSpace) {
      return false;  // comes as a character
    }
    if (key && !marks) {
      Type([&] { ControlFace::OnKeyDown(code, repeated); });
      return true;
    }
    if (code == 'A' && IsHeld(VK_CONTROL) && !IsHeld(VK_MENU)) {
      const std::wstring text = ToWide(box_.Text());
      Do([&] { box_.UserSelect(0, CharactersBefore(text, static_cast<int>(text.size()))); });
      return true;
    }
    OwnAndMark(WM_KEYDOWN, code, 0);
    return true;
  }

  /// Lets the edit control do what it does with a message, and forwards what it then marks.
  LRESULT OwnAndMark(UINT message, WPARAM w, LPARAM l) {
    const LRESULT answer = Own(link_.line(), message, w, l);
    if (!link_.painting() && link_.MarksAnother()) {
      Do([this] { link_.ForwardSelection(); });
    }
    return answer;
  }

 private:
  std::optional<LRESULT> OnCharacter(wchar_t typed, LPARAM l) {
    if (IsCommandOfEdit(typed)) {
      return OwnAndMark(WM_CHAR, typed, l);
    }
    if (IsHighHalf(typed)) {
      first_half_ = typed;
      return 0;
    }
    const wchar_t first = std::exchange(first_half_, L'\0');
    std::wstring character(1, typed);
    if (IsLowHalf(typed) && first != L'\0') {
      character.insert(character.begin(), first);
    }
    if (!IsControlCharacter(typed)) {
      Type([&] { box_.UserTypeCharacter(FromWide(character)); });
    }
    return 0;
  }
  static bool IsHighHalf(wchar_t unit) { return IS_HIGH_SURROGATE(unit); }
  static bool IsLowHalf(wchar_t unit) { return IS_LOW_SURROGATE(unit); }

  /// Runs a gesture that changes the text as by typing.
  template <class Gesture>
  void Type(const Gesture& gesture) {
    const bool before = std::exchange(typing_, true);
    Do(gesture);
    typing_ = before;
  }

  EditControl& box_;
  EditLink link_;
  bool typing_ = false;
  wchar_t first_half_ = L'\0';
};

class TextBoxFace final : public EditFace {
 public:
  TextBoxFace(TextBox& box, FaceHost& host, const Pane& pane) : EditFace(box, host) {
    const EditLink::Painting painting(link());
    Make(WC_EDITW, ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, pane.Window());
    link().Join(Window());
    // The system's limit would cut what the program sets.
    ::SendMessageW(Window(), EM_SETLIMITTEXT, 0, 0);
  }

  /// Windows writes at the top of a box: one that is higher than its text needs looks odd.
  void TakeBounds(const RECT& bounds) const override {
    const auto height = static_cast<int>(bounds.bottom - bounds.top);
    const int wanted = std::min(height, NeededHeight(bounds.right - bounds.left));
    RECT inside = bounds;
    inside.top += (height - wanted) / 2;
    inside.bottom = inside.top + wanted;
    EditFace::TakeBounds(inside);
  }

  void OnCommand(int code) override {
    if (code == EN_CHANGE) {
      OnEdited();
    }
  }
};

class ComboBoxFace final : public EditFace {
 public:
  ComboBoxFace(ComboBox& box, FaceHost& host, const Pane& pane) : EditFace(box, host), box_(box) {
    const EditLink::Painting painting(link());
    Make(WC_COMBOBOXW, CBS_DROPDOWN | CBS_AUTOHSCROLL | CBS_HASSTRINGS | WS_VSCROLL, 0,
         pane.Window());
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    ::GetComboBoxInfo(Window(), &parts);
    link().Join(parts.hwndItem);
    Watch(parts.hwndItem);
    ::SendMessageW(Window(), CB_SETMINVISIBLE, kEntriesInView, 0);
    ::SendMessageW(Window(), CB_LIMITTEXT, 0, 0);
  }

  /// The height that Windows is given is that with the list dropped down.
  void TakeBounds(const RECT& bounds) const override {
    RECT with_list = bounds;
    with_list.bottom += kEntriesInView * look().line();
    EditFace::TakeBounds(with_list);
  }

  void OnCommand(int code) override {
    switch (code) {
      case CBN_DROPDOWN:
        TakeIndex();
        break;
      case CBN_EDITCHANGE:
        OnEdited();
        break;
      case CBN_SELENDOK:
        picked_ = static_cast<std::int32_t>(::SendMessageW(Window(), CB_GETCURSEL, 0, 0));
        break;
      case CBN_SELENDCANCEL:
        picked_ = -1;
        break;
      case CBN_CLOSEUP:
        // Windows goes on with the list and the line after this.
        host().Defer([this] { OnClosed(); });
        break;
      default:
        break;
    }
  }

 protected:
  void Paint(const Changes& changes) override {
    if (!changes.Has(Property::kEntries)) {
      EditFace::Paint(changes);
      return;
    }
    {
      const EditLink::Painting painting(link());
      ::SendMessageW(Window(), CB_RESETCONTENT, 0, 0);
      for (const std::string& entry : box_.Entries()) {
        ::SendMessageW(Window(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(entry).c_str()));
      }
    }
    EditFace::Paint(Changes::All());
  }

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    const bool wheel = message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL;
    if (wheel && !IsDropped()) {
      return 0;  // would pick without a click
    }
    if (window == Window() && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) {
      Do([this] { box_.UserFocus(); });
      return box_.HasFocus() ? std::nullopt : std::optional<LRESULT>(0);
    }
    return EditFace::OnMessage(window, message, w, l);
  }

  bool OnKeyDown(WPARAM code, bool repeated) override {
    if (IsDropped()) {
      return CloseByKey(code, repeated);
    }
    const bool pages = code == VK_PRIOR || code == VK_NEXT;
    return pages || EditFace::OnKeyDown(code, repeated);
  }

 private:
  bool IsDropped() const { return ::SendMessageW(Window(), CB_GETDROPPEDSTATE, 0, 0) != 0; }

  /// What closes the list; all other keys are the list's own affair. Windows closes it by these in
  /// dialogs of its own alone.
  bool CloseByKey(WPARAM code, bool repeated) {
    if (code != VK_RETURN && code != VK_ESCAPE && code != VK_TAB) {
      return false;
    }
    const LRESULT marked = ::SendMessageW(Window(), CB_GETCURSEL, 0, 0);
    ::SendMessageW(Window(), CB_SHOWDROPDOWN, FALSE, 0);
    picked_ = code == VK_RETURN ? static_cast<std::int32_t>(marked) : -1;
    if (code == VK_TAB) {
      OnClosed();
      EditFace::OnKeyDown(code, repeated);
    }
    return true;
  }

  /// Between two drops of the list Windows' own index means nothing.
  void TakeIndex() {
    picked_ = -1;
    const EditLink::Painting painting(link());
    ::SendMessageW(Window(), CB_SETCURSEL, static_cast<WPARAM>(box_.ListIndex()), 0);
    ShowOwnText();
  }
  void ShowOwnText() {
    ::SetWindowTextW(link().line(), ToWide(box_.Text()).c_str());
    link().PaintSelection();
  }
  void OnClosed() {
    {
      const EditLink::Painting painting(link());
      ShowOwnText();
    }
    if (const std::int32_t picked = std::exchange(picked_, -1); picked >= 0) {
      Do([&] { box_.UserPick(picked); });
    }
  }

  ComboBox& box_;
  std::int32_t picked_ = -1;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(TextBox& box, FaceHost& host, const Pane& pane) {
  return std::make_unique<TextBoxFace>(box, host, pane);
}

std::unique_ptr<ControlFace> MakeFace(ComboBox& box, FaceHost& host, const Pane& pane) {
  return std::make_unique<ComboBoxFace>(box, host, pane);
}

}  // namespace nimbrel::toolkit::win32
