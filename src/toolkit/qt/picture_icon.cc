#include "toolkit/qt/picture_icon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <utility>

namespace nimbrel::toolkit::qt {
namespace {

/// How far the lines of a hatch stand apart, in the picture's pixels.
constexpr double kHatchDistance = 3.0;

QPolygonF PolygonOf(const Shape& shape) {
  QPolygonF polygon;
  for (const Point& point : shape.points) {
    polygon.append(QPointF(point.x, point.y));
  }
  return polygon;
}

void PaintHatch(QPainter& painter, const QPolygonF& polygon, const QColor& color) {
  QPainterPath inside;
  inside.addPolygon(polygon);
  const QRectF bounds = polygon.boundingRect();
  painter.save();
  painter.setClipPath(inside, Qt::IntersectClip);
  painter.setPen(QPen(color, 1.0));
  const double height = bounds.height();
  for (double x = bounds.left() - height; x < bounds.right(); x += kHatchDistance) {
    painter.drawLine(QPointF(x, bounds.bottom()), QPointF(x + height, bounds.top()));
  }
  painter.restore();
}

void PaintShape(QPainter& painter, const Shape& shape) {
  const QPolygonF polygon = PolygonOf(shape);
  const QColor color(shape.color.red, shape.color.green, shape.color.blue);
  if (shape.closed && shape.fill == Shape::Fill::kDiagonalHatch) {
    PaintHatch(painter, polygon, color);
  }
  const bool filled = shape.closed && shape.fill == Shape::Fill::kSolid;
  painter.setBrush(filled ? QBrush(color) : QBrush(Qt::NoBrush));
  painter.setPen(shape.line_width > 0.0 ? QPen(color, shape.line_width) : QPen(Qt::NoPen));
  if (shape.closed) {
    painter.drawPolygon(polygon);
  } else {
    painter.drawPolyline(polygon);
  }
}

class PictureEngine final : public QIconEngine {
 public:
  PictureEngine(Picture picture, int width, int height)
      : picture_(std::move(picture)), width_(width), height_(height) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/,
             QIcon::State /*state*/) override {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(static_cast<double>(rect.width()) / width_,
                   static_cast<double>(rect.height()) / height_);
    const QRectF ground(0.0, 0.0, width_, height_);
    painter->setClipRect(ground, Qt::IntersectClip);
    painter->fillRect(ground, Qt::white);
    for (const Shape& shape : picture_.shapes) {
      PaintShape(*painter, shape);
    }
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
  }

  QIconEngine* clone() const override { return new PictureEngine(picture_, width_, height_); }

 private:
  Picture picture_;
  int width_;
  int height_;
};

}  // namespace

QIcon PictureIcon(const Picture& picture, int width, int height) {
  return QIcon(new PictureEngine(picture, std::max(width, 1), std::max(height, 1)));
}

}  // namespace nimbrel::toolkit::qt
