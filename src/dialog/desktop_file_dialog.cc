#include "dialog/desktop_file_dialog.h"

#include <string>
#include <string_view>

#include "platform/text.h"

namespace nimbrel::dialog {
namespace {

/// Takes the text up to the next NUL off the front.
std::string TakeText(std::string_view& texts) {
  const std::string_view text = texts.substr(0, texts.find('\0'));
  texts.remove_prefix(text.size() < texts.size() ? text.size() + 1 : text.size());
  return std::string(text);
}

}  // namespace

std::int32_t DesktopFileDialog::GetOpenFileName(platform::FileDialogRecord& record) {
  return Show(record, false);
}

std::int32_t DesktopFileDialog::GetSaveFileName(platform::FileDialogRecord& record) {
  return Show(record, true);
}

std::int32_t DesktopFileDialog::Show(platform::FileDialogRecord& record, bool save) {
  toolkit::FileRequest request;
  request.title = record.lpstrTitle;
  request.folder = record.lpstrInitialDir;
  std::string_view filter = record.lpstrFilter;
  request.filter_name = TakeText(filter);
  request.pattern = TakeText(filter);
  std::string_view name = record.lpstrFile;
  request.file_name = platform::Trim(TakeText(name));
  request.save = save;
  const std::string path = desktop_.PickFile(request);
  if (path.empty()) {
    return 0;
  }
  record.lpstrFile = path;
  return 1;
}

}  // namespace nimbrel::dialog
