#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/settings_store.h"

namespace nimbrel::platform {

/// The user's settings in one text file: a section "[APPLICATION/SECTION]" for each pair, and a
/// line "KEY=VALUE" for each value. Control characters, backslashes and what the form itself needs
/// stand as "\xHH".
///
/// A save puts a new file in the place of the old one in one step, so that a reader sees either, in
/// full, without a lock. Savers wait for one another, so that none loses what another has saved.
/// Lines that are not understood are kept.
class IniSettingsStore final : public SettingsStore {
 public:
  /// The file and its folder are made at the first save.
  explicit IniSettingsStore(std::filesystem::path file);

  void Save(std::string_view application, std::string_view section, std::string_view key,
            std::string_view value) override;
  std::string Get(std::string_view application, std::string_view section, std::string_view key,
                  std::string_view default_value) const override;

  const std::filesystem::path& file() const { return file_; }

 private:
  std::filesystem::path file_;
};

/// Where the settings of the user of this process are: "nimbrel/settings.ini" in the folder
/// XDG_CONFIG_HOME, or in ".config" of his home. `environment` gives the value of a variable, null
/// if it is not set.
std::filesystem::path UserSettingsFile(
    const std::function<const char*(const char* name)>& environment);

}  // namespace nimbrel::platform
