#include "platform/posix/ini_settings_store.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/posix/descriptor.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::platform {
namespace {

constexpr std::string_view kNameSpecials = "=[];#/";
constexpr std::string_view kHexDigits = "0123456789abcdef";

[[noreturn]] void RaiseCannotSave(const std::filesystem::path& file, int error) {
  throw RuntimeError(kInvalidProcedureCall,
                     "The settings " + file.string() + " cannot be saved: " + std::strerror(error));
}

/// `text` on one line, without spaces at its ends and without any of `specials`.
std::string Escape(std::string_view text, std::string_view specials) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_edge = text[i] == ' ' && (i == 0 || i + 1 == text.size());
    if (byte < 0x20 || byte == 0x7f || text[i] == '\\' || is_edge ||
        specials.find(text[i]) != std::string_view::npos) {
      escaped += "\\x";
      escaped += kHexDigits[byte >> 4U];
      escaped += kHexDigits[byte & 0x0fU];
    } else {
      escaped += text[i];
    }
  }
  return escaped;
}

std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    const std::string_view code = text.substr(i, 4);
    if (code.size() == 4 && code.starts_with("\\x") &&
        std::from_chars(code.data() + 2, code.data() + 4, byte, 16).ptr == code.data() + 4) {
      plain += static_cast<char>(byte);
      i += 3;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

/// The settings as the lines of their file.
class Lines {
 public:
  explicit Lines(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
      lines_.push_back(line);
    }
  }

  std::optional<std::string> Find(std::string_view section, std::string_view key) const {
    const Spot spot = Locate(section, key);
    if (!spot.found) {
      return std::nullopt;
    }
    const std::string& line = lines_[spot.line];
    return Unescape(Trim(std::string_view(line).substr(line.find('=') + 1)));
  }

  void Set(std::string_view section, const std::string& key, const std::string& value) {
    const Spot spot = Locate(section, key);
    if (spot.found) {
      lines_[spot.line] = key + "=" + value;
      return;
    }
    auto at = lines_.begin() + static_cast<std::ptrdiff_t>(spot.line);
    if (!spot.in_section) {
      if (!lines_.empty()) {
        at = std::next(lines_.insert(at, ""));
      }
      at = std::next(lines_.insert(at, "[" + std::string(section) + "]"));
    }
    lines_.insert(at, key + "=" + value);
  }

  std::string Text() const {
    std::string text;
    for (const std::string& line : lines_) {
      text += line + "\n";
    }
    return text;
  }

 private:
  /// Where the line of a key is, or would have to be put.
  struct Spot {
    std::size_t line = 0;
    bool found = false;
    bool in_section = false;  // there is such a section already
  };

  Spot Locate(std::string_view section, std::string_view key) const {
    Spot spot{lines_.size(), false, false};
    bool inside = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const std::string_view line = Trim(lines_[i]);
      if (line.starts_with('[') && line.ends_with(']')) {
        inside = EqualsIgnoreCase(line.substr(1, line.size() - 2), section);
      } else if (const std::size_t equals = line.find('=');
                 inside && equals != std::string_view::npos &&
                 EqualsIgnoreCase(Trim(line.substr(0, equals)), key)) {
        return {i, true, true};
      }
      if (inside && !line.empty()) {
        spot = {i + 1, false, true};
      }
    }
    return spot;
  }

  std::vector<std::string> lines_;
};

/// 0, or what went wrong.
int WriteAll(int descriptor, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) {
      return errno;
    }
    done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

/// Puts `text` in the place of the file in one step.
void Replace(const std::filesystem::path& file, const std::string& text) {
  std::string aside = file.string() + ".XXXXXX";
  Descriptor written(::mkostemp(aside.data(), O_CLOEXEC));
  if (!written.IsOpen()) {
    RaiseCannotSave(file, errno);
  }
  int error = WriteAll(written.number(), text);
  written.Close();
  if (error == 0 && ::rename(aside.c_str(), file.c_str()) != 0) {
    error = errno;
  }
  if (error != 0) {
    ::unlink(aside.c_str());
    RaiseCannotSave(file, error);
  }
}

std::string SectionName(std::string_view application, std::string_view section) {
  return Escape(application, kNameSpecials) + "/" + Escape(section, kNameSpecials);
}

}  // namespace

IniSettingsStore::IniSettingsStore(std::filesystem::path file) : file_(std::move(file)) {}

void IniSettingsStore::Save(std::string_view application, std::string_view section,
                            std::string_view key, std::string_view value) {
  std::error_code error;
  std::filesystem::create_directories(file_.parent_path(), error);
  if (error) {
    RaiseCannotSave(file_, error.value());
  }
  // A link stays one; what it leads to is replaced.
  const std::filesystem::path real = std::filesystem::weakly_canonical(file_, error);
  const std::filesystem::path& target = error ? file_ : real;
  const Descriptor lock(
      ::open((target.string() + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
  if (!lock.IsOpen()) {
    RaiseCannotSave(file_, errno);
  }
  while (::flock(lock.number(), LOCK_EX) != 0) {
    if (errno != EINTR) {
      RaiseCannotSave(file_, errno);
    }
  }
  Lines lines(target);
  lines.Set(SectionName(application, section), Escape(key, kNameSpecials), Escape(value, ""));
  Replace(target, lines.Text());
}

std::string IniSettingsStore::Get(std::string_view application, std::string_view section,
                                  std::string_view key, std::string_view default_value) const {
  return Lines(file_)
      .Find(SectionName(application, section), Escape(key, kNameSpecials))
      .value_or(std::string(default_value));
}

std::filesystem::path UserSettingsFile(
    const std::function<const char*(const char* name)>& environment) {
  const std::filesystem::path own = "nimbrel/settings.ini";
  const char* configuration = environment("XDG_CONFIG_HOME");
  // What is not an absolute path is to be ignored there.
  if (configuration != nullptr && configuration[0] == '/') {
    return configuration / own;
  }
  const char* home = environment("HOME");
  if (home == nullptr || home[0] == '\0') {
    const passwd* user = ::getpwuid(::getuid());
    home = user != nullptr ? user->pw_dir : "/";
  }
  return std::filesystem::path(home) / ".config" / own;
}

}  // namespace nimbrel::platform
