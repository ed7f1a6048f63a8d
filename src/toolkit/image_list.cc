#include "toolkit/image_list.h"

#include <string>
#include <utility>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {

std::int32_t ImageList::Add(Picture picture) {
  pictures_.push_back(std::move(picture));
  return Count();
}

const Picture& ImageList::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) {
    throw platform::RuntimeError(
        kIndexOutOfBounds,
        "Index out of bounds: picture " + std::to_string(index) + " of " + std::to_string(Count()));
  }
  return pictures_[static_cast<std::size_t>(index - 1)];
}

}  // namespace nimbrel::toolkit
