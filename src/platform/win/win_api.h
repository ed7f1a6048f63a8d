#pragma once

/// The functions of Windows, without the macros that would rename our own operations of the same
/// names.

#include <olectl.h>
#include <windows.h>

#undef GetFreeSpace
#undef GetOpenFileName
#undef GetSaveFileName
#undef GetWindowLong
#undef HtmlHelp
#undef MessageBox
#undef ShellExecute
#undef interface
