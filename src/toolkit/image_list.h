#pragma once

#include <cstdint>
#include <vector>

namespace nimbrel::toolkit {

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(const Color&, const Color&) = default;
};

/// A point of a picture, in the pixels of its image list; fractions are allowed.
struct Point {
  double x = 0.0;
  double y = 0.0;
};

/// A polygon or an open line. Pictures are made of these, so that they are crisp at every scale.
struct Shape {
  enum class Fill { kNone, kSolid, kDiagonalHatch };

  std::vector<Point> points;
  bool closed = true;       ///< whether a line goes from the last point to the first
  Fill fill = Fill::kNone;  ///< of a closed shape, in `color`
  Color color;              ///< of the outline and the fill
  double line_width = 1.0;  ///< of the outline, in pixels; 0 for none
};

/// A picture on a white ground: shapes, painted in their order.
struct Picture {
  std::vector<Shape> shapes;
};

/// Pictures of one size for other controls to show, numbered from 1. Has no place on the form.
class ImageList {
 public:
  /// Width and height of every picture in pixels, at the scale of 100%.
  ImageList(int width, int height) : width_(width), height_(height) {}

  int ImageWidth() const { return width_; }
  int ImageHeight() const { return height_; }
  std::int32_t Count() const { return static_cast<std::int32_t>(pictures_.size()); }
  /// Gives the number of the new picture.
  std::int32_t Add(Picture picture);
  /// Raises error 35600 for a number that is not there.
  const Picture& Item(std::int32_t index) const;

 private:
  int width_;
  int height_;
  std::vector<Picture> pictures_;
};

}  // namespace nimbrel::toolkit
