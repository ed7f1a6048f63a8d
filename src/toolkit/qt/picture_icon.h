#pragma once

#include <QIcon>

#include "toolkit/image_list.h"

namespace nimbrel::toolkit::qt {

/// An icon that is painted from the picture's shapes, so that it is sharp at every scale. `width`
/// and `height` are the picture's size in its own pixels. The picture is copied.
QIcon PictureIcon(const Picture& picture, int width, int height);

}  // namespace nimbrel::toolkit::qt
