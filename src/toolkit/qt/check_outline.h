#pragma once

#include <QPainter>
#include <QPalette>
#include <QRect>

namespace nimbrel::toolkit::qt {

/// Draws the edge of a check box again where the ground is dark: some styles draw it darker than
/// the ground, so that an empty box is not seen.
void OutlineCheckOnDark(QPainter& painter, const QRect& box, const QPalette& palette);

}  // namespace nimbrel::toolkit::qt
