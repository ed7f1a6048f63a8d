#pragma once

// The first one has to come first.
// clang-format off
#include <windows.h>
#include <commctrl.h>
// clang-format on
