#include "nimbrel/output_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

#include "nimbrel/command_error.h"

namespace nimbrel::cli {
namespace {

CommandError CannotWrite(const std::filesystem::path& path, int error) {
  return FileTrouble(path.string() + ": cannot be written: " + std::strerror(error));
}

/// A descriptor that is closed in the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      ::close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

/// 0, or what went wrong.
int WriteAll(int descriptor, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
    if (count < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno;
    }
    done += static_cast<std::size_t>(count);
  }
  // Devices and pipes have nothing to be synchronised.
  return ::fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS ? 0 : errno;
}

/// The permissions that the file has, or would get if it were made now.
mode_t PermissionsFor(const std::filesystem::path& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) == 0) {
    return info.st_mode & 07777;
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

PendingOutput::PendingOutput(Console& console, const std::string& path, std::string text)
    : console_(console), path_(path) {
  if (path == "-") {
    text_ = std::move(text);
    return;
  }
  // A link is followed, so that it goes on pointing at the file.
  std::error_code ignored;
  const std::filesystem::path target = std::filesystem::canonical(path_, ignored);
  if (!ignored) {
    path_ = target;
  }
  if (std::filesystem::is_directory(path_, ignored)) {
    throw CannotWrite(path_, EISDIR);
  }
  if (std::filesystem::exists(path_, ignored) &&
      !std::filesystem::is_regular_file(path_, ignored)) {
    text_ = std::move(text);  // a device or a pipe cannot be replaced, only written to
    return;
  }
  std::string name = path_.string() + ".XXXXXX";
  const Descriptor file(::mkstemp(name.data()));
  if (file.number() < 0) {
    throw CannotWrite(path_, errno);
  }
  temporary_ = name;
  int error = WriteAll(file.number(), text);
  if (error == 0 && ::fchmod(file.number(), PermissionsFor(path_)) != 0) {
    error = errno;
  }
  if (error != 0) {
    ::unlink(temporary_.c_str());
    throw CannotWrite(path_, error);
  }
}

PendingOutput::~PendingOutput() {
  if (!temporary_.empty()) {
    ::unlink(temporary_.c_str());
  }
}

PendingOutput::PendingOutput(PendingOutput&& other) noexcept
    : console_(other.console_),
      path_(std::move(other.path_)),
      temporary_(std::exchange(other.temporary_, {})),
      text_(std::move(other.text_)) {}

void PendingOutput::Commit() {
  if (path_ == "-") {
    console_.out << text_;
    FlushOutput(console_);
    return;
  }
  if (temporary_.empty()) {
    const Descriptor file(::open(path_.c_str(), O_WRONLY | O_CLOEXEC));
    const int error = file.number() < 0 ? errno : WriteAll(file.number(), text_);
    if (error != 0) {
      throw CannotWrite(path_, error);
    }
    return;
  }
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) {
    throw CannotWrite(path_, errno);
  }
  temporary_.clear();
}

bool IsSamePlace(const std::string& one, const std::string& other) {
  const auto place = [](const std::string& path) {
    std::error_code unknown;  // a folder that cannot be entered: the path as it was given
    const std::filesystem::path whole = std::filesystem::absolute(path, unknown);
    const std::filesystem::path found = std::filesystem::weakly_canonical(whole, unknown);
    return unknown ? whole.lexically_normal() : found;
  };
  if (one.empty() || other.empty() || one == "-" || other == "-") {
    return !one.empty() && one == other;
  }
  return place(one) == place(other);
}

void RequireOtherFile(const std::string& option, const std::string& output,
                      const std::string& input) {
  std::error_code none;  // a file that is not there is no other's twin
  if (!output.empty() && output != "-" && std::filesystem::equivalent(output, input, none)) {
    throw BadCommandLine(fmt::format(
        "{}: expected another file than the ones that are read, found \"{}\"", option, output));
  }
}

void FlushOutput(Console& console) {
  errno = 0;
  console.out.flush();
  if (!console.out) {
    throw FileTrouble(std::string("standard output: cannot be written") +
                      (errno != 0 ? std::string(": ") + std::strerror(errno) : std::string()));
  }
}

}  // namespace nimbrel::cli
