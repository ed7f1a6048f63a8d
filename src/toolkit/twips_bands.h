#pragma once

#include <vector>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

/// The height of a line of text in the font that places in twips reckon with: 13 pixels of 15
/// twips.
constexpr int kTwipsOfLine = 13 * 15;

/// What is left above the first control of a frame or page, in twips, below its caption or tab.
constexpr int kRoomBelowCaption = 120;

/// What a layout has to know of the face of a control. Sizes are in pixels.
class Placed {
 public:
  virtual ~Placed() = default;

  virtual const Control& PlacedControl() const = 0;
  /// The width, and the height at a given width, without which something of it could not be read.
  virtual int NeededWidth() const = 0;
  virtual int NeededHeight(int width) const = 0;
  /// Whether it can make use of more height than its place has, as lists do.
  virtual bool Stretches() const = 0;
  /// Whether it fills all the height that it is given.
  virtual bool FillsHeight() const = 0;
};

/// Arranges controls by their places in twips. Across, everything grows in proportion, so that what
/// stands under something stays there. Down, lists and what holds them take what there is more, and
/// everything else keeps its height. Twips are scaled with the font, and nothing becomes smaller
/// than its captions need. Sizes and places that come out are in pixels.
class TwipsBands {
 public:
  /// The part of the container's places that is shown, in twips.
  struct Area {
    int width = 0;
    int top = 0;
    int bottom = 0;
  };
  struct Size {
    int width = 0;
    int height = 0;
  };
  struct Spot {
    const Placed* placed = nullptr;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
  };

  explicit TwipsBands(Area area) : area_(area) {}
  /// The area of a container's controls: for one that stands in another control without the room
  /// above the first of them, since a frame's caption, and the tabs above a page, take the room
  /// that they need.
  static Area AreaOf(const Container& container, int width, int height, bool whole);

  /// `placed` must outlive the use of the layout. One whose control is not visible takes no room.
  void Add(const Placed& placed) { placed_.push_back(&placed); }

  /// The size that everything has at best, with `line` the height of a line of text, and at the
  /// least.
  Size NaturalSize(double line) const;
  Size LeastSize(double line) const;
  /// Where each visible one goes within `size`.
  std::vector<Spot> Arrange(Size size, double line) const;

 private:
  /// What of a face the heights depend on.
  struct Span {
    const Placed* placed;
    int top;  // twips
    int bottom;
    double needed;  // pixels
  };
  /// A stripe in which no control begins or ends.
  struct Band {
    int top;  // twips
    int bottom;
    double minimum;  // pixels
    double natural;
    bool stretches = false;
  };

  /// Pixels for a twip across, without which a caption would be cut.
  double NeededScale() const;
  std::vector<const Placed*> Shown() const;
  std::vector<Span> Spans(double scale_across) const;
  static bool Holds(const Span& span, const Band& band) {
    return band.top >= span.top && band.bottom <= span.bottom;
  }
  std::vector<Band> Bands(const std::vector<Span>& spans, double scale) const;
  /// Gives each control the height that it needs.
  static void Widen(std::vector<Band>& bands, const std::vector<Span>& spans);
  /// Where each band begins, and the last one ends, in pixels.
  static std::vector<double> Edges(const std::vector<Band>& bands, double height);

  Area area_;
  std::vector<const Placed*> placed_;
};

}  // namespace nimbrel::toolkit
