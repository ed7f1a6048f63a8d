// Pictures are painted from their shapes at the size that is wanted. Colors are 0xAARRGGBB.
#include "toolkit/win32/picture_pixels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace nimbrel::toolkit::win32 {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::uint32_t kWhite = 0xFFFFFFFF;
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr Color kRedPaint{255, 0, 0};
constexpr Color kBluePaint{0, 0, 255};

Shape Block(double left, double top, double right, double bottom, Color color) {
  return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}},
          true,
          Shape::Fill::kSolid,
          color,
          0.0};
}

TEST(PicturePixels, TheGroundIsWhite) {
  EXPECT_THAT(PixelsOf({}, 4, 4, 4, 4), Each(kWhite));
}

TEST(PicturePixels, ABlockThatEndsBetweenPixelsHasSharpEdges) {
  const Picture picture{{Block(1, 0, 2, 2, kRedPaint)}};
  EXPECT_THAT(PixelsOf(picture, 3, 2, 3, 2),
              ElementsAre(kWhite, kRed, kWhite, kWhite, kRed, kWhite));
}

TEST(PicturePixels, APixelThatIsHalfCoveredIsHalfOfEach) {
  // Half of 255 and half of 0 is 127.5.
  const Picture picture{{Block(0, 0, 0.5, 1, kRedPaint)}};
  EXPECT_THAT(PixelsOf(picture, 1, 1, 1, 1), ElementsAre(0xFFFF8080));
}

TEST(PicturePixels, AtTwiceTheSizeTheSameBlockIsSharpAgain) {
  const Picture picture{{Block(0, 0, 0.5, 1, kRedPaint)}};
  EXPECT_THAT(PixelsOf(picture, 1, 1, 2, 2), ElementsAre(kRed, kWhite, kRed, kWhite));
}

TEST(PicturePixels, ALineThroughTheMiddleOfPixelsFillsThem) {
  const Shape line{{{0, 1.5}, {3, 1.5}}, false, Shape::Fill::kNone, kBluePaint, 1.0};
  EXPECT_THAT(PixelsOf({{line}}, 3, 3, 3, 3), ElementsAre(kWhite, kWhite, kWhite,  //
                                                          kBlue, kBlue, kBlue,     //
                                                          kWhite, kWhite, kWhite));
}

TEST(PicturePixels, AnOutlineGoesRoundItsCornersAndLeavesTheInsideOpen) {
  const Shape frame{
      {{0.5, 0.5}, {2.5, 0.5}, {2.5, 2.5}, {0.5, 2.5}}, true, Shape::Fill::kNone, kBluePaint, 1.0};
  EXPECT_THAT(PixelsOf({{frame}}, 3, 3, 3, 3), ElementsAre(kBlue, kBlue, kBlue,   //
                                                           kBlue, kWhite, kBlue,  //
                                                           kBlue, kBlue, kBlue));
}

TEST(PicturePixels, LaterShapesArePaintedOverEarlierOnes) {
  const Picture picture{{Block(0, 0, 1, 1, kRedPaint), Block(0, 0, 1, 1, kBluePaint)}};
  EXPECT_THAT(PixelsOf(picture, 1, 1, 1, 1), ElementsAre(kBlue));
}

TEST(PicturePixels, AHatchStaysInsideItsShapeAndLeavesGapsOfTheGround) {
  Shape hatch = Block(2, 2, 14, 14, kRedPaint);
  hatch.fill = Shape::Fill::kDiagonalHatch;
  const std::vector<std::uint32_t> pixels = PixelsOf({{hatch}}, 16, 16, 64, 64);
  double covered = 0.0;
  for (int row = 0; row < 64; ++row) {
    for (int column = 0; column < 64; ++column) {
      const std::uint32_t pixel = pixels[static_cast<std::size_t>(row * 64 + column)];
      const bool inside = row >= 8 && row < 56 && column >= 8 && column < 56;
      EXPECT_TRUE(inside || pixel == kWhite) << row << ' ' << column;
      covered += 1.0 - static_cast<double>(pixel & 0xFF) / 0xFF;
    }
  }
  // Lines of one pixel across stand three pixels apart along the picture, so the root of 2 in 3 of
  // the 48 by 48 pixels is covered; a hundredth is for the lines that the corners cut.
  EXPECT_NEAR(covered / (48 * 48), std::sqrt(2.0) / 3.0, 0.01);
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
