#include "engine/formats/plan_reader.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "engine/formats/mspdi_project.h"
#include "engine/formats/xer_project.h"
#include "engine/formats/xer_table.h"
#include "engine/formats/xml_file.h"

namespace nimbrel::engine {
namespace {

std::string ReadBytes(const std::filesystem::path& path) {
  constexpr std::streamsize kChunk = 1 << 20;
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string bytes;
  std::error_code no_size;  // of a pipe or a directory: then the size shows as it is read
  const std::uintmax_t size = std::filesystem::file_size(path, no_size);
  bytes.reserve(no_size ? 0 : static_cast<std::size_t>(size) + kChunk);
  while (file) {
    const std::size_t end = bytes.size();
    bytes.resize(end + kChunk);
    file.read(bytes.data() + end, kChunk);
    bytes.resize(end + static_cast<std::size_t>(file.gcount()));
  }
  if (!file.eof() || file.bad()) {
    throw std::system_error(errno == 0 ? EIO : errno, std::generic_category(), path.string());
  }
  return bytes;
}

enum class Format { kXer, kMspdi };

/// Tells the formats apart by how the file begins.
Format FormatOf(std::string_view bytes, const std::string& name) {
  const std::string_view start = bytes.substr(0, 4096);
  const std::size_t text = start.find_first_not_of("\xEF\xBB\xBF \t\r\n");
  const std::string_view rest = text == std::string_view::npos ? "" : start.substr(text);
  if (rest.starts_with("ERMHDR")) {
    return Format::kXer;
  }
  // Two byte order marks of UTF-16 as well: the reader says what is wrong with them.
  if (rest.starts_with('<') || rest.starts_with("\xFF\xFE") || rest.starts_with("\xFE\xFF")) {
    return Format::kMspdi;
  }
  throw FormatError(name, 1,
                    "expected a plan that starts with ERMHDR or as XML, found " +
                        (bytes.empty() ? "nothing" : Quoted(bytes)));
}

}  // namespace

ReadResult ReadPlanFile(const std::filesystem::path& path, const ReadOptions& options) {
  const std::string bytes = ReadBytes(path);
  const std::string name = path.filename().string();
  return FormatOf(bytes, name) == Format::kXer ? ReadXer(bytes, name, options)
                                               : ReadMspdi(bytes, name, options);
}

std::vector<std::string> ListProjects(const std::filesystem::path& path) {
  const std::string bytes = ReadBytes(path);
  const std::string name = path.filename().string();
  if (FormatOf(bytes, name) == Format::kMspdi) {
    return {MspdiProjectName(XmlFile(bytes, name))};
  }
  std::vector<std::string> names;
  for (const XerProject& project : XerProjects(XerFile(bytes, name))) {
    names.push_back(project.short_name);
  }
  return names;
}

}  // namespace nimbrel::engine
