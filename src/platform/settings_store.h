#pragma once

#include <string>
#include <string_view>

namespace nimbrel::platform {

/// The user's own settings: texts by application, section and key. Several processes may use them
/// at the same time: each read gives a value that was saved in full. All texts are UTF-8, and names
/// are compared without regard to case.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// Saves one value; when it returns, other processes read it. Raises RuntimeError if it cannot be
  /// saved.
  virtual void Save(std::string_view application, std::string_view section, std::string_view key,
                    std::string_view value) = 0;
  /// The value, or `default_value` if there is none or the settings cannot be read.
  virtual std::string Get(std::string_view application, std::string_view section,
                          std::string_view key, std::string_view default_value) const = 0;
};

}  // namespace nimbrel::platform
