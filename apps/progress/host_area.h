#pragma once

#include <QRect>
#include <cstdint>

namespace nimbrel::progress {

/// Where a window of another program is on the screen, in Qt's pixels; empty if that cannot be
/// told. It can with X windows only: elsewhere windows know nothing of one another.
QRect HostArea(std::int32_t window);

}  // namespace nimbrel::progress
