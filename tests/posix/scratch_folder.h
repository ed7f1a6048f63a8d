#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

namespace nimbrel::platform {

/// Base of tests that work in a folder of their own, which goes with the test.
class ScratchTest : public ::testing::Test {
 protected:
  ScratchTest() {
    std::string name = (std::filesystem::temp_directory_path() / "nimbrel-XXXXXX").string();
    folder_ = ::mkdtemp(name.data());
  }
  ~ScratchTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::filesystem::path Path(const std::string& name) const { return folder_ / name; }
  std::filesystem::path Write(const std::string& name, const std::string& text = "") const {
    std::filesystem::create_directories(Path(name).parent_path());
    std::ofstream(Path(name), std::ios::binary) << text;
    return Path(name);
  }
  /// A shell script that can be run.
  std::filesystem::path WriteScript(const std::string& name, const std::string& text) const {
    Write(name, "#!/bin/sh\n" + text);
    std::filesystem::permissions(Path(name), std::filesystem::perms::owner_all);
    return Path(name);
  }
  static std::string Read(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }

  std::filesystem::path folder_;
};

}  // namespace nimbrel::platform
