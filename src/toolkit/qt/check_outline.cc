#include "toolkit/qt/check_outline.h"

namespace nimbrel::toolkit::qt {

void OutlineCheckOnDark(QPainter& painter, const QRect& box, const QPalette& palette) {
  const QColor ground = palette.color(QPalette::Base);
  if (box.isEmpty() || ground.lightness() >= 128) {
    return;
  }
  QColor edge = palette.color(QPalette::Text);
  edge.setAlphaF(0.55F);
  painter.save();
  painter.setPen(edge);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(box.adjusted(0, 0, -1, -1));
  painter.restore();
}

}  // namespace nimbrel::toolkit::qt
