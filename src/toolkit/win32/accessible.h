#pragma once

#include <windows.h>

#include <string>

namespace nimbrel::toolkit::win32 {

/// Has screen readers call the window by this name instead of what they would find themselves.
/// Does nothing for the empty name, on a thread without COM, or where the system cannot.
void NameForReaders(HWND window, const std::wstring& name);

}  // namespace nimbrel::toolkit::win32
