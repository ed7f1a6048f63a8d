#pragma once

#include <string>
#include <string_view>

#include "platform/settings_store.h"

namespace nimbrel::platform {

/// The user's settings in the registry, where the programs of the host's world keep theirs: below
/// "Software\VB and VBA Program Settings\APPLICATION\SECTION", a text for each key.
class RegistrySettingsStore final : public SettingsStore {
 public:
  void Save(std::string_view application, std::string_view section, std::string_view key,
            std::string_view value) override;
  std::string Get(std::string_view application, std::string_view section, std::string_view key,
                  std::string_view default_value) const override;
};

}  // namespace nimbrel::platform
