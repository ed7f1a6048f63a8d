#include "engine/formats/plan_reader.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

#include "engine/formats/xer_project.h"
#include "engine/formats/xer_table.h"

namespace nimbrel::engine {
namespace {

std::string ReadBytes(const std::filesystem::path& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  // A directory can be opened; only reading it fails.
  if (!file || std::filesystem::is_directory(path) ||
      (file.peek() != EOF && !(bytes << file.rdbuf()))) {
    throw std::system_error(errno == 0 ? EISDIR : errno, std::generic_category(), path.string());
  }
  return std::move(bytes).str();
}

bool IsXer(std::string_view bytes) {
  const std::size_t text = bytes.find_first_not_of("\xEF\xBB\xBF \t\r\n");
  return text != std::string_view::npos && bytes.substr(text).starts_with("ERMHDR");
}

[[noreturn]] void FailUnknownFormat(std::string_view bytes, const std::string& name) {
  throw FormatError(name, 1,
                    "expected a plan that starts with ERMHDR, found " +
                        (bytes.empty() ? "nothing" : Quoted(bytes)));
}

}  // namespace

ReadResult ReadPlanFile(const std::filesystem::path& path, const ReadOptions& options) {
  const std::string bytes = ReadBytes(path);
  const std::string name = path.filename().string();
  if (IsXer(bytes)) {
    return ReadXer(bytes, name, options);
  }
  FailUnknownFormat(bytes, name);
}

std::vector<std::string> ListProjects(const std::filesystem::path& path) {
  const std::string bytes = ReadBytes(path);
  const std::string name = path.filename().string();
  if (!IsXer(bytes)) {
    FailUnknownFormat(bytes, name);
  }
  std::vector<std::string> names;
  for (const XerProject& project : XerProjects(XerFile(bytes, name))) {
    names.push_back(project.short_name);
  }
  return names;
}

}  // namespace nimbrel::engine
