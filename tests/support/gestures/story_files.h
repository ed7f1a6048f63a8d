#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// Whole stories of the weather dialog: each script of the folder "stories" has the log that it
/// gives beside it. A script begins with the plan that it is played on, "# plan: FILE" from the top
/// of the tree, or with the story that it goes on from, "# after: STORY".
namespace nimbrel::gestures {

inline const std::filesystem::path kTop = NIMBREL_SOURCE_DIR;
inline const std::filesystem::path kStories = kTop / "tests/dialog/stories";

/// What a story begins with.
struct StoryStart {
  /// "plan:" or "after:".
  std::string key;
  std::string value;
};

inline std::filesystem::path ScriptOf(const std::string& story) {
  return kStories / (story + ".gestures");
}

inline std::string ReadStoryFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string LogBeside(const std::string& story) {
  return ReadStoryFile(kStories / (story + ".log"));
}

/// Raises std::runtime_error for a script that does not say what it is played on.
inline StoryStart StartOf(const std::string& story) {
  std::istringstream text(ReadStoryFile(ScriptOf(story)));
  StoryStart start;
  text.ignore(2) >> start.key >> start.value;
  if (start.key != "plan:" && start.key != "after:") {
    throw std::runtime_error(story + " does not say what it is played on");
  }
  return start;
}

/// The names of all stories, in their order in the alphabet.
inline std::vector<std::string> StoryNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kStories)) {
    if (entry.path().extension() == ".gestures") {
      names.push_back(entry.path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace nimbrel::gestures
