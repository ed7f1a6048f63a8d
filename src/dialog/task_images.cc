#include "dialog/task_images.h"

#include <utility>

namespace nimbrel::dialog {

using toolkit::Color;
using toolkit::ImageList;
using toolkit::Picture;
using toolkit::Shape;

namespace {

constexpr Color kGreen{0, 128, 0};
constexpr Color kRed{255, 0, 0};
constexpr Color kBlue{0, 0, 255};
constexpr Color kPaperEdge{96, 96, 96};

// Lines of one pixel run through the middle of pixels, so that they are crisp at 100%.

Shape Line(double x1, double y1, double x2, double y2, Color color) {
  return {{{x1, y1}, {x2, y2}}, false, Shape::Fill::kNone, color, 1.0};
}

Shape Bar(Shape::Fill fill, Color color) {
  return {{{1.5, 4.5}, {14.5, 4.5}, {14.5, 11.5}, {1.5, 11.5}}, true, fill, color, 1.0};
}

Picture HatchedBar(Color color) {
  return {{Bar(Shape::Fill::kDiagonalHatch, color)}};
}

Picture Diamond(Color color) {
  return {{{{{8, 2}, {14, 8}, {8, 14}, {2, 8}}, true, Shape::Fill::kSolid, color, 0.0}}};
}

/// A bar whose two ends run into points below it.
Picture SummaryBar(Color color) {
  return {{{{{1, 4}, {15, 4}, {15, 8}, {13, 12}, {11, 8}, {5, 8}, {3, 12}, {1, 8}},
            true,
            Shape::Fill::kSolid,
            color,
            0.0}}};
}

Picture SegmentedBar(Color color) {
  return {{Bar(Shape::Fill::kNone, color), Line(5.5, 4.5, 5.5, 11.5, color),
           Line(10.5, 4.5, 10.5, 11.5, color)}};
}

/// A sheet with a turned corner and lines on it.
Picture PlanSheet() {
  const Shape sheet{{{3.5, 1.5}, {10.5, 1.5}, {13.5, 4.5}, {13.5, 14.5}, {3.5, 14.5}},
                    true,
                    Shape::Fill::kNone,
                    kPaperEdge,
                    1.0};
  return {{sheet, Line(5.5, 5.5, 11.5, 5.5, kRed), Line(5.5, 7.5, 11.5, 7.5, kBlue),
           Line(5.5, 9.5, 11.5, 9.5, kRed), Line(5.5, 11.5, 11.5, 11.5, kBlue)}};
}

/// The first of the three pictures of a type of task; 0 for a type without.
std::int32_t FirstImageOfType(std::int32_t nType) {
  switch (nType) {
    case 0:
      return 1;
    case 2:
    case 5:
      return 4;
    case 1:
      return 7;
    case 4:
      return 10;
    default:
      return 0;
  }
}

}  // namespace

void AddTaskImages(ImageList& images) {
  for (Picture (*draw)(Color) : {HatchedBar, Diamond, SummaryBar, SegmentedBar}) {
    for (const Color color : {kGreen, kRed, kBlue}) {
      images.Add(draw(color));
    }
  }
  images.Add(PlanSheet());
}

std::int32_t ImageOfTask(const Corvane8::Ref<Corvane8::Task>& task) {
  const std::int32_t nFirst = FirstImageOfType(task->get_Type());
  if (nFirst == 0) {
    return 0;
  }
  if (task->get_Dates()->get_Progress() != 0.0) {
    return nFirst;
  }
  return nFirst + (task->get_Critical() ? 1 : 2);
}

}  // namespace nimbrel::dialog
