#include "toolkit/twips_bands.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace nimbrel::toolkit {
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

TwipsBands::Area TwipsBands::AreaOf(const Container& container, int width, int height, bool whole) {
  int top = height;
  for (const Control* const control : container.Controls()) {
    top = control->Visible() ? std::min(top, control->Top()) : top;
  }
  return {width, whole ? 0 : std::max(top - kRoomBelowCaption, 0), height};
}

std::vector<const Placed*> TwipsBands::Shown() const {
  std::vector<const Placed*> shown;
  std::copy_if(placed_.begin(), placed_.end(), std::back_inserter(shown),
               [](const Placed* placed) { return placed->PlacedControl().Visible(); });
  return shown;
}

double TwipsBands::NeededScale() const {
  double scale = 0.0;
  for (const Placed* const placed : Shown()) {
    const int width = std::max(placed->PlacedControl().Width(), 1);
    scale = std::max(scale, static_cast<double>(placed->NeededWidth()) / width);
  }
  return scale;
}

std::vector<TwipsBands::Span> TwipsBands::Spans(double scale_across) const {
  const std::vector<const Placed*> shown = Shown();
  std::vector<Span> spans;
  for (const Placed* const placed : shown) {
    const Place& place = placed->PlacedControl().GetPlace();
    int bottom = place.top + place.height;
    for (const Placed* const other : shown) {
      if (IsOverlap(place, other->PlacedControl().GetPlace())) {
        bottom = std::min(bottom, other->PlacedControl().Top());
      }
    }
    const int width = static_cast<int>(place.width * scale_across);
    spans.push_back({placed, std::max(place.top, area_.top),
                     std::max(bottom, std::max(place.top, area_.top) + 1),
                     static_cast<double>(placed->NeededHeight(width))});
  }
  std::stable_sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) {
    return a.bottom - a.top < b.bottom - b.top;
  });
  return spans;
}

std::vector<TwipsBands::Band> TwipsBands::Bands(const std::vector<Span>& spans,
                                                double scale) const {
  std::vector<int> edges = {area_.top, area_.bottom};
  for (const Span& span : spans) {
    edges.push_back(span.top);
    edges.push_back(span.bottom);
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

  std::vector<Band> bands;
  for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
    Band band{edges[i], edges[i + 1], 0.0, (edges[i + 1] - edges[i]) * scale, false};
    // One control of fixed height holds the whole band.
    const auto holds = [&band](const Span& span) {
      return Holds(span, band) && !span.placed->Stretches();
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

void TwipsBands::Widen(std::vector<Band>& bands, const std::vector<Span>& spans) {
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

std::vector<double> TwipsBands::Edges(const std::vector<Band>& bands, double height) {
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

TwipsBands::Size TwipsBands::NaturalSize(double line) const {
  const double scale = line / kTwipsOfLine;
  const double across = std::max(scale, NeededScale());
  double height = 0.0;
  for (const Band& band : Bands(Spans(across), scale)) {
    height += band.natural;
  }
  return {static_cast<int>(std::ceil(across * area_.width)), static_cast<int>(std::ceil(height))};
}

TwipsBands::Size TwipsBands::LeastSize(double line) const {
  const double across = NeededScale();
  double height = 0.0;
  for (const Band& band : Bands(Spans(across), line / kTwipsOfLine)) {
    height += band.minimum;
  }
  return {static_cast<int>(std::ceil(across * area_.width)), static_cast<int>(std::ceil(height))};
}

std::vector<TwipsBands::Spot> TwipsBands::Arrange(Size size, double line) const {
  const double across = static_cast<double>(size.width) / std::max(area_.width, 1);
  const double scale = line / kTwipsOfLine;
  const std::vector<Span> spans = Spans(across);
  const std::vector<Band> bands = Bands(spans, scale);
  const std::vector<double> edges = Edges(bands, size.height);
  const auto pixel = [&](int twips) {
    const auto band = std::find_if(bands.begin(), bands.end(),
                                   [twips](const Band& each) { return each.top == twips; });
    return static_cast<int>(
        std::lround(edges[static_cast<std::size_t>(std::distance(bands.begin(), band))]));
  };
  std::vector<Spot> spots;
  for (const Span& span : spans) {
    const Place& place = span.placed->PlacedControl().GetPlace();
    const int left = static_cast<int>(std::lround(place.left * across));
    const int right = static_cast<int>(std::lround((place.left + place.width) * across));
    const int top = pixel(span.top);
    int height = pixel(span.bottom) - top;
    if (!span.placed->FillsHeight()) {
      const double own = std::max(span.needed, (span.bottom - span.top) * scale);
      height = std::min(height, static_cast<int>(std::lround(own)));
    }
    spots.push_back({span.placed, left, top, right - left, height});
  }
  return spots;
}

}  // namespace nimbrel::toolkit
