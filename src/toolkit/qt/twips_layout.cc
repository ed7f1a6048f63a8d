#include "toolkit/qt/twips_layout.h"

#include <QWidget>
#include <iterator>

namespace nimbrel::toolkit::qt {

TwipsLayout::TwipsLayout(QWidget& pane, TwipsBands::Area area) : QLayout(&pane), area_(area) {
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

TwipsBands TwipsLayout::Bands() const {
  TwipsBands bands(area_);
  for (const Item& item : items_) {
    bands.Add(*item.face);
  }
  return bands;
}

double TwipsLayout::Line() const {
  return QFontMetricsF(parentWidget()->font()).height();
}

QSize TwipsLayout::sizeHint() const {
  const TwipsBands::Size size = Bands().NaturalSize(Line());
  return QSize(size.width, size.height).grownBy(contentsMargins());
}

QSize TwipsLayout::minimumSize() const {
  const TwipsBands::Size size = Bands().LeastSize(Line());
  return QSize(size.width, size.height).grownBy(contentsMargins());
}

void TwipsLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  const QRect inside = rect.marginsRemoved(contentsMargins());
  for (const TwipsBands::Spot& spot : Bands().Arrange({inside.width(), inside.height()}, Line())) {
    const auto& face = static_cast<const ControlFace&>(*spot.placed);
    face.Widget().setGeometry(inside.left() + spot.left, inside.top() + spot.top, spot.width,
                              spot.height);
  }
}

}  // namespace nimbrel::toolkit::qt
