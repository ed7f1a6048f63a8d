#include "spreadsheet/workbook_viewer.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/files.h"
#include "platform/runtime_error.h"
#include "spreadsheet/xlsx_writer.h"

namespace nimbrel::spreadsheet {
namespace {

namespace fs = std::filesystem;

constexpr const char* kShown = "shown-";  // what may be swept up
constexpr const char* kKept = "kept-";

/// What is in a folder, as far as it can be read: others may be removing it meanwhile.
std::vector<fs::path> EntriesOf(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  fs::directory_iterator entry(folder, error);
  while (!error && entry != fs::directory_iterator()) {
    entries.push_back(entry->path());
    entry.increment(error);
  }
  return entries;
}

/// Whether the folder holds what nobody has touched for a day.
bool IsStale(const fs::path& folder) {
  std::error_code error;
  const auto is_old = [&](const fs::path& path) {
    const auto time = fs::last_write_time(path, error);
    return !error && fs::file_time_type::clock::now() - time > std::chrono::hours(24);
  };
  const auto is_lock = [](const fs::path& entry) {
    const std::string name = entry.filename().string();
    return name.starts_with(".~lock.") || name.starts_with("~$");
  };
  const std::vector<fs::path> entries = EntriesOf(folder, error);
  return !error && is_old(folder) && std::none_of(entries.begin(), entries.end(), is_lock);
}

/// Removes a folder with its files, which are not to be written to.
void RemoveFolder(const fs::path& folder) {
  std::error_code ignored;
  for (const fs::path& entry : EntriesOf(folder, ignored)) {
    fs::permissions(entry, fs::perms::owner_write,
                    fs::perm_options::add | fs::perm_options::nofollow, ignored);
  }
  fs::remove_all(folder, ignored);
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

DesktopViewer::DesktopViewer(StartProcess start, platform::MessageBox& messages, std::string folder,
                             std::vector<std::string> opener)
    : start_(std::move(start)),
      messages_(messages),
      folder_(std::move(folder)),
      opener_(std::move(opener)) {
  SweepUp();
}

void DesktopViewer::Show(const Workbook& workbook, const std::string& path) {
  // A file that the user has opened is shown as itself, what is new as an unsaved document.
  const bool is_new = path.empty();
  const std::string file = is_new ? WriteTemporary(workbook) : path;
  const std::vector<std::string> office = is_new ? std::vector<std::string>{"soffice", "-n", file}
                                                 : std::vector<std::string>{"soffice", file};
  std::vector<std::string> system = opener_;
  system.push_back(file);
  if (!start_(office) && !start_(system)) {
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
  return (fs::path(TemporaryFolder()) / platform::UsersFolderName("nimbrel")).string();
}

void DesktopViewer::SweepUp() const {
  const std::string folder = UsersFolder();
  if (!platform::IsUsersFolder(folder)) {
    return;
  }
  std::error_code ignored;
  for (const fs::path& entry : EntriesOf(folder, ignored)) {
    if (entry.filename().string().starts_with(kShown) && IsStale(entry)) {
      RemoveFolder(entry);
    }
  }
}

std::string DesktopViewer::WriteTemporary(const Workbook& workbook) const {
  const std::string users = UsersFolder();
  platform::MakeUsersFolder(users);
  // Where another user has taken the name, what is written stays until the system empties the
  // place.
  const fs::path beginning = platform::IsUsersFolder(users)
                                 ? fs::path(users) / kShown
                                 : fs::path(TemporaryFolder()) / "nimbrel-";
  std::string folder;
  try {
    folder = platform::MakeNewFolder(beginning.string());
  } catch (const std::system_error& error) {
    throw platform::RuntimeError(platform::kApplicationDefined,
                                 "No folder for the workbook can be made: " + beginning.string() +
                                     ": " + error.code().message());
  }
  std::string file = (fs::path(folder) / "Weather.xlsx").string();
  try {
    WriteXlsx(workbook, file);
  } catch (...) {
    RemoveFolder(folder);
    throw;
  }
  std::error_code ignored;
  fs::permissions(file, fs::perms::owner_read, ignored);
  return file;
}

}  // namespace nimbrel::spreadsheet
