#include "platform/posix/detached_process_start.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

#include "platform/posix/descriptor.h"

namespace nimbrel::platform {
namespace {

constexpr std::int32_t kStarted = 42;
constexpr std::int32_t kNotFound = 2;
constexpr std::int32_t kAccessDenied = 5;

/// The first descriptor that is no standard stream.
constexpr unsigned kFirstOwnDescriptor = 3;

bool CanRun(const std::string& file) {
  struct stat info {};
  return ::stat(file.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
         ::access(file.c_str(), X_OK) == 0;
}

/// What the new process does between its birth and the program: only calls that are safe in the
/// child of a process with threads. Tells `report` why it failed, if it did.
[[noreturn]] void Become(const std::vector<char*>& arguments, const char* directory, int report) {
  ::setsid();
  const int nothing = ::open("/dev/null", O_RDWR);
  for (int stream = 0; stream < static_cast<int>(kFirstOwnDescriptor); ++stream) {
    ::dup2(nothing, stream);
  }
  ::close_range(kFirstOwnDescriptor, ~0U, CLOSE_RANGE_CLOEXEC);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
  if (::chdir(directory) != 0) {
    errno = 0;  // the folder stays as it is
  }
  ::execvp(arguments[0], arguments.data());
  const int error = errno;
  if (::write(report, &error, sizeof error) < 0) {
    ::_exit(2);
  }
  ::_exit(1);
}

}  // namespace

std::int32_t StartDetached(std::vector<std::string> command, const std::string& folder) {
  std::vector<char*> arguments;
  for (std::string& word : command) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return kAccessDenied;
  }
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const pid_t child = ::fork();
  if (child < 0) {
    return kAccessDenied;
  }
  if (child == 0) {
    // A child of the child: when that ends at once, the system adopts it.
    const pid_t grandchild = ::fork();
    if (grandchild == 0) {
      Become(arguments, folder.c_str(), writing.number());
    }
    ::_exit(grandchild < 0 ? 1 : 0);
  }
  writing.Close();
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  // The pipe closes without a word when the program takes over.
  int error = 0;
  ssize_t count = 0;
  do {
    count = ::read(reading.number(), &error, sizeof error);
  } while (count < 0 && errno == EINTR);
  if (count == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
    return kStarted;
  }
  return error == ENOENT ? kNotFound : kAccessDenied;
}

DetachedProcessStart::DetachedProcessStart(std::map<std::string, std::string> programs,
                                           std::string opener)
    : programs_(std::move(programs)), opener_(std::move(opener)) {}

std::int32_t DetachedProcessStart::ShellExecute(std::int32_t /*owner*/, const std::string& /*verb*/,
                                                const std::string& file,
                                                const std::string& parameters,
                                                const std::string& directory,
                                                std::int32_t /*show*/) {
  const auto known = programs_.find(file);
  const std::string& local = known == programs_.end() ? file : known->second;
  if (CanRun(local)) {
    std::vector<std::string> words = {local};
    if (!parameters.empty()) {
      words.push_back(parameters);
    }
    return StartDetached(std::move(words), directory);
  }
  return ::access(local.c_str(), F_OK) == 0 ? StartDetached({opener_, local}, directory)
                                            : kNotFound;
}

}  // namespace nimbrel::platform
