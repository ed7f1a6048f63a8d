#include "tests/support/workbooks/measured_read.h"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "platform/runtime_error.h"
#include "spreadsheet/workbook_reader.h"

#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's own header, which not every compiler comes with.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*on_allocated)(const volatile void*,
                                                                              std::size_t),
                                                         void (*on_freed)(const volatile void*));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void*);
#endif

namespace nimbrel::spreadsheet {
namespace {

/// What the child leaves for its parent.
struct Report {
  MeasuredRead::Outcome outcome = MeasuredRead::Outcome::kBroken;
  double seconds = 0;
  std::uint64_t memory = 0;
  std::array<char, 1024> text{};
};

/// Memory that a child shares with its parent.
class SharedReport {
 public:
  SharedReport()
      : place_(::mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                      -1, 0)) {
    if (place_ == MAP_FAILED) {
      throw std::runtime_error("no shared memory");
    }
    new (place_) Report();
  }
  ~SharedReport() { ::munmap(place_, sizeof(Report)); }
  SharedReport(const SharedReport&) = delete;
  SharedReport& operator=(const SharedReport&) = delete;

  Report& report() { return *static_cast<Report*>(place_); }

 private:
  void* place_;
};

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer tells of every allocation, those of the libraries among them.
std::atomic<std::int64_t> held = 0;
std::atomic<std::int64_t> most_held = 0;

void OnAllocated(const volatile void* /*place*/, std::size_t size) {
  const std::int64_t now = held += static_cast<std::int64_t>(size);
  most_held = std::max(most_held.load(), now);
}
void OnFreed(const volatile void* place) {
  held -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(place));
}

void BeginCounting() {
  __sanitizer_install_malloc_and_free_hooks(OnAllocated, OnFreed);
}
std::uint64_t MostMemory(std::size_t own) {
  return static_cast<std::uint64_t>(most_held) + own;
}
#else
void BeginCounting() {}
std::uint64_t MostMemory(std::size_t /*own*/) {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
}
#endif

double ProcessorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void Tell(Report& report, const std::string& text) {
  std::memcpy(report.text.data(), text.data(), std::min(text.size(), report.text.size() - 1));
}

/// The life of the child.
[[noreturn]] void Read(std::string_view bytes, Report& report) {
  constexpr rlim_t kSeconds = 10;
  const rlimit limit{kSeconds, kSeconds};
  ::setrlimit(RLIMIT_CPU, &limit);
  BeginCounting();
  const double begin = ProcessorTime();
  try {
    ReadWorkbookBytes(bytes, "w");
    report.outcome = MeasuredRead::Outcome::kRead;
  } catch (const platform::RuntimeError& error) {
    report.outcome = MeasuredRead::Outcome::kRefused;
    Tell(report, error.text());
  } catch (const std::exception& error) {
    Tell(report, std::string("raised ") + error.what());
  }
  report.seconds = ProcessorTime() - begin;
  report.memory = MostMemory(bytes.size());
  ::_exit(0);
}

}  // namespace

MeasuredRead ReadMeasured(std::string_view bytes) {
  SharedReport shared;
  ::malloc_trim(0);
  const pid_t child = ::fork();
  if (child < 0) {
    throw std::runtime_error(std::string("no process: ") + std::strerror(errno));
  }
  if (child == 0) {
    Read(bytes, shared.report());
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  const Report& report = shared.report();
  MeasuredRead result{report.outcome, report.text.data(), report.seconds, report.memory};
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    result.outcome = MeasuredRead::Outcome::kBroken;
    result.text = WIFSIGNALED(status) ? "was ended by signal " + std::to_string(WTERMSIG(status))
                                      : "ended with " + std::to_string(WEXITSTATUS(status));
  }
  return result;
}

}  // namespace nimbrel::spreadsheet
