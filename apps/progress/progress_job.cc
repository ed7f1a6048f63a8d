#include "progress/progress_job.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

namespace nimbrel::progress {

using platform::Descriptor;

WatchedThread::WatchedThread(std::int32_t number) {
  if (number <= 0) {
    return;
  }
  const std::string path = "/proc/" + std::to_string(number);
  folder_ = Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ended_ = !folder_.IsOpen() && errno == ENOENT && ::access("/proc/self", F_OK) == 0;
}

bool WatchedThread::HasEnded() const {
  if (!folder_.IsOpen()) {
    return ended_;
  }
  // The folder of a thread that has ended stays empty, whoever gets its number after it.
  const Descriptor stat(::openat(folder_.number(), "stat", O_RDONLY | O_CLOEXEC));
  std::array<char, 512> text{};
  const ssize_t count = stat.IsOpen() ? ::read(stat.number(), text.data(), text.size()) : -1;
  if (count <= 0) {
    return true;
  }
  // "NUMBER (NAME) STATE ...", where the name may hold anything. Z: ended, but not yet waited for.
  const std::string_view line(text.data(), static_cast<std::size_t>(count));
  const std::size_t name_end = line.rfind(')');
  const std::string_view state =
      name_end == std::string_view::npos ? "" : line.substr(name_end + 1, 2);
  return state == " Z" || state == " X";
}

ProgressJob::ProgressJob(const platform::SettingsStore& settings)
    : settings_(settings), owner_(Number("ParentHwnd")) {}

bool ProgressJob::Runs() const {
  return Option("Running", "0") != "0" && !owner_.HasEnded();
}

std::string ProgressJob::Label() const {
  return Option("Label", "");
}

std::int32_t ProgressJob::Window() const {
  return Number("WndHandle");
}

std::string ProgressJob::Option(const char* key, const char* default_value) const {
  return settings_.Get("CorvaneProgress", "Options", key, default_value);
}

std::int32_t ProgressJob::Number(const char* key) const {
  const std::string text = Option(key, "0");
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

}  // namespace nimbrel::progress
