#pragma once

#include <cstdint>

#include "host/corvane8.h"
#include "toolkit/image_list.h"

namespace nimbrel::dialog {

/// The picture of the plan itself among those of AddTaskImages.
inline constexpr std::int32_t kPlanImage = 13;

/// Adds the thirteen pictures of the task tree to an empty list of 16 by 16 pixels: bar, diamond,
/// summary bar and segmented bar, each in green, red and blue, then the plan.
void AddTaskImages(toolkit::ImageList& images);

/// The number of a task's picture, from 1: its shape tells the type of task, its colour whether the
/// task has begun (green), is critical (red) or neither (blue). 0 for a type that has no picture.
std::int32_t ImageOfTask(const Corvane8::Ref<Corvane8::Task>& task);

}  // namespace nimbrel::dialog
