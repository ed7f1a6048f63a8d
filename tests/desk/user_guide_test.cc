#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "nimbrel/program.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel {
namespace {

std::string ReadText(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// The commands in the guide's boxes, in their order, but for those that open windows.
std::vector<std::vector<std::string>> Commands(const std::string& guide) {
  std::vector<std::vector<std::string>> commands;
  std::istringstream lines(guide);
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    line.erase(0, line.find_first_not_of(' '));
    if (line == "```") {
      inside = !inside;
    } else if (inside && line.starts_with("nimbrel ") && !line.starts_with("nimbrel dialog")) {
      std::istringstream words(line);
      std::vector<std::string> command;
      for (std::string word; words >> word;) {
        command.push_back(word);
      }
      command.erase(command.begin());
      commands.push_back(command);
    }
  }
  return commands;
}

class UserGuide : public platform::ScratchTest {};

TEST_F(UserGuide, ItsCommandsLeadToWhatItShows) {
  const std::string guide = ReadText(NIMBREL_SOURCE_DIR "/docs/user-guide.md");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory_symlink(NIMBREL_SOURCE_DIR "/examples", Path("examples"));
  std::filesystem::current_path(folder_);
  std::string printed;
  for (std::vector<std::string> command : Commands(guide)) {
    if (command.front() == "run") {
      command.push_back("--quiet");
    }
    std::ostringstream out;
    std::ostringstream err;
    cli::Console console{out, err, {}};
    EXPECT_EQ(cli::RunProgram(command, console), 0) << ::testing::PrintToString(command) << "\n"
                                                    << err.str();
    printed += out.str();
  }
  std::filesystem::current_path(before);
  const std::size_t begin = guide.find("Finish              without weather");
  ASSERT_NE(begin, std::string::npos);
  const std::string shown = guide.substr(begin, guide.find("```", begin) - begin);
  EXPECT_NE(printed.find(shown), std::string::npos) << printed;
}

}  // namespace
}  // namespace nimbrel
