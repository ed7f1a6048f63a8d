#pragma once

#include <string>

namespace nimbrel::platform {

/// The folder of the program that this process runs, without a closing separator; links are
/// followed. Empty where the system does not tell it.
std::string ProgramFolder();

}  // namespace nimbrel::platform
