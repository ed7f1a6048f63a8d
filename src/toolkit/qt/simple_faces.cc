// The faces of buttons, check boxes, labels, frames and tab strips.
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>

#include "toolkit/qt/check_outline.h"
#include "toolkit/qt/faces.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/twips_bands.h"

namespace nimbrel::toolkit::qt {
namespace {

/// The size of a text of one line.
QSize TextSize(const QWidget& widget, const std::string& text) {
  return widget.fontMetrics().size(Qt::TextSingleLine, ToQt(text));
}

class ButtonFace final : public ControlFace {
 public:
  ButtonFace(CommandButton& button, FaceHost& host, QWidget& parent)
      : ControlFace(button, host), button_(button), widget_(*new QPushButton(&parent)) {
    widget_.setAutoDefault(false);
    Watch(widget_);
    QObject::connect(&widget_, &QPushButton::clicked, this,
                     [this] { Make([this] { button_.UserClick(); }); });
  }

  QWidget& Widget() const override { return widget_; }

  /// Styles give buttons of short captions more room than they need.
  int NeededWidth() const override {
    QStyleOptionButton option;
    option.initFrom(&widget_);
    const QSize text = TextSize(widget_, button_.Caption());
    const int frame = 2 * widget_.style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
    return text.width() + frame +
           widget_.style()->pixelMetric(QStyle::PM_ButtonMargin, &option, &widget_);
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      widget_.setText(CaptionToQt(button_.Caption()));
    }
    if (changes.Has(Property::kStyle)) {
      widget_.setDefault(button_.Default());
    }
  }
  /// A button that is held down by a key is pressed once.
  bool OnKeyPress(QKeyEvent& event) override {
    return (event.isAutoRepeat() && event.key() == Qt::Key_Space) || ControlFace::OnKeyPress(event);
  }

 private:
  CommandButton& button_;
  QPushButton& widget_;
};

/// A box that never turns over by itself.
class PassiveCheckBox final : public QCheckBox {
 public:
  using QCheckBox::QCheckBox;

 protected:
  void nextCheckState() override {}
  void paintEvent(QPaintEvent* event) override {
    QCheckBox::paintEvent(event);
    QStyleOptionButton option;
    initStyleOption(&option);
    QPainter painter(this);
    OutlineCheckOnDark(
        painter, style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this), palette());
  }
};

class CheckBoxFace final : public ControlFace {
 public:
  CheckBoxFace(CheckBox& box, FaceHost& host, QWidget& parent)
      : ControlFace(box, host), box_(box), widget_(*new PassiveCheckBox(&parent)) {
    Watch(widget_);
    QObject::connect(&widget_, &QCheckBox::clicked, this,
                     [this] { Make([this] { box_.UserClick(); }); });
  }

  QWidget& Widget() const override { return widget_; }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      widget_.setText(CaptionToQt(box_.Caption()));
    }
    widget_.setChecked(box_.Value());
  }
  bool OnKeyPress(QKeyEvent& event) override {
    return (event.isAutoRepeat() && event.key() == Qt::Key_Space) || ControlFace::OnKeyPress(event);
  }

 private:
  CheckBox& box_;
  PassiveCheckBox& widget_;
};

class LabelFace final : public ControlFace {
 public:
  LabelFace(Label& label, FaceHost& host, QWidget& parent)
      : ControlFace(label, host), label_(label), widget_(*new QLabel(&parent)) {
    widget_.setTextFormat(Qt::PlainText);
    widget_.setWordWrap(true);
    widget_.setAlignment(Qt::AlignLeft | (HasOneLine() ? Qt::AlignVCenter : Qt::AlignTop));
    Watch(widget_);
  }

  QWidget& Widget() const override { return widget_; }

  /// A label that has the room of one line stays on it; others break between words.
  int NeededWidth() const override {
    const QFontMetrics metrics = widget_.fontMetrics();
    if (HasOneLine()) {
      return TextSize(widget_, label_.Caption()).width() + 1;
    }
    int widest = 0;
    for (const QString& word : ToQt(label_.Caption()).split(QLatin1Char(' '))) {
      widest = std::max(widest, metrics.horizontalAdvance(word));
    }
    return widest + 1;
  }
  int NeededHeight(int width) const override { return widget_.heightForWidth(width); }
  bool FillsHeight() const override { return true; }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      widget_.setText(LinesToQt(label_.Caption()));
    }
  }
  bool OnMousePress(QWidget& /*widget*/, QMouseEvent& event) override {
    if (event.button() == Qt::LeftButton) {
      Make([this] { label_.UserClick(); });
    }
    return true;
  }

 private:
  bool HasOneLine() const { return label_.Height() < 2 * kTwipsOfLine; }

  Label& label_;
  QLabel& widget_;
};

class FrameFace final : public ContainerFace {
 public:
  FrameFace(Frame& frame, FaceHost& host, QWidget& parent)
      : ContainerFace(frame, host), frame_(frame), widget_(*new QGroupBox(&parent)) {}

  QWidget& Widget() const override { return widget_; }
  QWidget& Pane(std::int32_t /*page*/) const override { return widget_; }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kCaption)) {
      widget_.setTitle(CaptionToQt(frame_.Caption()));
    }
  }

 private:
  Frame& frame_;
  QGroupBox& widget_;
};

class TabStripFace final : public ContainerFace {
 public:
  TabStripFace(TabStrip& strip, FaceHost& host, QWidget& parent)
      : ContainerFace(strip, host), strip_(strip), widget_(*new QTabWidget(&parent)) {
    for (std::int32_t i = 0; i < strip.Tabs(); ++i) {
      widget_.addTab(new QWidget(&widget_), CaptionToQt(strip.Page(i).Caption()));
    }
    bar().setUsesScrollButtons(false);
    bar().setElideMode(Qt::ElideNone);
    widget_.setFocusPolicy(Qt::NoFocus);
    Watch(widget_);
    Watch(bar());
  }

  QWidget& Widget() const override { return widget_; }
  QWidget& FocusWidget() const override { return bar(); }
  QWidget& Pane(std::int32_t page) const override { return *widget_.widget(page); }

  int NeededWidth() const override {
    return std::max(widget_.minimumSizeHint().width(), bar().sizeHint().width());
  }

 protected:
  void Paint(const Changes& /*changes*/) override { widget_.setCurrentIndex(strip_.Tab()); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    // Keys that no control on a page wants arrive at the widget around it.
    return event->type() == QEvent::KeyPress && watched == &widget_
               ? TurnsPages(static_cast<QKeyEvent&>(*event))
               : ControlFace::eventFilter(watched, event);
  }
  bool OnKeyPress(QKeyEvent& event) override {
    return TurnsPages(event) || ControlFace::OnKeyPress(event);
  }
  bool OnMousePress(QWidget& widget, QMouseEvent& event) override {
    const int index = &widget == &bar() ? bar().tabAt(event.pos()) : -1;
    if (index >= 0 && event.button() == Qt::LeftButton) {
      Make([&] { strip_.UserPickTab(index); });
    }
    return true;
  }
  bool OnOther(QWidget& widget, QEvent& event) override {
    return &widget == &bar() && event.type() == QEvent::Wheel;  // would turn the pages
  }

 private:
  QTabBar& bar() const { return *widget_.tabBar(); }

  /// Ctrl and Tab show the next page or, with Shift, the one before.
  bool TurnsPages(const QKeyEvent& event) {
    const bool is_tab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    if (!is_tab || (event.modifiers() & Qt::ControlModifier) == 0) {
      return false;
    }
    const bool back = event.key() == Qt::Key_Backtab;
    const std::int32_t step = back ? strip_.Tabs() - 1 : 1;
    Make([&] { strip_.UserPickTab((strip_.Tab() + step) % strip_.Tabs()); });
    return true;
  }

  TabStrip& strip_;
  QTabWidget& widget_;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(CommandButton& button, FaceHost& host, QWidget& parent) {
  return std::make_unique<ButtonFace>(button, host, parent);
}

std::unique_ptr<ControlFace> MakeFace(CheckBox& box, FaceHost& host, QWidget& parent) {
  return std::make_unique<CheckBoxFace>(box, host, parent);
}

std::unique_ptr<ControlFace> MakeFace(Label& label, FaceHost& host, QWidget& parent) {
  return std::make_unique<LabelFace>(label, host, parent);
}

std::unique_ptr<ContainerFace> MakeFace(Frame& frame, FaceHost& host, QWidget& parent) {
  return std::make_unique<FrameFace>(frame, host, parent);
}

std::unique_ptr<ContainerFace> MakeFace(TabStrip& strip, FaceHost& host, QWidget& parent) {
  return std::make_unique<TabStripFace>(strip, host, parent);
}

}  // namespace nimbrel::toolkit::qt
