#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct IAccPropServices;

namespace nimbrel::toolkit::win32 {

/// What screen readers call windows instead of what they would find themselves. Does nothing on a
/// thread without COM, or where the system cannot.
class ReaderNames {
 public:
  ReaderNames();
  ~ReaderNames();
  ReaderNames(const ReaderNames&) = delete;
  ReaderNames& operator=(const ReaderNames&) = delete;

  /// Nothing changes for the empty name.
  void Name(HWND window, const std::wstring& name);
  /// Takes all names away. To be done before the windows go, which would leave them behind.
  void Clear();

 private:
  IAccPropServices* services_ = nullptr;
  std::vector<HWND> named_;
};

}  // namespace nimbrel::toolkit::win32
