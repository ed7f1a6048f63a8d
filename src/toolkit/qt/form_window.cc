#include "toolkit/qt/form_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "toolkit/accessible_name.h"
#include "toolkit/qt/faces.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/qt/twips_layout.h"
#include "toolkit/visit_control.h"

namespace nimbrel::toolkit::qt {
namespace {

/// The share of the screen that a window takes at the most.
constexpr double kShareOfScreen = 0.95;

}  // namespace

FormWindow::FormWindow(Form& form, QWidget* parent)
    : QDialog(parent), form_(form), area_(*new QScrollArea(this)) {
  setWindowModality(Qt::ApplicationModal);
  setAttribute(Qt::WA_QuitOnClose, false);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setSizeGripEnabled(false);
  area_.setWidgetResizable(true);
  area_.setFrameShape(QFrame::NoFrame);
  area_.setFocusPolicy(Qt::NoFocus);
  auto* const pane = new QWidget;
  FillPane(form, *pane, form.Width(), form.Height(), true);
  area_.setWidget(pane);
  auto* const around = new QVBoxLayout(this);
  around->setContentsMargins(0, 0, 0, 0);
  around->addWidget(&area_);
  form_.SetObserver(this);
  Flush();
  FitToScreen();
}

FormWindow::~FormWindow() {
  form_.SetObserver(nullptr);
}

bool FormWindow::FillPane(const Container& container, QWidget& pane, int width, int height,
                          bool whole) {
  auto& layout = *new TwipsLayout(pane, TwipsBands::AreaOf(container, width, height, whole));
  bool stretches = false;
  for (Control* const control : container.Controls()) {
    stretches = AddFace(*control, pane, layout) || stretches;
  }
  return stretches;
}

bool FormWindow::AddFace(Control& control, QWidget& pane, TwipsLayout& layout) {
  auto made = VisitControl<std::unique_ptr<ControlFace>>(
      control, [&](auto& own) { return MakeFace(own, *this, pane); });
  ControlFace& face = *made;
  QWidget& widget = face.Widget();
  widget.setObjectName(ToQt(control.Name()));
  face.FocusWidget().setAccessibleName(ToQt(AccessibleNameOf(control)));
  faces_.emplace(&control, Entry{std::move(made), Changes::All()});
  bool stretches = false;
  if (auto* const frame = dynamic_cast<Frame*>(&control); frame != nullptr) {
    QWidget& inside = static_cast<ContainerFace&>(face).Pane(0);
    stretches = FillPane(*frame, inside, control.Width(), control.Height(), false);
  }
  if (auto* const strip = dynamic_cast<TabStrip*>(&control); strip != nullptr) {
    for (std::int32_t page = 0; page < strip->Tabs(); ++page) {
      QWidget& inside = static_cast<ContainerFace&>(face).Pane(page);
      stretches = FillPane(strip->Page(page), inside, control.Width(), control.Height(), false) ||
                  stretches;
    }
  }
  if (stretches) {
    static_cast<ContainerFace&>(face).SetStretches();
  }
  layout.Add(face);
  return face.Stretches();
}

void FormWindow::OnControlChanged(Control& control, Property property) {
  if (const auto found = faces_.find(&control); found != faces_.end()) {
    found->second.changes.Add(property);
    ScheduleFlush();
  }
}

void FormWindow::OnFormChanged() {
  ScheduleFlush();
  if (!form_.Visible() && OnFormHidden) {
    OnFormHidden();
  }
}

void FormWindow::ScheduleFlush() {
  if (!flush_is_due_) {
    flush_is_due_ = true;
    QTimer::singleShot(0, this, [this] { Flush(); });
  }
}

void FormWindow::Flush() {
  flush_is_due_ = false;
  setWindowTitle(ToQt(form_.Caption()));
  bool focus = focusWidget() == nullptr;
  for (auto& [control, entry] : faces_) {
    const Changes changes = std::exchange(entry.changes, Changes());
    if (changes.Any()) {
      entry.face->Refresh(changes);
      if (changes.Has(Property::kPlace) || changes.Has(Property::kVisible)) {
        entry.face->Widget().parentWidget()->layout()->update();
      }
      focus = focus || changes.Has(Property::kFocus);
    }
  }
  if (focus) {
    PlaceFocus();
  }
}

void FormWindow::PlaceFocus() {
  // Also after a click it is seen where the keys go.
  setAttribute(Qt::WA_KeyboardFocusChange);
  const Control* const active = form_.ActiveControl();
  QWidget* const target = active == nullptr ? this : FocusWidgetOf(*active);
  if (target != nullptr && target != focusWidget() && form_.Visible()) {
    target->setFocus(Qt::OtherFocusReason);
    if (target != this) {
      area_.ensureWidgetVisible(target);
    }
  }
}

void FormWindow::AfterGesture() {
  Flush();
}

QWidget* FormWindow::WidgetOf(const Control& control) const {
  const auto found = faces_.find(&control);
  return found == faces_.end() ? nullptr : &found->second.face->Widget();
}

QWidget* FormWindow::FocusWidgetOf(const Control& control) const {
  const auto found = faces_.find(&control);
  return found == faces_.end() ? nullptr : &found->second.face->FocusWidget();
}

void FormWindow::BringIntoView(const QWidget& widget, const QPoint& place) {
  const QPoint on_pane = widget.mapTo(area_.widget(), place);
  area_.ensureVisible(on_pane.x(), on_pane.y());
}

void FormWindow::FitToScreen() {
  const QSize room = screen()->availableGeometry().size() * kShareOfScreen;
  setMinimumSize(area_.widget()->minimumSizeHint().boundedTo(room));
  resize(area_.widget()->sizeHint().boundedTo(room).expandedTo(minimumSize()));
}

void FormWindow::reject() {
  form_.UserClose();
  Flush();
}

void FormWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  reject();
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
  const std::optional<Key> key = KeyOf(*event);
  if (key && form_.ActiveControl() == nullptr) {
    form_.UserKey(*key, (event->modifiers() & Qt::ShiftModifier) != 0);
    Flush();
  }
}

bool FormWindow::event(QEvent* event) {
  const bool done = QDialog::event(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    for (auto& [control, entry] : faces_) {
      entry.face->Refresh(Changes::All());
    }
    FitToScreen();
  }
  return done;
}

}  // namespace nimbrel::toolkit::qt
