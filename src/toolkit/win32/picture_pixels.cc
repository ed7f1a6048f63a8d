#include "toolkit/win32/picture_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace nimbrel::toolkit::win32 {
namespace {

/// Each pixel is looked at in so many places across and down. Even, so that edges between pixels
/// and through their middles come out exactly.
constexpr int kLooks = 8;
/// How far the lines of a hatch stand apart along the picture, and how wide they are, in its
/// pixels.
constexpr double kHatchDistance = 3.0;
constexpr double kHatchWidth = 1.0;

/// What is painted at a place, from 0 to 255 each.
struct Paint {
  double red = 255.0;
  double green = 255.0;
  double blue = 255.0;
};

double DistanceToLine(const Point& at, const Point& from, const Point& to) {
  const double x = to.x - from.x;
  const double y = to.y - from.y;
  const double length = x * x + y * y;
  const double along =
      length == 0.0 ? 0.0
                    : std::clamp(((at.x - from.x) * x + (at.y - from.y) * y) / length, 0.0, 1.0);
  return std::hypot(at.x - from.x - along * x, at.y - from.y - along * y);
}

/// The corners of an outline are square: there both lines count beyond their ends.
bool IsOnLine(const Point& at, const Point& from, const Point& to, double width, bool square) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if (!square || length == 0.0) {
    return DistanceToLine(at, from, to) < width / 2;
  }
  const double x = (to.x - from.x) / length;
  const double y = (to.y - from.y) / length;
  const double along = (at.x - from.x) * x + (at.y - from.y) * y;
  const double aside = std::abs((at.y - from.y) * x - (at.x - from.x) * y);
  return aside < width / 2 && along > -width / 2 && along < length + width / 2;
}

bool IsOnOutline(const Shape& shape, const Point& at) {
  const std::size_t count = shape.points.size();
  const std::size_t lines = shape.closed ? count : count - 1;
  for (std::size_t i = 0; count > 1 && i < lines; ++i) {
    if (IsOnLine(at, shape.points[i], shape.points[(i + 1) % count], shape.line_width, true)) {
      return true;
    }
  }
  return false;
}

bool IsInside(const Shape& shape, const Point& at) {
  bool inside = false;
  const std::size_t count = shape.points.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Point& a = shape.points[i];
    const Point& b = shape.points[(i + 1) % count];
    if ((a.y > at.y) != (b.y > at.y) && at.x < a.x + (b.x - a.x) * (at.y - a.y) / (b.y - a.y)) {
      inside = !inside;
    }
  }
  return inside;
}

/// The lines of a hatch rise to the right and go through the lower left corner of the shape.
bool IsOnHatch(const Shape& shape, const Point& at) {
  double left = shape.points.front().x;
  double bottom = shape.points.front().y;
  for (const Point& point : shape.points) {
    left = std::min(left, point.x);
    bottom = std::max(bottom, point.y);
  }
  const double across = (at.x - left) - (bottom - at.y);
  const double off = across - kHatchDistance * std::round(across / kHatchDistance);
  return std::abs(off) < kHatchWidth * std::sqrt(0.5);
}

bool Covers(const Shape& shape, const Point& at) {
  if (shape.points.empty()) {
    return false;
  }
  const bool filled = shape.closed && shape.fill != Shape::Fill::kNone && IsInside(shape, at) &&
                      (shape.fill == Shape::Fill::kSolid || IsOnHatch(shape, at));
  return filled || (shape.line_width > 0.0 && IsOnOutline(shape, at));
}

Paint PaintAt(const Picture& picture, const Point& at) {
  const auto top = std::find_if(picture.shapes.rbegin(), picture.shapes.rend(),
                                [&at](const Shape& shape) { return Covers(shape, at); });
  if (top == picture.shapes.rend()) {
    return {};
  }
  return {static_cast<double>(top->color.red), static_cast<double>(top->color.green),
          static_cast<double>(top->color.blue)};
}

std::uint32_t Channel(double sum, int shift) {
  return static_cast<std::uint32_t>(std::lround(sum / (kLooks * kLooks))) << shift;
}

}  // namespace

std::vector<std::uint32_t> PixelsOf(const Picture& picture, int width, int height, int columns,
                                    int rows) {
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      Paint sum{0.0, 0.0, 0.0};
      for (int look = 0; look < kLooks * kLooks; ++look) {
        const Point at{(column + (look % kLooks + 0.5) / kLooks) * width / columns,
                       (row + (look / kLooks + 0.5) / kLooks) * height / rows};
        const Paint paint = PaintAt(picture, at);
        sum = {sum.red + paint.red, sum.green + paint.green, sum.blue + paint.blue};
      }
      pixels.push_back(0xFF000000U | Channel(sum.red, 16) | Channel(sum.green, 8) |
                       Channel(sum.blue, 0));
    }
  }
  return pixels;
}

}  // namespace nimbrel::toolkit::win32
