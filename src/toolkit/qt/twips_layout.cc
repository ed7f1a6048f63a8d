#include "toolkit/qt/twips_layout.h"

#include <QWidget>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace nimbrel::toolkit::qt {
namespace {

/// What room without captions may shrink to.
constexpr double kLeastShare = 0.6;
/// And the room of lists, before what their first rows need.
constexpr double kLeastShareOfLists = 0.1;
/// A control that reaches so little into the one below it, in twips, ends where that one begins.
constexpr int kOverlap = 45;

bool IsOverlap(const Place& upper, const Place& lower) {
  const bool side_by_side =
      upper.left >= lower.left + lower.width || lower.left >= upper.left + upper.width;
  const int overlap = upper.top + upper.height - lower.top;
  return !side_by_side && upper.top < lower.top && overlap > 0 && overlap <= kOverlap;
}

}  // namespace

TwipsLayout::TwipsLayout(QWidget& pane, Area area) : QLayout(&pane), area_(area) {
  setContentsMargins(0, 0, 0, 0);
}

TwipsLayout::~TwipsLayout() = default;

void TwipsLayout::Add(ControlFace& face) {
  addChildWidget(&face.Widget());
  items_.push_back({std::make_unique<QWidgetItem>(&face.Widget()), &face});
}

void TwipsLayout::addItem(QLayoutItem* item) {
  // Only Add gives a place; a layout of Qt's that comes by another road has none.
  delete item;
}

int TwipsLayout::count() const {
  return static_cast<int>(items_.size());
}

QLayoutItem* TwipsLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].item.get()
                                       : nullptr;
}

QLayoutItem* TwipsLayout::takeAt(int index) {
  if (index < 0 || index >= count()) {
    return nullptr;
  }
  const auto place = std::next(items_.begin(), index);
  QLayoutItem* const item = place->item.release();
  items_.erase(place);
  return item;
}

double TwipsLayout::FontScale() const {
  return QFontMetricsF(parentWidget()->font()).height() / kTwipsOfLine;
}

std::vector<const ControlFace*> TwipsLayout::ShownFaces() const {
  std::vector<const ControlFace*> faces;
  for (const Item& item : items_) {
    if (item.face->GetControl().Visible()) {
      faces.push_back(item.face);
    }
  }
  return faces;
}

double TwipsLayout::NeededScale() const {
  double scale = 0.0;
  for (const ControlFace* const face : ShownFaces()) {
    const int width = std::max(face->GetControl().Width(), 1);
    scale = std::max(scale, static_cast<double>(face->NeededWidth()) / width);
  }
  return scale;
}

std::vector<TwipsLayout::Span> TwipsLayout::Spans(double scale_across) const {
  const std::vector<const ControlFace*> faces = ShownFaces();
  std::vector<Span> spans;
  for (const ControlFace* const face : faces) {
    const Place& place = face->GetControl().GetPlace();
    int bottom = place.top + place.height;
    for (const ControlFace* const other : faces) {
      if (IsOverlap(place, other->GetControl().GetPlace())) {
        bottom = std::min(bottom, other->GetControl().Top());
      }
    }
    const int width = static_cast<int>(place.width * scale_across);
    spans.push_back({face, std::max(place.top, area_.top),
                     std::max(bottom, std::max(place.top, area_.top) + 1),
                     static_cast<double>(face->NeededHeight(width))});
  }
  std::stable_sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) {
    return a.bottom - a.top < b.bottom - b.top;
  });
  return spans;
}

std::vector<TwipsLayout::Band> TwipsLayout::Bands(const std::vector<Span>& spans) const {
  std::vector<int> edges = {area_.top, area_.bottom};
  for (const Span& span : spans) {
    edges.push_back(span.top);
    edges.push_back(span.bottom);
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

  const double scale = FontScale();
  std::vector<Band> bands;
  for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
    Band band{edges[i], edges[i + 1], 0.0, (edges[i + 1] - edges[i]) * scale, false};
    // One control of fixed height holds the whole band.
    const auto holds = [&band](const Span& span) {
      return Holds(span, band) && !span.face->Stretches();
    };
    band.stretches = std::any_of(spans.begin(), spans.end(),
                                 [&band](const Span& span) { return Holds(span, band); }) &&
                     std::none_of(spans.begin(), spans.end(), holds);
    band.minimum = band.natural * (band.stretches ? kLeastShareOfLists : kLeastShare);
    bands.push_back(band);
  }
  Widen(bands, spans);
  return bands;
}

void TwipsLayout::Widen(std::vector<Band>& bands, const std::vector<Span>& spans) {
  // The smaller a control is, the less choice there is of where its room can come from.
  for (const Span& span : spans) {
    double room = 0.0;
    for (const Band& band : bands) {
      room += Holds(span, band) ? band.minimum : 0.0;
    }
    const double missing = span.needed - room;
    for (Band& band : bands) {
      if (missing > 0.0 && Holds(span, band)) {
        band.minimum += missing * (band.bottom - band.top) / (span.bottom - span.top);
      }
    }
  }
  for (Band& band : bands) {
    band.natural = std::max(band.natural, band.minimum);
  }
}

std::vector<double> TwipsLayout::Edges(const std::vector<Band>& bands, double height) {
  double minimum = 0.0;
  double natural = 0.0;
  int stretching = 0;
  for (const Band& band : bands) {
    minimum += band.minimum;
    natural += band.natural;
    stretching += band.stretches ? band.bottom - band.top : 0;
  }
  const double between =
      natural > minimum ? std::clamp((height - minimum) / (natural - minimum), 0.0, 1.0) : 0.0;
  const double more = std::max(height - natural, 0.0);
  std::vector<double> edges = {0.0};
  for (const Band& band : bands) {
    const double share =
        band.stretches ? static_cast<double>(band.bottom - band.top) / stretching : 0.0;
    edges.push_back(edges.back() + band.minimum + (band.natural - band.minimum) * between +
                    more * share);
  }
  return edges;
}

QSize TwipsLayout::sizeHint() const {
  const double across = std::max(FontScale(), NeededScale());
  double height = 0.0;
  for (const Band& band : Bands(Spans(across))) {
    height += band.natural;
  }
  const QMargins margins = contentsMargins();
  return QSize(static_cast<int>(std::ceil(across * area_.width)),
               static_cast<int>(std::ceil(height)))
      .grownBy(margins);
}

QSize TwipsLayout::minimumSize() const {
  const double across = NeededScale();
  double height = 0.0;
  for (const Band& band : Bands(Spans(across))) {
    height += band.minimum;
  }
  return QSize(static_cast<int>(std::ceil(across * area_.width)),
               static_cast<int>(std::ceil(height)))
      .grownBy(contentsMargins());
}

void TwipsLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  const QRect inside = rect.marginsRemoved(contentsMargins());
  const double across = static_cast<double>(inside.width()) / std::max(area_.width, 1);
  const std::vector<Span> spans = Spans(across);
  const std::vector<Band> bands = Bands(spans);
  const std::vector<double> edges = Edges(bands, inside.height());
  const auto pixel = [&](int twips) {
    const auto band = std::find_if(bands.begin(), bands.end(),
                                   [twips](const Band& each) { return each.top == twips; });
    return static_cast<int>(
        std::lround(edges[static_cast<std::size_t>(std::distance(bands.begin(), band))]));
  };
  const double scale = FontScale();
  for (const Span& span : spans) {
    const Place& place = span.face->GetControl().GetPlace();
    const int left = static_cast<int>(std::lround(place.left * across));
    const int right = static_cast<int>(std::lround((place.left + place.width) * across));
    const int top = pixel(span.top);
    int height = pixel(span.bottom) - top;
    if (!span.face->FillsHeight()) {
      const double own = std::max(span.needed, (span.bottom - span.top) * scale);
      height = std::min(height, static_cast<int>(std::lround(own)));
    }
    span.face->Widget().setGeometry(inside.left() + left, inside.top() + top, right - left, height);
  }
}

}  // namespace nimbrel::toolkit::qt
