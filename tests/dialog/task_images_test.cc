// The pictures of the task tree: which one a task has, and what they look like.

#include "dialog/task_images.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "tests/support/host/wired_test.h"

namespace nimbrel::dialog {
namespace {

using toolkit::Color;
using toolkit::ImageList;
using toolkit::Picture;
using toolkit::Shape;

constexpr Color kGreen{0, 128, 0};
constexpr Color kRed{255, 0, 0};
constexpr Color kBlue{0, 0, 255};

class TaskImages : public recording::WiredTest {
 protected:
  TaskImages() {
    plan().AddTask("A", 1);
    AddTaskImages(images_);
  }

  struct Numbers {
    std::int32_t begun;
    std::int32_t critical;
    std::int32_t other;
    friend bool operator==(const Numbers&, const Numbers&) = default;
  };
  Numbers ImagesOfType(std::int32_t type) {
    return {ImageOf(type, 0.01, false), ImageOf(type, 0.0, true), ImageOf(type, 0.0, false)};
  }
  std::int32_t ImageOf(std::int32_t type, double progress, bool critical) {
    recording::TaskState& task = plan().Task("A");
    task.type = type;
    task.progress = progress;
    task.critical = critical;
    return ImageOfTask(host_.TaskObject("A"));
  }

  ImageList images_{16, 16};
};

TEST_F(TaskImages, GoByTypeAndState) {
  EXPECT_EQ(ImagesOfType(0), (Numbers{1, 2, 3}));
  EXPECT_EQ(ImagesOfType(2), (Numbers{4, 5, 6}));
  EXPECT_EQ(ImagesOfType(5), (Numbers{4, 5, 6}));
  EXPECT_EQ(ImagesOfType(1), (Numbers{7, 8, 9}));
  EXPECT_EQ(ImagesOfType(4), (Numbers{10, 11, 12}));
}

TEST_F(TaskImages, AreMissingForAnyOtherType) {
  for (const std::int32_t type : {-1, 3, 6, 100}) {
    EXPECT_EQ(ImagesOfType(type), (Numbers{0, 0, 0})) << type;
  }
}

TEST_F(TaskImages, ABegunTaskIsGreenAlsoWhereItIsCritical) {
  EXPECT_EQ(ImageOf(0, 1.0, true), 1);
  EXPECT_EQ(ImageOf(0, -1.0, true), 1);
}

TEST_F(TaskImages, AreThirteenInThreeColoursEach) {
  ASSERT_EQ(images_.Count(), 13);
  for (std::int32_t number = 1; number <= 12; ++number) {
    const Color color = number % 3 == 1 ? kGreen : number % 3 == 2 ? kRed : kBlue;
    const Picture& picture = images_.Item(number);
    EXPECT_FALSE(picture.shapes.empty());
    EXPECT_TRUE(std::all_of(picture.shapes.begin(), picture.shapes.end(), [&](const Shape& shape) {
      return shape.color == color;
    })) << number;
  }
}

TEST_F(TaskImages, StayInsideTheirSquare) {
  for (std::int32_t number = 1; number <= images_.Count(); ++number) {
    for (const Shape& shape : images_.Item(number).shapes) {
      const double margin = shape.line_width / 2.0;
      for (const toolkit::Point& point : shape.points) {
        EXPECT_GE(std::min(point.x, point.y), margin) << number;
        EXPECT_LE(std::max(point.x, point.y), 16.0 - margin) << number;
      }
    }
  }
}

TEST_F(TaskImages, HaveTheShapesOfTheirTypes) {
  EXPECT_EQ(images_.Item(3).shapes[0].fill, Shape::Fill::kDiagonalHatch);
  const Picture& diamond = images_.Item(6);
  EXPECT_EQ(diamond.shapes[0].points.size(), 4u);
  EXPECT_EQ(diamond.shapes[0].fill, Shape::Fill::kSolid);
  const Picture& summary = images_.Item(9);
  const auto& corners = summary.shapes[0].points;
  const auto lowest =
      std::count_if(corners.begin(), corners.end(), [&](const toolkit::Point& point) {
        return std::all_of(corners.begin(), corners.end(),
                           [&](const toolkit::Point& other) { return other.y <= point.y; });
      });
  EXPECT_EQ(lowest, 2);  // one point at each end
  const Picture& segmented = images_.Item(12);
  ASSERT_EQ(segmented.shapes.size(), 3u);
  for (const std::size_t line : {1u, 2u}) {
    EXPECT_FALSE(segmented.shapes[line].closed);
    EXPECT_EQ(segmented.shapes[line].points[0].x, segmented.shapes[line].points[1].x);
  }
}

TEST_F(TaskImages, ThePlanIsASheetWithRedAndBlueLines) {
  const Picture& sheet = images_.Item(kPlanImage);
  const auto lines_of = [&](Color color) {
    return std::count_if(sheet.shapes.begin(), sheet.shapes.end(),
                         [&](const Shape& shape) { return !shape.closed && shape.color == color; });
  };
  EXPECT_TRUE(sheet.shapes[0].closed);
  EXPECT_EQ(lines_of(kRed), 2);
  EXPECT_EQ(lines_of(kBlue), 2);
}

}  // namespace
}  // namespace nimbrel::dialog
