#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/image_list.h"

namespace nimbrel::toolkit::win32 {

/// The pixels of a picture, row by row from the top, 0xAARRGGBB and opaque. `width` and `height`
/// are the picture's size in its own pixels; it is drawn in `columns` by `rows` pixels, so that it
/// is sharp at every scale.
std::vector<std::uint32_t> PixelsOf(const Picture& picture, int width, int height, int columns,
                                    int rows);

}  // namespace nimbrel::toolkit::win32
