#pragma once

#include <QLayout>
#include <memory>
#include <vector>

#include "toolkit/qt/control_face.h"

namespace nimbrel::toolkit::qt {

/// The height of a line of text in the font that places in twips reckon with: 13 pixels of 15
/// twips.
constexpr int kTwipsOfLine = 13 * 15;

/// Arranges controls by their places in twips. Across, everything grows in proportion, so that what
/// stands under something stays there. Down, lists and what holds them take what there is more, and
/// everything else keeps its height. Twips are scaled with the font, and nothing becomes smaller
/// than its captions need.
class TwipsLayout final : public QLayout {
 public:
  /// The part of the container's places that the pane shows, in twips.
  struct Area {
    int width = 0;
    int top = 0;
    int bottom = 0;
  };

  TwipsLayout(QWidget& pane, Area area);
  ~TwipsLayout() override;

  /// The face must outlive its use by the layout, which ends with its widget.
  void Add(ControlFace& face);

  // Of Qt.
  void addItem(QLayoutItem* item) override;
  int count() const override;
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  struct Item {
    std::unique_ptr<QLayoutItem> item;
    ControlFace* face;
  };
  /// What of a face the heights depend on.
  struct Span {
    const ControlFace* face;
    int top;  // twips
    int bottom;
    double needed;  // pixels
  };
  /// A stripe of the pane in which no control begins or ends.
  struct Band {
    int top;  // twips
    int bottom;
    double minimum;  // pixels
    double natural;
    bool stretches = false;
  };

  /// Pixels for a twip, by the font.
  double FontScale() const;
  /// Pixels for a twip across, without which a caption would be cut.
  double NeededScale() const;
  std::vector<const ControlFace*> ShownFaces() const;
  std::vector<Span> Spans(double scale_across) const;
  static bool Holds(const Span& span, const Band& band) {
    return band.top >= span.top && band.bottom <= span.bottom;
  }
  std::vector<Band> Bands(const std::vector<Span>& spans) const;
  /// Gives each control the height that it needs.
  static void Widen(std::vector<Band>& bands, const std::vector<Span>& spans);
  /// Where each band begins, and the last one ends, in pixels.
  static std::vector<double> Edges(const std::vector<Band>& bands, double height);

  Area area_;
  std::vector<Item> items_;
};

}  // namespace nimbrel::toolkit::qt
