#include "platform/posix/program_folder.h"

#include <filesystem>
#include <system_error>

namespace nimbrel::platform {

std::string ProgramFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : program.parent_path().string();
}

}  // namespace nimbrel::platform
