#pragma once

#include <cstdint>
#include <string>

namespace nimbrel::platform {

/// What a file dialog is called with, field for field as the platform has it in its narrow form.
/// Texts are UTF-8 and may hold NULs; an empty one stands for a null pointer.
struct FileDialogRecord {
  std::int32_t lStructSize = 0;  ///< bytes that the platform's own record has
  std::int32_t hwndOwner = 0;
  std::int32_t hInstance = 0;
  std::string lpstrFilter{};  ///< description, NUL, pattern, NUL
  std::string lpstrCustomFilter{};
  std::int32_t nMaxCustFilter = 0;
  std::int32_t nFilterIndex = 0;
  std::string lpstrFile{};       ///< the name that is offered; afterwards the path that was chosen
  std::int32_t nMaxFile = 0;     ///< room for lpstrFile in characters, with the closing NUL
  std::string lpstrFileTitle{};  ///< afterwards the name without its folder
  std::int32_t nMaxFileTitle = 0;
  std::string lpstrInitialDir{};
  std::string lpstrTitle{};
  std::int32_t Flags = 0;
  std::int16_t nFileOffset = 0;
  std::int16_t nFileExtension = 0;
  std::string lpstrDefExt{};
  std::int32_t lCustData = 0;
  std::int32_t lpfnHook = 0;
  std::string lpTemplateName{};

  friend bool operator==(const FileDialogRecord&, const FileDialogRecord&) = default;
};

/// The platform's dialogs for choosing a file. Each shows a modal window, and gives zero if it was
/// cancelled. Otherwise the path stands in lpstrFile up to the first NUL, and nothing but spaces
/// and NULs behind it; where paths may be longer than nMaxFile, it may be longer too.
class FileDialog {
 public:
  virtual ~FileDialog() = default;

  virtual std::int32_t GetOpenFileName(FileDialogRecord& record) = 0;
  virtual std::int32_t GetSaveFileName(FileDialogRecord& record) = 0;
};

}  // namespace nimbrel::platform
