#include "spreadsheet/workbook_viewer.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/runtime_error.h"
#include "spreadsheet/xlsx_writer.h"

namespace nimbrel::spreadsheet {
namespace {

namespace fs = std::filesystem;

constexpr const char* kShown = "shown-";  // what may be swept up
constexpr const char* kKept = "kept-";

bool IsOwnFolder(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
         (info.st_mode & 077) == 0;
}

/// Whether the folder holds what nobody has touched for a day.
bool IsStale(const fs::path& folder) {
  std::error_code error;
  const auto is_old = [&](const fs::path& path) {
    const auto time = fs::last_write_time(path, error);
    return !error && fs::file_time_type::clock::now() - time > std::chrono::hours(24);
  };
  const auto is_lock = [](const fs::directory_entry& entry) {
    return entry.path().filename().string().starts_with(".~lock.");
  };
  const fs::directory_iterator entries(folder, error);
  return !error && is_old(folder) && std::none_of(begin(entries), end(entries), is_lock);
}

/// Puts a file where it is not swept up; its new path.
std::string Keep(const std::string& file) {
  const fs::path path(file);
  std::string folder = path.parent_path().filename().string();
  if (!folder.starts_with(kShown)) {
    return file;
  }
  folder.replace(0, std::string(kShown).size(), kKept);
  const fs::path kept = path.parent_path().parent_path() / folder;
  std::error_code error;
  fs::rename(path.parent_path(), kept, error);
  return error ? file : (kept / path.filename()).string();
}

}  // namespace

void WorkbookSaver::Show(const Workbook& workbook, const std::string&) {
  WriteXlsx(workbook, path_, is_stopped_);
}

DesktopViewer::DesktopViewer(StartProcess start, platform::MessageBox& messages, std::string folder)
    : start_(std::move(start)), messages_(messages), folder_(std::move(folder)) {
  SweepUp();
}

void DesktopViewer::Show(const Workbook& workbook, const std::string& path) {
  // A file that the user has opened is shown as itself, what is new as an unsaved document.
  const bool is_new = path.empty();
  const std::string file = is_new ? WriteTemporary(workbook) : path;
  const std::vector<std::string> office = is_new ? std::vector<std::string>{"soffice", "-n", file}
                                                 : std::vector<std::string>{"soffice", file};
  if (!start_(office) && !start_({"xdg-open", file})) {
    messages_.Show("There is no program to open the workbook with. It is in this file:\r\n" +
                       (is_new ? Keep(file) : file),
                   "Weather Modeling");
  }
}

std::string DesktopViewer::TemporaryFolder() const {
  std::error_code ignored;
  return folder_.empty() ? fs::temp_directory_path(ignored).string() : folder_;
}

std::string DesktopViewer::UsersFolder() const {
  return (fs::path(TemporaryFolder()) / ("nimbrel-" + std::to_string(geteuid()))).string();
}

void DesktopViewer::SweepUp() const {
  const std::string folder = UsersFolder();
  if (!IsOwnFolder(folder)) {
    return;
  }
  std::error_code ignored;
  std::vector<fs::path> stale;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    if (entry.path().filename().string().starts_with(kShown) && IsStale(entry.path())) {
      stale.push_back(entry.path());
    }
  }
  for (const fs::path& path : stale) {
    fs::remove_all(path, ignored);
  }
}

std::string DesktopViewer::WriteTemporary(const Workbook& workbook) const {
  const std::string users = UsersFolder();
  mkdir(users.c_str(), 0700);
  // Where another user has taken the name, what is written stays until the system empties the
  // place.
  std::string folder = IsOwnFolder(users)
                           ? (fs::path(users) / kShown).string() + "XXXXXX"
                           : (fs::path(TemporaryFolder()) / "nimbrel-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    throw platform::RuntimeError(platform::kApplicationDefined,
                                 "No folder for the workbook can be made: " + folder + ": " +
                                     std::error_code(errno, std::generic_category()).message());
  }
  const std::string file = (fs::path(folder) / "Weather.xlsx").string();
  try {
    WriteXlsx(workbook, file);
  } catch (...) {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    throw;
  }
  chmod(file.c_str(), S_IRUSR);
  return file;
}

}  // namespace nimbrel::spreadsheet
