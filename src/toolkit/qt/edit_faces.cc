// The faces of text boxes and combo boxes.
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <algorithm>
#include <functional>
#include <utility>

#include "toolkit/qt/faces.h"
#include "toolkit/qt/item_models.h"
#include "toolkit/qt/qt_text.h"

namespace nimbrel::toolkit::qt {
namespace {

/// The character that a key types; empty for keys that type none. Control with Alt is how some
/// keyboards report the third level of their keys.
QString TypedText(const QKeyEvent& event) {
  const QString text = event.text();
  const bool is_command = (event.modifiers() & ~Qt::ShiftModifier) == Qt::ControlModifier;
  const bool is_character = !text.isEmpty() && text.front().category() != QChar::Other_Control;
  return is_character && !is_command ? text : QString();
}

int CommonPrefix(const QString& a, const QString& b, int limit) {
  int length = 0;
  while (length < limit && length < a.size() && length < b.size() && a.at(length) == b.at(length)) {
    ++length;
  }
  return length;
}

int CommonSuffix(const QString& a, const QString& b, int limit) {
  int length = 0;
  while (length < limit && a.at(a.size() - 1 - length) == b.at(b.size() - 1 - length)) {
    ++length;
  }
  return length;
}

/// Where the caret is or the selection starts.
int EditPlace(const QLineEdit& line) {
  return line.hasSelectedText() ? line.selectionStart() : line.cursorPosition();
}

/// Joins an edit part with a line edit. Keys that mean something to the toolkit are forwarded one
/// by one, and the line edit follows; what the line edit does by itself (marking, the clipboard,
/// undoing, input methods) is forwarded when it has been done.
class EditLink {
 public:
  EditLink(EditControl& box, QLineEdit& line) : box_(box), line_(line) {}

  /// Brings the line edit to the box's text and selection. `by_user` says that the user's own key
  /// changed the text, which can then be undone.
  void Paint(bool by_user) {
    const Painting painting(painting_);
    const QString text = ToQt(box_.Text());
    if (line_.text() != text) {
      if (by_user) {
        Amend(text);
      } else {
        line_.setText(text);
      }
    }
    if (box_.HasFocus()) {
      PaintSelection(text);
    }
  }

  /// The line edit takes the focus, and marks nothing by itself.
  void TakeFocus(QWidget& widget, QEvent& event) {
    const Painting painting(painting_);
    static_cast<QObject&>(widget).event(&event);
    if (box_.HasFocus()) {
      PaintSelection(line_.text());
    }
  }

  bool painting() const { return painting_; }

  /// What the line edit holds goes to the box.
  void ForwardText() {
    const QString text = line_.text();
    box_.UserReplaceText(FromQt(text), CharactersBefore(text, line_.cursorPosition()));
  }
  void ForwardSelection() {
    const QString text = line_.text();
    if (!box_.HasFocus() || FromQt(text) != box_.Text()) {
      return;
    }
    const std::int32_t start = CharactersBefore(text, EditPlace(line_));
    const std::int32_t end =
        line_.hasSelectedText() ? CharactersBefore(text, line_.selectionEnd()) : start;
    if (start != box_.SelStart() || end - start != box_.SelLength()) {
      box_.UserSelect(start, end - start);
    }
  }

 private:
  /// The time in which changes of the line edit come from here.
  class Painting {
   public:
    explicit Painting(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    ~Painting() { flag_ = before_; }
    Painting(const Painting&) = delete;
    Painting& operator=(const Painting&) = delete;

   private:
    bool& flag_;
    bool before_;
  };

  /// Changes the part of the text that differs, so that undoing takes it back.
  void Amend(const QString& text) {
    const QString before = line_.text();
    const int prefix = CommonPrefix(before, text, EditPlace(line_));
    const int room = static_cast<int>(std::min(before.size(), text.size())) - prefix;
    const int suffix = CommonSuffix(before, text, room);
    const int removed = static_cast<int>(before.size()) - prefix - suffix;
    if (removed > 0) {
      line_.setSelection(prefix, removed);
    } else {
      line_.setCursorPosition(prefix);
    }
    const QString added = text.mid(prefix, text.size() - prefix - suffix);
    if (added.isEmpty()) {
      line_.del();
    } else {
      line_.insert(added);
    }
  }

  void PaintSelection(const QString& text) {
    const int start = UnitsBefore(text, box_.SelStart());
    const int length = UnitsBefore(text, box_.SelStart() + box_.SelLength()) - start;
    const int shown = static_cast<int>(line_.selectedText().size());
    if (EditPlace(line_) == start && shown == length) {
      return;  // keeps the end at which the caret is
    }
    if (length > 0) {
      line_.setSelection(start, length);
    } else {
      line_.deselect();
      line_.setCursorPosition(start);
    }
  }

  EditControl& box_;
  QLineEdit& line_;
  bool painting_ = false;
};

/// What text boxes and combo boxes have in common.
class EditFace : public ControlFace {
 public:
  int NeededHeight(int /*width*/) const override { return Widget().sizeHint().height(); }

 protected:
  EditFace(EditControl& box, FaceHost& host, QLineEdit& line)
      : ControlFace(box, host), box_(box), line_(line), link_(box, line) {
    Watch(line_);
    QObject::connect(&line_, &QLineEdit::textEdited, this, [this] {
      if (!link_.painting()) {
        Type([this] { link_.ForwardText(); });
      }
    });
    const auto forward_selection = [this] {
      if (!link_.painting()) {
        link_.ForwardSelection();
      }
    };
    QObject::connect(&line_, &QLineEdit::selectionChanged, this, forward_selection);
    QObject::connect(&line_, &QLineEdit::cursorPositionChanged, this, forward_selection);
  }

  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kText) || changes.Has(Property::kFocus)) {
      link_.Paint(typing_);
    }
  }

  bool OnKeyPress(QKeyEvent& event) override {
    const std::optional<Key> key = KeyOf(event);
    const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
    // With Shift these mark text, or cut it.
    const bool marks = shift && (key == Key::kLeft || key == Key::kRight || key == Key::kHome ||
                                 key == Key::kEnd || key == Key::kDelete);
    if (key && !marks) {
      bool done = false;
      Type([&] { done = ControlFace::OnKeyPress(event); });
      return done;
    }
    const QString typed = TypedText(event);
    if (!typed.isEmpty()) {
      Type([&] { Make([&] { box_.UserTypeCharacter(FromQt(typed)); }); });
    }
    return !typed.isEmpty();
  }

  bool OnMousePress(QWidget& /*widget*/, QMouseEvent& /*event*/) override {
    Make([this] { box_.UserFocus(); });
    return !box_.HasFocus();
  }
  bool OnDoubleClick(QWidget& /*widget*/, QMouseEvent& /*event*/) override {
    return !box_.HasFocus();
  }
  bool OnFocusIn(QWidget& widget, QEvent& event) override {
    link_.TakeFocus(widget, event);
    return true;
  }
  bool OnOther(QWidget& /*widget*/, QEvent& event) override {
    // A drag that began with a refused click marks nothing.
    return event.type() == QEvent::MouseMove && !box_.HasFocus();
  }

  QLineEdit& line() const { return line_; }

 private:
  /// Runs a gesture that changes the text as by typing.
  template <class Gesture>
  void Type(const Gesture& gesture) {
    const bool before = std::exchange(typing_, true);
    Make(gesture);
    typing_ = before;
  }

  EditControl& box_;
  QLineEdit& line_;
  EditLink link_;
  bool typing_ = false;
};

class TextBoxFace final : public EditFace {
 public:
  TextBoxFace(TextBox& box, FaceHost& host, QWidget& parent)
      : EditFace(box, host, *new QLineEdit(&parent)) {}

  QWidget& Widget() const override { return line(); }
};

/// A combo box that tells before its list drops down.
class DroppingComboBox final : public QComboBox {
 public:
  using QComboBox::QComboBox;

  std::function<void()> BeforePopup;

  void showPopup() override {
    BeforePopup();
    QComboBox::showPopup();
  }
};

class ComboBoxFace final : public EditFace {
 public:
  ComboBoxFace(ComboBox& box, FaceHost& host, QWidget& parent)
      : ComboBoxFace(box, host, *new DroppingComboBox(&parent), *new QLineEdit) {}

  QWidget& Widget() const override { return widget_; }

 protected:
  void Paint(const Changes& changes) override {
    const bool entries = changes.Has(Property::kEntries);
    if (entries) {
      model_.Update();
    }
    // Other entries put a text of the widget's own choice into the line.
    EditFace::Paint(entries ? Changes::All() : changes);
  }
  bool OnKeyPress(QKeyEvent& event) override {
    const bool pages = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
    return pages || EditFace::OnKeyPress(event);
  }
  bool OnOther(QWidget& widget, QEvent& event) override {
    return event.type() == QEvent::Wheel ||  // would pick without a click
           EditFace::OnOther(widget, event);
  }

 private:
  ComboBoxFace(ComboBox& box, FaceHost& host, DroppingComboBox& widget, QLineEdit& line)
      : EditFace(box, host, line),
        box_(box),
        widget_(widget),
        model_(*new EntryModel(box.Entries(), &widget)) {
    widget_.setEditable(true);
    widget_.setLineEdit(&line);
    widget_.setCompleter(nullptr);
    widget_.setInsertPolicy(QComboBox::NoInsert);
    widget_.setModel(&model_);
    widget_.setMinimumContentsLength(1);
    widget_.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Watch(widget_);
    // Leaving the line is the toolkit's affair, and between two drops of the list the widget's own
    // index means nothing.
    QObject::disconnect(&line, &QLineEdit::editingFinished, &widget_, nullptr);
    widget_.BeforePopup = [this] { TakeIndex(); };
    QObject::connect(&widget_, &QComboBox::activated, this,
                     [this](int index) { Make([&] { box_.UserPick(index); }); });
  }

  void TakeIndex() {
    const QSignalBlocker quiet(widget_);
    const QSignalBlocker quiet_line(line());
    widget_.setCurrentIndex(box_.ListIndex());
    line().setText(ToQt(box_.Text()));
  }

  ComboBox& box_;
  DroppingComboBox& widget_;
  EntryModel& model_;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(TextBox& box, FaceHost& host, QWidget& parent) {
  return std::make_unique<TextBoxFace>(box, host, parent);
}

std::unique_ptr<ControlFace> MakeFace(ComboBox& box, FaceHost& host, QWidget& parent) {
  return std::make_unique<ComboBoxFace>(box, host, parent);
}

}  // namespace nimbrel::toolkit::qt
